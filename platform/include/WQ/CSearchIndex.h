// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/Export.h>

#include <QByteArray>
#include <QString>
#include <QVector>

#include <string>
#include <vector>

namespace WQ
{

/// Finds texts by a part of the text, of its pinyin or of its pinyin initials, ignoring case and width.
///
/// A word may mix characters and letters (招shang, 招yh, zs银行). It matches if its characters occur in the text and
/// its letters spell the characters around them, each by its syllable or its initial, the last one by any prefix of its
/// syllable. Letters after a character may skip characters before they start to match, so 招yh finds 招商银行.
///
/// All search keys are in one block of bytes, so a search is one pass over memory. Rows are numbered from 0 in the
/// order in which they were appended. Several threads may read the index while none changes it.
class WQ_EXPORT CSearchIndex
{
public:
    void clear();
    /// Appends a row.
    void append(const QString& text);
    int size() const { return static_cast<int>(m_begins.size()); }

    /// Splits the user's input into words for `find`. A row must match all of them.
    static QVector<QByteArray> words(const QString& input);
    /// The text in the form in which texts are compared: lower case, half width, no surrounding blanks.
    static QString folded(const QString& text);
    /// True if an index would find `text` by `word`, which comes from `words`.
    static bool holds(const QString& text, const QByteArray& word);

    /// The rows that match all words, ascending; all rows if there are no words.
    std::vector<int> find(const QVector<QByteArray>& words) const;
    /// The same among `rows` only.
    std::vector<int> find(const QVector<QByteArray>& words, const std::vector<int>& rows) const;

    /// The search keys of all rows. A search reads all of them.
    const std::string& keys() const { return m_keys; }

private:
    bool holds(int row, const QByteArray& word) const;
    std::size_t endOf(int row) const;

    /// The keys of each row, the text first. Each key ends with a line feed, which no word contains.
    std::string m_keys;
    std::vector<std::size_t> m_begins;
};

} // namespace WQ
