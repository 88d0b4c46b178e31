#include "bench/PlainSignals.hpp"
#include "bench/RatioTable.hpp"
#include "hmi/InstrumentedSignals.hpp"
#include "host/HostCall.hpp"
#include "host/Text.hpp"

#include <benchmark/benchmark.h>
#include <boost/make_shared.hpp>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

// The questions of a redraw and the work of opening a model, at four sizes, each beside the plain way.

namespace {

using zm_hmi::InstrumentedSignals;
using zm_hmi::SignalSpecification;
using zm_hmi::SignalSpecificationPtr;

const std::u16string modelName = u"plant";

std::u16string blockPath(std::size_t i)
{
    return u"plant/Subsystem" + toUtf16(std::to_string(i / 100).c_str()) + u"/Block" +
           toUtf16(std::to_string(i).c_str());
}

// Handles as hosts make them: large, with a fraction.
double handleOf(std::size_t i)
{
    return 1000.0 + static_cast<double>(i) + 0.000244140625;
}

std::vector<SignalSpecificationPtr> makeSignals(std::size_t count)
{
    std::vector<SignalSpecificationPtr> signals;
    signals.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        signals.emplace_back(SignalSpecification::createSigSpecFromPort(
            blockPath(i), "plant:" + std::to_string(i), 1, 0, handleOf(i), modelName, false));
    }
    return signals;
}

template <class Signals>
std::unique_ptr<Signals> emptySignals();

template <>
std::unique_ptr<InstrumentedSignals> emptySignals()
{
    auto signals = std::make_unique<InstrumentedSignals>();
    signals->setModelName(modelName);
    return signals;
}

template <>
std::unique_ptr<bench::PlainSignals> emptySignals()
{
    return std::make_unique<bench::PlainSignals>(modelName);
}

template <class Signals>
std::unique_ptr<Signals> filledSignals(std::size_t count)
{
    auto signals = emptySignals<Signals>();
    for (const SignalSpecificationPtr& signal : makeSignals(count)) {
        signals->add(signal);
    }
    return signals;
}

std::size_t sizeOf(const benchmark::State& state)
{
    return std::max<std::size_t>(1, static_cast<std::size_t>(state.range(0)));
}

// Strides through the signals, so that neighbours in memory do not answer.
std::size_t next(std::size_t i, std::size_t count)
{
    return (i + 7919) % count;
}

template <class Signals>
void cachedQuery(benchmark::State& state, bool hit)
{
    const std::size_t count = sizeOf(state);
    const auto signals = filledSignals<Signals>(count);
    const Signals& asked = *signals;
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(asked.isPortObserved(handleOf(i) + (hit ? 0.0 : 0.5), 1));
        i = next(i, count);
    }
}

template <class Signals>
void cachedHit(benchmark::State& state)
{
    cachedQuery<Signals>(state, true);
}

template <class Signals>
void cachedMiss(benchmark::State& state)
{
    cachedQuery<Signals>(state, false);
}

// By path, with a handle that nobody has cached.
template <class Signals>
void fullQuery(benchmark::State& state)
{
    const std::size_t count = sizeOf(state);
    const auto signals = filledSignals<Signals>(count);
    std::vector<std::u16string> paths(count);
    for (std::size_t i = 0; i < count; ++i) {
        paths[i] = blockPath(i).substr(modelName.size() + 1);
    }
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(signals->isPortObserved(1.5, paths[i], std::u16string(), 1, 0, 0));
        i = next(i, count);
    }
}

template <class Signals>
void add(benchmark::State& state)
{
    const std::vector<SignalSpecificationPtr> records = makeSignals(sizeOf(state));
    for (auto _ : state) {
        auto signals = emptySignals<Signals>();
        for (const SignalSpecificationPtr& record : records) {
            signals->add(record);
        }
        state.PauseTiming();
        signals.reset();
        state.ResumeTiming();
    }
    state.counters["signals"] = static_cast<double>(records.size());
}

void loadInto(InstrumentedSignals& signals, const nvArray* data)
{
    signals.setFromPersistenceData(data);
}

void loadInto(bench::PlainSignals& signals, const nvArray* data)
{
    signals.load(data);
}

template <class Signals>
void load(benchmark::State& state)
{
    const std::vector<SignalSpecificationPtr> records = makeSignals(sizeOf(state));
    const std::size_t count = records.size();
    const OwnedArray data(nvCreateStructArray(1, &count, SignalSpecification::getNumStructFields(false),
                                              SignalSpecification::getStructFields()));
    for (std::size_t i = 0; i < count; ++i) {
        records[i]->createStructData(data.get(), i, std::u16string());
    }
    for (auto _ : state) {
        auto signals = emptySignals<Signals>();
        loadInto(*signals, data.get());
        state.PauseTiming();
        signals.reset();
        state.ResumeTiming();
    }
    state.counters["signals"] = static_cast<double>(count);
}

void registerPair(const std::string& name, void (*ours)(benchmark::State&), void (*plain)(benchmark::State&))
{
    for (const std::int64_t size : {10, 1000, 100'000, 1'000'000}) {
        benchmark::RegisterBenchmark((name + "/ours").c_str(), ours)->Arg(size);
        benchmark::RegisterBenchmark((name + "/plain").c_str(), plain)->Arg(size);
    }
}

}  // namespace

int main(int argc, char** argv)
{
    using Ours = InstrumentedSignals;
    using Plain = bench::PlainSignals;
    registerPair("by handle, observed", cachedHit<Ours>, cachedHit<Plain>);
    registerPair("by handle, not observed", cachedMiss<Ours>, cachedMiss<Plain>);
    registerPair("by path", fullQuery<Ours>, fullQuery<Plain>);
    registerPair("add", add<Ours>, add<Plain>);
    registerPair("load", load<Ours>, load<Plain>);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    bench::RatioTable table;
    benchmark::RunSpecifiedBenchmarks(&table);
    return 0;
}
