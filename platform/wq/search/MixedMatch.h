#pragma once

#include <QByteArray>
#include <QString>

namespace WQ
{

/// Whether a word in UTF-8 has Latin letters beside other characters than letters, digits and signs of ASCII.
bool isMixed(const QByteArray& word);
/// The longest piece of a mixed word that holds no ASCII.
QByteArray longestCharacters(const QByteArray& word);
/// Whether a mixed word is found in a text, both folded, as CSearchIndex says.
bool matchesMixed(const QString& text, const QString& word);

} // namespace WQ
