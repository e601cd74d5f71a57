// SPDX-License-Identifier: Apache-2.0
#include "support/TestProgram.h"
#include "support/records/DocumentBytes.h"

#include <nvservice/Codec.h>

#include <mongo/bson/bson.h>

using namespace nvservice;
using support::littleEndian;
using support::nested;
using utils::EErrorCode;

namespace
{

/// A document around elements that are given as bytes.
std::string wrapped(const std::string& elements)
{
    return littleEndian(elements.size() + 5) + elements + '\0';
}

utils::NVError check(const std::string& document)
{
    // An exact allocation, so that a read beyond the end is seen by the address sanitizer.
    const std::vector<char> bytes(document.begin(), document.end());
    return checkDocument(bytes.data(), bytes.size());
}

std::string bytesOf(const char* text, std::size_t size)
{
    return {text, size};
}
#define BYTES(literal) bytesOf(literal, sizeof(literal) - 1)

} // namespace

class DocumentCheckTest : public QObject
{
    Q_OBJECT

private slots:
    void aDocumentOfAllUsualTypesPasses()
    {
        bson::BSONObjBuilder builder;
        builder.append("double", 1.5).append("text", "甲").append("array", BSON_ARRAY(1 << "x"));
        builder.append("document", BSON("a" << BSON("b" << 1))).append("id", bson::OID("0123456789abcdef01234567"));
        builder.append("flag", true).append("date", bson::Date_t(1)).append("number", 1).append("wide", 1LL);
        builder.appendBinData("binary", 3, bson::BinDataGeneral, "\0\1\2");
        builder.appendBinDataArrayDeprecated("old binary", "\0\1\2", 3);
        builder.appendNull("null");
        builder.appendRegex("pattern", "a.*", "i");
        builder.appendCode("code", "x");
        builder.appendSymbol("symbol", "y");
        builder.appendUndefined("undefined");
        builder.appendMinKey("least");
        builder.appendMaxKey("greatest");
        builder.appendTimestamp("stamp", bson::Timestamp_t(1, 1));
        builder.appendDBRef("reference", "table", bson::OID("0123456789abcdef01234567"));
        const bson::BSONObj document = builder.obj();
        const utils::NVError error = checkDocument(document.objdata(), static_cast<std::size_t>(document.objsize()));
        QVERIFY2(error.isSuccess(), error.errorMsg().c_str());
    }

    void brokenShapesAreRefused_data()
    {
        const support::DataRows<QByteArray> add("document");
        const auto row = [&add](const char* name, const std::string& bytes) {
            add(name, QByteArray(bytes.data(), static_cast<int>(bytes.size())));
        };
        row("nothing", "");
        row("shorter than a length", BYTES("\x05\0\0"));
        row("longer than it says", BYTES("\x05\0\0\0\0\0"));
        row("shorter than it says", BYTES("\x06\0\0\0\0"));
        row("negative length", BYTES("\xff\xff\xff\xff\0"));
        row("no ending zero", BYTES("\x05\0\0\0\x01"));
        row("zero before the end", wrapped(BYTES("\0\x0A"
                                                 "a\0")));
        row("name without end", wrapped(BYTES("\x10"
                                              "abc")));
        row("unknown type", wrapped(BYTES("\x13"
                                          "a\0"
                                          "0123456789abcdef")));
        row("code with scope", wrapped(BYTES("\x0F"
                                             "a\0\x0f\0\0\0\x02\0\0\0x\0\x05\0\0\0\0")));
        row("double cut", wrapped(BYTES("\x01"
                                        "a\0"
                                        "1234567")));
        row("integer cut", wrapped(BYTES("\x10"
                                         "a\0"
                                         "123")));
        row("identifier cut", wrapped(BYTES("\x07"
                                            "a\0"
                                            "0123456789a")));
        row("flag that is neither 0 nor 1", wrapped(BYTES("\x08"
                                                          "a\0\x02")));
        row("flag cut", wrapped(BYTES("\x08"
                                      "a\0")));
        row("text of length 0", wrapped(BYTES("\x02"
                                              "a\0\0\0\0\0")));
        row("text of negative length", wrapped(BYTES("\x02"
                                                     "a\0\xff\xff\xff\xffx\0")));
        row("text beyond the document", wrapped(BYTES("\x02"
                                                      "a\0\x7f\0\0\0x\0")));
        row("text that takes the ending zero", wrapped(BYTES("\x02"
                                                             "a\0\x02\0\0\0x")));
        row("text without end", wrapped(BYTES("\x02"
                                              "a\0\x02\0\0\0xx")));
        row("binary beyond the document", wrapped(BYTES("\x05"
                                                        "a\0\x7f\0\0\0\0x")));
        row("binary of negative length", wrapped(BYTES("\x05"
                                                       "a\0\xff\xff\xff\xff\0x")));
        row("old binary with another inner length", wrapped(BYTES("\x05"
                                                                  "a\0\x05\0\0\0\x02\x09\0\0\0x")));
        row("old binary without inner length", wrapped(BYTES("\x05"
                                                             "a\0\x01\0\0\0\x02x")));
        row("pattern without options", wrapped(BYTES("\x0B"
                                                     "a\0x\0y")));
        row("document beyond its document", wrapped(BYTES("\x03"
                                                          "a\0\x7f\0\0\0\0")));
        row("document too short", wrapped(BYTES("\x03"
                                                "a\0\x04\0\0\0\0")));
        row("document without end", wrapped(BYTES("\x03"
                                                  "a\0\x05\0\0\0\x01")));
        row("element that reaches over the end of its document", wrapped(BYTES("\x03"
                                                                               "a\0\x0b\0\0\0\x12"
                                                                               "b\0"
                                                                               "123\0"
                                                                               "45678")));
    }
    void brokenShapesAreRefused()
    {
        QFETCH(QByteArray, document);
        const utils::NVError error = check(document.toStdString());
        QCOMPARE(error.code(), EErrorCode::Malformed);
        QVERIFY(!error.errorMsg().empty());
    }

    void noBytesAtAllAreRefused() { QCOMPARE(checkDocument(nullptr, 0).code(), EErrorCode::Malformed); }

    void theBrokenElementIsNamedByItsPath()
    {
        const std::string inner = wrapped(BYTES("\x08"
                                                "flag\0\x02"));
        QCOMPARE(check(wrapped(BYTES("\x0A"
                                     "first\0") +
                               BYTES("\x03"
                                     "outer\0") +
                               inner))
                     .errorMsg(),
                 std::string("数据格式错误: 布尔值无效(字段 outer.flag)"));
    }

    void aNameFromOutsideIsShownHarmlessly()
    {
        const std::string longName(1000, 'x');
        const std::string text = check(wrapped("\x08\n\xFF" + longName + BYTES("\0\x02"))).errorMsg();
        QVERIFY(QString::fromStdString(text).contains("(字段 ??xxx"));
        QVERIFY(text.size() < 200);
    }

    void depthIsLimited()
    {
        QVERIFY(check(nested(MaxDocumentDepth)).isSuccess());
        QCOMPARE(check(nested(MaxDocumentDepth + 1)).code(), EErrorCode::ResourceExhausted);
    }

    void tenThousandLevelsAreRefusedAndNotFollowed()
    {
        const std::string document = nested(10000);
        QCOMPARE(check(document).code(), EErrorCode::ResourceExhausted);
        IDataPtr record;
        QCOMPARE(decodeRecord(document.data(), document.size(), record).code(), EErrorCode::ResourceExhausted);
        QCOMPARE(decodeRecord(bson::BSONObj(document.data()), record).code(), EErrorCode::ResourceExhausted);
    }

    void sizeIsLimited()
    {
        const auto documentOf = [](std::size_t size) {
            const std::size_t textLength = size - 5 - 7;
            return wrapped(BYTES("\x02"
                                 "a\0") +
                           littleEndian(textLength) + std::string(textLength - 1, 'x') + '\0');
        };
        QVERIFY(check(documentOf(MaxDocumentBytes)).isSuccess());
        QCOMPARE(check(documentOf(MaxDocumentBytes + 1)).code(), EErrorCode::ResourceExhausted);
    }

    void theNumberOfElementsIsLimited()
    {
        // Names are too long for so many in one document.
        const auto documentOf = [](std::size_t count) {
            std::string list;
            --count; // the list
            for (std::size_t item = 0; count > 0; ++item) {
                const std::size_t inner = std::min<std::size_t>(count - 1, 127);
                std::string elements;
                for (std::size_t i = 0; i < inner; ++i) {
                    elements += {'\x0A', static_cast<char>(i + 1), '\0'};
                }
                list += '\x03' + std::to_string(item) + '\0' + wrapped(elements);
                count -= 1 + inner;
            }
            return wrapped(BYTES("\x04"
                                 "a\0") +
                           wrapped(list));
        };
        QVERIFY(check(documentOf(MaxDocumentElements)).isSuccess());
        QCOMPARE(check(documentOf(MaxDocumentElements + 1)).code(), EErrorCode::ResourceExhausted);
    }
};

TEST_WITHOUT_WIDGETS(DocumentCheckTest)
#include "tst_document_check.moc"
