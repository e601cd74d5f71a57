// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/IBaseHpfTableData.h>
#include <nvservice/CKolmAccountInfo.h>

namespace Example
{

enum AccountColumn { IdColumn, NameColumn, TypeColumn, InstitutionColumn, ServerColumn, AccountColumnCount };

/// One row of the list: an account.
class CAccountRow : public WQ::IBaseHpfTableData
{
public:
    explicit CAccountRow(const nvservice::CKolmAccountInfo& record);

    QString getKey() const override { return m_key; }
    QString getDisplayQString(int column) const override;
    QString getQStringValue(int column) const override { return getDisplayQString(column); }
    QColor getTextColor(int column) const override;
    // No column is a number.
    int getIntValue(int) const override { return InvalidInt; }
    double getDoubleValue(int) const override { return InvalidDouble; }
    std::int64_t getInt64Value(int) const override { return InvalidInt64; }

private:
    QString m_key;
    QString m_texts[AccountColumnCount];
};

} // namespace Example
