// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/CEventWidgetT.h>
#include <WQ/CUiResourceChangeHandler.h>

#include <QWidget>

#include <memory>

namespace WQ
{

/// The base class of panels, pages and lists. Receives the events of its controls and is notified of theme changes.
class WQ_EXPORT CBaseWidget : public CEventWidgetT<QWidget>, public CUiResourceChangeHandler
{
    Q_OBJECT

public:
    explicit CBaseWidget(QWidget* parent = nullptr);
    /// @param objectName      Qt object name, by which tests and layouts find the widget
    /// @param ownBackground   true: the widget paints "clr_panel_background"; false: it is transparent
    CBaseWidget(const QString& objectName, bool ownBackground, QWidget* parent);
    ~CBaseWidget() override;

    /// Makes `widget` a child that fills this widget, with margins in pixels. The previous one is hidden and stays a
    /// child.
    void setInnerStretchWidget(QWidget* widget, int left, int top, int right, int bottom);
    QWidget* innerStretchWidget() const;

    /// Repaints the widget. Overrides must call it.
    void onUiResourceChanged() override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    struct Private;
    std::unique_ptr<Private> m_d;
};

} // namespace WQ
