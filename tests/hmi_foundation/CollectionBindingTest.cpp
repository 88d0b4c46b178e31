#include "hmi_foundation/CollectionBinding.hpp"

#include "hmi/InstrumentedSignals.hpp"
#include "reference_host/classes/ClassObjects.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "tests/hmi/LibraryTest.hpp"
#include "tests/hmi/SignalValues.hpp"

#include <gtest/gtest.h>

#include <stdexcept>

namespace zm_hmi_foundation {
namespace {

namespace rh = reference_host;
using zm_hmi::InstrumentedSignals;

class CollectionBinding : public zm_hmi::LibraryTest {};

TEST_F(CollectionBinding, AnObjectLeadsToItsCollection)
{
    const rh::OwnedValue object = rh::ClassObjects::construct("Zelmar.HMI.InstrumentedSignals");
    EXPECT_EQ(&collectionOf<InstrumentedSignals>(nvcos::COSValue(object.get())),
              InstrumentedSignals::getFromNVArray(object.get()));
}

TEST_F(CollectionBinding, AnObjectWithoutACollectionIsAnErrorNotACrash)
{
    const rh::OwnedValue empty = rh::makeEmptyValue();
    EXPECT_THROW(collectionOf<InstrumentedSignals>(nvcos::COSValue(empty.get())), std::runtime_error);
    EXPECT_THROW(collectionOf<InstrumentedSignals>(nvcos::COSValue(static_cast<nvArray*>(nullptr))),
                 std::runtime_error);
}

TEST_F(CollectionBinding, AnIndexIsCheckedAgainstTheCollectionOnlyForZero)
{
    InstrumentedSignals signals;
    signals.add(zm_hmi::makeSignal({}));
    EXPECT_EQ(indexInto(signals, nvcos::COSValue(std::uint32_t{1})), 0U);
    EXPECT_EQ(indexInto(signals, nvcos::COSValue(std::uint32_t{7})), 6U);
    EXPECT_THROW(indexInto(signals, nvcos::COSValue(std::uint32_t{0})), zmsvException);
}

}  // namespace
}  // namespace zm_hmi_foundation
