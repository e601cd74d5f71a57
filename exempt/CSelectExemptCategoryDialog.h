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

/// The dialog in which the exempt categories are picked out of the offered ones. It is reused: the search text stays
/// from one opening to the next. exec() returns 1 when the user wants the choice, 0 when the caller is to keep its own.
class CSelectExemptCategoryDialog final : public WQ::CCommonDialog
{
    Q_OBJECT

public:
    explicit CSelectExemptCategoryDialog(QWidget* parent);
    ~CSelectExemptCategoryDialog() override;

    /// What is offered. The list stays its owner's, who calls this again when it has changed. May be null.
    void setCategories(const CategoryList* categories);
    void setSelectedCategories(CategoryList categories);
    /// The chosen categories: those that were set, in their order, without those that were given back; then those that
    /// were chosen, in the order of choosing. The table beside shows them in the order of the offered list.
    CategoryList selectedCategories() const { return m_selectedCategories; }

    bool handleEvent(int type, int id, int param, QString text, void* data) override;

private:
    QWidget* createSearchRow(WQ::CWidgetList* mainList);
    QWidget* createTables(WQ::CWidgetList* mainList);
    QWidget* createMoveButtons(WQ::CWidgetList* row);
    QWidget* createBottomRow(WQ::CWidgetList* mainList);

    /// Fills both tables anew: the chosen categories right, those that the search finds left.
    void refresh();
    /// Takes the rows that are selected in `source` over to `target`. The search is not asked again.
    void move(WQ::CStandardSimpleTable* source, WQ::CStandardSimpleTable* target);
    /// Writes the names of `list` into the table's rows, in the order of the offered list.
    void relabel(WQ::CStandardSimpleTable* table, const CategoryList& list);

    WQ::CStandardSimpleTable* m_pAvailableTable = nullptr;
    WQ::CStandardSimpleTable* m_pSelectedTable = nullptr;
    WQ::CLineEdit* m_pSearchEdit = nullptr;
    /// What the left table shows, and was given since.
    CategoryList m_availableCategories;
    CategoryList m_selectedCategories;
    /// Not used in the destructor: its owner may be gone by then.
    const CategoryList* m_pAllCategories = nullptr;
    /// One key per offered category, in the same order.
    std::vector<CCategorySearchKey> m_searchKeys;
    QString m_strSearchText;
};

} // namespace QAV
