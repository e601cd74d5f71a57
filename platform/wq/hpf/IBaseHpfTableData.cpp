// SPDX-License-Identifier: Apache-2.0
#include <WQ/IBaseHpfTableData.h>

namespace WQ
{

IBaseHpfTableData::~IBaseHpfTableData() = default;

QString IBaseHpfTableData::getFilterQString(int column) const
{
    return getDisplayQString(column);
}

QString IBaseHpfTableData::getDisplayUnit(int) const
{
    return {};
}

int IBaseHpfTableData::getIndexFromName(const QString&) const
{
    return -1;
}

QString IBaseHpfTableData::getItemIconKey(int) const
{
    return {};
}

QString IBaseHpfTableData::getItemIconTip(int) const
{
    return {};
}

bool IBaseHpfTableData::isShowUnderTip(int) const
{
    return false;
}

QString IBaseHpfTableData::getUnderTipText(int) const
{
    return {};
}

} // namespace WQ
