#pragma once

#include <WQ/CEventWidgetT.h>
#include <WQ/CUiResourceChangeHandler.h>

#include <QPointer>
#include <QWidget>

namespace WQ
{

/// The base of panels, pages and lists: receives the events of its controls and hears of theme switches.
class WQ_EXPORT CBaseWidget : public CEventWidgetT<QWidget>, public CUiResourceChangeHandler
{
    Q_OBJECT

public:
    explicit CBaseWidget(QWidget* parent = nullptr);
    /// @param objectName      Qt object name, by which tests and layouts find the widget
    /// @param ownBackground   true: the widget fills itself with "clr_panel_background"; false: its parent shows
    /// through
    CBaseWidget(const QString& objectName, bool ownBackground, QWidget* parent);
    ~CBaseWidget() override;

    /// Makes `widget` the one child that fills this widget, with margins in pixels. It becomes a child; the one set
    /// before is hidden and stays a child.
    void setInnerStretchWidget(QWidget* widget, int left, int top, int right, int bottom);
    QWidget* innerStretchWidget() const;

    /// Repaints; overrides call it too.
    void onUiResourceChanged() override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QPointer<QWidget> m_inner;
    bool m_ownBackground = false;
};

} // namespace WQ
