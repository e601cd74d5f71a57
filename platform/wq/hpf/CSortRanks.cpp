// SPDX-License-Identifier: Apache-2.0
#include "hpf/CSortRanks.h"

#include "hpf/HpfModelPrivate.h"

#include <WQ/IBaseHpfTableModel.h>
#include <WQ/Pinyin.h>

#include <QtEndian>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <string>

namespace WQ
{

namespace
{

/// A record by its value, or by the next bytes of its key.
struct Entry {
    std::uint64_t value;
    std::uint32_t record;
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

bool isLess(const Entry& a, const Entry& b)
{
    return a.value < b.value;
}

/// The keys of texts in one block of bytes.
class CTextKeys
{
public:
    /// A value holds so many bytes of a key, and their number.
    static constexpr std::size_t BytesPerValue = 7;

    explicit CTextKeys(std::size_t count) { m_keys.reserve(count); }

    void append(const QString& text)
    {
        // Many records share one text: an institution, a server.
        Known& known =
            m_known[reinterpret_cast<std::uintptr_t>(text.constData()) / alignof(std::max_align_t) % m_known.size()];
        if (!known.text.isSharedWith(text)) {
            const QByteArray key = pinyinSortKey(text);
            known = {text, {m_bytes.size(), static_cast<std::size_t>(key.size())}};
            m_bytes.append(key.constData(), known.key.size);
        }
        m_keys.push_back(known.key);
    }

    /// The bytes from `offset`. A key that ends before another one has the smaller value.
    std::uint64_t value(std::uint32_t record, std::size_t offset) const
    {
        const Key& key = m_keys[record];
        const std::size_t size = std::min(key.size - offset, BytesPerValue);
        quint64 bytes = 0;
        std::memcpy(&bytes, m_bytes.data() + key.begin + offset, size);
        return qFromBigEndian(bytes) | size;
    }

private:
    struct Key {
        std::size_t begin = 0;
        std::size_t size = 0;
    };
    struct Known {
        QString text;
        Key key;
    };

    std::string m_bytes;
    std::vector<Key> m_keys;
    std::array<Known, 256> m_known;
};

CSortRanks ranksOf(const std::vector<Entry>& entries, const std::vector<char>& isRepeated)
{
    CSortRanks out;
    out.ranks.resize(entries.size());
    for (std::size_t i = 0; i < entries.size(); ++i) {
        out.rankCount += isRepeated[i] ? 0 : 1;
        out.ranks[entries[i].record] = out.rankCount - 1;
    }
    return out;
}

/// Sorts by the first bytes of the keys, then those that are equal so far by the next bytes, and so on: a comparison
/// never has to fetch a key.
CSortRanks ofTexts(const HpfRecords& records, int column, std::size_t count)
{
    std::vector<Entry> entries(count);
    CTextKeys keys(count);
    for (std::size_t record = 0; record < count; ++record) {
        keys.append(records[record]->getQStringValue(column));
        entries[record].record = static_cast<std::uint32_t>(record);
    }
    struct Open {
        std::size_t begin;
        std::size_t end;
        std::size_t offset; ///< of the key's bytes that are still to compare
    };
    std::vector<char> isRepeated(entries.size(), 0);
    std::vector<Open> open{{0, entries.size(), 0}};
    while (!open.empty()) {
        const auto [begin, end, offset] = open.back();
        open.pop_back();
        for (std::size_t i = begin; i < end; ++i) {
            entries[i].value = keys.value(entries[i].record, offset);
        }
        const auto from = entries.begin() + static_cast<std::ptrdiff_t>(begin);
        const auto to = entries.begin() + static_cast<std::ptrdiff_t>(end);
        if (!std::is_sorted(from, to, isLess)) { // long texts that begin alike are equal for several rounds
            std::sort(from, to, isLess);
        }
        for (std::size_t first = begin, next = begin; first < end; first = next) {
            while (next < end && entries[next].value == entries[first].value) {
                ++next;
            }
            if (next - first == 1) {
                continue;
            }
            if (entries[first].value % 256 == CTextKeys::BytesPerValue) {
                open.push_back({first, next, offset + CTextKeys::BytesPerValue});
            } else {
                std::fill_n(isRepeated.begin() + static_cast<std::ptrdiff_t>(first) + 1, next - first - 1, 1);
            }
        }
    }
    return ranksOf(entries, isRepeated);
}

CSortRanks ofNumbers(const HpfRecords& records, int column, std::size_t count, int kind, double tick)
{
    std::vector<Entry> entries(count);
    for (std::size_t i = 0; i < count; ++i) {
        const IBaseHpfTableData& record = *records[i];
        std::uint64_t value = 0;
        if (kind == ValueInt) {
            value = ordered(static_cast<std::int64_t>(record.getIntValue(column)));
        } else if (kind == ValueInt64) {
            value = ordered(record.getInt64Value(column));
        } else if (kind == ValueDouble) {
            value = ordered(record.getDoubleValue(column), tick);
        }
        entries[i] = {value, static_cast<std::uint32_t>(i)};
    }
    std::sort(entries.begin(), entries.end(), isLess);
    std::vector<char> isRepeated(count, 0);
    for (std::size_t i = 1; i < count; ++i) {
        isRepeated[i] = entries[i - 1].value == entries[i].value;
    }
    return ranksOf(entries, isRepeated);
}

} // namespace

CSortRanks CSortRanks::of(const IBaseHpfTableModel& model, int column, int count)
{
    const HpfRecords& records = HpfModelPrivate::of(model).records;
    const auto size = static_cast<std::size_t>(count);
    const int kind = model.getValueKind(column);
    CSortRanks out = kind == ValueText ? ofTexts(records, column, size)
                                       : ofNumbers(records, column, size, kind, model.getCompareTick(column));
    out.column = column;
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
