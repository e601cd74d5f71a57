// SPDX-License-Identifier: Apache-2.0
#include "PinyinTable.h"
#include "pinyin/SearchKeys.h"
#include "pinyin/Syllables.h"

#include <WQ/Pinyin.h>
#include <WQ/StringConversion.h>

#include <QStringList>
#include <QVarLengthArray>

#include <algorithm>
#include <iterator>

namespace WQ
{

namespace
{

using namespace pinyin;

bool isHan(ushort c)
{
    return c >= FirstCharacter && c <= LastCharacter;
}

char lower(ushort ascii)
{
    return char(ascii >= 'A' && ascii <= 'Z' ? ascii + 32 : ascii);
}

bool isKept(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
}

/// Index of the longest phrase that `text` begins with, -1 for none.
int phraseAt(const ushort* text, int length)
{
    // The phrases that begin with the first `size` characters, one more character each time.
    int low = FirstPhrases[text[0] - FirstCharacter];
    int high = FirstPhrases[text[0] - FirstCharacter + 1];
    int best = -1;
    for (int size = 2; size <= length && low < high; ++size) {
        const ushort wanted = text[size - 1];
        const auto isBefore = [size](int phrase, ushort character) {
            const int end = PhraseOffsets[phrase] + size;
            return end > PhraseOffsets[phrase + 1] || PhraseTexts[end - 1] < character;
        };
        const auto firstNotBefore = [&](int from, int to, ushort character) {
            while (from < to) {
                const int middle = (from + to) / 2;
                if (isBefore(middle, character)) {
                    from = middle + 1;
                } else {
                    to = middle;
                }
            }
            return from;
        };
        low = firstNotBefore(low, high, wanted);
        high = firstNotBefore(low, high, ushort(wanted + 1));
        if (low < high && PhraseOffsets[low] + size == PhraseOffsets[low + 1]) {
            best = low;
        }
    }
    return best;
}

/// Whether the text, which begins with a surname, is a surname and a given name of one or two characters.
bool looksLikeName(const ushort* text, int length)
{
    const auto is = [text](int i, std::uint16_t bit) {
        return isHan(text[i]) && Readings[text[i] - FirstCharacter] & bit;
    };
    return (length == 2 && is(1, GivenNameBit)) ||
           (length == 3 && is(1, PartOfGivenNameBit) && is(2, PartOfGivenNameBit));
}

ushort surnameReading(ushort character, ushort usual)
{
    for (int i = 0; i < SurnameCount; ++i) {
        if (Surnames[i].character == character) {
            return Surnames[i].reading;
        }
    }
    return usual;
}

/// Calls han(character, reading) or other(character) for each UTF-16 code unit of the text, in order.
template <typename Han, typename Other>
void forEachReading(const QString& string, Han han, Other other)
{
    const ushort* const text = string.utf16();
    const int length = string.size();
    for (int i = 0; i < length; ++i) {
        const ushort c = text[i];
        if (!isHan(c)) {
            other(c);
            continue;
        }
        const ushort entry = Readings[c - FirstCharacter];
        if (entry & PhraseBit) {
            const int phrase = phraseAt(text + i, length - i);
            if (phrase >= 0) {
                for (int j = PhraseOffsets[phrase]; j < PhraseOffsets[phrase + 1]; ++j) {
                    han(PhraseTexts[j], PhraseReadings[j]);
                }
                i += PhraseOffsets[phrase + 1] - PhraseOffsets[phrase] - 1;
                continue;
            }
        }
        const ushort usual = entry & ReadingMask;
        const bool surname = i == 0 && entry & SurnameBit && looksLikeName(text, length);
        han(c, surname ? surnameReading(c, usual) : usual);
    }
}

/// The plain letters, digits and signs that `c` stands for, lower case; empty when there are none.
QByteArray plain(ushort c)
{
    QByteArray result;
    const QString parts = QString(QChar(c)).normalized(QString::NormalizationForm_KD);
    for (const QChar part : parts) {
        if (part.unicode() >= 0x20 && part.unicode() < 0x7F) {
            result += lower(part.unicode());
        }
    }
    return result;
}

} // namespace

pinyin::SearchKeys pinyin::searchKeys(const QString& text)
{
    SearchKeys keys;
    QVarLengthArray<char, 256>& syllables = keys.syllables;
    QVarLengthArray<char, 64>& initials = keys.initials;
    bool umlaut = false;
    forEachReading(
        text,
        [&](ushort, ushort reading) {
            const char* syllable = Syllables[reading >> 3];
            if (*syllable != '\0') {
                initials.append(*syllable);
            }
            // A syllable holds a v for ü and for nothing else; mark it, so that a v of the text is left alone.
            for (; *syllable != '\0'; ++syllable) {
                umlaut = umlaut || *syllable == 'v';
                syllables.append(*syllable == 'v' ? 'V' : *syllable);
            }
        },
        [&](ushort c) {
            if (c < 0x80) {
                const char letter = lower(c);
                if (isKept(letter)) {
                    syllables.append(letter);
                    initials.append(letter);
                }
                return;
            }
            for (const char letter : plain(c)) {
                if (isKept(letter)) {
                    syllables.append(letter);
                    initials.append(letter);
                }
            }
        });
    if (umlaut) {
        const auto marked = syllables;
        std::replace(syllables.begin(), syllables.end(), 'V', 'v');
        syllables.append('\n');
        std::replace_copy(marked.begin(), marked.end(), std::back_inserter(syllables), 'V', 'u');
    }
    return keys;
}

PinyinKeys pinyinSearchKeys(const QString& text)
{
    const pinyin::SearchKeys keys = pinyin::searchKeys(text);
    return {QString::fromLatin1(keys.syllables.constData(), keys.syllables.size()),
            QString::fromLatin1(keys.initials.constData(), keys.initials.size())};
}

std::vector<const char*> pinyinSyllables(const QString& text)
{
    std::vector<const char*> syllables;
    syllables.reserve(static_cast<std::size_t>(text.size()));
    forEachReading(
        text,
        [&](ushort, ushort reading) { syllables.push_back(reading >> 3 == 0 ? nullptr : Syllables[reading >> 3]); },
        [&](ushort) { syllables.push_back(nullptr); });
    return syllables;
}

QByteArray pinyinSortKey(const QString& text)
{
    // Order of the leading bytes: end of text, signs and letters (below 0x80), Chinese characters, everything else.
    constexpr char HanMark = char(0x80);
    constexpr char OtherMark = char(0xFE);
    QVarLengthArray<char, 256> sortKey;
    bool exact = true;
    const auto appendUnit = [&sortKey](ushort unit) {
        sortKey.append(char(unit >> 8));
        sortKey.append(char(unit & 0xFF));
    };
    const auto appendOther = [&](ushort c) {
        sortKey.append(OtherMark);
        appendUnit(c);
    };
    forEachReading(
        text,
        [&](ushort c, ushort reading) {
            if (reading >> 3 == 0) {
                appendOther(c);
                return;
            }
            sortKey.append(char(HanMark | char(reading >> 8)));
            sortKey.append(char(reading & 0xFF));
            appendUnit(c);
        },
        [&](ushort c) {
            if (c < 0x80) {
                const char letter = c == 0 ? '\x01' : lower(c);
                exact = exact && ushort(letter) == c;
                sortKey.append(letter);
                return;
            }
            const QByteArray letters = plain(c);
            if (letters.isEmpty()) {
                appendOther(c);
                return;
            }
            exact = false;
            sortKey.append(letters.constData(), letters.size());
        });
    if (!exact) {
        sortKey.append('\0');
        for (const QChar c : text) {
            appendUnit(c.unicode());
        }
    }
    return QByteArray(sortKey.constData(), sortKey.size());
}

void getPy(std::vector<std::string>& out, const std::string& utf8)
{
    out.clear();
    const PinyinKeys keys = pinyinSearchKeys(sToQs(utf8));
    if (keys.syllables.isEmpty()) {
        return;
    }
    for (const QString& syllables : keys.syllables.split(QLatin1Char('\n'))) {
        out.push_back(qsToS(syllables));
    }
    out.push_back(qsToS(keys.initials));
}

} // namespace WQ
