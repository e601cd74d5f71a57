// SPDX-License-Identifier: Apache-2.0
#include "service/ServiceFixture.h"
#include "support/BsonMacros.h"
#include "support/TestProgram.h"

#include <nvservice/Utf8.h>

using namespace testservice;

class GroupRulesTest : public ServiceTest
{
    Q_OBJECT

private slots:
    void namesThatDifferInCaseOrTrailingBlankAreDifferent()
    {
        for (const char* name : {"Alpha", "alpha", "alpha ", " alpha"}) {
            COMPARE_CODE(m_fixture->operate(EZvDataOperation::Add, group(name, First, {future("8001")})),
                         EErrorCode::Success);
        }
        QCOMPARE(m_fixture->number("SELECT count(*) FROM account_group WHERE name = 'alpha '"), 1);
    }

    void badNameIsRefused_data()
    {
        const support::DataRows<QByteArray, bool> row("name", "good");
        const auto chinese = [](int count) { return QString(count, QChar(0x7ec4)).toUtf8(); };
        row("empty", {}, false);
        row("blanks", "  \t ", false);
        row("ideographic blanks", QString(3, QChar(0x3000)).toUtf8(), false);
        row("tab inside", "a\tb", false);
        row("line end", "a\n", false);
        row("zero byte", QByteArray("a\0b", 3), false);
        row("right-to-left override",
            "a\xE2\x80\xAE"
            "b",
            false);
        row("zero width blank", "a\xE2\x80\x8B", false);
        row("Hangul filler", "\u3164", false);
        row("half-width Hangul filler", "\uffa0", false);
        row("braille without dots", "\u2800 \u2800", false);
        row("filler inside", "甲\u115f组", false);
        row("variation selector", "甲组\ufe0f", false);
        row("mark alone", "\u0301", false);
        row("letter with a mark", "e\u0301", true);
        row("not UTF-8", "a\xFF", false);
        row("overlong UTF-8", "a\xC0\x80", false);
        row("64 characters", chinese(64), true);
        row("65 characters", chinese(65), false);
        row("huge", QByteArray(1000000, 'x'), false);
        row("one character", "A", true);
        row("beyond the basic plane", "\xF0\xA0\xAE\xB7", true);
        row("quotes and percent", "'; DROP TABLE account_group; -- \"%_", true);
    }
    void badNameIsRefused()
    {
        QFETCH(QByteArray, name);
        QFETCH(bool, good);
        const auto add = group(name.toStdString(), First, {future("8001")});
        const service::Reply added = m_fixture->operate(EZvDataOperation::Add, add);
        const GroupPtr old = m_fixture->storedGroup("旧");
        if (good) {
            COMPARE_CODE(added, EErrorCode::Success);
            QCOMPARE(m_fixture->text("SELECT name FROM account_group WHERE group_id = 1"), name.toStdString());
            return;
        }
        const EErrorCode expected = name.size() > 4096                      ? EErrorCode::ResourceExhausted
                                    : nvservice::isUtf8(name.toStdString()) ? EErrorCode::InvalidValue
                                                                            : EErrorCode::Malformed;
        COMPARE_CODE(added, expected);
        old->groupName = name.toStdString();
        COMPARE_CODE(m_fixture->operate(EZvDataOperation::Modify, old), expected);
        QCOMPARE(m_fixture->number("SELECT count(*) FROM account_group"), 1);
        QCOMPARE(m_fixture->number("SELECT count(*) FROM audit WHERE outcome <> 0"), 2);
    }

    void badAccountsAreRefused_data()
    {
        const support::DataRows<int, int> add("kind", "code");
        const auto row = [&add](const char* name, int kind, EErrorCode code) {
            add(name, kind, static_cast<int>(code));
        };
        row("none at all", 0, EErrorCode::InvalidValue);
        row("unknown id", 1, EErrorCode::InvalidValue);
        row("known id of another type", 2, EErrorCode::InvalidValue);
        row("unknown unit", 3, EErrorCode::InvalidValue);
        row("leading zero lost", 4, EErrorCode::InvalidValue);
        row("twice", 5, EErrorCode::InvalidValue);
        row("of another institution", 6, EErrorCode::OutOfScope);
        row("of no institution", 7, EErrorCode::OutOfScope);
        row("of another server", 8, EErrorCode::OutOfScope);
        row("closed", 9, EErrorCode::InvalidValue);
        row("excluded", 10, EErrorCode::InvalidValue);
        row("null", 11, EErrorCode::Malformed);
        row("huge id", 12, EErrorCode::ResourceExhausted);
        row("more than ten thousand", 13, EErrorCode::ResourceExhausted);
        row("id that is not UTF-8", 14, EErrorCode::Malformed);
    }
    void badAccountsAreRefused()
    {
        QFETCH(int, kind);
        QFETCH(int, code);
        const auto foreign = future("8002");
        foreign->setSystemTag("W");
        const std::vector<std::vector<boost::shared_ptr<CAccountInfo>>> cases = {
            {},
            {future("8001"), future("no such")},
            {account(EZVBrokerType::Stock, "8001")},
            {account(EZVBrokerType::Stock, "0010", "02")},
            {account(EZVBrokerType::Stock, "10")},
            {future("8001"), future("8002"), future("8001")},
            {future("8001"), future("9001")},
            {future("7001")},
            {future("8001"), foreign},
            {future("5001")},
            {future("6001")},
            {future("8001"), boost::shared_ptr<CAccountInfo>()},
            {future(std::string(5000, '8'))},
            std::vector<boost::shared_ptr<CAccountInfo>>(10001, future("8001")),
            {future("80\xFF")}};
        const GroupPtr old = m_fixture->storedGroup("旧");
        const QStringList before = m_fixture->content().filter("account_group");
        const auto added = group("新", First, cases.at(static_cast<std::size_t>(kind)));
        old->accounts = added->accounts;
        for (const auto& reply :
             {m_fixture->operate(EZvDataOperation::Add, added), m_fixture->operate(EZvDataOperation::Modify, old)}) {
            COMPARE_CODE(reply, static_cast<EErrorCode>(code));
            const QString text = QString::fromStdString(reply.error.errorMsg());
            QVERIFY(!text.isEmpty() && text.size() < 200);
        }
        QCOMPARE(m_fixture->content().filter("account_group"), before);
        QCOMPARE(m_fixture->number("SELECT count(*) FROM audit WHERE outcome = " + QString::number(code)), 2);
    }

    void accountThatWasClosedLaterMayStayInItsGroup()
    {
        const GroupPtr record = m_fixture->storedGroup("组");
        m_fixture->exec("UPDATE account SET state_code = 5 WHERE account_id = '8001'");
        record->accounts.push_back(future("8002"));
        COMPARE_CODE(m_fixture->operate(EZvDataOperation::Modify, record), EErrorCode::Success);
        QCOMPARE(m_fixture->current(record->groupId)->accounts.size(), std::size_t{2});
    }

    void institutionMustExistAndIsKnownByItsId()
    {
        const auto add = [&](int institution, const std::string& name, const char* member) {
            static int number = 0;
            const auto record = group("组" + std::to_string(++number), institution, {future(member)});
            record->institutionName = name;
            return m_fixture->operate(EZvDataOperation::Add, record);
        };
        COMPARE_CODE(add(3, "", "8001"), EErrorCode::InvalidValue);
        COMPARE_CODE(add(-1, "", "8001"), EErrorCode::InvalidValue);
        COMPARE_CODE(add(None, "没选过的机构", "8001"), EErrorCode::InvalidValue);
        COMPARE_CODE(add(First, "过时的名称", "8001"), EErrorCode::Success);
        QCOMPARE(m_fixture->current(1)->institutionName, std::string("甲机构"));
        // The prime broker's own group crosses institutions.
        COMPARE_CODE(add(None, "", "8001"), EErrorCode::Success);
        QCOMPARE(m_fixture->current(2)->institutionName, std::string());
        QCOMPARE(m_fixture->current(2)->institutionId, None);
    }

    void recordOfAnotherServerIsRefused()
    {
        const GroupPtr record = m_fixture->storedGroup("组");
        record->setSystemTag("W");
        for (const auto operation : {EZvDataOperation::Add, EZvDataOperation::Modify, EZvDataOperation::Delete}) {
            COMPARE_CODE(m_fixture->operate(operation, record), EErrorCode::OutOfScope);
        }
        record->setSystemTag("");
        COMPARE_CODE(m_fixture->operate(EZvDataOperation::Delete, record), EErrorCode::Success);
    }

    void recordThatIsNoGroupIsMalformed()
    {
        for (const nvservice::IDataPtr& data : {nvservice::IDataPtr(), nvservice::IDataPtr(future("8001"))}) {
            for (const auto operation : {EZvDataOperation::Add, EZvDataOperation::Modify, EZvDataOperation::Delete}) {
                COMPARE_CODE(m_fixture->operate(operation, data, "op"), EErrorCode::Malformed);
            }
        }
        QCOMPARE(m_fixture->number("SELECT count(*) FROM audit WHERE outcome <> 0"), 6);
    }

    void hugeRefusedRecordIsAuditedWithoutItsBody()
    {
        const auto audited = [&](int accounts) {
            const std::string id(2000, 'x');
            const std::vector<boost::shared_ptr<CAccountInfo>> many(static_cast<std::size_t>(accounts), future(id));
            COMPARE_CODE(m_fixture->operate(EZvDataOperation::Add, group("组", First, many)),
                         accounts > 5000 ? EErrorCode::ResourceExhausted : EErrorCode::InvalidValue);
        };
        audited(10);
        QVERIFY(m_fixture->number("SELECT length(after_body) FROM audit ORDER BY id DESC") > 10 * 2000);
        audited(1000);
        QCOMPARE(m_fixture->number("SELECT coalesce(length(after_body), 0) FROM audit ORDER BY id DESC"), 0);
        // More than any document holds.
        audited(9000);
        QCOMPARE(m_fixture->number("SELECT count(*) FROM audit WHERE outcome <> 0"), 3);
    }

    void unknownFieldsAreKeptAndTooManyAreRefused()
    {
        const auto record = group("组", First, {future("8001")});
        record->unknownFields = BSON("colour" << "red"
                                              << "nested" << BSON("n" << 7));
        COMPARE_CODE(m_fixture->operate(EZvDataOperation::Add, record), EErrorCode::Success);
        const auto all = m_fixture->query(nvservice::DataType::AccountGroup).records;
        QCOMPARE(all.at(0)->unknownFields.toString(), record->unknownFields.toString());
        record->groupName = "大";
        record->unknownFields = BSON("blob" << std::string(100000, 'x'));
        COMPARE_CODE(m_fixture->operate(EZvDataOperation::Add, record), EErrorCode::ResourceExhausted);
    }
};

TEST_WITHOUT_WIDGETS(GroupRulesTest)
#include "tst_group_rules.moc"
