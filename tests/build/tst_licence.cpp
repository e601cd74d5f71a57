// SPDX-License-Identifier: Apache-2.0
#include "SourceTree.h"
#include "support/TestProgram.h"

using namespace sourcetree;

namespace
{

/// The licence stands in the first line, or in the second of a script.
bool namesItsLicence(const QString& text)
{
    static const QRegularExpression line(
        QStringLiteral("^(?:#![^\\n]*\\n)?(?://|#|--) SPDX-License-Identifier: Apache-2\\.0\\n"));
    return line.match(text).hasMatch();
}

} // namespace

/// What a distributor's tools read of the licence.
class LicenceTest : public QObject
{
    Q_OBJECT

private slots:
    void everySourceFileNamesItsLicence()
    {
        QStringList files{"CMakeLists.txt", "run", "test", ".ci/run", "scripts/fuzz"};
        for (const char* const folder :
             {"panel", "editor", "risk", "exempt", "history", "platform", "service", "workbench", "tests", "benchmarks",
              "cmake", "examples", "data", "packaging", "scripts"}) {
            files << filesIn(folder, {"*.cpp", "*.h", "*.cmake", "CMakeLists.txt", "*.py", "*.sh", "*.lua"});
        }
        QVERIFY(files.size() > 900);
        QStringList without;
        for (const QString& file : files) {
            if (!namesItsLicence(textOf(file))) {
                without << file;
            }
        }
        QVERIFY2(without.isEmpty(), qPrintable("no licence is named by\n" + without.join('\n')));
    }

    void aMissingOrOtherLicenceIsFound()
    {
        QVERIFY(namesItsLicence("// SPDX-License-Identifier: Apache-2.0\nint a;\n"));
        QVERIFY(namesItsLicence("#!/bin/sh\n# SPDX-License-Identifier: Apache-2.0\n"));
        QVERIFY(!namesItsLicence("int a;\n// SPDX-License-Identifier: Apache-2.0\n"));
        QVERIFY(!namesItsLicence("// SPDX-License-Identifier: MIT\n"));
        QVERIFY(!namesItsLicence(QString()));
    }

    void theLicenceItselfIsThere()
    {
        QVERIFY(textOf("LICENSE").contains("Apache License"));
        QVERIFY(!textOf("NOTICE").isEmpty());
    }
};

TEST_WITHOUT_WIDGETS(LicenceTest)
#include "tst_licence.moc"
