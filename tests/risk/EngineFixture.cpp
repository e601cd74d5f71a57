// SPDX-License-Identifier: Apache-2.0
#include "EngineFixture.h"

#include "support/qav/Client.h"
#include "support/records/Requests.h"
#include "support/wq/Widgets.h"

#include "exempt/ControlId.h"
#include "service/engine/CategoryRights.h"
#include "service/store/Query.h"
#include "service/store/Securities.h"

#include <QAV/CConfigService.h>
#include <WQ/CLineEdit.h>
#include <WQ/CMediumNormalButton.h>
#include <WQ/StringConversion.h>
#include <nvservice/CSecurityInfo.h>
#include <nvservice/CustomEmailRC.h>
#include <nvservice/MetaTypes.h>
#include <utils/CSingletonT.h>

#include <boost/make_shared.hpp>

#include <QDateTime>
#include <QtTest>

#include <algorithm>
#include <future>

namespace risk_test
{

namespace
{

/// A log-in takes its time by design, under a sanitizer much of it.
constexpr int LogInMs = 60000;

std::string passwordOf(const std::string& user)
{
    for (const service::SampleUser& known : service::sampleUsers()) {
        if (known.login == user) {
            return known.password;
        }
    }
    qFatal("no user %s", user.c_str());
}

/// What tests type into the lists, on every server.
void addTypedSecurities(const support::RealService& service)
{
    for (const service::SubSystem& server : service.servers()) {
        const service::ServerData data{service.store().connection(), server};
        nvservice::CSecurityInfo security;
        security.market = "TEST";
        security.traderType = nvservice::EZvTraderType::Future;
        for (const char* const code : {"zz9999", "first1", "second1", "code1", "code2"}) {
            security.securityCode = code;
            service::putSecurity(data, security);
        }
        security.securityCode = "019999";
        security.traderType = nvservice::EZvTraderType::Interbank;
        service::putSecurity(data, security);
    }
}

} // namespace

DesksTransport::DesksTransport(const service::DataEnginePtr& engine)
{
    for (auto& desk : m_desks) {
        desk = std::make_unique<workbench::CEmbeddedTransport>(engine);
    }
}

template <typename Send>
QAV::ITransport::RequestId DesksTransport::ask(const Send& send)
{
    const std::size_t desk = m_current;
    return send(*m_desks[desk]) * RequestId(Desks) + RequestId(desk);
}

QAV::ITransport::RequestId DesksTransport::logIn(const std::string& user, const std::string& password,
                                                 LogInHandler handler)
{
    return ask([&](auto& desk) { return desk.logIn(user, password, std::move(handler)); });
}

QAV::ITransport::RequestId DesksTransport::query(const nvservice::CKolmQueryDataReq& request, ReplyHandler handler)
{
    return ask([&](auto& desk) { return desk.query(request, std::move(handler)); });
}

QAV::ITransport::RequestId DesksTransport::operate(const nvservice::COperateDataReq& request, ReplyHandler handler)
{
    return ask([&](auto& desk) { return desk.operate(request, std::move(handler)); });
}

void DesksTransport::cancel(RequestId request) noexcept
{
    m_desks[std::size_t(request) % Desks]->cancel(request / RequestId(Desks));
}

QAV::EConnectionState DesksTransport::state() const
{
    return m_desks[m_current]->state();
}

void DesksTransport::setStateHandler(StateHandler handler)
{
    m_desks[m_current]->setStateHandler(std::move(handler));
}

EngineFixture::EngineFixture()
{
    nvservice::registerMetaTypes();
    support::switchModules(tradeTypeModules(AllTradeTypes));
    service::SampleOptions sample;
    sample.servers = 2;
    sample.groups = 40;
    sample.accounts = 160;
    sample.securities = 600;
    support::makeSampleDatabase(m_database.location(), sample);
    addTypedSecurities(support::RealService(m_database.location()));
    open();
}

EngineFixture::~EngineFixture()
{
    close();
    utils::CSingletonT<QAV::CConfigService>::instance()->setAllowedCategorySysTypes({});
}

void EngineFixture::open()
{
    m_service = std::make_unique<support::RealService>(m_database.location());
    for (const service::DataEnginePtr& engine : m_service->engines()) {
        m_transports.push_back(boost::make_shared<DesksTransport>(engine));
        const utils::NVError error =
            support::centre().addServer(engine->serverName(), engine->systemTag(), m_transports.back());
        if (!error.isSuccess()) {
            qFatal("%s", error.errorMsg().c_str());
        }
    }
    m_admin = engine().logIn("admin", passwordOf("admin")).session;
}

void EngineFixture::close()
{
    for (const service::DataEnginePtr& engine : m_service->engines()) {
        support::centre().removeServer(engine->serverName());
    }
    support::centre().shutDown();
    m_transports.clear();
    m_admin.reset();
    m_service.reset();
}

void EngineFixture::reopen()
{
    close();
    open();
}

void EngineFixture::logIn(std::size_t desk, const std::string& user)
{
    sitAt(desk);
    for (const auto& [server, client] : support::centre().getAllClients()) {
        const auto answer = std::make_shared<std::promise<boost::shared_ptr<nvservice::CUserInfo>>>();
        auto info = answer->get_future();
        client->logIn_async(user, passwordOf(user),
                            [answer](const utils::NVError&, const boost::shared_ptr<nvservice::CUserInfo>& who) {
                                answer->set_value(who);
                            });
        QVERIFY2(info.wait_for(std::chrono::milliseconds(LogInMs)) == std::future_status::ready, server.c_str());
        const auto who = info.get();
        QVERIFY2(who, server.c_str());
        utils::CSingletonT<QAV::CConfigService>::instance()->setAllowedCategorySysTypes(
            service::categorySysTypesOf(who->rights));
    }
}

void EngineFixture::sitAt(std::size_t desk)
{
    for (const auto& transport : m_transports) {
        transport->sitAt(desk);
    }
}

std::vector<nvservice::IDataPtr> EngineFixture::query(int dataType, const std::string& key)
{
    const service::Reply reply = engine().query(m_admin, support::queryOf(dataType, key));
    if (!reply.error.isSuccess()) {
        qFatal("%s", reply.error.errorMsg().c_str());
    }
    return reply.records;
}

std::vector<GroupPtr> EngineFixture::groups()
{
    std::vector<GroupPtr> groups;
    for (const nvservice::IDataPtr& record : query(nvservice::DataType::AccountGroup, {})) {
        groups.push_back(boost::dynamic_pointer_cast<nvservice::CAccountGroup>(record));
    }
    return groups;
}

GroupPtr EngineFixture::takeGroup()
{
    for (const GroupPtr& group : groups()) {
        if (m_taken.insert(group->groupId).second) {
            return group;
        }
    }
    qFatal("the sample data have too few groups");
}

ConfigPtr EngineFixture::stored(int groupId)
{
    const auto records = query(nvservice::DataType::GroupRiskConfig, std::to_string(groupId));
    return boost::dynamic_pointer_cast<nvservice::CAccountGroupRCConfig>(records.at(0));
}

void EngineFixture::write(int dataType, nvservice::EZvDataOperation operation, const nvservice::IDataPtr& record)
{
    const service::Reply reply = engine().operate(m_admin, support::operationOn(dataType, operation, record));
    QVERIFY2(reply.error.isSuccess(), reply.error.errorMsg().c_str());
}

void EngineFixture::writeEmailRule(int groupId)
{
    const auto rules = boost::make_shared<nvservice::CustomEmailRC>();
    nvservice::CEmailRC rule;
    rule.ruleKind = "2";
    rule.accountKey = std::to_string(groupId);
    rule.ruleKey = "washTrade";
    rule.recipients = {"risk@example.com"};
    rules->emailRCs = {rule};
    rules->setRevision(stored(groupId)->revision());
    write(nvservice::DataType::EmailRule, nvservice::EZvDataOperation::Modify, rules);
}

QString EngineFixture::timeIn(const QString& sql, int groupId)
{
    service::Query query(m_service->store().connection(), sql);
    query.bind(engine().systemTag()).bind(groupId);
    if (!query.runAndNext()) {
        qFatal("nothing is stored about group %d", groupId);
    }
    return QDateTime::fromMSecsSinceEpoch(query.integer(0)).toString("yyyy-MM-dd HH:mm:ss");
}

QString EngineFixture::outdatedText(const nvservice::CAccountGroup& group, const QString& who)
{
    const QString when = timeIn("SELECT c.modified_at FROM group_risk_config c JOIN sub_system s ON s.id = c.server_id"
                                " WHERE s.system_tag = ? AND c.group_id = ?",
                                group.groupId);
    return QString("账号组“%1”的风控设置已被%2于%3修改，请重新打开后再设置").arg(WQ::sToQs(group.groupName), who, when);
}

QString EngineFixture::deletedText(const nvservice::CAccountGroup& group, const QString& who)
{
    const QString when = timeIn("SELECT h.changed_at FROM account_group_history h JOIN sub_system s"
                                " ON s.id = h.server_id WHERE s.system_tag = ? AND h.group_id = ? AND h.operation = 3",
                                group.groupId);
    return QString("账号组已被%1于%2删除").arg(who, when);
}

QString EngineFixture::someSecurity(nvservice::EZvTraderType type)
{
    const auto records = query(nvservice::DataType::Security, std::to_string(int(type)));
    const auto security = boost::dynamic_pointer_cast<nvservice::CSecurityInfo>(records.at(0));
    return WQ::sToQs(security->securityCode + ' ' + security->securityName);
}

void EngineFixture::load(RiskDialogUser& user, const boost::shared_ptr<nvservice::CAccountGroup>& group)
{
    user.dialog().setAccountGroup(group);
    QTRY_VERIFY_WITH_TIMEOUT(user.mask().isHidden(), LogInMs);
}

void EngineFixture::save(RiskDialogUser& user)
{
    user.clickSave();
    QVERIFY(user.mask().isVisible());
    QTRY_VERIFY_WITH_TIMEOUT(user.mask().isHidden(), LogInMs);
}

void EngineFixture::expectSaved()
{
    boxes.expectMessage(QMessageBox::Information, "提示", "保存成功");
}

void EngineFixture::expectRefusal(const QString& text)
{
    boxes.expectMessage(QMessageBox::Critical, "提示", text);
}

void addSecurity(RiskDialogUser& user, int tab, const QString& code)
{
    user.tabs().setCurrentIndex(0);
    auto* const tabs = user.tabs().tabWidget(0)->findChild<WQ::CStandardTabControl*>();
    tabs->setCurrentIndex(tab);
    auto* const security = tabs->tabWidget(tab)->findChild<WQ::CLineEdit*>("security");
    security->setFocus();
    QTest::keyClicks(security, code);
    QTest::keyClick(security, Qt::Key_Return);
}

void addLimit(RiskDialogUser& user, const QString& threshold, const QString& remark)
{
    constexpr int ThresholdColumn = 7;
    constexpr int RemarkColumn = 10;
    user.tabs().setCurrentIndex(1);
    QTest::mouseClick(user.assets().findChild<QAbstractButton*>("add"), Qt::LeftButton);
    auto* const table = user.assets().findChild<WQ::CStandardSimpleTable*>("limits");
    table->view();
    const int row = table->currentRow();
    QTest::keyClicks(table->itemWidget(row, ThresholdColumn), threshold);
    QTest::keyClicks(table->itemWidget(row, RemarkColumn), remark);
}

void chooseExempt(EngineFixture& client, RiskDialogUser& user, int page, const std::function<bool(int row)>& wants)
{
    client.boxes.expectDialog([&](WQ::CBaseDialog& picker) {
        for (WQ::CStandardSimpleTable* const table : picker.findChildren<WQ::CStandardSimpleTable*>()) {
            for (int row = 0; table->tableId() == QAV::AvailableCategoryTableId && row < table->rowCount(); ++row) {
                table->setRowSelected(table->rowID(row), wants(row));
            }
        }
        for (const char* const text : {">", "保存"}) {
            support::clickButton(picker, text);
        }
    });
    user.tabs().setCurrentIndex(page);
    QTest::mouseClick(user.tabs().tabWidget(page)->findChild<WQ::CMediumNormalButton*>(), Qt::LeftButton);
}

bool hasSecurity(const ConfigPtr& config, nvservice::EZvTraderType type, const std::string& code)
{
    const nvservice::CTradeLimitList* const list = config->rcRule.findList(type);
    return list && std::any_of(list->entries.begin(), list->entries.end(),
                               [&](const nvservice::CTradeLimitEntry& entry) { return entry.securityCode == code; });
}

bool hasLimit(const ConfigPtr& config, const std::string& remark)
{
    return std::any_of(config->assetsRCs.begin(), config->assetsRCs.end(),
                       [&](const nvservice::CAssetsRC& limit) { return limit.remark == remark; });
}

} // namespace risk_test
