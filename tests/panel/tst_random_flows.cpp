#include "FlowDialogs.h"
#include "FlowWorld.h"

#include "panel/ControlId.h"
#include "support/UnexpectedLog.h"

#include <WQ/CBaseDialog.h>

#include <WQ/EventType.h>
#include <nvservice/CAccountGroupRCConfig.h>
#include <nvservice/DataType.h>

#include <QApplication>
#include <QtTest>

#include <random>

using namespace panel_test;
using nvservice::EZvDataOperation;
using support::CUnsteadyTransport;
using utils::EErrorCode;

namespace
{

#ifdef QAV_SLOW_BUILD
constexpr int DefaultFlows = 200;
#else
constexpr int DefaultFlows = 1000;
#endif
constexpr unsigned DefaultSeed = 20260105;
constexpr std::chrono::milliseconds ShortDeadline(20);

/// What becomes of an operation and its answer.
enum EWeather { Prompt, Late, AnswerLost, RequestLost };

/// An answer that the panel still waits for.
struct PendingAnswer {
    Line* line = nullptr;
    int number = 0;
    QMessageBox::Icon kind = QMessageBox::Information;
    QString text;
    bool refreshes = false;
    /// Of the risk settings: the group that has to be open for the answer to be told; 0: told in any case.
    int riskGroup = 0;
    bool isHeard = true; ///< by a panel that is still there
};

QAV::CKolmClientCenter& center()
{
    return *utils::CSingletonT<QAV::CKolmClientCenter>::instance();
}

} // namespace

/// The panel and its dialogs under random work, on bad lines to real servers, against a model of what the databases
/// hold. QAV_FLOW_SEED and QAV_FLOW_COUNT choose other flows.
class TestRandomFlows : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void whateverTheUserAndTheLinesDoDatabaseAndTableAreAsTheModelSays();

private:
    void runOneFlow();
    void addGroup();
    void editGroup();
    void deleteGroup();
    void configureGroup();
    void refresh();
    void refreshInDisorder();
    void loseARefresh();
    void switchServer();
    void search();
    void reopenPanel();
    void letColleagueWork();

    /// @param listed  the group to edit; null for a new one
    void runEditor(const ModelGroup* listed, const std::function<void()>& openEditor);
    EditorPlan makePlan(const GroupInput& input, bool isNew);
    QString anyName();
    std::int64_t anyAccount(int institution);
    /// Why the panel itself refuses to save a group; empty when it doesn't.
    QString panelsRefusal(const GroupInput& input, int ownId);
    void saveRisk(WQ::CBaseDialog& dialog, Line& line, int groupId, std::int64_t loadedRevision);

    EWeather forecast();
    void beginWeather(Line& line, EWeather weather, int operations);
    void endWeather(Line& line);
    void answerOperation(Line& line, EWeather weather, EErrorCode expected, const QString& what, int riskGroup);
    /// Lets held answers to queries come back in any order.
    void releaseQueries();
    /// What the service answers to somebody else.
    void work(Line& line);
    void tell(const PendingAnswer& answer);
    void releaseSome(std::size_t atMost);
    void checkTable();
    void checkNothingIsLeft();

    int below(int limit) { return int(m_random() % unsigned(limit)); }
    bool chance(int percent) { return below(100) < percent; }
    const ModelGroup* anyListed();
    void pressRowButton(int groupId, int button);
    void note(const QString& what) { m_story << what; }

    std::mt19937 m_random;
    QStringList m_story; ///< what was done lately
    std::vector<PendingAnswer> m_pending;
    int m_openRiskGroup = 0;
    int m_widgetsWithoutPanel = 0;
    int m_names = 0;
    std::map<QString, int> m_counts;
    std::unique_ptr<support::UnexpectedLog> m_log;
    std::unique_ptr<FlowWorld> m_world;
};

void TestRandomFlows::init()
{
    m_log = std::make_unique<support::UnexpectedLog>();
    m_world = std::make_unique<FlowWorld>();
}

void TestRandomFlows::cleanup()
{
    m_world->boxes.verify();
    m_world.reset();
    const QStringList unexpected = m_log->unexpected();
    m_log.reset();
    QCOMPARE(unexpected, QStringList());
}

void TestRandomFlows::whateverTheUserAndTheLinesDoDatabaseAndTableAreAsTheModelSays()
{
    bool isSet = false;
    const unsigned wantedSeed = qEnvironmentVariableIntValue("QAV_FLOW_SEED", &isSet);
    const unsigned seed = isSet ? wantedSeed : DefaultSeed;
    const int wantedFlows = qEnvironmentVariableIntValue("QAV_FLOW_COUNT", &isSet);
    const int flows = isSet ? wantedFlows : DefaultFlows;
    m_random.seed(seed);

    m_world->openPanel(0);
    m_world->settle();
    reopenPanel(); // what is made once and kept is there now
    m_world->closePanel();
    m_world->settle();
    m_widgetsWithoutPanel = QApplication::allWidgets().size();
    m_world->openPanel(0);
    m_world->settle();
    for (int flow = 0; flow < flows; ++flow) {
        runOneFlow();
        m_world->settle();
        m_world->compareDatabases();
        checkTable();
        const QStringList failures = m_world->boxes.takeFailures();
        const QStringList log = m_log->unexpected();
        if (QTest::currentTestFailed() || !failures.isEmpty() || !log.isEmpty()) {
            for (const QString& step : m_story.mid(qMax(0, m_story.size() - 30)))
                qInfo("%s", qPrintable(step));
            QFAIL(qPrintable(
                QStringLiteral("flow %1 of seed %2: %3").arg(flow).arg(seed).arg((failures + log).join(' '))));
        }
    }
    releaseSome(m_pending.size());
    m_world->settle();
    checkTable();
    m_world->closePanel();
    m_world->settle();
    checkNothingIsLeft();
    QString counts;
    for (const auto& [what, count] : m_counts)
        counts += QStringLiteral("%1 %2, ").arg(count).arg(what);
    qInfo("seed %u: %s%d flows", seed, qPrintable(counts), flows);
}

void TestRandomFlows::runOneFlow()
{
    using Flow = void (TestRandomFlows::*)();
    static const std::vector<std::pair<int, Flow>> flows = {
        {20, &TestRandomFlows::addGroup},        {22, &TestRandomFlows::editGroup},
        {14, &TestRandomFlows::deleteGroup},     {14, &TestRandomFlows::configureGroup},
        {6, &TestRandomFlows::refresh},          {5, &TestRandomFlows::refreshInDisorder},
        {2, &TestRandomFlows::loseARefresh},     {6, &TestRandomFlows::switchServer},
        {3, &TestRandomFlows::search},           {2, &TestRandomFlows::reopenPanel},
        {6, &TestRandomFlows::letColleagueWork},
    };
    if (chance(30))
        releaseSome(1);
    int at = below(100);
    for (const auto& [weight, flow] : flows) {
        at -= weight;
        if (at < 0)
            return (this->*flow)();
    }
}

const ModelGroup* TestRandomFlows::anyListed()
{
    const ModelGroups& listed = m_world->listed();
    return listed.empty() ? nullptr : &std::next(listed.begin(), below(int(listed.size())))->second;
}

EWeather TestRandomFlows::forecast()
{
    const int at = below(100);
    return at < 60 ? Prompt : at < 85 ? Late : at < 93 ? AnswerLost : RequestLost;
}

void TestRandomFlows::beginWeather(Line& line, EWeather weather, int operations)
{
    line.transport->setHold([](const CUnsteadyTransport::Request& request) { return request.isOperation; });
    if (weather == AnswerLost || weather == RequestLost)
        center().setDeadline(line.server.name, ShortDeadline);
    if (weather == RequestLost)
        line.transport->loseOperations(operations);
}

void TestRandomFlows::endWeather(Line& line)
{
    center().setDeadline(line.server.name, std::chrono::hours(1));
    line.transport->setHold({});
    line.transport->waitForServer();
}

void TestRandomFlows::answerOperation(Line& line, EWeather weather, EErrorCode expected, const QString& what,
                                      int riskGroup)
{
    PendingAnswer answer;
    answer.line = &line;
    answer.riskGroup = riskGroup;
    const bool isRisk = riskGroup != 0;
    const int dataType = isRisk ? nvservice::DataType::GroupRiskConfig : nvservice::DataType::AccountGroup;
    QString error;
    if (weather == AnswerLost || weather == RequestLost) {
        error = QStringLiteral("分系统“%1”未应答: 超过 %2 毫秒, 未知是否已执行")
                    .arg(line.name())
                    .arg(ShortDeadline.count());
    }
    // The answers of earlier operations may still be held: this one's is the last of its kind.
    for (const auto& held : line.transport->heldReplies()) {
        if (held.request.dataType == nvservice::DataType::EmailRule)
            line.transport->release(held.number); // nobody listens to it
        else if (held.request.dataType == dataType)
            answer.number = held.number;
    }
    if (weather != RequestLost) {
        const auto all = line.transport->heldReplies();
        const auto held =
            std::find_if(all.begin(), all.end(), [&](const auto& reply) { return reply.number == answer.number; });
        QVERIFY2(held != all.end(), "the operation was not sent");
        if (held->error.code() != expected)
            note(QStringLiteral("the service says: %1").arg(QString::fromStdString(held->error.errorMsg())));
        QCOMPARE(int(held->error.code()), int(expected));
        if (weather != AnswerLost)
            error = QString::fromStdString(held->error.errorMsg());
    }
    answer.refreshes = !isRisk && error.isEmpty();
    if (!isRisk)
        answer.text = what + (error.isEmpty() ? QStringLiteral("成功!") : QStringLiteral("失败!(%1)").arg(error));
    else
        answer.text = error.isEmpty() ? QStringLiteral("保存成功") : error;
    if (isRisk && !error.isEmpty())
        answer.kind = QMessageBox::Critical;
    note(QStringLiteral("  -> %1%2").arg(answer.text, weather == Late ? " (later)" : ""));
    ++m_counts[error.isEmpty() ? "operations done" : "operations refused or lost"];

    switch (weather) {
    case Prompt:
        tell(answer);
        break;
    case Late:
        m_pending.push_back(answer);
        break;
    case AnswerLost:
    case RequestLost:
        if (weather == AnswerLost)
            line.transport->drop(answer.number);
        m_world->boxes.expectMessage(answer.kind, "提示", answer.text, QMessageBox::Ok, QMessageBox::Ok);
        QVERIFY(waitUntil([this] { return m_world->boxes.failures().isEmpty(); }));
        break;
    }
}

void TestRandomFlows::tell(const PendingAnswer& answer)
{
    const bool isTold = answer.isHeard && (answer.riskGroup == 0 || answer.riskGroup == m_openRiskGroup);
    if (isTold)
        m_world->boxes.expectMessage(answer.kind, "提示", answer.text, QMessageBox::Ok, QMessageBox::Ok);
    answer.line->transport->release(answer.number);
    m_world->settle();
}

void TestRandomFlows::releaseSome(std::size_t atMost)
{
    for (std::size_t i = 0; i < atMost && !m_pending.empty(); ++i) {
        const auto chosen = m_pending.begin() + below(int(m_pending.size()));
        const PendingAnswer answer = *chosen;
        m_pending.erase(chosen);
        note(QStringLiteral("the answer comes: %1").arg(answer.text));
        tell(answer);
    }
}

QString TestRandomFlows::anyName()
{
    const ModelGroups& groups = m_world->current().model.groups();
    const int kind = below(100);
    if (kind < 4)
        return QStringLiteral("  ");
    if (kind < 12 && anyListed())
        return QString::fromStdString(anyListed()->input.name);
    if (kind < 20 && !groups.empty()) // of a group that may not be listed yet
        return QString::fromStdString(groups.rbegin()->second.input.name);
    const QString name = QStringLiteral("流程组%1").arg(++m_names);
    return kind < 30 ? "  " + name + " " : name;
}

std::int64_t TestRandomFlows::anyAccount(int institution)
{
    std::vector<std::int64_t> rows;
    for (const ModelAccount& account : m_world->current().model.accounts()) {
        if (account.isOffered && (institution == NoInstitution || account.info.institutionId == institution))
            rows.push_back(account.row);
    }
    return rows.empty() ? anyAccount(NoInstitution) : rows[std::size_t(below(int(rows.size())))];
}

EditorPlan TestRandomFlows::makePlan(const GroupInput& input, bool isNew)
{
    EditorPlan plan;
    const auto& institutions = m_world->current().model.institutions();
    if (isNew ? !chance(4) : chance(8))
        plan.institution = std::next(institutions.begin(), below(int(institutions.size())))->first;
    if (isNew || chance(60))
        plan.name = anyName();
    const int institution = chance(92) ? plan.institution.value_or(input.institution) : NoInstitution;
    for (int count = isNew ? below(3) + (chance(90) ? 1 : 0) : below(2); count > 0; --count)
        plan.accountsToAdd.push_back(anyAccount(institution));
    plan.deletesFirstAccount = chance(isNew ? 5 : 25);
    plan.waitsForData = chance(95);
    plan.saves = plan.waitsForData && chance(90);
    return plan;
}

QString TestRandomFlows::panelsRefusal(const GroupInput& input, int ownId)
{
    if (input.accounts.empty())
        return QStringLiteral("保存账号组失败: 请选择账号!");
    for (const auto& [id, group] : m_world->listed()) {
        if (id != ownId && group.input.name == input.name)
            return QStringLiteral("保存账号组失败: 已存在相同的账号组名称!");
    }
    return {};
}

void TestRandomFlows::runEditor(const ModelGroup* listed, const std::function<void()>& openEditor)
{
    Line& line = m_world->current();
    const int ownId = listed ? listed->id : -1;
    GroupInput input = listed ? listed->input : GroupInput();
    EditorPlan plan = makePlan(input, !listed);
    const EWeather weather = forecast();
    bool isComplete = false;
    bool isSent = false;
    plan.beforeTheEnd = [&] {
        if (chance(15))
            releaseSome(1);
        isComplete = !input.name.empty() && input.institution != NoInstitution;
        if (!plan.saves || !isComplete)
            return;
        const QString refusal = panelsRefusal(input, ownId);
        if (refusal.isEmpty()) {
            isSent = true;
            beginWeather(line, weather, 1);
            return;
        }
        note("  -> " + refusal);
        ++m_counts["refusals by the panel"];
        m_world->boxes.expectMessage(QMessageBox::Critical, "保存账号组", refusal, QMessageBox::Ok, QMessageBox::Ok);
        m_world->boxes.expectDialog([&](WQ::CBaseDialog& again) {
            GroupInput kept = input;
            followPlan(again, *m_world, {{}, {}, {}, false, true, false, {}}, kept);
            QCOMPARE(kept.institution, input.institution);
        });
    };
    m_world->boxes.expectDialog([&](WQ::CBaseDialog& dialog) {
        followPlan(dialog, *m_world, plan, input);
        if (plan.saves && !isComplete) {
            QVERIFY(dialog.isVisible());
            pressButton(dialog, "关闭");
        }
    });
    const auto holdAccounts = [](const CUnsteadyTransport::Request& request) {
        return request.dataType == nvservice::DataType::Account;
    };
    if (!plan.waitsForData)
        line.transport->setHold(holdAccounts);
    openEditor();
    endWeather(line);
    if (!isSent) // otherwise the answer to the operation may come before it is announced
        releaseQueries();
    note(QStringLiteral("  '%1' of %2, %3 accounts%4")
             .arg(QString::fromStdString(input.name))
             .arg(input.institution)
             .arg(input.accounts.size())
             .arg(isSent ? "" : ", not sent"));
    if (!isSent)
        return;
    const QString what = listed ? QStringLiteral("编辑账号组") : QStringLiteral("添加账号组");
    EErrorCode expected = EErrorCode::Success;
    if (weather != RequestLost)
        expected = listed ? line.model.modify(ownId, listed->revision, input) : line.model.add(input);
    answerOperation(line, weather, expected, what, 0);
}

void TestRandomFlows::addGroup()
{
    note("add");
    runEditor(nullptr, [this] { pressButton(*m_world->client.panel, "添加账号组"); });
}

void TestRandomFlows::editGroup()
{
    const ModelGroup* const listed = anyListed();
    if (!listed)
        return;
    const ModelGroup group = *listed;
    note(QStringLiteral("edit %1 r%2").arg(group.id).arg(group.revision));
    runEditor(&group, [&] { pressRowButton(group.id, QAV::EditRowButton); });
}

void TestRandomFlows::pressRowButton(int groupId, int button)
{
    const QString key = QStringLiteral("%1|%2").arg(m_world->current().name()).arg(groupId);
    QVERIFY(m_world->client.panel->handleEvent(WQ::RowButtonClicked, 4, button, key, nullptr));
}

void TestRandomFlows::deleteGroup()
{
    const ModelGroup* const listed = anyListed();
    if (!listed)
        return;
    const ModelGroup group = *listed;
    const bool isSure = chance(80);
    const EWeather weather = forecast();
    note(QStringLiteral("delete %1 r%2%3").arg(group.id).arg(group.revision).arg(isSure ? "" : ", no"));
    Line& line = m_world->current();
    m_world->boxes.expectMessage(QMessageBox::Question, "提示", "确定要删除该项?", QMessageBox::Yes | QMessageBox::No,
                                 isSure ? QMessageBox::Yes : QMessageBox::No);
    beginWeather(line, isSure ? weather : Prompt, 1);
    pressRowButton(group.id, QAV::DeleteRowButton);
    endWeather(line);
    if (!isSure)
        return;
    const EErrorCode expected =
        weather == RequestLost ? EErrorCode::Success : line.model.remove(group.id, group.revision);
    answerOperation(line, weather, expected, "删除账号组", 0);
}

void TestRandomFlows::configureGroup()
{
    const ModelGroup* const listed = anyListed();
    if (!listed)
        return;
    const int id = listed->id;
    Line& line = m_world->current();
    note(QStringLiteral("configure %1").arg(id));
    line.transport->setHold([](const CUnsteadyTransport::Request& request) {
        return !request.isOperation && (request.dataType == nvservice::DataType::GroupRiskConfig ||
                                        request.dataType == nvservice::DataType::Category);
    });
    m_world->boxes.expectDialog([&](WQ::CBaseDialog& dialog) {
        line.transport->setHold({});
        m_openRiskGroup = id;
        m_world->noteQueries();
        const auto group = line.model.groups().find(id);
        const bool isThere = group != line.model.groups().end();
        if (!isThere) {
            // The text says who deleted the group and when.
            for (const auto& held : line.transport->heldReplies()) {
                if (held.request.dataType != nvservice::DataType::GroupRiskConfig || held.request.isOperation)
                    continue;
                QCOMPARE(int(held.error.code()), int(EErrorCode::NotFound));
                m_world->boxes.expectMessage(QMessageBox::Information, "错误",
                                             QString::fromStdString(held.error.errorMsg()), QMessageBox::Ok,
                                             QMessageBox::Ok);
            }
        }
        QVERIFY(!isUncovered(dialog));
        releaseQueries();
        QVERIFY(isUncovered(dialog));
        if (isThere) {
            QVERIFY(shownChecks(dialog) == group->second.checks);
            const std::int64_t revision = group->second.riskRevision;
            if (chance(10))
                work(line);
            for (int saves = below(3); saves > 0; --saves)
                saveRisk(dialog, line, id, revision);
        } else {
            const int requests = line.transport->requests();
            pressButton(dialog, "保存设置");
            QCOMPARE(line.transport->requests(), requests);
        }
        dialog.close();
    });
    pressRowButton(id, QAV::RiskSettingsRowButton);
}

void TestRandomFlows::saveRisk(WQ::CBaseDialog& dialog, Line& line, int groupId, std::int64_t loadedRevision)
{
    if (!isUncovered(dialog)) { // the answer to the save before is late
        const int requests = line.transport->requests();
        pressButton(dialog, "保存设置");
        QCOMPARE(line.transport->requests(), requests);
        return;
    }
    const TradeChecks checks{chance(50), chance(50), chance(50), chance(50)};
    setChecks(dialog, checks);
    const EWeather weather = forecast();
    beginWeather(line, weather, 2);
    pressButton(dialog, "保存设置");
    endWeather(line);
    EErrorCode expected = EErrorCode::Success;
    if (weather != RequestLost)
        expected = line.model.saveRisk(groupId, loadedRevision, checks, false);
    answerOperation(line, weather, expected, {}, groupId);
    if (weather != Late)
        QVERIFY(isUncovered(dialog));
}

void TestRandomFlows::refresh()
{
    note("refresh");
    pressButton(*m_world->client.panel, "立即刷新");
}

void TestRandomFlows::refreshInDisorder()
{
    note("refresh in disorder");
    const bool holdsProducts = chance(50);
    for (std::size_t i = 0; i < m_world->lines(); ++i) {
        m_world->line(i).transport->setHold([holdsProducts](const CUnsteadyTransport::Request& request) {
            return !request.isOperation && (request.dataType == nvservice::DataType::AccountGroup ||
                                            (holdsProducts && request.dataType == nvservice::DataType::Product));
        });
    }
    for (int queries = 2 + below(3); queries > 0; --queries) {
        switch (below(3)) {
        case 0:
            pressButton(*m_world->client.panel, "立即刷新");
            break;
        case 1:
            m_world->client.panel->onActive();
            break;
        default:
            m_world->switchTo(std::size_t(below(int(m_world->lines()))));
            break;
        }
        m_world->settle();
        QCOMPARE(m_world->shownRows(), QStringList());
        QVERIFY(m_world->client.mask()->isVisible());
        if (chance(50))
            work(m_world->current());
        if (chance(30))
            releaseQueries();
    }
    releaseQueries();
    for (std::size_t i = 0; i < m_world->lines(); ++i)
        m_world->line(i).transport->setHold({});
    releaseQueries();
}

void TestRandomFlows::releaseQueries()
{
    for (;;) {
        m_world->settle();
        std::vector<std::pair<CUnsteadyTransport*, int>> held;
        for (std::size_t i = 0; i < m_world->lines(); ++i) {
            CUnsteadyTransport* const transport = m_world->line(i).transport.get();
            for (const auto& reply : transport->heldReplies()) {
                if (!reply.request.isOperation)
                    held.emplace_back(transport, reply.number);
            }
        }
        if (held.empty())
            return;
        const auto& [transport, number] = held[std::size_t(below(int(held.size())))];
        transport->release(number);
    }
}

void TestRandomFlows::loseARefresh()
{
    note("lose a refresh");
    Line& line = m_world->current();
    line.transport->setHold([](const CUnsteadyTransport::Request& request) {
        return !request.isOperation && request.dataType == nvservice::DataType::AccountGroup;
    });
    center().setDeadline(line.server.name, ShortDeadline);
    m_world->client.panel->onActive();
    endWeather(line);
    m_world->noteQueries();
    m_world->forgetListed();
    for (const auto& held : line.transport->heldReplies()) {
        if (!held.request.isOperation)
            line.transport->drop(held.number);
    }
    QVERIFY(waitUntil([this] { return m_world->client.mask()->isHidden(); }));
}

void TestRandomFlows::switchServer()
{
    m_world->switchTo(std::size_t(below(int(m_world->lines()))));
    note("switch to " + m_world->current().name());
}

void TestRandomFlows::search()
{
    const ModelGroup* const listed = anyListed();
    if (!listed)
        return;
    const QString text = QString::fromStdString(listed->input.name).left(2);
    note("search " + text);
    m_world->client.typeInSearchEdit(text);
    QTest::keyClick(m_world->client.searchEdit(), Qt::Key_Return);
    QStringList found;
    for (const QString& row : m_world->listedRows()) {
        if (row.section(", ", 0, 0).contains(text))
            found << row;
    }
    QCOMPARE(m_world->shownRows(), found);
    m_world->client.searchEdit()->clear();
    QTest::keyClick(m_world->client.searchEdit(), Qt::Key_Return);
}

void TestRandomFlows::reopenPanel()
{
    note("close the panel while it loads, and open it again");
    const std::size_t server = m_world->currentIndex();
    for (std::size_t i = 0; i < m_world->lines(); ++i)
        m_world->line(i).transport->setHold([](const CUnsteadyTransport::Request&) { return true; });
    pressButton(*m_world->client.panel, "立即刷新");
    m_world->closePanel();
    for (PendingAnswer& answer : m_pending)
        answer.isHeard = false;
    m_openRiskGroup = 0;
    for (std::size_t i = 0; i < m_world->lines(); ++i)
        m_world->line(i).transport->setHold({});
    releaseQueries();
    if (m_widgetsWithoutPanel > 0)
        checkNothingIsLeft();
    m_world->openPanel(server);
}

void TestRandomFlows::letColleagueWork()
{
    work(m_world->line(std::size_t(below(int(m_world->lines())))));
}

void TestRandomFlows::work(Line& line)
{
    m_world->noteQueries();
    const ModelGroups& groups = line.model.groups();
    if (groups.empty())
        return;
    const ModelGroup group = std::next(groups.begin(), below(int(groups.size())))->second;
    const bool isRisk = chance(30);
    nvservice::CKolmQueryDataReq query;
    query.dataType = isRisk ? nvservice::DataType::GroupRiskConfig : nvservice::DataType::AccountGroup;
    query.queryKey = std::to_string(group.id);
    const service::Reply reply = line.engine->query(line.colleague, query);
    QCOMPARE(int(reply.records.size()), 1);
    nvservice::COperateDataReq request;
    request.dataType = query.dataType;
    request.operation = EZvDataOperation::Modify;
    request.data = reply.records.front();
    EErrorCode expected = EErrorCode::Success;
    if (const auto config = boost::dynamic_pointer_cast<nvservice::CAccountGroupRCConfig>(request.data)) {
        nvservice::CRatProofSetting& setting = config->ratProofSetting;
        setting.washTradeForbidden = !setting.washTradeForbidden;
        expected = line.model.saveRisk(group.id, config->revision(), checksOf(setting), true);
    } else if (chance(60)) {
        GroupInput input = group.input;
        input.name = QStringLiteral("同事组%1").arg(++m_names).toStdString();
        boost::dynamic_pointer_cast<nvservice::CAccountGroup>(request.data)->groupName = input.name;
        expected = line.model.modify(group.id, group.revision, input);
    } else {
        request.operation = EZvDataOperation::Delete;
        expected = line.model.remove(group.id, group.revision);
    }
    note(QStringLiteral("a colleague: %1 of type %2 on %3 %4")
             .arg(int(request.operation))
             .arg(request.dataType)
             .arg(line.name())
             .arg(group.id));
    QCOMPARE(int(line.engine->operate(line.colleague, request).error.code()), int(expected));
}

void TestRandomFlows::checkTable()
{
    QCOMPARE(m_world->shownRows(), m_world->listedRows());
    QVERIFY(m_world->client.mask()->isHidden());
}

void TestRandomFlows::checkNothingIsLeft()
{
    QCOMPARE(QApplication::allWidgets().size(), m_widgetsWithoutPanel);
    QCOMPARE(m_world->liveRecords(), std::size_t(0));
}

QTEST_MAIN(TestRandomFlows)
#include "tst_random_flows.moc"
