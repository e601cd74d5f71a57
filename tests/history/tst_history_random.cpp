// SPDX-License-Identifier: Apache-2.0
#include "HistoryWorld.h"

#include "support/TestProgram.h"

using namespace history_test;

namespace
{

#ifdef QAV_SLOW_BUILD
constexpr int DefaultHistorySteps = 1000;
#else
constexpr int DefaultHistorySteps = 4000;
#endif
constexpr int DefaultHistorySeed = 20260217;

} // namespace

/// The panel under answers in any order, while its user searches, scrolls, refreshes, and changes the server.
/// QAV_HISTORY_SEED and QAV_HISTORY_STEPS choose another course.
class HistoryRandomTest : public support::WatchedTest
{
    Q_OBJECT

private slots:
    void whatIsShownBelongsToWhatWasAskedLast()
    {
        const auto seed = unsigned(support::setting("QAV_HISTORY_SEED", DefaultHistorySeed));
        const int steps = support::setting("QAV_HISTORY_STEPS", DefaultHistorySteps);
        HistoryWorld world(seed);
        for (int step = 0; step < steps; ++step) {
            world.takeStep();
            if (step % 500 == 499) {
                world.answerAll();
            }
            if (QTest::currentTestFailed()) {
                QFAIL(qPrintable(QString("step %1 of seed %2").arg(step).arg(seed)));
            }
        }
        // A course that leaves something out tells nothing of it.
        for (const char* const happening :
             {"reopened", "switched", "switched while hidden", "group", "outcome", "refreshed",
              "refreshed without rows", "retried", "opened", "failed", "doubled", "overtaken", "joined", "begun again",
              "filtered", "loaded more", "stopped"}) {
            QVERIFY2(steps < DefaultHistorySteps || world.counts[happening] > steps / 1000, happening);
        }
    }
};

TEST_WITH_WIDGETS(HistoryRandomTest)
#include "tst_history_random.moc"
