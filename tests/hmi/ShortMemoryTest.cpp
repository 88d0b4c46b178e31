#include "hmi/InstrumentedSignals.hpp"

#include "hmi_foundation/bindings/InstrumentedSignalsCOSClassInfo.hpp"
#include "host/Exceptions.hpp"
#include "host/OwnedArray.hpp"
#include "reference_host/classes/ObjectAccess.hpp"
#include "reference_host/support/Ledger.hpp"
#include "tests/hmi/LibraryTest.hpp"
#include "tests/hmi/SignalValues.hpp"
#include "tests/hmi_foundation/bindings/RecordingClass.hpp"
#include "tests/support/CountingNew.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <variant>
#include <vector>

namespace zm_hmi {
namespace {

namespace rh = reference_host;
using nvcos::COSValue;

/// Calls the class as the host does, with every allocation inside failing in turn.
class ShortMemory : public LibraryTest {
protected:
    void SetUp() override
    {
        m_info.initializeClass(&m_class, nullptr);
        m_object = rh::ObjectAccess::construct("Zelmar.HMI.InstrumentedSignals");
        m_spec = makeSignalObject(distinctValues());
        m_class.data = &signals();
        LibraryTest::SetUp();
    }
    void TearDown() override { SignalSpecification::getBlockUUIDmap().clear(); }

    InstrumentedSignals& signals() { return *InstrumentedSignals::getFromNVArray(m_object.get()); }
    COSValue self() const { return m_object.get(); }
    COSValue spec() const { return m_spec.get(); }

    /// Whatever fails leaves as the host's exception and leaves nothing open.
    static void walk(const char* what, const std::function<void()>& body)
    {
        for (std::size_t nth = 1; nth < 10000; ++nth) {
            const rh::Ledger::Snapshot snapshot = rh::Ledger::snapshot();
            bool thrown = false;
            counting_new::failAllocation(nth);
            try {
                body();
            } catch (const zmsvOutOfMemoryException&) {
                thrown = true;
            }
            const bool failed = counting_new::hasFailed();
            counting_new::failAllocation(0);
            EXPECT_EQ(thrown, failed) << what << ", allocation " << nth;
            EXPECT_TRUE(rh::Ledger::openSince(snapshot).empty()) << what << ", allocation " << nth;
            if (!failed) {
                return;
            }
        }
        FAIL() << what << " never gets through";
    }

    void walkMethod(const char* name, const std::vector<COSValue>& inputs)
    {
        const nvcos::COSMethodInfo& method = m_class.method(name);
        walk(name, [&] {
            int outputCount = 0;
            COSValue output;
            method.invoke(nullptr, outputCount, &output, static_cast<int>(inputs.size()), inputs.data());
            if (nvArray** value = std::get_if<nvArray*>(&output)) {
                nvDestroyArray(*value);
            }
        });
    }

    zm_hmi_foundation::RecordingClass m_class;

private:
    zm_hmi_foundation::InstrumentedSignalsCOSClassInfo m_info;
    rh::OwnedValue m_object;
    rh::OwnedValue m_spec;
};

TEST_F(ShortMemory, InMethods)
{
    const std::u16string text = u"a text that does not fit in place";
    walkMethod("add", {self(), spec()});
    walkMethod("set", {self(), std::uint32_t{1}, spec()});
    walkMethod("isPortObserved", {self(), spec()});
    walkMethod("isGivenPortObserved", {self(), 1.0, std::int32_t{1}});
    walkMethod("isGivenKWActivityObserved", {self(), text, 1.0, text});
    walkMethod("isAnyKWActivityObserved", {self(), text, 1.0});
    walkMethod("getUUID", {self(), std::uint32_t{1}});
    walkMethod("get", {self(), std::uint32_t{1}, true});
    walkMethod("setUUIDForBlock", {1.0, std::uint32_t{1}, std::string("a text that does not fit in place")});
    walkMethod("getUUIDForBlock", {2.0, std::uint32_t{1}, true});
}

TEST_F(ShortMemory, InTheConstructor)
{
    const COSValue name = std::u16string(u"a model name that does not fit in place");
    const nvcos::COSMethodInfo& constructor = m_class.method("InstrumentedSignals");
    walk("constructor", [&] {
        int outputCount = 1;
        COSValue output = self();
        constructor.invoke(nullptr, outputCount, &output, 1, &name);
    });
}

TEST_F(ShortMemory, InProperties)
{
    signals().setModelName(u"a model name that does not fit in place");
    const rh::OwnedValue stored = makePersisted({distinctValues()});
    const COSValue persistence = stored.get();
    walk("Model", [&] { m_class.property("Model").getValue(nullptr); });
    walk("Persistence", [&] { m_class.property("Persistence").setValue(nullptr, persistence); });
}

TEST_F(ShortMemory, InMakingAnInstance)
{
    zm_hmi_foundation::InstrumentedSignalsCOSClassInfo info;
    walk("allocateInstance", [&] { info.deallocateInstance(nullptr, info.allocateInstance(nullptr)); });
}

TEST_F(ShortMemory, AnElementThatWasNotEnteredIsNotInTheList)
{
    for (std::size_t nth = 1; nth < 100; ++nth) {
        InstrumentedSignals list;
        const SignalSpecificationPtr signal = makeSignal(distinctValues());
        bool thrown = false;
        counting_new::failAllocation(nth);
        try {
            list.add(signal);
        } catch (const std::exception&) {
            thrown = true;
        }
        const bool failed = counting_new::hasFailed();
        counting_new::failAllocation(0);
        EXPECT_EQ(thrown, failed) << nth;
        EXPECT_EQ(list.getCount(), failed ? 0U : 1U) << nth;
        if (!failed) {
            return;
        }
    }
}

}  // namespace
}  // namespace zm_hmi
