#include "tests/reference_host/classes/ClassesTest.hpp"

#include <memory>

namespace reference_host {

namespace {

using test_classes::typeNamed;

class MethodSignatureTest : public ClassesTest {
protected:
    std::unique_ptr<nvcos::COSMethodSignature> m_signature{
        nvcos::COSMethodSignature::createMethodSignature()};

    void TearDown() override
    {
        m_signature.reset();
        ClassesTest::TearDown();
    }
};

TEST_F(MethodSignatureTest, RefusesAnInputWithoutTypeByItsPosition)
{
    m_signature->addInput(typeNamed("any"));
    EXPECT_EQ(hostError([&] { m_signature->addInput(nullptr); }, {"input 2"}), "NullType");
}

TEST_F(MethodSignatureTest, RefusesAnOutputWithoutTypeByItsPosition)
{
    EXPECT_EQ(hostError([&] { m_signature->addOutput(nullptr); }, {"output 1"}), "NullType");
}

TEST_F(MethodSignatureTest, RefusesMoreOptionalInputsThanThereAre)
{
    m_signature->addInput(typeNamed("any"));
    m_signature->setNumberOfOptionalInputs(1);
    EXPECT_EQ(hostError([&] { m_signature->setNumberOfOptionalInputs(2); }, {"2 optional inputs"}),
              "BadOptionalInputs");
    EXPECT_EQ(hostError([&] { m_signature->setNumberOfOptionalInputs(-1); }, {"-1"}), "BadOptionalInputs");
}

TEST_F(MethodSignatureTest, IsCountedWhileItLives)
{
    const Ledger::Snapshot before = Ledger::snapshot();
    const std::unique_ptr<nvcos::COSMethodSignature> one(nvcos::COSMethodSignature::createMethodSignature());
    EXPECT_EQ(Ledger::openSince(before).size(), 1U);
}

}  // namespace

}  // namespace reference_host
