// SPDX-License-Identifier: Apache-2.0
#include <WQ/CBaseTableColumnDelegate.h>

#include <WQ/CStandardHpfTable.h>

namespace WQ
{

struct CBaseTableColumnDelegate::Private {
    int column;
    CStandardHpfTable* table = nullptr;
};

CBaseTableColumnDelegate::CBaseTableColumnDelegate(int column, QObject* parent)
    : QStyledItemDelegate(parent), m_d(new Private{column})
{
}

CBaseTableColumnDelegate::~CBaseTableColumnDelegate() = default;

CStandardHpfTable* CBaseTableColumnDelegate::table() const
{
    return m_d->table;
}

int CBaseTableColumnDelegate::column() const
{
    return m_d->column;
}

void CBaseTableColumnDelegate::setTable(CStandardHpfTable* table)
{
    m_d->table = table;
}

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
    if (m_d->table) {
        m_d->table->updateTable();
    }
}

} // namespace WQ
