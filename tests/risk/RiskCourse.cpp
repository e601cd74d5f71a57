// SPDX-License-Identifier: Apache-2.0
#include "RiskCourse.h"

#include "exempt/ControlId.h"
#include "support/qav/Client.h"
#include "support/wq/Widgets.h"

#include <WQ/CLineEdit.h>
#include <WQ/CMessageBox.h>
#include <WQ/EventType.h>
#include <nvservice/SystemTag.h>

#include <QAccessible>
#include <QtTest>

namespace risk_test
{

using nvservice::CRatProofSetting;
using nvservice::DataType::Category;
using nvservice::DataType::EmailRule;
using nvservice::DataType::GroupRiskConfig;

namespace
{

const std::array<const char*, 2> Tags = {ShanghaiTag, ShenzhenTag};
constexpr int StepsOfACourse = 20;

QString text(const GroupKey& group)
{
    return QString("%1/%2").arg(Tags[std::size_t(group.server)]).arg(group.id);
}

QString document(const nvservice::IData& record)
{
    return QString::fromStdString(nvservice::encodeRecord(record).toString());
}

QString joined(const QStringList& texts)
{
    return texts.join('|');
}

} // namespace

RiskCourse::RiskCourse(RiskFixture& client)
    : m_client(client), m_before(WQ::CMessageBox::setPresenter(this)), m_mask(client.mask()), m_assets(client.assets())
{
    // What is lost stays lost for as long as the courses take.
    support::centre().setDeadline(std::chrono::hours(24));
    m_checks = {{&client.button("账号组反向单交易检查"), &CRatProofSetting::reverseOrderCheck},
                {&client.button(" 反向单交易只警告不禁止 "), &CRatProofSetting::reverseOrderWarnOnly},
                {&client.button(" 不统计已撤 (无成交) 委托 "), &CRatProofSetting::notCountCancelledOrders},
                {&client.button("账号组禁止对敲交易"), &CRatProofSetting::washTradeForbidden}};
    m_saveButton = &client.button("保存设置");
    for (auto* const table : client.dialog().findChildren<QAV::CAccountStockTradeLimit*>()) {
        const std::size_t tab = table->traderType() == RiskModel::TabTypes[0] ? 0 : 1;
        m_limitTabs[tab] = table;
        m_securityEdits[tab] = table->findChild<WQ::CLineEdit*>("security");
        m_addButtons[tab] = table->findChild<QAbstractButton*>("add");
    }
    for (auto* const table : client.dialog().findChildren<WQ::CStandardSimpleTable*>()) {
        if (table->tableId() == QAV::ReverseOrderCategoryTableId) {
            m_exemptTables[RiskModel::ReverseOrderPage] = table;
        } else if (table->tableId() == QAV::WashTradeCategoryTableId) {
            m_exemptTables[RiskModel::WashTradePage] = table;
        }
    }
    m_limitTable = client.assets().findChild<WQ::CStandardSimpleTable*>("limits");
}

RiskCourse::~RiskCourse()
{
    WQ::CMessageBox::setPresenter(m_before);
}

void RiskCourse::note(const QString& step)
{
    m_steps << QString(2 * m_depth, ' ') + step;
}

void RiskCourse::differ(const QString& what)
{
    if (m_difference.isEmpty()) {
        m_difference = what;
    }
}

template <typename Value>
void RiskCourse::compare(const char* what, const Value& actual, const Value& expected)
{
    if (actual != expected) {
        differ(
            QString("%1: is %2, should be %3").arg(what, QVariant(actual).toString(), QVariant(expected).toString()));
    }
}

QString RiskCourse::play(unsigned seed)
{
    m_random.seed(seed);
    m_steps.clear();
    for (int i = 0; i < StepsOfACourse && m_difference.isEmpty(); ++i) {
        step();
    }
    if (m_difference.isEmpty()) {
        checkTabs();
    }
    // What else was posted is not to pile up.
    deliver();
    QCoreApplication::sendPostedEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return m_difference.isEmpty() ? QString() : m_steps.join('\n') + "\n=> " + m_difference;
}

void RiskCourse::step()
{
    const int kind = below(100);
    if (!m_model.group() || kind < 10) {
        open();
    } else if (kind < 44) {
        answer();
    } else if (kind < 64) {
        deliver();
    } else if (kind < 79) {
        edit();
    } else if (kind < 92) {
        save();
    } else if (kind < 95) {
        pick();
    } else if (kind < 98) {
        m_client.dialog().refreshAssets();
    } else {
        showOrHide();
    }
    collect(0, 0);
    check();
}

void RiskCourse::open()
{
    // Often the same group again, or its namesake on the other server.
    GroupKey group{below(2), 1 + below(2)};
    if (m_model.group() && chance(30)) {
        group = *m_model.group();
    }
    note("open " + text(group));
    collect(0, 0);
    const int load = m_model.open(group);
    m_client.dialog().setAccountGroup(makeGroup(group.id, text(group).toStdString(), Tags[std::size_t(group.server)]));
    collect(load, 0);
    compare("title", m_client.dialog().windowTitle(), text(group) + "组 - 风控设置");
}

void RiskCourse::collect(int loadNumber, int saveNumber)
{
    for (int number = 0; number < 2; ++number) {
        KeepingTransport& from = server(number);
        const GroupKey group = m_model.group().value_or(GroupKey());
        const bool isOpen = number == group.server;
        const auto keep = [&](RiskReply::EKind kind, int of, QAV::ITransport::ReplyHandler handler) {
            if (of != 0 && !isOpen) {
                differ("a request for " + text(group) + " to the other server");
            }
            m_requests.push_back({number, std::move(handler), {kind, of, group, {}, {}, {}}});
        };
        while (from.queries(GroupRiskConfig) > 0) {
            keep(RiskReply::Config, loadNumber, from.takeQueryOf(GroupRiskConfig).handler);
        }
        while (from.queries(Category) > 0) {
            keep(RiskReply::CategoryList, loadNumber, from.takeQueryOf(Category).handler);
        }
        if (from.operations() > 0 && saveNumber == 0) {
            differ("a save that nobody asked for");
        }
        if (from.operations() > 0) {
            keep(RiskReply::Save, saveNumber, from.takeOperationOf(GroupRiskConfig).handler);
        }
        if (from.operations() > 0) {
            from.takeOperationOf(EmailRule);
        }
    }
}

void RiskCourse::save()
{
    note("save");
    const auto expected = m_model.save();
    const int way = below(4);
    if (way == 0) {
        m_client.dialog().handleEvent(WQ::ButtonClicked, 0, 0, QString(), nullptr);
    } else if (way == 1) {
        QTest::keyClick(m_saveButton, Qt::Key_Return);
    } else if (way == 2 && !expected) { // does its work later
        QAccessible::queryAccessibleInterface(m_saveButton)->actionInterface()->doAction("Press");
    } else {
        m_saveButton->click();
    }
    if (!expected) {
        return;
    }
    KeepingTransport& to = server(m_model.group()->server);
    if (to.operations() != 2) {
        differ(QString("a save with %1 operations").arg(to.operations()));
        return;
    }
    const auto operation = to.takeOperationOf(GroupRiskConfig);
    compare("sent", document(*operation.request.data), document(*expected->second));
    ++m_saves;
    m_requests.push_back(
        {m_model.group()->server, operation.handler, {RiskReply::Save, expected->first, *m_model.group(), {}, {}, {}}});
    to.takeOperationOf(EmailRule);
}

void RiskCourse::answer()
{
    if (m_requests.empty()) {
        return;
    }
    // Mostly one of the latest: the early ones are about what is past.
    const int count = int(m_requests.size());
    const int number = chance(80) ? count - 1 - below(std::min(count, 3)) : below(count);
    Request request = std::move(m_requests[std::size_t(number)]);
    m_requests.erase(m_requests.begin() + number);
    RiskReply& reply = request.about;
    const char* const kinds[] = {"configuration", "categories", "save"};
    const QString what = QString("%1 %2 of %3").arg(kinds[reply.kind]).arg(reply.number).arg(text(reply.group));
    if (chance(8)) {
        note("lose " + what);
        return;
    }
    QAV::ITransport::Reply sent;
    if (reply.kind == RiskReply::Config) {
        sent = answerConfig(reply);
    } else if (reply.kind == RiskReply::CategoryList) {
        sent = answerCategories(reply);
    }
    if (reply.kind != RiskReply::CategoryList && chance(25)) {
        reply.error = QString("失败 %1").arg(++m_marks);
        const auto code = chance(50) ? utils::EErrorCode::DeadlineExceeded : utils::EErrorCode::StorageFailure;
        if (chance(70)) {
            sent.records.clear();
        }
        if (sent.records.empty()) {
            reply.config.reset();
        }
        sent.error = support::replyWithError(code, reply.error.toStdString()).error;
    }
    note("answer " + what + ' ' + reply.error);
    request.handler(sent);
    support::awaitCallbacks();
    ++m_answers;
    if (reply.number != 0) {
        m_model.post(reply);
    }
}

QAV::ITransport::Reply RiskCourse::answerConfig(RiskReply& reply)
{
    const ConfigPtr config = makeConfigOf(reply.group);
    const int kind = below(20);
    if (kind == 0) {
        return support::replyWith({});
    }
    if (kind == 1) {
        return support::replyWith({makeGroup(reply.group.id, "不是配置"), config});
    }
    std::vector<nvservice::IDataPtr> records{config->copy()};
    if (kind == 2) {
        records.push_back(makeConfigOf(reply.group));
    }
    reply.config = config;
    return support::replyWith(records);
}

ConfigPtr RiskCourse::makeConfigOf(const GroupKey& group)
{
    const QString mark = QString("%1 #%2").arg(text(group)).arg(++m_marks);
    const ConfigPtr config = makeConfig(group.id, mark.toStdString());
    if (chance(20)) {
        config->rcRule.lists.erase(config->rcRule.lists.begin() + below(8));
    }
    if (chance(20)) {
        config->assetsRCs.clear();
    } else if (chance(30)) {
        config->assetsRCs.push_back(config->assetsRCs.front());
    }
    for (const Check& check : m_checks) {
        config->ratProofSetting.*check.field = chance(50);
    }
    const auto ids = [this] {
        std::vector<std::int32_t> some{10, 11, 12, 13, 14, 99};
        std::shuffle(some.begin(), some.end(), m_random);
        some.resize(std::size_t(below(5)));
        return some;
    };
    config->ratProofSetting.reverseOrderExemptCategoryIds = ids();
    config->ratProofSetting.washTradeExemptCategoryIds = ids();
    nvservice::setSystemTagOfAll(*config, Tags[std::size_t(group.server)]);
    return config;
}

QAV::ITransport::Reply RiskCourse::answerCategories(RiskReply& reply)
{
    std::vector<nvservice::IDataPtr> records;
    for (int id = 10; id < 15; ++id) {
        if (chance(25)) {
            continue;
        }
        // The servers have other names for the same ids.
        const std::string name = std::string(Tags[std::size_t(reply.group.server)]) + std::to_string(id);
        const int sysType = chance(90) ? AllowedSysType : ForbiddenSysType;
        records.push_back(makeCategory(id, name, sysType, chance(90) ? 0 : 2));
        const auto category = boost::dynamic_pointer_cast<nvservice::CCategoryInfo>(records.back());
        if (category->sysType == AllowedSysType && category->categoryType != 2) {
            reply.offered.push_back(category);
        }
    }
    QAV::ITransport::Reply sent = support::replyWith(records);
    if (chance(15)) {
        sent.error = support::replyWithError(utils::EErrorCode::StorageFailure, "分类").error;
    }
    return sent;
}

void RiskCourse::deliver()
{
    note("deliver");
    // What comes while a box is open waits for another turn.
    for (int before = -1; before != m_answers;) {
        before = m_answers;
        QCoreApplication::sendPostedEvents(nullptr, QEvent::MetaCall);
    }
    if (const auto box = m_model.runToBox()) {
        differ("no box " + joined(*box));
    }
}

QMessageBox::StandardButton RiskCourse::showMessage(const WQ::MessageRequest& request)
{
    const auto expected = m_model.runToBox();
    note("box " + request.text);
    compare("box", joined({request.title, request.text}), expected ? joined(*expected) : QString("none"));
    ++m_depth;
    check();
    for (int steps = m_depth < MaxOpenBoxes && chance(40) ? 1 + below(6) : 0; steps > 0 && m_difference.isEmpty();
         --steps) {
        step();
    }
    --m_depth;
    if (expected) {
        m_model.closeBox();
    }
    note("box closed");
    return QMessageBox::Ok;
}

void RiskCourse::check()
{
    compare("covered", !m_mask.isHidden(), m_model.isCovered());
    if (m_model.isCovered()) {
        compare("mask", m_mask.text(), QString(m_model.coversWhole() ? "正在保存" : "正在加载风控数据"));
        compare("whole dialog covered", m_mask.target() == &m_client.dialog(), m_model.coversWhole());
    }
    if (chance(25)) {
        checkTabs();
    }
}

QStringList RiskCourse::limitRemarks() const
{
    std::vector<nvservice::CAssetsRC> limits;
    m_assets.getAssetsRCs(limits);
    QStringList remarks;
    for (const nvservice::CAssetsRC& limit : limits) {
        remarks << QString::fromStdString(limit.remark);
    }
    return remarks;
}

void RiskCourse::checkTabs()
{
    compare("limits", joined(limitRemarks()), joined(m_model.limitRemarks()));
    nvservice::CAccountGroupRCRule lists;
    for (QAV::CAccountStockTradeLimit* const tab : m_limitTabs) {
        tab->updateAccountGroupRCRule(lists);
    }
    for (const nvservice::EZvTraderType type : RiskModel::TabTypes) {
        QStringList actual;
        QStringList expected;
        if (const auto* const list = lists.findList(type)) {
            for (const nvservice::CTradeLimitEntry& entry : list->entries) {
                actual << QString::fromStdString(entry.securityCode + ' ' + entry.securityName);
            }
        }
        if (const auto* const list = m_model.lists().findList(type)) {
            for (const nvservice::CTradeLimitEntry& entry : list->entries) {
                expected << QString::fromStdString(entry.securityCode + ' ' + entry.securityName);
            }
        }
        compare("securities", joined(actual), joined(expected));
    }
    for (const Check& check : m_checks) {
        compare(qPrintable(check.button->text()), check.button->isChecked(), m_model.exempt().*check.field);
    }
    for (const auto page : {RiskModel::ReverseOrderPage, RiskModel::WashTradePage}) {
        compare("exempt categories", joined(support::shown(*m_exemptTables[page])), joined(m_model.exemptNames(page)));
    }
}

} // namespace risk_test
