// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAV/CCallbackGate.h>
#include <QAV/Export.h>
#include <WQ/IDockableWidget.h>

#include <QString>

#include <memory>

namespace QAV
{

/// The base class of all panels that the client docks. UI thread only.
///
/// The client creates a panel through the meta-object of its class. So the panel must have a `Q_INVOKABLE` constructor
/// whose only argument is the parent widget. The client calls, in this order:
/// 1. the constructor
/// 2. `setParam` with the last result of `param` (not the first time)
/// 3. `switchSystem` with the current server, if the panel follows it
/// 4. `onActive` each time the panel becomes visible or the user refreshes it, and `switchSystem` each time the user
///    selects another server, also while the panel is hidden
/// 5. `param` when the main window closes, for hidden panels too; the client may call it at other times as well
/// 6. the destructor
///
/// The client puts the cursor into the panel's first edit when the user starts to work in the panel and when he presses
/// Ctrl+K, so this should be its search. It lists the actions of the panel (QWidget::addAction) with their shortcuts in
/// the menu “面板”; their shortcuts should have the context Qt::WidgetWithChildrenShortcut, because other panels may
/// have the same. It says in the tables of an empty panel what it knows of the reason, see WQ::setEmptyReason, counts
/// the rows of its first table in the status bar, and activates it again when its server is back.
///
/// When the user closes the panel's dock, the panel is hidden, and it goes on working. It is destroyed with the main
/// window, when the user leaves the client or another user logs in. Before that, the client ends all requests to the
/// servers: pending callbacks receive `Cancelled`, and no callback runs while panels are destroyed.
///
/// The client logs and drops an exception that leaves a function, an event handler or a slot of a panel. If the
/// constructor throws, the plug-in is listed as unusable, with the text of the exception. As always in C++, an
/// exception that leaves a destructor or a thread of the plug-in's own ends the process.
class QAV_EXPORT IkolmDockableWidget : public WQ::IDockableWidget
{
    Q_OBJECT

public:
    /// @param ownBackground   true: the panel paints the theme's panel background; false: it is transparent
    /// @param objectName      identifies the panel in the user's stored layout; short, the same in every version, and
    ///                        different from that of every other panel, also of other plug-ins: the client stores the
    ///                        result of `param` under it
    /// @param followsServer   true: the panel shows one server at a time, the one that the user selects in the client;
    ///                        false: the client never switches it
    IkolmDockableWidget(bool ownBackground, const QString& objectName, QWidget* parent, bool followsServer);
    ~IkolmDockableWidget() override;

    /// The user has selected another server. `index` is its position in the client's list: 0 is "all servers", with an
    /// empty name; the servers follow, sorted by name. The base class stores the name.
    virtual void switchSystem(int index, QString serverName);
    /// The panel has become visible: its dock was opened or its tab came to the front; or the user refreshes the
    /// current panel (F5, "刷新当前面板"). A panel loads its data here. The base class does nothing.
    virtual void onActive();

    /// The server whose data the panel shows; empty for all servers, and before the first `switchSystem`.
    QString serverName() const;
    bool followsServer() const;

protected:
    /// The gate for the callbacks of the panel's requests. What is asked through `callbackGate().queued` comes back on
    /// the UI thread, or not at all once the panel is being destroyed. The base class closes it.
    CCallbackGate& callbackGate();

    QString m_qsServerName;

private:
    struct Private;
    std::unique_ptr<Private> m_d;
};

} // namespace QAV
