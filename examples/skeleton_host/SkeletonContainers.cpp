#include "NotImplemented.hpp"
#include "host/Containers.hpp"

#include <utility>

// The operations of host/Containers.hpp. Written by contract/generate.py; yours to change.

nvArray* nvCreateStructArray(std::size_t /*dimensionCount*/, const std::size_t* /*dimensions*/,
                             std::size_t /*fieldCount*/, const char* const* /*names*/)
{
    throwNotImplemented("nvCreateStructArray");
}

const nvArray* nvGetField(const nvArray* /*value*/, std::size_t /*index*/, const char* /*name*/)
{
    throwNotImplemented("nvGetField");
}

void nvSetField(nvArray* /*value*/, std::size_t /*index*/, const char* /*name*/, nvArray* /*field*/)
{
    throwNotImplemented("nvSetField");
}

void nvReplaceField(nvArray* /*value*/, std::size_t /*index*/, const char* /*name*/, nvArray* /*field*/)
{
    throwNotImplemented("nvReplaceField");
}

std::size_t nvGetNumberOfFields(const nvArray* /*value*/)
{
    throwNotImplemented("nvGetNumberOfFields");
}

std::vector<std::string> nvGetFieldNames(const nvArray* /*value*/)
{
    throwNotImplemented("nvGetFieldNames");
}

nvArray* nvCreateCellArray(std::size_t /*dimensionCount*/, const std::size_t* /*dimensions*/)
{
    throwNotImplemented("nvCreateCellArray");
}

void nvSetCell(nvArray* /*value*/, std::size_t /*index*/, nvArray* /*element*/)
{
    throwNotImplemented("nvSetCell");
}

const nvArray* nvGetCell(const nvArray* /*value*/, std::size_t /*index*/)
{
    throwNotImplemented("nvGetCell");
}

nvArray* nvGetProperty(const nvArray* /*value*/, std::size_t /*index*/, const char* /*name*/)
{
    throwNotImplemented("nvGetProperty");
}

nvArray* nvGetPropertyShared(const nvArray* /*value*/, std::size_t /*index*/, const char* /*name*/)
{
    throwNotImplemented("nvGetPropertyShared");
}

void nvSetProperty(nvArray* /*value*/, std::size_t /*index*/, const char* /*name*/,
                   const nvArray* /*property*/)
{
    throwNotImplemented("nvSetProperty");
}
