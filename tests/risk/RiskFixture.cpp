// SPDX-License-Identifier: Apache-2.0
#include "RiskFixture.h"

#include "exempt/ControlId.h"
#include "support/qav/Client.h"
#include "support/wq/Widgets.h"

#include <QAV/CConfigService.h>
#include <WQ/StringConversion.h>
#include <nvservice/UserRight.h>
#include <utils/CSingletonT.h>

#include <boost/make_shared.hpp>

#include <QtTest>

namespace risk_test
{

namespace
{

template <typename Entry, typename Matches>
Entry takeFirst(std::vector<Entry>& entries, Matches matches)
{
    const auto found = std::find_if(entries.begin(), entries.end(), matches);
    if (found == entries.end()) {
        qFatal("a request that the test wants to answer was never sent");
    }
    Entry entry = std::move(*found);
    entries.erase(found);
    return entry;
}

} // namespace

const QStringList AllTradeTypes{"mdl_tradetype_future", "mdl_tradetype_stock",    "mdl_tradetype_neeq",
                                "mdl_tradetype_ggt",    "mdl_tradetype_sgt",      "mdl_tradetype_futures_option",
                                "mdl_tradetype_option", "mdl_tradetype_interbank"};

QString tradeTypeModules(const QStringList& keys)
{
    QString switches;
    for (const QString& key : keys) {
        switches += key + " = true, ";
    }
    return "return { mdl_tradetype = { on = true, " + switches + "} }";
}

KeepingTransport::KeepingTransport()
{
    onQuery = [this](const nvservice::CKolmQueryDataReq& request, ReplyHandler handler) {
        const std::lock_guard<std::mutex> lock(m_guard);
        m_asked << QString("query %1 %2").arg(request.dataType).arg(WQ::sToQs(request.queryKey));
        m_kept.push_back({request, std::move(handler)});
    };
    onOperate = [this](const nvservice::COperateDataReq& request, ReplyHandler handler) {
        const std::lock_guard<std::mutex> lock(m_guard);
        m_asked << QString("operate %1 %2").arg(request.dataType).arg(int(request.operation));
        m_keptOperations.push_back({request, std::move(handler)});
    };
}

KeepingTransport::Query KeepingTransport::takeQueryOf(int dataType)
{
    const std::lock_guard<std::mutex> lock(m_guard);
    return takeFirst(m_kept, [&](const Query& query) { return query.request.dataType == dataType; });
}

KeepingTransport::Operation KeepingTransport::takeOperationOf(int dataType)
{
    const std::lock_guard<std::mutex> lock(m_guard);
    return takeFirst(m_keptOperations,
                     [&](const Operation& operation) { return operation.request.dataType == dataType; });
}

std::size_t KeepingTransport::queries(int dataType) const
{
    const std::lock_guard<std::mutex> lock(m_guard);
    return std::size_t(std::count_if(m_kept.begin(), m_kept.end(),
                                     [&](const Query& query) { return query.request.dataType == dataType; }));
}

std::size_t KeepingTransport::operations() const
{
    const std::lock_guard<std::mutex> lock(m_guard);
    return m_keptOperations.size();
}

QStringList KeepingTransport::asked() const
{
    const std::lock_guard<std::mutex> lock(m_guard);
    return m_asked;
}

void RiskDialogUser::createDialog()
{
    m_dialog = std::make_unique<QAV::CSetAccountGroupRiskDialog>(nullptr);
    m_dialog->show();
}

RiskFixture::RiskFixture(const QStringList& tradeTypes)
    : shanghai(boost::make_shared<KeepingTransport>()), shenzhen(boost::make_shared<KeepingTransport>()),
      boxes(std::make_unique<support::ScriptedPresenter>())
{
    support::logInAs(support::makeUser("admin", {nvservice::UserRight::SetAccountGroupRisk}));
    utils::CSingletonT<QAV::CConfigService>::instance()->setAllowedCategorySysTypes(
        {AllowedSysType, OtherAllowedSysType});
    support::switchModules(tradeTypeModules(tradeTypes));
    support::centre().addServer(Shanghai, ShanghaiTag, shanghai);
    support::centre().addServer(Shenzhen, ShenzhenTag, shenzhen);
    createDialog();
}

RiskFixture::~RiskFixture()
{
    destroyDialog();
    support::centre().shutDown();
    support::centre().setDeadline(std::chrono::seconds(30));
    support::logInAs({});
    utils::CSingletonT<QAV::CConfigService>::instance()->setAllowedCategorySysTypes({});
}

QAV::CAssetsProportionWidget& RiskDialogUser::assets()
{
    return *m_dialog->findChild<QAV::CAssetsProportionWidget*>();
}

QStringList RiskDialogUser::exemptNames(int page)
{
    return shownIn(*m_dialog, page == 0 ? QAV::ReverseOrderCategoryTableId : QAV::WashTradeCategoryTableId);
}

QAbstractButton& RiskDialogUser::button(const QString& text)
{
    if (QAbstractButton* const button = support::buttonOf(*m_dialog, text)) {
        return *button;
    }
    qFatal("no button %s", qPrintable(text));
}

void RiskDialogUser::clickSave()
{
    QTest::mouseClick(&button("保存设置"), Qt::LeftButton);
}

WQ::CLoadingMaskWidget& RiskDialogUser::mask()
{
    for (WQ::CLoadingMaskWidget* const mask : m_dialog->findChildren<WQ::CLoadingMaskWidget*>()) {
        if (mask->text() == "正在加载风控数据" || mask->text() == "正在保存") {
            return *mask;
        }
    }
    qFatal("the dialog has no mask");
}

WQ::CStandardTabControl& RiskDialogUser::tabs()
{
    return *m_dialog->innerWidget()->findChild<WQ::CStandardTabControl*>(QString(), Qt::FindDirectChildrenOnly);
}

QStringList RiskDialogUser::assetRemarks()
{
    std::vector<nvservice::CAssetsRC> limits;
    assets().getAssetsRCs(limits);
    QStringList remarks;
    for (const nvservice::CAssetsRC& limit : limits) {
        remarks << WQ::sToQs(limit.remark);
    }
    return remarks;
}

nvservice::CAccountGroupRCRule RiskDialogUser::tradeLimits()
{
    nvservice::CAccountGroupRCRule rule;
    for (QAV::CAccountStockTradeLimit* const table : m_dialog->findChildren<QAV::CAccountStockTradeLimit*>()) {
        table->updateAccountGroupRCRule(rule);
    }
    return rule;
}

void RiskFixture::open(const boost::shared_ptr<nvservice::CAccountGroup>& group)
{
    while (shanghai->queries(nvservice::DataType::Category) > 0) {
        answerCategories(someCategories());
    }
    dialog().setAccountGroup(group);
}

void RiskFixture::load(const boost::shared_ptr<nvservice::CAccountGroup>& group,
                       const boost::shared_ptr<nvservice::CAccountGroupRCConfig>& config)
{
    open(group);
    answerConfig(config ? std::vector<nvservice::IDataPtr>{config} : std::vector<nvservice::IDataPtr>());
    answerCategories(someCategories());
    QTRY_VERIFY(mask().isHidden());
}

void RiskFixture::answerConfig(std::vector<nvservice::IDataPtr> records)
{
    shanghai->takeQueryOf(nvservice::DataType::GroupRiskConfig).handler(support::replyWith(std::move(records)));
}

void RiskFixture::answerCategories(std::vector<nvservice::IDataPtr> records)
{
    shanghai->takeQueryOf(nvservice::DataType::Category).handler(support::replyWith(std::move(records)));
}

void RiskFixture::answerSave(const QAV::ITransport::Reply& reply)
{
    shanghai->takeOperationOf(nvservice::DataType::GroupRiskConfig).handler(reply);
    shanghai->takeOperationOf(nvservice::DataType::EmailRule).handler(support::replyWith({}));
}

boost::shared_ptr<nvservice::CAccountGroup> makeGroup(int id, const std::string& name, const std::string& systemTag)
{
    auto group = boost::make_shared<nvservice::CAccountGroup>();
    group->groupId = id;
    group->groupName = name;
    group->setSystemTag(systemTag);
    return group;
}

boost::shared_ptr<nvservice::CAccountGroupRCConfig> makeConfig(int groupId, const std::string& mark)
{
    using nvservice::EZvTraderType;
    auto config = boost::make_shared<nvservice::CAccountGroupRCConfig>();
    config->groupId = groupId;
    config->setRevision(3);
    for (const EZvTraderType type : {EZvTraderType::Stock, EZvTraderType::Future, EZvTraderType::StockOption,
                                     EZvTraderType::ShanghaiHongKong, EZvTraderType::Neeq, EZvTraderType::FutureOption,
                                     EZvTraderType::ShenzhenHongKong, EZvTraderType::Interbank}) {
        nvservice::CTradeLimitEntry entry;
        entry.securityCode = "00" + std::to_string(int(type));
        entry.securityName = mark;
        config->rcRule.list(type).entries.push_back(entry);
    }
    nvservice::CAssetsRC limit;
    limit.ruleId = 5;
    limit.measured = nvservice::EZVRCQuantity::MarketValue;
    limit.base = nvservice::EZVRCQuantity::NetAssets;
    limit.threshold = 12.5;
    limit.remark = mark;
    config->assetsRCs.push_back(limit);
    config->ratProofSetting.reverseOrderCheck = true;
    config->ratProofSetting.washTradeForbidden = true;
    config->ratProofSetting.notCountCancelledOrders = true;
    config->ratProofSetting.reverseOrderExemptCategoryIds = {10};
    config->ratProofSetting.washTradeExemptCategoryIds = {12, 10};
    nvservice::CEmailRC email;
    email.ruleKind = "2";
    email.accountKey = std::to_string(groupId);
    email.ruleKey = "assets";
    config->emailRCs.push_back(email);
    return config;
}

QStringList shownIn(const QWidget& root, int tableId)
{
    QStringList texts;
    for (const WQ::CStandardSimpleTable* const table : root.findChildren<WQ::CStandardSimpleTable*>()) {
        texts << (table->tableId() == tableId ? support::shown(*table) : QStringList());
    }
    return texts;
}

nvservice::IDataPtr makeCategory(int id, const std::string& name, int sysType, int categoryType)
{
    const auto category = boost::make_shared<nvservice::CCategoryInfo>();
    category->categoryId = id;
    category->categoryName = name;
    category->sysType = sysType;
    category->categoryType = categoryType;
    return category;
}

std::vector<nvservice::IDataPtr> someCategories()
{
    return {makeCategory(10, "国债"), makeCategory(11, "股票"), makeCategory(12, "期货", OtherAllowedSysType),
            makeCategory(13, "期权")};
}

} // namespace risk_test
