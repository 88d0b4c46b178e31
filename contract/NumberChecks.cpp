#include "contract/Check.hpp"
#include "contract/Values.hpp"

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

// Numbers and logicals: making and reading them.

using namespace contract;

namespace {

std::int64_t integerOf(double number)
{
    return nvGetScalarInt(makeDouble(number).get());
}

/// Writes the bytes of a number into a new 1-by-1 value of the class and reads it as a double.
template <class Number>
double readBack(nvClassID classID, Number number)
{
    const OwnedArray value(nvCreateNumericScalar(classID, nvComplexity::Real));
    std::memcpy(nvGetDataPointer(value.get()), &number, sizeof number);
    expectEqual(nvGetScalar(value.get()), nvGetElement(value.get(), 0));
    return nvGetScalar(value.get());
}

void expectNewScalar(nvClassID classID, const char* className)
{
    const OwnedArray value(nvCreateNumericScalar(classID, nvComplexity::Real));
    expectTrue(nvIsA(value.get(), className), std::string("the value is of class ") + className);
    expectEqual(nvGetNumberOfElements(value.get()), std::size_t{1});
    expectEqual(nvGetScalar(value.get()), 0.0);
}

constexpr auto lowest64 = std::numeric_limits<std::int64_t>::min();
constexpr auto highest64 = std::numeric_limits<std::int64_t>::max();

}  // namespace

ZM_CHECK(doubleScalarKeepsItsNumber, "nvCreateDoubleScalar nvGetScalar",
         "A double scalar holds the number that it was made of.")
{
    for (const double number : {0.0, 1.5, -2.25, 1e300, 5e-324}) {
        expectEqual(nvGetScalar(makeDouble(number).get()), number);
    }
}

ZM_CHECK(doubleScalarKeepsEveryBit, "nvCreateDoubleScalar nvGetScalar",
         "A double scalar keeps the sign of zero and the bits of a NaN.")
{
    for (const double number :
         {-0.0, std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
        const double read = nvGetScalar(makeDouble(number).get());
        expectEqual(std::bit_cast<std::uint64_t>(read), std::bit_cast<std::uint64_t>(number));
    }
}

ZM_CHECK(doubleScalarIsOneDouble, "nvCreateDoubleScalar",
         "A double scalar is a 1-by-1 value of class double.")
{
    const OwnedArray value = makeDouble(7);
    expectEqual(nvGetNumberOfElements(value.get()), std::size_t{1});
    expectTrue(nvIsA(value.get(), "double"), "the class is double");
    expectTrue(!nvIsLogical(value.get()), "a number is no logical");
}

ZM_CHECK(logicalScalarIsTrueOrFalse, "nvCreateLogicalScalar nvIsLogicalScalarTrue",
         "A logical scalar is true exactly when it was made of true.")
{
    expectTrue(nvIsLogicalScalarTrue(makeLogical(true).get()), "true is true");
    expectTrue(!nvIsLogicalScalarTrue(makeLogical(false).get()), "false is not true");
}

ZM_CHECK(logicalScalarIsOneLogical, "nvCreateLogicalScalar nvIsLogical",
         "A logical scalar is a 1-by-1 value of class logical.")
{
    const OwnedArray value = makeLogical(false);
    expectTrue(nvIsLogical(value.get()), "it is logical");
    expectTrue(nvIsA(value.get(), "logical"), "its class is logical");
    expectEqual(nvGetNumberOfElements(value.get()), std::size_t{1});
}

ZM_CHECK(logicalReadsAsNumber, "nvGetScalar nvCreateLogicalScalar", "A logical reads as the number 1 or 0.")
{
    expectEqual(nvGetScalar(makeLogical(true).get()), 1.0);
    expectEqual(nvGetScalar(makeLogical(false).get()), 0.0);
}

ZM_CHECK(numberIsNoLogical, "nvIsLogical nvIsLogicalScalarTrue", "The number 1 is neither logical nor true.")
{
    expectTrue(!nvIsLogical(makeDouble(1).get()), "1 is no logical");
    expectTrue(!nvIsLogicalScalarTrue(makeDouble(1).get()), "1 is not true");
    expectTrue(!nvIsLogical(makeText("1").get()), "text is no logical");
}

ZM_CHECK(logicalsAreReadInPlace, "nvGetLogicals",
         "The elements of a logical value are read through a pointer.")
{
    const OwnedArray yes = makeLogical(true);
    const OwnedArray no = makeLogical(false);
    expectEqual(*nvGetLogicals(yes.get()), true);
    expectEqual(*nvGetLogicals(no.get()), false);
}

ZM_CHECK(logicalsOfANumberAreRefused, "nvGetLogicals", "Logicals are not read from a number.")
{
    const OwnedArray number = makeDouble(1);
    expectHostError("nvGetLogicals", [&] { nvGetLogicals(number.get()); });
}

ZM_CHECK(numericScalarOfDouble, "nvCreateNumericScalar", "A new double scalar is 0.")
{
    expectNewScalar(nvClassID::Double, "double");
}
ZM_CHECK(numericScalarOfSingle, "nvCreateNumericScalar", "A new single scalar is 0.")
{
    expectNewScalar(nvClassID::Single, "single");
}
ZM_CHECK(numericScalarOfInt8, "nvCreateNumericScalar", "A new int8 scalar is 0.")
{
    expectNewScalar(nvClassID::Int8, "int8");
}
ZM_CHECK(numericScalarOfUint8, "nvCreateNumericScalar", "A new uint8 scalar is 0.")
{
    expectNewScalar(nvClassID::UInt8, "uint8");
}
ZM_CHECK(numericScalarOfInt16, "nvCreateNumericScalar", "A new int16 scalar is 0.")
{
    expectNewScalar(nvClassID::Int16, "int16");
}
ZM_CHECK(numericScalarOfUint16, "nvCreateNumericScalar", "A new uint16 scalar is 0.")
{
    expectNewScalar(nvClassID::UInt16, "uint16");
}
ZM_CHECK(numericScalarOfInt32, "nvCreateNumericScalar", "A new int32 scalar is 0.")
{
    expectNewScalar(nvClassID::Int32, "int32");
}
ZM_CHECK(numericScalarOfUint32, "nvCreateNumericScalar", "A new uint32 scalar is 0.")
{
    expectNewScalar(nvClassID::UInt32, "uint32");
}
ZM_CHECK(numericScalarOfInt64, "nvCreateNumericScalar", "A new int64 scalar is 0.")
{
    expectNewScalar(nvClassID::Int64, "int64");
}
ZM_CHECK(numericScalarOfUint64, "nvCreateNumericScalar", "A new uint64 scalar is 0.")
{
    expectNewScalar(nvClassID::UInt64, "uint64");
}

ZM_CHECK(dataPointerOfUint32, "nvGetDataPointer", "A uint32 is stored through the data pointer.")
{
    expectEqual(readBack(nvClassID::UInt32, std::uint32_t{4294967295U}), 4294967295.0);
}
ZM_CHECK(dataPointerOfDouble, "nvGetDataPointer", "A double is stored through the data pointer.")
{
    expectEqual(readBack(nvClassID::Double, -1.25), -1.25);
}
ZM_CHECK(dataPointerOfSingle, "nvGetDataPointer", "A single is stored through the data pointer.")
{
    expectEqual(readBack(nvClassID::Single, 0.5F), 0.5);
}
ZM_CHECK(dataPointerOfInt8, "nvGetDataPointer", "An int8 is stored through the data pointer.")
{
    expectEqual(readBack(nvClassID::Int8, std::int8_t{-128}), -128.0);
}
ZM_CHECK(dataPointerOfUint8, "nvGetDataPointer", "A uint8 is stored through the data pointer.")
{
    expectEqual(readBack(nvClassID::UInt8, std::uint8_t{200}), 200.0);
}
ZM_CHECK(dataPointerOfInt16, "nvGetDataPointer", "An int16 is stored through the data pointer.")
{
    expectEqual(readBack(nvClassID::Int16, std::int16_t{-32768}), -32768.0);
}
ZM_CHECK(dataPointerOfUint16, "nvGetDataPointer", "A uint16 is stored through the data pointer.")
{
    expectEqual(readBack(nvClassID::UInt16, std::uint16_t{65535}), 65535.0);
}
ZM_CHECK(dataPointerOfInt32, "nvGetDataPointer", "An int32 is stored through the data pointer.")
{
    expectEqual(readBack(nvClassID::Int32, std::int32_t{-7}), -7.0);
}
ZM_CHECK(dataPointerOfInt64, "nvGetDataPointer", "An int64 is stored through the data pointer.")
{
    expectEqual(readBack(nvClassID::Int64, std::int64_t{-4096}), -4096.0);
}
ZM_CHECK(dataPointerOfUint64, "nvGetDataPointer", "A uint64 is stored through the data pointer.")
{
    expectEqual(readBack(nvClassID::UInt64, std::uint64_t{4096}), 4096.0);
}

ZM_CHECK(dataPointerOfContainerIsRefused, "nvGetDataPointer", "A cell array has no data pointer.")
{
    const OwnedArray cells = makeCells(1);
    const OwnedArray withoutDimensions(nvCreateCellArray(0, nullptr));
    expectHostError("nvGetDataPointer", [&] { nvGetDataPointer(cells.get()); });
    expectHostError("nvGetDataPointer", [&] { nvGetDataPointer(withoutDimensions.get()); });
}

ZM_CHECK(matrixIsZeroFilled, "nvCreateNumericMatrix nvGetElement", "A new matrix holds zeros only.")
{
    const OwnedArray value = makeMatrix(2, 3);
    expectEqual(nvGetNumberOfElements(value.get()), std::size_t{6});
    for (std::size_t i = 0; i < 6; ++i) {
        expectEqual(nvGetElement(value.get(), i), 0.0);
    }
}

ZM_CHECK(matrixHasItsClass, "nvCreateNumericMatrix", "A new matrix is of the class that was asked for.")
{
    expectTrue(nvIsA(makeMatrix(1, 2, nvClassID::UInt32).get(), "uint32"), "uint32");
    expectTrue(nvIsA(makeMatrix(0, 0).get(), "double"), "double");
}

ZM_CHECK(matrixOfNoRowsIsEmpty, "nvCreateNumericMatrix nvIsEmpty", "The 0-by-0 double is empty.")
{
    expectTrue(nvIsEmpty(makeEmpty().get()), "0-by-0 is empty");
    expectEqual(nvGetNumberOfElements(makeEmpty().get()), std::size_t{0});
    expectTrue(nvIsEmpty(makeMatrix(3, 0).get()), "3-by-0 is empty");
}

ZM_CHECK(matrixTakesAListOfDimensions, "nvCreateNumericMatrix+dimensionCount+dimensions",
         "A matrix has as many elements as the product of its dimensions.")
{
    const std::array<std::size_t, 3> sizes{2, 3, 4};
    const OwnedArray value(
        nvCreateNumericMatrix(sizes.size(), sizes.data(), nvClassID::Single, nvComplexity::Real));
    expectEqual(nvGetNumberOfElements(value.get()), std::size_t{24});
    expectEqual(nvGetElement(value.get(), 23), 0.0);
    expectTrue(nvIsA(value.get(), "single"), "the class is single");
}

ZM_CHECK(matrixWithAZeroDimensionIsEmpty, "nvCreateNumericMatrix+dimensionCount+dimensions nvIsEmpty",
         "One dimension of 0 makes a matrix empty.")
{
    const std::array<std::size_t, 3> sizes{2, 0, 4};
    const OwnedArray value(
        nvCreateNumericMatrix(sizes.size(), sizes.data(), nvClassID::Double, nvComplexity::Real));
    expectTrue(nvIsEmpty(value.get()), "2-by-0-by-4 is empty");
    expectEqual(nvGetNumberOfElements(value.get()), std::size_t{0});
}

ZM_CHECK(matrixBeyondMemoryIsShortMemory, "nvCreateNumericMatrix",
         "A matrix that cannot fit into memory is refused with the exception for short memory.")
{
    const std::size_t huge = std::numeric_limits<std::size_t>::max() / 2;
    for (const std::size_t columns : {huge, std::size_t{1}}) {
        try {
            makeMatrix(huge, columns);
            fail("a huge matrix was made");
        } catch (const zmsvOutOfMemoryException&) {
            continue;
        }
    }
}

ZM_CHECK(scalarIsTheFirstElement, "nvGetScalar", "The scalar of a matrix is its first element.")
{
    const OwnedArray value = makeMatrix(1, 2);
    static_cast<double*>(nvGetDataPointer(value.get()))[0] = 3;
    static_cast<double*>(nvGetDataPointer(value.get()))[1] = 4;
    expectEqual(nvGetScalar(value.get()), 3.0);
}

ZM_CHECK(scalarOfAnEmptyValueIsRefused, "nvGetScalar", "An empty value has no scalar.")
{
    const OwnedArray value = makeEmpty();
    expectHostError("nvGetScalar", [&] { nvGetScalar(value.get()); });
}

ZM_CHECK(scalarOfAContainerIsRefused, "nvGetScalar", "Containers have no scalar.")
{
    const OwnedArray cells = makeCells(1);
    const OwnedArray record = makeStruct(1, {"A"});
    expectHostError("nvGetScalar", [&] { nvGetScalar(cells.get()); });
    expectHostError("nvGetScalar", [&] { nvGetScalar(record.get()); });
}

ZM_CHECK(scalarOfTextIsItsFirstUnit, "nvGetScalar", "The scalar of a text is the number of its first unit.")
{
    expectEqual(nvGetScalar(makeText("A").get()), 65.0);
}

ZM_CHECK(integerIsTruncated, "nvGetScalarInt", "The integer of a number is truncated toward zero.")
{
    expectEqual(integerOf(2.9), std::int64_t{2});
    expectEqual(integerOf(-2.9), std::int64_t{-2});
    expectEqual(integerOf(-0.5), std::int64_t{0});
    expectEqual(integerOf(41), std::int64_t{41});
}

ZM_CHECK(integerOfNanIsZero, "nvGetScalarInt", "The integer of a NaN is 0.")
{
    expectEqual(integerOf(std::numeric_limits<double>::quiet_NaN()), std::int64_t{0});
}

ZM_CHECK(integerSaturates, "nvGetScalarInt",
         "The integer of a number past the 64-bit range is the range's end.")
{
    expectEqual(integerOf(1e300), highest64);
    expectEqual(integerOf(-9223372036854775808.0), lowest64);
    expectEqual(integerOf(9223372036854774784.0), std::int64_t{9223372036854774784});
    expectEqual(integerOf(-std::numeric_limits<double>::infinity()), lowest64);
    expectEqual(integerOf(-1e300), lowest64);
    expectEqual(integerOf(std::numeric_limits<double>::infinity()), highest64);
    expectEqual(integerOf(9223372036854775808.0), highest64);
}

ZM_CHECK(integerOfUint64Saturates, "nvGetScalarInt", "The integer of a large uint64 is the range's end.")
{
    const OwnedArray value(nvCreateNumericScalar(nvClassID::UInt64, nvComplexity::Real));
    *static_cast<std::uint64_t*>(nvGetDataPointer(value.get())) = std::numeric_limits<std::uint64_t>::max();
    expectEqual(nvGetScalarInt(value.get()), highest64);
}

ZM_CHECK(integerOfInt64IsExact, "nvGetScalarInt",
         "The integer of an int64 is the number itself, to the last bit.")
{
    const OwnedArray value(nvCreateNumericScalar(nvClassID::Int64, nvComplexity::Real));
    *static_cast<std::int64_t*>(nvGetDataPointer(value.get())) = highest64 - 1;
    expectEqual(nvGetScalarInt(value.get()), highest64 - 1);
}

ZM_CHECK(integerOfLogicalAndText, "nvGetScalarInt", "Logicals and texts have an integer, too.")
{
    expectEqual(nvGetScalarInt(makeLogical(true).get()), std::int64_t{1});
    expectEqual(nvGetScalarInt(makeText("A").get()), std::int64_t{65});
}

ZM_CHECK(integerOfAnEmptyValueIsRefused, "nvGetScalarInt", "An empty value has no integer.")
{
    const OwnedArray value = makeEmpty();
    expectHostError("nvGetScalarInt", [&] { nvGetScalarInt(value.get()); });
}

ZM_CHECK(elementsAreReadInOrder, "nvGetElement nvGetDataPointer",
         "Elements are read by their 0-based linear index, first dimension fastest.")
{
    const OwnedArray value = makeMatrix(2, 3);
    auto* data = static_cast<double*>(nvGetDataPointer(value.get()));
    for (std::size_t i = 0; i < 6; ++i) {
        data[i] = static_cast<double>(10 * i);
    }
    for (std::size_t i = 0; i < 6; ++i) {
        expectEqual(nvGetElement(value.get(), i), static_cast<double>(10 * i));
    }
}

ZM_CHECK(elementPastTheEndIsRefused, "nvGetElement", "An element past the end is a host error.")
{
    const OwnedArray value = makeMatrix(2, 3);
    const OwnedArray empty = makeEmpty();
    expectHostError("nvGetElement", [&] { nvGetElement(value.get(), 6); });
    expectHostError("nvGetElement", [&] { nvGetElement(empty.get(), 0); });
}

ZM_CHECK(elementOfALogicalIsANumber, "nvGetElement", "The element of a logical is 1 or 0.")
{
    expectEqual(nvGetElement(makeLogical(true).get(), 0), 1.0);
}

ZM_CHECK(elementOfTextIsRefused, "nvGetElement", "Texts and containers have no numeric elements.")
{
    const OwnedArray cells = makeCells(1);
    expectHostError("nvGetElement", [&] { nvGetElement(cells.get(), 0); });
}

ZM_CHECK(fullValueIsNotEmpty, "nvIsEmpty", "A value with elements is not empty.")
{
    expectTrue(!nvIsEmpty(makeDouble(0).get()), "a number is not empty");
    expectTrue(!nvIsEmpty(makeText("a").get()), "a text is not empty");
    expectTrue(!nvIsEmpty(makeCells(1).get()), "a cell array with an unset cell is not empty");
}

ZM_CHECK(classNamesAreExact, "nvIsA", "A value is of its own class and of no other.")
{
    expectTrue(nvIsA(makeDouble(1).get(), "double"), "a double is a double");
    expectTrue(!nvIsA(makeDouble(1).get(), "Double"), "names are compared exactly");
    expectTrue(!nvIsA(makeDouble(1).get(), "logical"), "a double is no logical");
    expectTrue(!nvIsA(makeText("double").get(), "double"), "a text is no double");
    expectTrue(!nvIsA(makeDouble(1).get(), "Zelmar.HMI.InstrumentedSignals"), "a double is no object");
}

ZM_CHECK(elementsAreCounted, "nvGetNumberOfElements",
         "The number of elements is the product of the dimensions.")
{
    expectEqual(nvGetNumberOfElements(makeMatrix(4, 5).get()), std::size_t{20});
    expectEqual(nvGetNumberOfElements(makeText("abc").get()), std::size_t{3});
    expectEqual(nvGetNumberOfElements(makeStruct(2, {"A"}).get()), std::size_t{2});
}
