#include "bench/RatioTable.hpp"

#include <cstdio>

namespace bench {

bool RatioTable::ReportContext(const Context& /*context*/)
{
    std::printf("%-28s %9s %12s %12s %8s\n", "nanoseconds a signal", "signals", "ours", "plain", "ratio");
    return true;
}

void RatioTable::ReportRuns(const std::vector<Run>& runs)
{
    for (const Run& run : runs) {
        if (run.error_occurred || run.run_type != Run::RT_Iteration) {
            continue;
        }
        // "work/variant/size", perhaps followed by options
        const std::string name = run.run_name.function_name;
        const std::size_t slash = name.find('/');
        const Key key{name.substr(0, slash), std::stol(run.run_name.args)};
        if (!m_rows.contains(key)) {
            m_order.push_back(key);
        }
        Row& row = m_rows[key];
        const auto items = run.counters.find("signals");
        const double perSignal =
            run.GetAdjustedRealTime() / (items == run.counters.end() ? 1.0 : items->second.value);
        (name.substr(slash + 1) == "ours" ? row.ours : row.plain) = perSignal;
    }
}

void RatioTable::Finalize()
{
    for (const Key& key : m_order) {
        const Row& row = m_rows[key];
        std::printf("%-28s %9ld %12.1f %12.1f %8.2f\n", key.first.c_str(), key.second, row.ours, row.plain,
                    row.plain > 0.0 ? row.ours / row.plain : 0.0);
    }
}

}  // namespace bench
