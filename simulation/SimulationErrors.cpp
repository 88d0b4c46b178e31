#include "simulation/SimulationErrors.hpp"

#include "reference_host/support/ErrorCatalog.hpp"

#include <array>
#include <utility>

namespace simulation {

namespace {

using Message = reference_host::CatalogMessage;

constexpr std::array messages{
    // ports and their values
    Message{"UnknownPort", "{0}: \"{1}\" names no port: {2}."},
    Message{"NoOutputPort", "{0}: the block \"{1}\" has no output port {2}."},
    Message{"NoChartObject", "{0}: the block \"{1}\" has no chart object {2}."},
    Message{"OtherModel", "{0}: the block \"{1}\" is not one of the model \"{2}\"."},
    Message{"TwoSources", "The port \"{0}\" is computed by two sources: {1} and {2}."},
    Message{"NotANumber", "{0}: the value of the port \"{1}\" at {2} s is NaN."},
    Message{"NoValue", "{0}: the port \"{1}\" has no value at {2} s."},
    // times
    Message{"NoTimes", "No source has times of its own; the run needs a step."},
    Message{"InvalidStep", "The step is {0} s; it must be a finite number above 0."},
    Message{"InvalidPace", "The pace is {0}; it must be a finite number above 0."},
    Message{"InvalidTime", "The {0} time {1} s is not a finite number."},
    Message{"TimeRunsBack", "{0}: the time {1} s lies before {2} s."},
    // the run
    Message{"NoModel", "A run needs a model."},
    Message{"NoSources", "A run needs a source."},
    Message{"ModelClosed", "The model \"{0}\" was closed during its run."},
    Message{"Ended", "The run has ended."},
    Message{"StepInsideStep", "The run is stepped from inside one of its own steps."},
};

}  // namespace

zmsvException simulationError(const char* key, std::vector<zmsvMessageArgument> arguments)
{
    static const reference_host::ErrorCatalog catalog(simulationCatalog, messages);
    return catalog.error(key, std::move(arguments));
}

}  // namespace simulation
