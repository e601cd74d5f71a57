#pragma once

#include <WQ/Export.h>

#include <QByteArray>
#include <QString>
#include <QVector>

#include <string>
#include <vector>

namespace WQ
{

/// Finds rows of text by part of the text, of its pinyin or of the pinyin's initials, ignoring case and width.
///
/// A word of characters and letters (招shang, 招yh, zs银行) is found where its characters stand, and its letters spell
/// the characters between them: each by its syllable or its initial, the last one by any beginning of its syllable.
/// Letters that follow a character may skip characters before they begin, so that 招yh finds 招商银行.
///
/// All search keys stand in one block of bytes, so that a search is one pass over memory. Rows are numbered from 0 in
/// the order of appending. May be read by several threads while none changes it.
class WQ_EXPORT CSearchIndex
{
public:
    void clear();
    /// Adds the next row.
    void append(const QString& text);
    int size() const { return static_cast<int>(m_begins.size()); }

    /// The words of what a user typed, ready for `find`; a row must hold each of them.
    static QVector<QByteArray> words(const QString& input);
    /// The text as texts are compared: lower case, plain width, no blanks around.
    static QString folded(const QString& text);
    /// Whether an index would find `text` by `word`, one of `words`.
    static bool holds(const QString& text, const QByteArray& word);

    /// The rows that hold all words, ascending; every row when there are no words.
    std::vector<int> find(const QVector<QByteArray>& words) const;
    /// The same among `rows` only.
    std::vector<int> find(const QVector<QByteArray>& words, const std::vector<int>& rows) const;

    /// The search keys of all rows; their size is the length of a search.
    const std::string& keys() const { return m_keys; }

private:
    bool holds(int row, const QByteArray& word) const;
    std::size_t endOf(int row) const;

    /// Per row its keys, the text first, each closed by a line feed, which no word contains.
    std::string m_keys;
    std::vector<std::size_t> m_begins;
};

} // namespace WQ
