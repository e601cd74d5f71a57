// SPDX-License-Identifier: Apache-2.0
#include "service/sampledata/SampleData.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QElapsedTimer>

#include <cstdio>

namespace
{

bool readNumber(const QCommandLineParser& parser, const char* option, int& value)
{
    bool isNumber = false;
    value = parser.value(QLatin1String(option)).toInt(&isNumber);
    if (!isNumber) {
        std::fprintf(stderr, "--%s: a number is expected\n", option);
    }
    return isNumber;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("qav-sample-data"));
    const service::SampleOptions defaults;

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Fills a new database with sample data."));
    parser.addHelpOption();
    const auto number = [](int value) { return QString::number(value); };
    parser.addOptions(
        {{"database", "Database: a file, created when it is missing, or postgresql://user@host/database.", "location"},
         {"servers", "Number of sub-systems.", "number", number(defaults.servers)},
         {"groups", "Account groups, all sub-systems together.", "number", number(defaults.groups)},
         {"accounts", "Accounts, all sub-systems together.", "number", number(defaults.accounts)},
         {"members", "Accounts of a group, on average.", "number", number(defaults.membersPerGroup)},
         {"categories", "Security categories of each sub-system.", "number", number(defaults.categories)},
         {"securities", "Securities of each sub-system.", "number", number(defaults.securities)},
         {"seed", "The same seed gives the same data.", "number", "1"}});
    parser.process(application);

    service::StoreOptions store;
    service::SampleOptions options;
    int seed = 1;
    store.location = parser.value(QStringLiteral("database"));
    if (store.location.isEmpty()) {
        std::fputs("--database is missing\n", stderr);
        return 2;
    }
    if (!readNumber(parser, "servers", options.servers) || !readNumber(parser, "groups", options.groups) ||
        !readNumber(parser, "accounts", options.accounts) || !readNumber(parser, "members", options.membersPerGroup) ||
        !readNumber(parser, "categories", options.categories) ||
        !readNumber(parser, "securities", options.securities) || !readNumber(parser, "seed", seed)) {
        return 2;
    }
    options.seed = static_cast<std::uint64_t>(seed);

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
