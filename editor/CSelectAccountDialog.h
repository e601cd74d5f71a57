// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "editor/AccountList.h"

#include <WQ/CCommonDialog.h>

#include <cstdint>
#include <map>

namespace WQ
{
class CComboBox;
class CWidgetList;
} // namespace WQ

namespace QAV
{

class CUserCombobox;

/// The dialog to pick the accounts of a group, one account type at a time. Created for each use.
class CSelectAccountDialog final : public WQ::CCommonDialog
{
    Q_OBJECT

public:
    explicit CSelectAccountDialog(QWidget* parent);
    ~CSelectAccountDialog() override;

    /// The products by account key, for the texts. Call it before setAccounts().
    void setProductMap(const ProductMap& products);
    /// Offers the candidates of the types that the user may see. Each candidate's account gets the system tag of its
    /// wrapper. Candidates with the same type and display id as an account of the group are checked.
    void setAccounts(const CandidateList& candidates, const AccountList& inGroup);
    /// Replaces `out` by the checked accounts of the shown type, in the order of the candidates.
    void selectedAccounts(AccountList& out) const;

    bool handleEvent(int type, int id, int param, QString text, void* data) override;

private:
    void createUi();
    WQ::CWidgetList* createRow(WQ::CWidgetList* list, const QString& label, QWidget* control);
    void fillAccountBox(int typeIndex);
    QString itemText(const boost::shared_ptr<nvservice::CAccountInfo>& account) const;
    /// The accounts of the type at an index of the type box; null if there are none.
    const AccountList* accountsAt(int typeIndex) const;
    /// Returns true if no account is checked together with one of its own units. Otherwise tells the user.
    bool checkAccountUnits();

    WQ::CComboBox* m_pTypeCombo = nullptr;
    CUserCombobox* m_pAccountBox = nullptr;
    std::map<std::int32_t, AccountList> m_accountsByType;
    ProductMap m_accountProductMap;
    AccountList m_preselected;
};

} // namespace QAV
