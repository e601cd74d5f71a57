// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/IBaseHpfTableData.h>
#include <nvservice/IData.h>

#include <QStringList>

namespace QAV
{

/// A row of texts, with the record that it shows.
class CTextRow : public WQ::IBaseHpfTableData
{
public:
    /// @param colourKey  of the theme, for all texts; empty: that of texts
    CTextRow(const QString& key, const QStringList& texts, nvservice::IDataPtr record = {},
             const QString& colourKey = {});

    QString getKey() const override { return m_key; }
    QString getDisplayQString(int column) const override { return m_texts.value(column); }
    QString getQStringValue(int column) const override { return m_texts.value(column); }
    int getIntValue(int) const override { return InvalidInt; }
    double getDoubleValue(int) const override { return InvalidDouble; }
    std::int64_t getInt64Value(int) const override { return InvalidInt64; }
    QColor getTextColor(int column) const override;

    const nvservice::IDataPtr& record() const { return m_record; }

private:
    const QString m_key;
    const QStringList m_texts;
    const nvservice::IDataPtr m_record;
    const QString m_colourKey;
};

} // namespace QAV
