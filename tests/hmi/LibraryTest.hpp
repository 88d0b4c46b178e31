#ifndef ZM_TESTS_HMI_LIBRARY_TEST_HPP
#define ZM_TESTS_HMI_LIBRARY_TEST_HPP

#include "reference_host/calls/Faults.hpp"
#include "reference_host/calls/HostFunctions.hpp"
#include "reference_host/calls/Journal.hpp"
#include "tests/support/HostTest.hpp"

#include <cstddef>
#include <string>
#include <vector>

namespace zm_hmi {

/// Runs the library on the reference host, as a host loads it: its classes are registered and have been
/// used once, so that what lives for good is there before the ledger is opened. Where a test does not say
/// otherwise, "getAlignedBlockPath" answers with the path that the signal carries.
class LibraryTest : public reference_host::HostTest {
protected:
    LibraryTest();
    void SetUp() override;

private:
    reference_host::ScopedHostFunction m_alignedBlockPath;
};

/// A host error of the tests' own.
[[noreturn]] void throwTestError(const char* key);

/// A host function that fails, with the key "Refused".
[[noreturn]] void fail(reference_host::HostFunctionCall& call);

/// For tests that are run once for every way in which an operation can fail.
std::vector<reference_host::FaultKind> everyFaultKind();
std::string nameOfFaultKind(const testing::TestParamInfo<reference_host::FaultKind>& test);

/// The argument at `position` of every call of the operation in the journal, in order.
std::vector<std::string> journaledArguments(const std::string& operation, std::size_t position);

/// The calls in the journal, in order, of the operations that are asked for.
std::vector<std::string> journaledOperations(const std::vector<std::string>& operations);

}  // namespace zm_hmi

#endif
