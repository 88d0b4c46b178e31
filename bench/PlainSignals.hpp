#ifndef ZM_BENCH_PLAIN_SIGNALS_HPP
#define ZM_BENCH_PLAIN_SIGNALS_HPP

#include "hmi/InstrumentedSignals.hpp"

#include <string>
#include <unordered_map>
#include <vector>

namespace bench {

/// The plain way to answer the same questions, as the measure of ours: keys are strings, put together with
/// `boost::lexical_cast` and concatenation, in a `std::unordered_multimap`.
class PlainSignals {
public:
    explicit PlainSignals(std::u16string modelName) : m_modelName(std::move(modelName)) {}

    void add(const zm_hmi::SignalSpecificationPtr& signal);
    void load(const nvArray* persisted);
    bool isPortObserved(double blockHandle, int portNumber) const;
    bool isPortObserved(double blockHandle, const std::u16string& blockPath, const std::u16string& subPath,
                        int outputPortIndex, int portNumber, int logicalPortIndex) const;

private:
    std::u16string m_modelName;
    std::vector<zm_hmi::SignalSpecificationPtr> m_signals;
    std::unordered_multimap<std::string, zm_hmi::SignalSpecificationPtr> m_observedPorts;
};

}  // namespace bench

#endif
