// SPDX-License-Identifier: Apache-2.0
#include "panel/CGroupList.h"
#include "platform/records/RecordSamples.h"
#include "support/TestProgram.h"

#include <rapidcheck.h>

#include <boost/make_shared.hpp>

#include <algorithm>

using nvservice::CAccountGroup;
using nvservice::CAccountInfo;
using GroupPtr = boost::shared_ptr<CAccountGroup>;
using AccountPtr = boost::shared_ptr<CAccountInfo>;

namespace
{

const samples::RecordKind& groupKind()
{
    const auto& kinds = samples::recordKinds();
    return *std::find_if(kinds.begin(), kinds.end(), [](const samples::RecordKind& kind) {
        return std::string(kind.typeName) == CAccountGroup().typeName();
    });
}

/// Inside a property only. Most groups have no fields that only the service knows.
GroupPtr randomGroup()
{
    const auto group = boost::dynamic_pointer_cast<CAccountGroup>(groupKind().makeRandom());
    if (*rc::gen::inRange(0, 4) != 0) {
        group->unknownFields = {};
        for (const AccountPtr& account : group->accounts) {
            account->unknownFields = {};
        }
    }
    return group;
}

/// Changes one field, so that one account is told from the other by it alone.
void changeOneField(CAccountInfo& account, int field)
{
    switch (field) {
    case 0:
        account.brokerType = account.brokerType == nvservice::EZVBrokerType::Stock ? nvservice::EZVBrokerType::Future
                                                                                   : nvservice::EZVBrokerType::Stock;
        break;
    case 1:
        account.accountId += 'x';
        break;
    case 2:
        account.unitId += 'x';
        break;
    case 3:
        account.accountName += 'x';
        break;
    case 4:
        account.institutionId ^= 1;
        break;
    case 5:
        account.institutionName += 'x';
        break;
    case 6:
        account.setSystemTag(account.getSystemTag() + 'x');
        break;
    case 7:
        account.setRevision(account.revision() ^ 1);
        break;
    default:
        break;
    }
}
constexpr int ChangedFields = 9; // the last changes none

// Classes with more to a record than their bases have.
class CNotedGroup final : public CAccountGroup
{
public:
    std::string note;
};

class CNotedAccount final : public CAccountInfo
{
public:
    std::string note;
};

} // namespace

class GroupListTest : public QObject
{
    Q_OBJECT

private slots:
    void aListGivesBackWhatItTookInOrder()
    {
        QVERIFY(rc::check([] {
            QAV::CGroupList list;
            std::vector<nvservice::IDataPtr> model;
            std::vector<AccountPtr> seen;
            const int count = *rc::gen::inRange(0, 12);
            for (int i = 0; i < count; ++i) {
                const GroupPtr group = randomGroup();
                // Accounts that an earlier group has too: the same record, or another that is equal or nearly so.
                for (int again = *rc::gen::inRange(0, 4); again > 0 && !seen.empty(); --again) {
                    const AccountPtr& known = seen[*rc::gen::inRange<std::size_t>(0, seen.size())];
                    group->accounts.push_back(known);
                    const auto account = boost::dynamic_pointer_cast<CAccountInfo>(known->copy());
                    changeOneField(*account, *rc::gen::inRange(0, ChangedFields));
                    group->accounts.push_back(account);
                }
                seen.insert(seen.end(), group->accounts.begin(), group->accounts.end());
                list.append(group);
                if (*rc::gen::inRange(0, 6) == 0) {
                    list.finish();
                }
                model.push_back(group->copy());
            }
            RC_ASSERT(list.size() == model.size());
            RC_ASSERT(list.empty() == model.empty());
            for (std::size_t i = 0; i < model.size(); ++i) {
                const auto& expected = static_cast<const CAccountGroup&>(*model[i]);
                RC_ASSERT(!groupKind().difference(*list.at(i), expected));
                RC_ASSERT(list.idAt(i) == expected.groupId);
                RC_ASSERT(list.nameAt(i) == expected.groupName);
                RC_ASSERT(list.systemTagAt(i) == expected.getSystemTag());
            }
        }));
    }

    void anAccountThatDiffersInOneFieldIsNotTakenForAnother()
    {
        const auto first = boost::make_shared<CAccountInfo>();
        first->accountId = "0042";
        first->accountName = "一号账户";
        for (int field = 0; field < ChangedFields; ++field) {
            const auto second = boost::dynamic_pointer_cast<CAccountInfo>(first->copy());
            changeOneField(*second, field);
            const auto group = boost::make_shared<CAccountGroup>();
            group->accounts = {first, second, first, second};
            QAV::CGroupList list;
            list.append(group);
            QVERIFY2(!groupKind().difference(*list.at(0), *group), QByteArray::number(field).constData());
        }
    }

    void recordsOfLaterClassesStayWhatTheyAre()
    {
        const auto noted = boost::make_shared<CNotedGroup>();
        noted->note = "kept";
        const auto holder = boost::make_shared<CAccountGroup>();
        const auto account = boost::make_shared<CNotedAccount>();
        account->note = "kept too";
        holder->accounts = {account};
        QAV::CGroupList list;
        list.append(noted);
        list.append(holder);
        const auto notedAgain = boost::dynamic_pointer_cast<CNotedGroup>(list.at(0));
        QVERIFY(notedAgain);
        QCOMPARE(notedAgain->note, noted->note);
        const auto accountAgain = boost::dynamic_pointer_cast<CNotedAccount>(list.at(1)->accounts.at(0));
        QVERIFY(accountAgain);
        QCOMPARE(accountAgain->note, account->note);
    }

    void aGroupWithoutOneOfItsAccountsStaysWhatItIs()
    {
        const auto group = boost::make_shared<CAccountGroup>();
        group->accounts = {boost::make_shared<CAccountInfo>(), nullptr};
        QAV::CGroupList list;
        list.append(group);
        QCOMPARE(list.at(0)->accounts.size(), std::size_t(2));
        QVERIFY(list.at(0)->accounts[0]);
        QVERIFY(!list.at(0)->accounts[1]);
    }

    void changingARecordLeavesTheListUntouched()
    {
        const auto group = boost::make_shared<CAccountGroup>();
        group->accounts = {boost::make_shared<CAccountInfo>()};
        QAV::CGroupList list;
        list.append(group);
        list.at(0)->accounts[0]->accountId = "changed";
        list.at(0)->groupName = "changed";
        QVERIFY(!groupKind().difference(*list.at(0), *group));
    }
};

TEST_WITHOUT_WIDGETS(GroupListTest)
#include "tst_group_list.moc"
