// SPDX-License-Identifier: Apache-2.0
#include "CCellWidgets.h"

#include "CSimpleTableModel.h"
#include "CSimpleTableView.h"

#include <QApplication>
#include <QHeaderView>

namespace WQ
{

namespace
{

QWidget* makeParking(QWidget* owner)
{
    auto* const parking = new QWidget(owner);
    parking->setObjectName(QStringLiteral("parking"));
    parking->hide();
    // A polished widget does not polish its later children: showing the window costs nothing per parked widget.
    parking->ensurePolished();
    return parking;
}

} // namespace

CCellWidgets::CCellWidgets(CSimpleTableView& view, const CSimpleTableModel& model, QWidget* owner)
    : m_view(view), m_model(model), m_owner(owner), m_parking(makeParking(owner))
{
}

void CCellWidgets::set(int rowId, int column, QWidget* widget, Factory factory, int alignment)
{
    const auto found = m_cells.find(key(rowId, column));
    if (found != m_cells.end()) {
        if (widget && found->second.widget == widget) {
            found->second.alignment = alignment;
            forgetSizes();
            return;
        }
        discard(found->second);
        m_cells.erase(found);
    }
    if (!widget && !factory) {
        return;
    }
    Cell& cell = m_cells[key(rowId, column)];
    cell.alignment = alignment;
    cell.factory = std::move(factory);
    if (size_t(column) >= m_columnUsed.size()) {
        m_columnUsed.resize(size_t(column) + 1, 0);
    }
    m_columnUsed[size_t(column)] = 1;
    if (widget) {
        adopt(cell, widget);
    }
}

void CCellWidgets::adopt(Cell& cell, QWidget* widget)
{
    cell.widget = widget;
    // The keyboard reaches cell widgets through the current row, not through the window's chain of all widgets.
    cell.takesFocus = widget->focusPolicy() & Qt::TabFocus;
    if (cell.takesFocus) {
        widget->setFocusPolicy(Qt::ClickFocus);
    }
    park(widget);
}

QWidget* CCellWidgets::make(Cell& cell)
{
    if (!cell.widget && cell.factory) {
        const Factory factory = std::move(cell.factory);
        cell.factory = nullptr;
        if (QWidget* const made = factory(m_parking)) {
            adopt(cell, made);
        }
    }
    return cell.widget;
}

QWidget* CCellWidgets::widget(int rowId, int column)
{
    const auto found = m_cells.find(key(rowId, column));
    return found == m_cells.end() ? nullptr : make(found->second);
}

QWidget* CCellWidgets::existing(int rowId, int column) const
{
    const auto found = m_cells.find(key(rowId, column));
    return found == m_cells.end() ? nullptr : found->second.widget.data();
}

void CCellWidgets::leaveFocus(const QWidget* widget)
{
    const QWidget* const focus = QApplication::focusWidget();
    if (focus && (focus == widget || widget->isAncestorOf(focus))) {
        m_view.setFocus(Qt::OtherFocusReason);
    }
}

void CCellWidgets::park(QWidget* widget)
{
    if (widget->parentWidget() == m_parking) {
        return;
    }
    leaveFocus(widget);
    widget->removeEventFilter(&m_view);
    widget->setParent(m_parking);
}

void CCellWidgets::discard(Cell& cell)
{
    QWidget* const widget = cell.widget;
    if (!widget) {
        return;
    }
    if (widget->parentWidget() != m_parking) {
        leaveFocus(widget);
        widget->removeEventFilter(&m_view);
        widget->hide();
    }
    // It may be the sender of the click that is being handled.
    widget->deleteLater();
}

void CCellWidgets::removeRow(int rowId)
{
    for (size_t column = 0; column < m_columnUsed.size(); ++column) {
        const auto found = m_columnUsed[column] ? m_cells.find(key(rowId, int(column))) : m_cells.end();
        if (found == m_cells.end()) {
            continue;
        }
        discard(found->second);
        m_cells.erase(found);
    }
}

void CCellWidgets::clear()
{
    for (const auto& [place, live] : m_live) {
        const auto found = m_cells.find(place);
        if (found != m_cells.end()) {
            discard(found->second);
        }
    }
    m_live.clear();
    m_cells.clear();
    m_columnUsed.clear();
    if (m_parking->children().isEmpty()) {
        return;
    }
    m_parking->deleteLater();
    m_parking = makeParking(m_owner);
}

QSize CCellWidgets::wishOf(Cell& cell)
{
    const QWidget& widget = *cell.widget;
    if (!cell.wish.isValid()) {
        cell.wish = widget.minimumSize() == widget.maximumSize()
                        ? widget.minimumSize()
                        : widget.sizeHint().expandedTo(widget.minimumSize()).boundedTo(widget.maximumSize());
    }
    return cell.wish;
}

QSize CCellWidgets::wish(int rowId, int column)
{
    const auto found = m_cells.find(key(rowId, column));
    return found != m_cells.end() && make(found->second) ? wishOf(found->second) : QSize(0, 0);
}

QRect CCellWidgets::placeIn(const QRect& room, Cell& cell) const
{
    const QSize size = cell.alignment == 0 ? room.size() : wishOf(cell).boundedTo(room.size());
    return QStyle::alignedRect(m_view.layoutDirection(), Qt::Alignment(cell.alignment), size, room);
}

void CCellWidgets::place()
{
    if (m_placing || !m_view.isVisible() || (m_cells.empty() && m_live.empty())) {
        return;
    }
    m_placing = true;
    QWidget* const viewport = m_view.viewport();
    const int first = m_view.firstVisibleRow();
    const int last = m_view.lastVisibleRow();
    std::unordered_map<quint64, Live> before;
    before.swap(m_live);
    for (size_t used = 0; used < m_columnUsed.size(); ++used) {
        const int column = int(used);
        if (!m_columnUsed[used] || m_view.isColumnHidden(column)) {
            continue;
        }
        for (int row = first; row <= last; ++row) {
            const int rowId = m_model.idOfRow(row);
            QWidget* const widget = this->widget(rowId, column);
            if (!widget) {
                continue;
            }
            if (widget->parentWidget() != viewport) {
                widget->setParent(viewport);
                widget->installEventFilter(&m_view);
            }
            const QRect cell = m_view.visualRect(m_model.index(row, column)).adjusted(0, 0, -1, -1);
            const auto known = before.find(key(rowId, column));
            if (known == before.end() || known->second.cell != cell || known->second.widget != widget) {
                widget->setGeometry(placeIn(cell.adjusted(1, 1, -1, -1), m_cells[key(rowId, column)]));
                widget->show();
            }
            if (known != before.end()) {
                before.erase(known);
            }
            m_live[key(rowId, column)] = {widget, cell};
        }
    }
    for (const auto& [place, live] : before) {
        const auto found = m_cells.find(place);
        // The widget of a cell that is gone is being deleted.
        if (live.widget && found != m_cells.end() && found->second.widget == live.widget) {
            // Its size hint may change unnoticed while it is parked.
            found->second.wish = QSize();
            park(live.widget);
        }
    }
    m_placing = false;
}

void CCellWidgets::forgetSizes()
{
    for (auto& [place, live] : m_live) {
        live.cell = QRect();
        const auto found = m_cells.find(place);
        if (found != m_cells.end()) {
            found->second.wish = QSize();
        }
    }
}

bool CCellWidgets::cellOf(const QWidget* widget, int& rowId, int& column) const
{
    for (const auto& [place, live] : m_live) {
        if (widget && live.widget && (live.widget == widget || live.widget->isAncestorOf(widget))) {
            rowId = int(place >> 32);
            column = int(quint32(place));
            return true;
        }
    }
    return false;
}

QVector<QWidget*> CCellWidgets::focusable(int rowId)
{
    QVector<QWidget*> widgets;
    const QHeaderView& header = *m_view.horizontalHeader();
    for (int visual = 0; visual < header.count(); ++visual) {
        const int column = header.logicalIndex(visual);
        const auto found = m_cells.find(key(rowId, column));
        if (found == m_cells.end() || header.isSectionHidden(column)) {
            continue;
        }
        QWidget* const widget = found->second.widget;
        if (widget && found->second.takesFocus && widget->isEnabled() && widget->isVisible()) {
            widgets << widget;
        }
    }
    return widgets;
}

} // namespace WQ
