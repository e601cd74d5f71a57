// SPDX-License-Identifier: Apache-2.0
#include "support/DataRows.h"
#include "support/GuardedBytes.h"
#include "support/TestProgram.h"
#include "support/records/DocumentBytes.h"

#include <nvservice/Codec.h>

#include <bson/bson.h>

using namespace support;
using nvservice::checkDocument;

namespace
{

std::string unhex(const QByteArray& digits)
{
    return QByteArray::fromHex(digits).toStdString();
}

/// Reads everything that can be read. True if that was the whole document.
bool isReadWhole(const bson::BSONObj& document)
{
    bool isWhole = true;
    std::size_t bytes = bson::ShortestDocument;
    for (bson::BSONObjIterator it(document); it.more();) {
        const bson::BSONElement element = it.next();
        bytes += 2 + std::string(element.fieldName()).size() + std::string(element.value()).size();
        const std::string texts = std::string(element.str()) + std::string(element.binData());
        isWhole = isReadWhole(element.embeddedObject()) && texts.size() <= element.value().size() && isWhole;
    }
    return isWhole && bytes == static_cast<std::size_t>(document.objsize());
}

bson_t viewed(const bson::BSONObj& document)
{
    bson_t view;
    if (!bson_init_static(&view, reinterpret_cast<const std::uint8_t*>(document.objdata()),
                          static_cast<std::size_t>(document.objsize()))) {
        qFatal("libbson reads no document");
    }
    return view;
}

} // namespace

/// One document for each type and for each special value of it. The values stand as the bytes of the format
/// (bsonspec.org), so that no builder is needed to make them.
class BsonTypesTest : public QObject
{
    Q_OBJECT

private slots:
    void everyTypeIsReadWrittenAndShown_data()
    {
        const DataRows<int, QByteArray, QString> row("type", "value", "text");
        row("double 1", 0x01, "000000000000F03F", "1.0");
        row("double -1.5", 0x01, "000000000000F8BF", "-1.5");
        row("double 0", 0x01, "0000000000000000", "0.0");
        row("double minus 0", 0x01, "0000000000000080", "-0.0");
        row("double 0.1", 0x01, "9A9999999999B93F", "0.1");
        row("large double", 0x01, "9C7500883CE4377E", "1e+300");
        row("smallest double", 0x01, "0100000000000000", "4.940656458412465e-324");
        row("infinite double", 0x01, "000000000000F07F", "inf");
        row("negative infinite double", 0x01, "000000000000F0FF", "-inf");
        row("no number", 0x01, "000000000000F87F", "nan");
        row("no number with other bits", 0x01, "120000000000F87F", "nan");
        row("empty text", 0x02, "0100000000", "\"\"");
        row("text", 0x02, "020000006200", "\"b\"");
        row("text of two-byte characters", 0x02, "05000000C3A9C3A900", "\"éé\"");
        row("text of three-byte characters", 0x02, "07000000E29886E2988600", "\"☆☆\"");
        row("text of four-byte characters", 0x02, "05000000F09F92B000", "\"💰\"");
        row("text with quotes", 0x02, "050000002261225C00", "\"\"a\"\\\"");
        row("empty document", 0x03, "0500000000", "{}");
        row("document with an empty name", 0x03, "0D000000020002000000620000", "{ : \"b\" }");
        row("document in a document", 0x03,
            "140000000362000C00000010610001000000"
            "0000",
            "{ b: { a: 1 } }");
        row("empty array", 0x04, "0500000000", "[]");
        row("array", 0x04, "0C0000001030000A00000000", "[ 10 ]");
        row("empty binary", 0x05, "0000000000", "BinData(0, )");
        row("binary", 0x05, "0200000000FFFF", "BinData(0, FFFF)");
        row("function", 0x05, "0200000001FFFF", "BinData(1, FFFF)");
        row("old binary", 0x05, "060000000202000000FFFF", "BinData(2, 02000000FFFF)");
        row("old unique id", 0x05,
            "1000000003"
            "73FFD26444B34C6990E8E7D1DFC035D4",
            "BinData(3, 73FFD26444B34C6990E8E7D1DFC035D4)");
        row("unique id", 0x05,
            "1000000004"
            "73FFD26444B34C6990E8E7D1DFC035D4",
            "BinData(4, 73FFD26444B34C6990E8E7D1DFC035D4)");
        row("binary of one's own", 0x05, "0200000080FFFF", "BinData(128, FFFF)");
        row("undefined", 0x06, "", "undefined");
        row("object id", 0x07, "56E1FC72E0C917E9C4714161", "ObjectId('56e1fc72e0c917e9c4714161')");
        row("false", 0x08, "00", "false");
        row("true", 0x08, "01", "true");
        row("date", 0x09, "C4D8D6CC3B010000", "new Date(1356351330500)");
        row("date before 1970", 0x09, "C33CE7B9BDFFFFFF", "new Date(-284643869501)");
        row("last date", 0x09, "FFFFFFFFFFFFFF7F", "new Date(9223372036854775807)");
        row("null", 0x0A, "", "null");
        row("empty pattern", 0x0B, "0000", "//");
        row("pattern", 0x0B, "61626300696D00", "/abc/im");
        row("pattern with a slash", 0x0B, "612F620000", "/a/b/");
        row("reference", 0x0C,
            "020000006200"
            "56E1FC72E0C917E9C4714161",
            "DBRef('b',56e1fc72e0c917e9c4714161)");
        row("code", 0x0D, "020000006200", "b");
        row("symbol", 0x0E, "020000006200", "\"b\"");
        row("int32 0", 0x10, "00000000", "0");
        row("int32 -1", 0x10, "FFFFFFFF", "-1");
        row("smallest int32", 0x10, "00000080", "-2147483648");
        row("largest int32", 0x10, "FFFFFF7F", "2147483647");
        row("timestamp", 0x11, "2A00000015CD5B07", "Timestamp 123456789|42");
        row("timestamp with high bits", 0x11, "FFFFFFFFFFFFFFFF", "Timestamp 4294967295|4294967295");
        row("int64 -1", 0x12, "FFFFFFFFFFFFFFFF", "-1");
        row("smallest int64", 0x12, "0000000000000080", "-9223372036854775808");
        row("largest int64", 0x12, "FFFFFFFFFFFFFF7F", "9223372036854775807");
        row("least key", 0xFF, "", "MinKey");
        row("greatest key", 0x7F, "", "MaxKey");
    }
    void everyTypeIsReadWrittenAndShown()
    {
        QFETCH(int, type);
        QFETCH(QByteArray, value);
        QFETCH(QString, text);
        const std::string bytes = documentBytes(elementBytes(static_cast<unsigned char>(type), "x", unhex(value)));
        QCOMPARE(checkDocument(bytes.data(), bytes.size()).errorMsg(), std::string());

        const GuardedBytes guarded(bytes);
        const bson::BSONObj document(guarded.data(), guarded.size());
        QCOMPARE(document.nFields(), 1);
        const bson::BSONElement element = document.firstElement();
        QCOMPARE(static_cast<int>(element.type()), type);
        QCOMPARE(std::string(element.fieldName()), std::string("x"));
        QCOMPARE(std::string(element.value()), unhex(value));
        QCOMPARE(QString::fromStdString(document.toString()), "{ x: " + text + " }");

        bson::BSONObjBuilder builder;
        builder.append(element);
        QVERIFY(builder.obj().binaryEqual(document));
        bson::BSONObj repaired;
        QVERIFY(nvservice::repairDocument(bytes.data(), bytes.size(), repaired).isSuccess());
        QVERIFY(repaired.binaryEqual(document));

        const bson_t view = viewed(document);
        bson_iter_t other;
        QVERIFY(bson_iter_init(&other, &view) && bson_iter_next(&other));
        QCOMPARE(static_cast<int>(bson_iter_type(&other)), type);
        QCOMPARE(std::string(bson_iter_key(&other)), std::string("x"));
        QVERIFY(!bson_iter_next(&other));
    }

    void anElementThatIsCutIsNotRead_data() { everyTypeIsReadWrittenAndShown_data(); }
    void anElementThatIsCutIsNotRead()
    {
        QFETCH(int, type);
        QFETCH(QByteArray, value);
        const std::string whole = unhex(value);
        for (std::size_t size = 0; size < whole.size(); ++size) {
            const std::string cut = whole.substr(0, size);
            const std::string bytes = documentBytes(elementBytes(static_cast<unsigned char>(type), "x", cut));
            QCOMPARE(checkDocument(bytes.data(), bytes.size()).code(), utils::EErrorCode::Malformed);
            const GuardedBytes guarded(bytes);
            QCOMPARE(bson::BSONObj(guarded.data(), guarded.size()).nFields(), 0);
        }
    }

    void valuesAreThoseThatLibbsonReads()
    {
        bson::BSONObjBuilder builder;
        builder.append("double", -1.25).append("text", std::string("a\0b", 3)).append("flag", true);
        builder.append("number", -7).append("wide", -5000000000LL).appendNull("null");
        builder.appendBinData("binary", {"\0\1\2", 3}, bson::bdtCustom);
        {
            bson::BSONArrayBuilder list(builder.subarrayStart("list"));
            list.append(1).append("x").appendNull();
        }
        const bson::BSONObj document = builder.obj();
        const bson_t view = viewed(document);
        QVERIFY(bson_validate(
            &view, static_cast<bson_validate_flags_t>(BSON_VALIDATE_UTF8 | BSON_VALIDATE_UTF8_ALLOW_NULL), nullptr));
        bson_iter_t element;
        QVERIFY(bson_iter_init_find(&element, &view, "double"));
        QCOMPARE(bson_iter_double(&element), -1.25);
        std::uint32_t length = 0;
        QVERIFY(bson_iter_init_find(&element, &view, "text"));
        const char* const text = bson_iter_utf8(&element, &length);
        QCOMPARE(std::string(text, length), std::string("a\0b", 3));
        QVERIFY(bson_iter_init_find(&element, &view, "flag") && bson_iter_bool(&element));
        QVERIFY(bson_iter_init_find(&element, &view, "number"));
        QCOMPARE(bson_iter_int32(&element), -7);
        QVERIFY(bson_iter_init_find(&element, &view, "wide"));
        QCOMPARE(bson_iter_int64(&element), -5000000000LL);
        QVERIFY(bson_iter_init_find(&element, &view, "null") && BSON_ITER_HOLDS_NULL(&element));
        bson_subtype_t subtype{};
        const std::uint8_t* binary = nullptr;
        QVERIFY(bson_iter_init_find(&element, &view, "binary"));
        bson_iter_binary(&element, &subtype, &length, &binary);
        QCOMPARE(static_cast<int>(subtype), static_cast<int>(bson::bdtCustom));
        QCOMPARE(std::string(reinterpret_cast<const char*>(binary), length), std::string("\0\1\2", 3));
        bson_iter_t item;
        QVERIFY(bson_iter_init(&element, &view) && bson_iter_find_descendant(&element, "list.1", &item));
        QCOMPARE(std::string(bson_iter_utf8(&item, nullptr)), std::string("x"));
    }

    void whatLibbsonWritesIsRead()
    {
        bson_t written = BSON_INITIALIZER;
        bson_append_double(&written, "double", -1, -1.25);
        bson_append_utf8(&written, "text", -1, "a\0b", 3);
        bson_append_bool(&written, "flag", -1, true);
        bson_append_int32(&written, "number", -1, -7);
        bson_append_int64(&written, "wide", -1, -5000000000LL);
        bson_append_binary(&written, "binary", -1, BSON_SUBTYPE_USER, reinterpret_cast<const std::uint8_t*>("\0\1\2"),
                           3);
        bson_t inner;
        bson_append_document_begin(&written, "inner", -1, &inner);
        bson_append_int32(&inner, "n", -1, 5);
        bson_append_document_end(&written, &inner);
        const bson::BSONObj document =
            bson::BSONObj(reinterpret_cast<const char*>(bson_get_data(&written)), written.len).getOwned();
        bson_destroy(&written);
        QCOMPARE(document.getField("double").numberDouble(), -1.25);
        QCOMPARE(std::string(document.getField("text").str()), std::string("a\0b", 3));
        QVERIFY(document.getField("flag").boolean());
        QCOMPARE(document.getField("number").numberLong(), std::int64_t(-7));
        QCOMPARE(document.getField("wide").numberLong(), std::int64_t(-5000000000));
        QCOMPARE(document.getField("binary").binDataType(), bson::bdtCustom);
        QCOMPARE(std::string(document.getField("binary").binData()), std::string("\0\1\2", 3));
        QCOMPARE(document.getObjectField("inner").getField("n").numberLong(), std::int64_t(5));
    }

    void noReadLeavesADocumentWithLies()
    {
        // Every byte of a document of all shapes takes every value that lengths, types and ends are made of.
        const std::string whole = documentBytes(
            elementBytes(0x03, "d", documentBytes(elementBytes(0x02, "t", textBytes("x")))) +
            elementBytes(0x04, "a", documentBytes(elementBytes(0x10, "0", littleEndian(1)))) +
            elementBytes(0x05, "b", littleEndian(2) + '\0' + "xy") + elementBytes(0x0B, "p", std::string("x\0i\0", 4)) +
            elementBytes(0x0C, "r", textBytes("x") + "0123456789ab") + elementBytes(0x12, "n", "12345678"));
        for (std::size_t at = 4; at + 1 < whole.size(); ++at) {
            for (int value = 0; value < 256; ++value) {
                std::string lying = whole;
                lying[at] = static_cast<char>(value);
                const GuardedBytes guarded(lying);
                const bson::BSONObj document(guarded.data(), guarded.size());
                const bool isRight = checkDocument(guarded.data(), guarded.size()).isSuccess();
                QVERIFY(isReadWhole(document) || !isRight);
                QVERIFY(!document.toString().empty());
            }
        }
    }
};

TEST_WITHOUT_WIDGETS(BsonTypesTest)
#include "tst_bson_types.moc"
