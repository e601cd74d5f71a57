// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/CBaseWidget.h>

namespace WQ
{

/// A widget that the client docks. The client stores its state per user as an opaque string.
class WQ_EXPORT IDockableWidget : public CBaseWidget
{
    Q_OBJECT

public:
    IDockableWidget(bool ownBackground, const QString& objectName, QWidget* parent);
    ~IDockableWidget() override;

    /// The window title, which the dock's tab shows.
    QString title() const;
    void setTitle(const QString& title);

    /// Restores the state that param() returned in an earlier run, perhaps of another version of the panel. Must accept
    /// any text; an unusable one changes nothing. The base class does nothing.
    virtual void setParam(const QString& param);
    /// The state to store; empty if there is none. Called when the client stores its layout, also for a hidden panel.
    /// The base class has none.
    virtual QString param() const;
};

} // namespace WQ
