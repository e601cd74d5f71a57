#pragma once

#include "account/assets/AssetsColumns.h"

#include <WQ/CWidgetList.h>

#include <map>

namespace WQ
{
class CSmallNormalButton;
class CStandardSimpleTable;
} // namespace WQ

namespace QAV
{

/// What CAssetsProportionWidget shows: one row of editors per limit, and below what can be done to them.
class CAssetsPane : public WQ::CWidgetList
{
    Q_OBJECT

public:
    CAssetsPane(int tableId, bool readOnly, nvservice::EZVRCScopeType scope, QWidget* parent);
    ~CAssetsPane() override;

    void setLimits(const std::vector<nvservice::CAssetsRC>& limits);
    std::vector<nvservice::CAssetsRC> limits() const;
    /// The server that new limits belong to.
    void setServerName(const QString& serverName) { m_serverName = serverName; }
    /// Goes to the first cell that makes no sense and says so there; empty: there is none.
    QString showFirstProblem();

    /// Ends the events of the controls inside here: they concern nobody above.
    bool handleEvent(int type, int id, int param, QString text, void* data) override;

private:
    struct Limit {
        nvservice::CAssetsRC record;
        QString thresholdText; ///< as the user sees it, which may be no number
        bool thresholdTyped = false;
    };

    QWidget* createTable(int tableId);
    QWidget* createActionBar();

    void appendLimit(const nvservice::CAssetsRC& record);
    void addNewLimit();
    void removeSelected();
    void showTexts(int rowId);
    void createEditors(int rowId);
    QWidget* createEnabledCheck(int rowId, QWidget* parent);
    QWidget* createChoice(int rowId, const AssetsChoiceColumn& column, QWidget* parent);
    QWidget* createThresholdEdit(int rowId, QWidget* parent);
    QWidget* createRemarkEdit(int rowId, QWidget* parent);
    QWidget* createRemoveButton(int rowId, QWidget* parent);
    void updateButtons();

    bool m_readOnly;
    nvservice::EZVRCScopeType m_scope;
    QString m_serverName;
    WQ::CStandardSimpleTable* m_table = nullptr;
    WQ::CSmallNormalButton* m_removeButton = nullptr;
    /// By row id, which is the order of the limits.
    std::map<int, Limit> m_limits;
};

} // namespace QAV
