#include "hmi_foundation/bindings/CollectionBinding.hpp"

#include "hmi/InstrumentedSignals.hpp"
#include "reference_host/classes/ObjectAccess.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "tests/hmi/LibraryTest.hpp"
#include "tests/hmi/SignalValues.hpp"

#include <gtest/gtest.h>

namespace zm_hmi_foundation {
namespace {

namespace rh = reference_host;
using zm_hmi::InstrumentedSignals;

class CollectionBinding : public zm_hmi::LibraryTest {};

TEST_F(CollectionBinding, AnObjectLeadsToItsCollection)
{
    const rh::OwnedValue object = rh::ObjectAccess::construct("Zelmar.HMI.InstrumentedSignals");
    EXPECT_EQ(&collectionOf<InstrumentedSignals>(nvcos::COSValue(object.get())),
              InstrumentedSignals::getFromNVArray(object.get()));
}

TEST_F(CollectionBinding, AnObjectWithoutACollectionIsAnErrorNotACrash)
{
    const rh::OwnedValue empty = rh::makeEmptyValue();
    for (nvArray* const object : {empty.get(), static_cast<nvArray*>(nullptr)}) {
        try {
            collectionOf<InstrumentedSignals>(nvcos::COSValue(object));
            ADD_FAILURE() << "no error";
        } catch (const zmsvException& error) {
            EXPECT_EQ(error.id().catalog(), errorCatalog);
            EXPECT_EQ(error.id().key(), "NoCollection");
        }
    }
}

TEST_F(CollectionBinding, AnIndexIsCheckedAgainstTheCollectionOnlyForZero)
{
    InstrumentedSignals signals;
    signals.add(zm_hmi::makeSignal({}));
    EXPECT_EQ(indexInto(signals, std::uint32_t{1}), 0U);
    EXPECT_EQ(indexInto(signals, std::uint32_t{7}), 6U);
    EXPECT_THROW(indexInto(signals, std::uint32_t{0}), zmsvException);
}

}  // namespace
}  // namespace zm_hmi_foundation
