#include "hmi/InstrumentedSignals.hpp"

#include "host/Exceptions.hpp"
#include "reference_host/calls/Warnings.hpp"
#include "reference_host/classes/ObjectAccess.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"
#include "tests/hmi/LibraryTest.hpp"
#include "tests/hmi/SignalValues.hpp"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <string>
#include <vector>

namespace zm_hmi {
namespace {

namespace rh = reference_host;

constexpr const char* signalsClass = "Zelmar.HMI.InstrumentedSignals";

rh::OwnedValue makeObject()
{
    return rh::ObjectAccess::construct(signalsClass);
}

InstrumentedSignals& behind(const rh::OwnedValue& object)
{
    return *InstrumentedSignals::getFromNVArray(object.get());
}

InstrumentedSignals& behind(const OwnedArray& object)
{
    return *InstrumentedSignals::getFromNVArray(object.get());
}

std::vector<std::u16string> paths(const InstrumentedSignals& signals)
{
    std::vector<std::u16string> found;
    for (std::size_t i = 0; i < signals.getCount(); ++i) {
        found.push_back(signals.get(i)->getBlockPath());
    }
    return found;
}

class InstrumentedSignalsHostForm : public LibraryTest {
protected:
    void expectNoCollectionInCopy()
    {
        try {
            signals.copy(false);
            ADD_FAILURE() << "a copy without a collection is no error";
        } catch (const zmsvException& error) {
            EXPECT_EQ(error.id().catalog(), "dvx_hmi_foundation:errors");
            EXPECT_EQ(error.id().key(), "NoCollection");
        }
    }

    InstrumentedSignals signals;
};

// ---- from host values -------------------------------------------------------------------------------

TEST_F(InstrumentedSignalsHostForm, NullAndEmptyValuesAreOfTheValidType)
{
    EXPECT_TRUE(InstrumentedSignals::isValidType(nullptr));
    EXPECT_TRUE(InstrumentedSignals::isValidType(rh::makeEmptyValue().get()));
    EXPECT_TRUE(InstrumentedSignals::isValidType(rh::makeText("").get()));
}

TEST_F(InstrumentedSignalsHostForm, OneObjectOfTheClassIsOfTheValidType)
{
    EXPECT_TRUE(InstrumentedSignals::isValidType(makeObject().get()));
}

TEST_F(InstrumentedSignalsHostForm, OtherValuesAreNot)
{
    EXPECT_FALSE(InstrumentedSignals::isValidType(rh::makeDouble(1.0).get()));
    EXPECT_FALSE(InstrumentedSignals::isValidType(makeSignalObject({}).get()));
    EXPECT_FALSE(InstrumentedSignals::isValidType(makePersisted({{}}).get()));
}

TEST_F(InstrumentedSignalsHostForm, TwoObjectsOfTheClassAreNotAndTheirClassIsNotAskedFor)
{
    const rh::OwnedValue one = makeObject();
    const rh::OwnedValue other = makeObject();
    const rh::OwnedValue two = rh::makeObjects(
        signalsClass, rh::Dimensions(1, 2), {rh::objects(one.get()).at(0), rh::objects(other.get()).at(0)});
    rh::Journal::startRecording();
    EXPECT_FALSE(InstrumentedSignals::isValidType(two.get()));
    EXPECT_EQ(rh::Journal::count("nvIsA"), 0U);
}

TEST_F(InstrumentedSignalsHostForm, NullAndEmptyValuesHaveNoCollection)
{
    EXPECT_EQ(InstrumentedSignals::getFromNVArray(nullptr), nullptr);
    EXPECT_EQ(InstrumentedSignals::getFromNVArray(rh::makeEmptyValue().get()), nullptr);
}

TEST_F(InstrumentedSignalsHostForm, TheCollectionIsTheOneBehindTheFirstObject)
{
    const rh::OwnedValue one = makeObject();
    const rh::OwnedValue other = makeObject();
    const rh::OwnedValue two = rh::makeObjects(
        signalsClass, rh::Dimensions(1, 2), {rh::objects(one.get()).at(0), rh::objects(other.get()).at(0)});
    EXPECT_EQ(InstrumentedSignals::getFromNVArray(two.get()), &behind(one));
    EXPECT_NE(InstrumentedSignals::getFromNVArray(two.get()), &behind(other));
}

// ---- the persisted form -------------------------------------------------------------------------------

TEST_F(InstrumentedSignalsHostForm, AnEmptyCollectionIsSavedAsNoElementsWithTheFields)
{
    const OwnedArray data = signals.getPersistenceData();
    EXPECT_TRUE(rh::isStruct(data.get()));
    EXPECT_EQ(rh::elementCount(data.get()), 0U);
    const char* const* names = SignalSpecification::getStructFields();
    EXPECT_EQ(rh::fieldNames(data.get()), std::vector<std::string>(names, names + 16));
}

TEST_F(InstrumentedSignalsHostForm, TheStructArrayIsMadeWithOneDimension)
{
    signals.add(makeSignal({}));
    signals.add(makeSignal({}));
    rh::Journal::startRecording();
    const OwnedArray data = signals.getPersistenceData();
    rh::Journal::stopRecording();
    EXPECT_EQ(journaledArguments("nvCreateStructArray", 0).at(0), "[2]");
    EXPECT_EQ(rh::elementCount(data.get()), 2U);
}

TEST_F(InstrumentedSignalsHostForm, ElementsAreSavedInOrder)
{
    signals.add(makeSignal(portValues(u"A", 1)));
    signals.add(makeSignal(portValues(u"B", 2)));
    const OwnedArray data = signals.getPersistenceData();
    EXPECT_EQ(rh::text(rh::field(data.get(), 0, "BlockPath_")), u"A");
    EXPECT_EQ(rh::text(rh::field(data.get(), 1, "BlockPath_")), u"B");
}

TEST_F(InstrumentedSignalsHostForm, ElementsAreSavedWithTheModelNameOfTheCollection)
{
    signals.setModelName(u"plant");
    signals.add(makeSignal(portValues(u"A", 1)));
    std::u16string asked;
    const rh::ScopedHostFunction aligned("getAlignedBlockPath", [&](rh::HostFunctionCall& call) {
        asked = rh::text(rh::ObjectAccess::getProperty(call.input(0), "BlockPath_").get());
        call.setOutput(0, rh::makeText("plant/Moved"));
    });
    const OwnedArray data = signals.getPersistenceData();
    EXPECT_EQ(asked, u"plant/A");
    EXPECT_EQ(rh::text(rh::field(data.get(), 0, "BlockPath_")), u"Moved");
}

TEST_F(InstrumentedSignalsHostForm, EachElementThatTheHostCannotAlignGivesOneWarning)
{
    signals.add(makeSignal(portValues(u"A", 1)));
    signals.add(makeSignal(portValues(u"B", 1)));
    const rh::ScopedHostFunction unknown("getAlignedBlockPath", fail);
    const OwnedArray data = signals.getPersistenceData();
    EXPECT_EQ(rh::text(rh::field(data.get(), 1, "BlockPath_")), u"");
    EXPECT_EQ(rh::Warnings::reported().size(), 2U);
}

TEST_F(InstrumentedSignalsHostForm, LoadingAppends)
{
    signals.add(makeSignal(portValues(u"A", 1)));
    signals.setFromPersistenceData(makePersisted({portValues(u"B", 1), portValues(u"C", 1)}).get());
    EXPECT_EQ(paths(signals), (std::vector<std::u16string>{u"A", u"B", u"C"}));
}

TEST_F(InstrumentedSignalsHostForm, LoadingNothingChangesNothing)
{
    signals.setModelName(u"plant");
    signals.add(makeSignal(portValues(u"A", 1)));
    signals.setFromPersistenceData(makePersisted({}).get());
    signals.setFromPersistenceData(rh::makeEmptyValue().get());
    signals.setFromPersistenceData(nullptr);
    EXPECT_EQ(paths(signals), std::vector<std::u16string>{u"A"});
    EXPECT_EQ(signals.getModelName(), u"plant");
}

TEST_F(InstrumentedSignalsHostForm, LoadedElementsAreEnteredInTheLookups)
{
    signals.setModelName(u"plant");
    signals.setFromPersistenceData(
        makePersisted({portValues(u"A", 1), stateValues("7", u"3", u"Self")}).get());
    EXPECT_TRUE(signals.isPortObserved(0.0, u"A", u"", 1, 0, 0));
    EXPECT_TRUE(signals.isKWActivityObserved(u"plant:7", 3.0, u"Self"));
}

TEST_F(InstrumentedSignalsHostForm, LoadingTakesTheTextsAsTheyStand)
{
    signals.setModelName(u"plant");
    signals.setFromPersistenceData(makePersisted({{.blockPath = u"plant/A", .zid = "plant:1"}}).get());
    EXPECT_EQ(signals.get(0)->getBlockPath(), u"plant/A");
    EXPECT_EQ(signals.get(0)->getZID(), "plant:1");
    EXPECT_EQ(signals.getModelName(), u"plant");
}

TEST_F(InstrumentedSignalsHostForm, LoadingReadsEveryElementOfAnArrayOfAnySize)
{
    const std::vector<std::string> names = rh::fieldNames(makePersisted({}).get());
    const rh::OwnedValue square = rh::makeStruct(rh::Dimensions(2, 2), names);
    const rh::OwnedValue list =
        makePersisted({portValues(u"A", 1), portValues(u"B", 1), portValues(u"C", 1), portValues(u"D", 1)});
    for (std::size_t i = 0; i < 4; ++i) {
        for (const std::string& name : names) {
            rh::setField(square.get(), i, name.c_str(), rh::copyDeep(rh::field(list.get(), i, name.c_str())));
        }
    }
    signals.setFromPersistenceData(square.get());
    EXPECT_EQ(paths(signals), (std::vector<std::u16string>{u"A", u"B", u"C", u"D"}));
}

TEST_F(InstrumentedSignalsHostForm, AnElementThatCannotBeReadEndsTheLoading)
{
    const rh::OwnedValue data = makePersisted({portValues(u"A", 1), portValues(u"B", 1)});
    rh::replaceField(data.get(), 1, "Decimation_", rh::makeEmptyValue());
    EXPECT_THROW(signals.setFromPersistenceData(data.get()), zmsvException);
    EXPECT_EQ(paths(signals), std::vector<std::u16string>{u"A"});
}

RC_GTEST_FIXTURE_PROP(InstrumentedSignalsHostForm, SavingAndLoadingGivesAnEqualCollection,
                      (const std::vector<int>& outputPorts))
{
    signals.setModelName(u"plant");
    for (const int outputPort : outputPorts) {
        SignalValues values = distinctValues();
        values.outputPort = outputPort;
        signals.add(makeSignal(values));
    }
    InstrumentedSignals again;
    again.setFromPersistenceData(signals.getPersistenceData().get());
    RC_ASSERT(again.isEqual(&signals));
}

// ---- copying ------------------------------------------------------------------------------------------

TEST_F(InstrumentedSignalsHostForm, ACopyIsANewObjectWithModelNameAndClones)
{
    signals.setModelName(u"plant");
    signals.add(makeSignal(distinctValues()));
    const OwnedArray object = signals.copy(false);
    ASSERT_TRUE(InstrumentedSignals::isValidType(object.get()));
    EXPECT_EQ(behind(object).getModelName(), u"plant");
    ASSERT_EQ(behind(object).getCount(), 1U);
    EXPECT_EQ(valuesOf(*behind(object).get(0)), distinctValues());
    EXPECT_NE(behind(object).get(0), signals.get(0));
}

TEST_F(InstrumentedSignalsHostForm, ACopyMayLeaveOutWhatIsExcludedFromSaving)
{
    signals.add(makeSignal({.blockPath = u"A", .excludeForSave = true}));
    signals.add(makeSignal({.blockPath = u"B"}));
    EXPECT_EQ(paths(behind(signals.copy(true))), std::vector<std::u16string>{u"B"});
    EXPECT_EQ(paths(behind(signals.copy(false))), (std::vector<std::u16string>{u"A", u"B"}));
}

TEST_F(InstrumentedSignalsHostForm, ACopyStillObservesThePortsItLeftOut)
{
    signals.add(makeSignal({.blockPath = u"A", .outputPort = 1, .excludeForSave = true}));
    const OwnedArray object = signals.copy(true);
    EXPECT_EQ(behind(object).getCount(), 0U);
    EXPECT_TRUE(behind(object).isAnyPortObserved());
    behind(object).updateObservedPortMap();
    EXPECT_FALSE(behind(object).isAnyPortObserved());
}

TEST_F(InstrumentedSignalsHostForm, TheLookupsOfACopyReferToTheElementsOfTheOriginal)
{
    const SignalSpecificationPtr signal = makeSignal(portValues(u"A", 1));
    signals.add(signal);
    const OwnedArray object = signals.copy(false);
    EXPECT_TRUE(behind(object).isPortObserved(2.5, u"A", u"", 1, 1, 0));
    EXPECT_EQ(signal->getCachedBlockHandle(), 2.5) << "bound through the copy";
    EXPECT_EQ(behind(object).get(0)->getCachedBlockHandle(), 0.0);
    behind(object).updateObservedPortMap();
    EXPECT_FALSE(behind(object).isPortObserved(2.5, 1));
}

TEST_F(InstrumentedSignalsHostForm, TheLookupsOfACopyKeepTheElementsOfTheOriginalAlive)
{
    OwnedArray object;
    {
        InstrumentedSignals original;
        original.add(makeSignal({.blockPath = u"A", .outputPort = 1, .cachedHandle = 2.5, .cachedPort = 1}));
        object = original.copy(false);
    }
    EXPECT_TRUE(behind(object).isPortObserved(2.5, 1));
    behind(object).remove(0);
    EXPECT_FALSE(behind(object).isAnyPortObserved());
}

TEST_F(InstrumentedSignalsHostForm, ACopyHasTheChartCaches)
{
    signals.add(makeSignal(stateValues("7", u"3", u"Self")));
    const OwnedArray object = signals.copy(false);
    EXPECT_TRUE(behind(object).isKWActivityObserved(u"7", 3.0, u"Self"));
    EXPECT_TRUE(behind(object).isAnyKWActivityObserved(u"7", 3.0));
}

TEST_F(InstrumentedSignalsHostForm, ACopyIsMadeWithoutThePortCache)
{
    const auto port = reinterpret_cast<zmPort*>(std::uintptr_t{1});
    signals.add(makeSignal(portValues(u"A", 1)));
    signals.cacheZMPorts({port});
    const OwnedArray object = signals.copy(false);
    EXPECT_FALSE(behind(object).isZMPortObserved(port));
    EXPECT_TRUE(signals.isZMPortObserved(port));
}

TEST_F(InstrumentedSignalsHostForm, ACopyIsAskedForOnceWithoutArguments)
{
    std::size_t calls = 0;
    const rh::ScopedHostFunction seen(signalsClass, [&](rh::HostFunctionCall& call) {
        ++calls;
        EXPECT_EQ(call.inputs().size(), 0U);
        EXPECT_EQ(call.outputCount(), 1U);
        call.setOutput(0, makeObject());
    });
    rh::Journal::startRecording();
    const OwnedArray object = signals.copy(false);
    EXPECT_EQ(calls, 1U);
    EXPECT_EQ(rh::Journal::count("zmsvFEVAL"), 1U);
    EXPECT_EQ(rh::Journal::count("zmsvSetLocalScope"), 1U);
}

TEST_F(InstrumentedSignalsHostForm, AHostThatMakesNoCopyIsAnError)
{
    signals.add(makeSignal({}));
    const rh::ScopedHostFunction refused(signalsClass, fail);
    EXPECT_THROW(signals.copy(false), zmsvException);
    EXPECT_TRUE(rh::Warnings::reported().empty());
}

TEST_F(InstrumentedSignalsHostForm, ACopyWithoutACollectionIsAnErrorNotACrash)
{
    const rh::ScopedHostFunction silent(signalsClass, [](rh::HostFunctionCall&) {});
    expectNoCollectionInCopy();
    const rh::ScopedHostFunction empty(
        signalsClass, [](rh::HostFunctionCall& call) { call.setOutput(0, rh::makeEmptyValue()); });
    expectNoCollectionInCopy();
    const rh::ScopedHostFunction number(
        signalsClass, [](rh::HostFunctionCall& call) { call.setOutput(0, rh::makeDouble(1.0)); });
    expectNoCollectionInCopy();
}

TEST_F(InstrumentedSignalsHostForm, ACopyThatIsAnObjectOfAnotherClassIsAnErrorNotACrash)
{
    const rh::ScopedHostFunction odd(
        signalsClass, [](rh::HostFunctionCall& call) { call.setOutput(0, makeSignalObject({})); });
    expectNoCollectionInCopy();
}

TEST_F(InstrumentedSignalsHostForm, AHostThatAnswersWithTheSameCollectionGetsItsElementsOnceMore)
{
    const rh::OwnedValue object = makeObject();
    behind(object).add(makeSignal(portValues(u"A", 1)));
    behind(object).add(makeSignal(stateValues("7", u"3", u"Self")));
    const rh::ScopedHostFunction same(
        signalsClass, [&](rh::HostFunctionCall& call) { call.setOutput(0, rh::copyShared(object.get())); });
    const OwnedArray copied = behind(object).copy(false);
    EXPECT_EQ(&behind(copied), &behind(object));
    EXPECT_EQ(paths(behind(object)), (std::vector<std::u16string>{u"A", u"", u"A", u""}));
    EXPECT_TRUE(behind(object).isPortObserved(0.0, u"A", u"", 1, 0, 0));
    EXPECT_TRUE(behind(object).isKWActivityObserved(u"7", 3.0, u"Self"));
}

// ---- host code that calls back ------------------------------------------------------------------------

/// A collection of ten ports, on which host functions work while it is at work itself.
class ReenteredInstrumentedSignals : public LibraryTest {
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        m_object = makeObject();
        for (char16_t name = u'A'; name <= u'J'; ++name) {
            signals().add(makeSignal(portValues(std::u16string(1, name), 1)));
        }
    }

    InstrumentedSignals& signals() { return behind(m_object); }

    void callMethod(const char* method, const std::vector<const nvArray*>& arguments)
    {
        rh::ObjectAccess::callMethod(m_object.get(), method, arguments);
    }

private:
    rh::OwnedValue m_object;
};

TEST_F(ReenteredInstrumentedSignals, SavingGoesOnWhenTheHostRemovesElements)
{
    const rh::OwnedValue first = rh::makeNumber(1, nvClassID::UInt32);
    const rh::ScopedHostFunction removing("getAlignedBlockPath", [&](rh::HostFunctionCall& call) {
        callMethod("remove", {first.get()});
        call.setOutput(0, rh::makeText("aligned"));
    });
    const OwnedArray data = signals().getPersistenceData();
    EXPECT_EQ(rh::elementCount(data.get()), 10U);
    EXPECT_EQ(signals().getCount(), 5U);
    EXPECT_EQ(rh::text(rh::field(data.get(), 4, "BlockPath_")), u"aligned");
    EXPECT_EQ(rh::field(data.get(), 5, "BlockPath_"), nullptr) << "there was no such element any more";
}

TEST_F(ReenteredInstrumentedSignals, LoadingWhatWasSavedMeanwhileGivesTheElementsThatWereWritten)
{
    const rh::OwnedValue first = rh::makeNumber(1, nvClassID::UInt32);
    const rh::ScopedHostFunction removing("getAlignedBlockPath", [&](rh::HostFunctionCall& call) {
        callMethod("remove", {first.get()});
        call.setOutput(0, rh::makeText("aligned"));
    });
    const OwnedArray data = signals().getPersistenceData();
    InstrumentedSignals loaded;
    EXPECT_THROW(loaded.setFromPersistenceData(data.get()), zmsvException);
    EXPECT_EQ(loaded.getCount(), 5U);
}

TEST_F(ReenteredInstrumentedSignals, SavingGoesOnWhenTheHostRemovesTheElementAtHand)
{
    const rh::ScopedHostFunction removing("Zelmar.HMI.SignalSpecification", [&](rh::HostFunctionCall& call) {
        while (signals().getCount() > 0) {
            signals().remove(0);
        }
        call.setOutput(0, makeSignalObject({}));
    });
    const OwnedArray data = signals().getPersistenceData();
    EXPECT_EQ(signals().getCount(), 0U);
    EXPECT_EQ(rh::elementCount(data.get()), 10U);
}

TEST_F(ReenteredInstrumentedSignals, SavingKeepsToItsElementsWhenTheHostAddsSome)
{
    const rh::OwnedValue added = makeSignalObject(portValues(u"Added", 1));
    const rh::ScopedHostFunction adding("getAlignedBlockPath", [&](rh::HostFunctionCall& call) {
        for (int i = 0; i < 100; ++i) {
            callMethod("add", {added.get()});
        }
        call.setOutput(0, rh::makeText("aligned"));
    });
    const OwnedArray data = signals().getPersistenceData();
    EXPECT_EQ(rh::elementCount(data.get()), 10U);
    EXPECT_EQ(signals().getCount(), 1010U);
    EXPECT_EQ(rh::utf8Text(rh::field(data.get(), 9, "BlockPath_")), "aligned");
}

TEST_F(ReenteredInstrumentedSignals, SavingGoesOnWhenTheHostRenamesTheModel)
{
    signals().setModelName(u"plant");
    const rh::ScopedHostFunction renaming("getAlignedBlockPath", [&](rh::HostFunctionCall& call) {
        signals().setModelName(u"a much longer name than any that would fit in place");
        call.setOutput(0, rh::makeText("plant/X"));
    });
    const OwnedArray data = signals().getPersistenceData();
    EXPECT_EQ(rh::utf8Text(rh::field(data.get(), 0, "BlockPath_")), "X") << "saved under the old name";
    EXPECT_EQ(rh::utf8Text(rh::field(data.get(), 1, "BlockPath_")), "plant/X");
}

TEST_F(ReenteredInstrumentedSignals, SavingMayBeAskedForWhileSaving)
{
    int depth = 0;
    const rh::ScopedHostFunction saving("getAlignedBlockPath", [&](rh::HostFunctionCall& call) {
        if (++depth == 1) {
            EXPECT_EQ(rh::elementCount(signals().getPersistenceData().get()), 10U);
        }
        call.setOutput(0, rh::makeText("aligned"));
    });
    EXPECT_EQ(rh::elementCount(signals().getPersistenceData().get()), 10U);
}

TEST_F(ReenteredInstrumentedSignals, CopyingTakesTheElementsThatTheHostLeaves)
{
    const rh::ScopedHostFunction removing(signalsClass, [&](rh::HostFunctionCall& call) {
        while (signals().getCount() > 2) {
            signals().remove(0);
        }
        call.setOutput(0, makeObject());
    });
    EXPECT_EQ(paths(behind(signals().copy(false))), (std::vector<std::u16string>{u"I", u"J"}));
}

TEST_F(ReenteredInstrumentedSignals, GettingSurvivesTheRemovalOfTheElement)
{
    const rh::OwnedValue first = rh::makeNumber(1, nvClassID::UInt32);
    const rh::ScopedHostFunction removing("Zelmar.HMI.SignalSpecification", [&](rh::HostFunctionCall& call) {
        while (signals().getCount() > 0) {
            signals().remove(0);
        }
        call.setOutput(0, makeSignalObject({}));
    });
    callMethod("get", {first.get()});
    EXPECT_EQ(signals().getCount(), 0U);
}

}  // namespace
}  // namespace zm_hmi
