// SPDX-License-Identifier: Apache-2.0
#include "support/TestProgram.h"

#include <QProcess>

/// Reads the dynamic symbol table of the plug-in.
class PluginSymbolsTest : public QObject
{
    Q_OBJECT

private slots:
    void theLibraryExportsExactlyOneClass()
    {
        const QStringList symbols = definedSymbols({"--demangle"});
        QVERIFY(!symbols.isEmpty());
        const QRegularExpression ofThePanel("^((vtable|typeinfo|typeinfo name) for |non-virtual thunk to )?"
                                            "QAV::CAccountGroupRiskManagePanel(::|\\b)");
        // Sanitizers add marks of their own to a library.
        const QRegularExpression ofTheInstrumentation("^__(odr_asan|asan|ubsan|tsan|start_asan|stop_asan)");
        QStringList foreign;
        for (const QString& symbol : symbols) {
            if (!ofThePanel.match(symbol).hasMatch() && !ofTheInstrumentation.match(symbol).hasMatch()) {
                foreign << symbol;
            }
        }
        QVERIFY2(foreign.isEmpty(), qPrintable("Exported beside the panel:\n" + foreign.join('\n')));
    }

    void theMetaObjectOfThePanelIsExported()
    {
        const QStringList symbols = definedSymbols({});
        const QString wanted = "_ZN3QAV28CAccountGroupRiskManagePanel16staticMetaObjectE";
        QVERIFY(std::any_of(symbols.begin(), symbols.end(),
                            [&](const QString& line) { return line.startsWith(wanted + ' '); }));
    }

private:
    static QStringList definedSymbols(const QStringList& options)
    {
        QProcess nm;
        nm.start("nm", QStringList{"--dynamic", "--defined-only", "--format=posix"}
                           << options << support::builtFile(QAV_PLUGIN_FILE));
        if (!nm.waitForFinished() || nm.exitCode() != 0) {
            return {};
        }
        return QString::fromUtf8(nm.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
    }
};

TEST_WITHOUT_WIDGETS(PluginSymbolsTest)
#include "tst_plugin_symbols.moc"
