// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tradelimit/CTradeLimitRow.h"

#include <WQ/IBaseHpfTableModel.h>

namespace QAV
{

/// The columns of a black and white list.
class CTradeLimitModel : public WQ::IBaseHpfTableModel
{
    Q_OBJECT

public:
    CTradeLimitModel() : IBaseHpfTableModel(true) {}

    int getColumnCount() const override { return TradeLimitColumnCount; }
    QString getHeaderText(int column) const override;
    int getValueKind(int) const override { return WQ::ValueText; }
    int getColumnFlags(int column) const override;
    WQ::HpfColumnEntry getColumnEntry(int column) const override;

    /// Replaces all rows; filters and sorting stay.
    void setRows(const CTradeLimitRows& rows);
};

} // namespace QAV
