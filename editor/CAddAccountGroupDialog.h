// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "editor/AccountList.h"
#include "panel/CLatestReplies.h"

#include <WQ/CCommonDialog.h>
#include <nvservice/Bson.h>
#include <nvservice/IData.h>
#include <nvservice/MetaTypes.h>
#include <utils/NVError.h>

#include <boost/container/flat_map.hpp>
#include <boost/shared_ptr.hpp>

#include <optional>
#include <tuple>
#include <vector>

namespace nvservice
{
class CAccountGroup;
} // namespace nvservice

namespace WQ
{
class CComboBox;
class CLineEdit;
class CLoadingMaskWidget;
class CMediumNormalButton;
class CSimpleTextWidget;
class CStandardSimpleTable;
class CWidgetList;
} // namespace WQ

namespace QAV
{

class CManagerSearchLineEdit;

/// The dialog to create or edit an account group. The panel has one as long as it exists.
///
/// It reloads all accounts each time it is shown. It keeps the user's input until the next reset, so that it can be
/// shown again if the panel refuses the group. Lives on the UI thread.
class CAddAccountGroupDialog final : public WQ::CCommonDialog
{
    Q_OBJECT

public:
    explicit CAddAccountGroupDialog(QWidget* parent);
    ~CAddAccountGroupDialog() override;

    /// Fixes the server of the group; empty: the user chooses it.
    void setServerName(QString serverName);
    /// The products by account key.
    void setAccountProductMap(const ProductMap& products);
    /// Prepares the dialog to edit `group`, an nvservice::CAccountGroup, which is not changed.
    void setGroupInfo(nvservice::IDataPtr group, QString serverName);
    /// Offers the input of a save that was refused, an nvservice::CAccountGroup: the user may recall it as long as the
    /// dialog is open. Null: there is none.
    void offerInput(nvservice::IDataPtr refused);
    /// Runs the dialog. Returns 1 if the user saved, 0 if the dialog was closed. `reset` first empties it for a new
    /// group.
    int execDialog(bool reset);
    /// Writes the input into `group`, an nvservice::CAccountGroup. `serverName` receives the chosen server, and is
    /// unchanged if there was no choice. It determines the group's system tag.
    void getGroupInfo(nvservice::IDataPtr group, QString& serverName);

    bool handleEvent(int eventType, int widgetId, int param, QString text, void* data) override;
    void done(int result) override;
    bool hasUnsavedEdits() const override;

signals:
    void sigQuaryAccountInfo(const std::vector<nvservice::IDataPtr>& datas, bool bSuccess, QString qsError);

private slots:
    void slotQuaryAccountInfo(const std::vector<nvservice::IDataPtr>& datas, bool bSuccess, QString qsError);

private:
    void createUi();
    WQ::CWidgetList* createRow(WQ::CWidgetList* mainList);
    void createNameRow(WQ::CWidgetList* mainList);
    void createInstitutionRow(WQ::CWidgetList* mainList);
    void createSystemRow(WQ::CWidgetList* mainList);
    void createAccountTable(WQ::CWidgetList* mainList);
    void createBottomRow(WQ::CWidgetList* mainList);
    static WQ::CMediumNormalButton* createButton(WQ::CWidgetList* row, int id, const QString& text, int width,
                                                 int height);

    void showGroup(const nvservice::CAccountGroup& group);
    void recallInput();
    void updateSystemRow();
    /// Selects a server; ignores one that is not offered.
    void selectServer(const QString& serverName);
    void resetForAdd();
    void queryAccountInfo();
    /// Called on the service thread. Copies its arguments into the signal and accesses nothing else.
    void onQueryAccountInfo(const utils::NVError& error, const std::vector<nvservice::IDataPtr>& datas, int totalCount,
                            bson::BSONObj extra);
    void hideMaskWhenLoaded();
    void onInstitutionChanged();

    void addAccounts();
    /// The accounts that the picker offers: none that are excluded, and if the user can choose the server, only those
    /// of the chosen one.
    CandidateList candidates() const;
    void addAccountsToTable(const AccountList& accounts);
    void deleteAccount(int rowId);
    AccountList accountsAsDisplayed() const;
    /// Name, institution, sub-system and accounts, as they can be compared.
    using Input = std::tuple<QString, int, QString, QString, AccountList>;
    Input input() const;
    bool checkInput();
    /// Returns true if all accounts belong to the group's server. Otherwise shows the first one that does not.
    bool checkAccountServers();

    WQ::CLoadingMaskWidget* m_pLoadingMask = nullptr;
    WQ::CLineEdit* m_pGroupNameEdit = nullptr;
    WQ::CSimpleTextWidget* m_pSystemLabel = nullptr;
    CManagerSearchLineEdit* m_pInstitutionEdit = nullptr;
    WQ::CComboBox* m_pSystemCombo = nullptr;
    WQ::CStandardSimpleTable* m_pAccountTable = nullptr;
    /// All accounts of the last query that are not closed, including excluded ones.
    CandidateList m_allAccounts;
    ProductMap m_accountProductMap;
    /// The accounts of the group by their row in the table.
    boost::container::flat_map<int, boost::shared_ptr<nvservice::CAccountInfo>> m_rowAccountMap;
    WQ::CSimpleTextWidget* m_pNameTip = nullptr;
    WQ::CWidgetList* m_pSystemRow = nullptr;
    WQ::CMediumNormalButton* m_pRecallButton = nullptr;
    boost::shared_ptr<nvservice::CAccountGroup> m_refusedInput;
    bool m_bInstitutionLoaded = false;
    bool m_bAccountLoaded = false;
    bool m_bCanSelectInstitution = false;
    /// The fixed server of the group; empty if it is not fixed.
    QString m_strServerName;
    /// For the account query: a reply counts only for the showing that requested it.
    CLatestReplies m_accountReplies{*this};
    /// What the dialog showed before the user could change it. Empty until everything has been loaded after a reset.
    std::optional<Input> m_inputBefore;
};

} // namespace QAV
