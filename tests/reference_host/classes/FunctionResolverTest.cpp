#include "host/Calls.hpp"
#include "host/OwnedArray.hpp"
#include "reference_host/calls/HostFunctions.hpp"
#include "reference_host/values/Value.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "tests/reference_host/classes/ClassesTest.hpp"

namespace reference_host {

namespace {

using test_classes::Call;

class FunctionResolverTest : public ClassesTest {
protected:
    static OwnedArray evaluate(const char* function, const std::vector<const nvArray*>& inputs = {},
                               int outputCount = 1)
    {
        nvArray* output = nullptr;
        zmsvFEVAL(outputCount, &output, static_cast<int>(inputs.size()), inputs.data(), function);
        return OwnedArray(output);
    }
};

TEST_F(FunctionResolverTest, AClassNameConstructs)
{
    std::u16string name;
    defineThing({"Thing", {"unicodeString"}, {"A.Thing"}, 1, [&](Call& now) {
                     name = std::get<std::u16string>(now.inputs[0]);
                 }});
    const OwnedValue argument = makeText(u"plant");
    EXPECT_EQ(describe(evaluate("A.Thing", {argument.get()}).get()), "1x1 A.Thing");
    EXPECT_EQ(name, u"plant");
}

TEST_F(FunctionResolverTest, AnObjectThatNobodyAskedForEnds)
{
    defineThing();
    EXPECT_EQ(evaluate("A.Thing", {}, 0), nullptr);
    EXPECT_EQ(m_thing.deallocated, 1);
}

TEST_F(FunctionResolverTest, AClassGivesOneOutput)
{
    defineThing();
    std::vector<nvArray*> outputs(2);
    EXPECT_EQ(hostError([&] { zmsvFEVAL(2, outputs.data(), 0, nullptr, "A.Thing"); }, {"A.Thing"}),
              "TooManyOutputs");
}

TEST_F(FunctionResolverTest, AStaticMethodIsAFunction)
{
    defineThing({"twice", {"double scalar"}, {"any"}, 0, [](Call& now) {
                     now.outputs[0] = 2.0 * std::get<double>(now.inputs[0]);
                     now.outputCount = 1;
                 }});
    const OwnedValue argument = makeDouble(4.0);
    EXPECT_EQ(describe(evaluate("A.Thing.twice", {argument.get()}).get()), "double 8");
}

TEST_F(FunctionResolverTest, AnInstanceMethodNeedsAnObject)
{
    defineThing({"go", {"A.Thing"}, {}, 0, nullptr});
    EXPECT_EQ(hostError([] { evaluate("A.Thing.go", {}, 0); }, {"A.Thing.go"}), "NoObject");
}

TEST_F(FunctionResolverTest, AnUnknownNameIsNoFunction)
{
    defineThing();
    EXPECT_FALSE(HostFunctions::isDefined("A.Other"));
    EXPECT_FALSE(HostFunctions::isDefined("A.Thing.go"));
    EXPECT_FALSE(HostFunctions::isDefined("Thing"));
}

TEST_F(FunctionResolverTest, AFailingConstructorIsADiagnosticOfTheCallThatDoesNotThrow)
{
    defineThing({"Thing", {}, {"A.Thing"}, 0, [](Call&) { zmsvThrowOutOfMemory(); }});
    nvArray* output = nullptr;
    zmsvDiagnostic* diagnostic = zmsvFEVAL_NoThrow(1, &output, 0, nullptr, "A.Thing", true);
    EXPECT_NE(diagnostic, nullptr);
    EXPECT_EQ(output, nullptr);
    zmsvDiscardDiagnostic(diagnostic);
}

TEST_F(FunctionResolverTest, TheNamespaceMayLoadAMissingFunction)
{
    test_classes::NamespaceScript script;
    script.load = [this](nvcos::COSNamespace& home, const std::string& what, const std::string& name) {
        if (what == "function" && name == "Thing") {
            test_classes::addClass(home, "Thing", m_thing);
            return true;
        }
        return false;
    };
    test_classes::addNamespace("A", script);
    EXPECT_NE(evaluate("A.Thing"), nullptr);
}

}  // namespace

}  // namespace reference_host
