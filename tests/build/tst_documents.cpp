// SPDX-License-Identifier: Apache-2.0
#include "SourceTree.h"
#include "support/TestProgram.h"

#include <QRegularExpression>
#include <QSet>

#include <vector>

using namespace sourcetree;

namespace
{

struct Link {
    QString document; ///< relative to the tree
    QString target;
};

/// What headings are called in links: small letters, hyphens for blanks, nothing else.
QStringList anchorsOf(const QString& text)
{
    static const QRegularExpression heading("^#+ +(.*)$", QRegularExpression::MultilineOption);
    static const QRegularExpression dropped("[^\\w -]", QRegularExpression::UseUnicodePropertiesOption);
    QStringList anchors;
    for (auto match = heading.globalMatch(text); match.hasNext();) {
        anchors << match.next().captured(1).toLower().remove(dropped).replace(' ', '-');
    }
    return anchors;
}

} // namespace

/// README, CONTRIBUTING and docs/ against the tree.
class DocumentsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        m_documents << filesIn("docs", {"*.md"});
        QVERIFY(m_documents.size() > 5);
        // A lambda in an example is no link: a target has no blank.
        static const QRegularExpression link("\\]\\(([^) ]+)\\)");
        for (const QString& document : m_documents) {
            for (auto match = link.globalMatch(textOf(document)); match.hasNext();) {
                m_links.push_back({document, match.next().captured(1)});
            }
        }
    }

    void everyLinkLeadsSomewhere()
    {
        QStringList dead;
        for (const Link& link : m_links) {
            if (link.target.contains("://")) {
                continue;
            }
            const QString file = link.target.section('#', 0, 0);
            const QString anchor = link.target.section('#', 1);
            const QString path = file.isEmpty() ? root().filePath(link.document)
                                                : QFileInfo(root().filePath(link.document)).dir().filePath(file);
            if (!QFileInfo::exists(path) || (!anchor.isEmpty() && !anchorsOf(textOf(path)).contains(anchor))) {
                dead << link.document + ": " + link.target;
            }
        }
        QVERIFY2(dead.isEmpty(), qPrintable(dead.join('\n')));
    }

    void everyDocumentAndPictureIsLinked()
    {
        QSet<QString> linked;
        for (const Link& link : m_links) {
            const QDir folder = QFileInfo(root().filePath(link.document)).dir();
            linked << QFileInfo(folder.filePath(link.target.section('#', 0, 0))).canonicalFilePath();
        }
        QStringList forgotten;
        for (const QString& file : filesIn("docs", {"*.md", "*.png"})) {
            if (!linked.contains(QFileInfo(root().filePath(file)).canonicalFilePath())) {
                forgotten << file;
            }
        }
        QVERIFY2(forgotten.isEmpty(), qPrintable(forgotten.join('\n')));
    }

    /// Files of the tree that documents name stand between backticks with their folder.
    void everyFileThatIsNamedExists()
    {
        static const QRegularExpression named(
            "`((?:tests|scripts|packaging|service|platform|panel|editor|risk|exempt|history|"
            "workbench|benchmarks|cmake|data|docs|examples)/[\\w./-]*)`");
        QStringList missing;
        int count = 0;
        for (const QString& document : m_documents) {
            for (auto match = named.globalMatch(textOf(document)); match.hasNext(); ++count) {
                const QString path = match.next().captured(1);
                if (!QFileInfo::exists(root().filePath(path))) {
                    missing << document + ": " + path;
                }
            }
        }
        QVERIFY(count > 50);
        QVERIFY2(missing.isEmpty(), qPrintable(missing.join('\n')));
    }

    /// After "In `file`:" the guide shows a part of that file.
    void theGuideShowsTheExampleAsItIs()
    {
        static const QRegularExpression shown("In\\s`(examples/[^`]+)`:\n\n((?:(?: {4}[^\n]*)?\n)+)");
        static const QRegularExpression indent("^ {4}", QRegularExpression::MultilineOption);
        int count = 0;
        for (auto match = shown.globalMatch(textOf("docs/first-panel.md")); match.hasNext(); ++count) {
            const auto block = match.next();
            const QString part = block.captured(2).remove(indent).trimmed();
            const QString file = block.captured(1);
            QVERIFY2(textOf(file).contains(part), qPrintable(file + " has no\n" + part));
        }
        QCOMPARE(count, 10);
    }

private:
    QStringList m_documents{"README.md", "CONTRIBUTING.md"};
    std::vector<Link> m_links;
};

TEST_WITHOUT_WIDGETS(DocumentsTest)
#include "tst_documents.moc"
