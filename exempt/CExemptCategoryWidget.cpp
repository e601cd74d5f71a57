// SPDX-License-Identifier: Apache-2.0
#include "exempt/CExemptCategoryWidget.h"

#include "exempt/CSelectExemptCategoryDialog.h"
#include "exempt/ControlId.h"

#include <WQ/ButtonPainter.h>
#include <WQ/CCheckBox.h>
#include <WQ/CMediumNormalButton.h>
#include <WQ/CMessageBox.h>
#include <WQ/CSmallNormalButton.h>
#include <WQ/CStandardSimpleTable.h>
#include <WQ/EventType.h>
#include <WQ/StringConversion.h>

#include <QPointer>

#include <unordered_map>

namespace QAV
{

namespace
{

enum ECategoryColumn { NameColumn = 0, OperationColumn = 1, ColumnCount = 2 };

QString enableText(int mode)
{
    switch (mode) {
    case ReverseOrderMode:
        return QStringLiteral("账号组反向单交易检查");
    case WashTradeMode:
        return QStringLiteral("账号组禁止对敲交易");
    default:
        return {};
    }
}

/// The categories with these ids: in the order of the ids and, where several share one, of the offered list.
CategoryList findByIds(const std::vector<std::int32_t>& ids, const CategoryList& offered)
{
    std::unordered_map<std::int32_t, CategoryList> byId;
    for (const std::int32_t id : ids) {
        byId[id];
    }
    for (const CategoryPtr& category : offered) {
        const auto wanted = category ? byId.find(category->categoryId) : byId.end();
        if (wanted != byId.end()) {
            wanted->second.push_back(category);
        }
    }
    CategoryList found;
    for (const std::int32_t id : ids) {
        const CategoryList& categories = byId[id];
        found.insert(found.end(), categories.begin(), categories.end());
    }
    return found;
}

} // namespace

CExemptCategoryWidget::CExemptCategoryWidget(int mode, int pageIndex, QWidget* parent)
    : CWidgetList(WQ::VerticalList, parent), m_mode(mode), m_pageIndex(pageIndex)
{
    setMargin(8, 8, 8, 8);
    setSpacing(8);
    addFixedWidget(createChecks(), WQ::AnchorLeading, true);
    auto* const chooseButton = new WQ::CMediumNormalButton(ChooseCategoriesButtonId, WQ::NormalButton, this);
    chooseButton->setFixedSize(150, 30);
    chooseButton->setText(QStringLiteral("设置豁免分类"));
    addFixedWidget(chooseButton, WQ::AnchorLeading, false);
    addStretchWidget(createTable(), 1, WQ::AnchorLeading, true);
    m_pPicker = new CSelectExemptCategoryDialog(this);
}

CExemptCategoryWidget::~CExemptCategoryWidget() = default;

QWidget* CExemptCategoryWidget::createChecks()
{
    auto* const row = new CWidgetList(WQ::HorizontalList, this);
    m_pEnableCheck = new WQ::CCheckBox(EnableCheckId, enableText(m_mode), row);
    row->addFixedWidget(m_pEnableCheck, WQ::AnchorLine, false);
    row->addFixedSpace(10);
    if (m_mode == ReverseOrderMode) {
        m_pWarnOnlyCheck = new WQ::CCheckBox(WarnOnlyCheckId, QStringLiteral(" 反向单交易只警告不禁止 "), row);
        row->addFixedWidget(m_pWarnOnlyCheck, WQ::AnchorLine, false);
        row->addFixedSpace(10);
        m_pNotCountCancelledCheck =
            new WQ::CCheckBox(NotCountCancelledCheckId, QStringLiteral(" 不统计已撤 (无成交) 委托 "), row);
        row->addFixedWidget(m_pNotCountCancelledCheck, WQ::AnchorLine, false);
    }
    return row;
}

QWidget* CExemptCategoryWidget::createTable()
{
    m_pCategoryTable = new WQ::CStandardSimpleTable(
        m_mode == ReverseOrderMode ? ReverseOrderCategoryTableId : WashTradeCategoryTableId, this);
    m_pCategoryTable->setFlags(m_pCategoryTable->flags() &
                               ~(WQ::TableContextMenu | WQ::TableHeaderSort | WQ::TableCellSelection));
    m_pCategoryTable->setColumnCount(ColumnCount);
    m_pCategoryTable->setHeaderText(NameColumn, QStringLiteral("已选豁免分类"));
    m_pCategoryTable->setHeaderText(OperationColumn, QStringLiteral("操作"));
    m_pCategoryTable->setAccessibleName(QStringLiteral("已选豁免分类"));
    m_pCategoryTable->adjustTableSize();
    return m_pCategoryTable;
}

void CExemptCategoryWidget::setCategories(const CategoryList* categories)
{
    // What is being picked out of the categories before is for the settings before.
    if (m_pPicker->isVisible()) {
        m_pPicker->reject();
    }
    m_pAllCategories = categories;
    m_pPicker->setCategories(categories);
}

void CExemptCategoryWidget::setRatProofSetting(nvservice::CRatProofSetting setting)
{
    std::vector<std::int32_t> ids;
    if (m_mode == ReverseOrderMode) {
        ids = setting.reverseOrderExemptCategoryIds;
        m_pEnableCheck->setChecked(setting.reverseOrderCheck);
        m_pWarnOnlyCheck->setChecked(setting.reverseOrderWarnOnly);
        m_pNotCountCancelledCheck->setChecked(setting.notCountCancelledOrders);
    } else if (m_mode == WashTradeMode) {
        ids = setting.washTradeExemptCategoryIds;
        m_pEnableCheck->setChecked(setting.washTradeForbidden);
    }
    m_selectedCategories.clear();
    if (m_pAllCategories) {
        m_selectedCategories = findByIds(ids, *m_pAllCategories);
    }
    refreshTable();
}

void CExemptCategoryWidget::fillRatProofSetting(nvservice::CRatProofSetting& setting)
{
    std::vector<std::int32_t>* ids = nullptr;
    if (m_mode == ReverseOrderMode) {
        setting.reverseOrderCheck = m_pEnableCheck->isChecked();
        setting.reverseOrderWarnOnly = m_pWarnOnlyCheck->isChecked();
        setting.notCountCancelledOrders = m_pNotCountCancelledCheck->isChecked();
        ids = &setting.reverseOrderExemptCategoryIds;
    } else if (m_mode == WashTradeMode) {
        setting.washTradeForbidden = m_pEnableCheck->isChecked();
        ids = &setting.washTradeExemptCategoryIds;
    }
    if (!ids) {
        return;
    }
    ids->clear();
    for (const CategoryPtr& category : m_selectedCategories) {
        if (category) {
            ids->push_back(category->categoryId);
        }
    }
}

void CExemptCategoryWidget::refreshTable()
{
    m_pCategoryTable->clear();
    for (const CategoryPtr& category : m_selectedCategories) {
        const QString name = category ? WQ::sToQs(category->categoryName) : QString();
        const int rowId = m_pCategoryTable->appendRow();
        m_pCategoryTable->setItemText(rowId, NameColumn, name, false);
        const auto makeButton = [rowId, name](QWidget* parent) -> QWidget* {
            auto* const button =
                new WQ::CSmallNormalButton(FirstRowDeleteButtonId + rowId, true, WQ::NormalButton, parent);
            button->setFixedSize(50, 16);
            button->setText(QStringLiteral("删除"));
            button->setAccessibleName(QStringLiteral("删除") + name);
            return button;
        };
        m_pCategoryTable->setItemWidget(rowId, OperationColumn, makeButton, Qt::AlignCenter, false);
    }
    m_pCategoryTable->updateTable();
}

bool CExemptCategoryWidget::handleEvent(int type, int id, int, QString, void*)
{
    if (type == WQ::ButtonClicked) {
        if (id == ChooseCategoriesButtonId) {
            chooseCategories();
        } else if (id >= FirstRowDeleteButtonId) {
            removeRow(id - FirstRowDeleteButtonId);
        }
    }
    return true;
}

void CExemptCategoryWidget::chooseCategories()
{
    const QPointer<CExemptCategoryWidget> self(this);
    m_pPicker->setSelectedCategories(m_selectedCategories);
    const int result = m_pPicker->exec();
    // Meanwhile the client may have closed the panel, or begun to load other settings into this page.
    if (!self || result != QDialog::Accepted || !isEnabled()) {
        return;
    }
    m_selectedCategories = m_pPicker->selectedCategories();
    refreshTable();
}

void CExemptCategoryWidget::removeRow(int rowId)
{
    const QPointer<CExemptCategoryWidget> self(this);
    const QMessageBox::StandardButton answer = WQ::CMessageBox::warning(
        nullptr, QStringLiteral("删除"), QStringLiteral("确认删除？"), QMessageBox::Yes | QMessageBox::No);
    // As with the picker.
    if (!self || answer != QMessageBox::Yes || !isEnabled()) {
        return;
    }
    const int index = m_pCategoryTable->rowIndex(rowId);
    if (index < 0 || std::size_t(index) >= m_selectedCategories.size()) {
        return;
    }
    m_selectedCategories.erase(m_selectedCategories.begin() + index);
    m_pCategoryTable->removeRow(rowId);
}

} // namespace QAV
