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

/// The widgets in the cells of a simple table. Only those of rows on screen are children of the view's viewport; the
/// others wait as children of one hidden widget, where they cost no layout, no painting and no events.
class CCellWidgets
{
public:
    using Factory = std::function<QWidget*(QWidget* parent)>;

    CCellWidgets(CSimpleTableView& view, const CSimpleTableModel& model, QWidget* owner);

    void set(int rowId, int column, QWidget* widget, Factory factory, int alignment);
    /// Makes the widget if need be; null if the cell has none.
    QWidget* widget(int rowId, int column);
    /// The widget if it exists already.
    QWidget* existing(int rowId, int column) const;
    bool hasAny(int rowId, int column) const { return m_cells.count(key(rowId, column)) != 0; }
    /// The size that the cell's widget wishes, within its minimum and maximum size; empty if the cell has none. Makes
    /// the widget if need be.
    QSize wish(int rowId, int column);
    void removeRow(int rowId);
    void clear();
    /// Whether any row has had a widget in the column.
    bool isWidgetColumn(int column) const
    {
        return size_t(column) < m_columnUsed.size() && m_columnUsed[size_t(column)];
    }

    /// Brings the widgets of the rows on screen to their cells and parks the others.
    void place();
    /// Size hints of visible widgets may have changed: the next place() asks them again.
    void forgetSizes();
    /// The row and column of a visible cell widget or of a child of one; false if `widget` is none.
    bool cellOf(const QWidget* widget, int& rowId, int& column) const;
    /// The widgets of a row that the keyboard can reach, in the order shown.
    QVector<QWidget*> focusable(int rowId);

private:
    struct Cell {
        QPointer<QWidget> widget;
        Factory factory;
        int alignment = 0;
        /// What the widget wishes; invalid: not asked yet.
        QSize wish;
        bool takesFocus = false;
    };
    struct Live {
        int rowId;
        int column;
        QPointer<QWidget> widget;
        /// Where it was placed; null: its wish for room may have changed.
        QRect cell;
    };

    static quint64 key(int rowId, int column) { return quint64(quint32(rowId)) << 32 | quint32(column); }
    void adopt(Cell& cell, QWidget* widget);
    QWidget* make(Cell& cell);
    void park(QWidget* widget);
    void discard(Cell& cell);
    bool stands(const std::vector<Live>& before, int rowId, int column, const QRect& cell) const;
    static QSize wishOf(Cell& cell);
    QRect placeIn(const QRect& room, Cell& cell) const;
    void leaveFocus(const QWidget* widget);

    CSimpleTableView& m_view;
    const CSimpleTableModel& m_model;
    QWidget* m_owner;
    QPointer<QWidget> m_parking;
    std::unordered_map<quint64, Cell> m_cells;
    /// By column, whether any row has a widget there.
    std::vector<char> m_columnUsed;
    std::vector<Live> m_live;
    bool m_placing = false;
};

} // namespace WQ
