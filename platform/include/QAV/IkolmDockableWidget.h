#pragma once

#include <QAV/Export.h>
#include <WQ/IDockableWidget.h>

#include <QString>

namespace QAV
{

/// Base of every panel that the client docks. Lives on the user-interface thread.
///
/// The client creates a panel through the meta-object of its class: the panel declares its constructor, with the parent
/// widget as its one argument, `Q_INVOKABLE`. What the client does with a panel, in this order: construct, `setParam`
/// with the layout that `param` returned when the panel was last closed (not at all the first time), `switchSystem`
/// with the current server, `onActive` each time the panel becomes the visible, active one, `switchSystem` each time
/// the user chooses another server, `param`, destroy.
class QAV_EXPORT IkolmDockableWidget : public WQ::IDockableWidget
{
    Q_OBJECT

public:
    /// @param ownBackground   true: the panel fills itself with the theme's panel background; false: the dock shows
    ///                        through
    /// @param objectName      names the panel in the user's stored layout; short, and the same in every version
    /// @param followsServer   true: the panel shows one server at a time, the one that the user chooses in the client;
    ///                        false: the client never switches it
    IkolmDockableWidget(bool ownBackground, const QString& objectName, QWidget* parent, bool followsServer);
    ~IkolmDockableWidget() override;

    /// The user has chosen another server. `index` is its position in the client's list; an empty name means all
    /// servers. The base keeps the name.
    virtual void switchSystem(int index, QString serverName);
    /// The panel has become the active one. The base does nothing.
    virtual void onActive();

    /// The server whose data the panel shows; empty for all servers and before the first `switchSystem`.
    QString serverName() const;
    bool followsServer() const;

protected:
    QString m_qsServerName;

private:
    bool m_followsServer;
};

} // namespace QAV
