#include "host/Array.hpp"

#include "reference_host/calls/BoundaryCall.hpp"
#include "reference_host/support/ErrorCatalog.hpp"
#include "reference_host/support/Ledger.hpp"
#include "reference_host/values/Value.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"

#include <span>
#include <string_view>

using namespace reference_host;

namespace {

/// For predicates, which cannot fail: a destroyed value is recorded as a misuse and treated as null.
const nvArray* unlessDead(const nvArray* value) noexcept
{
    if (value == nullptr || value->ownership != Ownership::Dead) {
        return value;
    }
    try {
        Ledger::recordMisuse(CallSite::current().operationName() +
                             (": looks at " + describeWithSerial(value)));
    } catch (const std::exception&) {
        Ledger::recordMisuse({});
    }
    return nullptr;
}

}  // namespace

// ---- making values ------------------------------------------------------------------------------

nvArray* nvCreateString(const char* text)
{
    return BoundaryCall({"nvCreateString"}, text).run([&] {
        requirePointer(text);
        return makeText(std::string_view(text)).release();
    });
}

nvArray* nvCreateString(const char* text, std::size_t length)
{
    const std::string_view characters(text, text != nullptr ? length : 0);
    return BoundaryCall({"nvCreateString"}, characters, length).run([&] {
        requirePointer(text, length);
        return makeText(characters).release();
    });
}

nvArray* nvCreateUString(const char16_t* text, std::size_t length)
{
    const std::u16string_view characters(text, text != nullptr ? length : 0);
    return BoundaryCall({"nvCreateUString"}, characters, length).run([&] {
        requirePointer(text, length);
        return makeText(characters).release();
    });
}

nvArray* nvCreateDoubleScalar(double value)
{
    return BoundaryCall({"nvCreateDoubleScalar"}, value).run([&] { return makeDouble(value).release(); });
}

nvArray* nvCreateLogicalScalar(bool value)
{
    return BoundaryCall({"nvCreateLogicalScalar"}, value).run([&] { return makeLogical(value).release(); });
}

nvArray* nvCreateNumericScalar(nvClassID classID, nvComplexity complexity)
{
    return BoundaryCall({"nvCreateNumericScalar"}, classID, complexity).run([&] {
        return makeNumeric(Dimensions(1, 1), classID, complexity).release();
    });
}

nvArray* nvCreateNumericMatrix(std::size_t rows, std::size_t columns, nvClassID classID,
                               nvComplexity complexity)
{
    return BoundaryCall({"nvCreateNumericMatrix"}, rows, columns, classID, complexity).run([&] {
        return makeNumeric(Dimensions(rows, columns), classID, complexity).release();
    });
}

nvArray* nvCreateNumericMatrix(std::size_t dimensionCount, const std::size_t* dimensions, nvClassID classID,
                               nvComplexity complexity)
{
    const SizeList sizes{dimensions, dimensionCount};
    return BoundaryCall({"nvCreateNumericMatrix"}, sizes, classID, complexity).run([&] {
        requirePointer(dimensions, dimensionCount);
        return makeNumeric(Dimensions(std::span(dimensions, dimensionCount)), classID, complexity).release();
    });
}

nvArray* nvCreateDeepCopy(const nvArray* value)
{
    return BoundaryCall({"nvCreateDeepCopy"}, value).run([&] { return copyDeep(value).release(); });
}

nvArray* nvCreateSharedDataCopy(const nvArray* value)
{
    return BoundaryCall({"nvCreateSharedDataCopy"}, value).run([&] { return copyShared(value).release(); });
}

void nvDestroyArray(nvArray* value)
{
    BoundaryCall({"nvDestroyArray", CanFail::Never}, value).run([&] { destroyValue(value); });
}

// ---- reading values -----------------------------------------------------------------------------

std::u16string nvGetUString(const nvArray* value)
{
    return BoundaryCall({"nvGetUString"}, value).run([&] { return text(value); });
}

std::string nvArrayToStdString(const nvArray* value)
{
    return BoundaryCall({"nvArrayToStdString"}, value).run([&] { return utf8Text(value); });
}

double nvGetScalar(const nvArray* value)
{
    return BoundaryCall({"nvGetScalar"}, value).run([&] { return scalar(value); });
}

std::int64_t nvGetScalarInt(const nvArray* value)
{
    return BoundaryCall({"nvGetScalarInt"}, value).run([&] { return scalarInteger(value); });
}

double nvGetElement(const nvArray* value, std::size_t index)
{
    return BoundaryCall({"nvGetElement"}, value, index).run([&] { return element(value, index); });
}

const bool* nvGetLogicals(const nvArray* value)
{
    return BoundaryCall({"nvGetLogicals"}, value).run([&] { return logicals(value); });
}

void* nvGetDataPointer(nvArray* value)
{
    return BoundaryCall({"nvGetDataPointer"}, value).run([&] { return writableNumericData(value); });
}

bool nvIsLogicalScalarTrue(const nvArray* value)
{
    BoundaryCall call({"nvIsLogicalScalarTrue", CanFail::Never}, value);
    return call.runNoThrow([&] { return isTrueScalar(unlessDead(value)); });
}

bool nvIsLogical(const nvArray* value)
{
    BoundaryCall call({"nvIsLogical", CanFail::Never}, value);
    return call.runNoThrow([&] { return isOfClass(unlessDead(value), "logical"); });
}

bool nvIsStruct(const nvArray* value)
{
    BoundaryCall call({"nvIsStruct", CanFail::Never}, value);
    return call.runNoThrow([&] { return isStruct(unlessDead(value)); });
}

bool nvIsEmpty(const nvArray* value)
{
    BoundaryCall call({"nvIsEmpty", CanFail::Never}, value);
    return call.runNoThrow([&] { return isEmpty(unlessDead(value)); });
}

bool nvIsA(const nvArray* value, const char* className)
{
    BoundaryCall call({"nvIsA", CanFail::Never}, value, className);
    return call.runNoThrow([&] { return isOfClass(unlessDead(value), className); });
}

std::size_t nvGetNumberOfElements(const nvArray* value)
{
    BoundaryCall call({"nvGetNumberOfElements", CanFail::Never}, value);
    return call.runNoThrow([&] { return elementCount(unlessDead(value)); });
}

// ---- lifetimes ----------------------------------------------------------------------------------

void nvSetArrayScope(nvArray* value, nvScope scope)
{
    BoundaryCall({"nvSetArrayScope"}, value, scope).run([&] {
        if (scope != nvScope::Temporary && scope != nvScope::CallerOwned) {
            throwHostError("UnknownScope", {static_cast<std::int64_t>(scope)});
        }
        setScope(value, scope == nvScope::Temporary ? Scope::Temporary : Scope::CallerOwned);
    });
}

void zmsvSetLocalScope(nvArray* value)
{
    BoundaryCall({"zmsvSetLocalScope"}, value).run([&] { setScope(value, Scope::Local); });
}

void zmsvSetPersistentScope(nvArray* value)
{
    BoundaryCall({"zmsvSetPersistentScope"}, value).run([&] { setScope(value, Scope::Persistent); });
}
