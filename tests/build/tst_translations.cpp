// SPDX-License-Identifier: Apache-2.0
#include "SourceTree.h"
#include "support/TestProgram.h"

#include <QProcess>
#include <QRegularExpression>
#include <QXmlStreamReader>

namespace
{

const QStringList TextRooms{"platform", "service", "workbench"};

/// Chinese characters and punctuation; “ ” … — are English, too.
const QString Han = "[\\x{3000}-\\x{303f}\\x{3400}-\\x{9fff}\\x{ff00}-\\x{ffef}]";

/// Files whose Chinese texts are data: words of files, names of records, invented names.
const QStringList DataFiles{"service/import/CsvValues.cpp",
                            "service/import/CsvTable.cpp",
                            "service/engine/AccountRights.cpp",
                            "service/sampledata/SampleData.cpp",
                            "service/sampledata/SampleNames.cpp",
                            "service/sampledata/SampleRiskConfigs.cpp",
                            "service/sampledata/SampleSecurities.cpp",
                            "service/sampledata/SampleUsers.cpp",
                            "platform/qav/tradelimit/TradeLimitImport.cpp"};
/// Single texts of that kind.
const QStringList DataTexts{
    "\"中文\"",            // the name of a language
    "\"[\\\\s;,；，、]+\"" // what separates recipients
};

/// The string literals with Chinese characters that nothing marks for translation.
QStringList unmarkedTexts(const QString& code)
{
    static const QRegularExpression token(
        "//[^\\n]*|/\\*.*?\\*/"
        "|R\"\\((.*?)\\)\"|\"(?:[^\"\\\\\\n]|\\\\.)*\"|'(?:[^'\\\\\\n]|\\\\.)*'|[A-Za-z_]\\w*|\\s+|.",
        QRegularExpression::DotMatchesEverythingOption);
    static const QRegularExpression han(Han);
    QStringList found;
    QStringList before; // the last tokens, without blanks and comments
    for (auto tokens = token.globalMatch(code); tokens.hasNext();) {
        const QString text = tokens.next().captured();
        if (text.startsWith("//") || text.startsWith("/*") || text.trimmed().isEmpty()) {
            continue;
        }
        if (text.startsWith('"') || text.startsWith("R\"")) {
            int last = before.size() - 1;
            while (last >= 0 && before[last].startsWith('"')) {
                --last; // pieces of one text
            }
            const QString call = before.mid(qMax(0, last - 1), 2).join("");
            const QString callWithContext = last >= 3 ? before.mid(last - 3, 2).join("") : QString();
            const bool isMarked =
                call == "tr(" || call == "QT_TR_NOOP(" ||
                (before.value(last) == "," && (callWithContext == "translate(" || callWithContext == "text(" ||
                                               callWithContext == "QT_TRANSLATE_NOOP("));
            if (!isMarked && text.contains(han)) {
                found << text;
            }
        }
        before << text;
        if (before.size() > 64) {
            before.removeFirst();
        }
    }
    return found;
}

struct Message {
    QString context;
    QString source;
    QStringList translations; ///< several for the forms of a number
    QString state;            ///< "unfinished", "obsolete", ...
    bool hasNumber = false;
};

QVector<Message> messagesOf(const QByteArray& catalogue)
{
    QVector<Message> messages;
    QString context;
    for (QXmlStreamReader reader(catalogue); !reader.atEnd();) {
        if (reader.readNext() != QXmlStreamReader::StartElement) {
            continue;
        }
        if (reader.name() == "name") {
            context = reader.readElementText();
        } else if (reader.name() == "message") {
            messages.push_back({});
            messages.back().context = context;
            messages.back().hasNumber = reader.attributes().value("numerus") == "yes";
        } else if (reader.name() == "source") {
            messages.back().source = reader.readElementText();
        } else if (reader.name() == "translation") {
            messages.back().state = reader.attributes().value("type").toString();
            if (!messages.back().hasNumber) {
                messages.back().translations << reader.readElementText();
            }
        } else if (reader.name() == "numerusform") {
            messages.back().translations << reader.readElementText();
        }
    }
    return messages;
}

QStringList placesIn(const QString& text)
{
    static const QRegularExpression place("%(?:[1-9n])");
    QStringList places;
    for (auto found = place.globalMatch(text); found.hasNext();) {
        places << found.next().captured();
    }
    places.removeDuplicates();
    places.sort();
    return places;
}

/// What is wrong with the English of a text; empty if nothing is.
QString mistakeIn(const Message& message)
{
    static const QRegularExpression han(Han);
    if (!message.state.isEmpty()) {
        return "it is " + message.state;
    }
    if (message.translations.size() != (message.hasNumber ? 2 : 1)) {
        return "it lacks a form";
    }
    for (const QString& english : message.translations) {
        const bool isSingular = message.hasNumber && english == message.translations.first();
        if (english.isEmpty()) {
            return "it is empty";
        }
        if (english.contains(han)) {
            return "it has Chinese characters";
        }
        if (english.contains(QRegularExpression("[‘’“”]"))) {
            return "it has quotation marks that are as wide as a character in Chinese fonts";
        }
        if (placesIn(english) != placesIn(message.source) && !(isSingular && placesIn(english).isEmpty())) {
            return "it has other places to fill in";
        }
        if (english.endsWith('\n') != message.source.endsWith('\n')) {
            return "it ends in another way";
        }
    }
    return {};
}

Message messageOf(const QString& source, const QStringList& translations, bool hasNumber = false)
{
    return {"c", source, translations, {}, hasNumber};
}

QByteArray contentOf(const QString& file)
{
    QFile opened(file);
    return opened.open(QIODevice::ReadOnly) ? opened.readAll() : QByteArray();
}

QString catalogueOf(const QString& room)
{
    return "translations/" + room + "_en.ts";
}

} // namespace

/// The texts of client, platform and service in English.
class TranslationsTest : public QObject
{
    Q_OBJECT

private slots:
    void everyChineseTextCanBeTranslated()
    {
        QStringList found;
        int files = 0;
        for (const QString& room : TextRooms) {
            for (const QString& name : sourcetree::filesIn(room, {"*.h", "*.cpp"})) {
                ++files;
                if (DataFiles.contains(name)) {
                    continue;
                }
                for (const QString& text : unmarkedTexts(sourcetree::textOf(name))) {
                    if (!DataTexts.contains(text)) {
                        found << name + ": " + text;
                    }
                }
            }
        }
        QVERIFY2(files > 300, "the rooms hold no code");
        QVERIFY2(found.isEmpty(), qPrintable('\n' + found.join('\n')));
    }

    void filesWithDataHoldSome()
    {
        for (const QString& name : DataFiles) {
            QVERIFY2(!unmarkedTexts(sourcetree::textOf(name)).isEmpty(), qPrintable(name));
        }
    }

    void aTextThatCannotBeTranslatedIsFound()
    {
        QCOMPARE(unmarkedTexts("f(QStringLiteral(\"错\")); // \"好\""), QStringList{"\"错\""});
        QCOMPARE(unmarkedTexts("x = a + \"：\" + tr(\"好\" \"好\") + R\"(错)\";"),
                 (QStringList{"\"：\"", "R\"(错)\""}));
        QCOMPARE(unmarkedTexts("utils::text(\"c\", \"好\"\n \"好\"); QT_TRANSLATE_NOOP(\"c\", \"好\"); /* \"好\" */"
                               "QCoreApplication::translate(\"c\", \"好\", nullptr, 1); tr(\"好\").arg(\"错\");"),
                 QStringList{"\"错\""});
        QCOMPARE(unmarkedTexts("text(\"错\"); other(\"c\", \"错\");"), (QStringList{"\"错\"", "\"错\""}));
    }

    void everyTextHasItsEnglish()
    {
        QStringList mistakes;
        for (const QString& room : TextRooms) {
            const QVector<Message> messages = messagesOf(contentOf(sourcetree::root().filePath(catalogueOf(room))));
            QVERIFY2(messages.size() > 50, qPrintable(room));
            for (const Message& message : messages) {
                const QString mistake = mistakeIn(message);
                if (!mistake.isEmpty()) {
                    mistakes << QString("%1: “%2”: %3").arg(room, message.source, mistake);
                }
            }
        }
        QVERIFY2(mistakes.isEmpty(), qPrintable('\n' + mistakes.join('\n')));
    }

    void aWrongTranslationIsFound()
    {
        QCOMPARE(mistakeIn(messageOf("第%1行", {"line %1"})), QString());
        QCOMPARE(mistakeIn(messageOf("%n行", {"one line", "%n lines"}, true)), QString());
        QVERIFY(!mistakeIn(messageOf("第%1行", {""})).isEmpty());
        QVERIFY(!mistakeIn(messageOf("第%1行", {"line %2"})).isEmpty());
        QVERIFY(!mistakeIn(messageOf("第%1行", {"line %1：x"})).isEmpty());
        QVERIFY(!mistakeIn(messageOf("第%1行\n", {"line %1"})).isEmpty());
        QVERIFY(!mistakeIn(messageOf("第%1行", {"line “%1”"})).isEmpty());
        QVERIFY(!mistakeIn(messageOf("第%1行", {"the line’s %1"})).isEmpty());
        QCOMPARE(mistakeIn(messageOf("第%1行", {"the line's \"%1\""})), QString());
        QVERIFY(!mistakeIn(messageOf("%n行", {"%n lines"}, true)).isEmpty());
        QVERIFY(!mistakeIn(messageOf("%n行", {"a line", "lines"}, true)).isEmpty());
        const QVector<Message> read =
            messagesOf("<TS><context><name>c</name><message><source>好</source>"
                       "<translation type=\"unfinished\"></translation></message></context></TS>");
        QCOMPARE(read.size(), 1);
        QCOMPARE(read[0].source, QString("好"));
        QVERIFY(!mistakeIn(read[0]).isEmpty());
    }

    /// The catalogues are what lupdate makes of the sources, so nothing is missing and nothing is left over.
    void cataloguesMatchTheSources()
    {
        const QTemporaryDir scratch;
        for (const QString& room : TextRooms) {
            QVERIFY(QFile::copy(sourcetree::root().filePath(catalogueOf(room)), scratch.filePath(room + "_en.ts")));
        }
        QProcess process;
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(sourcetree::root().filePath("scripts/texts"), {QAV_LUPDATE, scratch.path()});
        QVERIFY(process.waitForFinished());
        const QString said = QString::fromUtf8(process.readAll());
        QVERIFY2(process.exitCode() == 0, qPrintable(said));
        QVERIFY2(!said.contains("Q_OBJECT"), qPrintable(said)); // lupdate takes tr() for that of another class
        for (const QString& room : TextRooms) {
            const QByteArray updated = contentOf(scratch.filePath(room + "_en.ts"));
            QVERIFY2(updated == contentOf(sourcetree::root().filePath(catalogueOf(room))),
                     qPrintable("run scripts/texts: " + catalogueOf(room) + " is out of date"));
        }
    }
};

TEST_WITHOUT_WIDGETS(TranslationsTest)
#include "tst_translations.moc"
