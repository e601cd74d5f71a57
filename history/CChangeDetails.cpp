// SPDX-License-Identifier: Apache-2.0
#include "history/CChangeDetails.h"

#include "history/CComparisonView.h"

#include <QAV/CKolmClientCenter.h>
#include <QAV/CUserManager.h>
#include <WQ/CMessageBox.h>
#include <WQ/CMessageTip.h>
#include <WQ/StringConversion.h>
#include <nvservice/CAccountGroup.h>
#include <nvservice/CAccountGroupRCConfig.h>
#include <nvservice/CAuditEntry.h>
#include <nvservice/COperateDataReq.h>
#include <nvservice/DataType.h>
#include <nvservice/UserRight.h>

#include <QPointer>

#include <boost/make_shared.hpp>

namespace QAV
{

namespace
{

bool mayRestore(const RestoreTarget& target)
{
    const auto* const users = utils::CSingletonT<CUserManager>::instance();
    return !target.isEmpty() &&
           (target.groupRevision == 0 || users->checkUserAuth(nvservice::UserRight::EditAccountGroup)) &&
           (target.configRevision == 0 || users->checkUserAuth(nvservice::UserRight::SetAccountGroupRisk));
}

QStringList changeHeaders()
{
    return {QStringLiteral("变更前"), QStringLiteral("变更后")};
}

/// The record of the current state that a new one would replace; null if there is none.
nvservice::IDataPtr currentOf(const nvservice::IData& record, const std::vector<nvservice::IDataPtr>& current)
{
    for (const nvservice::IDataPtr& candidate : current) {
        if (std::string(candidate->typeName()) == record.typeName()) {
            return candidate;
        }
    }
    return nullptr;
}

nvservice::IDataPtr firstOf(const QueryAnswer& answer)
{
    return answer.records.empty() ? nullptr : answer.records.front();
}

} // namespace

CChangeDetails::CChangeDetails(const CCallbackGate& gate, CComparisonView& view, RestoredHandler restored)
    : m_gate(gate), m_view(view), m_restored(std::move(restored)), m_query(gate)
{
}

void CChangeDetails::setServer(const QString& serverName)
{
    m_serverName = serverName;
    clear();
}

void CChangeDetails::clear()
{
    m_query.drop();
    m_preview.reset();
    m_shown = {};
    m_view.showText(QStringLiteral("请选择一条修改记录"));
}

void CChangeDetails::show(const Shown& shown)
{
    m_preview.reset();
    m_shown = shown;
    m_view.showRecords(shown.title, shown.pairs, shown.headers);
    m_view.setActions(mayRestore(shown.target) ? CComparisonView::CanRestore : CComparisonView::NoActions);
}

bool CChangeDetails::showError(const std::vector<QueryAnswer>& answers)
{
    for (const QueryAnswer& answer : answers) {
        if (!answer.error.isSuccess()) {
            m_view.showText(QStringLiteral("查询失败：%1").arg(WQ::sToQs(answer.error.errorMsg())));
            return true;
        }
    }
    return false;
}

void CChangeDetails::open(const HistoryChange& change, std::optional<std::int64_t> previous)
{
    m_groupName = WQ::sToQs(change.groupName);
    m_view.showText(QStringLiteral("正在加载…"));
    if (change.entryId != 0) {
        openEntry(change);
    } else {
        openRevision(change, previous);
    }
}

void CChangeDetails::openEntry(const HistoryChange& change)
{
    m_query.ask(m_serverName, {detailQuery(change)}, [this, change](const std::vector<QueryAnswer>& answers) {
        if (showError(answers)) {
            return;
        }
        const auto entry = boost::dynamic_pointer_cast<nvservice::CAuditEntry>(firstOf(answers.front()));
        if (!entry || (!entry->before && !entry->after)) {
            const QString reason = entry ? WQ::sToQs(entry->withheldReason) : QString();
            m_view.showText(reason.isEmpty() ? QStringLiteral("%1：这条记录没有内容").arg(titleOf(change))
                                             : QStringLiteral("%1：%2").arg(titleOf(change), reason));
            return;
        }
        Shown shown{titleOf(change), {{entry->before, entry->after}}, changeHeaders(), {}};
        if (!entry->withheldReason.empty()) {
            shown.title += QStringLiteral("，") + WQ::sToQs(entry->withheldReason);
        }
        if (change.isDone) {
            shown.target.add(entry->after ? entry->after : entry->before);
        } else {
            shown.headers = QStringList{QStringLiteral("当时的内容"), QStringLiteral("被拒绝的内容")};
        }
        show(shown);
    });
}

void CChangeDetails::openRevision(const HistoryChange& change, std::optional<std::int64_t> previous)
{
    std::vector<QueryPart> parts;
    const bool hasBefore = change.operation != nvservice::EZvDataOperation::Add;
    const bool hasAfter = change.operation != nvservice::EZvDataOperation::Delete;
    if (hasBefore) {
        parts.push_back(previous ? stateQuery(change, *previous) : stateQueryAt(change.groupId, change.at - 1));
    }
    if (hasAfter) {
        parts.push_back(stateQuery(change, change.revision));
    }
    m_query.ask(m_serverName, parts, [this, change, hasBefore, hasAfter](const std::vector<QueryAnswer>& answers) {
        if (showError(answers)) {
            return;
        }
        RecordPair pair;
        if (hasBefore) {
            pair.before = recordOfKind(change, answers.front().records);
        }
        if (hasAfter) {
            pair.after = recordOfKind(change, answers.back().records);
        }
        Shown shown{titleOf(change), {pair}, changeHeaders(), {}};
        shown.target.add(hasAfter ? pair.after : pair.before);
        show(shown);
    });
}

void CChangeDetails::compare(const HistoryChange& earlier, const HistoryChange& later)
{
    const bool isSameKind = (earlier.isGroup() && later.isGroup()) || (earlier.isConfig() && later.isConfig());
    if (!isSameKind || earlier.groupId < 0 || earlier.groupId != later.groupId) {
        m_query.drop();
        m_view.showText(QStringLiteral("请选择同一账号组的两次账号组修改，或两次风控配置修改"));
        return;
    }
    m_groupName = WQ::sToQs(later.groupName);
    m_view.showText(QStringLiteral("正在加载…"));
    std::vector<QueryPart> parts;
    for (const HistoryChange* const change : {&earlier, &later}) {
        parts.push_back(change->entryId != 0 ? detailQuery(*change) : stateQuery(*change, change->revision));
    }
    m_query.ask(m_serverName, parts, [this, earlier, later](const std::vector<QueryAnswer>& answers) {
        if (showError(answers)) {
            return;
        }
        const auto stateOf = [](const HistoryChange& change, const QueryAnswer& answer) {
            const auto entry = boost::dynamic_pointer_cast<nvservice::CAuditEntry>(firstOf(answer));
            return entry ? (entry->after ? entry->after : entry->before) : recordOfKind(change, answer.records);
        };
        const RecordPair pair{stateOf(earlier, answers[0]), stateOf(later, answers[1])};
        if (!pair.before || !pair.after) {
            m_view.showText(QStringLiteral("所选的修改没有可比较的内容"));
            return;
        }
        show({QStringLiteral("比较%1“%2”的两个版本").arg(dataTypeText(later.dataType), m_groupName),
              {pair},
              {timeText(earlier.at), timeText(later.at)},
              {}});
    });
}

void CChangeDetails::showStateAt(std::int32_t groupId, const QString& groupName, std::int64_t at)
{
    m_groupName = groupName;
    m_view.showText(QStringLiteral("正在加载…"));
    m_query.ask(m_serverName, {stateQueryAt(groupId, at)}, [this, at](const std::vector<QueryAnswer>& answers) {
        if (showError(answers)) {
            return;
        }
        Shown shown;
        shown.title = QStringLiteral("账号组“%1”在%2的状态，只读").arg(m_groupName, timeText(at));
        shown.headers = QStringList{QStringLiteral("当时的内容")};
        for (const nvservice::IDataPtr& record : answers.front().records) {
            shown.pairs.push_back({record, record});
            shown.target.add(record);
        }
        show(shown);
    });
}

void CChangeDetails::preview()
{
    if (m_shown.target.isEmpty()) {
        return;
    }
    m_view.showText(QStringLiteral("正在检查能否恢复…"));
    m_query.ask(m_serverName, {previewQuery(m_shown.target), stateQueryAt(m_shown.target.groupId, std::nullopt)},
                [this](const std::vector<QueryAnswer>& answers) { showPreview(answers); });
}

void CChangeDetails::showPreview(const std::vector<QueryAnswer>& answers)
{
    const std::vector<nvservice::IDataPtr>& records = answers[0].records;
    const auto restore = boost::dynamic_pointer_cast<nvservice::CGroupRestore>(firstOf(answers[0]));
    if (showError({answers[0]}) || !restore) {
        return;
    }
    // A deleted group has no state now.
    const bool isDeleted = answers[1].error.code() == utils::EErrorCode::NotFound;
    if (!isDeleted && showError({answers[1]})) {
        return;
    }
    std::vector<RecordPair> pairs;
    for (std::size_t index = 1; index < records.size(); ++index) {
        pairs.push_back({currentOf(*records[index], answers[1].records), records[index]});
    }
    QStringList obstacles;
    for (const std::string& obstacle : restore->obstacles) {
        obstacles << WQ::sToQs(obstacle);
    }
    m_preview = restore;
    m_view.showRecords(QStringLiteral("恢复账号组“%1”将要发生的变更").arg(m_groupName), pairs,
                       {QStringLiteral("现在"), QStringLiteral("恢复以后")}, obstacles);
    const bool isPossible = obstacles.isEmpty() && m_view.changedCount() > 0;
    m_view.setActions(isPossible ? CComparisonView::IsPreview : CComparisonView::IsObstructed);
}

void CChangeDetails::restore()
{
    if (!m_preview) {
        return;
    }
    const QPointer<CComparisonView> view(&m_view); // the client may close the panel while a box is open
    const auto answer = WQ::CMessageBox::question(
        &m_view, QStringLiteral("恢复"),
        QStringLiteral("确定要把账号组“%1”恢复到此版本吗？\n恢复会保存为一个新的修订。").arg(m_groupName));
    if (!view || answer != QMessageBox::Yes || !m_preview) {
        return;
    }
    const auto request = boost::make_shared<nvservice::COperateDataReq>();
    request->dataType = nvservice::DataType::GroupRestore;
    request->operation = nvservice::EZvDataOperation::Modify;
    request->data = m_preview;
    // A deleted group comes back with another id.
    const std::int32_t groupId = m_preview->seenGroupRevision == 0 ? -1 : m_preview->groupId;
    m_preview.reset();
    m_query.drop();
    m_view.showText(QStringLiteral("正在恢复…"));
    utils::CSingletonT<CKolmClientCenter>::instance()
        ->getClientByName(WQ::qsToS(m_serverName))
        ->operateData_async(
            request, m_gate.queued(OperateCallback(
                         [this, groupId, number = m_query.number()](const utils::NVError& error, const bson::BSONObj&) {
                             takeOutcome(error, groupId, number == m_query.number());
                         })));
}

void CChangeDetails::takeOutcome(const utils::NVError& error, std::int32_t groupId, bool isAwaited)
{
    if (!error.isSuccess()) {
        const QPointer<CComparisonView> view(&m_view);
        WQ::CMessageBox::critical(&m_view, QStringLiteral("恢复"),
                                  QStringLiteral("恢复失败：%1").arg(WQ::sToQs(error.errorMsg())));
        if (view && isAwaited) {
            preview(); // what stands against it now
        }
    } else if (isAwaited) {
        m_view.showText(QStringLiteral("已恢复为新的修订"));
        m_restored(groupId);
    } else {
        // The user is looking at something else now.
        WQ::CMessageTip::showTip(&m_view, Qt::AlignTop, QStringLiteral("已恢复为新的修订"), 3, WQ::MessageInformation,
                                 0);
    }
}

void CChangeDetails::abandon()
{
    m_query.drop();
    show(m_shown);
}

} // namespace QAV
