// SPDX-License-Identifier: Apache-2.0
#include "hpf/CSortRanks.h"

#include "hpf/HpfModelPrivate.h"

#include <WQ/IBaseHpfTableModel.h>
#include <WQ/Pinyin.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace WQ
{

namespace
{

/// Something that sorts as a record's value does; a text's key goes on in the arena behind the first eight bytes.
struct Entry {
    std::uint64_t head;
    std::uint32_t row;
};

std::uint64_t ordered(std::int64_t value)
{
    return static_cast<std::uint64_t>(value) ^ (1ull << 63);
}

std::uint64_t ordered(double value, double tick)
{
    if (std::isnan(value)) {
        return ~0ull;
    }
    if (tick > 0 && std::abs(value) < IBaseHpfTableData::InvalidDouble) {
        value = std::round(value / tick);
    }
    if (value == 0) {
        value = 0; // minus zero is zero
    }
    std::uint64_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    return bits >> 63 ? ~bits : bits | (1ull << 63);
}

class CTextKeys
{
public:
    explicit CTextKeys(std::size_t count) { m_ends.reserve(count); }

    std::uint64_t add(const QString& text)
    {
        const QByteArray key = pinyinSortKey(text);
        std::uint64_t head = 0;
        const auto size = static_cast<std::size_t>(key.size());
        for (std::size_t i = 0; i < sizeof head; ++i) {
            head = head << 8 | (i < size ? static_cast<unsigned char>(key.at(static_cast<int>(i))) : 0u);
        }
        m_bytes.insert(m_bytes.end(), key.constBegin(), key.constEnd());
        m_ends.push_back(m_bytes.size());
        return head;
    }

    int compare(std::uint32_t left, std::uint32_t right) const
    {
        const std::size_t leftBegin = left == 0 ? 0 : m_ends[left - 1];
        const std::size_t rightBegin = right == 0 ? 0 : m_ends[right - 1];
        const std::size_t leftSize = m_ends[left] - leftBegin;
        const std::size_t rightSize = m_ends[right] - rightBegin;
        const int result =
            std::memcmp(m_bytes.data() + leftBegin, m_bytes.data() + rightBegin, std::min(leftSize, rightSize));
        if (result != 0) {
            return result;
        }
        return leftSize < rightSize ? -1 : leftSize > rightSize ? 1 : 0;
    }

private:
    std::vector<char> m_bytes;
    std::vector<std::size_t> m_ends;
};

template <typename Less, typename Same>
void rank(std::vector<Entry>& entries, CSortRanks& out, Less less, Same same)
{
    std::sort(entries.begin(), entries.end(), less);
    out.ranks.resize(entries.size());
    for (std::size_t i = 0; i < entries.size(); ++i) {
        if (i == 0 || !same(entries[i - 1], entries[i])) {
            ++out.rankCount;
        }
        out.ranks[entries[i].row] = out.rankCount - 1;
    }
}

} // namespace

CSortRanks CSortRanks::of(const IBaseHpfTableModel& model, int column, int count)
{
    CSortRanks out;
    out.column = column;
    const HpfRecords& records = HpfModelPrivate::of(model).records;
    const auto size = static_cast<std::size_t>(count);
    std::vector<Entry> entries(size);
    const int kind = model.getValueKind(column);
    if (kind == ValueText) {
        CTextKeys keys(size);
        for (std::size_t row = 0; row < size; ++row) {
            entries[row] = {keys.add(records[row]->getQStringValue(column)), static_cast<std::uint32_t>(row)};
        }
        rank(
            entries, out,
            [&keys](const Entry& a, const Entry& b) {
                return a.head != b.head ? a.head < b.head : keys.compare(a.row, b.row) < 0;
            },
            [&keys](const Entry& a, const Entry& b) { return a.head == b.head && keys.compare(a.row, b.row) == 0; });
        return out;
    }
    const double tick = model.getCompareTick(column);
    for (std::size_t row = 0; row < size; ++row) {
        const IBaseHpfTableData& record = *records[row];
        std::uint64_t head = 0;
        if (kind == ValueInt) {
            head = ordered(static_cast<std::int64_t>(record.getIntValue(column)));
        } else if (kind == ValueInt64) {
            head = ordered(record.getInt64Value(column));
        } else if (kind == ValueDouble) {
            head = ordered(record.getDoubleValue(column), tick);
        }
        entries[row] = {head, static_cast<std::uint32_t>(row)};
    }
    rank(
        entries, out, [](const Entry& a, const Entry& b) { return a.head < b.head; },
        [](const Entry& a, const Entry& b) { return a.head == b.head; });
    return out;
}

std::vector<std::uint32_t> CSortRanks::order(bool descending) const
{
    std::vector<std::uint32_t> begin(static_cast<std::size_t>(rankCount) + 1, 0);
    const std::uint32_t top = rankCount - 1;
    for (std::uint32_t rank : ranks) {
        ++begin[(descending ? top - rank : rank) + 1];
    }
    for (std::size_t i = 1; i < begin.size(); ++i) {
        begin[i] += begin[i - 1];
    }
    std::vector<std::uint32_t> rows(ranks.size());
    for (std::size_t row = 0; row < ranks.size(); ++row) {
        const std::uint32_t rank = descending ? top - ranks[row] : ranks[row];
        rows[begin[rank]++] = static_cast<std::uint32_t>(row);
    }
    return rows;
}

} // namespace WQ
