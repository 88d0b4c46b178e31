#include "hmi/SignalSpecification.hpp"

#include "reference_host/calls/Warnings.hpp"
#include "tests/hmi/LibraryTest.hpp"
#include "tests/hmi/SignalValues.hpp"
#include "tests/support/FaultWalk.hpp"

#include <gtest/gtest.h>
#include <boost/make_shared.hpp>

#include <functional>
#include <memory>
#include <string>

namespace zm_hmi {
namespace {

namespace rh = reference_host;

/// Every operation of the host that a conversion of a record uses fails once, in each way it can. The walk
/// checks that nothing stays open.
class SignalSpecificationFaults : public LibraryTest, public testing::WithParamInterface<rh::FaultKind> {
protected:
    /// `least`: how many operations there are, at the least, that can fail by throwing.
    static void walk(std::uint64_t least, const std::function<void()>& body)
    {
        const std::uint64_t struck = rh::walkFaults(rh::Faults::anyOperation, GetParam(), body);
        const bool throws =
            GetParam() == rh::FaultKind::OutOfMemory || GetParam() == rh::FaultKind::HostException;
        EXPECT_GE(struck, throws ? least : 0U);
    }
};

OwnedArray makePersistedFields()
{
    const std::size_t dimensions[] = {1, 1};
    return OwnedArray(nvCreateStructArray(2, dimensions, SignalSpecification::getNumStructFields(false),
                                          SignalSpecification::getStructFields()));
}

TEST_P(SignalSpecificationFaults, Saving)
{
    const SignalSpecificationPtr record = makeSignal(distinctValues());
    walk(50, [&] {
        const OwnedArray data = makePersistedFields();
        record->getPersistenceData(data.get(), 0, u"plant");
    });
    EXPECT_EQ(valuesOf(*record), distinctValues());
}

TEST_P(SignalSpecificationFaults, Loading)
{
    const rh::OwnedValue data = makePersisted({distinctValues()});
    walk(16, [&] { boost::make_shared<SignalSpecification>(data.get(), 0, u"plant"); });
}

TEST_P(SignalSpecificationFaults, ReadingAnObject)
{
    const rh::OwnedValue object = makeSignalObject(distinctValues());
    walk(20, [&] { boost::make_shared<SignalSpecification>(object.get(), 0, u"plant"); });
}

TEST_P(SignalSpecificationFaults, MakingAnObject)
{
    const SignalSpecificationPtr record = makeSignal(distinctValues());
    walk(40, [&] { record->getNVCOSObject(u"plant", false); });
}

TEST_P(SignalSpecificationFaults, MakingAStruct)
{
    const SignalSpecificationPtr record = makeSignal(distinctValues());
    walk(40, [&] { record->getNVCOSObject(u"plant", true); });
}

TEST_P(SignalSpecificationFaults, AskingForTheAlignedPath)
{
    const SignalSpecificationPtr record = makeSignal(distinctValues());
    walk(40, [&] { record->getAlignedBlockPath(u"plant"); });
}

TEST_P(SignalSpecificationFaults, MakingARecordForAPort)
{
    walk(1, [] {
        const std::unique_ptr<SignalSpecification> record(
            SignalSpecification::createSigSpecFromPort(u"plant/A", "plant:1", 1, 0, 2.5, u"plant", false));
    });
}

INSTANTIATE_TEST_SUITE_P(Kinds, SignalSpecificationFaults, testing::ValuesIn(everyFaultKind()),
                         nameOfFaultKind);

// ---- the two calls that do not throw --------------------------------------------------------------------

class SignalSpecificationNoThrowCalls : public LibraryTest {
protected:
    /// The nth of the calls that `getAlignedBlockPath` makes fails in this way; the path it gives.
    static std::u16string alignedPathWithFault(rh::FaultKind kind, std::uint64_t nth)
    {
        const SignalSpecificationPtr record = makeSignal(distinctValues());
        rh::Faults::arm("zmsvFEVAL_NoThrow", kind, nth);
        const std::u16string path = record->getAlignedBlockPath(u"plant");
        EXPECT_TRUE(rh::Faults::disarm());
        return path;
    }
};

TEST_F(SignalSpecificationNoThrowCalls, AFailureIsOneWarningAndNoException)
{
    for (const rh::FaultKind kind : {rh::FaultKind::HostException, rh::FaultKind::Diagnostic}) {
        for (const std::uint64_t nth : {1U, 2U}) {
            EXPECT_EQ(alignedPathWithFault(kind, nth), u"");
            EXPECT_EQ(rh::Warnings::take().size(), 1U);
        }
    }
}

TEST_F(SignalSpecificationNoThrowCalls, AnAnswerWithoutAValueIsNoFailure)
{
    for (const std::uint64_t nth : {1U, 2U}) {
        EXPECT_EQ(alignedPathWithFault(rh::FaultKind::Null, nth), u"");
        EXPECT_TRUE(rh::Warnings::take().empty());
    }
}

TEST_F(SignalSpecificationNoThrowCalls, SuccessReportsNothingAndCallsEachFunctionOnce)
{
    const SignalSpecificationPtr record = makeSignal(distinctValues());
    rh::Journal::startRecording();
    EXPECT_EQ(record->getAlignedBlockPath(u"plant"), u"plant/Controller/Begr\u00e4nzung");
    rh::Journal::stopRecording();
    EXPECT_TRUE(rh::Warnings::take().empty());
    EXPECT_EQ(rh::Journal::count("zmsvFEVAL_NoThrow"), 2U);
    EXPECT_EQ(rh::Journal::count("zmsvReportAsWarning"), 0U);
    EXPECT_EQ(rh::Journal::count("zmsvDiscardDiagnostic"), 0U);
}

}  // namespace
}  // namespace zm_hmi
