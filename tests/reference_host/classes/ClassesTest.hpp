#ifndef ZM_TESTS_REFERENCE_HOST_CLASSES_CLASSES_TEST_HPP
#define ZM_TESTS_REFERENCE_HOST_CLASSES_CLASSES_TEST_HPP

#include "contract/TestClasses.hpp"
#include "host/Exceptions.hpp"
#include "reference_host/classes/ClassSystem.hpp"
#include "reference_host/classes/ObjectAccess.hpp"
#include "reference_host/support/Ledger.hpp"
#include "tests/support/HostTest.hpp"

#include <gtest/gtest.h>
#include <functional>
#include <string>
#include <vector>

namespace reference_host {

/// Starts from an empty class system and leaves one, so that the ledger closes over instances,
/// signatures and descriptors too. A test's objects end before the fixture does.
class ClassesTest : public HostTest {
protected:
    void TearDown() override { ClassSystem::reset(); }

    /// Runs what must end in a host error; its text holds all these parts. Returns the key.
    static std::string hostError(const std::function<void()>& work, const std::vector<std::string>& parts)
    {
        try {
            work();
        } catch (const zmsvException& error) {
            for (const std::string& part : parts) {
                EXPECT_NE(std::string(error.what()).find(part), std::string::npos) << error.what();
            }
            return error.id().key();
        }
        ADD_FAILURE() << "expected a host error";
        return {};
    }

    /// The class "A.Thing", which holds what the initializer adds to it.
    void defineThing(std::function<void(nvcos::COSClass&)> initialize = nullptr)
    {
        if (!ClassSystem::hasNamespace("A")) {
            ClassSystem::createNamespace("A");
        }
        m_thing.initialize = std::move(initialize);
        test_classes::addClass(*test_classes::findNamespace("A"), "Thing", m_thing);
    }

    /// The same with one method.
    void defineThing(const test_classes::Method& method)
    {
        defineThing([method](nvcos::COSClass& cosClass) { test_classes::addMethod(cosClass, method); });
    }

    static OwnedValue makeThing() { return ObjectAccess::construct("A.Thing"); }

    test_classes::ClassScript m_thing;
};

}  // namespace reference_host

#endif
