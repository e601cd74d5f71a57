// SPDX-License-Identifier: Apache-2.0
#include "Sides.h"

#include "Harness.h"

#include <WQ/CBaseTableColumnMultiButtonsDelegate.h>
#include <WQ/CStandardHpfTable.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QSortFilterProxyModel>
#include <QStandardItemModel>
#include <QTableWidget>

#include <malloc.h>

namespace bench
{

namespace
{

constexpr int tableWidth = 1000;
constexpr int tableHeight = 700;
constexpr int rowHeight = 28;

/// Sees whether a widget has been painted.
class PaintWatch : public QObject
{
public:
    explicit PaintWatch(QWidget* widget) { widget->installEventFilter(this); }
    bool eventFilter(QObject*, QEvent* event) override
    {
        m_painted = m_painted || event->type() == QEvent::Paint;
        return false;
    }
    /// Handles events until the widget has been painted since now.
    void waitForFrame()
    {
        m_painted = false;
        while (!m_painted) {
            QApplication::processEvents();
        }
    }

private:
    bool m_painted = false;
};

void prepare(QTableView& view)
{
    view.verticalHeader()->setDefaultSectionSize(rowHeight);
    view.verticalHeader()->hide();
    view.resize(tableWidth, tableHeight);
    for (int column = 0; column < 5 && view.model(); ++column) {
        view.setColumnWidth(column, 190);
    }
}

} // namespace

void PlainModel::fill(const std::vector<Group>& groups)
{
    beginResetModel();
    rows.reserve(groups.size());
    for (const Group& group : groups) {
        auto row = boost::make_shared<GroupRow>();
        fillRow(*row, group);
        rows.push_back(std::move(row));
    }
    endResetModel();
}

void PlainModel::clear()
{
    beginResetModel();
    rows = {};
    endResetModel();
}

int PlainModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(rows.size());
}

QVariant PlainModel::data(const QModelIndex& index, int role) const
{
    if (role != Qt::DisplayRole) {
        return {};
    }
    return rows[static_cast<std::size_t>(index.row())]->getDisplayQString(index.column());
}

PlainTable::PlainTable()
{
    view.setModel(&model);
    prepare(view);
    view.show();
    QApplication::processEvents();
}

double PlainTable::fill(const std::vector<Group>& groups)
{
    model.clear();
    QApplication::processEvents();
    PaintWatch watch(view.viewport());
    const auto from = Clock::now();
    model.fill(groups);
    watch.waitForFrame();
    return seconds(from, Clock::now());
}

Table::Table() : table(std::make_unique<WQ::CStandardHpfTable>(1274, nullptr, 255)), model(new GroupModel)
{
    table->setDataModel(model);
    buttons = new WQ::CBaseTableColumnMultiButtonsDelegate(4, nullptr);
    table->setColumnDelegate(4, buttons);
    table->setFlags(table->flags() & ~8);
    table->resize(tableWidth, tableHeight);
    table->show();
    QApplication::processEvents();
}

Table::~Table() = default;

void Table::clear()
{
    model->clear();
    buttons->clear();
    table->clearSort();
    QApplication::processEvents();
}

void Table::addRows(const std::vector<Group>& groups, bool withButtons)
{
    for (const Group& group : groups) {
        auto row = boost::make_shared<GroupRow>();
        fillRow(*row, group);
        model->addData(row);
        if (withButtons) {
            buttons->setItemButtons(row->getKey(), makeButtons());
        }
        table->updateTable();
        table->adjustColumnWidth();
    }
}

double Table::fill(const std::vector<Group>& groups, bool withButtons)
{
    clear();
    PaintWatch watch(table->view()->viewport());
    const auto from = Clock::now();
    addRows(groups, withButtons);
    watch.waitForFrame();
    return seconds(from, Clock::now());
}

double Table::fillOnly(const std::vector<Group>& groups)
{
    clear();
    const auto from = Clock::now();
    addRows(groups, true);
    model->announce();
    // The first question for buttons puts all of them in their places.
    const int found = buttons->itemButtons(model->getDataByRow(0)->getKey()).size();
    const double time = seconds(from, Clock::now());
    if (found != 3) {
        qFatal("the first row has no buttons");
    }
    QApplication::processEvents();
    return time;
}

double fillTableWidget(const std::vector<Group>& groups)
{
    QTableWidget widget(0, 5);
    widget.resize(tableWidth, tableHeight);
    widget.show();
    QApplication::processEvents();
    PaintWatch watch(widget.viewport());
    const auto from = Clock::now();
    widget.setRowCount(static_cast<int>(groups.size()));
    int at = 0;
    for (const Group& group : groups) {
        GroupRow row;
        fillRow(row, group);
        for (int column = 0; column < 4; ++column) {
            widget.setItem(at, column, new QTableWidgetItem(row.getDisplayQString(column)));
        }
        auto* cell = new QWidget;
        auto* layout = new QHBoxLayout(cell);
        layout->setContentsMargins(2, 2, 2, 2);
        const QVector<WQ::ButtonData> buttons = makeButtons();
        for (const WQ::ButtonData& button : buttons) {
            layout->addWidget(new QPushButton(button.text, cell));
        }
        widget.setCellWidget(at++, 4, cell);
    }
    watch.waitForFrame();
    return seconds(from, Clock::now());
}

double sortStandardItems(const std::vector<Group>& groups)
{
    QStandardItemModel model(static_cast<int>(groups.size()), 5);
    int at = 0;
    for (const Group& group : groups) {
        GroupRow row;
        fillRow(row, group);
        for (int column = 0; column < 4; ++column) {
            model.setItem(at, column, new QStandardItem(row.getDisplayQString(column)));
        }
        ++at;
    }
    const auto from = Clock::now();
    model.sort(2);
    return seconds(from, Clock::now());
}

double filterByProxy(const std::vector<Group>& groups, const QString& text)
{
    PlainModel model;
    model.fill(groups);
    QSortFilterProxyModel proxy;
    proxy.setSourceModel(&model);
    proxy.setFilterKeyColumn(0);
    proxy.setFilterCaseSensitivity(Qt::CaseInsensitive);
    QTableView view;
    view.setModel(&proxy);
    const auto from = Clock::now();
    proxy.setFilterFixedString(text);
    return seconds(from, Clock::now());
}

std::size_t heapBytes()
{
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

} // namespace bench
