// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QString>

namespace WQ
{

/// True if a UTF-8 word has both Latin letters and non-ASCII characters.
bool isMixed(const QByteArray& word);
/// The longest part of a mixed word without ASCII.
QByteArray longestCharacters(const QByteArray& word);
/// True if a mixed word matches a text by the rules of CSearchIndex; both are folded.
bool matchesMixed(const QString& text, const QString& word);

} // namespace WQ
