#include "host/Calls.hpp"
#include "host/Exceptions.hpp"
#include "reference_host/classes/ObjectAccess.hpp"
#include "reference_host/support/ErrorCatalog.hpp"
#include "reference_host/support/Ledger.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "tests/hmi/LibraryTest.hpp"
#include "tests/support/CountingNew.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <string>

namespace zm_hmi {
namespace {

namespace rh = reference_host;

/// The reference host itself, with every allocation failing in turn.
class HostShortMemory : public LibraryTest {
protected:
    static void walk(const std::function<void()>& body)
    {
        bool hasFailed = true;
        for (std::size_t nth = 1; hasFailed; ++nth) {
            ASSERT_LT(nth, 10000U);
            const rh::Ledger::Snapshot snapshot = rh::Ledger::snapshot();
            counting_new::failAllocation(nth);
            try {
                body();
            } catch (const std::bad_alloc&) {
            } catch (const zmsvOutOfMemoryException&) {
            }
            hasFailed = counting_new::hasFailed();
            counting_new::failAllocation(0);
            EXPECT_TRUE(rh::Ledger::openSince(snapshot).empty()) << "allocation " << nth;
        }
    }

    const std::string m_long = std::string(200, 'x');
};

TEST_F(HostShortMemory, CopyingAMessageWithLongTexts)
{
    const zmsvMessageId id("catalog", "key", {m_long, std::uint64_t{1}, m_long + "y"});
    walk([&] {
        const zmsvMessageId copy(id);  // NOLINT(performance-unnecessary-copy-initialization): it is the test
        zmsvMessageId assigned("other", "key", {});
        assigned = copy;
        EXPECT_EQ(assigned.arguments(), id.arguments());
    });
}

TEST_F(HostShortMemory, ThrowingAndCatchingAHostErrorWithLongTexts)
{
    walk([&] {
        try {
            rh::throwHostError("UnknownFunction", {m_long});
        } catch (const zmsvException&) {
            zmsvDiscardDiagnostic(zmsvCreateDiagnosticFromCatchClause());
        }
    });
}

TEST_F(HostShortMemory, ReadingAndAssigningALongTextProperty)
{
    const rh::OwnedValue client = rh::ObjectAccess::construct("Zelmar.HMI.SignalClient");
    const rh::OwnedValue text = rh::makeText(m_long);
    walk([&] { rh::ObjectAccess::setProperty(client.get(), "UUID", text.get()); });
    walk([&] { rh::ObjectAccess::getProperty(client.get(), "UUID"); });
    const rh::OwnedValue clients = rh::ObjectAccess::construct("Zelmar.HMI.StreamingClients");
    walk([&] { rh::ObjectAccess::setProperty(clients.get(), "Model", text.get()); });
    walk([&] { rh::ObjectAccess::getProperty(clients.get(), "Model"); });
}

}  // namespace
}  // namespace zm_hmi
