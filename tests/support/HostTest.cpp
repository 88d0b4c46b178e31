#include "tests/support/HostTest.hpp"

#include "reference_host/calls/Faults.hpp"
#include "reference_host/calls/Journal.hpp"
#include "reference_host/calls/Warnings.hpp"

#include <string>

namespace reference_host {

namespace {

void clearWhatTestsSwitchOn()
{
    Faults::disarm();
    Journal::stopRecording();
    Journal::streamTo(nullptr);
    Journal::clear();
    Warnings::setListener({});
    Warnings::clear();
}

/// Each on a line of its own.
std::string misuseList(std::size_t after)
{
    std::string list;
    for (std::size_t i = after; i < Ledger::misuses().size(); ++i) {
        list += "\n  " + Ledger::misuses()[i];
    }
    return list;
}

}  // namespace

HostTest::HostTest()
{
    clearWhatTestsSwitchOn();
    m_snapshot = Ledger::snapshot();
}

HostTest::~HostTest()
{
    clearWhatTestsSwitchOn();
    if (misuses() != m_expectedMisuses) {
        ADD_FAILURE() << misuses() << " misuses instead of " << m_expectedMisuses
                      << misuseList(m_snapshot.misuses);
    }
    m_snapshot.misuses = Ledger::misuses().size();
    for (const std::string& line : Ledger::openSince(m_snapshot)) {
        ADD_FAILURE() << "left open: " << line;
    }
}

void HostTest::SetUp()
{
    m_snapshot = Ledger::snapshot();
}

std::size_t HostTest::misuses() const
{
    return Ledger::misuses().size() - m_snapshot.misuses;
}

}  // namespace reference_host
