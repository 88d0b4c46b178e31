#ifndef ZM_BENCH_RATIO_TABLE_HPP
#define ZM_BENCH_RATIO_TABLE_HPP

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace bench {

/// Prints a table with a row for each work and size: the times of ours, of the plain way and of the floor,
/// how many times faster ours is than the plain way, and how many times the floor it takes. Benchmarks are
/// named "work/variant/size"; the time is per signal where the counter "signals" tells how many there are.
class RatioTable : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context& context) override;
    void ReportRuns(const std::vector<Run>& runs) override;
    void Finalize() override;

private:
    using Key = std::pair<std::string, long>;
    using Times = std::map<std::string, double>;  // by variant
    std::vector<Key> m_order;
    std::map<Key, Times> m_rows;
};

}  // namespace bench

#endif
