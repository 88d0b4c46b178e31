#include "bench/PlainSignals.hpp"
#include "bench/RatioTable.hpp"
#include "hmi/InstrumentedSignals.hpp"
#include "host/HostCall.hpp"
#include "host/Text.hpp"

#include <benchmark/benchmark.h>
#include <malloc.h>
#include <boost/container_hash/hash.hpp>
#include <boost/make_shared.hpp>
#include <boost/unordered/unordered_flat_map.hpp>
#include <boost/uuid/random_generator.hpp>
#include <boost/uuid/uuid_io.hpp>

#include <algorithm>
#include <bit>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

// The queries of a redraw and the work of opening and editing a model, each beside the plain way ("plain")
// and, where there is one, beside what no implementation could beat ("floor"). Everything is measured in one
// run.

namespace {

using bench::PlainSignals;
using zm_hmi::InstrumentedSignals;
using zm_hmi::SignalSpecification;
using zm_hmi::SignalSpecificationPtr;

const std::u16string modelName = u"plant";

std::u16string wide(const std::string& text)
{
    return toUtf16(text.c_str());
}

// 30 characters at a million signals.
std::u16string blockPath(std::size_t i)
{
    return u"plant/Subsystem" + wide(std::to_string(i / 100)) + u"/Block" + wide(std::to_string(i));
}

// Handles as hosts make them: large, with a fraction.
double handleOf(std::size_t i)
{
    return 1000.0 + static_cast<double>(i) + 0.000244140625;
}

SignalSpecificationPtr makeSignal(std::size_t i)
{
    return SignalSpecificationPtr(SignalSpecification::createSigSpecFromPort(
        blockPath(i), "plant:" + std::to_string(i), 1, 0, handleOf(i), modelName, false));
}

std::vector<SignalSpecificationPtr> makeSignals(std::size_t count)
{
    std::vector<SignalSpecificationPtr> signals;
    signals.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        signals.push_back(makeSignal(i));
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
std::unique_ptr<PlainSignals> emptySignals()
{
    return std::make_unique<PlainSignals>(modelName);
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

void countSignals(benchmark::State& state, std::size_t count)
{
    state.counters["signals"] = static_cast<double>(count);
}

// ---- queries ------------------------------------------------------------------------------------

/// The handles that are asked for, in the order of the questions: neither their making nor the stride is
/// measured.
std::vector<double> askedHandles(std::size_t count, bool hit)
{
    std::vector<double> handles(count);
    std::size_t at = 0;
    for (double& handle : handles) {
        handle = handleOf(at) + (hit ? 0.0 : 0.5);
        at = next(at, count);
    }
    return handles;
}

template <class Query>
void askByHandle(benchmark::State& state, bool hit, Query query)
{
    const std::vector<double> handles = askedHandles(sizeOf(state), hit);
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(query(handles[i], 1));
        i = i + 1 == handles.size() ? 0 : i + 1;
    }
}

template <class Signals, bool Hit>
void byHandle(benchmark::State& state)
{
    const auto signals = filledSignals<Signals>(sizeOf(state));
    const Signals& asked = *signals;
    askByHandle(state, Hit, [&](double handle, int port) { return asked.isPortObserved(handle, port); });
}

template <bool Hit>
void byHandleFloor(benchmark::State& state)
{
    using Key = std::pair<std::uint64_t, int>;
    boost::unordered_flat_map<Key, bool> map;
    for (std::size_t i = 0; i < sizeOf(state); ++i) {
        map.emplace(Key(std::bit_cast<std::uint64_t>(handleOf(i)), 1), true);
    }
    askByHandle(state, Hit, [&](double handle, int port) {
        return map.find(Key(std::bit_cast<std::uint64_t>(handle), port)) != map.end();
    });
}

// With a handle that is not cached.
template <class Signals>
void byPath(benchmark::State& state)
{
    const std::size_t count = sizeOf(state);
    const auto signals = filledSignals<Signals>(count);
    std::vector<std::u16string> paths(count);
    std::size_t at = 0;
    for (std::u16string& path : paths) {
        path = blockPath(at).substr(modelName.size() + 1);
        at = next(at, count);
    }
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(signals->isPortObserved(1.5, paths[i], std::u16string(), 1, 0, 0));
        i = i + 1 == count ? 0 : i + 1;
    }
}

// ---- keys ---------------------------------------------------------------------------------------

enum class Handles { Grid, Large, Random };

template <Handles Kind, class Hash>
void cachedKeys(benchmark::State& state, Hash hash)
{
    std::mt19937_64 random(1);
    std::vector<double> handles(1024);
    for (std::size_t i = 0; i < handles.size(); ++i) {
        const auto bits = static_cast<double>(random() >> 11);
        handles[i] = Kind == Handles::Grid    ? handleOf(i)
                     : Kind == Handles::Large ? 1e12 + static_cast<double>(i)
                                              : bits / 4194304.0;
    }
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(hash(handles[i], 1));
        i = (i + 1) % handles.size();
    }
}

template <Handles Kind>
void cachedKey(benchmark::State& state)
{
    cachedKeys<Kind>(state, SignalSpecification::getCachedInfoHash);
}

template <Handles Kind>
void cachedKeyPlain(benchmark::State& state)
{
    cachedKeys<Kind>(state, PlainSignals::cachedKey);
}

const std::u16string path46 = u"Subsystem17/Controller/Begrenzung12345678";
const std::u16string path173 = path46 + u"/" + path46 + u"/" + path46 + u"/" + path46 + u"/";
const std::u16string cyrillic = u"Подсистема17/Регулятор/Ограничитель";

template <const std::u16string& Path>
void pathKey(benchmark::State& state)
{
    std::u16string path = Path;
    for (auto _ : state) {
        benchmark::DoNotOptimize(path);
        benchmark::DoNotOptimize(
            SignalSpecification::getNonCachedInfoHash(path, std::u16string(), 1, 0, std::u16string()));
    }
}

template <const std::u16string& Path>
void pathKeyPlain(benchmark::State& state)
{
    for (auto _ : state) {
        benchmark::DoNotOptimize(PlainSignals::pathKey(std::u16string(), Path, std::u16string(), 1));
    }
}

template <const std::u16string& Path>
void pathKeyFloor(benchmark::State& state)
{
    std::string text = toUtf8(Path) + "$$$$1";
    for (auto _ : state) {
        benchmark::DoNotOptimize(text);
        benchmark::DoNotOptimize(boost::hash<std::string>()(text));
    }
}

// ---- changes ------------------------------------------------------------------------------------

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
    countSignals(state, records.size());
}

// The longest of all single additions, in place of their mean.
template <class Signals>
void worstAdd(benchmark::State& state)
{
    using Clock = std::chrono::steady_clock;
    const std::vector<SignalSpecificationPtr> records = makeSignals(sizeOf(state));
    for (auto _ : state) {
        auto signals = emptySignals<Signals>();
        Clock::duration worst{};
        for (const SignalSpecificationPtr& record : records) {
            const Clock::time_point before = Clock::now();
            signals->add(record);
            worst = std::max(worst, Clock::now() - before);
        }
        state.SetIterationTime(std::chrono::duration<double>(worst).count());
    }
}

template <class Signals>
void rebuild(benchmark::State& state)
{
    const auto signals = filledSignals<Signals>(sizeOf(state));
    for (auto _ : state) {
        signals->updateObservedPortMap();
    }
    countSignals(state, sizeOf(state));
}

// Two ports of one block are exchanged; in the others' places stand one rebuild.
void renumberOne(benchmark::State& state)
{
    const auto signals = filledSignals<InstrumentedSignals>(sizeOf(state));
    std::vector<int> numbers = {2, 1};
    for (auto _ : state) {
        signals->renumberPorts(handleOf(0), blockPath(0), "plant:0", numbers);
    }
    countSignals(state, sizeOf(state));
}

void renumberThousand(benchmark::State& state)
{
    const auto signals = filledSignals<InstrumentedSignals>(sizeOf(state));
    std::vector<InstrumentedSignals::PortNumbers> blocks;
    for (std::size_t i = 0; i < std::min<std::size_t>(1000, sizeOf(state)); ++i) {
        blocks.push_back({handleOf(i), blockPath(i), "plant:" + std::to_string(i), {2, 1}});
    }
    for (auto _ : state) {
        signals->renumberPorts(blocks);
    }
    countSignals(state, sizeOf(state));
}

void rebuildOnce(benchmark::State& state)
{
    rebuild<InstrumentedSignals>(state);
}

OwnedArray persisted(std::size_t count)
{
    OwnedArray data(nvCreateStructArray(1, &count, SignalSpecification::getNumStructFields(false),
                                        SignalSpecification::getStructFields()));
    for (std::size_t i = 0; i < count; ++i) {
        makeSignal(i)->createStructData(data.get(), i, std::u16string());
    }
    return data;
}

template <class Load>
void loadWith(benchmark::State& state, Load load)
{
    const OwnedArray data = persisted(sizeOf(state));
    for (auto _ : state) {
        load(state, data.get());
    }
    countSignals(state, sizeOf(state));
}

template <class Signals, class Action>
void discarding(benchmark::State& state, Action action)
{
    auto signals = emptySignals<Signals>();
    action(*signals);
    state.PauseTiming();
    signals.reset();
    state.ResumeTiming();
}

void load(benchmark::State& state)
{
    loadWith(state, [](benchmark::State& current, const nvArray* data) {
        discarding<InstrumentedSignals>(current,
                                        [&](auto& signals) { signals.setFromPersistenceData(data); });
    });
}

void loadPlain(benchmark::State& state)
{
    loadWith(state, [](benchmark::State& current, const nvArray* data) {
        discarding<PlainSignals>(current, [&](auto& signals) { signals.load(data); });
    });
}

// Reading the same values through the host's operations, and doing nothing with them.
void loadFloor(benchmark::State& state)
{
    loadWith(state, [](benchmark::State& /*current*/, const nvArray* data) {
        const char* const* names = SignalSpecification::getStructFields();
        for (std::size_t i = 0; i < nvGetNumberOfElements(data); ++i) {
            for (std::size_t field = 0; field < SignalSpecification::getNumStructFields(false); ++field) {
                const nvArray* value = nvGetField(data, i, names[field]);
                const std::string_view name = names[field];
                if (name == "UUID" || name == "ZID_") {
                    benchmark::DoNotOptimize(nvArrayToStdString(value));
                } else if (name == "DomainParams_") {
                    benchmark::DoNotOptimize(nvIsEmpty(value) ? 0 : nvGetFieldNames(value).size());
                } else if (name.ends_with("Path_") || name.ends_with("Name_") || name.ends_with("Type_")) {
                    benchmark::DoNotOptimize(nvGetUString(value));
                } else {
                    benchmark::DoNotOptimize(nvGetScalar(value));
                }
            }
        }
    });
}

// ---- chart difference ---------------------------------------------------------------------------

template <class Signals>
std::unique_ptr<Signals> chartSignals(std::size_t count)
{
    const std::vector<const char*> fields = {"KZID", "Activity"};
    const char* const* names = SignalSpecification::getStructFields();
    const std::size_t one = 1;
    auto signals = emptySignals<Signals>();
    for (std::size_t i = 0; i < count; ++i) {
        const OwnedArray data(
            nvCreateStructArray(1, &one, SignalSpecification::getNumStructFields(false), names));
        SignalSpecification().createStructData(data.get(), 0, std::u16string());
        OwnedArray params(nvCreateStructArray(1, &one, fields.size(), fields.data()));
        setField(params.get(), 0, "KZID", makeString(std::to_string(i % 7)));
        setField(params.get(), 0, "Activity", makeString(std::string("Self")));
        replaceField(data.get(), 0, "DomainParams_", std::move(params));
        replaceField(data.get(), 0, "DomainType_", makeString(std::string("kw_state")));
        replaceField(data.get(), 0, "ZID_", makeString(std::to_string(i / 7)));
        signals->add(boost::make_shared<SignalSpecification>(data.get(), 0, std::u16string()));
    }
    return signals;
}

void chartDifference(benchmark::State& state)
{
    const auto one = chartSignals<InstrumentedSignals>(sizeOf(state));
    const auto other = chartSignals<InstrumentedSignals>(sizeOf(state));
    for (auto _ : state) {
        benchmark::DoNotOptimize(one->setDifference_kw(other.get()));
    }
    countSignals(state, sizeOf(state));
}

// Comparing all pairs of 100,000 takes minutes: fifty elements, spread evenly, give the time of each.
void chartDifferencePlain(benchmark::State& state)
{
    const auto one = chartSignals<PlainSignals>(sizeOf(state));
    const auto other = chartSignals<PlainSignals>(sizeOf(state));
    const std::size_t stride = sizeOf(state) / 50;
    for (auto _ : state) {
        benchmark::DoNotOptimize(one->setDifference(*other, stride));
    }
    countSignals(state, sizeOf(state) / stride);
}

// ---- UUIDs and memory ---------------------------------------------------------------------------

void newUUID(benchmark::State& state)
{
    for (auto _ : state) {
        benchmark::DoNotOptimize(SignalSpecification::getUUIDFromBlockHandle(1, 1.5, false));
    }
}

void newUUIDFloor(benchmark::State& state)
{
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> device(std::fopen("/dev/urandom", "rb"),
                                                                 std::fclose);
    std::setvbuf(device.get(), nullptr, _IONBF, 0);
    boost::uuids::uuid uuid{};
    for (auto _ : state) {
        benchmark::DoNotOptimize(std::fread(uuid.data, 1, sizeof uuid.data, device.get()));
        benchmark::DoNotOptimize(boost::uuids::to_string(uuid));
    }
}

// Bytes on the heap of a record and its entries.
void memory(benchmark::State& state)
{
    for (auto _ : state) {
        const std::size_t before = mallinfo2().uordblks + mallinfo2().hblkhd;
        const auto signals = filledSignals<InstrumentedSignals>(sizeOf(state));
        const std::size_t used = mallinfo2().uordblks + mallinfo2().hblkhd - before;
        state.SetIterationTime(1e-9 * static_cast<double>(used));  // shown as "nanoseconds"
    }
    countSignals(state, sizeOf(state));
}

// ---- table of benchmarks ------------------------------------------------------------------------

using Body = void (*)(benchmark::State&);

struct Work {
    std::string name;
    std::vector<std::int64_t> sizes;
    Body ours;
    Body plain = nullptr;
    Body floor = nullptr;
    bool isTimedByHand = false;
};

const std::vector<std::int64_t> everySize = {10, 1000, 100'000, 1'000'000};

const std::vector<Work> works = {
    {"by handle hit", everySize, byHandle<InstrumentedSignals, true>, byHandle<PlainSignals, true>,
     byHandleFloor<true>},
    {"by handle miss", everySize, byHandle<InstrumentedSignals, false>, byHandle<PlainSignals, false>,
     byHandleFloor<false>},
    {"by path", everySize, byPath<InstrumentedSignals>, byPath<PlainSignals>},
    {"cached key, grid", {1}, cachedKey<Handles::Grid>, cachedKeyPlain<Handles::Grid>},
    {"cached key, large", {1}, cachedKey<Handles::Large>, cachedKeyPlain<Handles::Large>},
    {"cached key, random", {1}, cachedKey<Handles::Random>, cachedKeyPlain<Handles::Random>},
    {"path key, 46 bytes", {1}, pathKey<path46>, pathKeyPlain<path46>, pathKeyFloor<path46>},
    {"path key, 173 bytes", {1}, pathKey<path173>, pathKeyPlain<path173>, pathKeyFloor<path173>},
    {"path key, Cyrillic", {1}, pathKey<cyrillic>, pathKeyPlain<cyrillic>, pathKeyFloor<cyrillic>},
    {"add", everySize, add<InstrumentedSignals>, add<PlainSignals>},
    {"worst add", {1'000'000}, worstAdd<InstrumentedSignals>, worstAdd<PlainSignals>, nullptr, true},
    {"rebuild", everySize, rebuild<InstrumentedSignals>, rebuild<PlainSignals>},
    {"renumber a block", {1000, 100'000}, renumberOne, nullptr, rebuildOnce},
    {"renumber 1000 blocks", {100'000}, renumberThousand, nullptr, rebuildOnce},
    {"load", everySize, load, loadPlain, loadFloor},
    {"chart difference", {1000, 10'000, 100'000}, chartDifference, chartDifferencePlain},
    {"new UUID", {1}, newUUID, nullptr, newUUIDFloor},
    {"memory", {1'000'000}, memory, nullptr, nullptr, true},
};

void registerVariant(const Work& work, const char* variant, Body body)
{
    if (body == nullptr) {
        return;
    }
    for (const std::int64_t size : work.sizes) {
        benchmark::internal::Benchmark* registered =
            benchmark::RegisterBenchmark((work.name + "/" + variant).c_str(), body)->Arg(size);
        if (work.isTimedByHand) {
            registered->UseManualTime()->Iterations(1);
        }
    }
}

}  // namespace

int main(int argc, char** argv)
{
    for (const Work& work : works) {
        registerVariant(work, "ours", work.ours);
        registerVariant(work, "plain", work.plain);
        registerVariant(work, "floor", work.floor);
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    bench::RatioTable table;
    benchmark::RunSpecifiedBenchmarks(&table);
    return 0;
}
