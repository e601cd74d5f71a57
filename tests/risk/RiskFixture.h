// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "risk/CSetAccountGroupRiskDialog.h"
#include "support/UnexpectedLog.h"
#include "support/qav/CFakeTransport.h"
#include "support/qav/Modules.h"
#include "support/qav/ServiceThread.h"
#include "support/wq/ScriptedPresenter.h"

#include <QAV/CAccountStockTradeLimit.h>
#include <QAV/CAssetsProportionWidget.h>
#include <WQ/CLoadingMaskWidget.h>
#include <WQ/CStandardSimpleTable.h>
#include <WQ/CStandardTabControl.h>
#include <nvservice/CAccountGroup.h>
#include <nvservice/CAccountGroupRCConfig.h>
#include <nvservice/Codec.h>
#include <nvservice/DataType.h>

#include <QAbstractButton>
#include <QObject>

#include <memory>

namespace QAV
{
class CStockTradeLimitWidget;
} // namespace QAV

namespace risk_test
{

constexpr const char* Shanghai = "上海分系统";
constexpr const char* ShanghaiTag = "sh";
constexpr const char* Shenzhen = "深圳分系统";
constexpr const char* ShenzhenTag = "sz";

/// System types: of the three that categories have, the user may use the first two.
constexpr int AllowedSysType = 1;
constexpr int OtherAllowedSysType = 2;
constexpr int ForbiddenSysType = 9;

/// A Lua chunk with these trade types switched on.
QString tradeTypeModules(const QStringList& keys);
extern const QStringList AllTradeTypes;

/// A transport that keeps what it is asked until the test answers.
class KeepingTransport : public support::CFakeTransport
{
public:
    KeepingTransport();

    /// The oldest query of this type; fails the test when there is none.
    Query takeQueryOf(int dataType);
    Operation takeOperationOf(int dataType);
    std::size_t queries(int dataType) const;
    std::size_t operations() const;
    /// Everything that was asked, in its order: "query 614 -1_-1", "operate 7131 0".
    QStringList asked() const;

private:
    mutable std::mutex m_guard;
    QStringList m_asked;
    std::vector<Query> m_kept;
    std::vector<Operation> m_keptOperations;
};

/// Who sits before a risk settings dialog: what they see and what they click.
class RiskDialogUser
{
public:
    /// Makes the dialog and shows it.
    void createDialog();
    void destroyDialog() { m_dialog.reset(); }

    QAV::CSetAccountGroupRiskDialog& dialog() { return *m_dialog; }
    QAV::CAssetsProportionWidget& assets();
    /// What an exempt page shows: 0 the reverse-order page, 1 the wash-trade page.
    QStringList exemptNames(int page);
    QAbstractButton& button(const QString& text);
    void clickSave();
    WQ::CLoadingMaskWidget& mask();
    WQ::CStandardTabControl& tabs();
    /// What the asset tab holds, by remark.
    QStringList assetRemarks();
    /// What the trade-limit tabs hold.
    nvservice::CAccountGroupRCRule tradeLimits();

private:
    std::unique_ptr<QAV::CSetAccountGroupRiskDialog> m_dialog;
};

/// The client around the risk settings dialog: user, modules, servers and message boxes. Lives as long as one test.
/// Unexpected boxes and log lines fail the test.
class RiskFixture : public RiskDialogUser
{
public:
    explicit RiskFixture(const QStringList& tradeTypes = AllTradeTypes);
    ~RiskFixture();

    /// Opens a group. What the editors have asked for on their own account is answered before, so that the next
    /// queries are the dialog's.
    void open(const boost::shared_ptr<nvservice::CAccountGroup>& group);
    /// Opens a group and answers both queries.
    void load(const boost::shared_ptr<nvservice::CAccountGroup>& group,
              const boost::shared_ptr<nvservice::CAccountGroupRCConfig>& config);
    void answerConfig(std::vector<nvservice::IDataPtr> records);
    void answerCategories(std::vector<nvservice::IDataPtr> records);
    /// Answers both operations of a save, the configuration's with this reply.
    void answerSave(const QAV::ITransport::Reply& reply);

    boost::shared_ptr<KeepingTransport> shanghai;
    boost::shared_ptr<KeepingTransport> shenzhen;
    /// Without it, message boxes and dialogs open as they do for the user.
    std::unique_ptr<support::ScriptedPresenter> boxes;
    support::UnexpectedLog log;
};

/// A test of the risk settings: for each function a client of its own.
class RiskTest : public QObject
{
    Q_OBJECT

protected slots:
    void init() { m_client = std::make_unique<RiskFixture>(); }
    void cleanup() { m_client.reset(); }

protected:
    std::unique_ptr<RiskFixture> m_client;
};

boost::shared_ptr<nvservice::CAccountGroup> makeGroup(int id, const std::string& name,
                                                      const std::string& systemTag = ShanghaiTag);
/// A configuration in which everything is told apart by `mark`: one black-listed security per trade type, one asset
/// limit, the reverse-order check with the category 10, the wash-trade ban with the categories 12 and 10, one e-mail
/// rule.
boost::shared_ptr<nvservice::CAccountGroupRCConfig> makeConfig(int groupId, const std::string& mark);
/// What the simple table with this id inside `root` shows in its first column.
QStringList shownIn(const QWidget& root, int tableId);
nvservice::IDataPtr makeCategory(int id, const std::string& name, int sysType = AllowedSysType, int categoryType = 0);
/// The categories 10 to 13, all offered.
std::vector<nvservice::IDataPtr> someCategories();

} // namespace risk_test
