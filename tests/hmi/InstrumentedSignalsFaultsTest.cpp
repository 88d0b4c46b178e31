#include "hmi/InstrumentedSignals.hpp"

#include "host/Exceptions.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "tests/hmi/LibraryTest.hpp"
#include "tests/hmi/SignalValues.hpp"
#include "tests/support/FaultWalk.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace zm_hmi {
namespace {

namespace rh = reference_host;

/// Every operation of the host that a collection uses fails once, in each way it can. The walk checks that
/// nothing stays open; the tests, that the collection is whole.
class InstrumentedSignalsFaults : public LibraryTest, public testing::WithParamInterface<rh::FaultKind> {
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        m_signals.setModelName(u"plant");
        m_signals.add(makeSignal(distinctValues()));
        m_signals.add(makeSignal(stateValues("7", u"3", u"Self")));
    }

    /// `least`: how many operations there are, at the least, that can fail by throwing.
    static void walk(std::uint64_t least, const std::function<void()>& body)
    {
        const std::uint64_t struck = rh::walkFaults(rh::Faults::anyOperation, GetParam(), body);
        const bool throws =
            GetParam() == rh::FaultKind::OutOfMemory || GetParam() == rh::FaultKind::HostException;
        EXPECT_GE(struck, throws ? least : 0U);
    }

    InstrumentedSignals m_signals;
};

TEST_P(InstrumentedSignalsFaults, Saving)
{
    walk(100, [&] { m_signals.getPersistenceData(); });
    EXPECT_EQ(m_signals.getCount(), 2U);
}

TEST_P(InstrumentedSignalsFaults, Loading)
{
    const rh::OwnedValue data = makePersisted({portValues(u"A", 1), stateValues("8", u"3", u"Self")});
    walk(30, [&] {
        InstrumentedSignals loaded;
        loaded.setFromPersistenceData(data.get());
    });
}

TEST_P(InstrumentedSignalsFaults, Copying)
{
    walk(1, [&] {
        try {
            m_signals.copy(true);
        } catch (const zmsvException& error) {
            if (GetParam() != rh::FaultKind::Null) {
                throw;
            }
            EXPECT_EQ(error.id().key(), "NoCollection");  // the host gave no object
        }
    });
    EXPECT_EQ(m_signals.getCount(), 2U);
}

TEST_P(InstrumentedSignalsFaults, AnElementThatCannotBeEnteredIsNotInTheList)
{
    const SignalSpecificationPtr signal =
        makeSignal({.blockPath = u"A", .cachedHandle = 2.5, .cachedPort = 1});
    const SignalSpecificationPtr state = makeSignal(stateValues("8", u"3", u"Self"));
    walk(1, [&] {
        InstrumentedSignals signals;
        for (const SignalSpecificationPtr& added : {signal, state}) {
            const std::size_t before = signals.getCount();
            try {
                signals.insert(0, added);
            } catch (...) {
                EXPECT_EQ(signals.getCount(), before);
                throw;
            }
            EXPECT_EQ(signals.getCount(), before + 1);
        }
    });
}

TEST_P(InstrumentedSignalsFaults, Replacing)
{
    const SignalSpecificationPtr signal = makeSignal(portValues(u"A\xd800", 1));  // only the host converts it
    walk(1, [&] {
        m_signals.set(0, signal);
        m_signals.set(1, signal);
    });
    EXPECT_EQ(m_signals.getCount(), 2U);
}

TEST_P(InstrumentedSignalsFaults, Removing)
{
    walk(1, [&] {
        InstrumentedSignals signals;
        signals.add(makeSignal(distinctValues()));
        signals.add(makeSignal(stateValues("7", u"3", u"Self")));
        signals.remove(1);
        signals.remove(*makeSignal(distinctValues()));
    });
}

TEST_P(InstrumentedSignalsFaults, Asking)
{
    const SignalSpecificationPtr asked = makeSignal(portValues(u"A", 1));
    walk(1, [&] {
        m_signals.isPortObserved(asked.get());
        m_signals.isPortObserved(2.5, u"Controller/Begr\u00e4nzung", u"bus.speed", 2, 9, 3);
        m_signals.isKWActivityObserved(u"plant:7", 3.0, u"Self");
        m_signals.isAnyKWActivityObserved(u"plant:7", 3.0);
    });
}

TEST_P(InstrumentedSignalsFaults, RefusingAnIndex)
{
    // The error itself is thrown in the walk; what must not stay open is its diagnostic.
    walk(1, [&] {
        try {
            m_signals.get(7);
        } catch (const zmsvException& error) {
            if (error.id().key() != "InvalidElementIndex") {
                throw;
            }
        }
    });
}

INSTANTIATE_TEST_SUITE_P(Kinds, InstrumentedSignalsFaults, testing::ValuesIn(everyFaultKind()),
                         nameOfFaultKind);

}  // namespace
}  // namespace zm_hmi
