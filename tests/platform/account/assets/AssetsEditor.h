// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "../tradelimit/RuleEditorWindow.h"

#include <QAV/CAssetsProportionWidget.h>
#include <WQ/CCheckBox.h>
#include <WQ/CComboBox.h>
#include <WQ/CMessageTip.h>
#include <WQ/CSmallNormalButton.h>
#include <WQ/CStandardSimpleTable.h>
#include <WQ/StringConversion.h>
#include <nvservice/NoInstitutionId.h>

#include <QLineEdit>

namespace rule_editor_test
{

/// The columns as the user counts them.
enum ELimitColumn {
    Enabled,
    Scope,
    Class,
    Category,
    Measured,
    Base,
    Comparison,
    Threshold,
    Unit,
    Action,
    Remark,
    Remove
};

/// The editor of asset-portfolio limits in a window, and what a user sees of it.
class AssetsEditor
{
public:
    explicit AssetsEditor(bool readOnly = false, int categoryType = -1)
        : m_widget(new QAV::CAssetsProportionWidget(1276, readOnly, nvservice::EZVRCScopeType::AccountGroup,
                                                    categoryType, &window))
    {
        window.showWith(m_widget, {1240, 360});
    }

    QAV::CAssetsProportionWidget& widget() { return *m_widget; }
    WQ::CStandardSimpleTable& table() { return window.part<WQ::CStandardSimpleTable>("limits"); }

    void load(const std::vector<nvservice::CAssetsRC>& limits, const QString& serverName = {})
    {
        m_widget->setAssetsRCs(nvservice::NoInstitutionId, limits, serverName);
        table().view();
    }
    std::vector<nvservice::CAssetsRC> limits() const
    {
        std::vector<nvservice::CAssetsRC> limits;
        m_widget->getAssetsRCs(limits);
        return limits;
    }

    template <typename Widget = QWidget>
    Widget& cell(int row, int column)
    {
        auto* const found = qobject_cast<Widget*>(table().itemWidget(table().rowID(row), column));
        if (!found) {
            qFatal("there is no such cell in row %d, column %d", row, column);
        }
        return *found;
    }
    QString text(int row, int column) { return table().itemText(table().rowID(row), column); }
    void choose(int row, int column, const QString& name)
    {
        auto& combo = cell<WQ::CComboBox>(row, column);
        QVERIFY2(combo.findText(name) >= 0, qPrintable(name));
        combo.setCurrentIndex(combo.findText(name));
    }
    void typeInto(int row, int column, const QString& text)
    {
        auto& edit = cell<QLineEdit>(row, column);
        edit.clear();
        type(edit, text);
    }

    RuleEditorWindow window;

private:
    QAV::CAssetsProportionWidget* m_widget;
};

/// A limit with which nothing is wrong.
inline nvservice::CAssetsRC soundLimit(std::int64_t ruleId, double threshold)
{
    nvservice::CAssetsRC limit;
    limit.ruleId = ruleId;
    limit.assetClass = nvservice::EZVRCAssetClass::Stock;
    limit.base = nvservice::EZVRCQuantity::NetAssets;
    limit.threshold = threshold;
    limit.remark = "备注";
    return limit;
}

} // namespace rule_editor_test
