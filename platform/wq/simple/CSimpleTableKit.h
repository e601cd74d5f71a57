// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "simple/CSimpleTableView.h"
#include "tablekit/CTableKit.h"

namespace WQ
{

/// What a simple table has besides its rows: sorting, and columns that are fitted to the table's width.
class CSimpleTableKit : public CTableKit
{
public:
    CSimpleTableKit(QWidget& table, CSimpleTableView& view, int tableId);

    void fitColumns();
    void endSorting();

    void requestFit() override { m_view.requestFit(); }
    int sortColumn() const override { return m_sortColumn; }
    Qt::SortOrder sortOrder() const override { return m_sortOrder; }
    void sort(int column, Qt::SortOrder order) override;

protected:
    bool isListed(int column) const override;
    bool isNumber(int column, const QString& text) const override;
    std::vector<char> matches(int column, const QString& text) const override;

private:
    int headerWidth(int column) const;
    int wantedWidth(int column) const;
    void showSorting();

    CSimpleTableView& m_view;
    CSimpleTableModel& m_rows;
    int m_sortColumn = -1;
    Qt::SortOrder m_sortOrder = Qt::AscendingOrder;
};

} // namespace WQ
