// SPDX-License-Identifier: Apache-2.0
#include "support/TestProgram.h"

#include <utils/CCsvReader.h>
#include <utils/CCsvWriter.h>
#include <utils/TextEncoding.h>

#include <rapidcheck.h>

#include <QTextCodec>

#include <vector>

using utils::CCsvReader;
using utils::CCsvWriter;
using utils::CsvRow;
using utils::ECsvForm;

class CsvTest : public QObject
{
    Q_OBJECT

    /// What a careless writer or reader would spoil, and letters between.
    static rc::Gen<QString> values()
    {
        static const std::vector<QString> pieces = {
            "=",      "+",      "-",      "@",      "'",      "\"",     "\"\"",   "=\"",    ",",
            ";",      "\t",     "\r",     "\n",     "\r\n",   " ",      "0",      "007",    "a",
            "招商",   "𠮷",     "\uFFFD", "\uFEFF", "\u200B", "\u3000", "\u00A0", "\uFF1D", "\uFF0B",
            "\uFF0D", "\uFF20", "\uFE66", "\u2212", "é",      "\u2028"};
        return rc::gen::map(rc::gen::container<std::vector<QString>>(rc::gen::elementOf(pieces)),
                            [](const std::vector<QString>& chosen) {
                                QString value;
                                for (const QString& piece : chosen) {
                                    value += piece;
                                }
                                return value;
                            });
    }

    static std::vector<QStringList> read(const QString& text, QChar separator = ',')
    {
        std::vector<QStringList> rows;
        CCsvReader reader(text, separator);
        for (CsvRow row; reader.next(row);) {
            rows.push_back(row.values);
        }
        if (!reader.error().isSuccess()) {
            rows.push_back({QString::fromStdString(reader.error().errorMsg())});
        }
        return rows;
    }

    static QString written(const QString& value, ECsvForm form, QChar separator = ',')
    {
        CCsvWriter writer(separator, "\n");
        writer.add(value, form);
        writer.add("x");
        writer.endRow();
        return writer.take().section(separator + QString("x\n"), 0, 0);
    }

private slots:
    void whateverIsWrittenIsReadAsItWas()
    {
        QVERIFY(rc::check("rows come back", [] {
            const QChar separator = *rc::gen::element(',', '\t', ';');
            const QString lineEnd = *rc::gen::element<QString>("\r\n", "\n", "\r");
            CCsvWriter writer(separator, lineEnd);
            std::vector<QStringList> rows;
            QString text;
            for (int rowsLeft = *rc::gen::inRange(1, 5); rowsLeft > 0; --rowsLeft) {
                QStringList row;
                for (int cells = *rc::gen::inRange(1, 5); cells > 0; --cells) {
                    row << *values();
                    writer.add(row.back(), *rc::gen::element(ECsvForm::Plain, ECsvForm::Guarded, ECsvForm::Exact));
                }
                writer.endRow();
                if (*rc::gen::arbitrary<bool>()) {
                    text += writer.take();
                }
                rows.push_back(row);
            }
            text += writer.take();
            RC_ASSERT(read(text, separator) == rows);

            // As a file, with or without a byte order mark.
            for (const QByteArray& bytes : {text.toUtf8(), "\xEF\xBB\xBF" + text.toUtf8()}) {
                QString decoded;
                RC_ASSERT(utils::decodeText(bytes, utils::ETextEncoding::Utf8, decoded).isSuccess());
                RC_ASSERT(read(decoded, separator) == rows);
            }
            QString decoded;
            const QByteArray bytes = QTextCodec::codecForName("GB18030")->fromUnicode(text);
            RC_ASSERT(utils::decodeText(bytes, utils::ETextEncoding::Gb18030, decoded).isSuccess());
            RC_ASSERT(read(decoded, separator) == rows);
        }));
    }

    /// What a spreadsheet makes of a file that it reads without our rules: plain RFC 4180.
    void nothingOfAGuardedFileIsAFormula()
    {
        QVERIFY(rc::check("no formula", [] {
            const QString value = *values();
            QString cell = written(value, ECsvForm::Guarded);
            if (cell.startsWith('"')) {
                cell = cell.mid(1, cell.size() - 2).replace("\"\"", "\"");
            }
            static const QRegularExpression formula("^([\\t\\r\\n]|[\\s\\x{00A0}\\x{200B}\\x{3000}\\x{FEFF}\\x{2028}]*"
                                                    "[=+\\-@\\x{FF1D}\\x{FF0B}\\x{FF0D}\\x{FF20}\\x{FE66}\\x{2212}])",
                                                    QRegularExpression::UseUnicodePropertiesOption);
            RC_ASSERT(formula.isValid());
            RC_ASSERT(!formula.match(cell).hasMatch());
            RC_CLASSIFY(formula.match(value).hasMatch());
        }));
    }

    void everyFormIsWrittenAsSpreadsheetsKnowIt_data()
    {
        const support::DataRows<QString, QString, QString, QString> row("value", "plain", "guarded", "exact");
        row("nothing", "", "", "", "");
        row("code", "0012", "0012", "0012", "=\"0012\"");
        row("name", "甲 公司", "甲 公司", "甲 公司", "=\"甲 公司\"");
        row("separator", "a,b", "\"a,b\"", "\"a,b\"", "\"=\"\"a,b\"\"\"");
        row("quote", "a\"b", "\"a\"\"b\"", "\"a\"\"b\"", "\"=\"\"a\"\"\"\"b\"\"\"");
        row("blanks at the ends", " a ", "\" a \"", "\" a \"", "=\" a \"");
        row("formula", "=cmd|' /C calc'!A0", "=cmd|' /C calc'!A0", "'=cmd|' /C calc'!A0", "=\"=cmd|' /C calc'!A0\"");
        row("full width", "＝1", "＝1", "'＝1", "=\"＝1\"");
        row("behind blanks", "\u3000+1", "\"\u3000+1\"", "'\u3000+1", "=\"\u3000+1\"");
        row("tab", "\tx", "\"\tx\"", "'\tx", "=\"\tx\"");
        // QString takes a mark at the beginning of UTF-8 for the text's own.
        row("byte order mark", QChar(QChar::ByteOrderMark) + QString("a"), "\"\uFEFFa\"", "\"\uFEFFa\"",
            "=\"\uFEFFa\"");
        row("apostrophe", "'t Hooft", "'t Hooft", "'t Hooft", "=\"'t Hooft\"");
        row("like a guard", "'=1", "''=1", "''=1", "=\"'=1\"");
        row("like a code that is kept", "=\"1\"", "\"=\"\"=\"\"\"\"1\"\"\"\"\"\"\"", "\"'=\"\"1\"\"\"",
            "\"=\"\"=\"\"\"\"1\"\"\"\"\"\"\"");
    }
    void everyFormIsWrittenAsSpreadsheetsKnowIt()
    {
        QFETCH(QString, value);
        for (const auto& [form, column] :
             {std::make_pair(ECsvForm::Plain, "plain"), {ECsvForm::Guarded, "guarded"}, {ECsvForm::Exact, "exact"}}) {
            const QString expected = *static_cast<const QString*>(QTest::qData(column, qMetaTypeId<QString>()));
            QCOMPARE(written(value, form), expected);
            QCOMPARE(read(expected + ",x\n"), (std::vector<QStringList>{{value, "x"}}));
        }
    }

    void cellsAreReadAsSpreadsheetsWriteThem_data()
    {
        const support::DataRows<QString, QStringList> row("text", "expected");
        row("plain", "600000, 浦发银行 ,\n", {"600000", "浦发银行", ""});
        row("quoted", "\"x, y\", \" sagt \"\"ja\"\"\" ", {"x, y", " sagt \"ja\""});
        row("leading zeros", "=\"000001\",'000002,\"'000003\", =\" 4\"\"\" ", {"000001", "000002", "000003", " 4\""});
        row("quoted formula", "\"=\"\"000001\"\"\"", {"000001"});
        row("separator in an exact cell", "=\"a,b\",c", {"a,b", "c"});
        row("quote inside", "a\"b,c", {"a\"b", "c"});
        row("apostrophe of a name", "'t Hooft,'", {"'t Hooft", "'"});
        row("empty rows", "\n,,\r\n  \r600000", {"600000"});
        row("row of nothing in quotes", "\"\",\n", {"", ""});
    }
    void cellsAreReadAsSpreadsheetsWriteThem()
    {
        QFETCH(QString, text);
        QFETCH(QStringList, expected);
        QCOMPARE(read(text), (std::vector<QStringList>{expected}));
    }

    void rowsKnowTheirLine()
    {
        QList<int> lines;
        CCsvReader reader("a\n\"b\nb\r\nb\rb\"\r\n\nc\rd");
        for (CsvRow row; reader.next(row);) {
            lines << row.line;
        }
        QCOMPARE(lines, (QList<int>{1, 2, 7, 8}));
    }

    void malformedRowsEndTheReadingAndAreNamed_data()
    {
        const support::DataRows<QString, QString> row("text", "reason");
        row("quote without end", "a\n\"b\nc,d\ne", "第2行：引号没有结束");
        row("text behind a quote", "a\n\"b\"c\nd", "第2行：引号后有多余的内容");
        row("text behind a long quote", "a\n\"b\nb\"c\nd", "第3行：引号后有多余的内容");
    }
    void malformedRowsEndTheReadingAndAreNamed()
    {
        QFETCH(QString, text);
        QFETCH(QString, reason);
        QCOMPARE(read(text), (std::vector<QStringList>{{"a"}, {reason}}));
    }

    void anyTextIsReadWithoutHarm()
    {
        QVERIFY(rc::check("no text hangs or crashes", [] {
            const QString text = *values();
            CCsvReader reader(text);
            int line = 0;
            for (CsvRow row; reader.next(row); line = row.line) {
                RC_ASSERT(!row.values.isEmpty());
                RC_ASSERT(row.line > line);
            }
            RC_ASSERT(line <= text.size());
        }));
    }
};

TEST_WITHOUT_WIDGETS(CsvTest)
#include "tst_csv.moc"
