// SPDX-License-Identifier: Apache-2.0
#include <WQ/CBaseTableColumnDelegate.h>

#include <WQ/CStandardHpfTable.h>

namespace WQ
{

CBaseTableColumnDelegate::CBaseTableColumnDelegate(int column, QObject* parent)
    : QStyledItemDelegate(parent), m_column(column)
{
}

CBaseTableColumnDelegate::~CBaseTableColumnDelegate() = default;

void CBaseTableColumnDelegate::clear() {}

int CBaseTableColumnDelegate::contentWidth(const QModelIndex& index) const
{
    return sizeHint(QStyleOptionViewItem(), index).width();
}

QString CBaseTableColumnDelegate::accessibleText(const QModelIndex& index) const
{
    return index.data(Qt::DisplayRole).toString();
}

QString CBaseTableColumnDelegate::toolTipAt(const QModelIndex&, const QRect&, const QPoint&) const
{
    return {};
}

bool CBaseTableColumnDelegate::mouseEvent(QMouseEvent*, const QModelIndex&, const QRect&)
{
    return false;
}

void CBaseTableColumnDelegate::mouseLeft() {}

bool CBaseTableColumnDelegate::keyEvent(QKeyEvent*, const QModelIndex&)
{
    return false;
}

void CBaseTableColumnDelegate::currentChanged(bool, bool) {}

void CBaseTableColumnDelegate::requestRepaint()
{
    if (m_table) {
        m_table->updateTable();
    }
}

} // namespace WQ
