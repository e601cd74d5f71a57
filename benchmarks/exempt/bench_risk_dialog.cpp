// The risk settings dialog with a configuration of 100 000 list entries over eight trade types. Loading counts from the
// replies in hand to the painted dialog, saving from the click to both requests handed to the transport. Beside them
// stand decoding and encoding the same configuration, of which each may take three times as long.
//
// "busy" is the processor time of the user-interface thread, in milliseconds.
#include "RiskFixture.h"

#include <WQ/CUiResourceManager.h>
#include <nvservice/DataType.h>

#include <benchmark/benchmark.h>

#include <ctime>

#include <QAbstractButton>
#include <QApplication>
#include <QElapsedTimer>
#include <QtTest>

using namespace risk_test;

namespace
{

constexpr int EntriesPerTradeType = 12500;

boost::shared_ptr<nvservice::CAccountGroupRCConfig> makeLargeConfig()
{
    auto config = makeConfig(7, "大");
    for (nvservice::CTradeLimitList& list : config->rcRule.lists) {
        list.entries.clear();
        list.entries.reserve(EntriesPerTradeType);
        for (int i = 0; i < EntriesPerTradeType; ++i) {
            nvservice::CTradeLimitEntry entry;
            entry.securityCode = std::to_string(600000 + i);
            entry.securityName = "证券" + std::to_string(i);
            entry.listKind = nvservice::EZVRCListKind(i % 2);
            list.entries.push_back(std::move(entry));
        }
    }
    return config;
}

double busyMilliseconds()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) * 1e-6;
}

template <typename Work>
void measure(benchmark::State& state, Work work)
{
    const double busyBefore = busyMilliseconds();
    QElapsedTimer timer;
    timer.start();
    work();
    state.SetIterationTime(double(timer.nsecsElapsed()) * 1e-9);
    auto& busy = state.counters["busy"];
    busy.flags = benchmark::Counter::kAvgIterations;
    busy.value += busyMilliseconds() - busyBefore;
}

void decode(benchmark::State& state)
{
    const bson::BSONObj document = nvservice::encodeRecord(*makeLargeConfig());
    for ([[maybe_unused]] auto _ : state) {
        nvservice::IDataPtr record;
        measure(state, [&] {
            if (!nvservice::decodeRecord(document, record).isSuccess())
                state.SkipWithError("the configuration cannot be decoded");
        });
    }
}

void encode(benchmark::State& state)
{
    const auto config = makeLargeConfig();
    for ([[maybe_unused]] auto _ : state)
        measure(state, [&] { benchmark::DoNotOptimize(nvservice::encodeRecord(*config)); });
}

void load(benchmark::State& state)
{
    RiskFixture client;
    int groupId = 100;
    for ([[maybe_unused]] auto _ : state) {
        const auto config = makeLargeConfig();
        config->groupId = ++groupId;
        client.open(makeGroup(groupId, "大"));
        client.answerCategories(someCategories());
        client.settle();
        client.answerConfig({config});
        measure(state, [&] {
            client.settle();
            client.dialog().repaint();
        });
        if (client.tradeLimits().lists.size() != config->rcRule.lists.size())
            state.SkipWithError("the lists were not loaded");
    }
}

void save(benchmark::State& state)
{
    RiskFixture client;
    client.load(makeGroup(7, "大"), makeLargeConfig());
    for ([[maybe_unused]] auto _ : state) {
        client.boxes->expectMessage(QMessageBox::Information, "提示", "保存成功", QMessageBox::Ok, QMessageBox::Ok);
        measure(state, [&] { client.button("保存设置").click(); });
        if (client.shanghai->operations() != 2)
            state.SkipWithError("nothing was saved");
        client.answerSave(support::replyWith({}));
        client.settle();
    }
}

} // namespace

BENCHMARK(decode)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(load)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(encode)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(save)->UseManualTime()->Unit(benchmark::kMillisecond);

int main(int argc, char** argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    WQ::CUiResourceManager::instance()->applyTo(application);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
