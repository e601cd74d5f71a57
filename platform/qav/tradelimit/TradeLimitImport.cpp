// SPDX-License-Identifier: Apache-2.0
#include "tradelimit/TradeLimitImport.h"

#include "tradelimit/TradeLimitChecks.h"

#include <WQ/StringConversion.h>
#include <utils/CCsvReader.h>
#include <utils/TextEncoding.h>

#include <QCoreApplication>
#include <QFile>

#include <array>
#include <unordered_map>

namespace QAV
{

namespace
{

using nvservice::EZVRCDirection;
using nvservice::EZVRCListKind;

constexpr qint64 MaxFileSize = qint64(64) * 1024 * 1024;

enum EField { CodeField, NameField, ListField, DirectionField, FieldCount };

struct Word {
    const char* text;
    int value;
};

constexpr Word HeaderWords[] = {
    {"证券代码", CodeField}, {"代码", CodeField},      {"合约代码", CodeField},      {"合约", CodeField},
    {"code", CodeField},     {"证券名称", NameField},  {"名称", NameField},          {"合约名称", NameField},
    {"name", NameField},     {"名单", ListField},      {"名单类型", ListField},      {"黑白名单", ListField},
    {"list", ListField},     {"方向", DirectionField}, {"买卖方向", DirectionField}, {"direction", DirectionField}};

constexpr Word ListWords[] = {{"黑名单", int(EZVRCListKind::Black)}, {"黑", int(EZVRCListKind::Black)},
                              {"black", int(EZVRCListKind::Black)},  {"白名单", int(EZVRCListKind::White)},
                              {"白", int(EZVRCListKind::White)},     {"white", int(EZVRCListKind::White)}};

constexpr Word DirectionWords[] = {{"双向", int(EZVRCDirection::Both)}, {"买卖", int(EZVRCDirection::Both)},
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

/// The cell of each field; -1 if there is none.
using Places = std::array<int, FieldCount>;

/// Returns true if the row is a header; `places` is then the order of the fields.
bool readHeader(const utils::CsvRow& row, Places& places)
{
    Places found{-1, -1, -1, -1};
    for (int cell = 0; cell < row.values.size(); ++cell) {
        const Word* const word = findWord(HeaderWords, row.values.at(cell).trimmed());
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

    TradeLimitImport run(const QString& text, QChar separator)
    {
        utils::CCsvReader reader(text, separator);
        utils::CsvRow row;
        bool hasRow = reader.next(row);
        if (hasRow && readHeader(row, m_places)) {
            hasRow = reader.next(row);
        }
        for (; hasRow; hasRow = reader.next(row)) {
            take(row);
        }
        if (!reader.error().isSuccess()) {
            m_import = {};
            m_import.problem = QString::fromStdString(reader.error().errorMsg());
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
        nvservice::CTradeLimitEntry entry = m_defaults.entry;
        entry.securityCode = WQ::qsToS(code);
        entry.securityName = WQ::qsToS(name);
        QString problem =
            readWord(row, ListField, ListWords,
                     QCoreApplication::translate("QAV", "“%1”不是名单，请填写黑名单或白名单"), entry.listKind);
        if (problem.isEmpty()) {
            problem =
                readWord(row, DirectionField, DirectionWords,
                         QCoreApplication::translate("QAV", "“%1”不是方向，请填写双向、买入或卖出"), entry.direction);
        }
        if (problem.isEmpty() && entry.direction != EZVRCDirection::Both && !hasDirection(m_book.traderType())) {
            problem = QCoreApplication::translate("QAV", "该类账号的名单不区分方向");
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
        const QString result =
            accepted ? QCoreApplication::translate("QAV", "加入%1").arg(listKindName(entry.listKind)) : problem;
        m_import.rows.push_back({row.line, shortened(code), shortened(name), accepted, result});
        if (accepted) {
            m_import.entries.push_back(std::move(entry));
        }
    }

    /// Reads a cell that is one of `words`, if it is not empty. Returns the problem.
    template <typename Words, typename Enum>
    QString readWord(const utils::CsvRow& row, EField field, const Words& words, const QString& problem,
                     Enum& value) const
    {
        const QString text = cellOf(row, m_places[field]);
        const Word* const word = findWord(words, text);
        if (!word) {
            return text.isEmpty() ? QString() : problem.arg(shortened(text));
        }
        value = Enum(word->value);
        return {};
    }

    /// The problem of a row that repeats or contradicts an earlier row.
    QString repetition(int line, const nvservice::CTradeLimitEntry& entry)
    {
        const auto [above, isNew] =
            m_above.emplace(CTradeLimitBook::folded(entry.securityCode), std::make_pair(line, entry.listKind));
        if (isNew) {
            return {};
        }
        const auto [aboveLine, aboveList] = above->second;
        if (aboveList == entry.listKind) {
            return QCoreApplication::translate("QAV", "与第%1行重复").arg(aboveLine);
        }
        return QCoreApplication::translate("QAV", "第%1行已将该证券加入%2，同一证券不能同时在黑名单和白名单中")
            .arg(QString::number(aboveLine), listKindName(aboveList));
    }

    const CTradeLimitBook& m_book;
    const TradeLimitImportDefaults& m_defaults;
    Places m_places{0, 1, 2, 3};
    TradeLimitImport m_import;
    std::unordered_map<std::string, std::pair<int, EZVRCListKind>> m_above;
};

} // namespace

TradeLimitImport readTradeLimits(const QString& text, QChar separator, const CTradeLimitBook& book,
                                 const TradeLimitImportDefaults& defaults)
{
    return CReader(book, defaults).run(text, separator);
}

QString readTextFile(const QString& fileName, QString& text)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        return QCoreApplication::translate("QAV", "无法读取文件“%1”：%2").arg(fileName, file.errorString());
    }
    if (file.size() > MaxFileSize) {
        return QCoreApplication::translate("QAV", "文件“%1”过大").arg(fileName);
    }
    const utils::NVError error = utils::decodeText(file.readAll(), utils::ETextEncoding::Detected, text);
    if (error.isSuccess()) {
        return {};
    }
    const bool isAmbiguous = error.code() == utils::EErrorCode::Conflict;
    const QString advice =
        isAmbiguous ? QCoreApplication::translate("QAV", "，无法判断。请另存为“CSV UTF-8”后再导入") : QString();
    return QCoreApplication::translate("QAV", "“%1”：%2%3")
        .arg(fileName, QString::fromStdString(error.errorMsg()), advice);
}

} // namespace QAV
