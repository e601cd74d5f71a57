#pragma once

#include "exempt/CategoryList.h"
#include "panel/CLatestReplies.h"

#include <WQ/CCommonDialog.h>
#include <nvservice/Bson.h>
#include <nvservice/CEmailRC.h>
#include <nvservice/IData.h>
#include <nvservice/MetaTypes.h>
#include <utils/NVError.h>

#include <QMap>

#include <boost/shared_ptr.hpp>

#include <atomic>
#include <vector>

namespace WQ
{
class CLoadingMaskWidget;
class CSmallNormalButton;
class CWidgetList;
} // namespace WQ

namespace nvservice
{
class CAccountGroup;
class CAccountGroupRCConfig;
} // namespace nvservice

namespace QAV
{

class CAccountRcEmailWidget;
class CAssetsProportionWidget;
class CExemptCategoryWidget;
class CKolmClient;
class CStockTradeLimitWidget;

/// The dialog in which the risk rules of an account group are set. The panel keeps one for its whole life.
///
/// It loads the group's configuration and the security categories side by side, and saves on its own; the user hears
/// of the outcome here. It never makes a configuration: a group for which the service has none cannot be saved. Lives
/// on the user-interface thread; answers come on the service thread and reach the slots through queued signals. Of the
/// replies to loads only those to the last one count, also when earlier ones are still queued as it is sent.
class CSetAccountGroupRiskDialog final : public WQ::CCommonDialog
{
    Q_OBJECT

public:
    explicit CSetAccountGroupRiskDialog(QWidget* parent);
    ~CSetAccountGroupRiskDialog() override;

    /// Starts to load the group's settings; called each time before the dialog is shown. What is still on its way for
    /// another group is dropped when it comes. `group` is not null.
    void setAccountGroup(boost::shared_ptr<nvservice::CAccountGroup> group);
    /// Called at each query of the panel, so that what the dialog offers is as fresh as the table.
    void refreshAssets();

    bool handleEvent(int type, int id, int param, QString text, void* data) override;

signals:
    void sigQuaryAccountGroupRisk(const std::vector<nvservice::IDataPtr> datas, bool bSuccess, QString qsErrorInfo);
    void sigQuaryCategories(std::vector<nvservice::IDataPtr> datas, bool bSuccess, QString qsErrorInfo);
    void sigUpdateAccountGroupRisk(QString qsError);

private slots:
    void slotQuaryAccountGroupRisk(const std::vector<nvservice::IDataPtr> datas, bool bSuccess, QString qsErrorInfo);
    void slotQuaryCategories(std::vector<nvservice::IDataPtr> datas, bool bSuccess, QString qsErrorInfo);
    void slotUpdateAccountGroupRisk(QString qsError);

private:
    void createUi();
    QWidget* createTabs();
    QWidget* createBottomBar();

    void queryAccountGroupRisk();
    void queryCategories();
    void saveAccountGroupRisk();
    void sendConfig(const boost::shared_ptr<CKolmClient>& client);
    void sendEmailRules(const boost::shared_ptr<CKolmClient>& client);
    boost::shared_ptr<CKolmClient> clientOfGroup() const;

    /// Says which save a reply answers.
    struct SaveLabel {
        unsigned number;
        boost::shared_ptr<nvservice::CAccountGroup> group;
    };

    // Called on the service thread; they copy their arguments into a signal and touch nothing else.
    void onQueryAccountGroupRisk(const utils::NVError& error, const std::vector<nvservice::IDataPtr>& datas,
                                 int totalCount, bson::BSONObj extra, int groupId);
    void onQueryCategories(const utils::NVError& error, const std::vector<nvservice::IDataPtr>& datas, int totalCount,
                           bson::BSONObj extra);
    void onUpdateAccountGroupRisk(const utils::NVError& error, bson::BSONObj result, int groupId,
                                  const SaveLabel& label);

    /// Whether the group is the one that is open: ids of different servers may be equal.
    bool isOpen(const nvservice::CAccountGroup& group) const;
    bool isLoading() const;
    /// While something is under way, nothing is saved.
    bool isCovered() const;
    void showConfig(const nvservice::CAccountGroupRCConfig& config);
    /// Called when a reply has been handled: once both are in, uncovers the dialog and shows the exempt categories.
    void finishLoading(bool otherReplyIsIn);

    WQ::CWidgetList* m_pMainList = nullptr;
    WQ::CLoadingMaskWidget* m_pLoadingMask = nullptr;
    CAssetsProportionWidget* m_pAssetsWidget = nullptr;
    /// The e-mail rules of a group have no editor here, yet every save sends them.
    CAccountRcEmailWidget* m_pEmailWidget = nullptr;
    CExemptCategoryWidget* m_pReverseOrderWidget = nullptr;
    CExemptCategoryWidget* m_pWashTradeWidget = nullptr;
    boost::shared_ptr<nvservice::CAccountGroup> m_group;
    /// The id of `m_group`, for callbacks, which compare it on the service thread.
    std::atomic<int> m_groupId;
    /// Empty until the current group's configuration has arrived.
    boost::shared_ptr<nvservice::CAccountGroupRCConfig> m_config;
    WQ::CSmallNormalButton* m_pSaveButton = nullptr;
    /// What the exempt pages offer; they point to it.
    CategoryList m_categories;
    bool m_bConfigLoaded = false;
    bool m_bCategoriesLoaded = false;
    QMap<QString, nvservice::CEmailRC> m_emailRulesByKey;
    CStockTradeLimitWidget* m_pTradeLimitWidget = nullptr;
    CLatestReplies m_loadReplies{*this};
    unsigned m_saveCount = 0;
    CReplyLabel<SaveLabel> m_saveLabel;
    /// Of the saves.
    CCallbackGate m_callbackGate;
};

} // namespace QAV
