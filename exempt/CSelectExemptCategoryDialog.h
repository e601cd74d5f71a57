// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "exempt/CategoryList.h"
#include "exempt/CategorySearch.h"

#include <WQ/CCommonDialog.h>

namespace WQ
{
class CLineEdit;
class CStandardSimpleTable;
class CWidgetList;
} // namespace WQ

namespace QAV
{

/// The dialog to pick exempt categories from the offered ones. It is reused and keeps its search text. exec() returns 1
/// if the user accepts the choice, 0 if the caller must keep its own.
class CSelectExemptCategoryDialog final : public WQ::CCommonDialog
{
    Q_OBJECT

public:
    explicit CSelectExemptCategoryDialog(QWidget* parent);
    ~CSelectExemptCategoryDialog() override;

    /// Sets the offered categories; may be null. The caller keeps ownership of the list, and calls this again when it
    /// has changed.
    void setCategories(const CategoryList* categories);
    void setSelectedCategories(CategoryList categories);
    /// The chosen categories: first the ones that were set, in their order, without removed ones; then the added ones,
    /// in the order in which they were added. The table shows them in the order of the offered list.
    CategoryList selectedCategories() const { return m_selectedCategories; }

    /// True if "关闭" would discard a move.
    bool hasUnsavedEdits() const override;
    bool handleEvent(int type, int id, int param, QString text, void* data) override;

private:
    QWidget* createSearchRow(WQ::CWidgetList* mainList);
    QWidget* createTables(WQ::CWidgetList* mainList);
    QWidget* createMoveButtons(WQ::CWidgetList* row);
    QWidget* createBottomRow(WQ::CWidgetList* mainList);

    /// Refills both tables: the chosen categories on the right, the search result on the left.
    void refresh();
    /// Moves the selected rows of `source` to `target`, without a new search.
    void move(WQ::CStandardSimpleTable* source, WQ::CStandardSimpleTable* target);
    /// Moves one row; the selection of the others stays.
    void moveOne(WQ::CStandardSimpleTable* source, int row, WQ::CStandardSimpleTable* target);
    /// Writes the names of `list` into the table's rows, in the order of the offered list.
    void relabel(WQ::CStandardSimpleTable* table, const CategoryList& list);

    WQ::CStandardSimpleTable* m_pAvailableTable = nullptr;
    WQ::CStandardSimpleTable* m_pSelectedTable = nullptr;
    WQ::CLineEdit* m_pSearchEdit = nullptr;
    /// The categories in the left table, including those that were moved back.
    CategoryList m_availableCategories;
    CategoryList m_selectedCategories;
    CategoryList m_givenCategories; ///< what the caller keeps unless the user accepts; sorted
    /// Not used in the destructor: its owner may be gone by then.
    const CategoryList* m_pAllCategories = nullptr;
    /// One key per offered category, in the same order.
    std::vector<CCategorySearchKey> m_searchKeys;
    QString m_strSearchText;
};

} // namespace QAV
