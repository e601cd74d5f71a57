// SPDX-License-Identifier: Apache-2.0
#include "panel/CAccountGroupRiskModel.h"

#include "panel/AccountGroupColumn.h"

#include <WQ/ResourceKeys.h>

namespace QAV
{

CAccountGroupRiskModel::CAccountGroupRiskModel(QObject* parent) : IBaseHpfTableModel(true, parent) {}

int CAccountGroupRiskModel::getColumnCount() const
{
    return AccountGroupColumnCount;
}

QString CAccountGroupRiskModel::getHeaderText(int column) const
{
    switch (column) {
    case AccountGroupNameColumn:
        return QStringLiteral("账号组名");
    case AccountCountColumn:
        return QStringLiteral("账号数量");
    case InstitutionColumn:
        return QStringLiteral("所属机构");
    case ServerColumn:
        return QStringLiteral("分系统");
    case OperationColumn:
        return QStringLiteral("操作");
    default:
        return {};
    }
}

int CAccountGroupRiskModel::getValueKind(int column) const
{
    switch (column) {
    case AccountGroupNameColumn:
    case InstitutionColumn:
    case ServerColumn:
        return WQ::ValueText;
    case AccountCountColumn:
    case OperationColumn:
        return WQ::ValueInt;
    default:
        return WQ::ValueNone;
    }
}

QString CAccountGroupRiskModel::getHeaderTip(int) const
{
    return {};
}

bool CAccountGroupRiskModel::isColumnWidthFixed(int) const
{
    return false;
}

QString CAccountGroupRiskModel::getRowBackgroundKey(int row) const
{
    return row % 2 == 1 ? WQ::key::TableBackground2 : WQ::key::TableBackground;
}

int CAccountGroupRiskModel::getColumnFlags(int) const
{
    return 0;
}

WQ::HpfColumnEntry CAccountGroupRiskModel::getColumnEntry(int column) const
{
    WQ::HpfColumnEntry entry;
    if (column == OperationColumn) {
        entry.kind = WQ::HpfColumnEntry::Empty;
    }
    return entry;
}

QVariant CAccountGroupRiskModel::getCellData(const WQ::IBaseHpfTableData& data, int row, int column, int role) const
{
    return IBaseHpfTableModel::getCellData(data, row, column, role);
}

} // namespace QAV
