// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include <malloc.h>

namespace bench
{

/// To be called first in main(), before there is an application.
inline void prepareProcess()
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    // Freed memory stays in the process: fresh pages cost every side the same, and which side gets them is chance.
    mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());
    mallopt(M_MMAP_THRESHOLD, 1 << 30);
    mallopt(M_TOP_PAD, 64 << 20);
}

/// Processor time of the calling thread: everything here runs on one thread, and what else the machine does meanwhile
/// is nobody's fault.
struct Clock {
    static double now()
    {
        timespec time{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
    }
};

inline double seconds(double from, double to)
{
    return to - from;
}

inline double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.empty() ? 0 : values[values.size() / 2];
}

/// One thing that is measured: `run` does it once, from a fresh start, and returns the seconds that count.
struct Side {
    std::string name;
    std::function<double()> run;
    double result = 0;
};

/// Runs the sides in turn, `rounds` times after one round that doesn't count, and leaves each one's median in it.
inline void interleave(std::vector<Side*> sides, int rounds)
{
    std::vector<std::vector<double>> times(sides.size());
    for (int round = -1; round < rounds; ++round) {
        for (std::size_t i = 0; i < sides.size(); ++i) {
            const double time = sides[i]->run();
            if (round >= 0) {
                times[i].push_back(time);
            }
        }
    }
    for (std::size_t i = 0; i < sides.size(); ++i) {
        sides[i]->result = median(times[i]);
    }
}

/// Prints a ratio beside the bound that it must keep, and remembers whether all did.
class Report
{
public:
    void time(const std::string& what, double value) { std::printf("  %-58s %12.3f ms\n", what.c_str(), value * 1e3); }
    void atMost(const std::string& what, double ratio, double bound) { line(what, ratio, bound, "<=", ratio <= bound); }
    void atLeast(const std::string& what, double ratio, double bound)
    {
        line(what, ratio, bound, ">=", ratio >= bound);
    }
    void heading(const std::string& text) { std::printf("\n%s\n", text.c_str()); }
    bool allKept() const { return m_failed == 0; }

private:
    void line(const std::string& what, double ratio, double bound, const char* relation, bool kept)
    {
        std::printf("  %-58s %9.3f %s %-7g %s\n", what.c_str(), ratio, relation, bound, kept ? "kept" : "MISSED");
        std::fflush(stdout);
        if (!kept) {
            ++m_failed;
        }
    }

    int m_failed = 0;
};

} // namespace bench
