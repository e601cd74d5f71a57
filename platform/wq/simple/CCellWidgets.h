// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QPointer>
#include <QVector>
#include <QWidget>
#include <functional>
#include <unordered_map>
#include <vector>

namespace WQ
{

class CSimpleTableModel;
class CSimpleTableView;

/// The widgets in the cells of a simple table. Only the widgets of rows on screen are children of the view's viewport.
/// The others are parked as children of a hidden widget, where they cost no layout, painting or events.
class CCellWidgets
{
public:
    using Factory = std::function<QWidget*(QWidget* parent)>;

    CCellWidgets(CSimpleTableView& view, const CSimpleTableModel& model, QWidget* owner);

    void set(int rowId, int column, QWidget* widget, Factory factory, int alignment);
    /// The widget of the cell, created if necessary; null if the cell has none.
    QWidget* widget(int rowId, int column);
    /// The widget of the cell if it was created already, else null.
    QWidget* existing(int rowId, int column) const;
    bool hasAny(int rowId, int column) const { return m_cells.count(key(rowId, column)) != 0; }
    /// The size hint of the cell's widget, within its minimum and maximum size; empty if the cell has none. Creates the
    /// widget if necessary.
    QSize wish(int rowId, int column);
    void removeRow(int rowId);
    void clear();
    /// True if any row has had a widget in the column.
    bool isWidgetColumn(int column) const
    {
        return size_t(column) < m_columnUsed.size() && m_columnUsed[size_t(column)];
    }

    /// Moves the widgets of the rows on screen to their cells and parks the others.
    void place();
    /// Makes the next place() ask visible widgets for their size hints again.
    void forgetSizes();
    /// Finds the row and column of a visible cell widget or of its child; false for other widgets.
    bool cellOf(const QWidget* widget, int& rowId, int& column) const;
    /// The widgets of a row that can have the keyboard focus, in the order shown.
    QVector<QWidget*> focusable(int rowId);

private:
    struct Cell {
        QPointer<QWidget> widget;
        Factory factory;
        int alignment = 0;
        /// The size hint; invalid until it was asked for.
        QSize wish;
        bool takesFocus = false;
    };
    struct Live {
        QPointer<QWidget> widget;
        /// Where the widget was placed; null: its size hint may have changed.
        QRect cell;
    };

    static quint64 key(int rowId, int column) { return quint64(quint32(rowId)) << 32 | quint32(column); }
    void adopt(Cell& cell, QWidget* widget);
    QWidget* make(Cell& cell);
    void park(QWidget* widget);
    void discard(Cell& cell);
    static QSize wishOf(Cell& cell);
    QRect placeIn(const QRect& room, Cell& cell) const;
    void leaveFocus(const QWidget* widget);

    CSimpleTableView& m_view;
    const CSimpleTableModel& m_model;
    QWidget* m_owner;
    QPointer<QWidget> m_parking;
    std::unordered_map<quint64, Cell> m_cells;
    /// By column: whether any row has a widget there.
    std::vector<char> m_columnUsed;
    std::unordered_map<quint64, Live> m_live; ///< on screen, by cell
    bool m_placing = false;
};

} // namespace WQ
