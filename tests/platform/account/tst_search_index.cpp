#include "account/CSearchIndex.h"

#include <QtTest>

using QAV::CSearchIndex;

/// What the lists of accounts and institutions find.
class TestSearchIndex : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void aRowIsFoundByIdNamePinyinAndInitials_data();
    void aRowIsFoundByIdNamePinyinAndInitials();
    void noWordsFindEveryRow();
    void aMatchNeverReachesIntoTheNextRow();
    void searchingAmongRowsFindsTheSameAsSearchingAll();
    void textWithLineFeedsIsSearchable();
    void anEmptyIndexFindsNothing();

private:
    std::vector<int> find(const QString& input) const { return m_index.find(CSearchIndex::words(input)); }

    CSearchIndex m_index;
};

void TestSearchIndex::init()
{
    m_index.clear();
    for (const char* const text :
         {"00880001(招商银行)", "00880002-A1(远山一号)", "IB-77(Far Hill 2)", "组😀(重庆)", "ＡＢ１２(全角)"})
        m_index.append(QString::fromUtf8(text));
}

void TestSearchIndex::aRowIsFoundByIdNamePinyinAndInitials_data()
{
    QTest::addColumn<QString>("input");
    QTest::addColumn<QList<int>>("rows");
    QTest::newRow("id") << "00880002" << QList<int>{1};
    QTest::newRow("part of an id") << "0088" << QList<int>{0, 1};
    QTest::newRow("leading zeros") << "00880" << QList<int>{0, 1};
    QTest::newRow("unit without the dash") << "0002a1" << QList<int>{1};
    QTest::newRow("name") << "银行" << QList<int>{0};
    QTest::newRow("pinyin") << "yinhang" << QList<int>{0};
    QTest::newRow("part of the pinyin") << "hangyin" << QList<int>{0};
    QTest::newRow("initials") << "zsyh" << QList<int>{0};
    QTest::newRow("another reading") << "chongqing" << QList<int>{3};
    QTest::newRow("capital letters") << "ZSYH" << QList<int>{0};
    QTest::newRow("letters of the text") << "far hill" << QList<int>{2};
    QTest::newRow("words in any order") << "yuan 0088" << QList<int>{1};
    QTest::newRow("one word too many") << "yuan zsyh" << QList<int>{};
    QTest::newRow("full width typed") << "００８８０００１" << QList<int>{0};
    QTest::newRow("full width found") << "ab12" << QList<int>{4};
    QTest::newRow("emoji") << "😀" << QList<int>{3};
    QTest::newRow("nothing") << "xyz" << QList<int>{};
}

void TestSearchIndex::aRowIsFoundByIdNamePinyinAndInitials()
{
    QFETCH(QString, input);
    QFETCH(QList<int>, rows);
    QCOMPARE(find(input), std::vector<int>(rows.begin(), rows.end()));
}

void TestSearchIndex::noWordsFindEveryRow()
{
    QCOMPARE(find(QString()).size(), std::size_t(5));
    QCOMPARE(find(QStringLiteral("  \n ")).size(), std::size_t(5));
}

void TestSearchIndex::aMatchNeverReachesIntoTheNextRow()
{
    CSearchIndex index;
    index.append("ab");
    index.append("cd");
    QCOMPARE(index.find(CSearchIndex::words("bc")), std::vector<int>());
    QCOMPARE(index.find(CSearchIndex::words("cd")), std::vector<int>{1});
}

void TestSearchIndex::searchingAmongRowsFindsTheSameAsSearchingAll()
{
    CSearchIndex index;
    for (int i = 0; i < 2000; ++i)
        index.append(QStringLiteral("%1(远山%2号)").arg(i * 7919 % 10007).arg(i % 13));
    for (const char* const input : {"1", "12", "123", "1 ys", "ys1 2", "yuan 9 8"}) {
        const auto words = CSearchIndex::words(QString::fromUtf8(input));
        QCOMPARE(index.find(words, index.find({})), index.find(words));
    }
}

void TestSearchIndex::textWithLineFeedsIsSearchable()
{
    CSearchIndex index;
    index.append(QStringLiteral("first\nsecond"));
    index.append(QStringLiteral("third"));
    QCOMPARE(index.find(CSearchIndex::words("second")), std::vector<int>{0});
    QCOMPARE(index.find(CSearchIndex::words("third")), std::vector<int>{1});
}

void TestSearchIndex::anEmptyIndexFindsNothing()
{
    const CSearchIndex index;
    QCOMPARE(index.find(CSearchIndex::words("a")), std::vector<int>());
    QCOMPARE(index.find({}), std::vector<int>());
}

QTEST_MAIN(TestSearchIndex)
#include "tst_search_index.moc"
