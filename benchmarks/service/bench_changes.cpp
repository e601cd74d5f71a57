// SPDX-License-Identifier: Apache-2.0
// Changes at many desks: how soon each of them is told of a change, what listening costs the operations of others, and
// the memory of a desk that listens.
//
//     bench_changes [desks [daemons]]
//
// Two equal installations take turns: at one the desks are silent, at the other they listen. Each has one daemon, or
// two of the same database: then four clients write at the first one, and the desks are at the second. SQLite in memory
// or in the folder QAV_TEST_FOLDER; with QAV_TEST_POSTGRES, the folder of a server's socket, PostgreSQL. Exits with 1
// if a bound is missed.
#include "Desks.h"

#include "service/daemon/DaemonProcess.h"
#include "service/daemon/Installation.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <sys/resource.h>
#include <unistd.h>

using namespace testservice;
namespace DataType = nvservice::DataType;

namespace
{

constexpr int DesksOfAnInstallation = 1000;
constexpr int Writers = 4;
constexpr int Rounds = 15;
constexpr int TurnMilliseconds = 2000;
constexpr int Changes = 100;
constexpr int ChangeMilliseconds = 97; ///< between two changes, so that they meet the readings at any moment
constexpr double LeastThroughput = 0.9;
constexpr double MostDelayMilliseconds = 1000;
constexpr double MostKibibytes = 64;

void require(bool holds, const char* what)
{
    if (!holds) {
        throw std::runtime_error(what);
    }
}

void sleep(int milliseconds)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

bool add(RawClient& writer, const std::string& name)
{
    return writer
        .operate(DataType::AccountGroup, EZvDataOperation::Add, group(name, First, {future("8001")}), "op-" + name)
        .error.isSuccess();
}

/// An installation with daemons and desks.
class Side
{
public:
    Side(int desks, int daemons)
    {
        for (int i = 0; i < daemons; ++i) {
            m_directories.push_back(std::make_unique<QTemporaryDir>());
            auto daemon = std::make_unique<DaemonProcess>(m_directories.back()->path());
            daemon->configure(m_installation.fixture.location(), East, {}, {},
                              "[limits]\nconnections = 20000\nconnections_per_address = 20000\n");
            QString errors;
            require(daemon->start(errors), "a daemon does not start");
            m_daemons.push_back(std::move(daemon));
        }
        require(m_desks.open(desks, m_daemons.back()->port()), "the desks cannot log in");
    }

    Desks& desks() { return m_desks; }

    void enterAsWriter(RawClient& writer) const { require(enter(writer, m_daemons.front()->port()), "no log-in"); }

    /// What clients reach who add groups for a while.
    struct Turn {
        double operationsPerSecond = 0;
        double microseconds = 0; ///< of processor time of the daemons, for each operation
        double deskLoad = 0;     ///< processor time of the desks, as a part of the time
        double told = 0;         ///< how often a desk was told of changes, each second
    };
    Turn takeTurn(int milliseconds = TurnMilliseconds)
    {
        const double daemonsBefore = daemonSeconds();
        const double desksBefore = m_desks.seconds();
        const long toldBefore = m_desks.told();
        std::atomic<int> done{0};
        std::vector<std::thread> writers;
        QElapsedTimer timer;
        timer.start();
        ++m_turns;
        for (int i = 0; i < Writers; ++i) {
            writers.emplace_back([&, name = std::to_string(m_turns) + '-' + std::to_string(i) + '-'] {
                RawClient writer;
                if (!enter(writer, m_daemons.front()->port())) {
                    return;
                }
                for (int n = 0; timer.elapsed() < milliseconds; ++n) {
                    done += add(writer, name + std::to_string(n)) ? 1 : 0;
                }
            });
        }
        for (std::thread& writer : writers) {
            writer.join();
        }
        const double seconds = static_cast<double>(timer.elapsed()) / 1000;
        const int operations = std::max(1, done.load());
        return {operations / seconds, (daemonSeconds() - daemonsBefore) * 1e6 / operations,
                (m_desks.seconds() - desksBefore) / seconds,
                static_cast<double>(m_desks.told() - toldBefore) / seconds};
    }

    /// Memory of the daemon of the desks.
    double kibibytes() const
    {
        std::ifstream file("/proc/" + std::to_string(m_daemons.back()->id()) + "/statm");
        double size = 0;
        double resident = 0;
        file >> size >> resident;
        return resident * static_cast<double>(::sysconf(_SC_PAGESIZE)) / 1024;
    }

private:
    double daemonSeconds() const
    {
        constexpr int ColumnOfUserTime = 11; // after the name, which may have blanks
        double ticks = 0;
        for (const auto& daemon : m_daemons) {
            std::ifstream file("/proc/" + std::to_string(daemon->id()) + "/stat");
            std::string text{std::istreambuf_iterator<char>(file), {}};
            std::istringstream columns(text.substr(text.rfind(')') + 1));
            std::string column;
            for (int i = 0; i < ColumnOfUserTime; ++i) {
                columns >> column;
            }
            double user = 0;
            double system = 0;
            columns >> user >> system;
            ticks += user + system;
        }
        return ticks / static_cast<double>(::sysconf(_SC_CLK_TCK));
    }

    Installation m_installation;
    std::vector<std::unique_ptr<QTemporaryDir>> m_directories;
    std::vector<std::unique_ptr<DaemonProcess>> m_daemons;
    int m_turns = 0;
    Desks m_desks;
};

double medianOf(const std::vector<Side::Turn>& turns, double Side::Turn::* value)
{
    std::vector<double> values;
    for (const Side::Turn& turn : turns) {
        values.push_back(turn.*value);
    }
    return median(values);
}

void print(const char* name, const std::vector<Side::Turn>& turns)
{
    std::printf("%-9s desks: %5.0f operations per second, %4.0f us of the daemon each; the desks are told %4.0f times"
                " a second and take %2.0f %% of a core\n",
                name, medianOf(turns, &Side::Turn::operationsPerSecond), medianOf(turns, &Side::Turn::microseconds),
                medianOf(turns, &Side::Turn::told), 100 * medianOf(turns, &Side::Turn::deskLoad));
}

/// The median of the rounds, each of which compares two turns after each other.
double ratio(const std::vector<Side::Turn>& ours, const std::vector<Side::Turn>& other, double Side::Turn::* value)
{
    std::vector<double> ratios;
    for (std::size_t i = 0; i < ours.size(); ++i) {
        ratios.push_back(ours[i].*value / (other[i].*value));
    }
    return median(ratios);
}

bool measureThroughput(Side& silent, Side& listening)
{
    std::vector<Side::Turn> without;
    std::vector<Side::Turn> with;
    for (int round = 0; round < Rounds; ++round) {
        const bool isSilentFirst = round % 2 == 0;
        Side& first = isSilentFirst ? silent : listening;
        Side& second = isSilentFirst ? listening : silent;
        (isSilentFirst ? without : with).push_back(first.takeTurn());
        (isSilentFirst ? with : without).push_back(second.takeTurn());
    }
    print("silent", without);
    print("listening", with);
    const double share = ratio(with, without, &Side::Turn::operationsPerSecond);
    std::printf("listening: %.2f x the operations%s, %.2f x the processor time of the daemon for each\n", share,
                share < LeastThroughput ? " (MISSED)" : "", ratio(with, without, &Side::Turn::microseconds));
    return share >= LeastThroughput;
}

bool measureDelays(Side& side, int desks)
{
    RawClient writer;
    side.enterAsWriter(writer);
    for (int i = 0; i < Changes; ++i) {
        const std::string name = "seen" + std::to_string(i);
        side.desks().expect(name);
        require(add(writer, name), "no change");
        sleep(ChangeMilliseconds);
    }
    sleep(3000);
    const std::vector<double> delays = side.desks().delays();
    const std::size_t all = static_cast<std::size_t>(desks) * Changes;
    std::printf("%zu of %zu changes seen by name", delays.size(), all);
    if (delays.size() != all) {
        std::printf("  MISSED\n");
        return false;
    }
    const double most = delays[all * 99 / 100];
    std::printf("; median %.0f ms, p99 %.0f ms, last %.0f ms%s\n", delays[all / 2], most, delays.back(),
                most > MostDelayMilliseconds ? "  MISSED" : "");
    return most <= MostDelayMilliseconds;
}

bool measure(int desks, int daemons)
{
    Side silent(desks, daemons);
    Side listening(desks, daemons);
    std::printf("%s, %d daemons at each of two installations, %d desks at each\n",
                support::TestDatabase::isPostgres() ? "PostgreSQL" : "SQLite", daemons, desks);
    constexpr int WarmUpMilliseconds = 1500;
    silent.takeTurn(WarmUpMilliseconds);
    listening.takeTurn(WarmUpMilliseconds);
    const double before = listening.kibibytes();
    listening.desks().listen();
    sleep(2000);
    const double memory = (listening.kibibytes() - before) / desks;
    const bool isFast = measureThroughput(silent, listening);
    sleep(2000);
    const bool isSoon = measureDelays(listening, desks);
    std::printf("memory of the daemon for a desk that listens: %.1f KiB%s\n", memory,
                memory > MostKibibytes ? "  MISSED" : "");
    return isFast && isSoon && memory <= MostKibibytes;
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    rlimit files{};
    ::getrlimit(RLIMIT_NOFILE, &files);
    files.rlim_cur = files.rlim_max;
    ::setrlimit(RLIMIT_NOFILE, &files);
    const int desks = argc > 1 ? std::max(1, std::atoi(argv[1])) : DesksOfAnInstallation;
    const int daemons = argc > 2 ? std::max(1, std::atoi(argv[2])) : 1;
    return measure(desks, daemons) ? 0 : 1;
}
