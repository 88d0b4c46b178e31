#ifndef ZM_TESTS_HMI_CLIENTS_TEST_HPP
#define ZM_TESTS_HMI_CLIENTS_TEST_HPP

#include "host/Exceptions.hpp"
#include "reference_host/calls/Warnings.hpp"
#include "reference_host/classes/ClassReflection.hpp"
#include "reference_host/classes/ValueEquality.hpp"
#include "tests/hmi/ClientValues.hpp"
#include "tests/hmi/LibraryTest.hpp"

#include <cstddef>
#include <functional>
#include <string>
#include <utility>

namespace zm_hmi {

/// As `LibraryTest`, with what clients need of the host: the classes have been used once, and "isequal"
/// compares.
class ClientsTest : public LibraryTest {
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        for (const char* name : {"Zelmar.HMI.StreamingClients", "Zelmar.HMI.SignalClient",
                                 "Zelmar.HMI.ModelObservers", "Zelmar.HMI.InterfaceMgr"}) {
            reference_host::describeClass(name);
        }
        HostTest::SetUp();
    }

    /// Exactly one warning came, with that key; forgets it.
    static void expectOneWarning(const std::string& key)
    {
        const auto warnings = reference_host::Warnings::take();
        ASSERT_EQ(warnings.size(), 1U);
        EXPECT_EQ(warnings[0].id.key(), key);
    }

    static void expectNoWarning() { EXPECT_TRUE(reference_host::Warnings::reported().empty()); }

    /// Runs what must end in a host error; returns its key.
    static std::string hostError(const std::function<void()>& work)
    {
        try {
            work();
        } catch (const zmsvException& error) {
            return error.id().key();
        }
        ADD_FAILURE() << "expected a host error";
        return {};
    }

    /// As above for the element-index error, whose one argument is returned.
    static std::uint64_t invalidIndexCount(const std::function<void()>& work)
    {
        try {
            work();
        } catch (const zmsvException& error) {
            EXPECT_EQ(error.id().catalog(), "dvx_hmi_foundation:errors");
            EXPECT_EQ(error.id().key(), "InvalidElementIndex");
            EXPECT_EQ(error.id().arguments().size(), 1U);
            return std::get<std::uint64_t>(error.id().arguments().at(0));
        }
        ADD_FAILURE() << "expected a host error";
        return 0;
    }

private:
    reference_host::ScopedHostFunction m_isEqual{"isequal", reference_host::isEqual};
};

/// A host function in place of another, with the number of its calls.
class CountedHostFunction {
public:
    CountedHostFunction(const std::string& name, reference_host::HostFunction body)
        : m_scoped(name, [this, body = std::move(body)](reference_host::HostFunctionCall& call) {
              ++m_calls;
              body(call);
          })
    {
    }

    std::size_t calls() const noexcept { return m_calls; }

private:
    std::size_t m_calls = 0;
    reference_host::ScopedHostFunction m_scoped;
};

/// A host function that succeeds and gives nothing.
inline void giveNothing(reference_host::HostFunctionCall& /*call*/) {}

}  // namespace zm_hmi

#endif
