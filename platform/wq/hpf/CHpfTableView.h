// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tablekit/CTableView.h"

#include <WQ/IBaseHpfTableModel.h>

#include <QPersistentModelIndex>
#include <QPointer>

class QToolButton;

namespace WQ
{

class CBaseTableColumnDelegate;
class CHpfHeader;
class CStandardHpfTable;

/// Shows the rows of a high-performance model. Columns with a delegate are painted and handled by it.
class CHpfTableView : public CTableView
{
    Q_OBJECT

public:
    explicit CHpfTableView(CStandardHpfTable& table);

    CHpfHeader* header() const { return m_header; }
    void setHpfModel(IBaseHpfTableModel* model);
    IBaseHpfTableModel* hpfModel() const { return m_model; }
    /// The width that the column's cells on screen need.
    int contentWidth(int column) const;

    void sync() override;
    int idOfRow(int row) const override;
    int rowOfId(int id) const override;
    TableActions cellActions(const QModelIndex& index) const override;
    bool isColumnWidthFixed(int column) const override;
    const QAbstractItemDelegate* columnPainter(int column) const override;
    QColor rowBackground(int row) const override;
    QString emptyText() const override;

signals:
    void sigFilterRequested(int column);

protected:
    QString toolTipAt(const QModelIndex& index, const QPoint& position) const override;
    void setHover(const QPoint& position, bool inside) override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;

    void changeEvent(QEvent* event) override;
    void updateGeometries() override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    /// True if only the filter is why there are no rows.
    bool isAllFilteredOut() const;
    void offerToDropFilter();
    CBaseTableColumnDelegate* delegateOf(const QModelIndex& index) const;
    bool sendToDelegate(QMouseEvent* event);

    CStandardHpfTable& m_table;
    CHpfHeader* m_header;
    QPointer<IBaseHpfTableModel> m_model;
    QToolButton* m_dropFilter; ///< below the text of an empty table
    QPointer<CBaseTableColumnDelegate> m_hoverDelegate;
    QPointer<CBaseTableColumnDelegate> m_pressDelegate;
    QPersistentModelIndex m_pressIndex;
};

} // namespace WQ
