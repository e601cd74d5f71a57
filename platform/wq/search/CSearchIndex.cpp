// SPDX-License-Identifier: Apache-2.0
#include <WQ/CSearchIndex.h>

#include "pinyin/SearchKeys.h"
#include "search/MixedMatch.h"

#include <QStringList>

#include <algorithm>
#include <cstring>
#include <numeric>
#include <string_view>

namespace WQ
{

namespace
{

/// True for texts whose characters have no other widths or forms: the greater part, and normalising costs.
bool isPlain(const QString& text)
{
    return std::all_of(text.begin(), text.end(), [](QChar character) {
        const ushort code = character.unicode();
        return code < 0x80 || (code >= 0x4E00 && code <= 0x9FFF);
    });
}

QString foldedForSearch(const QString& text)
{
    QString folded = isPlain(text) ? text : text.normalized(QString::NormalizationForm_KC);
    folded = std::move(folded).toLower();
    folded.replace(QLatin1Char('\n'), QLatin1Char(' '));
    return folded;
}

} // namespace

void CSearchIndex::clear()
{
    m_keys.clear();
    m_begins.clear();
}

QString CSearchIndex::folded(const QString& text)
{
    return foldedForSearch(text).trimmed();
}

void CSearchIndex::append(const QString& text)
{
    m_begins.push_back(m_keys.size());
    const auto viewOf = [](const auto& bytes) {
        return std::string_view(bytes.data(), static_cast<std::size_t>(bytes.size()));
    };
    const auto add = [this](std::string_view key) {
        m_keys.append(key);
        m_keys.push_back('\n');
    };
    const QByteArray folded = foldedForSearch(text).toUtf8();
    const pinyin::SearchKeys keys = pinyin::searchKeys(text);
    const std::string_view own = viewOf(folded);
    const std::string_view syllables = viewOf(keys.syllables);
    const std::string_view initials = viewOf(keys.initials);
    add(own);
    if (syllables != own) {
        add(syllables);
    }
    if (initials != syllables) {
        add(initials);
    }
}

QVector<QByteArray> CSearchIndex::words(const QString& input)
{
    QVector<QByteArray> words;
    for (const QString& word : foldedForSearch(input).split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        words.append(word.toUtf8());
    }
    return words;
}

std::size_t CSearchIndex::endOf(int row) const
{
    const auto next = static_cast<std::size_t>(row) + 1;
    return next < m_begins.size() ? m_begins[next] : m_keys.size();
}

bool CSearchIndex::holds(int row, const QByteArray& word) const
{
    const char* const keys = m_keys.data() + m_begins[static_cast<std::size_t>(row)];
    const char* const end = m_keys.data() + endOf(row);
    if (memmem(keys, static_cast<std::size_t>(end - keys), word.constData(), static_cast<std::size_t>(word.size()))) {
        return true;
    }
    if (!isMixed(word)) {
        return false;
    }
    const char* const endOfText = std::find(keys, end, '\n');
    return matchesMixed(QString::fromUtf8(keys, static_cast<int>(endOfText - keys)), QString::fromUtf8(word));
}

bool CSearchIndex::holds(const QString& text, const QByteArray& word)
{
    CSearchIndex index;
    index.append(text);
    return index.holds(0, word);
}

std::vector<int> CSearchIndex::find(const QVector<QByteArray>& words) const
{
    std::vector<int> rows;
    if (words.isEmpty()) {
        rows.resize(m_begins.size());
        std::iota(rows.begin(), rows.end(), 0);
        return rows;
    }
    // A row that holds a mixed word holds its characters.
    const bool mixed = isMixed(words.front());
    const QByteArray first = mixed ? longestCharacters(words.front()) : words.front();
    const char* const begin = m_keys.data();
    const char* const end = begin + m_keys.size();
    const char* position = begin;
    int row = 0;
    while (position < end) {
        const auto* const hit =
            static_cast<const char*>(memmem(position, static_cast<std::size_t>(end - position), first.constData(),
                                            static_cast<std::size_t>(first.size())));
        if (!hit) {
            break;
        }
        while (begin + endOf(row) <= hit) {
            ++row;
        }
        if (!mixed || holds(row, words.front())) {
            rows.push_back(row);
        }
        position = begin + endOf(row);
    }
    return words.size() == 1 ? rows : find(words.mid(1), rows);
}

std::vector<int> CSearchIndex::find(const QVector<QByteArray>& words, const std::vector<int>& rows) const
{
    std::vector<int> found;
    std::copy_if(rows.begin(), rows.end(), std::back_inserter(found), [&](int row) {
        return std::all_of(words.begin(), words.end(), [&](const QByteArray& word) { return holds(row, word); });
    });
    return found;
}

} // namespace WQ
