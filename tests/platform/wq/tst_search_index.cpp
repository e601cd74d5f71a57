// SPDX-License-Identifier: Apache-2.0
#include "support/TestProgram.h"

#include <WQ/CSearchIndex.h>
#include <WQ/Pinyin.h>

#include <QRandomGenerator>

#include <algorithm>

using WQ::CSearchIndex;

/// What the lists of accounts and institutions find.
class SearchIndexTest : public QObject
{
    Q_OBJECT

    /// Whether the units of `word` from `at` on stand in `text` from `place` on, tried in every way.
    static bool standsAt(const QString& text, int place, const QString& word, int at)
    {
        const auto isLatin = [](QChar c) { return c.unicode() < 0x80; };
        if (at == word.size()) {
            return true;
        }
        if (place == text.size()) {
            return false;
        }
        const QChar found = text[place];
        const bool letter = isLatin(word[at]);
        if (letter && at > 0 && !isLatin(word[at - 1]) && standsAt(text, place + 1, word, at)) {
            return true;
        }
        if (letter && at > 0 && !found.isLetterOrNumber() && standsAt(text, place + 1, word, at)) {
            return true;
        }
        if (found == word[at]) {
            return standsAt(text, place + 1, word, at + 1);
        }
        if (!letter || isLatin(found)) {
            return false;
        }
        for (const QString& syllable : WQ::pinyinSearchKeys(QString(found)).syllables.split('\n')) {
            if (syllable.startsWith(word.mid(at))) {
                return true;
            }
            for (const QString& spelling : {syllable, syllable.left(1)}) {
                if (word.midRef(at).startsWith(spelling) && standsAt(text, place + 1, word, at + spelling.size())) {
                    return true;
                }
            }
        }
        return false;
    }

    /// What an index finds, told plainly.
    static bool isFound(const QString& text, const QString& word)
    {
        const WQ::PinyinKeys keys = WQ::pinyinSearchKeys(text);
        if (text.contains(word) || keys.syllables.contains(word) || keys.initials.contains(word)) {
            return true;
        }
        const auto isLetter = [](QChar c) { return c >= 'a' && c <= 'z'; };
        const auto isHan = [](QChar c) { return c.unicode() >= 0x4E00; };
        if (!std::any_of(word.begin(), word.end(), isLetter) || !std::any_of(word.begin(), word.end(), isHan)) {
            return false;
        }
        for (int place = 0; place < text.size(); ++place) {
            if (standsAt(text, place, word, 0)) {
                return true;
            }
        }
        return false;
    }

private slots:
    void eachKeyOfARowIsKeptOnce()
    {
        const auto keysOf = [](const QString& text) {
            CSearchIndex index;
            index.append(text);
            return QString::fromStdString(index.keys());
        };
        QCOMPARE(keysOf("ABC 1"), QString("abc 1\nabc1\n"));
        QCOMPARE(keysOf("abc1"), QString("abc1\n"));
        QCOMPARE(keysOf("银行"), QString("银行\nyinhang\nyh\n"));
        QCOMPARE(keysOf("绿"), QString("绿\nlv\nlu\nl\n"));
        QCOMPARE(keysOf("额"), QString("额\ne\n"));
        QCOMPARE(keysOf("-"), QString("-\n\n"));
    }

    void init()
    {
        m_index.clear();
        for (const char* const text :
             {"00880001(招商银行)", "00880002-A1(远山一号)", "IB-77(Far Hill 2)", "组😀(重庆)", "ＡＢ１２(全角)"}) {
            m_index.append(QString::fromUtf8(text));
        }
    }

    void aRowIsFoundByIdNamePinyinAndInitials_data()
    {
        const support::DataRows<QString, QList<int>> row("input", "rows");
        row("id", "00880002", {1});
        row("part of an id", "0088", {0, 1});
        row("leading zeros", "00880", {0, 1});
        row("unit without the dash", "0002a1", {1});
        row("name", "银行", {0});
        row("pinyin", "yinhang", {0});
        row("part of the pinyin", "hangyin", {0});
        row("initials", "zsyh", {0});
        row("another reading", "chongqing", {3});
        row("capital letters", "ZSYH", {0});
        row("letters of the text", "far hill", {2});
        row("words in any order", "yuan 0088", {1});
        row("one word too many", "yuan zsyh", {});
        row("full width typed", "００８８０００１", {0});
        row("full width found", "ab12", {4});
        row("emoji", "😀", {3});
        row("nothing", "xyz", {});
        row("character and syllable", "招shang", {0});
        row("character and beginning of a syllable", "招sh", {0});
        row("character and initials of later ones", "招yh", {0});
        row("initials and character", "zs银", {0});
        row("syllable, character, initial", "zhao商y", {0});
        row("capitals and characters", "ZS银行", {0});
        row("characters that do not follow", "招h商", {});
        row("letters that do not lead to the character", "z银", {});
        row("letters in the wrong order", "招hy", {});
    }
    void aRowIsFoundByIdNamePinyinAndInitials()
    {
        QFETCH(QString, input);
        QFETCH(QList<int>, rows);
        QCOMPARE(find(input), std::vector<int>(rows.begin(), rows.end()));
    }

    void noWordsFindEveryRow()
    {
        QCOMPARE(find(QString()).size(), std::size_t(5));
        QCOMPARE(find(QStringLiteral("  \n ")).size(), std::size_t(5));
    }

    void aMatchNeverReachesIntoTheNextRow()
    {
        CSearchIndex index;
        index.append("ab");
        index.append("cd");
        QCOMPARE(index.find(CSearchIndex::words("bc")), std::vector<int>());
        QCOMPARE(index.find(CSearchIndex::words("cd")), std::vector<int>{1});
    }

    void searchingAmongRowsFindsTheSameAsSearchingAll()
    {
        CSearchIndex index;
        for (int i = 0; i < 2000; ++i) {
            index.append(QStringLiteral("%1(远山%2号)").arg(i * 7919 % 10007).arg(i % 13));
        }
        for (const char* const input : {"1", "12", "123", "1 ys", "ys1 2", "yuan 9 8"}) {
            const auto words = CSearchIndex::words(QString::fromUtf8(input));
            QCOMPARE(index.find(words, index.find({})), index.find(words));
        }
    }

    void textWithLineFeedsIsSearchable()
    {
        CSearchIndex index;
        index.append(QStringLiteral("first\nsecond"));
        index.append(QStringLiteral("third"));
        QCOMPARE(index.find(CSearchIndex::words("second")), std::vector<int>{0});
        QCOMPARE(index.find(CSearchIndex::words("third")), std::vector<int>{1});
    }

    void anEmptyIndexFindsNothing()
    {
        const CSearchIndex index;
        QCOMPARE(index.find(CSearchIndex::words("a")), std::vector<int>());
        QCOMPARE(index.find({}), std::vector<int>());
    }

    void whatIsFoundIsWhatAPlainSearchFinds()
    {
        // Characters with one reading each, and letters that occur in it.
        const QString characters = QStringLiteral("招商安女啊国");
        const QString signs = QStringLiteral("zhaosngulv1 -");
        QRandomGenerator random(20261122);
        const auto text = [&](int length) {
            QString result;
            for (int i = 0; i < length; ++i) {
                const QString& from = random.bounded(3) == 0 ? signs : characters;
                result += from[random.bounded(from.size())];
            }
            return result;
        };
        int found = 0;
        int mixed = 0;
        for (int round = 0; round < 300; ++round) {
            CSearchIndex index;
            QStringList texts;
            for (int row = 0; row < 20; ++row) {
                texts << text(1 + random.bounded(7));
                index.append(texts.last());
            }
            for (int query = 0; query < 40; ++query) {
                // A piece of a text, some of its characters spelt and some left out, and now and then something behind.
                QString word;
                const QString& origin = texts[random.bounded(texts.size())];
                for (int i = random.bounded(origin.size()); i < origin.size(); ++i) {
                    const QString syllable = WQ::pinyinSearchKeys(QString(origin[i])).syllables.split('\n').last();
                    const int way = origin[i].unicode() < 0x80 ? 0 : random.bounded(5);
                    word += way < 2    ? QString(origin[i])
                            : way == 2 ? syllable
                            : way == 3 ? syllable.left(1)
                                       : QString();
                }
                if (random.bounded(4) == 0) {
                    word += text(1);
                }
                word.remove(' ');
                const auto words = CSearchIndex::words(word);
                if (words.isEmpty()) {
                    continue;
                }
                std::vector<int> expected;
                for (int row = 0; row < texts.size(); ++row) {
                    if (isFound(texts[row], word)) {
                        expected.push_back(row);
                    }
                }
                QVERIFY2(index.find(words) == expected, qPrintable(word + " in " + texts.join('|')));
                QCOMPARE(CSearchIndex::holds(origin, words.first()), isFound(origin, word));
                found += int(expected.size());
                mixed += std::any_of(word.begin(), word.end(), [](QChar c) { return c >= 'a' && c <= 'z'; }) &&
                         std::any_of(word.begin(), word.end(), [](QChar c) { return c.unicode() >= 0x4E00; });
            }
        }
        QVERIFY(found > 10000);
        QVERIFY(mixed > 3000);
    }

private:
    std::vector<int> find(const QString& input) const { return m_index.find(CSearchIndex::words(input)); }

    CSearchIndex m_index;
};

TEST_WITH_WIDGETS(SearchIndexTest)
#include "tst_search_index.moc"
