// SPDX-License-Identifier: Apache-2.0
#include "tradelimit/TradeLimitImport.h"

#include "tradelimit/TradeLimitChecks.h"

#include <WQ/StringConversion.h>

#include <array>
#include <unordered_map>

namespace QAV
{

namespace
{

using nvservice::EZVRCDirection;
using nvservice::EZVRCListKind;

enum EField { CodeField, NameField, ListField, DirectionField, FieldCount };

struct Word {
    const char* text;
    int value;
};

constexpr Word headerWords[] = {
    {"证券代码", CodeField}, {"代码", CodeField},      {"合约代码", CodeField},      {"合约", CodeField},
    {"code", CodeField},     {"证券名称", NameField},  {"名称", NameField},          {"合约名称", NameField},
    {"name", NameField},     {"名单", ListField},      {"名单类型", ListField},      {"黑白名单", ListField},
    {"list", ListField},     {"方向", DirectionField}, {"买卖方向", DirectionField}, {"direction", DirectionField}};

constexpr Word listWords[] = {{"黑名单", int(EZVRCListKind::Black)}, {"黑", int(EZVRCListKind::Black)},
                              {"black", int(EZVRCListKind::Black)},  {"白名单", int(EZVRCListKind::White)},
                              {"白", int(EZVRCListKind::White)},     {"white", int(EZVRCListKind::White)}};

constexpr Word directionWords[] = {{"双向", int(EZVRCDirection::Both)}, {"买卖", int(EZVRCDirection::Both)},
                                   {"全部", int(EZVRCDirection::Both)}, {"both", int(EZVRCDirection::Both)},
                                   {"买入", int(EZVRCDirection::Buy)},  {"买", int(EZVRCDirection::Buy)},
                                   {"buy", int(EZVRCDirection::Buy)},   {"卖出", int(EZVRCDirection::Sell)},
                                   {"卖", int(EZVRCDirection::Sell)},   {"sell", int(EZVRCDirection::Sell)}};

template <std::size_t N>
const Word* findWord(const Word (&words)[N], const QString& text)
{
    for (const Word& word : words) {
        if (text.compare(QString::fromUtf8(word.text), Qt::CaseInsensitive) == 0) {
            return &word;
        }
    }
    return nullptr;
}

/// The cell of each field, -1: none.
using Places = std::array<int, FieldCount>;

/// Whether the row is a row of headers, and then what stands where.
bool readHeader(const utils::CsvRow& row, Places& places)
{
    Places found{-1, -1, -1, -1};
    for (int cell = 0; cell < row.values.size(); ++cell) {
        const Word* const word = findWord(headerWords, row.values.at(cell).trimmed());
        if (word && found[std::size_t(word->value)] < 0) {
            found[std::size_t(word->value)] = cell;
        }
    }
    if (found[CodeField] < 0) {
        return false;
    }
    places = found;
    return true;
}

QString cellOf(const utils::CsvRow& row, int place)
{
    return place < 0 ? QString() : row.values.value(place).trimmed();
}

QString shortened(const QString& text)
{
    return text.size() <= MaxSecurityNameLength ? text : text.left(MaxSecurityNameLength) + QStringLiteral("…");
}

class CReader
{
public:
    CReader(const CTradeLimitBook& book, const TradeLimitImportDefaults& defaults) : m_book(book), m_defaults(defaults)
    {
    }

    TradeLimitImport run(const std::vector<utils::CsvRow>& rows)
    {
        auto row = rows.begin();
        if (row != rows.end() && readHeader(*row, m_places)) {
            ++row;
        }
        m_import.rows.reserve(rows.size());
        for (; row != rows.end(); ++row) {
            take(*row);
        }
        return std::move(m_import);
    }

private:
    void take(const utils::CsvRow& row)
    {
        const QString code = cellOf(row, m_places[CodeField]);
        QString name = cellOf(row, m_places[NameField]);
        if (name.isEmpty() && m_defaults.nameOf) {
            name = m_defaults.nameOf(code);
        }
        nvservice::CTradeLimitEntry entry;
        entry.securityCode = WQ::qsToS(code);
        entry.securityName = WQ::qsToS(name);
        entry.listKind = m_defaults.listKind;
        entry.direction = m_defaults.direction;
        QString problem = readList(cellOf(row, m_places[ListField]), entry);
        if (problem.isEmpty()) {
            problem = readDirection(cellOf(row, m_places[DirectionField]), entry);
        }
        if (problem.isEmpty()) {
            problem = entryProblem(m_book, entry);
        }
        if (problem.isEmpty() && m_defaults.isUnknown && m_defaults.isUnknown(code)) {
            problem = unknownSecurity(code);
        }
        if (problem.isEmpty()) {
            problem = repetition(row.line, entry);
        }

        const bool accepted = problem.isEmpty();
        const QString result = accepted ? QStringLiteral("加入%1").arg(listKindName(entry.listKind)) : problem;
        m_import.rows.push_back({row.line, shortened(code), shortened(name), accepted, result});
        if (accepted) {
            m_import.entries.push_back(std::move(entry));
        }
    }

    QString readList(const QString& text, nvservice::CTradeLimitEntry& entry) const
    {
        if (text.isEmpty()) {
            return {};
        }
        const Word* const word = findWord(listWords, text);
        if (!word) {
            return QStringLiteral("“%1”不是名单，请填写黑名单或白名单").arg(shortened(text));
        }
        entry.listKind = EZVRCListKind(word->value);
        return {};
    }

    QString readDirection(const QString& text, nvservice::CTradeLimitEntry& entry) const
    {
        if (text.isEmpty()) {
            return {};
        }
        const Word* const word = findWord(directionWords, text);
        if (!word) {
            return QStringLiteral("“%1”不是方向，请填写双向、买入或卖出").arg(shortened(text));
        }
        entry.direction = EZVRCDirection(word->value);
        if (entry.direction != EZVRCDirection::Both && !hasDirection(m_book.traderType())) {
            return QStringLiteral("该类账号的名单不区分方向");
        }
        return {};
    }

    /// A row that repeats, or contradicts, one above it.
    QString repetition(int line, const nvservice::CTradeLimitEntry& entry)
    {
        const auto [above, isNew] =
            m_above.emplace(CTradeLimitBook::folded(entry.securityCode), std::make_pair(line, entry.listKind));
        if (isNew) {
            return {};
        }
        const auto [aboveLine, aboveList] = above->second;
        if (aboveList == entry.listKind) {
            return QStringLiteral("与第%1行重复").arg(aboveLine);
        }
        return QStringLiteral("第%1行已将该证券加入%2，同一证券不能同时在黑名单和白名单中")
            .arg(QString::number(aboveLine), listKindName(aboveList));
    }

    const CTradeLimitBook& m_book;
    const TradeLimitImportDefaults& m_defaults;
    Places m_places{0, 1, 2, 3};
    TradeLimitImport m_import;
    std::unordered_map<std::string, std::pair<int, EZVRCListKind>> m_above;
};

} // namespace

TradeLimitImport readTradeLimits(const std::vector<utils::CsvRow>& rows, const CTradeLimitBook& book,
                                 const TradeLimitImportDefaults& defaults)
{
    return CReader(book, defaults).run(rows);
}

} // namespace QAV
