#include "reference_host/support/Ledger.hpp"

#include "reference_host/calls/Diagnostic.hpp"
#include "reference_host/support/MemoryBlocks.hpp"
#include "reference_host/values/Payload.hpp"
#include "reference_host/values/ValueDescription.hpp"
#include "reference_host/values/ValueReading.hpp"

#include <algorithm>
#include <iostream>
#include <utility>

namespace reference_host {

namespace {

struct LedgerState {
    std::vector<std::string> misuses;
    std::map<std::string, LedgerCounter> counters;
};

/// Never destroyed: libraries end what they hold while the process goes down.
LedgerState& state()
{
    static LedgerState& instance = *new LedgerState;
    return instance;
}

using Lines = std::vector<std::string>;

bool isOpen(const nvArray* value)
{
    return value->ownership == Ownership::Owned && !value->meantToLive;
}

/// The owned and undeclared values that are newer than a serial number, the oldest first.
std::vector<const nvArray*> openValues(std::uint64_t after)
{
    std::vector<const nvArray*> values;
    for (const nvArray* value = liveValueRegistry().newest(); value != nullptr && value->serial > after;
         value = value->previous) {
        if (isOpen(value)) {
            values.push_back(value);
        }
    }
    std::reverse(values.begin(), values.end());
    return values;
}

void listValues(std::uint64_t after, Lines& lines)
{
    for (const nvArray* value : openValues(after)) {
        lines.push_back("value " + describeWithSerial(value) + ", made by " +
                        describeCallSite(value->madeBy));
    }
}

void listDiagnostics(std::uint64_t after, Lines& lines)
{
    const zmsvDiagnostic* diagnostic = liveDiagnosticRegistry().newest();
    for (; diagnostic != nullptr && diagnostic->serial > after; diagnostic = diagnostic->previous) {
        lines.push_back(describeDiagnostic(diagnostic) + ", made by " + describeCallSite(diagnostic->madeBy));
    }
}

void listBlocks(std::uint64_t after, Lines& lines)
{
    for (const auto& [address, block] : openMemoryBlocks()) {
        if (block.serial > after && !block.meantToLive) {
            lines.push_back("block " + std::to_string(block.serial) + " of " + std::to_string(block.size) +
                            " bytes, made by " + describeCallSite(block.madeBy));
        }
    }
}

void listCounters(const std::map<std::string, std::int64_t>& before, Lines& lines)
{
    for (const auto& [name, counter] : state().counters) {
        const auto found = before.find(name);
        const std::int64_t more = counter.undeclared() - (found != before.end() ? found->second : 0);
        if (more > 0) {
            lines.push_back(std::to_string(more) + " " + name + " open");
        }
    }
}

void listMisuses(std::size_t after, Lines& lines)
{
    const Lines& misuses = state().misuses;
    for (std::size_t i = after; i < misuses.size(); ++i) {
        lines.push_back("misuse: " + misuses[i]);
    }
}

std::string valuesByClassAndPlace()
{
    std::map<std::pair<std::string, std::string>, std::size_t> counts;
    for (const nvArray* value : openValues(0)) {
        ++counts[{className(value), describeCallSite(value->madeBy)}];
    }
    std::string text;
    for (const auto& [key, count] : counts) {
        text += "  " + std::to_string(count) + " " + key.first + ", made by " + key.second + "\n";
    }
    return text;
}

}  // namespace

Ledger::Snapshot Ledger::snapshot()
{
    Snapshot result;
    result.lastValue = liveValueRegistry().lastSerial();
    result.lastDiagnostic = liveDiagnosticRegistry().lastSerial();
    result.lastBlock = lastMemoryBlock();
    result.misuses = state().misuses.size();
    for (const auto& [name, counter] : state().counters) {
        result.counters[name] = counter.undeclared();
    }
    return result;
}

std::vector<std::string> Ledger::openSince(const Snapshot& snapshot)
{
    Lines lines;
    listValues(snapshot.lastValue, lines);
    listDiagnostics(snapshot.lastDiagnostic, lines);
    listBlocks(snapshot.lastBlock, lines);
    listCounters(snapshot.counters, lines);
    listMisuses(snapshot.misuses, lines);
    return lines;
}

std::string Ledger::report()
{
    Lines rest;
    listDiagnostics(0, rest);
    listBlocks(0, rest);
    listCounters({}, rest);
    listMisuses(0, rest);
    const std::size_t values = liveValues();
    if (values == 0 && rest.empty()) {
        return "nothing is open\n";
    }
    std::string text =
        std::to_string(values) + (values == 1 ? " live value\n" : " live values\n") + valuesByClassAndPlace();
    for (const std::string& line : rest) {
        text += line + "\n";
    }
    return text;
}

std::size_t Ledger::liveValues()
{
    return openValues(0).size();
}

void Ledger::declareMeantToLive(nvArray* value)
{
    requireAlive(value);
    value->meantToLive = true;
}

LedgerCounter& Ledger::counter(const std::string& name)
{
    return state().counters[name];
}

void Ledger::recordMisuse(std::string text) noexcept
{
    state().misuses.push_back(std::move(text));
}

const std::vector<std::string>& Ledger::misuses()
{
    return state().misuses;
}

int Ledger::close(int exitCode)
{
    if (openSince({}).empty()) {
        return exitCode;
    }
    std::cerr << "The host's ledger is not closed:\n" << report() << std::flush;
    return exitCode != 0 ? exitCode : 3;
}

}  // namespace reference_host
