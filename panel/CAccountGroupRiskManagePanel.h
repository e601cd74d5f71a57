// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "editor/AccountList.h"
#include "panel/CGroupList.h"
#include "panel/CLatestReplies.h"
#include "panel/CReplyLabel.h"

#include <QAV/IkolmDockableWidget.h>
#include <nvservice/Bson.h>
#include <nvservice/EZvDataOperation.h>
#include <nvservice/IData.h>
#include <nvservice/MetaTypes.h>
#include <utils/NVError.h>

#include <QPointer>

#include <boost/shared_ptr.hpp>

#include <string>
#include <unordered_map>
#include <vector>

namespace WQ
{
class CLineEdit;
class CLoadingMaskWidget;
class CStandardHpfTable;
class CWidgetList;
} // namespace WQ

namespace nvservice
{
class CAccountGroup;
}

namespace QAV
{

class CAccountGroupRiskModel;
class CAddAccountGroupDialog;
class CSetAccountGroupRiskDialog;

/// Shows the account groups of one server in a table, with the operations that the user may perform.
///
/// The only class that the plug-in exports; the client creates it by name through its meta-object. The panel queries
/// its groups whenever it is activated, its server is switched or the user refreshes it, and rebuilds its table from
/// the answer. Lives on the UI thread. Answers of the data service arrive on the service thread and reach the slots
/// through queued signals.
class Q_DECL_EXPORT CAccountGroupRiskManagePanel final : public IkolmDockableWidget
{
    Q_OBJECT

public:
    Q_INVOKABLE explicit CAccountGroupRiskManagePanel(QWidget* parent);
    ~CAccountGroupRiskManagePanel() override;

    /// Restores what `param` returned: the table's layout, up to the first ';'.
    void setParam(const QString& param) override;
    QString param() const override;
    bool handleEvent(int eventId, int param1, int param2, QString strParam, void* data) override;
    void switchSystem(int index, QString serverName) override;
    void onActive() override;

    /// Empties the panel: groups, products, rows, filter, sorting and row buttons.
    void clear();

    /// Shows the mask, empties the panel and queries the groups of the current server, or of all servers if there is
    /// none.
    void queryAccountGroupInfo();
    /// Queries the products of all servers; the answer hides the mask.
    void queryProduct();
    /// Appends one row.
    void addAccountGroupInTable(boost::shared_ptr<nvservice::CAccountGroup> group);

    /// Opens the risk settings of a group; the dialog reports its own saves.
    void setData(boost::shared_ptr<nvservice::CAccountGroup> group);
    /// Lets the user create a new group, and sends it.
    void addData();
    /// Lets the user edit a copy of a group, and sends it.
    void modifyData(boost::shared_ptr<nvservice::CAccountGroup> group);
    /// True if a group may be saved: it has accounts, and no other listed group of its server has the same name.
    /// Otherwise shows the reason.
    bool checkGroupInfo(boost::shared_ptr<nvservice::CAccountGroup> group);
    /// The input of the last save, if that was refused and the editor is now opened for the same group.
    boost::shared_ptr<nvservice::CAccountGroup> refusedInputOf(const nvservice::CAccountGroup& group) const;
    /// Deletes a group if the user confirms.
    void removeData(boost::shared_ptr<nvservice::CAccountGroup> group);
    /// Sends an operation: a new group to the server named here, an existing one to its own server.
    void operatorAccountGroupInfo(nvservice::EZvDataOperation operation,
                                  boost::shared_ptr<nvservice::CAccountGroup> group, std::string serverName);

signals:
    void sigQuaryAccountGroup(std::vector<nvservice::IDataPtr> datas, int nTotalDataCount);
    void sigOperatorAccountGroupInfo(int nOperation, bool bSuccess, QString qsError);
    void sigQueryProduct(std::vector<nvservice::IDataPtr> datas);

private slots:
    void slotQuaryAccountGroup(std::vector<nvservice::IDataPtr> datas, int nTotalDataCount);
    void slotOperatorAccountGroupInfo(int nOperation, bool bSuccess, QString qsError);
    void slotQueryProduct(std::vector<nvservice::IDataPtr> datas);

private:
    void createUi();
    void createTopBar(WQ::CWidgetList* mainList);
    void createTable(WQ::CWidgetList* mainList);

    // Called on the service thread; they copy their arguments into a signal and touch nothing else.
    void onQueryAccountGroupInfo(const utils::NVError& error, const std::vector<nvservice::IDataPtr>& datas,
                                 int totalCount, bson::BSONObj extra);
    void onQueryProduct(const utils::NVError& error, const std::vector<nvservice::IDataPtr>& datas, int totalCount,
                        bson::BSONObj extra);
    void onOperatorAccountGroupInfo(const utils::NVError& error, bson::BSONObj result,
                                    nvservice::EZvDataOperation operation,
                                    boost::shared_ptr<nvservice::CAccountGroup> group);

    /// Calls `takeNext` once in each turn of the event loop, until it returns false or another query begins.
    void takeArrived(bool (CAccountGroupRiskManagePanel::*takeNext)());
    // Each takes the next of the arrived records, so few that the user need not wait for an event; false: that was all.
    bool showNextGroups();
    bool mapNextProducts();
    /// Every query empties the table; afterwards the user is where he was before, or at the group that he has added.
    void rememberPlace();
    void returnToPlace();
    bool goToGroup(const std::string& name);

    void filterByGroupName();
    /// A name that many rows have, as a text that they share.
    const QString& sharedText(const std::string& name);

    void handleRowButton(const QString& rowKey, int button);
    /// The listed group of a row; null if the row or its group no longer exists.
    boost::shared_ptr<nvservice::CAccountGroup> groupOfRow(const QString& rowKey) const;

    QPointer<WQ::CLoadingMaskWidget> m_pLoadingMask;
    QPointer<CSetAccountGroupRiskDialog> m_pRiskDialog;
    QPointer<WQ::CStandardHpfTable> m_pTable;
    QPointer<CAccountGroupRiskModel> m_pModel;
    QPointer<WQ::CLineEdit> m_pSearchEdit;
    QPointer<CAddAccountGroupDialog> m_pGroupDialog;
    /// The product of an account, by the account's key.
    ProductMap m_accountProductMap;
    CGroupList m_accountGroups;
    /// The groups or the products of a reply, until all are taken.
    struct Arrived {
        std::vector<nvservice::IDataPtr> records;
        std::size_t taken = 0;
        bool isPlaceFound = false; ///< the user is where he was before the query
    };
    Arrived m_arrived;
    /// A place in the table.
    struct Place {
        std::string systemTag; ///< of the groups
        QString currentKey;
        int scrollValue = 0;
    };
    Place m_place;
    /// The group that the next answer is to show, because it was added.
    std::string m_addedGroupName;
    CReplyLabel<boost::shared_ptr<nvservice::CAccountGroup>> m_sentGroup;
    /// The group of the last save that was refused; its input can be recalled.
    boost::shared_ptr<nvservice::CAccountGroup> m_refusedGroup;
    std::unordered_map<std::string, QString> m_sharedTexts;
    /// For the query of groups and the following query of products.
    CLatestReplies m_queryReplies{*this};
};

} // namespace QAV
