// SPDX-License-Identifier: Apache-2.0
#include "tradelimit/CTradeLimitPane.h"

#include "tradelimit/CImportReportDialog.h"
#include "tradelimit/CSecurityEdit.h"
#include "tradelimit/CTradeLimitModel.h"
#include "tradelimit/TradeLimitChecks.h"

#include <WQ/CComboBox.h>
#include <WQ/CMessageBox.h>
#include <WQ/CMessageTip.h>
#include <WQ/CSimpleTextWidget.h>
#include <WQ/CSmallNormalButton.h>
#include <WQ/CStandardHpfTable.h>
#include <WQ/StringConversion.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QClipboard>
#include <QFileDialog>
#include <QFileInfo>
#include <QItemSelectionModel>
#include <QMenu>
#include <QShortcut>

#include <algorithm>

namespace QAV
{

namespace
{

using nvservice::EZVRCDirection;
using nvservice::EZVRCListKind;

constexpr EZVRCListKind ListKinds[] = {EZVRCListKind::Black, EZVRCListKind::White};
constexpr EZVRCDirection Directions[] = {EZVRCDirection::Both, EZVRCDirection::Buy, EZVRCDirection::Sell};

/// A table id consists of the kind of owner and the trade type.
constexpr int FirstTableId = 1280;
constexpr int TraderTypeFactor = 16;
/// From this number on, reading all rows again is faster than updating single ones.
constexpr std::size_t ManyRows = 500;
constexpr int TipSeconds = 6;
constexpr int TipWidth = 480;

QString importTitle()
{
    return QCoreApplication::translate("QAV", "导入名单");
}

QString csvFilter()
{
    return QCoreApplication::translate("QAV", "CSV文件 (*.csv *.txt);;所有文件 (*)");
}

void showTip(QWidget* at, const QString& text, WQ::EMessageLevel level)
{
    WQ::CMessageTip::showTip(at, Qt::AlignBottom | Qt::AlignLeft, text, TipSeconds, level, TipWidth);
}

} // namespace

CTradeLimitPane::CTradeLimitPane(EStockLimitTableType tableType, nvservice::EZvTraderType traderType, QWidget* parent)
    : CWidgetList(WQ::VerticalList, parent), m_book(traderType)
{
    setMargin(8, 8, 8, 8);
    setSpacing(8);
    addFixedWidget(createEntryBar(), WQ::AnchorLeading, true);
    addStretchWidget(createTable(tableType), 1, WQ::AnchorLeading, true);
    addFixedWidget(createActionBar(), WQ::AnchorLeading, true);
    createShortcuts();
    m_book.setListener([this](const CTradeLimitBook::Change& change) { onBookChanged(change); });
    connect(m_table, &WQ::CStandardHpfTable::sigSelectionChanged, this, &CTradeLimitPane::updateButtons);
    connect(m_table, &WQ::CStandardHpfTable::sigRowActivated, this, [this] {
        const QAbstractItemView* const view = m_table->view();
        openChangeMenu(view->viewport()->mapToGlobal(view->visualRect(view->currentIndex()).bottomLeft()), false);
    });
    showCounts();
    updateButtons();
}

CTradeLimitPane::~CTradeLimitPane() = default;

QWidget* CTradeLimitPane::createEntryBar()
{
    auto* const bar = new CWidgetList(WQ::HorizontalList, this);
    bar->setSpacing(6);
    const auto addLabel = [bar](const QString& text) {
        bar->addFixedWidget(new WQ::CSimpleTextWidget(false, 0, text, bar), WQ::AnchorLine, false);
    };
    const auto addCombo = [&](const QString& label, const QString& name, const auto& values, const auto& textOf) {
        addLabel(label);
        auto* const combo = new WQ::CComboBox(0, bar);
        combo->setObjectName(name);
        for (const auto value : values) {
            combo->addItem(textOf(value), int(value));
        }
        bar->addFixedWidget(combo, WQ::AnchorLine, false);
        return combo;
    };
    addLabel(QCoreApplication::translate("QAV", "证券"));
    m_securityEdit = new CSecurityEdit(m_book.traderType(), bar);
    m_securityEdit->setObjectName(QStringLiteral("security"));
    m_securityEdit->setAccessibleName(QCoreApplication::translate("QAV", "证券"));
    m_securityEdit->setMinimumWidth(80);
    connect(m_securityEdit, &QLineEdit::returnPressed, this, &CTradeLimitPane::addTyped);
    bar->addStretchWidget(m_securityEdit, 3, WQ::AnchorLine, false);
    m_listCombo =
        addCombo(QCoreApplication::translate("QAV", "名单"), QStringLiteral("listKind"), ListKinds, listKindName);
    if (hasDirection(m_book.traderType())) {
        m_directionCombo =
            addCombo(QCoreApplication::translate("QAV", "方向"), QStringLiteral("direction"), Directions,
                     [this](EZVRCDirection direction) { return directionName(direction, m_book.traderType()); });
    }
    auto* const add = new WQ::CSmallNormalButton(0, true, WQ::PrimaryButton, bar);
    add->setObjectName(QStringLiteral("add"));
    add->setText(QCoreApplication::translate("QAV", "添加"));
    connect(add, &QPushButton::clicked, this, &CTradeLimitPane::addTyped);
    bar->addFixedWidget(add, WQ::AnchorLine, false);
    bar->addStretchSpace(3);

    m_searchEdit = new WQ::CLineEdit(0, bar);
    m_searchEdit->setObjectName(QStringLiteral("search"));
    m_searchEdit->setEmptyHintText(QCoreApplication::translate("QAV", "在名单中查找"));
    m_searchEdit->setClearButtonEnabled(true);
    m_searchEdit->setMinimumWidth(60);
    connect(m_searchEdit, &QLineEdit::textChanged, this, &CTradeLimitPane::search);
    bar->addStretchWidget(m_searchEdit, 2, WQ::AnchorLine, false);
    return bar;
}

QWidget* CTradeLimitPane::createTable(EStockLimitTableType tableType)
{
    const int tableId = FirstTableId + int(m_book.traderType()) * TraderTypeFactor + int(tableType);
    m_table = new WQ::CStandardHpfTable(tableId, this, WQ::MenuAll);
    m_table->setObjectName(QStringLiteral("entries"));
    m_table->setAccessibleName(QCoreApplication::translate("QAV", "黑白名单"));
    m_table->setFlags(m_table->flags() & ~WQ::TableCellSelection);
    m_model = new CTradeLimitModel;
    m_table->setDataModel(m_model);
    m_table->setColumnVisible(TradeLimitSearchColumn, false);
    m_table->setColumnVisible(TradeLimitDirectionColumn, m_directionCombo != nullptr);
    m_table->setColumnFilterable(TradeLimitListColumn, true);
    m_table->setColumnFilterable(TradeLimitDirectionColumn, true);
    m_table->setColumnWidth(TradeLimitCodeColumn, 160);
    m_table->setColumnWidth(TradeLimitNameColumn, 240);
    m_table->setColumnWidth(TradeLimitListColumn, 100);
    m_table->setColumnWidth(TradeLimitDirectionColumn, 100);
    return m_table;
}

QWidget* CTradeLimitPane::createActionBar()
{
    auto* const bar = new CWidgetList(WQ::HorizontalList, this);
    bar->setSpacing(6);
    m_counts = new WQ::CSimpleTextWidget(false, 0, QString(), bar);
    m_counts->setObjectName(QStringLiteral("counts"));
    bar->addStretchWidget(m_counts, 1, WQ::AnchorLine, false);
    const auto add = [bar](const char* name, const QString& text, const QString& tip, const auto* receiver, auto run) {
        auto* const button = new WQ::CSmallNormalButton(0, true, WQ::NormalButton, bar);
        button->setObjectName(QLatin1String(name));
        button->setText(text);
        button->setToolTip(tip);
        connect(button, &QPushButton::clicked, receiver, run);
        bar->addFixedWidget(button, WQ::AnchorLine, false);
        return button;
    };
    m_changeButton = add("change", QCoreApplication::translate("QAV", "修改"),
                         QCoreApplication::translate("QAV", "修改所选证券（Enter）"), this,
                         [this] { openChangeMenu(m_changeButton->mapToGlobal(QPoint()), true); });
    m_removeButton =
        add("remove", QCoreApplication::translate("QAV", "删除"),
            QCoreApplication::translate("QAV", "删除所选证券（Delete）"), this, &CTradeLimitPane::removeSelected);
    bar->addFixedSpace(10);
    QUndoStack* const steps = &m_book.undoStack();
    QWidget* const undo = add("undo", QCoreApplication::translate("QAV", "撤销"),
                              QCoreApplication::translate("QAV", "撤销（Ctrl+Z）"), steps, &QUndoStack::undo);
    QWidget* const redo = add("redo", QCoreApplication::translate("QAV", "恢复"),
                              QCoreApplication::translate("QAV", "恢复（Ctrl+Y）"), steps, &QUndoStack::redo);
    undo->setEnabled(false);
    redo->setEnabled(false);
    connect(steps, &QUndoStack::canUndoChanged, undo, &QWidget::setEnabled);
    connect(steps, &QUndoStack::canRedoChanged, redo, &QWidget::setEnabled);
    bar->addFixedSpace(10);
    add("paste", QCoreApplication::translate("QAV", "粘贴"),
        QCoreApplication::translate("QAV", "粘贴从电子表格复制的证券（Ctrl+V）"), this, &CTradeLimitPane::paste);
    add("import", QCoreApplication::translate("QAV", "导入"), QCoreApplication::translate("QAV", "从CSV文件导入"), this,
        &CTradeLimitPane::chooseImportFile);
    add("export", QCoreApplication::translate("QAV", "导出"),
        QCoreApplication::translate("QAV", "将显示的证券导出为CSV文件"), this, &CTradeLimitPane::exportFile);
    return bar;
}

void CTradeLimitPane::createShortcuts()
{
    const auto add = [](const QKeySequence& keys, QWidget* place, const auto* receiver, auto run) {
        auto* const shortcut = new QShortcut(keys, place);
        shortcut->setContext(Qt::WidgetWithChildrenShortcut);
        connect(shortcut, &QShortcut::activated, receiver, run);
    };
    add(Qt::CTRL + Qt::Key_Z, this, &m_book.undoStack(), &QUndoStack::undo);
    add(Qt::CTRL + Qt::Key_Y, this, &m_book.undoStack(), &QUndoStack::redo);
    add(Qt::CTRL + Qt::SHIFT + Qt::Key_Z, this, &m_book.undoStack(), &QUndoStack::redo);
    add(Qt::Key_Delete, m_table, this, &CTradeLimitPane::removeSelected);
    add(Qt::CTRL + Qt::Key_V, m_table, this, &CTradeLimitPane::paste);
}

void CTradeLimitPane::load(const std::string& systemTag, const std::vector<nvservice::CTradeLimitEntry>& entries)
{
    ++m_loadNumber;
    m_securityEdit->reset(systemTag);
    m_searchEdit->clear();
    m_model->clear();
    m_book.load(entries);
}

void CTradeLimitPane::onBookChanged(const CTradeLimitBook::Change& change)
{
    if (change.kind == CTradeLimitBook::Change::Appended) {
        for (const CTradeLimitRowPtr& row : change.rows) {
            m_model->addData(row);
        }
    } else if (change.kind == CTradeLimitBook::Change::Replaced && change.rows.size() < ManyRows) {
        for (const CTradeLimitRowPtr& row : change.rows) {
            m_model->updateData(row);
        }
    } else {
        showAllRows();
    }
    showCounts();
    updateButtons();
}

void CTradeLimitPane::showAllRows()
{
    const QString current = m_table->currentKey();
    const int row = m_model->getRowByDataIndex(m_model->getDataIndexByKey(current));
    m_model->setRows(m_book.rows());
    if (row < 0 || m_table->setCurrentKey(current)) {
        return;
    }
    // The row that took the place of the current one becomes current.
    const auto next = m_model->getDataByRow(std::min(row, m_model->rowCount() - 1));
    if (next) {
        m_table->setCurrentKey(next->getKey());
    }
}

void CTradeLimitPane::showCounts()
{
    std::size_t black = 0;
    std::size_t white = 0;
    for (const CTradeLimitRowPtr& row : m_book.rows()) {
        black += row->entry().listKind == nvservice::EZVRCListKind::Black;
        white += row->entry().listKind == nvservice::EZVRCListKind::White;
    }
    m_counts->setText(QCoreApplication::translate("QAV", "共%1条，黑名单%2条，白名单%3条")
                          .arg(QString::number(m_book.rows().size()), QString::number(black), QString::number(white)));
}

void CTradeLimitPane::updateButtons()
{
    const bool selected = m_table->view()->selectionModel() && m_table->view()->selectionModel()->hasSelection();
    m_changeButton->setEnabled(selected);
    m_removeButton->setEnabled(selected);
}

std::vector<int> CTradeLimitPane::selectedIds() const
{
    std::vector<int> ids;
    for (const QString& key : m_table->selectedKeys()) {
        ids.push_back(key.toInt());
    }
    return ids;
}

nvservice::CTradeLimitEntry CTradeLimitPane::newEntry() const
{
    nvservice::CTradeLimitEntry entry;
    entry.listKind = EZVRCListKind(m_listCombo->currentData().toInt());
    if (m_directionCombo) {
        entry.direction = EZVRCDirection(m_directionCombo->currentData().toInt());
    }
    return entry;
}

void CTradeLimitPane::addTyped()
{
    m_securityEdit->hideOffers();
    nvservice::CTradeLimitEntry entry = newEntry();
    QString problem = m_securityEdit->read(entry);
    if (problem.isEmpty()) {
        problem = entryProblem(m_book, entry);
    }
    const QString code = WQ::sToQs(entry.securityCode);
    if (problem.isEmpty() && m_securityEdit->directory().lacks(code)) {
        problem = unknownSecurity(code);
    }
    if (!problem.isEmpty()) {
        m_securityEdit->selectAll();
        m_securityEdit->setFocus();
        showTip(m_securityEdit, problem, WQ::MessageError);
        return;
    }
    WQ::CMessageTip::hideTip(m_securityEdit);
    m_book.append({entry}, QCoreApplication::translate("QAV", "添加"));
    m_model->announce();
    m_table->setCurrentKey(CTradeLimitRow::keyOf(m_book.rows().back()->id()));
    m_securityEdit->clear();
}

void CTradeLimitPane::removeSelected()
{
    m_book.remove(selectedIds(), QCoreApplication::translate("QAV", "删除"));
}

void CTradeLimitPane::openChangeMenu(const QPoint& at, bool above)
{
    auto* const menu = new QMenu(this);
    menu->setObjectName(QStringLiteral("changeMenu"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const auto add = [this, menu](const QString& name, auto member, auto value) {
        connect(menu->addAction(QCoreApplication::translate("QAV", "改为%1").arg(name)), &QAction::triggered, this,
                [this, member, value] {
                    const auto edit = [member, value](nvservice::CTradeLimitEntry& entry) { entry.*member = value; };
                    m_book.change(selectedIds(), edit, QCoreApplication::translate("QAV", "修改"));
                });
    };
    for (const EZVRCListKind kind : ListKinds) {
        add(listKindName(kind), &nvservice::CTradeLimitEntry::listKind, kind);
    }
    if (m_directionCombo) {
        menu->addSeparator();
        for (const EZVRCDirection direction : Directions) {
            add(directionName(direction, m_book.traderType()), &nvservice::CTradeLimitEntry::direction, direction);
        }
    }
    menu->popup(above ? at - QPoint(0, menu->sizeHint().height()) : at);
}

void CTradeLimitPane::paste()
{
    const QString text = QApplication::clipboard()->text();
    const bool hasCommas = !text.contains(QLatin1Char('\t')) && text.contains(QLatin1Char(','));
    takeIn(text, QLatin1Char(hasCommas ? ',' : '\t'), QCoreApplication::translate("QAV", "剪贴板"), false);
}

void CTradeLimitPane::chooseImportFile()
{
    // By the time the user has chosen a file, the names that it lacks are loaded.
    m_securityEdit->directory().load();
    const unsigned load = m_loadNumber;
    const QString fileName = QFileDialog::getOpenFileName(this, importTitle(), QString(), csvFilter());
    if (!fileName.isEmpty() && !isOvertaken(load)) {
        importFile(fileName);
    }
}

void CTradeLimitPane::importFile(const QString& fileName)
{
    QString text;
    const QString problem = readTextFile(fileName, text);
    if (!problem.isEmpty()) {
        WQ::CMessageBox::warning(this, importTitle(), problem);
        return;
    }
    const bool hasTabs = text.left(text.indexOf(QLatin1Char('\n'))).contains(QLatin1Char('\t'));
    takeIn(text, QLatin1Char(hasTabs ? '\t' : ','), QFileInfo(fileName).fileName(), true);
}

void CTradeLimitPane::takeIn(const QString& text, QChar separator, const QString& source, bool alwaysReport)
{
    const CSecurityDirectory& directory = m_securityEdit->directory();
    TradeLimitImportDefaults defaults;
    defaults.entry = newEntry();
    defaults.nameOf = [&directory](const QString& code) {
        const int security = directory.indexOfCode(code);
        return security < 0 ? QString() : directory.security(security).name;
    };
    defaults.isUnknown = [&directory](const QString& code) { return directory.lacks(code); };
    const TradeLimitImport import = readTradeLimits(text, separator, m_book, defaults);
    if (!import.problem.isEmpty()) {
        WQ::CMessageBox::warning(this, importTitle(),
                                 QCoreApplication::translate("QAV", "%1：%2").arg(source, import.problem));
        return;
    }
    if (import.rows.empty()) {
        WQ::CMessageBox::information(this, importTitle(),
                                     QCoreApplication::translate("QAV", "%1中没有证券").arg(source));
        return;
    }
    if (alwaysReport || import.refusedCount() > 0) {
        const unsigned load = m_loadNumber;
        CImportReportDialog report(source, import, this);
        if (report.exec() != 1 || isOvertaken(load)) {
            return;
        }
    }
    m_book.append(import.entries, QCoreApplication::translate("QAV", "导入"));
    m_model->announce();
    const int added = import.entries.size();
    showTip(m_table, QCoreApplication::translate("QAV", "已加入%n条", nullptr, added), WQ::MessageInformation);
}

void CTradeLimitPane::exportFile()
{
    const QString title = QCoreApplication::translate("QAV", "导出名单");
    QString fileName =
        QFileDialog::getSaveFileName(this, title, QCoreApplication::translate("QAV", "黑白名单.csv"), csvFilter());
    if (fileName.isEmpty()) {
        return;
    }
    if (QFileInfo(fileName).suffix().isEmpty()) {
        fileName += QStringLiteral(".csv");
    }
    QString error;
    if (!m_table->exportCsv(fileName, &error)) {
        WQ::CMessageBox::warning(this, title, error);
    }
}

void CTradeLimitPane::search(const QString& text)
{
    const QString wanted = text.trimmed();
    if (wanted.isEmpty()) {
        m_model->clearColumnFilter(TradeLimitSearchColumn);
    } else {
        m_model->filterColumn(TradeLimitSearchColumn, {WQ::FilterContains, {wanted}});
    }
}

} // namespace QAV
