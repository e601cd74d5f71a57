// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAV/CKolmClientCenter.h>
#include <utils/CMailbox.h>

#include <QObject>

#include <map>
#include <utility>

namespace QAV
{
class IkolmDockableWidget;
}

namespace workbench
{

class CPanelDocks;

/// Tells panels that inherit QAV::IChangeListener what changes on the servers, and says it in the title of the docks of
/// the others, until the panel is activated. The user's own changes of this client are no news, because panels show
/// them anyway.
class CChangeNotices : public QObject
{
    Q_OBJECT

public:
    CChangeNotices(CPanelDocks& docks, QObject* parent);
    ~CChangeNotices() override;

    /// The panel has loaded its data.
    void clear(const QAV::IkolmDockableWidget& panel);
    /// The panels that follow the server show another one.
    void clearFollowing();

signals:
    /// Others have changed groups while a dialog was open, which may show one of them.
    void sigChangedUnderDialog(const QString& text);

private:
    /// What a panel does not show yet.
    struct Notice {
        std::map<std::pair<QString, int>, nvservice::CChangeInfoPtr> groups; ///< the last change, by server and id
        bool isComplete = true;                                              ///< false: anything may have changed
    };

    void onChanged(const QString& server, std::vector<nvservice::CChangeInfoPtr> changes, bool isComplete);
    void note(const QAV::IkolmDockableWidget& panel, const QString& server,
              const std::vector<nvservice::CChangeInfoPtr>& changes, bool isComplete);
    void sayUnderDialog(const std::vector<nvservice::CChangeInfoPtr>& changes);
    static QString textOf(const Notice& notice);

    CPanelDocks& m_docks;
    std::map<const QAV::IkolmDockableWidget*, Notice> m_notices;
    utils::CMailbox m_mailbox;
    QAV::CKolmClientCenter::ChangeSubscription m_changes;
};

} // namespace workbench
