#include "reference_host/classes/BuiltInClasses.hpp"

#include "reference_host/classes/ClassReflection.hpp"
#include "reference_host/values/Value.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "tests/reference_host/classes/ClassesTest.hpp"

#include <map>

namespace reference_host {

namespace {

class SignalSpecificationClassTest : public ClassesTest {
protected:
    void SetUp() override { ClassSystem::createContributedNamespaces(); }

    static constexpr const char* className = "Zelmar.HMI.SignalSpecification";

    static OwnedValue make() { return ObjectAccess::construct(className); }
    static std::string read(const OwnedValue& specification, const std::string& property)
    {
        return describe(ObjectAccess::getProperty(specification.get(), property).get());
    }
    static std::string assignmentError(const char* property, const OwnedValue& value)
    {
        const OwnedValue specification = make();
        return hostError([&] { ObjectAccess::setProperty(specification.get(), property, value.get()); },
                         {className, property});
    }
};

TEST_F(SignalSpecificationClassTest, HasItsPropertiesInTheOrderOfTheRecord)
{
    std::vector<std::string> names;
    for (const PropertyDescription& property : describeClass(className).properties) {
        names.push_back(property.name);
    }
    const std::vector<std::string> expected{"UUID",
                                            "BlockPath_",
                                            "ZID_",
                                            "SubPath_",
                                            "OutputPortIndex_",
                                            "LogicalPortIndex_",
                                            "SignalName_",
                                            "SubSysPath_",
                                            "Decimation_",
                                            "MaxPoints_",
                                            "TargetBufferedStreaming_",
                                            "IsFrameBased_",
                                            "HideInDVX_",
                                            "DomainType_",
                                            "DomainParams_",
                                            "VisualType_",
                                            "BindingRule_",
                                            "CachedBlockHandle_",
                                            "CachedPortIdx_",
                                            "ExcludeForSave_"};
    EXPECT_EQ(names, expected);
}

TEST_F(SignalSpecificationClassTest, StartsWithTheDefaultsOfTheRecord)
{
    const std::string noText = describe(makeText(u"").get());
    const std::map<std::string, std::string> exceptions{{"OutputPortIndex_", "double 0"},
                                                        {"LogicalPortIndex_", "double 0"},
                                                        {"Decimation_", "double 1"},
                                                        {"MaxPoints_", "double 0"},
                                                        {"TargetBufferedStreaming_", "logical false"},
                                                        {"IsFrameBased_", "logical false"},
                                                        {"HideInDVX_", "logical false"},
                                                        {"DomainParams_", "0x0 double"},
                                                        {"CachedBlockHandle_", "0x0 double"},
                                                        {"CachedPortIdx_", "0x0 double"},
                                                        {"ExcludeForSave_", "logical false"}};
    const OwnedValue specification = make();
    for (const PropertyDescription& property : describeClass(className).properties) {
        const auto exception = exceptions.find(property.name);
        EXPECT_EQ(read(specification, property.name),
                  exception != exceptions.end() ? exception->second : noText)
            << property.name;
    }
}

TEST_F(SignalSpecificationClassTest, EveryPropertyCanBeWrittenByScripts)
{
    for (const PropertyDescription& property : describeClass(className).properties) {
        EXPECT_EQ(property.access, nvcos::COSPropAccess::ReadWrite) << property.name;
    }
}

TEST_F(SignalSpecificationClassTest, ATextMustBeText)
{
    EXPECT_EQ(assignmentError("BlockPath_", makeDouble(1.0)), "WrongValue");
    EXPECT_EQ(assignmentError("BindingRule_", makeLogical(true)), "WrongValue");
}

TEST_F(SignalSpecificationClassTest, ANumberMustBeANumber)
{
    EXPECT_EQ(assignmentError("OutputPortIndex_", makeText(u"1")), "WrongValue");
    EXPECT_EQ(assignmentError("Decimation_", makeEmptyValue()), "WrongValue");
}

TEST_F(SignalSpecificationClassTest, AFlagTakesANumberAsTrueOrFalse)
{
    const OwnedValue specification = make();
    ObjectAccess::setProperty(specification.get(), "IsFrameBased_", makeDouble(2.0).get());
    EXPECT_EQ(read(specification, "IsFrameBased_"), "logical true");
}

TEST_F(SignalSpecificationClassTest, ExcludeForSaveStaysLogical)
{
    const OwnedValue specification = make();
    ObjectAccess::setProperty(specification.get(), "ExcludeForSave_", makeDouble(1.0).get());
    EXPECT_EQ(read(specification, "ExcludeForSave_"), "logical true");
}

TEST_F(SignalSpecificationClassTest, DomainParametersAreAStructOrEmpty)
{
    const OwnedValue specification = make();
    const OwnedValue parameters = makeStruct({std::size_t{1}, std::size_t{1}}, {"KZID"});
    setField(parameters.get(), 0, "KZID", makeText(u"7"));
    ObjectAccess::setProperty(specification.get(), "DomainParams_", parameters.get());
    EXPECT_EQ(read(specification, "DomainParams_"), "1x1 struct {KZID}");
    ObjectAccess::setProperty(specification.get(), "DomainParams_", makeEmptyValue().get());
    EXPECT_EQ(read(specification, "DomainParams_"), "0x0 double");
    EXPECT_EQ(assignmentError("DomainParams_", makeText(u"KZID")), "WrongValue");
}

TEST_F(SignalSpecificationClassTest, TheCachedPortIsNumbersOrEmpty)
{
    const OwnedValue specification = make();
    for (const char* property : {"CachedBlockHandle_", "CachedPortIdx_"}) {
        ObjectAccess::setProperty(specification.get(), property, makeDouble(12.5).get());
        EXPECT_EQ(read(specification, property), "double 12.5");
        ObjectAccess::setProperty(specification.get(), property, makeEmptyValue().get());
        EXPECT_EQ(read(specification, property), "0x0 double");
        EXPECT_EQ(assignmentError(property, makeText(u"abc")), "WrongValue");
    }
}

TEST_F(SignalSpecificationClassTest, IsConstructedFromAStructOfAnyFields)
{
    const OwnedValue fields = makeStruct({std::size_t{1}, std::size_t{1}}, {"BlockPath_", "HideInDVX_"});
    setField(fields.get(), 0, "BlockPath_", makeText(u"plant/Gain"));
    setField(fields.get(), 0, "HideInDVX_", makeDouble(1.0));
    const OwnedValue specification = ObjectAccess::construct(className, {fields.get()});
    EXPECT_EQ(read(specification, "BlockPath_"), "\"plant/Gain\"");
    EXPECT_EQ(read(specification, "HideInDVX_"), "logical true");
}

}  // namespace

}  // namespace reference_host
