#include "contract/Check.hpp"
#include "contract/Things.hpp"
#include "contract/Values.hpp"

#include <string>

// Methods: signatures, conversion of arguments and results, host functions by name.

using namespace contract;
using nvcos::COSValue;
using test_classes::Call;
using test_classes::MethodInfo;

namespace {

COSValue given;
int givenCount = -1;

/// Adds a static method with one input of the type, which keeps what it is given.
void addTaking(const char* type)
{
    things().methods.push_back({"take", {type}, {}, 0, [](Call& call) {
                                    givenCount = call.inputCount;
                                    given = call.inputCount > 0 ? call.inputs[0] : COSValue();
                                    call.outputCount = 0;
                                }});
    things().add();
}

/// Adds a static method without inputs that gives this.
void addGiving(const char* type, COSValue value)
{
    things().methods.push_back({"give", {}, {type}, 0, [value](Call& call) {
                                    call.outputs[0] = value;
                                    call.outputCount = 1;
                                }});
    things().add();
}

template <class Expected>
void expectGiven(const Expected& expected)
{
    expectTrue(std::holds_alternative<Expected>(given), "the input is of the declared type");
    expectEqual(std::get<Expected>(given), expected);
}

void callTake(OwnedArray value)
{
    callHost<0>("Contract.Thing.take", value.get());
}

OwnedArray callGive()
{
    return std::move(callHost<1>("Contract.Thing.give")[0]);
}

[[noreturn]] void refuse(Call& /*call*/)
{
    throw zmsvException(zmsvMessageId("contract", "Refused", {std::uint64_t{5}}), "refused by the body");
}

/// Adds a method while the class is initialized and passes the host's error on.
void addToClass(const std::function<void(nvcos::COSClass&)>& members)
{
    things().members = members;
    things().add();
    makeThing();
}

}  // namespace

ZM_CHECK(wideTextIsGivenToAMethod, "COSMethodSignature::addInput COSMethodInfo::invoke",
         "An input \"unicodeString\" comes as UTF-16 text.")
{
    addTaking("unicodeString");
    callTake(makeString(std::u16string(u"\u00DCber")));
    expectGiven(std::u16string(u"\u00DCber"));
}
ZM_CHECK(narrowTextIsGivenToAMethod, "COSMethodSignature::addInput COSMethodInfo::invoke",
         "An input \"asciiString\" comes as narrow text.")
{
    addTaking("asciiString");
    callTake(makeText("plain"));
    expectGiven(std::string("plain"));
}
ZM_CHECK(uint32IsGivenToAMethod, "COSMethodSignature::addInput",
         "An input \"uint32 scalar\" comes as that integer.")
{
    addTaking("uint32 scalar");
    callTake(makeDouble(4294967295.0));
    expectGiven(std::uint32_t{4294967295U});
}
ZM_CHECK(int32IsGivenToAMethod, "COSMethodSignature::addInput",
         "An input \"int32 scalar\" comes as that integer.")
{
    addTaking("int32 scalar");
    callTake(makeDouble(-3));
    expectGiven(std::int32_t{-3});
}
ZM_CHECK(doubleIsGivenToAMethod, "COSMethodSignature::addInput",
         "An input \"double scalar\" comes as a double.")
{
    addTaking("double scalar");
    callTake(makeDouble(2.5));
    expectGiven(2.5);
}
ZM_CHECK(logicalIsGivenToAMethod, "COSMethodSignature::addInput",
         "An input \"logical scalar\" comes as a bool; a nonzero number is true.")
{
    addTaking("logical scalar");
    callTake(makeLogical(true));
    expectGiven(true);
    callTake(makeDouble(0));
    expectGiven(false);
}
ZM_CHECK(anyValueIsGivenToAMethod, "COSMethodSignature::addInput",
         "An input \"any\" comes as the host value.")
{
    static double seen = 0;
    things().methods.push_back({"take", {"any"}, {}, 0, [](Call& call) {
                                    seen = nvGetScalar(std::get<nvArray*>(call.inputs[0]));
                                    call.outputCount = 0;
                                }});
    things().add();
    callTake(makeDouble(7));
    expectEqual(seen, 7.0);
}
ZM_CHECK(objectIsGivenToAMethod, "COSMethodSignature::addInput",
         "An input of a class comes as the object; another value is refused.")
{
    static bool isThing = false;
    things().methods.push_back({"take", {"any", "Contract.Thing"}, {}, 0, [](Call& call) {
                                    isThing = nvIsA(std::get<nvArray*>(call.inputs[1]), "Contract.Thing");
                                    call.outputCount = 0;
                                }});
    things().add();
    const OwnedArray thing = makeThing();
    const OwnedArray number = makeDouble(1);
    callHost<0>("Contract.Thing.take", number.get(), thing.get());
    expectTrue(isThing, "the body sees the object");
    expectTrue(!callHostNoThrow<0>("Contract.Thing.take", number.get(), number.get()).succeeded,
               "1 is no Thing");
}

ZM_CHECK(wrongArgumentIsRefused, "COSMethodSignature::addInput",
         "An argument of another type is a host error.")
{
    addTaking("double scalar");
    const OwnedArray text = makeText("no number");
    expectHostError("take", [&] { callHost<0>("Contract.Thing.take", text.get()); });
    expectEqual(givenCount, -1);
}
ZM_CHECK(fractionIsNoInteger, "COSMethodSignature::addInput",
         "A number that is no uint32 is refused for one.")
{
    addTaking("uint32 scalar");
    const OwnedArray negative = makeDouble(-1);
    expectHostError("take", [&] { callHost<0>("Contract.Thing.take", negative.get()); });
}
ZM_CHECK(missingArgumentIsRefused, "COSMethodSignature::addInput", "Too few arguments are a host error.")
{
    addTaking("double scalar");
    expectHostError("take", [] { callHost<0>("Contract.Thing.take"); });
}
ZM_CHECK(surplusArgumentIsRefused, "COSMethodSignature::addInput", "Too many arguments are a host error.")
{
    addTaking("double scalar");
    const OwnedArray one = makeDouble(1);
    expectHostError("take", [&] { callHost<0>("Contract.Thing.take", one.get(), one.get()); });
}
ZM_CHECK(optionalArgumentMayBeLeftOut, "COSMethodSignature::setNumberOfOptionalInputs COSMethodInfo::invoke",
         "An optional argument may be left out; the count says so.")
{
    things().methods.push_back({"take", {"double scalar", "double scalar"}, {}, 1, [](Call& call) {
                                    givenCount = call.inputCount;
                                    call.outputCount = 0;
                                }});
    things().add();
    const OwnedArray one = makeDouble(1);
    callHost<0>("Contract.Thing.take", one.get());
    expectEqual(givenCount, 1);
    callHost<0>("Contract.Thing.take", one.get(), one.get());
    expectEqual(givenCount, 2);
    expectTrue(!callHostNoThrow<0>("Contract.Thing.take").succeeded, "the first one is required");
}
ZM_CHECK(tooManyOptionalInputsAreRefused, "COSMethodSignature::setNumberOfOptionalInputs",
         "More optional inputs than inputs are a host error.")
{
    const std::unique_ptr<nvcos::COSMethodSignature> signature(
        nvcos::COSMethodSignature::createMethodSignature());
    signature->addInput(test_classes::typeNamed("any"));
    signature->setNumberOfOptionalInputs(1);
    expectHostError("signature", [&] { signature->setNumberOfOptionalInputs(2); });
}
ZM_CHECK(nullTypeIsNoInput, "COSMethodSignature::addInput", "A null type is no input.")
{
    const std::unique_ptr<nvcos::COSMethodSignature> signature(
        nvcos::COSMethodSignature::createMethodSignature());
    expectHostError("type", [&] { signature->addInput(nullptr); });
}
ZM_CHECK(nullTypeIsNoOutput, "COSMethodSignature::addOutput", "A null type is no output.")
{
    const std::unique_ptr<nvcos::COSMethodSignature> signature(
        nvcos::COSMethodSignature::createMethodSignature());
    expectHostError("type", [&] { signature->addOutput(nullptr); });
}
ZM_CHECK(signatureIsNew, "COSMethodSignature::createMethodSignature", "Each signature is a new one.")
{
    const std::unique_ptr<nvcos::COSMethodSignature> one(nvcos::COSMethodSignature::createMethodSignature());
    const std::unique_ptr<nvcos::COSMethodSignature> two(nvcos::COSMethodSignature::createMethodSignature());
    expectTrue(one != nullptr && two != nullptr && one != two, "two signatures");
    one->addInput(test_classes::typeNamed("any"));
    expectHostError("signature", [&] { two->setNumberOfOptionalInputs(1); });
}

ZM_CHECK(wideTextIsAResult, "COSMethodSignature::addOutput COSMethodInfo::invoke",
         "A UTF-16 result becomes text.")
{
    addGiving("unicodeString", std::u16string(u"\u00DCber"));
    expectEqual(nvGetUString(callGive().get()), std::u16string(u"\u00DCber"));
}
ZM_CHECK(narrowTextIsAResult, "COSMethodSignature::addOutput", "A narrow result becomes text.")
{
    addGiving("asciiString", std::string("plain"));
    expectEqual(nvArrayToStdString(callGive().get()), std::string("plain"));
}
ZM_CHECK(uint32IsAResult, "COSMethodSignature::addOutput", "A uint32 result becomes a uint32 scalar.")
{
    addGiving("uint32 scalar", std::uint32_t{9});
    const OwnedArray result = callGive();
    expectTrue(nvIsA(result.get(), "uint32"), "the class is uint32");
    expectEqual(nvGetScalar(result.get()), 9.0);
}
ZM_CHECK(int32IsAResult, "COSMethodSignature::addOutput", "An int32 result becomes an int32 scalar.")
{
    addGiving("int32 scalar", std::int32_t{-9});
    const OwnedArray result = callGive();
    expectTrue(nvIsA(result.get(), "int32"), "the class is int32");
    expectEqual(nvGetScalar(result.get()), -9.0);
}
ZM_CHECK(doubleIsAResult, "COSMethodSignature::addOutput", "A double result becomes a double scalar.")
{
    addGiving("double scalar", 1.25);
    expectEqual(nvGetScalar(callGive().get()), 1.25);
}
ZM_CHECK(logicalIsAResult, "COSMethodSignature::addOutput", "A bool result becomes a logical scalar.")
{
    addGiving("logical scalar", true);
    expectTrue(nvIsLogicalScalarTrue(callGive().get()), "true");
}
ZM_CHECK(hostValueIsAResult, "COSMethodSignature::addOutput COSMethodInfo::invoke",
         "A host value that a body gives is the result.")
{
    things().methods.push_back({"give", {}, {"any"}, 0, [](Call& call) {
                                    call.outputs[0] = nvCreateDoubleScalar(6);
                                    call.outputCount = 1;
                                }});
    things().add();
    expectEqual(nvGetScalar(callGive().get()), 6.0);
}
ZM_CHECK(severalResultsComeInOrder, "COSMethodSignature::addOutput zmsvFEVAL",
         "Several results come in their order.")
{
    things().methods.push_back({"give", {}, {"double scalar", "double scalar"}, 0, [](Call& call) {
                                    call.outputs[0] = 1.0;
                                    call.outputs[1] = 2.0;
                                    call.outputCount = 2;
                                }});
    things().add();
    const auto results = callHost<2>("Contract.Thing.give");
    expectEqual(nvGetScalar(results[0].get()), 1.0);
    expectEqual(nvGetScalar(results[1].get()), 2.0);
}
ZM_CHECK(moreOutputsThanDeclaredAreRefused, "COSMethodSignature::addOutput",
         "A caller that asks for more outputs than are declared gets a host error.")
{
    addGiving("double scalar", 1.0);
    expectTrue(callHostNoThrow<1>("Contract.Thing.give").succeeded, "one output is declared");
    expectTrue(!callHostNoThrow<2>("Contract.Thing.give").succeeded, "two are too many");
}
ZM_CHECK(bodySeesTheWantedCount, "COSMethodInfo::invoke",
         "On entry the body sees how many outputs are wanted.")
{
    static int wanted = -1;
    things().methods.push_back({"give", {}, {"double scalar", "double scalar"}, 0, [](Call& call) {
                                    wanted = call.outputCount;
                                    call.outputs[0] = 1.0;
                                    call.outputCount = 1;
                                }});
    things().add();
    expectEqual(nvGetScalar(callGive().get()), 1.0);
    expectEqual(wanted, 1);
}

ZM_CHECK(methodIsKnownByItsName, "COSMethodInfo::COSMethodInfo COSMethodInfo::getName COSClass::addMethod",
         "A method is called by the name of its descriptor.")
{
    addGiving("double scalar", 3.0);
    expectEqual(nvGetScalar(callGive().get()), 3.0);
    expectTrue(!callHostNoThrow<1>("Contract.Thing.other").succeeded, "there is no other method");
}
ZM_CHECK(descriptorHasItsName, "COSMethodInfo::getName COSMethodInfo::COSMethodInfo",
         "A descriptor has the name that it was made with, or none.")
{
    const MethodInfo named("a name");
    expectTrue(named.getName() != nullptr, "there is a name");
    expectEqual(std::string(named.getName()), std::string("a name"));
    const MethodInfo nameless(nullptr);
    expectTrue(nameless.getName() == nullptr, "null for none");
}
ZM_CHECK(methodIsNotAddedTwice, "COSClass::addMethod", "A second method of one name is a host error.")
{
    addToClass([](nvcos::COSClass& cosClass) {
        const test_classes::Method method{"twice", {}, {}, 0, {}};
        test_classes::addMethod(cosClass, method);
        expectHostError("twice", [&] { test_classes::addMethod(cosClass, method); });
    });
}
ZM_CHECK(methodWithoutANameIsRefused, "COSClass::addMethod", "A method without a name is a host error.")
{
    addToClass([](nvcos::COSClass& cosClass) {
        auto info = std::make_unique<MethodInfo>(nullptr);
        expectHostError("Thing", [&] { cosClass.addMethod(info.get()); });
    });
}
ZM_CHECK(methodWithoutASignatureIsRefused, "COSClass::addMethod COSMethodInfo::getSignature",
         "A method without a signature is a host error.")
{
    addToClass([](nvcos::COSClass& cosClass) {
        auto info = std::make_unique<MethodInfo>("bare");
        expectHostError("bare", [&] { cosClass.addMethod(info.get()); });
    });
}
ZM_CHECK(signatureOfTheDescriptorIsUsed,
         "COSMethodInfo::getSignature COSMethodSignature::createMethodSignature",
         "The signature of the descriptor says how many arguments a method takes.")
{
    addTaking("double scalar");
    callTake(makeDouble(1));
    expectEqual(givenCount, 1);
    expectTrue(!callHostNoThrow<0>("Contract.Thing.take").succeeded, "one argument is needed");
}

ZM_CHECK(constructorGetsItsArguments, "COSMethodInfo::invoke zmsvFEVAL",
         "A constructor gets the caller's arguments.")
{
    static double seen = 0;
    things().construct = [](Call& call) {
        expectEqual(call.inputCount, 1);
        seen = nvGetScalar(std::get<nvArray*>(call.inputs[0]));
    };
    things().add();
    const OwnedArray argument = makeDouble(8);
    callHost<1>("Contract.Thing", argument.get());
    expectEqual(seen, 8.0);
}
ZM_CHECK(constructorFindsItsObject, "COSMethodInfo::invoke",
         "A constructor finds the new object in output 0.")
{
    static bool isThing = false;
    things().construct = [](Call& call) {
        isThing = nvIsA(std::get<nvArray*>(call.outputs[0]), "Contract.Thing");
    };
    things().add();
    makeThing();
    expectTrue(isThing, "the new object");
}
ZM_CHECK(failedConstructorLeavesNothing, "COSClassInfo::deallocateInstance zmsvFEVAL",
         "When a constructor throws, its instance ends and the host error passes through.")
{
    things().construct = refuse;
    things().add();
    expectHostError("refused by the body", [] { makeThing(); });
    expectEqual(things().thing.allocated, 1);
    expectEqual(things().alive(), 0);
}

ZM_CHECK(unknownFunctionIsRefused, "zmsvFEVAL", "Calling an unknown function is a host error that names it.")
{
    expectHostError("Contract.NoSuch", [] { zmsvFEVAL(0, nullptr, 0, nullptr, "Contract.NoSuch"); });
}
ZM_CHECK(calledFunctionsErrorPassesThrough, "zmsvFEVAL",
         "What a called function throws passes through unchanged.")
{
    things().methods.push_back({"refuse", {}, {}, 0, refuse});
    things().add();
    try {
        zmsvFEVAL(0, nullptr, 0, nullptr, "Contract.Thing.refuse");
    } catch (const zmsvException& error) {
        expectEqual(error.id().key(), std::string("Refused"));
        expectEqual(error.id().arguments().size(), std::size_t{1});
        return;
    }
    fail("nothing was thrown");
}
ZM_CHECK(inputsStayTheCallers, "zmsvFEVAL", "Inputs of a call stay the caller's and unchanged.")
{
    addTaking("any");
    const OwnedArray input = makeDouble(5);
    callHost<0>("Contract.Thing.take", input.get());
    expectEqual(givenCount, 1);
    expectEqual(nvGetScalar(input.get()), 5.0);
}
ZM_CHECK(callWithoutThrowingFillsOutputs, "zmsvFEVAL_NoThrow", "A call without throwing fills its outputs.")
{
    addGiving("double scalar", 3.0);
    nvArray* output = nullptr;
    zmsvDiagnostic* diagnostic = zmsvFEVAL_NoThrow(1, &output, 0, nullptr, "Contract.Thing.give", true);
    expectTrue(diagnostic == nullptr, "no diagnostic on success");
    const OwnedArray owned(output);
    expectTrue(output != nullptr, "an output");
    expectEqual(nvGetScalar(output), 3.0);
}
ZM_CHECK(callWithoutThrowingGivesADiagnostic, "zmsvFEVAL_NoThrow", "A failure comes back as its diagnostic.")
{
    things().methods.push_back({"refuse", {}, {}, 0, refuse});
    things().add();
    zmsvDiagnostic* diagnostic = zmsvFEVAL_NoThrow(0, nullptr, 0, nullptr, "Contract.Thing.refuse", true);
    expectTrue(diagnostic != nullptr, "a diagnostic");
    expectHostError("refused by the body", [&] { zmsvThrowIExceptionFromDiagnostic(diagnostic, nullptr); });
}
ZM_CHECK(unknownFunctionGivesADiagnostic, "zmsvFEVAL_NoThrow",
         "An unknown function is a diagnostic that names it.")
{
    zmsvDiagnostic* diagnostic = zmsvFEVAL_NoThrow(0, nullptr, 0, nullptr, "Contract.NoSuch", true);
    expectTrue(diagnostic != nullptr, "a diagnostic");
    expectHostError("Contract.NoSuch", [&] { zmsvThrowIExceptionFromDiagnostic(diagnostic, nullptr); });
}
ZM_CHECK(exceptionSlotIsFilled, "zmsvFEVAL_NoThrow",
         "A failed call fills the exception slot where one is given.")
{
    nvArray* raised = nullptr;
    zmsvDiscardDiagnostic(zmsvFEVAL_NoThrow(0, nullptr, 0, nullptr, "Contract.NoSuch", true, &raised));
    const OwnedArray owned(raised);
    expectTrue(raised != nullptr, "a value of the exception");
}
ZM_CHECK(failedCallLeavesOutputsUnset, "zmsvFEVAL_NoThrow",
         "A failed call leaves its inputs alone and no outputs.")
{
    const OwnedArray input = asTemporary(makeDouble(5));
    const nvArray* inputs[] = {input.get()};
    nvArray* outputs[] = {nullptr};
    zmsvDiscardDiagnostic(zmsvFEVAL_NoThrow(1, outputs, 1, inputs, "Contract.NoSuch", true));
    expectTrue(outputs[0] == nullptr, "no output");
    expectEqual(nvGetScalar(input.get()), 5.0);
}
ZM_CHECK(callWithAContextFillsOutputs, "zmsvFEVAL_NoThrow+context",
         "A call with a context fills its outputs.")
{
    addGiving("double scalar", 3.0);
    nvArray* output = nullptr;
    int context = 0;
    zmsvDiagnostic* diagnostic =
        zmsvFEVAL_NoThrow(1, &output, 0, nullptr, "Contract.Thing.give", static_cast<void*>(&context), true);
    const OwnedArray owned(output);
    expectTrue(diagnostic == nullptr && output != nullptr, "a result and no diagnostic");
    expectEqual(nvGetScalar(output), 3.0);
}
ZM_CHECK(callWithAContextGivesADiagnostic, "zmsvFEVAL_NoThrow+context",
         "The context may be null; failures come back.")
{
    zmsvDiagnostic* diagnostic =
        zmsvFEVAL_NoThrow(0, nullptr, 0, nullptr, "Contract.NoSuch", static_cast<void*>(nullptr), true);
    expectTrue(diagnostic != nullptr, "a diagnostic");
    zmsvDiscardDiagnostic(diagnostic);
}
