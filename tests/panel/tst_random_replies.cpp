// SPDX-License-Identifier: Apache-2.0
#include "ReplyWorld.h"

#include "support/TestProgram.h"
#include "support/UnexpectedLog.h"

using namespace panel_test;

namespace
{

#ifdef QAV_SLOW_BUILD
constexpr int DefaultSteps = 2000;
#else
constexpr int DefaultSteps = 10000;
#endif
constexpr int DefaultReplySeed = 20260122;

} // namespace

/// The panel and its group dialog under replies in any order, against a model of what they have to show.
/// QAV_REPLY_SEED and QAV_REPLY_STEPS choose another course.
class RandomRepliesTest : public QObject
{
    Q_OBJECT

private slots:
    void whatIsShownBelongsToWhatWasAskedLast()
    {
        const auto seed = unsigned(support::setting("QAV_REPLY_SEED", DefaultReplySeed));
        const int steps = support::setting("QAV_REPLY_STEPS", DefaultSteps);

        support::UnexpectedLog log;
        ReplyWorld world(seed);
        world.openPanel();
        for (int step = 0; step < steps; ++step) {
            takeStep(world);
            if (!QTest::currentTestFailed()) {
                world.check();
            }
            const QStringList unexpected = log.unexpected() + world.boxes.failures();
            if (QTest::currentTestFailed() || !unexpected.isEmpty()) {
                QFAIL(
                    qPrintable(QStringLiteral("step %1 of seed %2: %3").arg(step).arg(seed).arg(unexpected.join(' '))));
            }
        }
        world.answerAll();
    }

private:
    void takeStep(ReplyWorld& world)
    {
        const int at = world.below(1000);
        if (at < 470 && world.hasOpenQuestions()) {
            return world.answerAny();
        }
        if (at < 720) {
            return world.deliver();
        }
        if (at < 830) {
            return askAnew(world);
        }
        if (at < 900 && world.hasGroups()) {
            return world.deleteGroup();
        }
        if (at < 960 && world.hasGroups()) {
            return world.editGroup([&] {
                for (int steps = world.below(8); steps > 0; --steps) {
                    if (world.below(2) == 0 && world.hasOpenQuestions()) {
                        world.answerAny();
                    } else if (world.below(8) == 0) {
                        world.activate();
                    } else {
                        world.deliver();
                    }
                }
            });
        }
        if (at < 998) {
            return world.answerAll();
        }
        world.openPanel();
    }

    void askAnew(ReplyWorld& world)
    {
        switch (world.below(5)) {
        case 0:
            return world.activate();
        case 1:
            return world.refresh();
        case 2:
            return world.switchTo({});
        default:
            return world.switchTo(world.below(2) == 0 ? Shanghai : Shenzhen);
        }
    }
};

TEST_WITH_WIDGETS(RandomRepliesTest)
#include "tst_random_replies.moc"
