#ifndef ZM_TESTS_SUPPORT_HOST_TEST_HPP
#define ZM_TESTS_SUPPORT_HOST_TEST_HPP

#include "reference_host/support/Ledger.hpp"

#include <gtest/gtest.h>

#include <cstddef>

namespace reference_host {

/// Base of every test that runs on the reference host. The test fails when it leaves anything open in
/// the host's ledger: a value, a diagnostic, a block, an instance, a misuse that it did not announce.
/// That is checked last of all, after the members of the derived fixture are gone, and cannot be
/// forgotten. Warnings, journal and faults start out clear and are cleared again.
class HostTest : public ::testing::Test {
public:
    HostTest(const HostTest&) = delete;
    HostTest& operator=(const HostTest&) = delete;

protected:
    HostTest();
    ~HostTest() override;

    /// Starts the comparison afresh. A fixture whose own `SetUp` makes things that stay for good calls
    /// this one when it has made them.
    void SetUp() override;

    /// The test is about misuse: exactly so many are to be in the ledger at its end.
    void expectMisuses(std::size_t count) { m_expectedMisuses = count; }

    /// Those since the test began.
    std::size_t misuses() const;

private:
    Ledger::Snapshot m_snapshot;
    std::size_t m_expectedMisuses = 0;
};

}  // namespace reference_host

#endif
