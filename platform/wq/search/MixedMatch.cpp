// SPDX-License-Identifier: Apache-2.0
#include "search/MixedMatch.h"

#include "pinyin/Syllables.h"

#include <algorithm>
#include <vector>

namespace WQ
{

namespace
{

bool isAscii(char byte)
{
    return static_cast<unsigned char>(byte) < 0x80;
}

bool isLatin(QChar character)
{
    return character.unicode() < 0x80;
}

/// The syllable that `word` goes on with at `at`, v and u standing for ü: how many letters of it.
int commonLength(const char* syllable, const QString& word, int at)
{
    int length = 0;
    for (; syllable[length] != '\0' && at + length < word.size(); ++length) {
        const QChar letter = word.at(at + length);
        if (letter != QLatin1Char(syllable[length]) && !(syllable[length] == 'v' && letter == QLatin1Char('u'))) {
            break;
        }
    }
    return length;
}

} // namespace

bool isMixed(const QByteArray& word)
{
    return std::any_of(word.begin(), word.end(), [](char byte) { return byte >= 'a' && byte <= 'z'; }) &&
           !std::all_of(word.begin(), word.end(), isAscii);
}

QByteArray longestCharacters(const QByteArray& word)
{
    QByteArray longest;
    for (auto from = word.begin(); from != word.end();) {
        from = std::find_if_not(from, word.end(), isAscii);
        const auto to = std::find_if(from, word.end(), isAscii);
        if (to - from > longest.size()) {
            longest = QByteArray(from, static_cast<int>(to - from));
        }
        from = to;
    }
    return longest;
}

bool matchesMixed(const QString& text, const QString& word)
{
    const std::vector<const char*> syllables = pinyinSyllables(text);
    const auto width = static_cast<std::size_t>(text.size()) + 1;
    // Whether the first `done` units of the word may end before place `at` of the text.
    std::vector<char> reached((static_cast<std::size_t>(word.size()) + 1) * width, 0);
    const auto reach = [&](int done, int at) -> char& {
        return reached[static_cast<std::size_t>(done) * width + static_cast<std::size_t>(at)];
    };
    std::fill_n(reached.begin(), width, char(1));
    for (int done = 0; done < word.size(); ++done) {
        const QChar wanted = word.at(done);
        const bool maySkip = done > 0 && isLatin(wanted) && !isLatin(word.at(done - 1));
        for (int at = 0; at < text.size(); ++at) {
            if (!reach(done, at)) {
                continue;
            }
            const QChar found = text.at(at);
            if (maySkip || (done > 0 && isLatin(wanted) && !found.isLetterOrNumber())) {
                reach(done, at + 1) = 1;
            }
            if (found == wanted) {
                reach(done + 1, at + 1) = 1;
            }
            const char* const syllable = syllables[static_cast<std::size_t>(at)];
            if (!syllable || !isLatin(wanted)) {
                continue;
            }
            const int length = commonLength(syllable, word, done);
            if (length > 0 && done + length == word.size()) {
                return true;
            }
            if (length > 0) {
                reach(done + 1, at + 1) = 1;
            }
            if (length > 0 && syllable[length] == '\0') {
                reach(done + length, at + 1) = 1;
            }
        }
    }
    const auto ends = reached.end() - static_cast<std::ptrdiff_t>(width);
    return std::find(ends, reached.end(), char(1)) != reached.end();
}

} // namespace WQ
