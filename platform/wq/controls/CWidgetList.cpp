// SPDX-License-Identifier: Apache-2.0
#include <WQ/CSimpleTextWidget.h>
#include <WQ/CWidgetList.h>

#include <QBoxLayout>
#include <QPainter>
#include <QStyle>

namespace WQ
{

namespace
{

constexpr int Unlimited = QWIDGETSIZE_MAX;

/// One widget of a list: keeps a fixed widget at its size hint along the list, and places it across.
class CListItem : public QWidgetItemV2
{
public:
    CListItem(QWidget* widget, bool vertical, bool stretches, EWidgetAnchor anchor, bool fill)
        : QWidgetItemV2(widget), m_vertical(vertical), m_stretches(stretches), m_fill(fill), m_anchor(anchor)
    {
    }

    QSize minimumSize() const override
    {
        QSize size = QWidgetItemV2::minimumSize();
        if (!m_stretches) {
            setAlong(size, along(QWidgetItemV2::sizeHint()));
        }
        return size;
    }

    QSize maximumSize() const override
    {
        QSize size = QWidgetItemV2::maximumSize();
        setAcross(size, Unlimited);
        if (isEmpty()) {
            return size;
        }
        setAlong(size, m_stretches ? Unlimited : along(QWidgetItemV2::sizeHint()));
        return size;
    }

    Qt::Orientations expandingDirections() const override
    {
        if (isEmpty()) {
            return {};
        }
        const Qt::Orientation alongList = m_vertical ? Qt::Vertical : Qt::Horizontal;
        return m_stretches ? alongList : Qt::Orientations();
    }

    void setGeometry(const QRect& room) override
    {
        if (isEmpty()) {
            return;
        }
        const QSize most = widget()->maximumSize();
        QSize size = room.size().boundedTo(most);
        // A widget that needs more room than the list has keeps its size and its anchor.
        setAcross(size, qMax(across(size), across(widget()->minimumSize())));
        if (!m_fill) {
            setAcross(size, qMin(across(size), across(QWidgetItemV2::sizeHint())));
        }
        const int left = across(room.size()) - across(size);
        int shift = 0;
        switch (m_anchor) {
        case AnchorLeading:
            break;
        case AnchorMiddle:
            shift = left / 2;
            break;
        case AnchorTrailing:
            shift = left;
            break;
        case AnchorLine:
            shift = m_vertical ? 0 : left / 2;
            break;
        }
        const QPoint offset = m_vertical ? QPoint(shift, 0) : QPoint(0, shift);
        const QRect place(room.topLeft() + offset, size);
        widget()->setGeometry(m_vertical ? QStyle::visualRect(widget()->layoutDirection(), room, place) : place);
    }

private:
    int along(const QSize& size) const { return m_vertical ? size.height() : size.width(); }
    int across(const QSize& size) const { return m_vertical ? size.width() : size.height(); }
    void setAlong(QSize& size, int value) const { m_vertical ? size.setHeight(value) : size.setWidth(value); }
    void setAcross(QSize& size, int value) const { m_vertical ? size.setWidth(value) : size.setHeight(value); }

    bool m_vertical;
    bool m_stretches;
    bool m_fill;
    EWidgetAnchor m_anchor;
};

} // namespace

class CWidgetList::CListLayout : public QBoxLayout
{
public:
    CListLayout(bool vertical, QWidget* parent)
        : QBoxLayout(vertical ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight, parent), m_vertical(vertical)
    {
    }

    void add(QWidget* widget, int stretch, EWidgetAnchor anchor, bool fill)
    {
        addChildWidget(widget);
        addItem(new CListItem(widget, m_vertical, stretch > 0, anchor, fill));
        setStretch(count() - 1, stretch);
    }

    void addRoom(int stretch) { addStretch(stretch); }

    void setGeometry(const QRect& room) override
    {
        QRect used = room;
        if (!somethingStretches()) {
            const QSize wanted = sizeHint();
            if (m_vertical) {
                used.setHeight(qMin(room.height(), wanted.height()));
            } else {
                used.setWidth(qMin(room.width(), wanted.width()));
            }
            if (!m_vertical) {
                used = QStyle::visualRect(parentWidget()->layoutDirection(), room, used);
            }
        }
        QBoxLayout::setGeometry(used);
    }

private:
    bool somethingStretches() const
    {
        for (int i = 0; i < count(); ++i) {
            if (stretch(i) > 0 && !(itemAt(i)->widget() && itemAt(i)->isEmpty())) {
                return true;
            }
        }
        return false;
    }

    bool m_vertical;
};

struct CWidgetList::Private {
    CListLayout* layout;
    QString lastLabel = {};
};

CWidgetList::CWidgetList(int direction, QWidget* parent)
    : CBaseWidget(parent), m_d(new Private{new CListLayout(direction == VerticalList, this)})
{
    m_d->layout->setSpacing(0);
    m_d->layout->setContentsMargins(0, 0, 0, 0);
}

CWidgetList::~CWidgetList() = default;

EWidgetDirection CWidgetList::direction() const
{
    return m_d->layout->direction() == QBoxLayout::TopToBottom ? VerticalList : HorizontalList;
}

void CWidgetList::setSpacing(int spacing)
{
    m_d->layout->setSpacing(spacing);
}

void CWidgetList::setMargin(int left, int top, int right, int bottom)
{
    m_d->layout->setContentsMargins(left, top, right, bottom);
}

void CWidgetList::addFixedWidget(QWidget* widget, EWidgetAnchor anchor, bool fill)
{
    add(widget, 0, anchor, fill);
}

void CWidgetList::addStretchWidget(QWidget* widget, int stretch, EWidgetAnchor anchor, bool fill)
{
    add(widget, qMax(1, stretch), anchor, fill);
}

void CWidgetList::addFixedSpace(int length)
{
    m_d->layout->addSpacing(length);
}

void CWidgetList::addStretchSpace(int stretch)
{
    m_d->layout->addRoom(qMax(1, stretch));
}

void CWidgetList::updateWidgetLength()
{
    m_d->layout->invalidate();
    m_d->layout->activate();
    const QSize wanted = m_d->layout->sizeHint();
    if (direction() == VerticalList) {
        resize(width(), qMax(height(), wanted.height()));
    } else {
        resize(qMax(width(), wanted.width()), height());
    }
}

void CWidgetList::paintEvent(QPaintEvent* event)
{
    CBaseWidget::paintEvent(event);
    if (!backgroundImage().isEmpty()) {
        QPainter painter(this);
        paintBackground(painter, rect());
    }
}

void CWidgetList::add(QWidget* widget, int stretch, EWidgetAnchor anchor, bool fill)
{
    m_d->layout->add(widget, stretch, anchor, fill);
    if (const auto* const label = qobject_cast<CSimpleTextWidget*>(widget)) {
        m_d->lastLabel = label->text().trimmed();
        while (m_d->lastLabel.endsWith(QLatin1Char(':')) || m_d->lastLabel.endsWith(QChar(0xFF1A))) {
            m_d->lastLabel.chop(1);
        }
        return;
    }
    if (widget->focusPolicy() != Qt::NoFocus && widget->accessibleName().isEmpty()) {
        widget->setAccessibleName(m_d->lastLabel);
    }
    m_d->lastLabel.clear();
}

} // namespace WQ
