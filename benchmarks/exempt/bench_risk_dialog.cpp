// SPDX-License-Identifier: Apache-2.0
// The risk settings dialog with a configuration of 100 000 list entries over eight trade types. Loading counts from the
// replies in hand to the painted dialog, saving from the click to both requests handed to the transport. Beside them
// stand decoding and encoding the same configuration. Processor time of the user-interface thread; medians. Ends with 1
// when a bound is missed.
#include "Harness.h"
#include "RiskFixture.h"

#include "support/qav/ServiceThread.h"

#include <WQ/CUiResourceManager.h>
#include <nvservice/DataType.h>

#include <QAbstractButton>
#include <QApplication>
#include <QtTest>

using namespace bench;
using namespace risk_test;

namespace
{

constexpr int EntriesPerTradeType = 12500;
constexpr int Rounds = 15;

using ConfigPtr = boost::shared_ptr<nvservice::CAccountGroupRCConfig>;

ConfigPtr makeLargeConfig(int groupId)
{
    ConfigPtr config = makeConfig(groupId, "大");
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

template <typename Work>
double timed(const Work& work)
{
    const double from = Clock::now();
    work();
    return seconds(from, Clock::now());
}

double decode(const bson::BSONObj& document)
{
    nvservice::IDataPtr record;
    return timed([&] {
        if (!nvservice::decodeRecord(document, record).isSuccess()) {
            qFatal("the configuration cannot be decoded");
        }
    });
}

double encode(const nvservice::CAccountGroupRCConfig& config)
{
    bson::BSONObj document;
    return timed([&] { document = nvservice::encodeRecord(config); });
}

/// Loads the next group into the dialog.
double load(RiskFixture& client)
{
    static int groupId = 100;
    const ConfigPtr config = makeLargeConfig(++groupId);
    client.open(makeGroup(groupId, "大"));
    client.answerCategories(someCategories());
    support::settleCallbacks();
    client.answerConfig({config});
    const double time = timed([&] {
        support::settleCallbacks();
        client.dialog().repaint();
    });
    if (client.tradeLimits().lists.size() != config->rcRule.lists.size()) {
        qFatal("the lists were not loaded");
    }
    return time;
}

/// Saves what was loaded last.
double save(RiskFixture& client)
{
    client.boxes->expectMessage(QMessageBox::Information, "提示", "保存成功", QMessageBox::Ok, QMessageBox::Ok);
    QAbstractButton& button = client.button("保存设置");
    const double time = timed([&] { button.click(); });
    if (client.shanghai->operations() != 2) {
        qFatal("nothing was saved");
    }
    client.answerSave(support::replyWith({}));
    support::settleCallbacks();
    return time;
}

} // namespace

int main(int argc, char** argv)
{
    prepareProcess();
    QApplication application(argc, argv);
    WQ::CUiResourceManager::instance()->applyTo(application);

    RiskFixture client;
    const ConfigPtr config = makeLargeConfig(7);
    const bson::BSONObj document = nvservice::encodeRecord(*config);
    Side decoding{"decode", [&] { return decode(document); }};
    Side loading{"load to the painted dialog", [&] { return load(client); }};
    Side encoding{"encode", [&] { return encode(*config); }};
    Side saving{"save", [&] { return save(client); }};
    interleave({&decoding, &loading, &encoding, &saving}, Rounds);

    Report report;
    report.heading("Configuration with 100 000 list entries over eight tabs");
    for (const Side* const side : {&decoding, &loading, &encoding, &saving}) {
        report.time(side->name, side->result);
    }
    report.atMost("load / decode", loading.result / decoding.result, 3);
    report.atMost("save / encode", saving.result / encoding.result, 3);
    return report.allKept() ? 0 : 1;
}
