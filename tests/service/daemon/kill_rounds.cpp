// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/KillRounds.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <cstdio>
#include <random>

/// Ends the daemon under load again and again and says what was lost.
int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addOptions({{"rounds", "How often the daemon is killed.", "number", "1000"},
                       {"clients", "Clients that work at the same time.", "number", "4"},
                       {"seed", "Of the moments; another one for each run unless given.", "number"}});
    parser.process(application);
    const unsigned seed = parser.isSet("seed") ? parser.value("seed").toUInt() : std::random_device()();
    const testservice::KillFigures figures =
        testservice::killRounds(parser.value("rounds").toInt(), parser.value("clients").toInt(), seed);
    std::printf("seed %u: %d rounds in %.0f s, %d operations acknowledged, %d unanswered, of which %d were applied\n",
                seed, figures.rounds, figures.seconds, figures.acknowledged, figures.unanswered, figures.wereApplied);
    if (!figures.failure.isEmpty()) {
        std::printf("FAILED: %s\n", qPrintable(figures.failure));
    }
    return figures.failure.isEmpty() ? 0 : 1;
}
