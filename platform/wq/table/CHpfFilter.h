#pragma once

#include "table/CPinyinArena.h"

#include <WQ/IBaseHpfTableData.h>
#include <WQ/TableFilter.h>

#include <QByteArray>
#include <QStringMatcher>

#include <map>
#include <vector>

namespace WQ
{

/// The filters of a model's columns, and the pinyin of the columns that were filtered by Latin letters.
class CHpfFilter
{
public:
    /// False if the column's filter stays what it was. A filter that admits everything is none.
    bool set(int column, const FilterPair& filter);
    bool remove(int column) { return m_filters.erase(column) > 0; }
    void clear() { m_filters.clear(); }
    /// What was remembered of the records' texts is no longer true.
    void forgetTexts() { m_pinyin.clear(); }
    bool isEmpty() const { return m_filters.empty(); }
    FilterPair of(int column) const;

    /// An entry per record, 1 if every filter but that of column `except` admits it; 0 before `from`.
    std::vector<char> admitted(const std::vector<IBaseHpfTableDataPtr>& records, int from, int except);
    /// An entry per record, 1 if its text in the column contains `text`.
    std::vector<char> containing(const std::vector<IBaseHpfTableDataPtr>& records, int column, const QString& text);

private:
    void narrowByContains(const std::vector<IBaseHpfTableDataPtr>& records, std::size_t from, int column,
                          const QSet<QString>& texts, std::vector<char>& admitted);

    std::map<int, FilterPair> m_filters;
    std::map<int, CPinyinArena> m_pinyin;
};

/// Whether `text` contains `part` as filters of type `FilterContains` see it.
class CContainsMatcher
{
public:
    explicit CContainsMatcher(const QString& part);
    bool matches(const QString& text) const;
    /// Latin letters and digits in lower case; empty if the text is not looked up in pinyin.
    const QByteArray& latin() const { return m_latin; }
    bool matchesPlainly(const QString& text) const { return m_plain.indexIn(text) >= 0; }

private:
    QStringMatcher m_plain;
    QByteArray m_latin;
};

} // namespace WQ
