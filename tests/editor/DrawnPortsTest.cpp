#include "editor/DrawnPorts.hpp"

#include "editor/SignalsObject.hpp"
#include "host/Exceptions.hpp"
#include "reference_host/classes/ObjectAccess.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "tests/editor/EditorTest.hpp"

#include <gtest/gtest.h>

namespace editor {
namespace {

namespace rh = reference_host;

class DrawnPortsTest : public EditorTest {
protected:
    DrawnPorts drawn;
};

TEST_F(DrawnPortsTest, ExactlyTheObservedPortsAreObserved)
{
    addSignal(at(u"Controller/Gain"), 2);
    drawn.redraw(*model, signals.get());
    EXPECT_TRUE(drawn.isObserved(signals.get(), at(u"Controller/Gain"), 2));
    EXPECT_FALSE(drawn.isObserved(signals.get(), at(u"Controller/Gain"), 1));
    EXPECT_FALSE(drawn.isObserved(signals.get(), at(u"Tank"), 2));
}

TEST_F(DrawnPortsTest, NoPortIsObservedBeforeItIsDrawn)
{
    addSignal(at(u"Tank"), 1);
    EXPECT_FALSE(drawn.isObserved(signals.get(), at(u"Tank"), 1));
}

TEST_F(DrawnPortsTest, AChangeMakesARedrawNecessary)
{
    addSignal(at(u"Tank"), 1);
    drawn.redraw(*model, signals.get());
    addSignal(at(u"Tank"), 2);
    EXPECT_FALSE(drawn.isObserved(signals.get(), at(u"Tank"), 1));
    drawn.redraw(*model, signals.get());
    EXPECT_TRUE(drawn.isObserved(signals.get(), at(u"Tank"), 1));
    EXPECT_TRUE(drawn.isObserved(signals.get(), at(u"Tank"), 2));
}

TEST_F(DrawnPortsTest, AnotherCollectionIsToBeDrawnAnew)
{
    addSignal(at(u"Tank"), 1);
    drawn.redraw(*model, signals.get());
    const rh::OwnedValue another = newSignalsLike(signals.get());
    EXPECT_FALSE(drawn.isObserved(another.get(), at(u"Tank"), 1));
    drawn.redraw(*model, another.get());
    EXPECT_FALSE(drawn.isObserved(signals.get(), at(u"Tank"), 1)) << "its cache names ports that are gone";
}

TEST_F(DrawnPortsTest, APortThatIsNotThereIsNotObserved)
{
    drawn.redraw(*model, signals.get());
    EXPECT_FALSE(drawn.isObserved(signals.get(), at(u"Tank"), 7));
}

TEST_F(DrawnPortsTest, OnlyInstrumentedSignalsHaveAPortCache)
{
    EXPECT_THROW(nativeSignals(clients.get()), zmsvException);
    EXPECT_THROW(nativeSignals(nullptr), zmsvException);
    EXPECT_THROW(nativeSignals(rh::makeDouble(1.0).get()), zmsvException);
}

}  // namespace
}  // namespace editor
