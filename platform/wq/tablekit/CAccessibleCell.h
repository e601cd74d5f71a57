// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tablekit/CTableView.h"

#include <QAccessible>
#include <QPointer>

namespace WQ
{

/// A cell, a section of the header, the header of a row, or the corner between the headers: row or column is -1 for a
/// header.
class CAccessibleCell : public QAccessibleInterface,
                        public QAccessibleTableCellInterface,
                        public QAccessibleActionInterface
{
public:
    CAccessibleCell(CTableView& view, int row, int column) : m_view(&view), m_row(row), m_column(column) {}

    int row() const { return m_row; }
    int column() const { return m_column; }

    bool isValid() const override;
    QObject* object() const override { return nullptr; }
    QWindow* window() const override;
    QAccessibleInterface* parent() const override;
    QAccessibleInterface* child(int index) const override;
    int childCount() const override;
    int indexOfChild(const QAccessibleInterface* iface) const override;
    QAccessibleInterface* childAt(int x, int y) const override;
    QString text(QAccessible::Text kind) const override;
    void setText(QAccessible::Text, const QString&) override {}
    QRect rect() const override;
    QAccessible::Role role() const override;
    QAccessible::State state() const override;
    void* interface_cast(QAccessible::InterfaceType type) override;

    bool isSelected() const override;
    QList<QAccessibleInterface*> columnHeaderCells() const override;
    QList<QAccessibleInterface*> rowHeaderCells() const override { return {}; }
    int columnIndex() const override { return m_column; }
    int rowIndex() const override { return m_row; }
    int columnExtent() const override { return 1; }
    int rowExtent() const override { return 1; }
    QAccessibleInterface* table() const override { return parent(); }

    QStringList actionNames() const override;
    void doAction(const QString& name) override;
    QStringList keyBindingsForAction(const QString&) const override { return {}; }

private:
    bool isCell() const { return m_row >= 0 && m_column >= 0; }
    bool isColumnHeader() const { return m_row < 0 && m_column >= 0; }
    QModelIndex index() const;
    QWidget* widget() const;
    TableActions actions() const;

    QPointer<CTableView> m_view;
    const int m_row;
    const int m_column;
};

} // namespace WQ
