#pragma once

#include "WQ/Export.h"

#include <QStyledItemDelegate>

class QKeyEvent;
class QMouseEvent;

namespace WQ
{

class CStandardHpfTable;
class IBaseHpfTableModel;

/// Shows the cells of one column in place of their text, and handles mouse and keyboard in them. Painted, never a
/// widget. The table that it is set on (`CStandardHpfTable::setColumnDelegate`) takes ownership.
/// To be used on the user-interface thread only.
class WQ_EXPORT CBaseTableColumnDelegate : public QStyledItemDelegate
{
    Q_OBJECT
public:
    explicit CBaseTableColumnDelegate(int column, QObject* parent = nullptr);
    ~CBaseTableColumnDelegate() override;

    int column() const { return m_column; }
    /// The table that the delegate is set on; null before.
    CStandardHpfTable* table() const { return m_table; }

    /// Drops whatever is kept per row. Base: nothing.
    virtual void clear();
    /// Width that the cell needs, pixels.
    virtual int contentWidth(const QModelIndex& index) const;
    /// What an assistive technology reads of the cell.
    virtual QString accessibleText(const QModelIndex& index) const;
    /// The tip at a position of the cell; empty for none.
    virtual QString toolTipAt(const QModelIndex& index, const QRect& cell, const QPoint& position) const;
    /// Press, move (also without a button pressed), release or double click inside `cell`, or outside of it while a
    /// press that the delegate accepted lasts. Returns true if the event was the delegate's own.
    virtual bool mouseEvent(QMouseEvent* event, const QModelIndex& index, const QRect& cell);
    /// The mouse has left the column's cells.
    virtual void mouseLeft();
    /// A key while the cell is the current one. Returns true if the key was used up.
    virtual bool keyEvent(QKeyEvent* event, const QModelIndex& index);
    /// The cell has become (`column` equal) or ceased to be the current one. `forward`: the focus came from the left.
    virtual void currentChanged(bool current, bool forward);

protected:
    /// Has the column repainted, once per event-loop turn however often it is called.
    void requestRepaint();

private:
    friend class CStandardHpfTable;
    int m_column;
    CStandardHpfTable* m_table = nullptr;
};

} // namespace WQ
