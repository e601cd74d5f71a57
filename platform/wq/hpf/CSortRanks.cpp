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

/// Sorts like the value of a record. The key of a text continues behind its first eight bytes.
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

/// The first eight bytes of a text's key.
std::uint64_t headOf(const QByteArray& key)
{
    std::uint64_t head = 0;
    for (int i = 0; i < static_cast<int>(sizeof head); ++i) {
        head = head << 8 | (i < key.size() ? static_cast<unsigned char>(key.at(i)) : 0u);
    }
    return head;
}

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
        std::vector<QByteArray> keys(size);
        for (std::size_t row = 0; row < size; ++row) {
            keys[row] = pinyinSortKey(records[row]->getQStringValue(column));
            entries[row] = {headOf(keys[row]), static_cast<std::uint32_t>(row)};
        }
        rank(
            entries, out,
            [&keys](const Entry& a, const Entry& b) {
                return a.head != b.head ? a.head < b.head : keys[a.row] < keys[b.row];
            },
            [&keys](const Entry& a, const Entry& b) { return a.head == b.head && keys[a.row] == keys[b.row]; });
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
