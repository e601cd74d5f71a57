// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "exempt/CategoryList.h"

#include <WQ/CWidgetList.h>
#include <nvservice/CRatProofSetting.h>

namespace WQ
{
class CCheckBox;
class CStandardSimpleTable;
} // namespace WQ

namespace QAV
{

class CSelectExemptCategoryDialog;

/// Which of the two trade-pattern controls a page edits.
enum EExemptMode {
    ReverseOrderMode = 0,
    WashTradeMode = 1,
};

/// The page to edit the reverse-order check or the wash-trade ban of an account group, each with its own list of exempt
/// categories. Both are stored in one record; each page reads and writes only its own fields.
class CExemptCategoryWidget final : public WQ::CWidgetList
{
    Q_OBJECT

public:
    /// @param mode  EExemptMode
    CExemptCategoryWidget(int mode, int pageIndex, QWidget* parent);
    ~CExemptCategoryWidget() override;

    int pageIndex() const { return m_pageIndex; }

    /// Sets the offered categories. The caller keeps ownership of the list, and calls this again when it has changed.
    void setCategories(const CategoryList* categories);
    /// Shows this page's fields of `setting`. Exempt categories that are not offered are not shown, and are lost with
    /// the next fillRatProofSetting().
    void setRatProofSetting(nvservice::CRatProofSetting setting);
    /// Writes this page's fields into `setting`; the others do not change.
    void fillRatProofSetting(nvservice::CRatProofSetting& setting);
    /// Refills the table with the chosen categories.
    void refreshTable();

    bool handleEvent(int type, int id, int param, QString text, void* data) override;

private:
    QWidget* createChecks();
    QWidget* createTable();
    void chooseCategories();
    void removeRow(int rowId);

    const int m_mode;
    const int m_pageIndex;
    CSelectExemptCategoryDialog* m_pPicker = nullptr;
    WQ::CCheckBox* m_pEnableCheck = nullptr;
    /// The options exist on the reverse-order page only.
    WQ::CCheckBox* m_pNotCountCancelledCheck = nullptr;
    WQ::CCheckBox* m_pWarnOnlyCheck = nullptr;
    WQ::CStandardSimpleTable* m_pCategoryTable = nullptr;
    /// Not used in the destructor: its owner may be gone by then.
    const CategoryList* m_pAllCategories = nullptr;
    /// In the order of the table.
    CategoryList m_selectedCategories;
};

} // namespace QAV
