// SPDX-License-Identifier: Apache-2.0
#include "service/ServiceFixture.h"
#include "support/TestProgram.h"

#include <nvservice/CKolmProductsResp.h>
#include <nvservice/CProductInfo.h>
#include <nvservice/Codec.h>

#include <memory>

using namespace testservice;

namespace
{

namespace DataType = nvservice::DataType;
namespace UserRight = nvservice::UserRight;

struct TypeRight {
    int type;
    int right; ///< 0: everybody reads accounts of the type
};

const TypeRight TypeRights[] = {{0, 0},     {1, 10037},    {2, 10041},    {3, 10089},    {4, 12091}, {5, 10871},
                                {6, 10657}, {7, 10745},    {10, 10953},   {11, 11501},   {12, 0},    {13, 0},
                                {99, 0},    {1001, 10817}, {1002, 12001}, {15002, 13091}};
constexpr int Types = std::size(TypeRights);
const int Institutions[] = {First, Second, None};
const char SecretName[] = "机密户名";

struct RightSet {
    QString name;
    std::set<int> rights;
};

std::vector<RightSet> queryRightSets()
{
    std::set<int> all = {UserRight::EditAccountGroup, UserRight::SetAccountGroupRisk, UserRight::DeleteAccountGroup};
    for (const TypeRight& each : TypeRights) {
        if (each.right != 0) {
            all.insert(each.right);
        }
    }
    std::vector<RightSet> sets = {{"none", {}}, {"all", all}};
    for (const int right : all) {
        std::set<int> others = all;
        others.erase(right);
        sets.push_back({QString("only %1").arg(right), {right}});
        sets.push_back({QString("all but %1").arg(right), others});
    }
    for (const TypeRight& each : TypeRights) {
        if (each.right != 0) {
            sets.push_back({QString("10717 and %1").arg(each.right), {UserRight::EditAccountGroup, each.right}});
        }
    }
    return sets;
}

bool mayRead(const std::set<int>& rights, int type)
{
    const auto* const found = std::find_if(std::begin(TypeRights), std::end(TypeRights),
                                           [type](const TypeRight& each) { return each.type == type; });
    return found->right == 0 || rights.count(found->right) != 0;
}

std::string idOf(int type, int institution)
{
    return "secret-" + std::to_string(type) +
           (institution == First    ? "-first"
            : institution == Second ? "-second"
                                    : "-none");
}

int typeOf(const CAccountInfo& account)
{
    return static_cast<int>(account.brokerType);
}

/// Everything that a reply holds, as text.
QString textOf(const service::Reply& reply)
{
    QString text = QString::fromStdString(reply.error.errorMsg());
    for (const nvservice::IDataPtr& record : reply.records) {
        text += QString::fromStdString(nvservice::encodeRecord(*record).toString());
    }
    return text;
}

} // namespace

/// Who may read what. Each institution, and none, has an account of every type, a product and a group with all of them.
class QueryRightsTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<ServiceFixture> m_fixture;
    std::map<int, int> m_groups; ///< by institution
    int m_users = 0;

    void addAccountsProductAndGroup(int institution)
    {
        service::Connection& connection = m_fixture->store().connection();
        service::Transaction transaction(connection, service::Transaction::EKind::Write);
        const service::ServerData data{connection, m_fixture->server(0)};
        const int product = institution == None ? 3 : institution;
        service::putProduct(data, {product, "产品" + std::to_string(product),
                                   institution == None ? service::InstitutionId() : service::InstitutionId(institution),
                                   false});
        std::vector<std::int64_t> rows;
        const GroupPtr record = group("组" + std::to_string(product), institution, {});
        for (const TypeRight& each : TypeRights) {
            const auto info = account(static_cast<EZVBrokerType>(each.type), idOf(each.type, institution));
            info->accountName = SecretName;
            info->institutionId = institution;
            record->accounts.push_back(info);
            rows.push_back(service::putAccount(data, *info, 0, false));
            service::putProductAccount(data, product, rows.back());
        }
        record->groupId = service::takeGroupId(data);
        record->setRevision(1);
        service::insertGroup(data, *record, rows, {"founder", 1000});
        transaction.commit();
        m_groups[institution] = record->groupId;
    }

    service::SessionPtr sessionOf(const std::set<int>& rights, int institution)
    {
        return m_fixture->session("user" + std::to_string(++m_users), rights, institution);
    }
    GroupPtr queried(const service::SessionPtr& session, int institution)
    {
        const auto reply =
            query(m_fixture->east(), session, DataType::AccountGroup, std::to_string(m_groups.at(institution)));
        return reply.records.empty() ? GroupPtr() : boost::dynamic_pointer_cast<CAccountGroup>(reply.records[0]);
    }
    std::vector<std::string> storedIds(int institution)
    {
        std::vector<std::string> ids;
        const GroupPtr stored = m_fixture->current(m_groups.at(institution));
        for (const auto& account : stored->accounts) {
            ids.push_back(account->accountId);
        }
        return ids;
    }

private slots:
    void init()
    {
        m_fixture = std::make_unique<ServiceFixture>();
        m_fixture->exec("DELETE FROM account");
        for (const int institution : Institutions) {
            addAccountsProductAndGroup(institution);
        }
    }

    void everyQueryGivesWhatRightsAndScopeAllow_data()
    {
        const support::DataRows<int, int> row("rightSet", "scope");
        for (std::size_t set = 0; set < queryRightSets().size(); ++set) {
            for (const int scope : Institutions) {
                const QString name = QString("%1, bound to %2").arg(queryRightSets()[set].name, QString::number(scope));
                row(name, static_cast<int>(set), scope);
            }
        }
    }
    void everyQueryGivesWhatRightsAndScopeAllow()
    {
        QFETCH(int, rightSet);
        QFETCH(int, scope);
        const std::set<int> rights = queryRightSets()[static_cast<std::size_t>(rightSet)].rights;
        const auto session = sessionOf(rights, scope);
        service::DataEngine& engine = m_fixture->east();
        const auto isInScope = [scope](int institution) { return scope == None || scope == institution; };
        const int visibleInstitutions = scope == None ? 3 : 1;
        const auto readable = std::count_if(std::begin(TypeRights), std::end(TypeRights),
                                            [&](const TypeRight& each) { return mayRead(rights, each.type); });

        QString everything;
        const auto ask = [&](int dataType, const std::string& key = {}) {
            const service::Reply reply = query(engine, session, dataType, key);
            everything += textOf(reply);
            return reply;
        };
        const service::Reply accounts = ask(DataType::Account);
        QCOMPARE(accounts.totalCount, static_cast<int>(readable * visibleInstitutions));

        const service::Reply products = ask(DataType::Product);
        const auto list = boost::dynamic_pointer_cast<nvservice::CKolmProductsResp>(products.records.at(0));
        QCOMPARE(static_cast<int>(list->products.size()), visibleInstitutions);
        for (const nvservice::IDataPtr& product : list->products) {
            QCOMPARE(boost::dynamic_pointer_cast<nvservice::CProductInfo>(product)->accounts.size(),
                     static_cast<std::size_t>(readable));
        }

        std::vector<GroupPtr> groups;
        for (const nvservice::IDataPtr& record : ask(DataType::AccountGroup).records) {
            groups.push_back(boost::dynamic_pointer_cast<CAccountGroup>(record));
        }
        QCOMPARE(static_cast<int>(groups.size()), visibleInstitutions);
        for (const auto& [institution, id] : m_groups) {
            const service::Reply one = ask(DataType::AccountGroup, std::to_string(id));
            QCOMPARE(one.totalCount, isInScope(institution) ? 1 : 0);
            if (one.totalCount == 1) {
                groups.push_back(boost::dynamic_pointer_cast<CAccountGroup>(one.records[0]));
            }

            const service::Reply config = ask(DataType::GroupRiskConfig, std::to_string(id));
            const bool mayReadRisk = rights.count(UserRight::SetAccountGroupRisk) != 0;
            COMPARE_CODE(config, !mayReadRisk              ? EErrorCode::PermissionDenied
                                 : !isInScope(institution) ? EErrorCode::OutOfScope
                                                           : EErrorCode::Success);
            QCOMPARE(config.records.size(), std::size_t(mayReadRisk && isInScope(institution) ? 1 : 0));
        }
        COMPARE_CODE(ask(DataType::GroupRiskConfig, "77"), rights.count(UserRight::SetAccountGroupRisk) != 0
                                                               ? EErrorCode::NotFound
                                                               : EErrorCode::PermissionDenied);
        for (const GroupPtr& each : groups) {
            QCOMPARE(each->accounts.size(), std::size_t(Types));
            std::set<std::string> keys;
            for (int i = 0; i < Types; ++i) {
                const CAccountInfo& member = *each->accounts[static_cast<std::size_t>(i)];
                QCOMPARE(typeOf(member), TypeRights[i].type);
                QCOMPARE(member.getSystemTag(), std::string("E"));
                QVERIFY(keys.insert(member.getCsKey()).second);
                QCOMPARE(member.accountId == idOf(TypeRights[i].type, each->institutionId),
                         mayRead(rights, TypeRights[i].type));
                QCOMPARE(member.accountName == SecretName, mayRead(rights, TypeRights[i].type));
            }
        }
        QCOMPARE(ask(DataType::Category).totalCount, 3);
        QCOMPARE(ask(DataType::Institution).totalCount, scope == None ? 2 : 1);
        COMPARE_CODE(ask(DataType::Security), EErrorCode::Success);
        COMPARE_CODE(ask(DataType::EmailRule), EErrorCode::Unsupported);
        COMPARE_CODE(ask(0), EErrorCode::Unsupported);

        for (const int institution : Institutions) {
            for (const TypeRight& each : TypeRights) {
                const QString secret = QString::fromStdString('"' + idOf(each.type, institution) + '"');
                QCOMPARE(everything.contains(secret), isInScope(institution) && mayRead(rights, each.type));
            }
        }
    }

    void groupKeepsEveryAccountWhenSomebodyWhoSeesSomeOfThemRenamesIt_data()
    {
        everyQueryGivesWhatRightsAndScopeAllow_data();
    }
    void groupKeepsEveryAccountWhenSomebodyWhoSeesSomeOfThemRenamesIt()
    {
        QFETCH(int, rightSet);
        QFETCH(int, scope);
        const std::set<int> rights = queryRightSets()[static_cast<std::size_t>(rightSet)].rights;
        const auto session = sessionOf(rights, scope);
        const GroupPtr mine = queried(session, scope);
        const std::vector<std::string> before = storedIds(scope);
        mine->groupName = "新名称";
        std::rotate(mine->accounts.begin(), mine->accounts.begin() + 3, mine->accounts.end());
        const bool mayEdit = rights.count(UserRight::EditAccountGroup) != 0;
        COMPARE_CODE(operate(m_fixture->east(), session, EZvDataOperation::Modify, mine),
                     mayEdit ? EErrorCode::Success : EErrorCode::PermissionDenied);
        std::vector<std::string> expected = before;
        if (mayEdit) {
            std::rotate(expected.begin(), expected.begin() + 3, expected.end());
        }
        QCOMPARE(storedIds(scope), expected);
        QCOMPARE(m_fixture->current(m_groups.at(scope))->groupName == "新名称", mayEdit);
    }

    void accountLeavesTheGroupOnlyWithTheRightOfItsType_data()
    {
        const support::DataRows<int, bool> row("type", "hasRight");
        for (const TypeRight& each : TypeRights) {
            row(QString("type %1 with its right").arg(each.type), each.type, true);
            if (each.right != 0) {
                row(QString("type %1 without").arg(each.type), each.type, false);
            }
        }
    }
    void accountLeavesTheGroupOnlyWithTheRightOfItsType()
    {
        QFETCH(int, type);
        QFETCH(bool, hasRight);
        std::set<int> rights = {UserRight::EditAccountGroup};
        for (const TypeRight& each : TypeRights) {
            if ((each.type == type) == hasRight) {
                rights.insert(each.right);
            }
        }
        const auto session = sessionOf(rights, First);
        const GroupPtr mine = queried(session, First);
        const std::vector<std::string> before = storedIds(First);
        const auto leaving = std::find_if(mine->accounts.begin(), mine->accounts.end(),
                                          [type](const auto& each) { return typeOf(*each) == type; });
        const auto place = leaving - mine->accounts.begin();
        mine->accounts.erase(leaving);
        const service::Reply reply = operate(m_fixture->east(), session, EZvDataOperation::Modify, mine);
        COMPARE_CODE(reply, hasRight ? EErrorCode::Success : EErrorCode::PermissionDenied);
        std::vector<std::string> expected = before;
        if (hasRight) {
            expected.erase(expected.begin() + place);
        }
        QCOMPARE(storedIds(First), expected);
        QVERIFY(!QString::fromStdString(reply.error.errorMsg()).contains("secret"));
    }

    void answersTellNothingOfAccountsThatMayNotBeRead()
    {
        m_fixture->exec("UPDATE account SET state_code = 5 WHERE account_id = 'secret-2-second'");
        const auto session = sessionOf({UserRight::EditAccountGroup, UserRight::FutureAccount}, None);
        const auto add = [&](int institution, const std::string& id) {
            const auto reply = operate(m_fixture->east(), session, EZvDataOperation::Add,
                                       group("猜测", institution, {account(EZVBrokerType::Stock, id)}));
            const QString text = QString::fromStdString(reply.error.errorMsg());
            return QString::number(static_cast<int>(reply.error.code())) + ' ' +
                   QString(text).replace(QString::fromStdString(id), "id");
        };
        const QString unknown = add(First, "no-such-account");
        QVERIFY(unknown.startsWith(QString::number(static_cast<int>(EErrorCode::PermissionDenied))));
        QCOMPARE(add(First, idOf(2, First)), unknown);
        QCOMPARE(add(Second, idOf(2, Second)), unknown); // closed
        QCOMPARE(add(First, idOf(2, Second)), unknown);  // of another institution

        const GroupPtr moved = queried(session, First);
        moved->institutionId = Second;
        std::swap(moved->accounts[0], moved->accounts[2]);
        const auto reply = operate(m_fixture->east(), session, EZvDataOperation::Modify, moved);
        COMPARE_CODE(reply, EErrorCode::OutOfScope);
        QVERIFY(!QString::fromStdString(reply.error.errorMsg()).contains("secret"));
        const GroupPtr doubled = queried(session, First);
        doubled->accounts.push_back(doubled->accounts[2]);
        QCOMPARE(operate(m_fixture->east(), session, EZvDataOperation::Modify, doubled).error.errorMsg(),
                 std::string("证券账号重复"));
    }

    void standInIsNothingOutsideItsGroup()
    {
        const auto session = sessionOf({UserRight::EditAccountGroup, UserRight::FutureAccount}, None);
        const auto standIn = queried(session, Second)->accounts[2];
        QVERIFY(QString::fromStdString(standIn->accountId).startsWith("无权查看#"));
        const GroupPtr mine = queried(session, First);
        mine->institutionId = None;
        mine->institutionName.clear();
        mine->accounts.push_back(standIn);
        const std::vector<std::string> before = storedIds(First);
        COMPARE_CODE(operate(m_fixture->east(), session, EZvDataOperation::Modify, mine), EErrorCode::PermissionDenied);
        const auto everything = sessionOf(queryRightSets()[1].rights, None);
        COMPARE_CODE(operate(m_fixture->east(), everything, EZvDataOperation::Modify, mine), EErrorCode::InvalidValue);
        COMPARE_CODE(operate(m_fixture->east(), everything, EZvDataOperation::Add, group("新", None, {standIn})),
                     EErrorCode::InvalidValue);
        QCOMPARE(storedIds(First), before);
    }

    void rightThatComesOrGoesWhileAGroupIsEditedLosesNothing()
    {
        const std::vector<std::string> before = storedIds(First);
        const auto session = sessionOf({UserRight::EditAccountGroup}, First);
        const GroupPtr withStandIns = queried(session, First);
        m_fixture->exec(
            QString("INSERT INTO user_right SELECT id, 10041 FROM app_user WHERE login = 'user%1'").arg(m_users));
        withStandIns->groupName = "有权之后";
        COMPARE_CODE(operate(m_fixture->east(), session, EZvDataOperation::Modify, withStandIns), EErrorCode::Success);
        QCOMPARE(storedIds(First), before);
        const GroupPtr withAccount = queried(session, First);
        m_fixture->exec("DELETE FROM user_right WHERE right_id = 10041");
        withAccount->groupName = "无权之后";
        COMPARE_CODE(operate(m_fixture->east(), session, EZvDataOperation::Modify, withAccount), EErrorCode::Success);
        QCOMPARE(storedIds(First), before);
    }
};

TEST_WITHOUT_WIDGETS(QueryRightsTest)
#include "tst_query_rights.moc"
