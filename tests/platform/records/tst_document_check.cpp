// SPDX-License-Identifier: Apache-2.0
#include "support/GuardedBytes.h"
#include "support/TestProgram.h"
#include "support/records/DocumentBytes.h"

#include <nvservice/Codec.h>

using namespace nvservice;
using namespace support;
using utils::EErrorCode;

namespace
{

utils::NVError check(const std::string& document)
{
    const GuardedBytes bytes(document);
    return checkDocument(bytes.data(), bytes.size());
}

} // namespace

class DocumentCheckTest : public QObject
{
    Q_OBJECT

private slots:
    void everyKindOfDamageIsRefusedWithItsReason_data()
    {
        const support::DataRows<QByteArray, QString> add("document", "reason");
        const auto whole = [&add](const char* name, const std::string& bytes, const char* reason) {
            add(name, QByteArray(bytes.data(), static_cast<int>(bytes.size())), reason);
        };
        whole("nothing", "", "文档长度不符");
        whole("shorter than a length", littleEndian(5).substr(0, 3), "文档长度不符");
        whole("longer than it says", littleEndian(5) + '\0' + '\0', "文档长度不符");
        whole("shorter than it says", littleEndian(6) + '\0', "文档长度不符");
        whole("negative length", littleEndian(0xFFFFFFFF) + '\0', "文档长度不符");
        whole("no ending zero", littleEndian(5) + '\1', "文档没有结束符");
        whole("name without end",
              documentBytes("\x10"
                            "abc"),
              "元素名没有结束");
        whole("name that ends with the document",
              documentBytes("\x0A"
                            "a"),
              "元素名没有结束");
        whole("type alone", documentBytes("\x0A"), "元素名没有结束");

        const auto value = [&whole](const char* name, unsigned char type, const std::string& bytes,
                                    const char* reason) {
            whole(name, documentBytes(elementBytes(type, "a", bytes)), reason);
        };
        value("zero before the end", 0x00, {}, "元素类型未知");
        value("decimal of 128 bits", 0x13, "0123456789abcdef", "元素类型未知");
        value("code with scope", 0x0F, littleEndian(15) + textBytes("x") + documentBytes({}), "元素类型未知");
        value("type between those that are known", 0x14, {}, "元素类型未知");
        value("type beyond all", 0x80, {}, "元素类型未知");
        value("double cut", 0x01, "1234567", "数据不完整");
        value("date cut", 0x09, "1234567", "数据不完整");
        value("timestamp cut", 0x11, "1234567", "数据不完整");
        value("int64 cut", 0x12, "1234567", "数据不完整");
        value("int32 cut", 0x10, "123", "数据不完整");
        value("object id cut", 0x07, "0123456789a", "数据不完整");
        value("flag that is neither 0 nor 1", 0x08, "\2", "布尔值无效");
        value("negative flag", 0x08, "\xFF", "布尔值无效");
        value("flag cut", 0x08, {}, "布尔值无效");
        for (const unsigned char type : {0x02, 0x0D, 0x0E}) {
            const QByteArray kind = "type " + QByteArray::number(type, 16);
            value(kind + ": length cut", type, "\2", "数据不完整");
            value(kind + ": length 0", type, littleEndian(0) + '\0', "文本长度超出文档");
            value(kind + ": negative length", type, littleEndian(0xFFFFFFFF) + "x" + '\0', "文本长度超出文档");
            value(kind + ": beyond the document", type, littleEndian(127) + "x" + '\0', "文本长度超出文档");
            value(kind + ": takes the ending zero", type, littleEndian(2) + "x", "文本长度超出文档");
            value(kind + ": without end", type, littleEndian(2) + "xx", "文本没有结束符");
            value(kind + ": no UTF-8", type, textBytes("\xE4\xB8"), "文本不是 UTF-8");
        }
        value("binary cut", 0x05, littleEndian(0), "数据不完整");
        value("binary beyond the document", 0x05, littleEndian(127) + '\0' + "x", "二进制长度超出文档");
        value("binary that takes the ending zero", 0x05, littleEndian(2) + '\0' + "x", "二进制长度超出文档");
        value("binary of negative length", 0x05, littleEndian(0xFFFFFFFF) + '\0' + "x", "二进制长度超出文档");
        value("old binary with a longer inner length", 0x05, littleEndian(5) + '\2' + littleEndian(2) + "x",
              "二进制长度不符");
        value("old binary with a shorter inner length", 0x05, littleEndian(5) + '\2' + littleEndian(0) + "x",
              "二进制长度不符");
        value("old binary without inner length", 0x05, littleEndian(1) + '\2' + "x", "二进制长度不符");
        value("pattern without end", 0x0B, "x", "正则表达式没有结束");
        value("pattern without options", 0x0B, std::string("x\0y", 3), "正则表达式没有结束");
        value("pattern that is no UTF-8", 0x0B, std::string("\x80\0i\0", 4), "文本不是 UTF-8");
        value("options that are no UTF-8", 0x0B, std::string("x\0\x80\0", 4), "文本不是 UTF-8");
        value("reference of length 0", 0x0C, littleEndian(0) + "0123456789ab", "文本长度超出文档");
        value("reference without end", 0x0C, littleEndian(1) + "x0123456789ab", "文本没有结束符");
        value("reference with its id cut", 0x0C, textBytes("x") + "0123456789a", "数据不完整");
        for (const unsigned char type : {0x03, 0x04}) {
            const QByteArray kind = type == 0x03 ? "document: " : "array: ";
            value(kind + "cut", type, littleEndian(5), "数据不完整");
            value(kind + "beyond its document", type, littleEndian(127) + '\0', "内嵌文档长度超出文档");
            value(kind + "of negative length", type, littleEndian(0xFFFFFFFF) + '\0', "内嵌文档长度超出文档");
            value(kind + "too short", type, littleEndian(4) + '\0', "内嵌文档长度超出文档");
            value(kind + "without end", type, littleEndian(5) + '\1', "内嵌文档没有结束符");
        }
        value("array that does not count from 0", 0x04, documentBytes(elementBytes(0x0A, "1", {})),
              "数组元素的序号不符");
        value("element beyond the end of its document", 0x03,
              littleEndian(11) + elementBytes(0x12, "b",
                                              std::string("123\0"
                                                          "45678",
                                                          9)),
              "数据不完整");
        whole("name that is no UTF-8", documentBytes(elementBytes(0x0A, "a\xC0\x80", {})), "字段名不是 UTF-8");
        whole("name twice", documentBytes(elementBytes(0x0A, "a", {}) + elementBytes(0x0A, "a", {})), "字段重复");
    }
    void everyKindOfDamageIsRefusedWithItsReason()
    {
        QFETCH(QByteArray, document);
        QFETCH(QString, reason);
        const GuardedBytes bytes(document.toStdString());
        const utils::NVError error = checkDocument(bytes.data(), bytes.size());
        QCOMPARE(error.code(), EErrorCode::Malformed);
        QCOMPARE(QString::fromStdString(error.errorMsg()).section('(', 0, 0), "数据格式错误: " + reason);
        // Whoever forgets to check reads nothing beyond the bytes.
        QVERIFY(!bson::BSONObj(bytes.data(), bytes.size()).toString().empty());
    }

    void noBytesAtAllAreRefused() { QCOMPARE(checkDocument(nullptr, 0).code(), EErrorCode::Malformed); }

    void theBrokenElementIsNamedByItsPath()
    {
        const std::string inner = documentBytes(elementBytes(0x08, "flag", "\2"));
        QCOMPARE(check(documentBytes(elementBytes(0x0A, "first", {}) + elementBytes(0x03, "outer", inner))).errorMsg(),
                 std::string("数据格式错误: 布尔值无效(字段 outer.flag)"));
    }

    void aNameFromOutsideIsShownHarmlessly()
    {
        const std::string longName(1000, 'x');
        const std::string text = check(documentBytes(elementBytes(0x08, "\n\xFF" + longName, "\2"))).errorMsg();
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
        QCOMPARE(decodeRecord(bson::BSONObj(document.data(), document.size()), record).code(),
                 EErrorCode::ResourceExhausted);
    }

    void sizeIsLimited()
    {
        const auto documentOf = [](std::size_t size) {
            const std::size_t besides = documentBytes(elementBytes(0x02, "a", textBytes({}))).size();
            return documentBytes(elementBytes(0x02, "a", textBytes(std::string(size - besides, 'x'))));
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
                list += '\x03' + std::to_string(item) + '\0' + documentBytes(elements);
                count -= 1 + inner;
            }
            return documentBytes(elementBytes(0x04, "a", documentBytes(list)));
        };
        QVERIFY(check(documentOf(MaxDocumentElements)).isSuccess());
        QCOMPARE(check(documentOf(MaxDocumentElements + 1)).code(), EErrorCode::ResourceExhausted);
    }
};

TEST_WITHOUT_WIDGETS(DocumentCheckTest)
#include "tst_document_check.moc"
