// SPDX-License-Identifier: Apache-2.0
#include "ExemptFixture.h"

#include "exempt/CategorySearch.h"
#include "support/TestProgram.h"

#include <QRandomGenerator>

using QAV::CCategorySearchKey;
using QAV::foldCase;

static bool finds(const char* text, const char* name)
{
    return CCategorySearchKey(exempt_test::makeCategory(1, name)).contains(foldCase(text));
}

/// What a category is found by.
class CategorySearchTest : public QObject
{
    Q_OBJECT

private slots:
    void aNameIsFoundByAnyPartOfIt()
    {
        QVERIFY(finds("沪市", "沪市主板股票"));
        QVERIFY(finds("板股", "沪市主板股票"));
        QVERIFY(finds("股票", "沪市主板股票"));
        QVERIFY(!finds("债券", "沪市主板股票"));
        QVERIFY(!finds("沪 市", "沪市主板股票"));
    }

    void aNameIsFoundInAnyLetterCase()
    {
        QVERIFY(finds("etf", "跨境ETF基金"));
        QVERIFY(finds("ETF", "跨境etf基金"));
        QVERIFY(finds("reits", "公募REITs"));
        QVERIFY(finds("ＥＴＦ", "跨境ｅｔｆ基金"));
    }

    void aNameIsFoundByItsSyllablesAndByItsInitials()
    {
        QVERIFY(finds("zhaiquan", "可转债券"));
        QVERIFY(finds("ZhaiQuan", "可转债券"));
        QVERIFY(finds("kzzq", "可转债券"));
        QVERIFY(finds("KZZ", "可转债券"));
        QVERIFY(!finds("gupiao", "可转债券"));
    }

    void thePinyinIsOneStringSoThatItsPartsMatchAcrossTheirSeams()
    {
        // Syllables "guozhai", then initials "gz": the text that spans both is found.
        QVERIFY(finds("guozhaigz", "国债"));
        QVERIFY(finds("igz", "国债"));
    }

    void aCharacterWithSeveralReadingsIsReadByThePhrase()
    {
        QVERIFY(finds("yinhang", "银行间债券"));
        QVERIFY(finds("chongqing", "重庆地方债"));
        QVERIFY(!finds("yinxing", "银行间债券"));
    }

    void anEmptyTextFindsEverythingButANullRecord()
    {
        QVERIFY(finds("", "国债"));
        QVERIFY(finds("", ""));
        QVERIFY(!CCategorySearchKey(QAV::CategoryPtr()).contains(QString()));
    }

    void foldingFindsWhatAComparisonWithoutLetterCaseFinds()
    {
        // Letters with odd foldings: sharp s, dotted and dotless i, sigmas, ligatures, and capitals outside the first
        // plane.
        const QStringList letters{"a", "A", "ß", "ẞ", "İ", "ı",  "i",  "I",  "Σ",  "σ", "ς",
                                  "ﬃ", "K", "k", "é", "É", "债", "１", "Ａ", "ａ", "𐐀", "𐐨"};
        QRandomGenerator random(20240611);
        int found = 0;
        for (int round = 0; round < 20000; ++round) {
            const auto text = [&](int length) {
                QString result;
                for (int i = 0; i < length; ++i) {
                    result += letters[random.bounded(letters.size())];
                }
                return result;
            };
            const QString name = text(1 + random.bounded(6));
            const QString part = text(1 + random.bounded(2));
            const bool expected = name.contains(part, Qt::CaseInsensitive);
            found += expected ? 1 : 0;
            QVERIFY2(foldCase(name).contains(foldCase(part)) == expected, qPrintable(name + " / " + part));
        }
        QVERIFY(found > 1000);
    }

    void foldingKeepsTheLength()
    {
        const QString text = QString::fromUtf8("ẞİﬃ𐐀A");
        QCOMPARE(foldCase(text).size(), text.size());
    }
};

TEST_WITHOUT_WIDGETS(CategorySearchTest)
#include "tst_category_search.moc"
