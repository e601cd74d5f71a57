// SPDX-License-Identifier: Apache-2.0
#include "RecordSamples.h"
#include "support/DataRows.h"
#include "support/TestProgram.h"

#include <nvservice/CQueryKey.h>
#include <nvservice/QueryCondition.h>
#include <nvservice/Utf8.h>

#include <rapidcheck.h>

#include <algorithm>

using namespace nvservice;
namespace QueryCondition = nvservice::QueryCondition;

namespace
{

std::string textWithoutNul()
{
    std::string text = samples::randomText();
    text.erase(std::remove(text.begin(), text.end(), '\0'), text.end());
    return text;
}

} // namespace

class QueryKeyTest : public QObject
{
    Q_OBJECT

private slots:
    void conditionsAreWrittenInTheOrderOfTheirNames()
    {
        QCOMPARE(CQueryKey().text(), std::string());
        CQueryKey key;
        key.set(QueryCondition::User, "李 岚&a=b%").set(QueryCondition::Group, 17).set(QueryCondition::Cursor, "");
        QCOMPARE(key.text(), std::string("cursor=&group=17&user=%E6%9D%8E%20%E5%B2%9A%26a%3Db%25"));
        QCOMPARE(key.remove(QueryCondition::User).set(QueryCondition::Group, -2).text(),
                 std::string("cursor=&group=-2"));
    }

    void whatIsWrittenIsReadAgain()
    {
        QVERIFY(rc::check([] {
            CQueryKey key;
            const int count = *rc::gen::inRange(0, 5);
            for (int i = 0; i < count; ++i) {
                key.set("n" + textWithoutNul(), textWithoutNul());
            }
            const std::string text = key.text();
            RC_PRE(text.size() <= CQueryKey::MaxTextBytes);
            CQueryKey read;
            RC_ASSERT(CQueryKey::read(text, read).isSuccess());
            RC_ASSERT(read.conditions() == key.conditions());
        }));
    }

    /// Whatever the bytes are: they are refused, or they are conditions that can be written and read again.
    void anyBytesAreRefusedOrUnderstood()
    {
        QVERIFY(rc::check([] {
            const std::string text = *rc::gen::container<std::string>(rc::gen::weightedOneOf<char>(
                {{3, rc::gen::element('&', '=', '%', 'a', '4', '1', 'F')}, {1, rc::gen::arbitrary<char>()}}));
            CQueryKey key;
            key.set("stale", "value");
            if (!CQueryKey::read(text, key).isSuccess()) {
                RC_ASSERT(key.conditions().empty());
                return;
            }
            for (const auto& [name, value] : key.conditions()) {
                RC_ASSERT(!name.empty());
                for (const std::string& each : {name, value}) {
                    RC_ASSERT(isUtf8(each));
                    RC_ASSERT(each.find('\0') == std::string::npos);
                }
            }
            CQueryKey again;
            RC_ASSERT(CQueryKey::read(key.text(), again).isSuccess());
            RC_ASSERT(again.conditions() == key.conditions());
        }));
    }

    void textsAreReadOrRefused_data()
    {
        const support::DataRows<QByteArray, bool> row("text", "isRead");
        row("nothing", "", true);
        row("a condition without a value", "user=", true);
        row("unencoded text", "user=李 岚+=", true);
        row("small hexadecimal digits", "user=%e6%9d%8e", true);
        row("as long as may be", "user=" + QByteArray(CQueryKey::MaxTextBytes - 5, 'a'), true);
        row("too long", "user=" + QByteArray(CQueryKey::MaxTextBytes - 4, 'a'), false);
        row("no equals sign", "user", false);
        row("no name", "=li", false);
        row("an encoded name that is empty", "group=1&=", false);
        row("nothing at the end", "user=li&", false);
        row("nothing at the beginning", "&user=li", false);
        row("a name twice", "user=li&user=li", false);
        row("a name twice, once encoded", "user=li&%75ser=li", false);
        row("half an encoded byte", "user=%4", false);
        row("half an encoded byte before a condition", "user=%4&group=1", false);
        row("no hexadecimal digits", "user=%G1", false);
        row("a sign is no hexadecimal digit", "user=%+1", false);
        row("a minus is no hexadecimal digit", "user=%-1", false);
        row("bytes that are not UTF-8", "user=\xE6\x9D", false);
        row("encoded bytes that are not UTF-8", "user=%E6%9D", false);
        row("a NUL character", "user=%00", false);
        row("a NUL byte", QByteArray("user=\0", 6), false);
    }
    void textsAreReadOrRefused()
    {
        QFETCH(QByteArray, text);
        QFETCH(bool, isRead);
        CQueryKey key;
        const utils::NVError error = CQueryKey::read(text.toStdString(), key);
        QCOMPARE(error.isSuccess(), isRead);
        if (!isRead) {
            QCOMPARE(error.code(), utils::EErrorCode::InvalidValue);
            QVERIFY(!error.errorMsg().empty());
        }
    }

    void numbersAreDecimalNumbersAlone_data()
    {
        const support::DataRows<QByteArray, bool> row("text", "isNumber");
        row("zero", "0", true);
        row("the largest", "9223372036854775807", true);
        row("the smallest", "-9223372036854775808", true);
        row("too large", "9223372036854775808", false);
        row("nothing", "", false);
        row("a leading zero", "01", false);
        row("a plus", "+1", false);
        row("minus zero", "-0", false);
        row("a blank", " 1", false);
        row("something behind it", "1x", false);
    }
    void numbersAreDecimalNumbersAlone()
    {
        QFETCH(QByteArray, text);
        QFETCH(bool, isNumber);
        const std::optional<std::int64_t> number = CQueryKey().set("n", text.toStdString()).number("n");
        QCOMPARE(number.has_value(), isNumber);
        QVERIFY(!isNumber || QByteArray::number(qlonglong(*number)) == text);
        QVERIFY(!CQueryKey().set("n", text.toStdString()).number("m"));
    }
};

TEST_WITHOUT_WIDGETS(QueryKeyTest)
#include "tst_query_key.moc"
