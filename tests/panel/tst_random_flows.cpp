// SPDX-License-Identifier: Apache-2.0
#include "RandomFlows.h"

#include "support/TestProgram.h"
#include "support/UnexpectedLog.h"

using namespace panel_test;

namespace
{

#ifdef QAV_SLOW_BUILD
constexpr int DefaultFlows = 200;
#else
constexpr int DefaultFlows = 1000;
#endif
constexpr int DefaultFlowSeed = 20260105;

} // namespace

/// The panel and its dialogs under random work, on bad lines to real servers, against a model of what the databases
/// hold. QAV_FLOW_SEED and QAV_FLOW_COUNT choose other flows.
class RandomFlowsTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_log = std::make_unique<support::UnexpectedLog>();
        m_run = std::make_unique<FlowRun>();
    }

    void cleanup()
    {
        m_run.reset();
        m_log.reset();
    }

    void whateverTheUserAndTheLinesDoDatabaseAndTableAreAsTheModelSays()
    {
        const auto seed = unsigned(support::setting("QAV_FLOW_SEED", DefaultFlowSeed));
        const int flows = support::setting("QAV_FLOW_COUNT", DefaultFlows);
        m_run->random.seed(seed);
        FlowWorld& world = m_run->world;
        RandomFlows user(*m_run);

        world.openPanel(0);
        world.settle();
        for (int flow = 0; flow < flows; ++flow) {
            user.playOne();
            world.settle();
            world.compareDatabases();
            world.compareTable();
            const QStringList failures = world.boxes.takeFailures();
            const QStringList log = m_log->unexpected();
            if (QTest::currentTestFailed() || !failures.isEmpty() || !log.isEmpty()) {
                for (const QString& step : m_run->story.mid(qMax(0, m_run->story.size() - 30))) {
                    qInfo("%s", qPrintable(step));
                }
                QFAIL(qPrintable(
                    QStringLiteral("flow %1 of seed %2: %3").arg(flow).arg(seed).arg((failures + log).join(' '))));
            }
        }
        user.finish();
        world.settle();
        world.compareTable();
        world.closePanel();
        world.settle();
        world.checkNoWidgetIsLeft();
        world.checkNoRecordIsLeft();
        QString counts;
        for (const auto& [what, count] : m_run->counts) {
            counts += QStringLiteral("%1 %2, ").arg(count).arg(what);
        }
        qInfo("seed %u: %s%d flows", seed, qPrintable(counts), flows);
    }

private:
    std::unique_ptr<support::UnexpectedLog> m_log;
    std::unique_ptr<FlowRun> m_run;
};

TEST_WITH_WIDGETS(RandomFlowsTest)
#include "tst_random_flows.moc"
