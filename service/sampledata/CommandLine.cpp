// SPDX-License-Identifier: Apache-2.0
#include "service/sampledata/CommandLine.h"

namespace service
{

const std::vector<SampleAmount>& sampleAmounts()
{
    static const std::vector<SampleAmount> amounts = {
        {"servers", "Number of sub-systems.", &SampleOptions::servers},
        {"groups", "Account groups, all sub-systems together.", &SampleOptions::groups},
        {"accounts", "Accounts, all sub-systems together.", &SampleOptions::accounts},
        {"members", "Accounts of a group, on average.", &SampleOptions::membersPerGroup},
        {"categories", "Security categories of each sub-system.", &SampleOptions::categories},
        {"securities", "Securities of each sub-system.", &SampleOptions::securities},
        {"seed", "The same seed gives the same data.", &SampleOptions::seed}};
    return amounts;
}

QList<QCommandLineOption> sampleDataOptions()
{
    QList<QCommandLineOption> options = {
        {"database", "Database: a file, created when it is missing, or postgresql://user@host/database.", "location"}};
    const SampleOptions defaults;
    for (const SampleAmount& amount : sampleAmounts()) {
        options << QCommandLineOption(amount.option, amount.description, "number",
                                      QString::number(defaults.*amount.value));
    }
    return options;
}

} // namespace service
