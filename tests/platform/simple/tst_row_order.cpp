// SPDX-License-Identifier: Apache-2.0
#include "platform/wq/simple/CRowOrder.h"
#include "support/TestProgram.h"

#include <algorithm>
#include <random>

/// The order of rows, compared with a plain list.
class RowOrderTest : public QObject
{
    Q_OBJECT

private slots:
    void idsCountUpAndAreNeverUsedAgain()
    {
        WQ::CRowOrder order;
        QCOMPARE(order.append(), 0);
        QCOMPARE(order.append(), 1);
        QVERIFY(order.remove(1));
        QVERIFY(!order.remove(1));
        QVERIFY(!order.remove(7));
        QVERIFY(!order.remove(-1));
        QCOMPARE(order.append(), 2);
        QVERIFY(order.remove(0));
        QVERIFY(order.remove(2));
        QCOMPARE(order.count(), 0);
        QCOMPARE(order.append(), 3);
        order.clear();
        QCOMPARE(order.append(), 4);
        QCOMPARE(order.indexOf(3), -1);
        QCOMPARE(order.indexOf(4), 0);
        QCOMPARE(order.idAt(1), -1);
        QCOMPARE(order.idAt(-1), -1);
    }

    void anyMixOfChangesGivesTheOrderOfAPlainList()
    {
        std::mt19937 random(20240521);
        for (int round = 0; round < 60; ++round) {
            WQ::CRowOrder order;
            std::vector<int> plain;
            for (int step = 0; step < 800; ++step) {
                const unsigned what = random() % 100;
                if (plain.empty() || what < 52) {
                    plain.push_back(order.append());
                } else if (what < 97) {
                    const size_t at = random() % plain.size();
                    QVERIFY(order.remove(plain[at]));
                    plain.erase(plain.begin() + std::ptrdiff_t(at));
                } else if (what < 99) {
                    std::shuffle(plain.begin(), plain.end(), random);
                    order.reorder(plain);
                } else {
                    order.clear();
                    plain.clear();
                }
                QCOMPARE(order.count(), int(plain.size()));
                if (!plain.empty()) {
                    const size_t at = random() % plain.size();
                    QCOMPARE(order.idAt(int(at)), plain[at]);
                    QCOMPARE(order.indexOf(plain[at]), int(at));
                }
            }
            QVERIFY(order.ids() == plain);
            for (size_t at = 0; at < plain.size(); ++at) {
                QCOMPARE(order.idAt(int(at)), plain[at]);
                QCOMPARE(order.indexOf(plain[at]), int(at));
            }
        }
    }

    void removingAndAskingAlternatelyStaysQuick()
    {
        const int rows = 200000;
        WQ::CRowOrder order;
        for (int i = 0; i < rows; ++i) {
            order.append();
        }
        // A walk over all rows for each removal would be 2 * 10^10 steps.
        QElapsedTimer timer;
        timer.start();
        for (int removed = 0; removed < rows / 2; ++removed) {
            const int id = order.idAt(order.count() / 2);
            QCOMPARE(order.indexOf(id), order.count() / 2);
            order.remove(id);
        }
        QCOMPARE(order.count(), rows / 2);
        QVERIFY2(timer.elapsed() < 5000, qPrintable(QString::number(timer.elapsed())));
    }
};

TEST_WITHOUT_WIDGETS(RowOrderTest)
#include "tst_row_order.moc"
