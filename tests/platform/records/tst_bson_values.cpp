// SPDX-License-Identifier: Apache-2.0
#include "support/BsonMacros.h"
#include "support/TestProgram.h"
#include "support/records/DocumentBytes.h"

#include <nvservice/Codec.h>

#include <limits>
#include <stdexcept>

namespace
{

std::string bytesOf(const bson::BSONObj& document)
{
    return {document.objdata(), static_cast<std::size_t>(document.objsize())};
}

bson::BSONObj viewOf(const std::string& bytes)
{
    return {bytes.data(), bytes.size()};
}

} // namespace

class BsonValuesTest : public QObject
{
    Q_OBJECT

private slots:
    void theEmptyDocumentIsFiveBytesAndOwned()
    {
        const bson::BSONObj empty;
        QCOMPARE(bytesOf(empty), support::documentBytes({}));
        QVERIFY(empty.isEmpty() && empty.isOwned());
        QCOMPARE(empty.nFields(), 0);
        QVERIFY(empty.firstElement().eoo());
        QVERIFY(bson::BSONObjBuilder().obj().binaryEqual(empty));
        QVERIFY(!BSON("a" << 1).isEmpty());
    }

    void bytesThatAreNoDocumentAreEmpty_data()
    {
        const support::DataRows<QByteArray> row("bytes");
        row("nothing", "");
        row("less than a document", QByteArray("\4\0\0\0", 4));
        row("longer than it says", QByteArray("\5\0\0\0\0\0", 6));
        row("shorter than it says", QByteArray("\7\0\0\0\x0A\0", 6));
        row("negative length", QByteArray("\xFB\xFF\xFF\xFF\0", 5));
        row("no zero at the end", QByteArray("\x08\0\0\0\x0A\0\0\1", 8));
    }
    void bytesThatAreNoDocumentAreEmpty()
    {
        QFETCH(QByteArray, bytes);
        QVERIFY(bson::BSONObj(bytes.constData(), static_cast<std::size_t>(bytes.size())).isEmpty());
        QVERIFY(bson::BSONObj(nullptr, 0).isEmpty());
    }

    void copiesShareTheBytesAndViewsReferToTheirs()
    {
        bson::BSONObj copy;
        {
            const bson::BSONObj document = BSON("a" << "text");
            QVERIFY(document.isOwned());
            copy = document;
            QCOMPARE(static_cast<const void*>(copy.objdata()), static_cast<const void*>(document.objdata()));
            QCOMPARE(static_cast<const void*>(document.getOwned().objdata()),
                     static_cast<const void*>(document.objdata()));
            QVERIFY(document.copy().objdata() != document.objdata());
        }
        QCOMPARE(std::string(copy.getField("a").str()), std::string("text"));

        std::string bytes = bytesOf(copy);
        const bson::BSONObj view = viewOf(bytes);
        QVERIFY(!view.isOwned());
        QCOMPARE(static_cast<const void*>(view.objdata()), static_cast<const void*>(bytes.data()));
        const bson::BSONObj owned = view.getOwned();
        QVERIFY(owned.isOwned());
        std::fill(bytes.begin(), bytes.end(), '\xFF');
        QVERIFY(owned.binaryEqual(copy));
    }

    void aDocumentThatIsMovedFromIsEmpty()
    {
        bson::BSONObj first = BSON("a" << 1);
        bson::BSONObj second = static_cast<bson::BSONObj&&>(first);
        QVERIFY(first.isEmpty() && first.isOwned());
        QVERIFY(second.hasField("a"));
        first = static_cast<bson::BSONObj&&>(second);
        QVERIFY(second.isEmpty() && second.isOwned());
        QVERIFY(first.hasField("a"));
    }

    void documentsAreEqualByTheirBytes()
    {
        QVERIFY(BSON("a" << 1).binaryEqual(BSON("a" << 1)));
        QVERIFY(!BSON("a" << 1).binaryEqual(BSON("a" << 2)));
        QVERIFY(!BSON("a" << 1).binaryEqual(BSON("a" << 1 << "b" << 1)));
        QVERIFY(!BSON("a" << 1).binaryEqual(BSON("a" << 1LL)));
    }

    void theFirstElementOfANameIsFoundAndOthersAreNone()
    {
        const bson::BSONObj document = BSON("a" << 1 << "ab" << 2 << "a" << 3 << "inner" << BSON("x" << 4));
        QCOMPARE(document.getField("a").numberLong(), std::int64_t(1));
        QCOMPARE(document.getField("ab").numberLong(), std::int64_t(2));
        QVERIFY(document.hasField("inner"));
        QVERIFY(!document.hasField("x"));
        QVERIFY(!document.hasField(""));
        QCOMPARE(document.getObjectField("inner").getField("x").numberLong(), std::int64_t(4));
        QVERIFY(document.getObjectField("a").isEmpty());
        const bson::BSONElement none = document.getField("absent");
        QVERIFY(none.eoo() && none.fieldName().empty() && none.value().empty());
    }

    void aValueOfAnotherTypeIsNothing()
    {
        const bson::BSONObj document = BSON("text" << "x" << "number" << 7 << "double" << 2.5 << "flag" << true);
        QCOMPARE(document.getField("text").numberLong(), std::int64_t(0));
        QCOMPARE(document.getField("text").numberDouble(), 0.0);
        QCOMPARE(document.getField("double").numberLong(), std::int64_t(0));
        QCOMPARE(document.getField("number").numberDouble(), 7.0);
        QVERIFY(!document.getField("number").boolean());
        QVERIFY(document.getField("flag").boolean());
        QVERIFY(document.getField("number").str().empty());
        QVERIFY(document.getField("text").binData().empty());
        QCOMPARE(document.getField("text").binDataType(), bson::BinDataGeneral);
        QVERIFY(document.getField("text").embeddedObject().isEmpty());
        for (const char* const name : {"number", "double"}) {
            QVERIFY(document.getField(name).isNumber());
        }
        for (const char* const name : {"text", "flag", "absent"}) {
            QVERIFY(!document.getField(name).isNumber());
        }
    }

    void iterationEndsBeforeAnElementThatDoesNotFit()
    {
        const std::string bytes = support::documentBytes(support::elementBytes(0x10, "a", support::littleEndian(1)) +
                                                         support::elementBytes(0x02, "b", support::littleEndian(99)));
        QCOMPARE(viewOf(bytes).nFields(), 1);
        QVERIFY(!viewOf(bytes).hasField("b"));
        QCOMPARE(viewOf(support::documentBytes(support::elementBytes(0x02, "a", support::littleEndian(0)))).nFields(),
                 0);
        bson::BSONObjIterator it(viewOf(bytes));
        QCOMPARE(it.next().numberLong(), std::int64_t(1));
        QVERIFY(!it.more());
        QVERIFY(it.next().eoo() && it.next().eoo());
    }

    void nestedBuildersWriteIntoOneBuffer()
    {
        using namespace support;
        bson::BSONObjBuilder builder;
        {
            bson::BSONObjBuilder inner(builder.subobjStart("inner"));
            inner.append("n", 1);
            bson::BSONArrayBuilder list(inner.subarrayStart("list"));
            list.append("x").append(BSON("y" << 2)).appendNull();
        }
        builder.append("after", true);
        const std::string number = elementBytes(0x10, "y", littleEndian(2));
        const std::string list = elementBytes(0x02, "0", textBytes("x")) +
                                 elementBytes(0x03, "1", documentBytes(number)) + elementBytes(0x0A, "2", {});
        const std::string inner =
            elementBytes(0x10, "n", littleEndian(1)) + elementBytes(0x04, "list", documentBytes(list));
        QCOMPARE(bytesOf(builder.obj()),
                 documentBytes(elementBytes(0x03, "inner", documentBytes(inner)) + elementBytes(0x08, "after", "\1")));
    }

    void aDocumentThatIsDoneIsAViewOfTheBuffer()
    {
        bson::BufBuilder buffer;
        bson::BSONObjBuilder builder(buffer);
        builder.append("a", 1);
        const bson::BSONObj view = builder.done();
        QVERIFY(!view.isOwned());
        QVERIFY(view.binaryEqual(BSON("a" << 1)));
        const bson::BSONObj owned = builder.obj();
        QVERIFY(owned.isOwned() && owned.binaryEqual(view));
        QCOMPARE(buffer.len(), view.objsize());
    }

    void elementsOfOtherDocumentsAreAppended()
    {
        const bson::BSONObj from = BSON("a" << 1 << "b" << "text");
        bson::BSONObjBuilder builder;
        builder.appendElements(from).appendElements({}).append(from.getField("b"));
        builder.appendAs(from.getField("a"), "c").append(from.getField("absent"));
        QVERIFY(builder.obj().binaryEqual(BSON("a" << 1 << "b" << "text" << "b" << "text" << "c" << 1)));
    }

    void aNameEndsAtItsFirstZero()
    {
        bson::BSONObjBuilder builder;
        builder.append(std::string_view("a\0b", 3), 1).append(std::string_view("\0b", 2), 2);
        QVERIFY(builder.obj().binaryEqual(BSON("a" << 1 << "" << 2)));
    }

    void moreThanADocumentCanHoldIsNotWritten()
    {
        const std::string some(1024, 'x');
        bson::BSONObjBuilder builder;
        builder.append("a", some);
        // Only the size counts, because nothing is read.
        const std::string_view tooMuch(some.data(), std::numeric_limits<std::int32_t>::max() - some.size());
        QVERIFY_EXCEPTION_THROWN(builder.append("b", tooMuch), std::length_error);
        QVERIFY(builder.obj().binaryEqual(BSON("a" << some)));
    }

    void aDocumentIsShownAsText()
    {
        QCOMPARE(bson::BSONObj().toString(), std::string("{}"));
        QCOMPARE(bson::BSONObj().toString(true), std::string("[]"));
        QCOMPARE(BSON_ARRAY(1 << "x").toString(true), std::string("[ 1, \"x\" ]"));
        QCOMPARE(BSON_ARRAY(1 << 2).toString(), std::string("{ 0: 1, 1: 2 }"));
        QCOMPARE(BSON("原因" << "已锁定" << "list" << BSON_ARRAY(BSON("n" << 1.0) << true)).toString(),
                 std::string("{ 原因: \"已锁定\", list: [ { n: 1.0 }, true ] }"));
    }

    void longValuesAreShortenedUnlessInFull()
    {
        const auto shown = [](std::size_t length, bool full) {
            return BSON("t" << std::string(length, 'x')).toString(false, full);
        };
        QCOMPARE(shown(159, false), "{ t: \"" + std::string(159, 'x') + "\" }");
        QCOMPARE(shown(160, false), "{ t: \"" + std::string(150, 'x') + "...\" }");
        QCOMPARE(shown(160, true), "{ t: \"" + std::string(160, 'x') + "\" }");
        // No half of a character.
        QCOMPARE(BSON("t" << std::string(149, 'x') + "甲" + std::string(20, 'x')).toString(),
                 "{ t: \"" + std::string(149, 'x') + "...\" }");
        bson::BSONObjBuilder builder;
        builder.appendValue("c", bson::Code, support::textBytes(std::string(80, 'x')));
        builder.appendBinData("b", std::string(81, '\xAB'));
        const bson::BSONObj document = builder.obj();
        const auto repeated = [](int count) { return QByteArray("AB").repeated(count).toStdString(); };
        QCOMPARE(document.toString(), "{ c: " + std::string(70, 'x') + "..., b: BinData(0, " + repeated(80) + "...) }");
        QCOMPARE(document.toString(false, true),
                 "{ c: " + std::string(80, 'x') + ", b: BinData(0, " + repeated(81) + ") }");
    }

    void textEndsAtTheDepthLimit()
    {
        const auto shown = [](std::size_t depth) { return viewOf(support::nested(depth)).toString(); };
        QVERIFY(shown(nvservice::MaxDocumentDepth).find("...") == std::string::npos);
        QVERIFY(shown(nvservice::MaxDocumentDepth + 1).find("a: ...") != std::string::npos);
        QCOMPARE(shown(100000).size(), shown(nvservice::MaxDocumentDepth + 1).size());

        bson::BSONArrayBuilder beside;
        for (int i = 0; i <= nvservice::MaxDocumentDepth; ++i) {
            beside.append(BSON("a" << i));
        }
        QVERIFY(beside.arr().toString(true).find("...") == std::string::npos);
    }
};

TEST_WITHOUT_WIDGETS(BsonValuesTest)
#include "tst_bson_values.moc"
