// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "assets/AssetsColumns.h"
#include "lookup/CCategoryDirectory.h"

#include <WQ/CWidgetList.h>

#include <QPointer>

#include <map>

namespace WQ
{
class CSmallNormalButton;
class CStandardSimpleTable;
} // namespace WQ

namespace QAV
{

class CLookUpEdit;

/// The contents of CAssetsProportionWidget: a row of editors per limit, and the buttons below.
class CAssetsPane : public WQ::CWidgetList
{
    Q_OBJECT

public:
    CAssetsPane(int tableId, bool readOnly, nvservice::EZVRCScopeType scope, int categoryType, QWidget* parent);
    ~CAssetsPane() override;

    void setLimits(const std::vector<nvservice::CAssetsRC>& limits);
    std::vector<nvservice::CAssetsRC> limits() const;
    /// The categories that a limit may measure. New limits belong to the same server.
    CCategoryDirectory& categories() { return m_categories; }
    /// Moves to the first invalid cell and shows the mistake there. Returns its text; empty if there is none.
    QString showFirstProblem();

    /// Consumes the events of the controls inside.
    bool handleEvent(int, int, int, QString, void*) override { return true; }

private:
    struct Limit {
        nvservice::CAssetsRC record;
        QString thresholdText; ///< as shown, even if it is not a number
        bool thresholdTyped = false;
        QPointer<CLookUpEdit> categoryEdit; ///< null until its row has been on screen
    };

    QWidget* createTable(int tableId);
    QWidget* createActionBar();

    void appendLimit(const nvservice::CAssetsRC& record);
    void addNewLimit();
    void removeLimits(const QVector<int>& rowIds);
    void showTexts(int rowId);
    QString categoryText(const nvservice::CAssetsRC& record) const;
    void createEditors(int rowId);
    QWidget* createChoice(int rowId, const AssetsChoiceColumn& column, QWidget* parent);
    QWidget* createCategoryEdit(int rowId, QWidget* parent);
    void settleCategory(int rowId, const QString& text);
    void showCategory(int rowId);
    void showCategories();
    void onChoice(int rowId, const AssetsChoiceColumn& column, int value);
    void updateButtons();
    /// Hides the mistake when the user changes something.
    void hideProblem();

    bool m_readOnly;
    nvservice::EZVRCScopeType m_scope;
    CCategoryDirectory m_categories;
    WQ::CStandardSimpleTable* m_table = nullptr;
    WQ::CSmallNormalButton* m_removeButton = nullptr;
    QPointer<QWidget> m_problemCell; ///< where the last problem is shown
    /// By row id; the ids are in the order of the limits.
    std::map<int, Limit> m_limits;
};

} // namespace QAV
