#pragma once

#include <WQ/Export.h>

#include <QByteArray>
#include <QString>

#include <string>
#include <vector>

namespace WQ
{

/// What a Chinese text is found by. Lower-case Latin letters and digits only: letters and digits of the text are kept
/// (full-width ones as plain ones, accents dropped), blanks and signs are left out.
struct PinyinKeys {
    /// The syllables of all characters, joined: 招商银行 -> "zhaoshangyinhang". When the text has a syllable with ü,
    /// which people type as v or as u, both spellings stand here, separated by a line feed: "lvyou\nluyou".
    QString syllables;
    /// The first letter of each syllable: "zsyh"; letters and digits of the text stand whole: 中信A股1号 -> "zxag1h".
    QString initials;
};

/// Characters with several readings are read by the longest phrase that they stand in (银行 yinhang, 重庆 chongqing), a
/// surname at the head of what looks like a person's name as a surname (单雄 shan, but 单市 dan), else by their usual
/// reading. About 0.2 microseconds a name; nothing to load or to warm up. Any thread.
WQ_EXPORT PinyinKeys pinyinSearchKeys(const QString& text);

/// Comparable with `<`: signs, digits and letters first (ignoring case), then Chinese characters by syllable, tone and
/// code, each character by its reading in the text, then everything else. Different texts have different keys.
WQ_EXPORT QByteArray pinyinSortKey(const QString& text);

/// Replaces `out` with the search keys of `utf8`: full syllables (one string, two when the text has an ü), then
/// initials. Empty for a text without letters, digits and Chinese characters.
WQ_EXPORT void getPy(std::vector<std::string>& out, const std::string& utf8);

} // namespace WQ
