// SPDX-License-Identifier: Apache-2.0
#include "RandomFlows.h"

#include "support/records/Requests.h"

#include <WQ/CBaseDialog.h>
#include <nvservice/CAccountGroupRCConfig.h>

#include <QtTest>

namespace panel_test
{

using nvservice::EZvDataOperation;
using support::CUnsteadyTransport;
using utils::EErrorCode;

void RandomFlows::playOne()
{
    using Flow = void (RandomFlows::*)();
    static const std::vector<std::pair<int, Flow>> flows = {
        {20, &RandomFlows::addGroup},       {22, &RandomFlows::editGroup},       {14, &RandomFlows::deleteGroup},
        {14, &RandomFlows::configureGroup}, {6, &RandomFlows::refresh},          {5, &RandomFlows::refreshInDisorder},
        {2, &RandomFlows::loseARefresh},    {6, &RandomFlows::switchServer},     {3, &RandomFlows::search},
        {2, &RandomFlows::reopenPanel},     {6, &RandomFlows::letColleagueWork},
    };
    if (m_run.chance(30)) {
        m_answers.releaseSome(1);
    }
    int at = m_run.below(100);
    for (const auto& [weight, flow] : flows) {
        at -= weight;
        if (at < 0) {
            return (this->*flow)();
        }
    }
}

const ModelGroup* RandomFlows::anyListed()
{
    const ModelGroups& listed = m_run.world.listed();
    return listed.empty() ? nullptr : &std::next(listed.begin(), m_run.below(int(listed.size())))->second;
}

QString RandomFlows::anyName()
{
    const ModelGroups& groups = m_run.world.current().model.groups();
    const int kind = m_run.below(100);
    if (kind < 4) {
        return QStringLiteral("  ");
    }
    if (kind < 12 && anyListed()) {
        return QString::fromStdString(anyListed()->input.name);
    }
    if (kind < 20 && !groups.empty()) { // of a group that may not be listed yet
        return QString::fromStdString(groups.rbegin()->second.input.name);
    }
    const QString name = QStringLiteral("流程组%1").arg(++m_names);
    return kind < 30 ? "  " + name + " " : name;
}

std::int64_t RandomFlows::anyAccount(int institution)
{
    std::vector<std::int64_t> rows;
    for (const ModelAccount& account : m_run.world.current().model.accounts()) {
        if (account.isOffered && (institution == NoInstitution || account.info.institutionId == institution)) {
            rows.push_back(account.row);
        }
    }
    return rows.empty() ? anyAccount(NoInstitution) : rows[std::size_t(m_run.below(int(rows.size())))];
}

EditorPlan RandomFlows::makePlan(const GroupInput& input, bool isNew)
{
    EditorPlan plan;
    const auto& institutions = m_run.world.current().model.institutions();
    if (isNew ? !m_run.chance(4) : m_run.chance(8)) {
        plan.institution = std::next(institutions.begin(), m_run.below(int(institutions.size())))->first;
    }
    if (isNew || m_run.chance(60)) {
        plan.name = anyName();
    }
    const int institution = m_run.chance(92) ? plan.institution.value_or(input.institution) : NoInstitution;
    for (int count = isNew ? m_run.below(3) + (m_run.chance(90) ? 1 : 0) : m_run.below(2); count > 0; --count) {
        plan.accountsToAdd.push_back(anyAccount(institution));
    }
    plan.deletesFirstAccount = m_run.chance(isNew ? 5 : 25);
    plan.waitsForData = m_run.chance(95);
    plan.saves = plan.waitsForData && m_run.chance(90);
    return plan;
}

QString RandomFlows::panelsRefusal(const GroupInput& input, int ownId)
{
    if (input.accounts.empty()) {
        return QStringLiteral("保存账号组失败: 请选择账号!");
    }
    for (const auto& [id, group] : m_run.world.listed()) {
        if (id != ownId && group.input.name == input.name) {
            return QStringLiteral("保存账号组失败: 已存在相同的账号组名称!");
        }
    }
    return {};
}

void RandomFlows::runEditor(const ModelGroup* listed, const std::function<void()>& openEditor)
{
    Line& line = m_run.world.current();
    const int ownId = listed ? listed->id : -1;
    GroupInput input = listed ? listed->input : GroupInput();
    EditorPlan plan = makePlan(input, !listed);
    const EWeather weather = m_answers.forecast();
    bool isComplete = false;
    bool isSent = false;
    plan.beforeTheEnd = [&] {
        if (m_run.chance(15)) {
            m_answers.releaseSome(1);
        }
        isComplete = !input.name.empty() && input.institution != NoInstitution;
        if (!plan.saves || !isComplete) {
            return;
        }
        const QString refusal = panelsRefusal(input, ownId);
        if (refusal.isEmpty()) {
            isSent = true;
            m_answers.begin(line, weather, 1);
            return;
        }
        m_run.note("  -> " + refusal);
        ++m_run.counts["refusals by the panel"];
        m_run.world.boxes.expectMessage(QMessageBox::Critical, "保存账号组", refusal);
        m_run.world.boxes.expectDialog([&](WQ::CBaseDialog& again) {
            GroupInput kept = input;
            followPlan(again, m_run.world, {{}, {}, {}, false, true, false, {}}, kept);
            QCOMPARE(kept.institution, input.institution);
        });
    };
    m_run.world.boxes.expectDialog([&](WQ::CBaseDialog& dialog) {
        followPlan(dialog, m_run.world, plan, input);
        if (plan.saves && !isComplete) {
            QVERIFY(dialog.isVisible());
            pressButton(dialog, "关闭");
        }
    });
    const auto holdAccounts = [](const CUnsteadyTransport::Request& request) {
        return request.dataType == nvservice::DataType::Account;
    };
    if (!plan.waitsForData) {
        line.transport->setHold(holdAccounts);
    }
    openEditor();
    m_answers.end(line);
    if (!isSent) { // otherwise the answer to the operation may come before it is announced
        m_answers.releaseQueries();
    }
    m_run.note(QStringLiteral("  '%1' of %2, %3 accounts%4")
                   .arg(QString::fromStdString(input.name))
                   .arg(input.institution)
                   .arg(input.accounts.size())
                   .arg(isSent ? "" : ", not sent"));
    if (!isSent) {
        return;
    }
    const QString what = listed ? QStringLiteral("编辑账号组") : QStringLiteral("添加账号组");
    EErrorCode expected = EErrorCode::Success;
    if (weather != RequestLost) {
        expected = listed ? line.model.modify(ownId, listed->revision, input) : line.model.add(input);
    }
    m_answers.take(line, weather, expected, what, 0);
}

void RandomFlows::addGroup()
{
    m_run.note("add");
    runEditor(nullptr, [this] { pressButton(*m_run.world.client.panel, "添加账号组"); });
}

void RandomFlows::editGroup()
{
    const ModelGroup* const listed = anyListed();
    if (!listed) {
        return;
    }
    const ModelGroup group = *listed;
    m_run.note(QStringLiteral("edit %1 r%2").arg(group.id).arg(group.revision));
    runEditor(&group, [&] { pressRowButton(group.id, QAV::EditRowButton); });
}

void RandomFlows::pressRowButton(int groupId, int button)
{
    const QString key = QStringLiteral("%1|%2").arg(m_run.world.current().name()).arg(groupId);
    QVERIFY(m_run.world.client.panel->handleEvent(WQ::RowButtonClicked, 4, button, key, nullptr));
}

void RandomFlows::deleteGroup()
{
    const ModelGroup* const listed = anyListed();
    if (!listed) {
        return;
    }
    const ModelGroup group = *listed;
    const bool isSure = m_run.chance(80);
    const EWeather weather = m_answers.forecast();
    m_run.note(QStringLiteral("delete %1 r%2%3").arg(group.id).arg(group.revision).arg(isSure ? "" : ", no"));
    Line& line = m_run.world.current();
    m_run.world.boxes.expectQuestion(QMessageBox::Question, "提示", "确定要删除该项?",
                                     isSure ? QMessageBox::Yes : QMessageBox::No);
    m_answers.begin(line, isSure ? weather : Prompt, 1);
    pressRowButton(group.id, QAV::DeleteRowButton);
    m_answers.end(line);
    if (!isSure) {
        return;
    }
    const EErrorCode expected =
        weather == RequestLost ? EErrorCode::Success : line.model.remove(group.id, group.revision);
    m_answers.take(line, weather, expected, "删除账号组", 0);
}

void RandomFlows::configureGroup()
{
    const ModelGroup* const listed = anyListed();
    if (!listed) {
        return;
    }
    const int id = listed->id;
    Line& line = m_run.world.current();
    m_run.note(QStringLiteral("configure %1").arg(id));
    line.transport->setHold([](const CUnsteadyTransport::Request& request) {
        return !request.isOperation && (request.dataType == nvservice::DataType::GroupRiskConfig ||
                                        request.dataType == nvservice::DataType::Category);
    });
    m_run.world.boxes.expectDialog([&](WQ::CBaseDialog& dialog) {
        line.transport->setHold({});
        m_answers.openRiskSettings(id);
        m_run.world.noteQueries();
        const auto group = line.model.groups().find(id);
        const bool isThere = group != line.model.groups().end();
        if (!isThere) {
            // The text says who deleted the group and when.
            for (const auto& held : line.transport->heldReplies()) {
                if (held.request.dataType != nvservice::DataType::GroupRiskConfig || held.request.isOperation) {
                    continue;
                }
                QCOMPARE(int(held.error.code()), int(EErrorCode::NotFound));
                m_run.world.boxes.expectMessage(QMessageBox::Information, "错误",
                                                QString::fromStdString(held.error.errorMsg()));
            }
        }
        QVERIFY(!isUncovered(dialog));
        m_answers.releaseQueries();
        QVERIFY(isUncovered(dialog));
        if (isThere) {
            QVERIFY(shownChecks(dialog) == group->second.checks);
            const std::int64_t revision = group->second.riskRevision;
            if (m_run.chance(10)) {
                work(line);
            }
            for (int saves = m_run.below(3); saves > 0; --saves) {
                saveRisk(dialog, line, id, revision);
            }
        } else {
            const int requests = line.transport->requests();
            pressButton(dialog, "保存设置");
            QCOMPARE(line.transport->requests(), requests);
        }
        dialog.close();
    });
    pressRowButton(id, QAV::RiskSettingsRowButton);
}

void RandomFlows::saveRisk(WQ::CBaseDialog& dialog, Line& line, int groupId, std::int64_t loadedRevision)
{
    if (!isUncovered(dialog)) { // the answer to the save before is late
        const int requests = line.transport->requests();
        pressButton(dialog, "保存设置");
        QCOMPARE(line.transport->requests(), requests);
        return;
    }
    const TradeChecks checks{m_run.chance(50), m_run.chance(50), m_run.chance(50), m_run.chance(50)};
    setChecks(dialog, checks);
    const EWeather weather = m_answers.forecast();
    m_answers.begin(line, weather, 2);
    pressButton(dialog, "保存设置");
    m_answers.end(line);
    EErrorCode expected = EErrorCode::Success;
    if (weather != RequestLost) {
        expected = line.model.saveRisk(groupId, loadedRevision, checks, false);
    }
    m_answers.take(line, weather, expected, {}, groupId);
    if (weather != Late) {
        QVERIFY(isUncovered(dialog));
    }
}

void RandomFlows::refresh()
{
    m_run.note("refresh");
    pressButton(*m_run.world.client.panel, "立即刷新");
}

void RandomFlows::refreshInDisorder()
{
    m_run.note("refresh in disorder");
    const bool holdsProducts = m_run.chance(50);
    m_run.world.setHold([holdsProducts](const CUnsteadyTransport::Request& request) {
        return !request.isOperation && (request.dataType == nvservice::DataType::AccountGroup ||
                                        (holdsProducts && request.dataType == nvservice::DataType::Product));
    });
    for (int queries = 2 + m_run.below(3); queries > 0; --queries) {
        switch (m_run.below(3)) {
        case 0:
            pressButton(*m_run.world.client.panel, "立即刷新");
            break;
        case 1:
            m_run.world.client.panel->onActive();
            break;
        default:
            m_run.world.switchTo(std::size_t(m_run.below(int(m_run.world.lines()))));
            break;
        }
        m_run.world.settle();
        QCOMPARE(m_run.world.shownRows(), QStringList());
        QVERIFY(m_run.world.client.mask()->isVisible());
        if (m_run.chance(50)) {
            work(m_run.world.current());
        }
        if (m_run.chance(30)) {
            m_answers.releaseQueries();
        }
    }
    m_answers.releaseQueries();
    m_run.world.setHold({});
    m_answers.releaseQueries();
}

void RandomFlows::loseARefresh()
{
    m_run.note("lose a refresh");
    Line& line = m_run.world.current();
    line.transport->setHold([](const CUnsteadyTransport::Request& request) {
        return !request.isOperation && request.dataType == nvservice::DataType::AccountGroup;
    });
    m_answers.shortenDeadline(line);
    m_run.world.client.panel->onActive();
    m_answers.end(line);
    m_run.world.noteQueries();
    m_run.world.forgetListed();
    for (const auto& held : line.transport->heldReplies()) {
        if (!held.request.isOperation) {
            line.transport->drop(held.number);
        }
    }
    QVERIFY(waitUntil([this] { return m_run.world.client.mask()->isHidden(); }));
}

void RandomFlows::switchServer()
{
    m_run.world.switchTo(std::size_t(m_run.below(int(m_run.world.lines()))));
    m_run.note("switch to " + m_run.world.current().name());
}

void RandomFlows::search()
{
    const ModelGroup* const listed = anyListed();
    if (!listed) {
        return;
    }
    const QString text = QString::fromStdString(listed->input.name).left(2);
    m_run.note("search " + text);
    m_run.world.client.typeInSearchEdit(text);
    QTest::keyClick(m_run.world.client.searchEdit(), Qt::Key_Return);
    QStringList found;
    for (const QString& row : m_run.world.listedRows()) {
        if (row.section(", ", 0, 0).contains(text)) {
            found << row;
        }
    }
    QCOMPARE(m_run.world.shownRows(), found);
    m_run.world.client.searchEdit()->clear();
    QTest::keyClick(m_run.world.client.searchEdit(), Qt::Key_Return);
}

void RandomFlows::reopenPanel()
{
    m_run.note("close the panel while it loads, and open it again");
    const std::size_t server = m_run.world.currentIndex();
    m_run.world.setHold([](const CUnsteadyTransport::Request&) { return true; });
    pressButton(*m_run.world.client.panel, "立即刷新");
    m_run.world.closePanel();
    m_answers.forgetPanel();
    m_run.world.setHold({});
    m_answers.releaseQueries();
    m_run.world.checkNoWidgetIsLeft();
    if (!m_answers.arePending()) { // an answer that is on its way keeps the record of its operation
        m_run.world.checkNoRecordIsLeft();
    }
    m_run.world.openPanel(server);
}

void RandomFlows::letColleagueWork()
{
    work(m_run.world.line(std::size_t(m_run.below(int(m_run.world.lines())))));
}

void RandomFlows::work(Line& line)
{
    m_run.world.noteQueries();
    const ModelGroups& groups = line.model.groups();
    if (groups.empty()) {
        return;
    }
    const ModelGroup group = std::next(groups.begin(), m_run.below(int(groups.size())))->second;
    const bool isRisk = m_run.chance(30);
    const int dataType = isRisk ? nvservice::DataType::GroupRiskConfig : nvservice::DataType::AccountGroup;
    const service::Reply reply =
        line.engine->query(line.colleague, support::queryOf(dataType, std::to_string(group.id)));
    QCOMPARE(int(reply.records.size()), 1);
    auto request = support::operationOn(dataType, EZvDataOperation::Modify, reply.records.front());
    EErrorCode expected = EErrorCode::Success;
    if (const auto config = boost::dynamic_pointer_cast<nvservice::CAccountGroupRCConfig>(request.data)) {
        nvservice::CRatProofSetting& setting = config->ratProofSetting;
        setting.washTradeForbidden = !setting.washTradeForbidden;
        expected = line.model.saveRisk(group.id, config->revision(), checksOf(setting), true);
    } else if (m_run.chance(60)) {
        GroupInput input = group.input;
        input.name = QStringLiteral("同事组%1").arg(++m_names).toStdString();
        boost::dynamic_pointer_cast<nvservice::CAccountGroup>(request.data)->groupName = input.name;
        expected = line.model.modify(group.id, group.revision, input);
    } else {
        request.operation = EZvDataOperation::Delete;
        expected = line.model.remove(group.id, group.revision);
    }
    m_run.note(QStringLiteral("a colleague: %1 of type %2 on %3 %4")
                   .arg(int(request.operation))
                   .arg(request.dataType)
                   .arg(line.name())
                   .arg(group.id));
    QCOMPARE(int(line.engine->operate(line.colleague, request).error.code()), int(expected));
}

} // namespace panel_test
