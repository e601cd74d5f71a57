#pragma once

#include <QByteArray>
#include <QString>
#include <QStringMatcher>

namespace WQ
{

/// Whether `text` contains `part` as filters of type `FilterContains` see it.
class CContainsMatcher
{
public:
    explicit CContainsMatcher(const QString& part);
    bool matches(const QString& text) const;
    /// What is looked up in the search keys of texts; empty if the text is not.
    const QByteArray& word() const { return m_word; }
    bool matchesPlainly(const QString& text) const { return m_plain.indexIn(text) >= 0; }

private:
    QStringMatcher m_plain;
    QByteArray m_word;
};

} // namespace WQ
