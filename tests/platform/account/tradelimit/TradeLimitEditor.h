// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "RuleEditorWindow.h"

#include <QAV/CAccountStockTradeLimit.h>
#include <WQ/CComboBox.h>
#include <WQ/CLineEdit.h>
#include <WQ/CMessageTip.h>
#include <WQ/CSmallNormalButton.h>
#include <WQ/CStandardHpfTable.h>
#include <WQ/IBaseHpfTableModel.h>
#include <WQ/StringConversion.h>

#include <QAbstractItemView>

namespace rule_editor_test
{

/// One editor of a black and white list in a window, and what a user sees of it.
class TradeLimitEditor
{
public:
    explicit TradeLimitEditor(nvservice::EZvTraderType traderType = nvservice::EZvTraderType::Stock)
        : m_traderType(traderType),
          m_widget(new QAV::CAccountStockTradeLimit(QAV::EStockLimitTableType::AccountGroup, traderType, &window))
    {
        window.showWith(m_widget);
    }

    QAV::CAccountStockTradeLimit& widget() { return *m_widget; }
    WQ::CLineEdit& edit() { return window.part<WQ::CLineEdit>("security"); }
    WQ::CLineEdit& searchEdit() { return window.part<WQ::CLineEdit>("search"); }
    WQ::CStandardHpfTable& table() { return window.part<WQ::CStandardHpfTable>("entries"); }
    WQ::CComboBox& listCombo() { return window.part<WQ::CComboBox>("listKind"); }
    QWidget& pane() { return *m_widget->innerStretchWidget(); }

    /// Shows these entries; each is "code name kind direction" with numbers for the last two.
    void load(const QStringList& entries)
    {
        nvservice::CAccountGroupRCRule rule;
        rule.setSystemTag("SZ");
        for (const QString& line : entries) {
            nvservice::CTradeLimitEntry entry;
            entry.securityCode = WQ::qsToS(line.section(' ', 0, 0));
            entry.securityName = WQ::qsToS(line.section(' ', 1, 1));
            entry.listKind = nvservice::EZVRCListKind(line.section(' ', 2, 2).toInt());
            entry.direction = nvservice::EZVRCDirection(line.section(' ', 3, 3).toInt());
            rule.list(m_traderType).entries.push_back(entry);
        }
        m_widget->setAccountGroupRCRule(rule);
    }

    /// What a save would write, in the same form.
    QStringList written()
    {
        nvservice::CAccountGroupRCRule rule;
        m_widget->updateAccountGroupRCRule(rule);
        QStringList lines;
        const nvservice::CTradeLimitList* const list = rule.findList(m_traderType);
        for (std::size_t i = 0; list && i < list->entries.size(); ++i) {
            const nvservice::CTradeLimitEntry& entry = list->entries[i];
            lines << QStringLiteral("%1 %2 %3 %4")
                         .arg(WQ::sToQs(entry.securityCode), WQ::sToQs(entry.securityName))
                         .arg(int(entry.listKind))
                         .arg(int(entry.direction));
        }
        return lines;
    }

    /// The texts of the rows that the table shows.
    QStringList shown()
    {
        WQ::IBaseHpfTableModel& model = *table().dataModel();
        model.announce();
        QStringList lines;
        for (int row = 0; row < model.rowCount(); ++row) {
            QStringList texts;
            for (int column = 0; column < model.columnCount(); ++column) {
                if (table().isColumnVisible(column)) {
                    texts << model.index(row, column).data().toString();
                }
            }
            lines << texts.join(QLatin1Char(' '));
        }
        return lines;
    }

    void select(const QList<int>& rows)
    {
        QAbstractItemView& view = *table().view();
        table().dataModel()->announce();
        view.selectionModel()->clear();
        for (const int row : rows) {
            const QModelIndex index = view.model()->index(row, 0);
            view.selectionModel()->setCurrentIndex(index, QItemSelectionModel::Select | QItemSelectionModel::Rows);
        }
        view.setFocus();
    }

    QString tip(QWidget& at)
    {
        const WQ::CMessageTip* const tip = WQ::CMessageTip::tipOf(&at);
        return tip ? tip->text() : QString();
    }

    RuleEditorWindow window;

private:
    nvservice::EZvTraderType m_traderType;
    QAV::CAccountStockTradeLimit* m_widget;
};

using TradeLimitTest = support::FixtureTest<TradeLimitEditor, support::WatchedTest>;

} // namespace rule_editor_test
