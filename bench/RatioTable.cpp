#include "bench/RatioTable.hpp"

#include <cstdio>

namespace bench {

namespace {

void printTime(const std::map<std::string, double>& times, const char* variant)
{
    const auto time = times.find(variant);
    time == times.end() ? std::printf(" %12s", "") : std::printf(" %12.1f", time->second);
}

void printRatio(const std::map<std::string, double>& times, const char* dividend, const char* divisor)
{
    const auto upper = times.find(dividend);
    const auto lower = times.find(divisor);
    if (upper == times.end() || lower == times.end()) {
        std::printf(" %11s", "");
    } else {
        std::printf(" %11.2f", upper->second / lower->second);
    }
}

}  // namespace

bool RatioTable::ReportContext(const Context& /*context*/)
{
    std::printf("%-22s %8s %12s %12s %12s %11s %11s\n", "nanoseconds a signal", "signals", "ours", "plain",
                "floor", "plain/ours", "ours/floor");
    return true;
}

void RatioTable::ReportRuns(const std::vector<Run>& runs)
{
    for (const Run& run : runs) {
        if (run.error_occurred || run.run_type != Run::RT_Iteration) {
            continue;
        }
        const std::string name = run.run_name.function_name;  // "work/variant"
        const std::size_t slash = name.find('/');
        const Key key{name.substr(0, slash), std::stol(run.run_name.args)};
        if (!m_rows.contains(key)) {
            m_order.push_back(key);
        }
        const auto items = run.counters.find("signals");
        // The time of the processor: other work on the machine disturbs it less.
        const double time =
            run.run_name.time_type.empty() ? run.GetAdjustedCPUTime() : run.GetAdjustedRealTime();
        m_rows[key][name.substr(slash + 1)] =
            time / (items == run.counters.end() ? 1.0 : items->second.value);
    }
}

void RatioTable::Finalize()
{
    for (const Key& key : m_order) {
        const Times& times = m_rows[key];
        std::printf("%-22s %8ld", key.first.c_str(), key.second);
        printTime(times, "ours");
        printTime(times, "plain");
        printTime(times, "floor");
        printRatio(times, "plain", "ours");
        printRatio(times, "ours", "floor");
        std::printf("\n");
    }
}

}  // namespace bench
