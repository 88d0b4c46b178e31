#include "hmi/InstrumentedSignals.hpp"

#include "hmi/Numbers.hpp"
#include "host/HostCall.hpp"
#include "host/Memory.hpp"

#include <array>
#include <utility>

namespace zm_hmi {

namespace {

OwnedArray asLocalTemporary(OwnedArray argument)
{
    zmsvSetLocalScope(argument.get());
    return asTemporary(std::move(argument));
}

// Element i of a result, which may be shorter than the list: missing ones are 0 and empty.

double numberAt(const OwnedArray& result, std::size_t i)
{
    return i < nvGetNumberOfElements(result.get()) ? nvGetElement(result.get(), i) : 0.0;
}

const nvArray* cellAt(const OwnedArray& result, std::size_t i)
{
    return i < nvGetNumberOfElements(result.get()) ? nvGetCell(result.get(), i) : nullptr;
}

std::string orEmpty(const char* text)
{
    return text != nullptr ? text : "";
}

// Shows the host error in flight as a warning. Of a host that cannot even make a diagnostic there is none.
void warnOfErrorInFlight()
{
    try {
        zmsvReportAsWarning(zmsvCreateDiagnosticFromCatchClause());
    } catch (const zmsvException&) {  // NOLINT(bugprone-empty-catch): see above
    }
}

// Runs a query. The editor's queries never fail towards their caller: a host error in making the arguments or
// reading the answer becomes one warning, as a failed call does. Only short memory is thrown.
template <class Query>
void warnInsteadOfThrowing(Query query)
{
    withHostMemoryErrors([&] {
        try {
            query();
        } catch (const zmsvException&) {
            warnOfErrorInFlight();
        }
    });
}

std::vector<InstrumentedSignals::Source> readSources(const std::array<OwnedArray, 10>& results)
{
    std::vector<InstrumentedSignals::Source> sources(nvGetNumberOfElements(results[0].get()));
    for (std::size_t i = 0; i < sources.size(); ++i) {
        InstrumentedSignals::Source& source = sources[i];
        source.name = nvArrayToStdString(cellAt(results[0], i));
        source.handle = numberAt(results[1], i);
        source.number1 = truncateToInt(numberAt(results[2], i));
        source.number2 = truncateToInt(numberAt(results[3], i));
        source.number3 = truncateToInt(numberAt(results[4], i));
        source.flag1 = numberAt(results[5], i) != 0.0;
        source.flag2 = numberAt(results[6], i) != 0.0;
        // A text comes eighth and the last flag ninth: the results do not follow the fields here.
        source.flag3 = numberAt(results[8], i) != 0.0;
        source.text1 = nvGetUString(cellAt(results[7], i));
        source.text2 = nvGetUString(cellAt(results[9], i));
    }
    return sources;
}

}  // namespace

void InstrumentedSignals::getObservedPorts(const nvArray* model, const char* firstText,
                                           const char* secondText, std::vector<Source>& sources,
                                           bool firstSwitch, bool secondSwitch)
{
    std::vector<Source> found;  // the texts may be those of a source in `sources`
    warnInsteadOfThrowing([&] {
        if (model == nullptr) {
            return;
        }
        const OwnedArray first = asLocalTemporary(makeString(orEmpty(firstText)));
        const OwnedArray second = asLocalTemporary(makeString(orEmpty(secondText)));
        const OwnedArray third = asLocalTemporary(makeLogical(firstSwitch));
        const OwnedArray fourth = asLocalTemporary(makeLogical(secondSwitch));
        const auto [succeeded, results] = callHostNoThrow<10>("getObservedPorts", model, first.get(),
                                                              second.get(), third.get(), fourth.get());
        if (succeeded) {
            found = readSources(results);
        }
    });
    sources = std::move(found);
}

void InstrumentedSignals::getPortsWithBadges(const nvArray* model, std::set<double>& handles)
{
    if (nvIsEmpty(model)) {
        return;
    }
    warnInsteadOfThrowing([&] {
        const HostCallResult<1> result = callHostNoThrow<1>("getPortsWithBadges", model);
        const nvArray* found = result.outputs[0].get();
        std::set<double> badged;
        for (std::size_t i = 0; i < nvGetNumberOfElements(found); ++i) {
            badged.insert(nvGetElement(found, i));
        }
        handles.merge(badged);
    });
}

}  // namespace zm_hmi
