// SPDX-License-Identifier: Apache-2.0
#include "support/TestProgram.h"

#include <WQ/Pinyin.h>

#include <QFile>
#include <QTextStream>

#include <algorithm>

namespace
{

QStringList py(const QString& text)
{
    std::vector<std::string> out{"left over"};
    WQ::getPy(out, text.toStdString());
    QStringList list;
    for (const std::string& entry : out) {
        list << QString::fromStdString(entry);
    }
    return list;
}

struct Known {
    QString name;
    QString syllables;
    QString initials;
};

/// The words of each line that is no comment.
QVector<QStringList> readLines(const QString& fileName)
{
    QFile file(fileName);
    QVector<QStringList> lines;
    if (!file.open(QIODevice::ReadOnly)) {
        return lines;
    }
    QTextStream in(&file);
    in.setCodec("UTF-8");
    while (!in.atEnd()) {
        const QString line = in.readLine();
        if (!line.startsWith(QLatin1Char('#'))) {
            lines << line.split(QLatin1Char(' '), Qt::SkipEmptyParts);
        }
    }
    return lines;
}

/// Lines of the file: name, then its syllables apart.
std::vector<Known> knownNames(const char* file)
{
    std::vector<Known> names;
    for (const QStringList& words : readLines(support::sourceFile(QStringLiteral("tests/platform/wq/") + file))) {
        if (words.size() < 2) {
            continue;
        }
        Known known{words[0], QString(), QString()};
        for (const QString& syllable : words.mid(1)) {
            known.syllables += syllable;
            known.initials += syllable[0];
        }
        names.push_back(known);
    }
    return names;
}

} // namespace

class PinyinTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void namesAreReadAsPeopleReadThem()
    {
        const std::vector<Known> names = knownNames("pinyin_names.txt");
        QVERIFY(names.size() >= 200);
        QStringList wrong;
        for (const Known& known : names) {
            const QStringList found = py(known.name);
            if (found.value(0) != known.syllables || found.value(found.size() - 1) != known.initials) {
                wrong << known.name + QLatin1Char(' ') + found.join(QLatin1Char('/'));
            }
        }
        QVERIFY2(wrong.isEmpty(), qPrintable(wrong.join(QLatin1Char('\n'))));
    }

    void phrasesThatTheTablesWereNotMadeOfAreReadRight_data()
    {
        const support::DataRows<int> row("least");
        row("pinyin_finance.txt", 800);
        row("pinyin_places.txt", 2500);
        row("pinyin_companies.txt", 500);
    }
    void phrasesThatTheTablesWereNotMadeOfAreReadRight()
    {
        QFETCH(int, least);
        const std::vector<Known> phrases = knownNames(QTest::currentDataTag());
        QVERIFY(int(phrases.size()) >= least);
        QSet<QString> inTheTables;
        for (const QStringList& words : readLines(support::sourceFile("platform/wq/pinyin/phrases.txt"))) {
            inTheTables += QSet<QString>(words.begin() + std::min(2, words.size()), words.end());
        }
        QVERIFY(inTheTables.size() > 1000);
        QStringList wrong;
        for (const Known& phrase : phrases) {
            QVERIFY2(!inTheTables.contains(phrase.name), qPrintable(phrase.name));
            const QString read = py(phrase.name).value(0);
            if (read != phrase.syllables) {
                wrong << phrase.name + QLatin1Char(' ') + read;
            }
        }
        // Three in a thousand.
        QVERIFY2(wrong.size() * 1000 <= 3 * int(phrases.size()), qPrintable(wrong.join(QLatin1Char('\n'))));
    }

    void wordsThatBeginWithASurnameAreReadAsWords()
    {
        const std::vector<Known> words = knownNames("pinyin_surname_words.txt");
        QVERIFY(words.size() >= 100);
        QStringList wrong;
        for (const Known& word : words) {
            if (py(word.name).value(0) != word.syllables) {
                wrong << word.name;
            }
        }
        QVERIFY2(wrong.size() * 100 <= 2 * int(words.size()), qPrintable(wrong.join(QLatin1Char(' '))));
    }

    void peopleAreReadByTheirSurnames()
    {
        QStringList givenNames;
        for (const QStringList& names : readLines(support::sourceFile("tests/platform/wq/pinyin_given_names.txt"))) {
            givenNames += names;
        }
        QCOMPARE(givenNames.size(), 400);
        for (const auto& [surname, syllable] : {std::pair<const char*, const char*>{"单", "shan"},
                                                {"解", "xie"},
                                                {"查", "zha"},
                                                {"仇", "qiu"},
                                                {"曾", "zeng"},
                                                {"朴", "piao"}}) {
            QStringList wrong;
            for (const QString& name : givenNames) {
                if (!py(surname + name).value(0).startsWith(QLatin1String(syllable))) {
                    wrong << surname + name;
                }
            }
            QVERIFY2(wrong.size() * 4 <= givenNames.size(), qPrintable(wrong.join(QLatin1Char(' '))));
        }
    }

    void syllablesComeFirstThenInitials()
    {
        QCOMPARE(py(QStringLiteral("招商银行")), (QStringList{"zhaoshangyinhang", "zsyh"}));
    }

    void theUmlautIsFoundAsVAndAsU()
    {
        QCOMPARE(py(QStringLiteral("绿地")), (QStringList{"lvdi", "ludi", "ld"}));
        QCOMPARE(WQ::pinyinSearchKeys(QStringLiteral("绿地")).syllables, QStringLiteral("lvdi\nludi"));
        QCOMPARE(py(QStringLiteral("VIVO绿")), (QStringList{"vivolv", "vivolu", "vivol"}));
    }

    void lettersAndDigitsAreKeptAndSignsLeftOut()
    {
        QCOMPARE(py(QStringLiteral("中信A股1号(优选)")), (QStringList{"zhongxinagu1haoyouxuan", "zxag1hyx"}));
        QCOMPARE(py(QStringLiteral("ＦＯＦ２号")), (QStringList{"fof2hao", "fof2h"}));
        QCOMPARE(py(QStringLiteral("Société Ⅱ")), (QStringList{"societeii", "societeii"}));
        QCOMPARE(py(QStringLiteral("abc")), (QStringList{"abc", "abc"}));
    }

    void aTextWithoutReadingHasNoKeys()
    {
        QCOMPARE(py(QString()), QStringList());
        QCOMPARE(py(QStringLiteral(" ()-")), QStringList());
        QCOMPARE(py(QStringLiteral("😀")), QStringList());
        std::vector<std::string> out;
        WQ::getPy(out, "\xFF\xFE");
        QCOMPARE(out.size(), std::size_t(0));
    }

    void theLongestPhraseWins()
    {
        QCOMPARE(py(QStringLiteral("民乐")).value(0), QStringLiteral("minyue"));
        QCOMPARE(py(QStringLiteral("民乐县")).value(0), QStringLiteral("minlexian"));
    }

    void aSurnameIsReadAsOneOnlyInAName()
    {
        QCOMPARE(py(QStringLiteral("单雄信")).value(0), QStringLiteral("shanxiongxin"));
        QCOMPARE(py(QStringLiteral("单一资金信托")).value(0), QStringLiteral("danyizijinxintuo"));
        QCOMPARE(py(QStringLiteral("名单")).value(0), QStringLiteral("mingdan"));
        QCOMPARE(py(QStringLiteral("仇和")).value(0), QStringLiteral("qiuhe"));
        QCOMPARE(py(QStringLiteral("解放")).value(0), QStringLiteral("jiefang"));
    }

    void everyCommonCharacterHasAReading()
    {
        int without = 0;
        for (ushort c = 0x4E00; c <= 0x9FA5; ++c) {
            without += py(QString(QChar(c))).isEmpty();
        }
        QVERIFY2(without < 20, qPrintable(QString::number(without)));
    }

    void sortingPutsDigitsAndLettersFirstThenPinyin()
    {
        const QStringList sorted{QString(),
                                 QStringLiteral("1号"),
                                 QStringLiteral("2号"),
                                 QStringLiteral("A股"),
                                 QStringLiteral("b股"),
                                 QStringLiteral("C股"),
                                 QStringLiteral("长江证券"),
                                 QStringLiteral("重庆银行"),
                                 QStringLiteral("广发证券"),
                                 QStringLiteral("国泰君安"),
                                 QStringLiteral("厦门国贸"),
                                 QStringLiteral("银河证券"),
                                 QStringLiteral("曾经沧海"),
                                 QStringLiteral("曾国藩"),
                                 QStringLiteral("招商银行"),
                                 QStringLiteral("中信证券"),
                                 QStringLiteral("😀")};
        // 曾经 is read ceng, so it stands before what begins with d.
        QStringList expected = sorted;
        expected.move(12, 6);
        QStringList shuffled = sorted;
        std::reverse(shuffled.begin(), shuffled.end());
        std::sort(shuffled.begin(), shuffled.end(),
                  [](const QString& a, const QString& b) { return WQ::pinyinSortKey(a) < WQ::pinyinSortKey(b); });
        QCOMPARE(shuffled, expected);
    }

    void sortingKeepsOneCharacterTogether()
    {
        const auto before = [](const char* a, const char* b) {
            return WQ::pinyinSortKey(QString::fromUtf8(a)) < WQ::pinyinSortKey(QString::fromUtf8(b));
        };
        QVERIFY(before("张二", "张三"));
        QVERIFY(before("张三", "章二") == before("张二", "章二"));
        QVERIFY(before("妈", "麻"));
        QVERIFY(before("麻", "马"));
        QVERIFY(before("马", "骂"));
        QVERIFY(before("中国", "中国银行"));
    }

    void differentTextsHaveDifferentSortKeys()
    {
        const QStringList texts{
            "a", "A", "Ａ", "á",  "银行", "银", "行", " a", "a ", QString(QChar(0)), QString(), QString(QChar(1)),
            "ⅱ", "Ⅱ", "ii", "１", "1",    "①"};
        QSet<QByteArray> keys;
        for (const QString& text : texts) {
            keys << WQ::pinyinSortKey(text);
        }
        QCOMPARE(keys.size(), texts.size());
    }
};

TEST_WITHOUT_WIDGETS(PinyinTest)
#include "tst_pinyin.moc"
