// SPDX-License-Identifier: Apache-2.0
#include "support/TestProgram.h"

#include <utils/TextEncoding.h>

#include <rapidcheck.h>

#include <QTextCodec>

using utils::decodeText;
using utils::EErrorCode;
using utils::ETextEncoding;

namespace
{

QByteArray gb18030(const QString& text)
{
    return QTextCodec::codecForName("GB18030")->fromUnicode(text);
}

/// Newer tables of GB18030 give the bytes of some characters for private use to new characters.
bool isInEveryTable(char32_t letter)
{
    const bool isSurrogate = letter >= 0xD800 && letter <= 0xDFFF;
    const bool isForPrivateUse = letter >= 0xE000 && letter <= 0xF8FF;
    return !isSurrogate && !isForPrivateUse;
}

/// The text, or the code of the refusal in brackets.
QString decoded(const QByteArray& bytes, ETextEncoding encoding = ETextEncoding::Detected)
{
    QString text = "left over";
    const utils::NVError error = decodeText(bytes, encoding, text);
    if (error.isSuccess()) {
        return text;
    }
    return text + QString("<%1>").arg(static_cast<int>(error.code()));
}

const QString Ambiguous = QString("<%1>").arg(static_cast<int>(EErrorCode::Conflict));
const QString Malformed = QString("<%1>").arg(static_cast<int>(EErrorCode::Malformed));

} // namespace

class TextEncodingTest : public QObject
{
    Q_OBJECT

private slots:
    void everyTextIsReadInTheEncodingThatIsNamed()
    {
        QVERIFY(rc::check("named encodings", [] {
            const auto letters = *rc::gen::container<std::vector<char32_t>>(
                rc::gen::suchThat(rc::gen::inRange<char32_t>(1, 0x110000), isInEveryTable));
            const QString text = QString::fromUcs4(letters.data(), static_cast<int>(letters.size()));
            RC_ASSERT(decoded(gb18030(text), ETextEncoding::Gb18030) == text);
            RC_ASSERT(decoded("\xEF\xBB\xBF" + text.toUtf8(), ETextEncoding::Utf8) == text);
            RC_ASSERT(decoded("\xEF\xBB\xBF" + text.toUtf8()) == text);
        }));
    }

    void everyCharacterIsReadInBothEncodings()
    {
        QString text;
        for (uint letter = 1; letter < 0x110000; ++letter) {
            if (isInEveryTable(letter)) {
                text += QString::fromUcs4(&letter, 1);
            }
        }
        QVERIFY(decoded(text.toUtf8(), ETextEncoding::Utf8) == text);
        QVERIFY(decoded(gb18030(text), ETextEncoding::Gb18030) == text);
    }

    void realWordsAreDetectedOrRefused_data()
    {
        const support::DataRows<QByteArray, QString> row("bytes", "expected");
        row("ASCII", "600519,x\n", "600519,x\n");
        row("UTF-8", "600000,浦发银行\n", "600000,浦发银行\n");
        row("GB18030", gb18030("600000,浦发银行\n"), "600000,浦发银行\n");
        // These words of GB18030 are UTF-8 as well.
        for (const char* word : {"茅台", "证券", "医药", "食品", "煤炭", "转债", "债券", "洽洽食品", "朔原证券"}) {
            const QString line = QString("600519,%1\n").arg(word);
            row(QString("GB18030 ") + word, gb18030(line), Ambiguous);
            row(QString("UTF-8 ") + word, line.toUtf8(), line);
        }
        row("GB18030 among others", gb18030("600519,茅台\n600000,浦发银行\n"), "600519,茅台\n600000,浦发银行\n");
        // And these of UTF-8 are Chinese in GB18030.
        for (const char* word : {"汽车", "正常", "失败", "丽水"}) {
            const QString line = QString("600519,%1\r").arg(word);
            row(QString("UTF-8 ") + word, line.toUtf8(), Ambiguous);
            row(QString("GB18030 ") + word, gb18030(line), line);
        }
        row("UTF-8 with a line that tells", "代码,名称\r600519,汽车\r", "代码,名称\r600519,汽车\r");
        row("UTF-8 of another language", "1,Société Générale\n", Ambiguous);
        row("the same with a line that tells", "代码,名称\n1,Société Générale\n", "代码,名称\n1,Société Générale\n");
        row("no everyday character", "1,喆镕\n", Ambiguous);
        row("replacement character", "名称\n\xEF\xBF\xBD\xEF\xBF\xBD\n", "名称\n\uFFFD\uFFFD\n");
        row("replacement character in GB18030", gb18030("名称\n\uFFFD\n"), "名称\n\uFFFD\n");
    }
    void realWordsAreDetectedOrRefused()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, expected);
        QCOMPARE(decoded(bytes), expected);
    }

    void ambiguousBytesAreReadAsTheCallerSays()
    {
        const QByteArray bytes = gb18030("证券");
        QCOMPARE(decoded(bytes), Ambiguous);
        QCOMPARE(decoded(bytes, ETextEncoding::Gb18030), QString("证券"));
        QCOMPARE(decoded(bytes, ETextEncoding::Utf8), QString("֤ȯ"));
        QCOMPARE(decoded("\xEF\xBB\xBF" + bytes), QString("֤ȯ"));
    }

    void whatIsInNoEncodingIsRefused_data()
    {
        const support::DataRows<QByteArray> row("bytes");
        row("neither", "a\xFF\xFF\n");
        row("cut UTF-8", "账号\n机构\xE8\xB4");
        row("cut GB18030", "\xD5\xCB\xBA");
        row("NUL", QByteArray("a\0b", 3));
        row("UTF-16", QByteArray("\xFF\xFE"
                                 "a\0",
                                 4));
        row("mark, then GB18030", "\xEF\xBB\xBF" + gb18030("银行"));
        row("picture", QByteArray("\x89PNG\r\n\xff\xfe\xfd", 9));
    }
    void whatIsInNoEncodingIsRefused()
    {
        QFETCH(QByteArray, bytes);
        QCOMPARE(decoded(bytes), Malformed);
    }

    void whatIsNotInTheNamedEncodingIsRefused()
    {
        QCOMPARE(decoded(gb18030("银行"), ETextEncoding::Utf8), Malformed);
        QCOMPARE(decoded(QByteArray("账号\xFF"), ETextEncoding::Gb18030), Malformed);
    }
};

TEST_WITHOUT_WIDGETS(TextEncodingTest)
#include "tst_text_encoding.moc"
