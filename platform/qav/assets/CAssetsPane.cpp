// SPDX-License-Identifier: Apache-2.0
#include "assets/CAssetsPane.h"

#include "assets/AssetsChecks.h"
#include "lookup/CLookUpEdit.h"

#include <WQ/CAutoKeyboardLineEdit.h>
#include <WQ/CCheckBox.h>
#include <WQ/CComboBox.h>
#include <WQ/CMessageTip.h>
#include <WQ/CSmallNormalButton.h>
#include <WQ/CStandardSimpleTable.h>
#include <WQ/StringConversion.h>

#include <QCoreApplication>
#include <QTabWidget>

#include <algorithm>

namespace QAV
{

namespace
{

constexpr int TipSeconds = 6;
constexpr int TipWidth = 360;
constexpr int RemarkMaxLength = 200;
/// The maximum number of offered categories.
constexpr std::size_t MaxCategoryOffers = 200;
constexpr int CategoryWidth = 220;
constexpr int RemarkWidth = 200;
/// The space that a drop-down box needs beside its text.
constexpr int ChoiceFrame = 40;

/// Wide enough for every choice of a column, and for its header.
int choiceWidth(const AssetsChoiceColumn& column, const QFontMetrics& metrics)
{
    int width = metrics.horizontalAdvance(assetsColumnName(column.column));
    for (const int value : column.values) {
        width = std::max(width, metrics.horizontalAdvance(assetsChoiceName(column, value)));
    }
    return width + ChoiceFrame;
}

/// Brings the tab pages around `widget` to the front, on all levels.
void raisePagesOf(QWidget* widget)
{
    for (QWidget* page = widget; page->parentWidget(); page = page->parentWidget()) {
        auto* const tabs = qobject_cast<QTabWidget*>(page->parentWidget()->parentWidget());
        if (tabs && tabs->indexOf(page) >= 0) {
            tabs->setCurrentWidget(page);
        }
    }
}

} // namespace

CAssetsPane::CAssetsPane(int tableId, bool readOnly, nvservice::EZVRCScopeType scope, int categoryType, QWidget* parent)
    : CWidgetList(WQ::VerticalList, parent), m_readOnly(readOnly), m_scope(scope), m_categories(categoryType)
{
    setMargin(8, 8, 8, 8);
    setSpacing(8);
    addStretchWidget(createTable(tableId), 1, WQ::AnchorLeading, true);
    if (!readOnly) {
        addFixedWidget(createActionBar(), WQ::AnchorLeading, true);
    }
    connect(&m_categories, &CCategoryDirectory::sigLoaded, this, &CAssetsPane::showCategories);
    updateButtons();
}

CAssetsPane::~CAssetsPane() = default;

QWidget* CAssetsPane::createTable(int tableId)
{
    m_table = new WQ::CStandardSimpleTable(tableId, this);
    m_table->setObjectName(QStringLiteral("limits"));
    m_table->setAccessibleName(QCoreApplication::translate("QAV", "资产组合风控"));
    m_table->setFlags(m_table->flags() & ~(WQ::TableCellSelection | WQ::TableHeaderSort));
    m_table->setColumnCount(AssetsColumnCount);
    for (int column = 0; column < AssetsColumnCount; ++column) {
        m_table->setHeaderText(column, assetsColumnName(column));
    }
    m_table->setRowHeight(30);
    for (const AssetsChoiceColumn& column : assetsChoiceColumns()) {
        m_table->setColumnWidth(column.column, choiceWidth(column, m_table->fontMetrics()));
    }
    m_table->setColumnWidth(AssetsCategoryColumn, CategoryWidth);
    m_table->setColumnWidth(AssetsRemarkColumn, RemarkWidth);
    m_table->setColumnVisible(AssetsRemoveColumn, !m_readOnly);
    connect(m_table, &WQ::CStandardSimpleTable::sigSelectionChanged, this, &CAssetsPane::updateButtons);
    return m_table;
}

QWidget* CAssetsPane::createActionBar()
{
    auto* const bar = new CWidgetList(WQ::HorizontalList, this);
    bar->setSpacing(6);
    const auto add = [this, bar](const QString& name, const QString& text, int buttonType, auto run) {
        auto* const button = new WQ::CSmallNormalButton(0, true, buttonType, bar);
        button->setObjectName(name);
        button->setText(text);
        connect(button, &QPushButton::clicked, this, run);
        bar->addFixedWidget(button, WQ::AnchorLine, false);
        return button;
    };
    add(QStringLiteral("add"), QCoreApplication::translate("QAV", "新增"), WQ::PrimaryButton,
        &CAssetsPane::addNewLimit);
    m_removeButton = add(QStringLiteral("remove"), QCoreApplication::translate("QAV", "删除"), WQ::NormalButton,
                         [this] { removeLimits(m_table->selectedRows()); });
    bar->addStretchSpace(1);
    return bar;
}

void CAssetsPane::setLimits(const std::vector<nvservice::CAssetsRC>& limits)
{
    m_table->clear();
    m_limits.clear();
    for (const nvservice::CAssetsRC& limit : limits) {
        appendLimit(limit);
    }
    m_table->updateTable();
    updateButtons();
}

std::vector<nvservice::CAssetsRC> CAssetsPane::limits() const
{
    std::vector<nvservice::CAssetsRC> limits;
    limits.reserve(m_limits.size());
    for (const auto& [rowId, limit] : m_limits) {
        limits.push_back(limit.record);
    }
    return limits;
}

void CAssetsPane::appendLimit(const nvservice::CAssetsRC& record)
{
    const int rowId = m_table->appendRow();
    Limit& limit = m_limits[rowId];
    limit.record = record;
    limit.thresholdText = thresholdText(record.threshold);
    showTexts(rowId);
    if (!m_readOnly) {
        createEditors(rowId);
    }
}

void CAssetsPane::addNewLimit()
{
    nvservice::CAssetsRC record;
    record.scope = m_scope;
    record.base = nvservice::EZVRCQuantity::NetAssets;
    record.serverName = WQ::qsToS(m_categories.serverName());
    appendLimit(record);
    const int rowId = m_limits.rbegin()->first;
    // There is no sensible default: the user has to enter the threshold.
    m_limits[rowId].thresholdText.clear();
    m_limits[rowId].thresholdTyped = true;
    showTexts(rowId);
    m_table->setCurrentRow(rowId, AssetsScopeColumn);
    m_table->clearSelection();
    m_table->setRowSelected(rowId, true);
}

void CAssetsPane::removeLimits(const QVector<int>& rowIds)
{
    hideProblem();
    int removed = 0;
    for (const int rowId : rowIds) {
        removed += static_cast<int>(m_limits.erase(rowId));
        m_table->removeRow(rowId);
    }
    updateButtons();
    // The next press of the key must not remove the next limit, and a press by mistake is noticed.
    if (m_limits.count(m_table->currentRow()) > 0) {
        m_table->setCurrentRow(m_table->currentRow(), AssetsScopeColumn);
    }
    if (removed > 0) {
        WQ::CMessageTip::showTip(m_table, Qt::AlignBottom | Qt::AlignLeft,
                                 QCoreApplication::translate("QAV", "已删除%n条", nullptr, removed), TipSeconds,
                                 WQ::MessageInformation, TipWidth);
    }
}

QString CAssetsPane::categoryText(const nvservice::CAssetsRC& record) const
{
    const bool measures = record.assetClass == nvservice::EZVRCAssetClass::ByCategory && record.categoryId != -1;
    return measures ? m_categories.text(record.categoryId) : QString();
}

void CAssetsPane::showTexts(int rowId)
{
    hideProblem();
    const Limit& limit = m_limits[rowId];
    for (const AssetsChoiceColumn& column : assetsChoiceColumns()) {
        m_table->setItemText(rowId, column.column, assetsChoiceName(column, column.get(limit.record)), false);
    }
    // Under a check box the text would shine through.
    if (m_readOnly) {
        m_table->setItemText(rowId, AssetsEnabledColumn,
                             limit.record.enabled ? QCoreApplication::translate("QAV", "是")
                                                  : QCoreApplication::translate("QAV", "否"),
                             false);
    }
    m_table->setItemText(rowId, AssetsCategoryColumn, categoryText(limit.record), false);
    m_table->setItemText(rowId, AssetsThresholdColumn, limit.thresholdText, false);
    m_table->setItemText(rowId, AssetsRemarkColumn, WQ::sToQs(limit.record.remark), false);
    m_table->updateTable();
}

void CAssetsPane::createEditors(int rowId)
{
    const auto put = [&](int column, int alignment, auto make) {
        const auto create = [this, rowId, column, make](QWidget* parent) {
            QWidget* const editor = make(parent);
            editor->setAccessibleName(
                QCoreApplication::translate("QAV", "第%1行%2")
                    .arg(QString::number(m_table->rowIndex(rowId) + 1), assetsColumnName(column)));
            return editor;
        };
        m_table->setItemWidget(rowId, column, WQ::CStandardSimpleTable::WidgetFactory(create), alignment, false);
    };
    put(AssetsEnabledColumn, Qt::AlignCenter, [this, rowId](QWidget* parent) {
        auto* const check = new WQ::CCheckBox(0, QString(), parent);
        check->setChecked(m_limits[rowId].record.enabled);
        connect(check, &QCheckBox::toggled, this, [this, rowId](bool checked) {
            m_limits[rowId].record.enabled = checked;
            showTexts(rowId);
        });
        return check;
    });
    for (const AssetsChoiceColumn& column : assetsChoiceColumns()) {
        put(column.column, 0, [this, rowId, &column](QWidget* parent) { return createChoice(rowId, column, parent); });
    }
    put(AssetsCategoryColumn, 0, [this, rowId](QWidget* parent) { return createCategoryEdit(rowId, parent); });
    put(AssetsThresholdColumn, 0, [this, rowId](QWidget* parent) {
        auto* const edit = new WQ::CAutoKeyboardLineEdit(parent);
        edit->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        edit->setText(m_limits[rowId].thresholdText);
        connect(edit, &QLineEdit::textEdited, this, [this, rowId](const QString& text) {
            Limit& limit = m_limits[rowId];
            limit.thresholdText = text;
            limit.thresholdTyped = true;
            parseThreshold(text, limit.record.threshold);
            showTexts(rowId);
        });
        return edit;
    });
    put(AssetsRemarkColumn, 0, [this, rowId](QWidget* parent) {
        auto* const edit = new WQ::CAutoKeyboardLineEdit(parent);
        edit->setText(WQ::sToQs(m_limits[rowId].record.remark));
        edit->setMaxLength(std::max(RemarkMaxLength, edit->text().size()));
        connect(edit, &QLineEdit::textEdited, this, [this, rowId](const QString& text) {
            m_limits[rowId].record.remark = WQ::qsToS(text);
            showTexts(rowId);
        });
        return edit;
    });
    put(AssetsRemoveColumn, Qt::AlignCenter, [this, rowId](QWidget* parent) {
        auto* const button = new WQ::CSmallNormalButton(0, true, WQ::NormalButton, parent);
        button->setText(QCoreApplication::translate("QAV", "删除"));
        connect(button, &QPushButton::clicked, this, [this, rowId] { removeLimits({rowId}); });
        return button;
    });
}

QWidget* CAssetsPane::createChoice(int rowId, const AssetsChoiceColumn& column, QWidget* parent)
{
    const int current = column.get(m_limits[rowId].record);
    auto* const combo = new WQ::CComboBox(0, parent);
    // The cell sets the width. A box that adjusts to its contents would change it again some time later.
    combo->setSizeAdjustPolicy(QComboBox::AdjustToContentsOnFirstShow);
    std::vector<int> values = column.values;
    // A value of a later version can be chosen as long as the limit has it.
    if (!isKnownChoice(column, current)) {
        values.push_back(current);
    }
    for (const int value : values) {
        combo->addItem(assetsChoiceName(column, value), value);
    }
    combo->setCurrentIndex(combo->findData(current));
    connect(combo, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            [this, rowId, &column, combo] { onChoice(rowId, column, combo->currentData().toInt()); });
    return combo;
}

void CAssetsPane::onChoice(int rowId, const AssetsChoiceColumn& column, int value)
{
    nvservice::CAssetsRC& record = m_limits[rowId].record;
    column.set(record, value);
    if (column.column == AssetsClassColumn) {
        if (record.assetClass != nvservice::EZVRCAssetClass::ByCategory) {
            record.categoryId = -1;
        }
        showCategory(rowId);
    }
    showTexts(rowId);
}

QWidget* CAssetsPane::createCategoryEdit(int rowId, QWidget* parent)
{
    auto* const edit = new CLookUpEdit(
        0, assetsColumnName(AssetsCategoryColumn),
        [this](const QString& typed) { return m_categories.find(typed, MaxCategoryOffers); },
        [this](int categoryId) { return m_categories.text(categoryId); }, parent);
    m_limits[rowId].categoryEdit = edit;
    const auto setCategory = [this, rowId](int categoryId) {
        m_limits[rowId].record.categoryId = categoryId;
        showTexts(rowId);
    };
    connect(edit, &CLookUpEdit::sigChosen, this, setCategory);
    connect(edit, &QLineEdit::textEdited, this,
            [this, setCategory](const QString& text) { setCategory(m_categories.categoryOf(text)); });
    connect(edit, &QLineEdit::editingFinished, this, [this, rowId, edit] { settleCategory(rowId, edit->text()); });
    showCategory(rowId);
    return edit;
}

void CAssetsPane::settleCategory(int rowId, const QString& text)
{
    const auto limit = m_limits.find(rowId);
    if (limit == m_limits.end() || limit->second.record.categoryId != -1 || text.trimmed().isEmpty()) {
        return;
    }
    const std::vector<int> found = m_categories.find(text, 2);
    if (found.size() != 1) {
        return;
    }
    limit->second.record.categoryId = found.front();
    showCategory(rowId);
    showTexts(rowId);
}

void CAssetsPane::showCategory(int rowId)
{
    const Limit& limit = m_limits[rowId];
    if (!limit.categoryEdit) {
        return;
    }
    const bool measures = limit.record.assetClass == nvservice::EZVRCAssetClass::ByCategory;
    limit.categoryEdit->setEnabled(measures);
    limit.categoryEdit->setText(categoryText(limit.record));
    limit.categoryEdit->setEmptyHintText(measures ? QCoreApplication::translate("QAV", "输入名称或拼音") : QString());
    limit.categoryEdit->setCursorPosition(0);
}

void CAssetsPane::showCategories()
{
    for (const auto& [rowId, limit] : m_limits) {
        const bool interrupts =
            limit.categoryEdit && limit.categoryEdit->hasFocus() && limit.categoryEdit->isModified();
        if (interrupts) {
            limit.categoryEdit->refreshOffers();
        } else {
            showCategory(rowId);
        }
        m_table->setItemText(rowId, AssetsCategoryColumn, categoryText(limit.record), false);
    }
    m_table->updateTable();
}

void CAssetsPane::hideProblem()
{
    if (m_problemCell) {
        WQ::CMessageTip::hideTip(m_problemCell);
    }
    m_problemCell.clear();
}

QString CAssetsPane::showFirstProblem()
{
    hideProblem();
    for (const auto& [rowId, limit] : m_limits) {
        const AssetsProblem problem = assetsProblem(limit.record, limit.thresholdText, limit.thresholdTyped);
        if (problem.text.isEmpty()) {
            continue;
        }
        raisePagesOf(this);
        m_table->setCurrentRow(rowId, problem.column);
        m_table->view();
        QWidget* const cell = m_table->itemWidget(rowId, problem.column);
        m_problemCell = cell ? cell : m_table;
        WQ::CMessageTip::showTip(m_problemCell, Qt::AlignBottom | Qt::AlignLeft, problem.text, TipSeconds,
                                 WQ::MessageError, TipWidth);
        return problem.text;
    }
    return {};
}

void CAssetsPane::updateButtons()
{
    if (m_removeButton) {
        m_removeButton->setEnabled(!m_table->selectedRows().isEmpty());
    }
}

} // namespace QAV
