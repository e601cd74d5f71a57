// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/CBaseWidget.h>
#include <WQ/CJiuGongBackgroundPainter.h>
#include <WQ/EWidgetAnchor.h>

#include <memory>

namespace WQ
{

/// Lays out widgets in one row or one column. Added widgets become children of the list.
///
/// In the direction of the list, fixed widgets have their size hint, within their minimum and maximum size. Stretch
/// widgets and stretch spaces share the rest in proportion to their stretch. Without any of those, the widgets are at
/// the start and the rest stays empty. Hidden widgets take no space.
///
/// If a control without an accessible name is added right after a CSimpleTextWidget, its name is that text.
class WQ_EXPORT CWidgetList : public CBaseWidget, public CJiuGongBackgroundPainter
{
    Q_OBJECT

public:
    /// @param direction  EWidgetDirection: 1 horizontal, 2 vertical
    CWidgetList(int direction, QWidget* parent);
    ~CWidgetList() override;

    EWidgetDirection direction() const;

    /// Sets the space between two neighbours in pixels; 0 by default.
    void setSpacing(int spacing);
    /// Sets the space around the contents in pixels; 0 by default.
    void setMargin(int left, int top, int right, int bottom);

    /// @param fill  across the list, true: the widget takes the whole extent, within its minimum and maximum size;
    ///              false: it keeps its size hint. `anchor` positions it in the remaining space.
    void addFixedWidget(QWidget* widget, EWidgetAnchor anchor, bool fill);
    void addFixedWidget(QWidget* widget, int anchor, bool fill) { addFixedWidget(widget, EWidgetAnchor(anchor), fill); }
    /// @param stretch  share of the free space, at least 1
    void addStretchWidget(QWidget* widget, int stretch, EWidgetAnchor anchor, bool fill);
    void addStretchWidget(QWidget* widget, int stretch, int anchor, bool fill)
    {
        addStretchWidget(widget, stretch, EWidgetAnchor(anchor), fill);
    }
    /// Adds empty space in pixels.
    void addFixedSpace(int length);
    void addStretchSpace(int stretch);

    /// Computes the layout at once instead of at the next event, and makes the list at least as long as its contents
    /// need.
    void updateWidgetLength();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void add(QWidget* widget, int stretch, EWidgetAnchor anchor, bool fill);

    class CListLayout;

    struct Private;
    std::unique_ptr<Private> m_d;
};

} // namespace WQ
