// SPDX-License-Identifier: Apache-2.0
#include "exempt/CSelectExemptCategoryDialog.h"

#include "exempt/ControlId.h"

#include <WQ/ButtonPainter.h>
#include <WQ/CLineEdit.h>
#include <WQ/CMediumNormalButton.h>
#include <WQ/CSimpleTextWidget.h>
#include <WQ/CSmallNormalButton.h>
#include <WQ/CStandardSimpleTable.h>
#include <WQ/CWidgetList.h>
#include <WQ/EventType.h>
#include <WQ/StringConversion.h>

#include <QHash>

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

namespace QAV
{

namespace
{

constexpr int CategoryColumn = 0;

WQ::CStandardSimpleTable* createTable(int tableId, const QString& header, QWidget* parent)
{
    auto* const table = new WQ::CStandardSimpleTable(tableId, parent);
    table->setMinimumSize(350, 450);
    table->setFlags((table->flags() & ~WQ::TableCellSelection) | WQ::TableToggleSelection);
    table->setColumnCount(1);
    table->setHeaderText(CategoryColumn, header);
    table->setAccessibleName(header);
    return table;
}

void appendName(WQ::CStandardSimpleTable* table, const QString& name)
{
    table->setItemText(table->appendRow(), CategoryColumn, name, false);
}

/// Takes out of `list`, for each name, the first category of that name that is still in it; null where there is none.
CategoryList takeByName(CategoryList& list, const QVector<QString>& names)
{
    struct Wish {
        QVector<int> positions;
        int granted = 0;
    };
    QHash<QString, Wish> wishes;
    wishes.reserve(names.size());
    for (int i = 0; i < names.size(); ++i) {
        wishes[names[i]].positions.append(i);
    }

    CategoryList taken(std::size_t(names.size()));
    CategoryList rest;
    rest.reserve(list.size());
    for (CategoryPtr& category : list) {
        const auto wish = category ? wishes.find(WQ::sToQs(category->categoryName)) : wishes.end();
        if (wish == wishes.end() || wish->granted == wish->positions.size()) {
            rest.push_back(std::move(category));
        } else {
            taken[std::size_t(wish->positions[wish->granted++])] = std::move(category);
        }
    }
    list.swap(rest);
    return taken;
}

/// In an order that does not depend on that of the moves.
CategoryList sorted(CategoryList list)
{
    std::sort(list.begin(), list.end());
    return list;
}

} // namespace

CSelectExemptCategoryDialog::CSelectExemptCategoryDialog(QWidget* parent) : CCommonDialog(parent)
{
    setTitle(QStringLiteral("选择证券分类"));
    setMinimumSize(800, 600);

    auto* const mainList = new WQ::CWidgetList(WQ::VerticalList, this);
    mainList->setSpacing(0);
    mainList->setMargin(10, 10, 10, 10);
    mainList->addFixedWidget(createSearchRow(mainList), WQ::AnchorLeading, true);
    mainList->addStretchWidget(createTables(mainList), 1, WQ::AnchorLeading, true);
    mainList->addFixedSpace(10);
    mainList->addFixedWidget(createBottomRow(mainList), WQ::AnchorLeading, true);
    setInnerWidget(mainList);
}

CSelectExemptCategoryDialog::~CSelectExemptCategoryDialog() = default;

QWidget* CSelectExemptCategoryDialog::createSearchRow(WQ::CWidgetList* mainList)
{
    auto* const row = new WQ::CWidgetList(WQ::HorizontalList, mainList);
    row->setSpacing(8);
    row->setMargin(0, 0, 0, 8);
    row->addFixedWidget(new WQ::CSimpleTextWidget(false, 0, QStringLiteral("证券检索"), row), WQ::AnchorLine, false);
    m_pSearchEdit = new WQ::CLineEdit(CategorySearchEditId, row);
    m_pSearchEdit->setFixedWidth(220);
    row->addFixedWidget(m_pSearchEdit, WQ::AnchorLine, false);
    return row;
}

QWidget* CSelectExemptCategoryDialog::createTables(WQ::CWidgetList* mainList)
{
    auto* const row = new WQ::CWidgetList(WQ::HorizontalList, mainList);
    row->setSpacing(0);
    row->setMargin(0, 0, 0, 0);
    m_pAvailableTable = createTable(AvailableCategoryTableId, QStringLiteral("可选豁免分类"), row);
    row->addStretchWidget(m_pAvailableTable, 1, WQ::AnchorLeading, true);
    row->addFixedSpace(5);
    row->addFixedWidget(createMoveButtons(row), WQ::AnchorLeading, true);
    m_pSelectedTable = createTable(SelectedCategoryTableId, QStringLiteral("已选豁免分类"), row);
    row->addStretchWidget(m_pSelectedTable, 1, WQ::AnchorLeading, true);
    connect(m_pAvailableTable, &WQ::CStandardSimpleTable::sigRowActivated, this,
            [this](int row) { moveOne(m_pAvailableTable, row, m_pSelectedTable); });
    connect(m_pSelectedTable, &WQ::CStandardSimpleTable::sigRowActivated, this,
            [this](int row) { moveOne(m_pSelectedTable, row, m_pAvailableTable); });
    return row;
}

QWidget* CSelectExemptCategoryDialog::createMoveButtons(WQ::CWidgetList* row)
{
    auto* const column = new WQ::CWidgetList(WQ::VerticalList, row);
    column->setFixedWidth(50);
    column->setSpacing(0);
    column->setMargin(0, 0, 0, 0);
    const auto addButton = [column](int id, const QString& text, const QString& accessibleName) {
        auto* const button = new WQ::CSmallNormalButton(id, true, WQ::NormalButton, column);
        button->setFixedWidth(45);
        button->setText(text);
        button->setAccessibleName(accessibleName);
        column->addFixedWidget(button, WQ::AnchorLeading, false);
    };
    column->addStretchSpace(1);
    addButton(ChooseButtonId, QStringLiteral(">"), QStringLiteral("移到已选豁免分类"));
    column->addFixedSpace(3);
    addButton(GiveBackButtonId, QStringLiteral("<"), QStringLiteral("移到可选豁免分类"));
    column->addStretchSpace(1);
    return column;
}

QWidget* CSelectExemptCategoryDialog::createBottomRow(WQ::CWidgetList* mainList)
{
    auto* const row = new WQ::CWidgetList(WQ::HorizontalList, mainList);
    row->setSpacing(0);
    row->setMargin(0, 0, 0, 0);
    const auto addButton = [row](int id, int look, const QString& text) {
        auto* const button = new WQ::CMediumNormalButton(id, look, row);
        button->setFixedSize(70, 30);
        button->setText(text);
        row->addFixedWidget(button, WQ::AnchorLine, false);
        return button;
    };
    row->addStretchSpace(1);
    addButton(AcceptButtonId, WQ::PrimaryButton, QStringLiteral("保存"))->setKeys(QKeySequence::Save);
    row->addFixedSpace(20);
    addButton(CloseButtonId, WQ::NormalButton, QStringLiteral("关闭"));
    return row;
}

void CSelectExemptCategoryDialog::setCategories(const CategoryList* categories)
{
    m_pAllCategories = categories;
    m_searchKeys.clear();
    if (categories) {
        m_searchKeys.reserve(categories->size());
        for (const CategoryPtr& category : *categories) {
            m_searchKeys.emplace_back(category);
        }
    }
    refresh();
}

void CSelectExemptCategoryDialog::setSelectedCategories(CategoryList categories)
{
    m_selectedCategories = std::move(categories);
    m_givenCategories = sorted(m_selectedCategories);
    refresh();
}

bool CSelectExemptCategoryDialog::hasUnsavedEdits() const
{
    return sorted(m_selectedCategories) != m_givenCategories;
}

bool CSelectExemptCategoryDialog::handleEvent(int type, int id, int param, QString text, void* data)
{
    if (type == WQ::LineEditTextChanged) {
        if (id == CategorySearchEditId) {
            m_strSearchText = m_pSearchEdit->getText();
            refresh();
        }
        return true;
    }
    if (type == WQ::ButtonClicked) {
        switch (id) {
        case ChooseButtonId:
            move(m_pAvailableTable, m_pSelectedTable);
            return true;
        case GiveBackButtonId:
            move(m_pSelectedTable, m_pAvailableTable);
            return true;
        case AcceptButtonId:
        case CloseButtonId:
            done(id == AcceptButtonId ? Accepted : Rejected);
            close();
            return true;
        default:
            break;
        }
    }
    return CBaseDialog::handleEvent(type, id, param, text, data);
}

void CSelectExemptCategoryDialog::refresh()
{
    if (!m_pAllCategories) {
        return;
    }
    m_availableCategories.clear();
    m_pSelectedTable->clear();
    m_pAvailableTable->clear();

    std::unordered_set<const nvservice::CCategoryInfo*> selected;
    for (const CategoryPtr& category : m_selectedCategories) {
        selected.insert(category.get());
    }
    const QString foldedText = foldCase(m_strSearchText);
    for (const CCategorySearchKey& key : m_searchKeys) {
        if (!key.category()) {
            continue;
        }
        if (selected.count(key.category().get()) > 0) {
            appendName(m_pSelectedTable, key.name());
        } else if (key.contains(foldedText)) {
            appendName(m_pAvailableTable, key.name());
            m_availableCategories.push_back(key.category());
        }
    }
    m_pSelectedTable->updateTable();
    m_pAvailableTable->updateTable();
}

void CSelectExemptCategoryDialog::move(WQ::CStandardSimpleTable* source, WQ::CStandardSimpleTable* target)
{
    const bool givesBack = target == m_pAvailableTable;
    CategoryList& sourceList = givesBack ? m_selectedCategories : m_availableCategories;
    CategoryList& targetList = givesBack ? m_availableCategories : m_selectedCategories;
    const QVector<int> rows = source->selectedRows();
    if (rows.isEmpty()) {
        return;
    }
    source->clearSelection();

    QVector<QString> names;
    names.reserve(rows.size());
    for (const int row : rows) {
        names.append(source->itemText(row, CategoryColumn));
        source->removeRow(row);
        target->appendRow();
    }
    const CategoryList moved = takeByName(sourceList, names);
    targetList.insert(targetList.end(), moved.begin(), moved.end());
    relabel(target, targetList);
}

void CSelectExemptCategoryDialog::moveOne(WQ::CStandardSimpleTable* source, int row, WQ::CStandardSimpleTable* target)
{
    QVector<int> others = source->selectedRows();
    others.removeAll(row);
    source->clearSelection();
    source->setRowSelected(row, true);
    move(source, target);
    for (const int other : qAsConst(others)) {
        source->setRowSelected(other, true);
    }
}

void CSelectExemptCategoryDialog::relabel(WQ::CStandardSimpleTable* table, const CategoryList& list)
{
    std::unordered_map<const nvservice::CCategoryInfo*, int> occurrences;
    for (const CategoryPtr& category : list) {
        ++occurrences[category.get()];
    }
    int position = 0;
    for (const CCategorySearchKey& key : m_searchKeys) {
        const auto found = occurrences.find(key.category().get());
        const int count = key.category() && found != occurrences.end() ? found->second : 0;
        for (int i = 0; i < count; ++i) {
            table->setItemText(table->rowID(position++), CategoryColumn, key.name(), false);
        }
    }
    table->updateTable();
}

} // namespace QAV
