#ifndef ZM_BENCH_PLAIN_SIGNALS_HPP
#define ZM_BENCH_PLAIN_SIGNALS_HPP

#include "hmi/InstrumentedSignals.hpp"

#include <cstddef>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace bench {

/// The same operations, written in the straightforward way, as the measure of ours: `boost::lexical_cast` and
/// concatenation make a key text, `boost::hash<std::string>` its key, and the keys are those of a
/// `std::unordered_multimap`. Nothing is reserved.
class PlainSignals {
public:
    explicit PlainSignals(std::u16string modelName) : m_modelName(std::move(modelName)) {}

    static std::size_t cachedKey(double blockHandle, int portNumber);
    static std::size_t pathKey(const std::u16string& modelName, const std::u16string& blockPath,
                               const std::u16string& subPath, int port);

    void add(const zm_hmi::SignalSpecificationPtr& signal);
    void load(const nvArray* persisted);
    void updateObservedPortMap();
    bool isPortObserved(double blockHandle, int portNumber) const;
    bool isPortObserved(double blockHandle, const std::u16string& blockPath, const std::u16string& subPath,
                        int outputPortIndex, int portNumber, int logicalPortIndex) const;

    /// Compares every `stride`th element with those of `other`.
    std::vector<zm_hmi::SignalSpecificationPtr> setDifference(const PlainSignals& other,
                                                              std::size_t stride) const;

private:
    void enter(const zm_hmi::SignalSpecificationPtr& signal);

    std::u16string m_modelName;
    std::vector<zm_hmi::SignalSpecificationPtr> m_signals;
    std::unordered_multimap<std::size_t, zm_hmi::SignalSpecificationPtr> m_observedPorts;
};

}  // namespace bench

#endif
