// SPDX-License-Identifier: Apache-2.0
#include "HistoryWorld.h"

#include "history/Changes.h"
#include "support/qav/ServiceThread.h"

#include <WQ/CComboBox.h>

#include <QAbstractButton>
#include <QScrollBar>
#include <QtTest>

#include <boost/make_shared.hpp>

#include <utility>

namespace history_test
{

namespace DataType = nvservice::DataType;
namespace QueryCondition = nvservice::QueryCondition;

namespace
{

constexpr int EntriesPerPage = 12;
constexpr int FirstEntries = 40;
constexpr int IdsPerServer = 1000000;
constexpr int NoGroup = 1;
const QString NothingOpen = "请选择一条修改记录";

} // namespace

HistoryWorld::HistoryWorld(unsigned seed) : m_random(seed)
{
    m_client.addShenzhen();
    m_servers = {{Shanghai, "SH|", {}}, {Shenzhen, "SZ|", {}}};
    for (int entry = 0; entry < FirstEntries; ++entry) {
        grow();
    }
    connect(0);
    connect(1);
    reopen();
}

void HistoryWorld::connect(std::size_t server)
{
    (server == 0 ? m_client.shanghai : m_client.shenzhen)->onQuery =
        [this, server](const nvservice::CKolmQueryDataReq& request, const Handler& handler) {
            if (request.dataType == DataType::AccountGroup) {
                handler(support::replyWith(m_client.groups));
            } else if (request.dataType == DataType::Category) {
                handler(support::replyWith({}));
            } else {
                take(server, request, handler);
            }
        };
}

void HistoryWorld::grow()
{
    for (std::size_t server = 0; server < m_servers.size(); ++server) {
        std::vector<Entry>& entries = m_servers[server].entries;
        entries.push_back({int(server) * IdsPerServer + int(entries.size()) + 1, 7 + below(2), below(3) != 0});
    }
}

void HistoryWorld::take(std::size_t server, const nvservice::CKolmQueryDataReq& request, const Handler& handler)
{
    const auto key = HistoryFixture::conditionsOf({request, handler, 0});
    Question question;
    question.number = ++m_lastNumber;
    question.server = server;
    question.handler = handler;
    question.group = int(key.number(QueryCondition::Group).value_or(-1));
    question.outcome = key.value(QueryCondition::Outcome);
    QCOMPARE(request.dataType, DataType::Audit);
    QCOMPARE(int(server), m_server);
    if (key.has(QueryCondition::Details)) {
        question.kind = Detail;
        question.detail = int((*key.number(QueryCondition::Since) - Noon) / 60000);
        QCOMPARE(question.detail, m_current);
    } else {
        question.kind = m_shown.empty() || key.has(QueryCondition::Cursor) ? Page : Newest;
        question.cursor = QString::fromStdString(key.value(QueryCondition::Cursor)).toInt();
        QCOMPARE(question.group, m_group);
        QCOMPARE(question.outcome, m_outcome);
        if (question.kind == Page) {
            QVERIFY(m_pages != Loading || question.cursor == 0);
            QCOMPARE(question.cursor, m_cursor);
            m_pages = Loading;
        } else {
            m_newest = Loading;
        }
    }
    m_latest[question.kind] = question.number;
    m_open.push_back(std::move(question));
}

bool HistoryWorld::fits(const Question& question, const Entry& entry) const
{
    return (question.group < 0 || entry.group == question.group) &&
           (question.outcome.empty() || (question.outcome == "ok") == entry.isDone) &&
           (question.cursor == 0 || entry.id < question.cursor);
}

boost::shared_ptr<nvservice::CAuditEntry> HistoryWorld::record(const Entry& entry) const
{
    const auto made = makeEntry(entry.id, entry.group);
    made->outcome = entry.isDone ? 0 : 10;
    return made;
}

void HistoryWorld::begin()
{
    m_shown.clear();
    m_cursor = 0;
    m_pages = Idle;
    m_newest = Idle;
    m_current = 0;
    m_detail = NothingOpen;
    std::fill(std::begin(m_latest), std::end(m_latest), 0);
}

void HistoryWorld::reopen()
{
    ++counts["reopened"];
    m_client.panel.reset();
    m_waiting.clear();
    m_server = 0;
    m_group = -1;
    m_outcome.clear();
    m_filter = -1;
    begin();
    m_client.open();
}

void HistoryWorld::switchTo(int server, bool isHidden)
{
    ++counts[isHidden ? "switched while hidden" : "switched"];
    m_server = server;
    m_group = -1;
    begin();
    const QString name = server < 0 ? QString() : QString::fromStdString(m_servers[std::size_t(server)].name);
    m_client.panel->setVisible(!isHidden);
    m_client.panel->switchSystem(server + 1, name);
    if (isHidden) {
        QCOMPARE(m_pages, Idle);
        m_client.panel->show();
        m_client.panel->onActive();
    }
}

void HistoryWorld::chooseGroup()
{
    const int group = std::array{-1, 7, 8}[std::size_t(below(3))];
    const QString key = group < 0 ? QString("k") : QString("k%1").arg(group);
    const WQ::CStandardHpfTable& list = m_client.table("账号组列表");
    // What can be chosen may be under way.
    if (group == m_group || !isAsking() || list.dataModel()->getDataIndexByKey(key) < 0) {
        return;
    }
    ++counts["group"];
    m_group = group;
    begin();
    m_client.table("账号组列表").setCurrentKey(key);
}

void HistoryWorld::chooseOutcome()
{
    const int outcome = below(3);
    auto& box = dynamic_cast<WQ::CComboBox&>(m_client.control("结果"));
    if (outcome == box.currentIndex() || !isAsking()) {
        return;
    }
    ++counts["outcome"];
    m_outcome = std::array{"", "ok", "refused"}[std::size_t(outcome)];
    begin();
    box.setCurrentIndex(outcome);
}

void HistoryWorld::refresh(bool isByActivation)
{
    if (!isAsking() || (isByActivation && m_pages == Loading)) {
        return;
    }
    ++counts[m_shown.empty() ? "refreshed without rows" : "refreshed"];
    if (m_shown.empty()) {
        begin();
    }
    if (isByActivation) {
        m_client.panel->onActive();
    } else {
        m_client.click("刷新");
    }
}

void HistoryWorld::retry()
{
    if (m_pages != Failed && m_newest != Failed) {
        return;
    }
    ++counts["retried"];
    if (m_pages != Failed && m_shown.empty()) {
        begin();
    }
    m_client.click("重试");
}

void HistoryWorld::scroll()
{
    QScrollBar& bar = *m_client.changes().view()->verticalScrollBar();
    bar.setValue(below(2) == 0 ? bar.maximum() : below(bar.maximum() + 1));
}

void HistoryWorld::filter()
{
    ++counts["filtered"];
    m_filter = std::array{-1, 7, 8, NoGroup}[std::size_t(below(4))];
    const std::vector<int> left = visible();
    if (std::find(left.begin(), left.end(), m_current) == left.end()) {
        m_current = 0;
    }
    m_client.changes().filterColumn(QAV::GroupColumn,
                                    m_filter < 0 ? WQ::FilterPair{WQ::FilterNone, {}}
                                                 : WQ::FilterPair{WQ::FilterOneOf, {QString("组%1").arg(m_filter)}});
}

void HistoryWorld::loadMoreOrStop()
{
    if (!isUpToTheUser()) {
        return;
    }
    if (!m_client.isOffered("停止")) {
        ++counts["loaded more"];
        m_client.click("加载更多");
        QCOMPARE(m_pages, Loading);
        QVERIFY(m_client.isOffered("停止"));
        if (below(2) == 0) {
            return;
        }
    }
    ++counts["stopped"];
    m_client.click("停止");
    QVERIFY(m_client.isOffered("加载更多"));
}

void HistoryWorld::openRow()
{
    const std::vector<int> choice = visible();
    if (choice.empty()) {
        return;
    }
    const int id = choice[std::size_t(below(int(choice.size())))];
    if (id == m_current) {
        return;
    }
    ++counts["opened"];
    m_current = id;
    m_detail.clear();
    m_client.changes().setCurrentKey(m_servers[std::size_t(m_server)].tag + QString::number(id));
}

void HistoryWorld::answerAny()
{
    if (!m_waiting.empty()) {
        deliver();
    }
    if (m_open.empty()) {
        return;
    }
    const auto chosen = m_open.begin() + below(int(m_open.size()));
    Answer answer;
    answer.question = std::move(*chosen);
    m_open.erase(chosen);
    const Question& question = answer.question;
    QAV::ITransport::Reply reply;
    if (below(6) == 0) {
        ++counts["failed"];
        answer.error = QString("故障%1").arg(question.number);
        reply = support::replyWithError(utils::EErrorCode::Failed, answer.error.toStdString());
    } else if (question.kind == Detail) {
        answer.text = QString("内容%1").arg(question.number);
        const auto entry = makeEntry(question.detail);
        entry->after = makeGroup(7, answer.text.toStdString());
        reply = support::replyWith({entry});
    } else {
        std::vector<nvservice::IDataPtr> records;
        const std::vector<Entry>& entries = m_servers[question.server].entries;
        for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry) {
            if (fits(question, *entry)) {
                if (int(answer.ids.size()) == EntriesPerPage) {
                    answer.cursor = answer.ids.back();
                    break;
                }
                answer.ids.push_back(entry->id);
                records.push_back(record(*entry));
            }
        }
        reply = support::replyWith(std::move(records));
        if (answer.cursor != 0) {
            bson::BSONObjBuilder document;
            document.append("next", std::to_string(answer.cursor));
            reply.document = document.obj();
        }
    }
    const Handler handler = question.handler;
    handler(reply);
    if (below(4) == 0) {
        ++counts["doubled"];
        handler(reply);
    }
    support::awaitCallbacks();
    m_waiting.push_back(std::move(answer));
}

void HistoryWorld::deliver()
{
    for (const Answer& answer : std::exchange(m_waiting, {})) {
        expect(answer);
    }
    support::settleCallbacks();
}

void HistoryWorld::expect(const Answer& answer)
{
    const Question& question = answer.question;
    if (question.number != m_latest[question.kind]) {
        ++counts["overtaken"];
        return;
    }
    if (question.kind == Detail) {
        m_detail = answer.error.isEmpty() ? answer.text : "查询失败：" + answer.error;
        return;
    }
    if (!answer.error.isEmpty()) {
        m_problem = answer.error;
        (question.kind == Page ? m_pages : m_newest) = Failed;
        return;
    }
    const EState state = answer.cursor == 0 ? Complete : HasMore;
    if (question.kind == Newest) {
        m_newest = state;
        expectNewest(answer);
        return;
    }
    m_pages = state;
    m_cursor = answer.cursor == 0 ? m_cursor : answer.cursor;
    m_shown.insert(answer.ids.begin(), answer.ids.end());
}

void HistoryWorld::expectNewest(const Answer& answer)
{
    const bool isJoined = answer.cursor == 0 || std::any_of(answer.ids.begin(), answer.ids.end(),
                                                            [this](int id) { return m_shown.count(id) > 0; });
    ++counts[isJoined ? "joined" : "begun again"];
    if (!isJoined) {
        begin();
        return;
    }
    m_shown.insert(answer.ids.begin(), answer.ids.end());
}

void HistoryWorld::takeStep()
{
    const int at = below(100);
    if (at < 34) {
        answerAny();
    } else if (at < 54) {
        deliver();
    } else if (at < 59) {
        openRow();
    } else if (at < 65) {
        scroll();
    } else if (at < 67) {
        filter();
    } else if (at < 72) {
        loadMoreOrStop();
    } else if (at < 79) {
        refresh(below(2) == 0);
    } else if (at < 84) {
        retry();
    } else if (at < 90) {
        const bool isMoreThanAPage = below(2) == 0;
        for (int entries = isMoreThanAPage ? 4 * EntriesPerPage : below(6); entries >= 0; --entries) {
            grow();
        }
        if (isMoreThanAPage) {
            refresh(below(2) == 0);
        }
    } else if (at < 93) {
        chooseGroup();
    } else if (at < 96) {
        chooseOutcome();
    } else if (at < 99) {
        switchTo(below(7) == 0 ? -1 : below(2), below(3) == 0);
    } else {
        reopen();
    }
    check();
}

void HistoryWorld::answerAll()
{
    const QScrollBar& bar = *m_client.changes().view()->verticalScrollBar();
    do {
        if (bar.maximum() == 0) {
            loadMoreOrStop();
        }
        while (!m_open.empty() || !m_waiting.empty()) {
            answerAny();
            deliver();
            check();
        }
    } while (isUpToTheUser() && bar.maximum() == 0);
    // Whoever stands at the end has been given what follows.
    QVERIFY(m_pages != HasMore || m_filter >= 0 || bar.value() < bar.maximum());
}

std::vector<int> HistoryWorld::visible() const
{
    std::vector<int> ids(m_shown.begin(), m_shown.end());
    const auto isHidden = [this](int id) {
        const std::vector<Entry>& entries = m_servers[std::size_t(m_server)].entries;
        return m_filter >= 0 && entries[std::size_t(id - m_server * IdsPerServer - 1)].group != m_filter;
    };
    ids.erase(std::remove_if(ids.begin(), ids.end(), isHidden), ids.end());
    return ids;
}

bool HistoryWorld::isUpToTheUser() const
{
    return m_filter >= 0 && m_newest != Failed && (m_pages == HasMore || (m_pages == Loading && !m_shown.empty()));
}

QString HistoryWorld::expectedState() const
{
    if (m_pages == Failed || m_newest == Failed) {
        return "查询失败：" + m_problem;
    }
    const bool isLoading = m_pages == Loading || m_newest == Loading;
    const auto total = QString::number(m_shown.size());
    if (isUpToTheUser()) {
        return QString(isLoading ? "正在加载…已加载%1条，筛选出%2条" : "已加载%1条，筛选出%2条")
            .arg(total, QString::number(visible().size()));
    }
    if (isLoading) {
        return "正在加载…";
    }
    if (m_pages == Idle) {
        return {};
    }
    if (m_filter >= 0) {
        return QString("共%1条，筛选出%2条").arg(total, QString::number(visible().size()));
    }
    return (m_pages == HasMore ? QString("已显示%1条，向下滚动加载更多") : QString("共%1条")).arg(total);
}

void HistoryWorld::check()
{
    QStringList expected;
    const std::vector<int> ids = visible();
    for (auto id = ids.rbegin(); id != ids.rend(); ++id) {
        expected << m_servers[std::size_t(m_server)].tag + QString::number(*id);
    }
    const WQ::CStandardHpfTable& table = m_client.changes();
    QStringList shown;
    for (int row = 0; row < table.dataModel()->rowCount(); ++row) {
        shown << table.dataModel()->getDataByRow(row)->getKey();
    }
    QCOMPARE(shown, expected);
    if (!m_shown.empty()) {
        // Nothing is left out between the first and the last row.
        Question all;
        all.group = m_group;
        all.outcome = m_outcome;
        const std::vector<Entry>& entries = m_servers[std::size_t(m_server)].entries;
        const auto isWanted = [&](const Entry& entry) {
            return fits(all, entry) && entry.id >= *m_shown.begin() && entry.id <= *m_shown.rbegin();
        };
        QCOMPARE(std::size_t(std::count_if(entries.begin(), entries.end(), isWanted)), m_shown.size());
    }
    const QString current =
        m_current == 0 ? QString() : m_servers[std::size_t(m_server)].tag + QString::number(m_current);
    QCOMPARE(table.currentKey(), current);
    const QString state = expectedState();
    QVERIFY2(m_client.isRead(state), qPrintable(state));
    QCOMPARE(m_client.isOffered("重试"), m_pages == Failed || m_newest == Failed);
    QCOMPARE(m_client.isOffered("加载更多") || m_client.isOffered("停止"), isUpToTheUser());
    const QString detail = m_detail.isEmpty() ? QString("正在加载") : m_detail;
    const QStringList after = HistoryFixture::shown(m_client.comparison(), QAV::AfterColumn);
    QVERIFY2(after.contains(detail) || m_client.isRead(detail), qPrintable(detail));
}

} // namespace history_test
