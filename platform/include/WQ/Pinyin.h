// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/Export.h>

#include <QByteArray>
#include <QString>

#include <string>
#include <vector>

namespace WQ
{

/// The search keys of a Chinese text, made of lower-case Latin letters and digits only. Letters and digits of the text
/// are kept, in half width and without accents; blanks and symbols are dropped.
struct PinyinKeys {
    /// The syllables of all characters, joined: 招商银行 -> "zhaoshangyinhang". A syllable with ü may be typed with v
    /// or u, so both spellings are here, separated by a line feed: "lvyou\nluyou".
    QString syllables;
    /// The first letter of each syllable: "zsyh". Letters and digits of the text are kept: 中信A股1号 -> "zxag1h".
    QString initials;
};

/// The search keys of a text. The reading of a character comes from the longest known phrase around it (银行 yinhang,
/// 重庆 chongqing). A surname at the start of an apparent personal name is read as a surname (单雄 shan, but 单市 dan).
/// Otherwise a character has its usual reading. Takes about 0.2 microseconds per name; nothing is loaded or built
/// first. May be called from any thread.
WQ_EXPORT PinyinKeys pinyinSearchKeys(const QString& text);

/// A sort key, to be compared with `<`: first symbols, digits and letters (ignoring case), then Chinese characters by
/// syllable, tone and code according to their reading in the text, then everything else. Different texts have
/// different keys. May be called from any thread.
WQ_EXPORT QByteArray pinyinSortKey(const QString& text);

/// Replaces `out` by the search keys of `utf8`: the full syllables (one string, or two if the text has a ü), then the
/// initials. Empty for a text without letters, digits and Chinese characters. May be called from any thread.
WQ_EXPORT void getPy(std::vector<std::string>& out, const std::string& utf8);

} // namespace WQ
