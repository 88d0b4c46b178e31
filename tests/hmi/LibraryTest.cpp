#include "tests/hmi/LibraryTest.hpp"

#include "hmi_foundation/Initialization.hpp"
#include "host/Exceptions.hpp"
#include "reference_host/classes/ClassReflection.hpp"
#include "reference_host/classes/ObjectAccess.hpp"

#include <algorithm>

namespace zm_hmi {

namespace rh = reference_host;

namespace {

void answerWithOwnPath(rh::HostFunctionCall& call)
{
    call.setOutput(0, rh::ObjectAccess::getProperty(call.input(0), "BlockPath_"));
}

}  // namespace

LibraryTest::LibraryTest() : m_alignedBlockPath("getAlignedBlockPath", answerWithOwnPath)
{
    // Not in SetUp: fixtures derived from this one make objects as their members.
    NVInitialize_zm_hmi_foundation();
}

void LibraryTest::SetUp()
{
    rh::describeClass("Zelmar.HMI.InstrumentedSignals");
    rh::describeClass("Zelmar.HMI.SignalSpecification");
    HostTest::SetUp();
}

void throwTestError(const char* key)
{
    throw zmsvException(zmsvMessageId("tests", key), key);
}

void fail(rh::HostFunctionCall& /*call*/)
{
    throwTestError("Refused");
}

std::vector<rh::FaultKind> everyFaultKind()
{
    return {rh::FaultKind::OutOfMemory, rh::FaultKind::HostException, rh::FaultKind::Diagnostic,
            rh::FaultKind::Null};
}

std::string nameOfFaultKind(const testing::TestParamInfo<rh::FaultKind>& test)
{
    switch (test.param) {
        case rh::FaultKind::OutOfMemory:
            return "OutOfMemory";
        case rh::FaultKind::HostException:
            return "HostException";
        case rh::FaultKind::Diagnostic:
            return "Diagnostic";
        case rh::FaultKind::Null:
            return "Null";
    }
    return "Unknown";
}

std::vector<std::string> journaledArguments(const std::string& operation, std::size_t position)
{
    std::vector<std::string> arguments;
    for (const rh::JournalEntry& entry : rh::Journal::entries()) {
        if (entry.operation == operation) {
            arguments.push_back(entry.arguments.at(position));
        }
    }
    return arguments;
}

std::vector<std::string> journaledOperations(const std::vector<std::string>& operations)
{
    std::vector<std::string> found;
    for (const rh::JournalEntry& entry : rh::Journal::entries()) {
        if (std::find(operations.begin(), operations.end(), entry.operation) != operations.end()) {
            found.push_back(entry.text());
        }
    }
    return found;
}

}  // namespace zm_hmi
