// SPDX-License-Identifier: Apache-2.0
#include "tablekit/CContainsMatcher.h"

#include <WQ/CSearchIndex.h>

namespace WQ
{

namespace
{

/// Latin letters and what may stand beside them, digits and Chinese characters, as a word of the search; else empty.
QByteArray wordOf(const QString& text)
{
    bool letter = false;
    for (QChar c : text) {
        const bool isLatin =
            (c >= QLatin1Char('a') && c <= QLatin1Char('z')) || (c >= QLatin1Char('A') && c <= QLatin1Char('Z'));
        if (!isLatin && !(c >= QLatin1Char('0') && c <= QLatin1Char('9')) && c.script() != QChar::Script_Han) {
            return {};
        }
        letter = letter || isLatin;
    }
    return letter ? CSearchIndex::folded(text).toUtf8() : QByteArray();
}

} // namespace

CContainsMatcher::CContainsMatcher(const QString& part) : m_plain(part, Qt::CaseInsensitive), m_word(wordOf(part)) {}

bool CContainsMatcher::matches(const QString& text) const
{
    return matchesPlainly(text) || (!m_word.isEmpty() && CSearchIndex::holds(text, m_word));
}

} // namespace WQ
