#include "bench/RatioTable.hpp"
#include "hmi_foundation/Initialization.hpp"
#include "reference_host/classes/BuiltInClasses.hpp"
#include "reference_host/classes/ClassReflection.hpp"
#include "reference_host/classes/ObjectAccess.hpp"
#include "reference_host/model/OpenModels.hpp"
#include "reference_host/observers/ObserverFunctions.hpp"
#include "reference_host/observers/SignalRecords.hpp"
#include "reference_host/support/TextConversion.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "simulation/Run.hpp"
#include "simulation/TableSource.hpp"

#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <vector>

// A simulation whose every port is an instrumented signal, as fast as it goes: from a table through the run
// into the hub, beside a plain write of each value and its time into a ring of the signal's own.

namespace {

namespace rh = reference_host;
using rh::ObjectAccess;
using rh::OwnedValue;

constexpr std::size_t portsInBlock = 100;
constexpr std::size_t rows = 100;  // a second of model time
constexpr std::size_t maxPoints = 1000;

void startHost()
{
    NVInitialize_zm_hmi_foundation();
    for (const char* name :
         {rh::signalsClass, "Zelmar.HMI.StreamingClients", "Zelmar.HMI.SignalSpecification",
          "Zelmar.HMI.SignalClient", rh::modelObserversClass, "Zelmar.HMI.InterfaceMgr"}) {
        rh::describeClass(name);
    }
    rh::installDiagramFunctions();
    rh::installObserverFunctions();
    rh::installEditorFunctions();
}

void addSignal(const OwnedValue& signals, const rh::Block& block, std::size_t port)
{
    const OwnedValue signal = ObjectAccess::construct("Zelmar.HMI.SignalSpecification");
    const auto set = [&](const char* property, const OwnedValue& value) {
        ObjectAccess::setProperty(signal.get(), property, value.get());
    };
    set("UUID", rh::makeText(block.zid() + '-' + std::to_string(port)));
    set("BlockPath_", rh::makeText(block.path()));
    set("ZID_", rh::makeText(block.zid()));
    set("OutputPortIndex_", rh::makeDouble(static_cast<double>(port)));
    set("MaxPoints_", rh::makeDouble(static_cast<double>(maxPoints)));
    ObjectAccess::callMethod(signals.get(), "add", {signal.get()});
}

/// An open model with so many signals, and a table for all of them.
struct Plant {
    std::shared_ptr<rh::Model> model = std::make_shared<rh::Model>(u"plant");
    std::shared_ptr<simulation::Table> table = std::make_shared<simulation::Table>();

    explicit Plant(std::size_t signalCount)
    {
        const OwnedValue name = rh::makeText(u"plant");
        const OwnedValue signals = ObjectAccess::construct(rh::signalsClass, {name.get()});
        const OwnedValue clients = ObjectAccess::construct("Zelmar.HMI.StreamingClients", {name.get()});
        rh::OpenModels::add(model);
        for (std::size_t i = 0; i < signalCount; i += portsInBlock) {
            rh::Block& block = model->add(model->root(), rh::utf16FromUtf8("Block" + std::to_string(i)),
                                          rh::BlockKind::Component);
            for (std::size_t port = 0; port < portsInBlock; ++port) {
                block.addPort(rh::PortKind::Output, rh::utf16FromUtf8("y" + std::to_string(port)));
                addSignal(signals, block, port + 1);
                table->places.push_back({&block, port, {}});
            }
        }
        const auto observers = ObjectAccess::callStatic(
            rh::modelObserversClass, "createFromSignalsAndClients", {signals.get(), clients.get()});
        model->setObservers(observers.front().get());
        table->name = "table";
        for (std::size_t row = 0; row < rows; ++row) {
            table->times.push_back(static_cast<double>(row) / rows);
            for (std::size_t i = 0; i < signalCount; ++i) {
                table->values.push_back(static_cast<double>(row + i));
            }
        }
    }
    Plant(const Plant&) = delete;
    Plant& operator=(const Plant&) = delete;
    ~Plant() { rh::OpenModels::closeAll(); }
};

void ours(benchmark::State& state)
{
    const auto count = static_cast<std::size_t>(state.range(0));
    const Plant plant(count);
    simulation::Run::Sources sources;
    sources.push_back(std::make_unique<simulation::TableSource>(plant.table, true));
    simulation::Run run(plant.model, std::move(sources));
    for (std::size_t i = 0; i < 2 * maxPoints; ++i) {
        run.step();  // until the histories are full
    }
    for (auto _ : state) {
        run.step();
    }
    state.counters["signals"] = static_cast<double>(count);
}

void plain(benchmark::State& state)
{
    struct Ring {
        std::vector<double> times = std::vector<double>(maxPoints);
        std::vector<double> values = std::vector<double>(maxPoints);
    };
    const auto count = static_cast<std::size_t>(state.range(0));
    std::vector<Ring> rings(count);
    std::vector<double> table(rows * count);
    std::size_t step = 0;
    for (auto _ : state) {
        const double* const row = table.data() + (step % rows) * count;
        const std::size_t place = step % maxPoints;
        for (std::size_t i = 0; i < count; ++i) {
            rings[i].times[place] = static_cast<double>(step);
            rings[i].values[place] = row[i];
        }
        benchmark::ClobberMemory();
        ++step;
    }
    state.counters["signals"] = static_cast<double>(count);
}

}  // namespace

int main(int argc, char** argv)
{
    startHost();
    for (const std::int64_t size : {100, 1000, 10'000}) {
        benchmark::RegisterBenchmark("run into the hub/ours", ours)->Arg(size);
        benchmark::RegisterBenchmark("run into the hub/plain", plain)->Arg(size);
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    bench::RatioTable table;
    benchmark::RunSpecifiedBenchmarks(&table);
    return 0;
}
