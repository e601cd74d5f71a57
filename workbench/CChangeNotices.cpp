// SPDX-License-Identifier: Apache-2.0
#include "CChangeNotices.h"

#include "CApplication.h"
#include "CPanelDocks.h"
#include "ClientCentre.h"

#include <QAV/IChangeListener.h>
#include <QAV/IkolmDockableWidget.h>
#include <WQ/StringConversion.h>

#include <QApplication>
#include <QDateTime>

#include <algorithm>

namespace workbench
{

namespace
{

using Changes = std::vector<nvservice::CChangeInfoPtr>;

QString nameOf(const nvservice::CChangeInfo& change)
{
    return WQ::sToQs(change.userName.empty() ? change.userId : change.userName);
}

/// The time of today, and with the day for another one.
QString timeText(qint64 at)
{
    const QDateTime time = QDateTime::fromMSecsSinceEpoch(at);
    const bool isToday = time.date() == QDate::currentDate();
    return time.toString(isToday ? QStringLiteral("HH:mm") : QStringLiteral("MM-dd HH:mm"));
}

} // namespace

CChangeNotices::CChangeNotices(CPanelDocks& docks, QObject* parent) : QObject(parent), m_docks(docks)
{
    m_changes = clientCentre().listenToChanges(
        [this, mailbox = m_mailbox.address()](const std::string& server, const Changes& changes, bool isComplete) {
            mailbox.post([this, server, changes, isComplete] { onChanged(WQ::sToQs(server), changes, isComplete); });
        });
}

CChangeNotices::~CChangeNotices() = default;

void CChangeNotices::onChanged(const QString& server, Changes changes, bool isComplete)
{
    // Merged changes come in any order.
    std::stable_sort(changes.begin(), changes.end(),
                     [](const auto& a, const auto& b) { return a->changedAt < b->changedAt; });
    for (QAV::IkolmDockableWidget* const panel : m_docks.panels()) {
        if (auto* const listener = dynamic_cast<QAV::IChangeListener*>(panel)) {
            try {
                listener->onChanged(server, changes, isComplete);
            } catch (...) {
                logException(panel->metaObject()->className());
            }
        } else if (panel->serverName().isEmpty() || panel->serverName() == server) {
            note(*panel, server, changes, isComplete);
        }
    }
    sayUnderDialog(changes);
}

void CChangeNotices::note(const QAV::IkolmDockableWidget& panel, const QString& server, const Changes& changes,
                          bool isComplete)
{
    Notice& notice = m_notices[&panel];
    notice.isComplete = notice.isComplete && isComplete;
    for (const nvservice::CChangeInfoPtr& change : changes) {
        if (clientCentre().isOwnChange(*change)) {
            // What was saved here was based on what others had changed.
            notice.groups.erase({server, change->groupId});
            continue;
        }
        notice.groups[{server, change->groupId}] = change;
    }
    m_docks.setNotice(panel, textOf(notice));
}

QString CChangeNotices::textOf(const Notice& notice)
{
    if (!notice.isComplete) {
        return tr("账号组可能已被修改");
    }
    const auto latest = std::max_element(notice.groups.begin(), notice.groups.end(), [](const auto& a, const auto& b) {
        return a.second->changedAt < b.second->changedAt;
    });
    return latest == notice.groups.end()
               ? QString()
               : tr("%n个账号组已被修改（%1 %2）", nullptr, static_cast<int>(notice.groups.size()))
                     .arg(nameOf(*latest->second), timeText(latest->second->changedAt));
}

void CChangeNotices::sayUnderDialog(const Changes& changes)
{
    const auto foreign = std::find_if(changes.rbegin(), changes.rend(), [](const nvservice::CChangeInfoPtr& change) {
        return !clientCentre().isOwnChange(*change);
    });
    if (foreign == changes.rend() || !QApplication::activeModalWidget()) {
        return;
    }
    const nvservice::CChangeInfo& change = **foreign;
    emit sigChangedUnderDialog(tr("账号组“%1”刚刚被%2修改（%3）")
                                   .arg(WQ::sToQs(change.groupName), nameOf(change), timeText(change.changedAt)));
}

void CChangeNotices::clear(const QAV::IkolmDockableWidget& panel)
{
    if (m_notices.erase(&panel) > 0) {
        m_docks.setNotice(panel, {});
    }
}

void CChangeNotices::clearFollowing()
{
    for (const QAV::IkolmDockableWidget* const panel : m_docks.panels()) {
        if (panel->followsServer()) {
            clear(*panel);
        }
    }
}

} // namespace workbench
