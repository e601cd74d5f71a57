// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringMatcher>

namespace WQ
{

/// Decides whether a text contains a part, as filters of type `FilterContains` do.
class CContainsMatcher
{
public:
    explicit CContainsMatcher(const QString& part);
    bool matches(const QString& text) const;
    /// The word to look up in search keys; empty if search keys are not used.
    const QByteArray& word() const { return m_word; }
    bool matchesPlainly(const QString& text) const { return m_plain.indexIn(text) >= 0; }

private:
    QStringMatcher m_plain;
    QByteArray m_word;
};

} // namespace WQ
