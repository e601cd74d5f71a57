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

#include <vector>

namespace WQ
{
class CComboBox;
class CLineEdit;
class CLoadingMaskWidget;
class CSimpleTextWidget;
class CStandardSimpleTable;
class CWidgetList;
} // namespace WQ

namespace QAV
{

class CManagerSearchLineEdit;

/// The dialog in which an account group is created or edited. The panel keeps one for its whole life.
///
/// It loads all accounts anew each time it is shown, and keeps what the user put in until the next reset, so that it
/// can be shown again when the panel finds fault with the group. Lives on the user-interface thread.
class CAddAccountGroupDialog final : public WQ::CCommonDialog
{
    Q_OBJECT

public:
    explicit CAddAccountGroupDialog(QWidget* parent);
    ~CAddAccountGroupDialog() override;

    /// Ties the group to a server; empty leaves the choice to the user.
    void setServerName(QString serverName);
    /// The products by account key.
    void setAccountProductMap(const ProductMap& products);
    /// Prepares the dialog to edit `group`, an nvservice::CAccountGroup, which is not changed.
    void setGroupInfo(nvservice::IDataPtr group, QString serverName);
    /// Runs the dialog: 1 when the user saved, 0 when he closed it. `reset` empties it for a new group first.
    int execDialog(bool reset);
    /// Writes the input into `group`, an nvservice::CAccountGroup. `serverName` becomes the server that the user chose,
    /// and stays as it is where there is no choice; it decides the group's system tag.
    void getGroupInfo(nvservice::IDataPtr group, QString& serverName);

    bool handleEvent(int eventType, int widgetId, int param, QString text, void* data) override;
    void done(int result) override;

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
    void createButton(WQ::CWidgetList* row, int id, const QString& text, int width, int height);

    void updateSystemRow();
    /// Chooses a server; one that is not offered leaves the choice as it is.
    void selectServer(const QString& serverName);
    void resetForAdd();
    void queryAccountInfo();
    /// Called on the service thread; copies its arguments into the signal and touches nothing else.
    void onQueryAccountInfo(const utils::NVError& error, const std::vector<nvservice::IDataPtr>& datas, int totalCount,
                            bson::BSONObj extra);
    void hideMaskWhenLoaded();
    void onInstitutionChanged();

    void addAccounts();
    /// The accounts that the picker offers: all that are not excluded, where the server can be chosen those of the
    /// chosen one.
    CandidateList candidates() const;
    void addAccountsToTable(const AccountList& accounts);
    void deleteAccount(int rowId);
    AccountList accountsAsDisplayed() const;
    bool checkInput();
    /// Tells the user of the first account of another server than the group's; true if there is none.
    bool checkAccountServers();

    WQ::CLoadingMaskWidget* m_pLoadingMask = nullptr;
    WQ::CLineEdit* m_pGroupNameEdit = nullptr;
    WQ::CSimpleTextWidget* m_pSystemLabel = nullptr;
    CManagerSearchLineEdit* m_pInstitutionEdit = nullptr;
    WQ::CComboBox* m_pSystemCombo = nullptr;
    WQ::CStandardSimpleTable* m_pAccountTable = nullptr;
    /// Every account of the last query, open or excluded.
    CandidateList m_allAccounts;
    ProductMap m_accountProductMap;
    /// The accounts of the group by their row in the table.
    boost::container::flat_map<int, boost::shared_ptr<nvservice::CAccountInfo>> m_rowAccountMap;
    WQ::CSimpleTextWidget* m_pNameTip = nullptr;
    WQ::CWidgetList* m_pSystemRow = nullptr;
    bool m_bInstitutionLoaded = false;
    bool m_bAccountLoaded = false;
    bool m_bCanSelectInstitution = false;
    /// The server that the group is tied to; empty while it is not fixed.
    QString m_strServerName;
    /// Of the account query: a reply belongs to the showing that asked for it.
    CLatestReplies m_accountReplies{*this};
};

} // namespace QAV
