// SPDX-License-Identifier: Apache-2.0
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
class CRatProofSetting;
} // namespace nvservice

namespace QAV
{

class CAccountRcEmailWidget;
class CAssetsProportionWidget;
class CExemptCategoryWidget;
class CKolmClient;
class CStockTradeLimitWidget;

/// The dialog to set the risk rules of an account group. The panel has one as long as it exists.
///
/// It loads the group's configuration and the security categories in parallel. It saves by itself and shows the
/// outcome. It never creates a configuration: a group without one on the service cannot be saved. Lives on the UI
/// thread. Answers arrive on the service thread and reach the slots through queued signals. Only replies to the last
/// load count, even if earlier ones are still queued.
class CSetAccountGroupRiskDialog final : public WQ::CCommonDialog
{
    Q_OBJECT

public:
    explicit CSetAccountGroupRiskDialog(QWidget* parent);
    ~CSetAccountGroupRiskDialog() override;

    /// Starts to load the group's settings. Call it each time before the dialog is shown. Pending replies for another
    /// group are dropped. `group` must not be null.
    void setAccountGroup(boost::shared_ptr<nvservice::CAccountGroup> group);
    /// Called at each query of the panel, so that the dialog's offers are as current as the table.
    void refreshAssets();

    bool handleEvent(int type, int id, int param, QString text, void* data) override;
    bool hasUnsavedEdits() const override;

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

    /// Identifies the save that a reply belongs to.
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

    /// True if the group is the open one. Compares servers too, because two servers may have equal ids.
    bool isOpen(const nvservice::CAccountGroup& group) const;
    bool isLoading() const;
    /// True during a load or a save; nothing is saved then.
    bool isCovered() const;
    /// Writes what the tabs show into the configuration.
    void readTabs(nvservice::CAccountGroupRCConfig& config) const;
    /// What the tabs show, encoded, so that it can be compared. Not without a configuration.
    bson::BSONObj input() const;
    /// Takes what the tabs show for saved, unless replies are missing.
    void rememberInput();
    void showConfig(const nvservice::CAccountGroupRCConfig& config);
    void showProofSettings(const nvservice::CRatProofSetting& setting);
    /// Offers the input of a refused save when its group was opened again.
    void offerRefusedInput();
    void recallInput();
    /// Called after each reply to a load. When both have arrived, hides the mask and shows the exempt categories.
    void finishLoading(bool otherReplyIsIn);

    WQ::CWidgetList* m_pMainList = nullptr;
    WQ::CLoadingMaskWidget* m_pLoadingMask = nullptr;
    CAssetsProportionWidget* m_pAssetsWidget = nullptr;
    /// E-mail rules cannot be edited here, but every save sends them.
    CAccountRcEmailWidget* m_pEmailWidget = nullptr;
    CExemptCategoryWidget* m_pReverseOrderWidget = nullptr;
    CExemptCategoryWidget* m_pWashTradeWidget = nullptr;
    boost::shared_ptr<nvservice::CAccountGroup> m_group;
    /// The id of `m_group`, which callbacks read on the service thread.
    std::atomic<int> m_groupId;
    /// Empty until the current group's configuration has arrived.
    boost::shared_ptr<nvservice::CAccountGroupRCConfig> m_config;
    /// The input of the last save that was refused, and its group.
    boost::shared_ptr<nvservice::CAccountGroupRCConfig> m_refusedConfig;
    boost::shared_ptr<nvservice::CAccountGroup> m_refusedGroup;
    WQ::CSmallNormalButton* m_pSaveButton = nullptr;
    WQ::CSmallNormalButton* m_pRecallButton = nullptr;
    /// The categories that the exempt pages offer; the pages point to it.
    CategoryList m_categories;
    bool m_bConfigLoaded = false;
    bool m_bCategoriesLoaded = false;
    QMap<QString, nvservice::CEmailRC> m_emailRulesByKey;
    CStockTradeLimitWidget* m_pTradeLimitWidget = nullptr;
    /// What is saved; empty until it was loaded.
    bson::BSONObj m_savedInput;
    CLatestReplies m_loadReplies{*this};
    unsigned m_saveCount = 0;
    CReplyLabel<SaveLabel> m_saveLabel;
    /// For the saves.
    CCallbackGate m_callbackGate;
};

} // namespace QAV
