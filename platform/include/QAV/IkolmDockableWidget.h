// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAV/Export.h>
#include <WQ/IDockableWidget.h>

#include <QString>

namespace QAV
{

/// The base class of all panels that the client docks. UI thread only.
///
/// The client creates a panel through the meta-object of its class. So the panel must have a `Q_INVOKABLE` constructor
/// whose only argument is the parent widget. The client calls, in this order:
/// 1. the constructor
/// 2. `setParam` with the layout that `param` returned when the panel was last closed (not the first time)
/// 3. `switchSystem` with the current server
/// 4. `onActive` each time the panel becomes visible and active, and `switchSystem` each time the user selects another
///    server
/// 5. `param`
/// 6. the destructor
class QAV_EXPORT IkolmDockableWidget : public WQ::IDockableWidget
{
    Q_OBJECT

public:
    /// @param ownBackground   true: the panel paints the theme's panel background; false: it is transparent
    /// @param objectName      identifies the panel in the user's stored layout; short, and the same in every version
    /// @param followsServer   true: the panel shows one server at a time, the one that the user selects in the client;
    ///                        false: the client never switches it
    IkolmDockableWidget(bool ownBackground, const QString& objectName, QWidget* parent, bool followsServer);
    ~IkolmDockableWidget() override;

    /// The user has selected another server. `index` is its position in the client's list; an empty name means all
    /// servers. The base class stores the name.
    virtual void switchSystem(int index, QString serverName);
    /// The panel has become the active one. The base class does nothing.
    virtual void onActive();

    /// The server whose data the panel shows; empty for all servers, and before the first `switchSystem`.
    QString serverName() const;
    bool followsServer() const;

protected:
    QString m_qsServerName;

private:
    bool m_followsServer;
};

} // namespace QAV
