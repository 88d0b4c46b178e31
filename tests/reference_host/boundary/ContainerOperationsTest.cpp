#include "host/OwnedArray.hpp"
#include "reference_host/calls/Journal.hpp"
#include "reference_host/values/Value.hpp"
#include "reference_host/values/ValueReading.hpp"
#include "tests/reference_host/values/Misuse.hpp"
#include "tests/support/FaultWalk.hpp"
#include "tests/support/HostTest.hpp"

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace {

using namespace reference_host;
using ContainerOperationsTest = HostTest;

constexpr std::array<std::size_t, 2> scalarSize{1, 1};

OwnedArray makeRecord()
{
    const std::array<const char*, 2> names{"UUID", "Cells"};
    return OwnedArray(nvCreateStructArray(scalarSize.size(), scalarSize.data(), names.size(), names.data()));
}

OwnedArray makeFilledRecord()
{
    OwnedArray record = makeRecord();
    setField(record.get(), 0, "UUID", makeString(std::string("abc")));
    OwnedArray cells(nvCreateCellArray(scalarSize.size(), scalarSize.data()));
    setCell(cells.get(), 0, makeDouble(1));
    replaceField(record.get(), 0, "Cells", std::move(cells));
    return record;
}

TEST_F(ContainerOperationsTest, AreJournaledWithTheValuesThatTheyMove)
{
    Journal::startRecording();
    const OwnedArray record = makeRecord();
    EXPECT_EQ(Journal::entries().back().text(), "nvCreateStructArray([1, 1], [\"UUID\", \"Cells\"]) -> #" +
                                                    std::to_string(record->serial) +
                                                    " 1x1 struct {UUID, Cells}");
    nvGetFieldNames(record.get());
    EXPECT_EQ(Journal::entries().back().result, "[\"UUID\", \"Cells\"]");
    setField(record.get(), 0, "UUID", makeDouble(3));
    ASSERT_EQ(Journal::entries().back().arguments.size(), 4u);
    EXPECT_NE(Journal::entries().back().arguments[3].find("double 3"), std::string::npos);
}

TEST_F(ContainerOperationsTest, LoseNothingWhereverTheyFail)
{
    const auto body = [] { makeFilledRecord(); };
    EXPECT_EQ(walkFaults(Faults::anyOperation, FaultKind::OutOfMemory, body), 7u);
    EXPECT_EQ(walkFaults(Faults::anyOperation, FaultKind::HostException, body), 7u);
}

TEST_F(ContainerOperationsTest, ReadAFieldOrCellAsMissingWhenTold)
{
    const OwnedArray record = makeFilledRecord();
    Faults::arm("nvGetField", FaultKind::Null, 1);
    EXPECT_EQ(nvGetField(record.get(), 0, "UUID"), nullptr);
    EXPECT_NE(nvGetField(record.get(), 0, "UUID"), nullptr);
    Faults::arm("nvGetCell", FaultKind::Null, 1);
    EXPECT_EQ(nvGetCell(nvGetField(record.get(), 0, "Cells"), 0), nullptr);
    EXPECT_TRUE(Faults::disarm());
}

TEST_F(ContainerOperationsTest, MakeAColumnOfOneDimension)
{
    const std::size_t size = 3;
    const OwnedArray records(nvCreateStructArray(1, &size, 0, nullptr));
    EXPECT_EQ(dimensions(records.get()).text(), "3x1");
    const OwnedArray cells(nvCreateCellArray(1, &size));
    EXPECT_EQ(dimensions(cells.get()).text(), "3x1");
}

TEST_F(ContainerOperationsTest, RefuseListsThatAreMissing)
{
    const char* noName = nullptr;
    refusedWith("NullArgument", [] { nvCreateStructArray(2, nullptr, 0, nullptr); });
    refusedWith("NullArgument", [] { nvCreateStructArray(2, scalarSize.data(), 1, nullptr); });
    refusedWith("NullArgument", [&] { nvCreateStructArray(2, scalarSize.data(), 1, &noName); });
    refusedWith("NullArgument", [] { nvCreateCellArray(1, nullptr); });
}

}  // namespace
