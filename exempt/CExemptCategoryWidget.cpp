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
    for (const std::int32_t id : ids)
        byId[id];
    for (const CategoryPtr& category : offered) {
        const auto wanted = category ? byId.find(category->categoryId) : byId.end();
        if (wanted != byId.end())
            wanted->second.push_back(category);
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
    m_picker = new CSelectExemptCategoryDialog(this);
}

CExemptCategoryWidget::~CExemptCategoryWidget() = default;

QWidget* CExemptCategoryWidget::createChecks()
{
    auto* const row = new CWidgetList(WQ::HorizontalList, this);
    m_enableCheck = new WQ::CCheckBox(EnableCheckId, enableText(m_mode), row);
    row->addFixedWidget(m_enableCheck, WQ::AnchorLine, false);
    row->addFixedSpace(10);
    if (m_mode == ReverseOrderMode) {
        m_warnOnlyCheck = new WQ::CCheckBox(WarnOnlyCheckId, QStringLiteral(" 反向单交易只警告不禁止 "), row);
        row->addFixedWidget(m_warnOnlyCheck, WQ::AnchorLine, false);
        row->addFixedSpace(10);
        m_notCountCancelledCheck =
            new WQ::CCheckBox(NotCountCancelledCheckId, QStringLiteral(" 不统计已撤 (无成交) 委托 "), row);
        row->addFixedWidget(m_notCountCancelledCheck, WQ::AnchorLine, false);
    }
    return row;
}

QWidget* CExemptCategoryWidget::createTable()
{
    m_categoryTable = new WQ::CStandardSimpleTable(
        m_mode == ReverseOrderMode ? ReverseOrderCategoryTableId : WashTradeCategoryTableId, this);
    m_categoryTable->setFlags(m_categoryTable->flags() &
                              ~(WQ::TableContextMenu | WQ::TableHeaderSort | WQ::TableCellSelection));
    m_categoryTable->setColumnCount(ColumnCount);
    m_categoryTable->setHeaderText(NameColumn, QStringLiteral("已选豁免分类"));
    m_categoryTable->setHeaderText(OperationColumn, QStringLiteral("操作"));
    m_categoryTable->setAccessibleName(QStringLiteral("已选豁免分类"));
    m_categoryTable->adjustTableSize();
    return m_categoryTable;
}

void CExemptCategoryWidget::setCategories(const CategoryList* categories)
{
    m_allCategories = categories;
    m_picker->setCategories(categories);
}

void CExemptCategoryWidget::setRatProofSetting(nvservice::CRatProofSetting setting)
{
    std::vector<std::int32_t> ids;
    if (m_mode == ReverseOrderMode) {
        ids = setting.reverseOrderExemptCategoryIds;
        m_enableCheck->setChecked(setting.reverseOrderCheck);
        m_warnOnlyCheck->setChecked(setting.reverseOrderWarnOnly);
        m_notCountCancelledCheck->setChecked(setting.notCountCancelledOrders);
    } else if (m_mode == WashTradeMode) {
        ids = setting.washTradeExemptCategoryIds;
        m_enableCheck->setChecked(setting.washTradeForbidden);
    }
    m_selectedCategories.clear();
    if (m_allCategories)
        m_selectedCategories = findByIds(ids, *m_allCategories);
    refreshTable();
}

void CExemptCategoryWidget::fillRatProofSetting(nvservice::CRatProofSetting& setting)
{
    std::vector<std::int32_t>* ids = nullptr;
    if (m_mode == ReverseOrderMode) {
        setting.reverseOrderCheck = m_enableCheck->isChecked();
        setting.reverseOrderWarnOnly = m_warnOnlyCheck->isChecked();
        setting.notCountCancelledOrders = m_notCountCancelledCheck->isChecked();
        ids = &setting.reverseOrderExemptCategoryIds;
    } else if (m_mode == WashTradeMode) {
        setting.washTradeForbidden = m_enableCheck->isChecked();
        ids = &setting.washTradeExemptCategoryIds;
    }
    if (!ids)
        return;
    ids->clear();
    for (const CategoryPtr& category : m_selectedCategories) {
        if (category)
            ids->push_back(category->categoryId);
    }
}

void CExemptCategoryWidget::refreshTable()
{
    m_categoryTable->clear();
    for (const CategoryPtr& category : m_selectedCategories) {
        const QString name = category ? WQ::sToQs(category->categoryName) : QString();
        const int rowId = m_categoryTable->appendRow();
        m_categoryTable->setItemText(rowId, NameColumn, name, false);
        const auto makeButton = [rowId, name](QWidget* parent) -> QWidget* {
            auto* const button =
                new WQ::CSmallNormalButton(FirstRowDeleteButtonId + rowId, true, WQ::NormalButton, parent);
            button->setFixedSize(50, 16);
            button->setText(QStringLiteral("删除"));
            button->setAccessibleName(QStringLiteral("删除") + name);
            return button;
        };
        m_categoryTable->setItemWidget(rowId, OperationColumn, makeButton, Qt::AlignCenter, false);
    }
    m_categoryTable->updateTable();
}

bool CExemptCategoryWidget::handleEvent(int type, int id, int, QString, void*)
{
    if (type == WQ::ButtonClicked) {
        if (id == ChooseCategoriesButtonId)
            chooseCategories();
        else if (id >= FirstRowDeleteButtonId)
            removeRow(id - FirstRowDeleteButtonId);
    }
    return true;
}

void CExemptCategoryWidget::chooseCategories()
{
    m_picker->setSelectedCategories(m_selectedCategories);
    if (m_picker->exec() != QDialog::Accepted)
        return;
    m_selectedCategories = m_picker->selectedCategories();
    refreshTable();
}

void CExemptCategoryWidget::removeRow(int rowId)
{
    const QPointer<CExemptCategoryWidget> self(this);
    const QMessageBox::StandardButton answer = WQ::CMessageBox::warning(
        nullptr, QStringLiteral("删除"), QStringLiteral("确认删除？"), QMessageBox::Yes | QMessageBox::No);
    if (!self || answer != QMessageBox::Yes) // the client may have closed the panel
        return;
    const int index = m_categoryTable->rowIndex(rowId);
    if (index < 0 || std::size_t(index) >= m_selectedCategories.size())
        return;
    m_selectedCategories.erase(m_selectedCategories.begin() + index);
    m_categoryTable->removeRow(rowId);
}

} // namespace QAV
