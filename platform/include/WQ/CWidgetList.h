#pragma once

#include <WQ/CBaseWidget.h>
#include <WQ/CJiuGongBackgroundPainter.h>
#include <WQ/EWidgetAnchor.h>

namespace WQ
{

/// Lays out widgets in one row or one column. Widgets that are added become children of the list.
///
/// Fixed widgets take along the list exactly what they ask for (size hint, within their minimum and maximum size);
/// stretch widgets and stretch spaces share the rest by their stretch. Without any of those the widgets stand at the
/// beginning and the rest stays empty. Hidden widgets take no room.
///
/// A control without an accessible name that is added right after a CSimpleTextWidget gets that text as its name.
class WQ_EXPORT CWidgetList : public CBaseWidget, public CJiuGongBackgroundPainter
{
    Q_OBJECT

public:
    /// @param direction  EWidgetDirection: 1 horizontal, 2 vertical
    CWidgetList(int direction, QWidget* parent);
    ~CWidgetList() override;

    EWidgetDirection direction() const;

    /// Pixels between two neighbours; 0 at first.
    void setSpacing(int spacing);
    /// Pixels around the contents; 0 at first.
    void setMargin(int left, int top, int right, int bottom);

    /// @param fill  true: the widget takes the list's whole extent across, within its own minimum and maximum size;
    ///              false: it keeps its size hint there. `anchor` places it when room is left.
    void addFixedWidget(QWidget* widget, EWidgetAnchor anchor, bool fill);
    void addFixedWidget(QWidget* widget, int anchor, bool fill) { addFixedWidget(widget, EWidgetAnchor(anchor), fill); }
    /// @param stretch  share of the free room, at least 1
    void addStretchWidget(QWidget* widget, int stretch, EWidgetAnchor anchor, bool fill);
    void addStretchWidget(QWidget* widget, int stretch, int anchor, bool fill)
    {
        addStretchWidget(widget, stretch, EWidgetAnchor(anchor), fill);
    }
    /// Pixels of empty room.
    void addFixedSpace(int length);
    void addStretchSpace(int stretch);

    /// Computes the layout at once instead of with the next event, and makes the list at least as long as its contents
    /// ask.
    void updateWidgetLength();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void add(QWidget* widget, int stretch, EWidgetAnchor anchor, bool fill);

    class CListLayout;
    CListLayout* m_layout;
    QString m_lastLabel;
};

} // namespace WQ
