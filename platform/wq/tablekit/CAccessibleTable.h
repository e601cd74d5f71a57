// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAccessibleWidget>

#include <unordered_map>

namespace WQ
{

class CTableView;

/// A table for assistive technology. Its children are numbered as QTableView numbers them in its events: line by line,
/// the header first, and in each line first a header of the row.
class CAccessibleTable : public QAccessibleWidget, public QAccessibleTableInterface
{
public:
    static void install();

    explicit CAccessibleTable(CTableView& view);
    ~CAccessibleTable() override;

    int childCount() const override;
    QAccessibleInterface* child(int index) const override;
    QAccessibleInterface* childAt(int x, int y) const override;
    QAccessibleInterface* focusChild() const override;
    int indexOfChild(const QAccessibleInterface* iface) const override;
    void* interface_cast(QAccessible::InterfaceType type) override;

    QAccessibleInterface* caption() const override { return nullptr; }
    QAccessibleInterface* summary() const override { return nullptr; }
    QAccessibleInterface* cellAt(int row, int column) const override;
    int selectedCellCount() const override;
    QList<QAccessibleInterface*> selectedCells() const override;
    QString columnDescription(int column) const override;
    QString rowDescription(int row) const override;
    int selectedColumnCount() const override { return 0; }
    int selectedRowCount() const override;
    int columnCount() const override;
    int rowCount() const override;
    QList<int> selectedColumns() const override { return {}; }
    QList<int> selectedRows() const override;
    bool isColumnSelected(int) const override { return false; }
    bool isRowSelected(int row) const override;
    bool selectRow(int row) override;
    bool selectColumn(int) override { return false; }
    bool unselectRow(int row) override;
    bool unselectColumn(int) override { return false; }
    void modelChange(QAccessibleTableModelChangeEvent* event) override;

private:
    void forgetChildren();

    CTableView& m_view;
    mutable std::unordered_map<int, QAccessible::Id> m_children; ///< by index
};

} // namespace WQ
