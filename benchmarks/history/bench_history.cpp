// SPDX-License-Identifier: Apache-2.0
// Two configurations of 100 000 list entries side by side: from the records in hand to the painted frame, with few,
// some and all entries changed. Beside it stands decoding the two records, which comes before. Processor time of the
// user-interface thread; medians. Ends with 1 when a bound is missed.
#include "Harness.h"

#include "history/CComparisonView.h"

#include <WQ/CStandardHpfTable.h>
#include <WQ/CUiResourceManager.h>
#include <WQ/IBaseHpfTableModel.h>
#include <nvservice/CAccountGroupRCConfig.h>
#include <nvservice/Codec.h>

#include <QApplication>

#include <boost/make_shared.hpp>

using namespace bench;

namespace
{

constexpr int EntryCount = 100000;
constexpr int Rounds = 9;
/// What takes less is felt as no pause.
constexpr double BoundMs = 100;
constexpr double BoundToDecoding = 2;

using ConfigPtr = boost::shared_ptr<nvservice::CAccountGroupRCConfig>;

/// Every `step`-th entry is on the white list; all others are on the black one.
ConfigPtr makeConfig(int step)
{
    const auto config = boost::make_shared<nvservice::CAccountGroupRCConfig>();
    config->groupId = 7;
    auto& entries = config->rcRule.list(nvservice::EZvTraderType::Stock).entries;
    entries.reserve(EntryCount);
    for (int i = 0; i < EntryCount; ++i) {
        nvservice::CTradeLimitEntry entry;
        entry.securityCode = std::to_string(100000 + i);
        entry.securityName = "证券" + std::to_string(i);
        entry.listKind = nvservice::EZVRCListKind(step != 0 && i % step == 0);
        entries.push_back(std::move(entry));
    }
    return config;
}

template <typename Work>
double timed(const Work& work)
{
    QCoreApplication::processEvents();
    const double from = Clock::now();
    work();
    QCoreApplication::processEvents();
    return seconds(from, Clock::now());
}

double decode(const bson::BSONObj& document)
{
    return timed([&] {
        for (int side = 0; side < 2; ++side) {
            nvservice::IDataPtr record;
            if (!nvservice::decodeRecord(document, record).isSuccess()) {
                qFatal("the configuration cannot be decoded");
            }
        }
    });
}

double show(QAV::CComparisonView& view, const QAV::RecordPair& pair, int expected)
{
    view.showText(QStringLiteral("正在加载…"));
    const double time = timed([&] { view.showRecords(QStringLiteral("比较"), {pair}, {}); });
    if (view.table().dataModel()->rowCount() != expected) {
        qFatal("%d rows", view.table().dataModel()->rowCount());
    }
    return time;
}

} // namespace

int main(int argc, char** argv)
{
    prepareProcess();
    QApplication application(argc, argv);
    WQ::CUiResourceManager::instance()->applyTo(application);

    QAV::CComparisonView view(nullptr);
    view.resize(1000, 600);
    view.show();
    const ConfigPtr before = makeConfig(0);
    const ConfigPtr few = makeConfig(1000);
    const ConfigPtr some = makeConfig(10);
    const ConfigPtr all = makeConfig(1);
    // Another order: the first half behind the second.
    const ConfigPtr turned = makeConfig(0);
    auto& entries = turned->rcRule.lists[0].entries;
    std::rotate(entries.begin(), entries.begin() + EntryCount / 2, entries.end());
    const bson::BSONObj document = nvservice::encodeRecord(*before);

    Side decoding{"decode both", [&] { return decode(document); }};
    Side showFew{"100 changed", [&] { return show(view, {before, few}, EntryCount / 1000); }};
    Side showSome{"10 000 changed", [&] { return show(view, {before, some}, EntryCount / 10); }};
    Side showAll{"100 000 changed", [&] { return show(view, {before, all}, EntryCount); }};
    Side showTurned{"50 000 moved", [&] { return show(view, {before, turned}, EntryCount / 2); }};
    interleave({&decoding, &showFew, &showSome, &showAll, &showTurned}, Rounds);

    Report report;
    report.heading("Two configurations of 100 000 entries, milliseconds to the painted frame");
    report.time(decoding.name, decoding.result);
    for (const Side* const side : {&showFew, &showSome, &showAll, &showTurned}) {
        report.atMost(side->name, side->result * 1e3, BoundMs);
        report.atMost(side->name + " / decode both", side->result / decoding.result, BoundToDecoding);
    }
    return report.allKept() ? 0 : 1;
}
