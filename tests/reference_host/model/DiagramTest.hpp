#ifndef ZM_TESTS_REFERENCE_HOST_MODEL_DIAGRAM_TEST_HPP
#define ZM_TESTS_REFERENCE_HOST_MODEL_DIAGRAM_TEST_HPP

#include "host/Exceptions.hpp"
#include "reference_host/calls/Warnings.hpp"
#include "reference_host/model/OpenModels.hpp"
#include "reference_host/ssp/SsdReader.hpp"
#include "reference_host/support/Ledger.hpp"

#include <gtest/gtest.h>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <variant>
#include <vector>

/// Closes the ledger after each test: no value, diagnostic, warning or open model is left behind.
class DiagramTest : public testing::Test {
protected:
    void TearDown() override
    {
        EXPECT_TRUE(reference_host::OpenModels::all().empty()) << "a model is still open";
        EXPECT_TRUE(reference_host::Warnings::take().empty()) << "a warning was not expected";
        reference_host::OpenModels::closeAll();
        for (const std::string& line : reference_host::Ledger::openSince(m_before)) {
            ADD_FAILURE() << "left open: " << line;
        }
    }

    /// Runs what must fail with that message of the diagram's catalog, and returns the whole error.
    static std::unique_ptr<zmsvException> hostError(const char* key, const std::function<void()>& work)
    {
        try {
            work();
        } catch (const zmsvException& error) {
            EXPECT_EQ(error.id().catalog(), "reference_host:diagram");
            EXPECT_EQ(error.id().key(), key) << error.what();
            return std::make_unique<zmsvException>(error);
        }
        ADD_FAILURE() << "expected the host error " << key;
        return std::make_unique<zmsvException>(zmsvMessageId("", ""), "");
    }

    static reference_host::SsdDocument read(const std::string& document,
                                            const reference_host::SsdLimits& limits = {})
    {
        return reference_host::readSsd(document, "test.ssd", limits);
    }

    /// A document whose outermost System holds this. The content begins on line 3.
    static std::string system(const std::string& content)
    {
        return "<ssd:SystemStructureDescription name='d' version='1.0' "
               "xmlns:ssd='http://ssp-standard.org/SSP1/SystemStructureDescription'>\n"
               "<ssd:System name='plant'>\n" +
               content + "</ssd:System></ssd:SystemStructureDescription>\n";
    }

    static std::string elements(const std::string& content)
    {
        return system("<ssd:Elements>" + content + "</ssd:Elements>\n");
    }

    /// Reads what must be refused; checks file and line and returns the reason.
    static std::string refusal(const std::string& document, std::uint64_t line,
                               const reference_host::SsdLimits& limits = {})
    {
        const auto error = hostError("InvalidDiagram", [&] { read(document, limits); });
        const std::vector<zmsvMessageArgument>& arguments = error->id().arguments();
        if (arguments.size() != 3) {
            return "";
        }
        EXPECT_EQ(std::get<std::string>(arguments[0]), "test.ssd");
        EXPECT_EQ(std::get<std::uint64_t>(arguments[1]), line);
        std::string reason = std::get<std::string>(arguments[2]);
        EXPECT_EQ(error->what(), "test.ssd:" + std::to_string(line) + ": " + reason);
        return reason;
    }

private:
    reference_host::Ledger::Snapshot m_before = reference_host::Ledger::snapshot();
};

#endif
