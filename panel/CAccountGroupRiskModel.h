// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/IBaseHpfTableModel.h>

namespace QAV
{

/// The columns of the account group table; its rows are CAccountGroupRiskMainData.
class CAccountGroupRiskModel final : public WQ::IBaseHpfTableModel
{
    Q_OBJECT

public:
    explicit CAccountGroupRiskModel(QObject* parent = nullptr);

    int getColumnCount() const override;
    QString getHeaderText(int column) const override;
    int getValueKind(int column) const override;
    QString getHeaderTip(int column) const override;
    bool isColumnWidthFixed(int column) const override;
    QString getRowBackgroundKey(int row) const override;
    int getColumnFlags(int column) const override;
    WQ::HpfColumnEntry getColumnEntry(int column) const override;
    QVariant getCellData(const WQ::IBaseHpfTableData& data, int row, int column, int role) const override;
};

} // namespace QAV
