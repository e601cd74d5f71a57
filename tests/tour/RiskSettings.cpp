// SPDX-License-Identifier: Apache-2.0
#include "RiskSettings.h"

#include "support/wq/Widgets.h"

#include "Hands.h"
#include "TourClient.h"

#include <QAV/CAccountStockTradeLimit.h>
#include <QAV/CAssetsProportionWidget.h>
#include <WQ/IBaseHpfTableModel.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTabBar>
#include <QtTest>

namespace tour
{

namespace
{

QStringList textsOf(const WQ::CStandardTabControl& tabs)
{
    QStringList texts;
    for (int i = 0; i < tabs.count(); ++i) {
        texts << tabs.tabText(i);
    }
    return texts;
}

void openTab(WQ::CStandardTabControl& tabs, const QString& text)
{
    const int index = textsOf(tabs).indexOf(text);
    QVERIFY2(index >= 0, qPrintable(QString("there is no tab “%1”").arg(text)));
    click(*tabs.tabBar(), tabs.tabBar()->tabRect(index).center());
    QCOMPARE(tabs.currentIndex(), index);
}

/// The list that has opened below an edit; null if none has.
QAbstractItemView* offers()
{
    return qobject_cast<QAbstractItemView*>(QApplication::activePopupWidget());
}

void clickRow(QAbstractItemView& view, int row)
{
    const QModelIndex index = view.model()->index(row, 0);
    view.scrollTo(index);
    click(*view.viewport(), view.visualRect(index).center());
}

/// Clicks the offer with this text or first word, as soon as the data for the list have come.
void clickOffer(const QString& wanted)
{
    QVERIFY2(QTest::qWaitFor([] { return offers() != nullptr; }, Patience), qPrintable(wanted));
    QAbstractItemView& list = *offers();
    for (int row = 0; row < list.model()->rowCount(); ++row) {
        const QString offer = list.model()->index(row, 0).data().toString();
        if (offer == wanted || offer.section(' ', 0, 0) == wanted) {
            clickRow(list, row);
            return;
        }
    }
    QFAIL(qPrintable(QString("%1 is not offered").arg(wanted)));
}

} // namespace

RiskSettings::RiskSettings(QWidget& dialog) : m_dialog(dialog)
{
    // The offscreen platform's screen is a small one. This is the size on the user's.
    dialog.setGeometry(dialog.parentWidget()->window()->x() + 15, dialog.parentWidget()->window()->y() + 70, 1250, 620);
    const auto isLoaded = [&] {
        for (const auto* const mask : dialog.findChildren<WQ::CLoadingMaskWidget*>()) {
            if (mask->isVisible()) {
                return false;
            }
        }
        return true;
    };
    QVERIFY(QTest::qWaitFor(isLoaded, Patience));
}

WQ::CStandardTabControl& RiskSettings::outer() const
{
    return *m_dialog.findChild<WQ::CStandardTabControl*>();
}

WQ::CStandardTabControl& RiskSettings::inner() const
{
    return *outer().tabWidget(0)->findChild<WQ::CStandardTabControl*>();
}

QStringList RiskSettings::tabs() const
{
    return textsOf(outer());
}

QStringList RiskSettings::tradeTypes() const
{
    return textsOf(inner());
}

QWidget& RiskSettings::page(const QString& tab) const
{
    openTab(outer(), tab);
    return *outer().currentWidget();
}

QWidget& RiskSettings::tradeType(const QString& tab) const
{
    page(QStringLiteral("黑白名单"));
    openTab(inner(), tab);
    return *inner().currentWidget();
}

void RiskSettings::save() const
{
    clickButton(m_dialog, QStringLiteral("保存设置"));
}

void RiskSettings::close() const
{
    auto* const button = m_dialog.findChild<QWidget*>(QStringLiteral("title_close"));
    QVERIFY(button);
    click(*button);
}

QStringList RiskSettings::entries(const QString& tradeType) const
{
    const WQ::CStandardHpfTable& table = *this->tradeType(tradeType).findChild<WQ::CStandardHpfTable*>("entries");
    WQ::IBaseHpfTableModel& model = *table.dataModel();
    model.announce();
    QStringList lines;
    for (int row = 0; row < model.rowCount(); ++row) {
        QStringList texts;
        for (int column = 0; column < model.columnCount(); ++column) {
            if (table.isColumnVisible(column)) {
                texts << model.index(row, column).data().toString();
            }
        }
        lines << texts.join(' ');
    }
    return lines;
}

void RiskSettings::addEntry(const QString& tradeType, const QString& typed, const QString& code,
                            const QString& list) const
{
    QWidget& editor = this->tradeType(tradeType);
    choose(*editor.findChild<QComboBox*>("listKind"), list);
    auto& edit = *editor.findChild<QLineEdit*>("security");
    retype(edit, typed);
    clickOffer(code);
    clickButton(editor, QStringLiteral("添加"));
}

void RiskSettings::removeEntry(const QString& tradeType, const QString& code) const
{
    QWidget& editor = this->tradeType(tradeType);
    QAbstractItemView& view = *editor.findChild<WQ::CStandardHpfTable*>("entries")->view();
    int row = 0;
    while (row < view.model()->rowCount() && view.model()->index(row, 0).data().toString() != code) {
        ++row;
    }
    QVERIFY2(row < view.model()->rowCount(), qPrintable(code));
    clickRow(view, row);
    clickButton(editor, QStringLiteral("删除"));
}

WQ::CStandardSimpleTable& RiskSettings::limits() const
{
    return *page(QStringLiteral("资产组合风控")).findChild<WQ::CStandardSimpleTable*>("limits");
}

QString RiskSettings::limit(int row) const
{
    const WQ::CStandardSimpleTable& table = limits();
    QStringList texts;
    for (int column = LimitClass; column <= LimitRemark; ++column) {
        texts << table.itemText(table.rowID(row), column);
    }
    return texts.join('|');
}

int RiskSettings::addLimit() const
{
    clickButton(page(QStringLiteral("资产组合风控")), QStringLiteral("新增"));
    return limits().rowCount() - 1;
}

QWidget& RiskSettings::limitCell(int row, LimitColumn column) const
{
    const WQ::CStandardSimpleTable& table = limits();
    table.view()->scrollTo(table.view()->model()->index(row, column));
    QWidget* const cell = table.itemWidget(table.rowID(row), column);
    if (!cell) {
        qFatal("there is no such cell in row %d, column %d", row, column);
    }
    return *cell;
}

void RiskSettings::chooseInLimit(int row, LimitColumn column, const QString& text) const
{
    choose(*qobject_cast<QComboBox*>(&limitCell(row, column)), text);
}

void RiskSettings::typeIntoLimit(int row, LimitColumn column, const QString& text) const
{
    retype(limitCell(row, column), text);
}

void RiskSettings::lookUpInLimit(int row, LimitColumn column, const QString& typed, const QString& offer) const
{
    typeIntoLimit(row, column, typed);
    clickOffer(offer);
}

QStringList RiskSettings::exempt(const QString& tab) const
{
    return support::shown(*page(tab).findChild<WQ::CStandardSimpleTable*>());
}

QAbstractButton& RiskSettings::check(const QString& tab, const QString& text) const
{
    if (QAbstractButton* const button = support::buttonOf(page(tab), text)) {
        return *button;
    }
    qFatal("there is no check box “%s”", qPrintable(text));
}

void RiskSettings::removeExempt(const QString& tab, const QString& category, const QString& answer) const
{
    auto& table = *page(tab).findChild<WQ::CStandardSimpleTable*>();
    play([&] { clickRowButton(table, 0, category); },
         {box(QStringLiteral("删除"), QStringLiteral("确认删除？"), answer)});
}

void RiskSettings::pickExempt(const QString& tab, const std::function<void(QWidget&)>& act) const
{
    play([&] { clickButton(page(tab), QStringLiteral("设置豁免分类")); },
         {dialog(QStringLiteral("选择证券分类"), act)});
}

void playRiskSettings(TourClient& client, const QString& group, const std::function<void(const RiskSettings&)>& act,
                      const std::vector<Stage>& first)
{
    const QString title = group + QStringLiteral("组 - 风控设置");
    std::vector<Stage> stages;
    for (const Stage& stage : first) {
        stages.push_back(over(title, stage));
    }
    stages.push_back(dialog(title, [&](QWidget& shown) { act(RiskSettings(shown)); }));
    play([&] { client.clickGroupButton(group, QStringLiteral("风控设置")); }, stages);
}

QLineEdit& CategoryPicker::search() const
{
    return *m_dialog.findChild<QLineEdit*>();
}

WQ::CStandardSimpleTable& CategoryPicker::table(int id) const
{
    for (auto* const table : m_dialog.findChildren<WQ::CStandardSimpleTable*>()) {
        if (table->tableId() == id) {
            return *table;
        }
    }
    qFatal("there is no table %d", id);
}

QStringList CategoryPicker::names(int id) const
{
    return support::shown(table(id));
}

void CategoryPicker::move(int id, const QStringList& categories, const QString& button) const
{
    for (const QString& category : categories) {
        const int row = names(id).indexOf(category);
        QVERIFY2(row >= 0, qPrintable(category));
        clickRow(*table(id).view(), row);
    }
    clickButton(m_dialog, button);
}

} // namespace tour
