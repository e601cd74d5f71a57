// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "history/RecordText.h"

#include <WQ/IBaseHpfTableData.h>

#include <boost/shared_ptr.hpp>

namespace QAV
{

/// Two states of a record; null where it did not exist.
struct RecordPair {
    nvservice::IDataPtr before;
    nvservice::IDataPtr after;
};

/// Records side by side, line by line.
class CComparison
{
public:
    explicit CComparison(std::vector<RecordPair> pairs);

    const std::vector<RecordPair>& pairs() const { return m_pairs; }
    int lineCount() const { return static_cast<int>(m_lines.size()); }
    int changedCount() const;
    /// The line is of a record that is compared with itself.
    bool isOneState(int index) const { return m_pairs[at(index).pair].before == m_pairs[at(index).pair].after; }
    const DiffLine& line(int index) const { return m_lines[static_cast<std::size_t>(index)].diff; }
    QString textBefore(int index, const CategoryNames& categories) const;
    QString textAfter(int index, const CategoryNames& categories) const;

private:
    struct Line {
        std::size_t pair;
        DiffLine diff;
    };
    const Line& at(int index) const { return m_lines[static_cast<std::size_t>(index)]; }

    std::vector<RecordPair> m_pairs;
    std::vector<Line> m_lines;
};

enum EComparisonColumn { AreaColumn, ChangeColumn, BeforeColumn, AfterColumn, ComparisonColumnCount };

/// A line of a comparison. Its texts are made when they are shown.
class CComparisonRow final : public WQ::IBaseHpfTableData
{
public:
    /// @param categories  must outlive the row
    CComparisonRow(boost::shared_ptr<const CComparison> comparison, int index, const CategoryNames& categories);

    QString getKey() const override { return QString::number(m_index); }
    QString getDisplayQString(int column) const override;
    QString getQStringValue(int column) const override { return getDisplayQString(column); }
    int getIntValue(int) const override { return InvalidInt; }
    double getDoubleValue(int) const override { return InvalidDouble; }
    std::int64_t getInt64Value(int) const override { return InvalidInt64; }
    QColor getTextColor(int column) const override;

private:
    const boost::shared_ptr<const CComparison> m_comparison;
    const int m_index;
    const CategoryNames& m_categories;
};

/// The fields of the documents of both records, side by side: path, change, before and after, as rows of texts.
std::vector<WQ::IBaseHpfTableDataPtr> rawRows(const std::vector<RecordPair>& pairs);

} // namespace QAV
