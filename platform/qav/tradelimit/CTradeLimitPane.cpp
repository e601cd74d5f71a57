// SPDX-License-Identifier: Apache-2.0
#include "tradelimit/CTradeLimitPane.h"

#include "lookup/CLookUpEdit.h"
#include "tradelimit/CTradeLimitModel.h"

#include <WQ/CComboBox.h>
#include <WQ/CLineEdit.h>
#include <WQ/CSimpleTextWidget.h>
#include <WQ/CSmallNormalButton.h>
#include <WQ/CStandardHpfTable.h>

#include <QAbstractItemView>
#include <QAction>
#include <QItemSelectionModel>

#include <algorithm>

namespace QAV
{

namespace
{

enum EControlId {
    SecurityEditId = 1,
    SearchEditId,
    ListComboId,
    DirectionComboId,
    AddButtonId,
    ChangeButtonId,
    RemoveButtonId,
    UndoButtonId,
    RedoButtonId,
    PasteButtonId,
    ImportButtonId,
    ExportButtonId
};

/// Table ids are told apart by whose list and of which trade type it is.
constexpr int FirstTableId = 1280;
constexpr int TraderTypeFactor = 16;
/// From here on, taking all rows anew is quicker than announcing each.
constexpr std::size_t ManyRows = 500;

} // namespace

CTradeLimitPane::CTradeLimitPane(EStockLimitTableType tableType, nvservice::EZvTraderType traderType, QWidget* parent)
    : CWidgetList(WQ::VerticalList, parent), m_book(traderType), m_directory(traderType)
{
    setMargin(8, 8, 8, 8);
    setSpacing(8);
    addFixedWidget(createEntryBar(), WQ::AnchorLeading, true);
    addStretchWidget(createTable(tableType), 1, WQ::AnchorLeading, true);
    addFixedWidget(createActionBar(), WQ::AnchorLeading, true);
    createShortcuts();
    m_book.setListener([this](const CTradeLimitBook::Change& change) { onBookChanged(change); });
    connect(&m_book.undoStack(), &QUndoStack::indexChanged, this, &CTradeLimitPane::updateButtons);
    connect(m_table, &WQ::CStandardHpfTable::sigSelectionChanged, this, &CTradeLimitPane::updateButtons);
    connect(m_table, &WQ::CStandardHpfTable::sigRowActivated, this, [this] {
        const QAbstractItemView* const view = m_table->view();
        openChangeMenu(view->viewport()->mapToGlobal(view->visualRect(view->currentIndex()).bottomLeft()), false);
    });
    showCounts();
    updateButtons();
}

CTradeLimitPane::~CTradeLimitPane()
{
    m_book.setListener({});
    m_book.undoStack().disconnect(this);
}

QWidget* CTradeLimitPane::createEntryBar()
{
    auto* const bar = new CWidgetList(WQ::HorizontalList, this);
    bar->setSpacing(6);
    const auto addLabel = [bar](const QString& text) {
        bar->addFixedWidget(new WQ::CSimpleTextWidget(false, 0, text, bar), WQ::AnchorLine, false);
    };
    addLabel(QStringLiteral("证券"));
    m_securityEdit = new CLookUpEdit(SecurityEditId, bar);
    m_securityEdit->setObjectName(QStringLiteral("security"));
    m_securityEdit->setListName(QStringLiteral("证券列表"));
    m_securityEdit->setSource([this](const QString& typed) { return offersFor(typed); },
                              [this](int security) { return offerText(security); });
    connect(m_securityEdit, &CLookUpEdit::sigChosen, this, [this](int security) { m_chosenSecurity = security; });
    connect(&m_directory, &CSecurityDirectory::sigLoaded, this, [this] {
        m_chosenSecurity = -1;
        m_securityEdit->setToolTip(
            m_directory.error().isEmpty()
                ? QString()
                : QStringLiteral("证券列表加载失败：%1，仍可直接输入证券代码").arg(m_directory.error()));
        m_securityEdit->refreshOffers();
    });
    m_securityEdit->setEmptyHintText(QStringLiteral("代码、名称或拼音首字母"));
    m_securityEdit->setAccessibleName(QStringLiteral("证券"));
    m_securityEdit->setMinimumWidth(80);
    bar->addStretchWidget(m_securityEdit, 3, WQ::AnchorLine, false);

    addLabel(QStringLiteral("名单"));
    m_listCombo = new WQ::CComboBox(ListComboId, bar);
    m_listCombo->setObjectName(QStringLiteral("listKind"));
    for (const auto kind : {nvservice::EZVRCListKind::Black, nvservice::EZVRCListKind::White}) {
        m_listCombo->addItem(listKindName(kind), int(kind));
    }
    bar->addFixedWidget(m_listCombo, WQ::AnchorLine, false);

    if (hasDirection(m_book.traderType())) {
        addLabel(QStringLiteral("方向"));
        m_directionCombo = new WQ::CComboBox(DirectionComboId, bar);
        m_directionCombo->setObjectName(QStringLiteral("direction"));
        for (const auto direction :
             {nvservice::EZVRCDirection::Both, nvservice::EZVRCDirection::Buy, nvservice::EZVRCDirection::Sell}) {
            m_directionCombo->addItem(directionName(direction, m_book.traderType()), int(direction));
        }
        bar->addFixedWidget(m_directionCombo, WQ::AnchorLine, false);
    }
    auto* const add = new WQ::CSmallNormalButton(AddButtonId, true, WQ::PrimaryButton, bar);
    add->setObjectName(QStringLiteral("add"));
    add->setText(QStringLiteral("添加"));
    bar->addFixedWidget(add, WQ::AnchorLine, false);
    bar->addStretchSpace(3);

    m_searchEdit = new WQ::CLineEdit(SearchEditId, bar);
    m_searchEdit->setObjectName(QStringLiteral("search"));
    m_searchEdit->setEmptyHintText(QStringLiteral("在名单中查找"));
    m_searchEdit->setAccessibleName(QStringLiteral("在名单中查找"));
    m_searchEdit->setClearButtonEnabled(true);
    m_searchEdit->setMinimumWidth(60);
    bar->addStretchWidget(m_searchEdit, 2, WQ::AnchorLine, false);
    return bar;
}

QWidget* CTradeLimitPane::createTable(EStockLimitTableType tableType)
{
    const int tableId = FirstTableId + int(m_book.traderType()) * TraderTypeFactor + int(tableType);
    m_table = new WQ::CStandardHpfTable(tableId, this, WQ::MenuAll);
    m_table->setObjectName(QStringLiteral("entries"));
    m_table->setAccessibleName(QStringLiteral("黑白名单"));
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
    const auto add = [bar](int id, const char* name, const QString& text, const QString& tip) {
        auto* const button = new WQ::CSmallNormalButton(id, true, WQ::NormalButton, bar);
        button->setObjectName(QLatin1String(name));
        button->setText(text);
        button->setToolTip(tip);
        bar->addFixedWidget(button, WQ::AnchorLine, false);
        return button;
    };
    m_changeButton = add(ChangeButtonId, "change", QStringLiteral("修改"), QStringLiteral("修改所选证券（Enter）"));
    m_removeButton = add(RemoveButtonId, "remove", QStringLiteral("删除"), QStringLiteral("删除所选证券（Delete）"));
    bar->addFixedSpace(10);
    m_undoButton = add(UndoButtonId, "undo", QStringLiteral("撤销"), QStringLiteral("撤销（Ctrl+Z）"));
    m_redoButton = add(RedoButtonId, "redo", QStringLiteral("恢复"), QStringLiteral("恢复（Ctrl+Y）"));
    bar->addFixedSpace(10);
    add(PasteButtonId, "paste", QStringLiteral("粘贴"), QStringLiteral("粘贴从电子表格复制的证券（Ctrl+V）"));
    add(ImportButtonId, "import", QStringLiteral("导入"), QStringLiteral("从CSV文件导入"));
    add(ExportButtonId, "export", QStringLiteral("导出"), QStringLiteral("将显示的证券导出为CSV文件"));
    return bar;
}

void CTradeLimitPane::createShortcuts()
{
    const auto add = [](QWidget* place, const QList<QKeySequence>& keys, auto&& run) {
        auto* const action = new QAction(place);
        action->setShortcuts(keys);
        action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
        place->addAction(action);
        connect(action, &QAction::triggered, place, run);
    };
    add(this, {QKeySequence(Qt::CTRL + Qt::Key_Z)}, [this] { m_book.undoStack().undo(); });
    add(this, {QKeySequence(Qt::CTRL + Qt::Key_Y), QKeySequence(Qt::CTRL + Qt::SHIFT + Qt::Key_Z)},
        [this] { m_book.undoStack().redo(); });
    add(m_table, {QKeySequence(Qt::Key_Delete)}, [this] { removeSelected(); });
    add(m_table, {QKeySequence(Qt::CTRL + Qt::Key_V)}, [this] { paste(); });
}

void CTradeLimitPane::load(const std::string& systemTag, const std::vector<nvservice::CTradeLimitEntry>& entries)
{
    ++m_loadNumber;
    m_directory.setServer(systemTag);
    m_chosenSecurity = -1;
    m_securityEdit->clear();
    m_searchEdit->clear();
    m_model->clear();
    m_book.load(entries);
}

bool CTradeLimitPane::handleEvent(int type, int id, int, QString text, void*)
{
    if (type == WQ::ButtonOrEnter && id == SecurityEditId) {
        addTyped();
    }
    if (type == WQ::LineEditTextChanged && id == SearchEditId) {
        search(text);
    }
    if (type != WQ::ButtonClicked) {
        return true;
    }
    switch (id) {
    case AddButtonId:
        addTyped();
        break;
    case ChangeButtonId:
        openChangeMenu(m_changeButton->mapToGlobal(QPoint()), true);
        break;
    case RemoveButtonId:
        removeSelected();
        break;
    case UndoButtonId:
        m_book.undoStack().undo();
        break;
    case RedoButtonId:
        m_book.undoStack().redo();
        break;
    case PasteButtonId:
        paste();
        break;
    case ImportButtonId:
        chooseImportFile();
        break;
    case ExportButtonId:
        exportFile();
        break;
    default:
        break;
    }
    return true;
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
    // The current row is gone: the one that took its place is current now.
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
    m_counts->setText(QStringLiteral("共%1条，黑名单%2条，白名单%3条")
                          .arg(QString::number(m_book.rows().size()), QString::number(black), QString::number(white)));
}

void CTradeLimitPane::updateButtons()
{
    const bool selected = m_table->view()->selectionModel() && m_table->view()->selectionModel()->hasSelection();
    m_changeButton->setEnabled(selected);
    m_removeButton->setEnabled(selected);
    m_undoButton->setEnabled(m_book.undoStack().canUndo());
    m_redoButton->setEnabled(m_book.undoStack().canRedo());
}

std::vector<int> CTradeLimitPane::selectedIds() const
{
    std::vector<int> ids;
    for (const QString& key : m_table->selectedKeys()) {
        ids.push_back(key.toInt());
    }
    return ids;
}

nvservice::EZVRCListKind CTradeLimitPane::chosenListKind() const
{
    return nvservice::EZVRCListKind(m_listCombo->currentData().toInt());
}

nvservice::EZVRCDirection CTradeLimitPane::chosenDirection() const
{
    return m_directionCombo ? nvservice::EZVRCDirection(m_directionCombo->currentData().toInt())
                            : nvservice::EZVRCDirection::Both;
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
