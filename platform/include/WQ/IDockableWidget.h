#pragma once

#include <WQ/CBaseWidget.h>

namespace WQ
{

/// A widget that the client docks, and whose state it keeps per user as one opaque string.
class WQ_EXPORT IDockableWidget : public CBaseWidget
{
    Q_OBJECT

public:
    IDockableWidget(bool ownBackground, const QString& objectName, QWidget* parent);
    ~IDockableWidget() override;

    /// What the dock's tab shows: the window title.
    QString title() const;
    void setTitle(const QString& title);

    /// Restores what param() returned in an earlier run. Any text may come; one that cannot be used changes nothing.
    /// The base does nothing.
    virtual void setParam(const QString& param);
    /// The state to keep; empty when there is none. The base has none.
    virtual QString param() const;
};

} // namespace WQ
