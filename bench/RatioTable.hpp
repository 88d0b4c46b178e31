#ifndef ZM_BENCH_RATIO_TABLE_HPP
#define ZM_BENCH_RATIO_TABLE_HPP

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace bench {

/// Prints what was measured as a table with a row for each work and size: ours, the plain way of the same
/// run beside it, and their ratio. Benchmarks are named "work/ours/size" and "work/plain/size".
class RatioTable : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context& context) override;
    void ReportRuns(const std::vector<Run>& runs) override;
    void Finalize() override;

private:
    struct Row {
        double ours = 0.0;
        double plain = 0.0;
    };
    using Key = std::pair<std::string, long>;
    std::vector<Key> m_order;
    std::map<Key, Row> m_rows;
};

}  // namespace bench

#endif
