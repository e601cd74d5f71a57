// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tablekit/CTableKit.h"

#include <QPointer>

namespace WQ
{

class CHpfFilterPopup;
class CHpfTableView;
class CStandardHpfTable;
class IBaseHpfTableModel;

/// What a high-performance table has besides its rows. Sorting and filters are the model's.
class CHpfTableKit : public CTableKit
{
public:
    CHpfTableKit(CStandardHpfTable& table, CHpfTableView& view, int tableId, int menuFlags);

    void fitColumns();
    void closeFilter();

    void requestFit() override;
    int sortColumn() const override;
    Qt::SortOrder sortOrder() const override;
    void sort(int column, Qt::SortOrder order) override;
    void openFilter(int column) override;

protected:
    bool isReady() const override { return model() != nullptr; }
    bool isListed(int column) const override;
    bool isInChooser(int column) const override { return isListed(column); }
    bool isSortable(int column) const override;
    bool isNumber(int column, const QString& text) const override;
    std::vector<char> matches(int column, const QString& text) const override;
    bool hasFilters() const override { return true; }
    bool isFiltered() const override;
    bool isFilteredBy(int column) const override;
    void clearFilter() override;
    bool isFilterable(int column) const override;

private:
    IBaseHpfTableModel* model() const;

    CStandardHpfTable& m_table;
    CHpfTableView& m_view;
    QPointer<CHpfFilterPopup> m_popup;
};

} // namespace WQ
