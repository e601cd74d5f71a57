// SPDX-License-Identifier: Apache-2.0
#include "service/sampledata/CommandLine.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QElapsedTimer>

#include <cstdio>

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("qav-sample-data"));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Fills a new database with sample data."));
    parser.addHelpOption();
    parser.addOptions(service::sampleDataOptions());
    parser.process(application);

    const auto store = service::StoreOptions::forCreating(parser.value(QStringLiteral("database")));
    if (store.location.isEmpty()) {
        std::fputs("--database is missing\n", stderr);
        return 2;
    }
    service::SampleOptions options;
    for (const service::SampleAmount& amount : service::sampleAmounts()) {
        bool isNumber = false;
        options.*amount.value = parser.value(QLatin1String(amount.option)).toInt(&isNumber);
        if (!isNumber) {
            std::fprintf(stderr, "--%s: a number is expected\n", amount.option);
            return 2;
        }
    }

    QElapsedTimer timer;
    timer.start();
    utils::NVError error;
    const service::StorePtr opened = service::Store::open(store, error);
    if (opened) {
        error = service::generateSampleData(*opened, options);
    }
    if (!error.isSuccess()) {
        std::fprintf(stderr, "%s\n", error.errorMsg().c_str());
        return 1;
    }
    std::printf("%d sub-systems, %d accounts, %d groups in %.1f s\n", options.servers, options.accounts, options.groups,
                static_cast<double>(timer.elapsed()) / 1000.0);
    return 0;
}
