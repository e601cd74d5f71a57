// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/IBaseHpfTableModel.h>

namespace Example
{

/// The columns of the list; its rows are CAccountRow.
class CAccountListModel : public WQ::IBaseHpfTableModel
{
    Q_OBJECT

public:
    CAccountListModel();

    int getColumnCount() const override;
    QString getHeaderText(int column) const override;
    int getValueKind(int column) const override;
};

} // namespace Example
