#pragma once

#include <QByteArray>
#include <QString>
#include <QVector>

#include <string>
#include <vector>

namespace QAV
{

/// Finds rows of text by part of the text, of its pinyin or of the pinyin's initials, ignoring case and width.
///
/// All search keys stand in one block of bytes, so that a search is one pass over memory. No thread of its own.
class CSearchIndex
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

    /// The rows that hold all words, ascending; every row when there are no words.
    std::vector<int> find(const QVector<QByteArray>& words) const;
    /// The same among `rows` only.
    std::vector<int> find(const QVector<QByteArray>& words, const std::vector<int>& rows) const;

    /// Size of the search keys in bytes.
    const std::string& keys() const { return m_keys; }

private:
    bool holds(int row, const QByteArray& word) const;
    std::size_t endOf(int row) const;

    /// Per row its keys, each closed by a line feed, which no word contains.
    std::string m_keys;
    std::vector<std::size_t> m_begins;
};

} // namespace QAV
