// SPDX-License-Identifier: Apache-2.0
#include "CAccountListModel.h"

#include "CAccountRow.h"

namespace Example
{

CAccountListModel::CAccountListModel() : IBaseHpfTableModel(true) {}

int CAccountListModel::getColumnCount() const
{
    return AccountColumnCount;
}

QString CAccountListModel::getHeaderText(int column) const
{
    static const QStringList texts{QStringLiteral("账号"), QStringLiteral("名称"), QStringLiteral("类型"),
                                   QStringLiteral("所属机构"), QStringLiteral("分系统")};
    return texts.value(column);
}

int CAccountListModel::getValueKind(int) const
{
    return WQ::ValueText;
}

} // namespace Example
