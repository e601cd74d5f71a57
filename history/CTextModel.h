// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/IBaseHpfTableModel.h>

#include <QStringList>

namespace QAV
{

/// A model whose columns are texts, and at most one that has buttons.
class CTextModel final : public WQ::IBaseHpfTableModel
{
    Q_OBJECT

public:
    /// @param buttonColumn  is neither listed nor exported; -1: there is none
    explicit CTextModel(const QStringList& headers, int buttonColumn = -1)
        : IBaseHpfTableModel(true), m_headers(headers), m_buttonColumn(buttonColumn)
    {
    }

    int getColumnCount() const override { return m_headers.size(); }
    QString getHeaderText(int column) const override { return m_headers.value(column); }
    int getValueKind(int) const override { return WQ::ValueText; }
    WQ::HpfColumnEntry getColumnEntry(int column) const override;

    /// Replaces the header texts; as many as before.
    void setHeaders(const QStringList& headers);
    /// Replaces all rows. The filters of the columns stay, which `clear` would drop.
    void replaceRows(const std::vector<WQ::IBaseHpfTableDataPtr>& rows);

private:
    QStringList m_headers;
    const int m_buttonColumn;
};

} // namespace QAV
