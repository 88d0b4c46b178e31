#include "host/Text.hpp"

#include "reference_host/calls/Journal.hpp"
#include "tests/reference_host/values/Misuse.hpp"
#include "tests/support/FaultWalk.hpp"
#include "tests/support/HostTest.hpp"

#include <gtest/gtest.h>

#include <thread>

namespace {

using namespace reference_host;
using TextOperationsTest = HostTest;

/// A converter that another host might have made.
class ForeignConverter : public zmsvTextConverter {};

TEST_F(TextOperationsTest, RefuseAConverterOfAnotherHost)
{
    refusedWith("ForeignConverter", [] { toUtf8(u"text", ForeignConverter()); });
}

TEST_F(TextOperationsTest, NameTheEncodingThatTheyDoNotKnow)
{
    EXPECT_EQ(refusedWith("UnknownEncoding", [] { makeTextConverter("EBCDIC"); }),
              "makeTextConverter: the encoding \"EBCDIC\" is not known");
}

TEST_F(TextOperationsTest, FailAsTheyAreTold)
{
    const auto body = [] {
        toUtf8(toUtf16("text"), *makeTextConverter("UTF-8"));
        extractFileName(makeNativeForm(u"a/b", true));
    };
    EXPECT_EQ(walkFaults(Faults::anyOperation, FaultKind::OutOfMemory, body), 5u);
}

TEST_F(TextOperationsTest, AreJournaledFromAnyThread)
{
    Journal::startRecording();
    const auto convert = [] {
        for (int i = 0; i < 100; ++i) {
            toUtf8(u"text");
        }
    };
    std::thread other(convert);
    convert();
    other.join();
    EXPECT_EQ(Journal::count("toUtf8"), 200u);
    for (const JournalEntry& entry : Journal::entries()) {
        EXPECT_EQ(entry.text(), "toUtf8(\"text\") -> \"text\"");
        EXPECT_EQ(entry.depth, 0u);
    }
}

}  // namespace
