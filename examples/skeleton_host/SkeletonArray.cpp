#include "NotImplemented.hpp"
#include "host/Array.hpp"

#include <utility>

// The operations of host/Array.hpp. Written by contract/generate.py; yours to change.

nvArray* nvCreateString(const char* /*text*/)
{
    throwNotImplemented("nvCreateString");
}

nvArray* nvCreateString(const char* /*text*/, std::size_t /*length*/)
{
    throwNotImplemented("nvCreateString+length");
}

nvArray* nvCreateUString(const char16_t* /*text*/, std::size_t /*length*/)
{
    throwNotImplemented("nvCreateUString");
}

nvArray* nvCreateLogicalScalar(bool /*value*/)
{
    throwNotImplemented("nvCreateLogicalScalar");
}

nvArray* nvCreateNumericScalar(nvClassID /*classID*/, nvComplexity /*complexity*/)
{
    throwNotImplemented("nvCreateNumericScalar");
}

nvArray* nvCreateNumericMatrix(std::size_t /*rows*/, std::size_t /*columns*/, nvClassID /*classID*/,
                               nvComplexity /*complexity*/)
{
    throwNotImplemented("nvCreateNumericMatrix");
}

nvArray* nvCreateNumericMatrix(std::size_t /*dimensionCount*/, const std::size_t* /*dimensions*/,
                               nvClassID /*classID*/, nvComplexity /*complexity*/)
{
    throwNotImplemented("nvCreateNumericMatrix+dimensionCount+dimensions");
}

nvArray* nvCreateDeepCopy(const nvArray* /*value*/)
{
    throwNotImplemented("nvCreateDeepCopy");
}

nvArray* nvCreateSharedDataCopy(const nvArray* /*value*/)
{
    throwNotImplemented("nvCreateSharedDataCopy");
}

std::u16string nvGetUString(const nvArray* /*value*/)
{
    throwNotImplemented("nvGetUString");
}

std::string nvArrayToStdString(const nvArray* /*value*/)
{
    throwNotImplemented("nvArrayToStdString");
}

std::int64_t nvGetScalarInt(const nvArray* /*value*/)
{
    throwNotImplemented("nvGetScalarInt");
}

double nvGetElement(const nvArray* /*value*/, std::size_t /*index*/)
{
    throwNotImplemented("nvGetElement");
}

const bool* nvGetLogicals(const nvArray* /*value*/)
{
    throwNotImplemented("nvGetLogicals");
}

void* nvGetDataPointer(nvArray* /*value*/)
{
    throwNotImplemented("nvGetDataPointer");
}

bool nvIsLogicalScalarTrue(const nvArray* /*value*/)
{
    throwNotImplemented("nvIsLogicalScalarTrue");
}

bool nvIsLogical(const nvArray* /*value*/)
{
    throwNotImplemented("nvIsLogical");
}

bool nvIsStruct(const nvArray* /*value*/)
{
    throwNotImplemented("nvIsStruct");
}

bool nvIsEmpty(const nvArray* /*value*/)
{
    throwNotImplemented("nvIsEmpty");
}

bool nvIsA(const nvArray* /*value*/, const char* /*className*/)
{
    throwNotImplemented("nvIsA");
}

std::size_t nvGetNumberOfElements(const nvArray* /*value*/)
{
    throwNotImplemented("nvGetNumberOfElements");
}

void nvSetArrayScope(nvArray* /*value*/, nvScope /*scope*/)
{
    throwNotImplemented("nvSetArrayScope");
}

void zmsvSetLocalScope(nvArray* /*value*/)
{
    throwNotImplemented("zmsvSetLocalScope");
}

void zmsvSetPersistentScope(nvArray* /*value*/)
{
    throwNotImplemented("zmsvSetPersistentScope");
}
