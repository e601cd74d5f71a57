// SPDX-License-Identifier: Apache-2.0
#include "tests/platform/table/TestRows.h"

#include <boost/make_shared.hpp>

namespace support
{

QString Row::getDisplayQString(int column) const
{
    ++shown;
    switch (column) {
    case Count:
        return QString::number(count);
    case Price:
        return QString::number(price, 'f', 2);
    default:
        return getQStringValue(column);
    }
}

QString Row::getQStringValue(int column) const
{
    switch (column) {
    case Name:
        return name;
    case Place:
        return place;
    default:
        return {};
    }
}

QString Model::getHeaderText(int column) const
{
    static const QStringList texts = {QStringLiteral("名称"), QStringLiteral("数量"), QStringLiteral("地点"),
                                      QStringLiteral("价格"), QStringLiteral("操作")};
    return texts.value(column);
}

int Model::getValueKind(int column) const
{
    switch (column) {
    case Name:
    case Place:
        return WQ::ValueText;
    case Count:
        return WQ::ValueInt;
    case Price:
        return WQ::ValueDouble;
    default:
        return WQ::ValueNone;
    }
}

WQ::HpfColumnEntry Model::getColumnEntry(int column) const
{
    return {column == Buttons ? WQ::HpfColumnEntry::Empty : WQ::HpfColumnEntry::Default};
}

RowPtr Model::add(const QString& key, const QString& name, int count, const QString& place, double price)
{
    auto row = boost::make_shared<Row>(key, name, count, place, price);
    addData(row);
    return row;
}

QStringList Model::texts(int column) const
{
    QStringList texts;
    for (int row = 0; row < rowCount(); ++row) {
        texts.append(index(row, column).data().toString());
    }
    return texts;
}

QStringList Model::keys() const
{
    QStringList keys;
    for (int row = 0; row < rowCount(); ++row) {
        keys.append(getDataByRow(row)->getKey());
    }
    return keys;
}

ShownTable::ShownTable(int tableId, int menuFlags, QSize size)
    : table(std::make_unique<WQ::CStandardHpfTable>(tableId, nullptr, menuFlags))
{
    model = new Model;
    table->setDataModel(model);
    table->setFlags(table->flags() & ~WQ::TableCellSelection);
    for (int column : {Name, Count, Place}) {
        table->setColumnFilterable(column, true);
    }
    buttons = new WQ::CBaseTableColumnMultiButtonsDelegate(Buttons, &sink);
    table->setColumnDelegate(Buttons, buttons);
    view = table->view();
    table->resize(size);
    table->show();
    if (!QTest::qWaitForWindowExposed(table.get())) {
        qFatal("the table is not shown");
    }
    table->activateWindow();
    if (!QTest::qWaitForWindowActive(table.get())) {
        qFatal("the table is not active");
    }
    view->setFocus();
}

void ShownTable::fill(int count)
{
    for (int i = 0; i < count; ++i) {
        const QString key = QStringLiteral("k%1").arg(i);
        model->add(key, QStringLiteral("组%1").arg(i), count - i,
                   i % 2 ? QStringLiteral("上海") : QStringLiteral("北京"), i);
        buttons->setItemButtons(key, {{4, QStringLiteral("编辑"), 1}, {9, QStringLiteral("删除"), 1}});
    }
    table->adjustColumnWidth();
    settle();
}

QRect ShownTable::cell(int row, int column) const
{
    return view->visualRect(model->index(row, column));
}

QPoint ShownTable::buttonAt(int row, int position) const
{
    return buttons->buttonRect(model->index(row, Buttons), cell(row, Buttons), position).center();
}

void ShownTable::press(Qt::Key key, Qt::KeyboardModifiers modifiers) const
{
    QTest::keyClick(view, key, modifiers);
}

void ShownTable::clickHeader(int column) const
{
    QHeaderView* header = table->header();
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {},
                      {header->sectionViewportPosition(column) + 12, header->height() / 2});
}

void ShownTable::settle()
{
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
}

} // namespace support
