#include "host/Array.hpp"
#include "host/Exceptions.hpp"

#include <new>

// The first three operations, as an example of how to go on. A host's value may be anything; this one is a
// double. Replace it by your host's own value, and add the other classes to it.

struct nvArray {
    double number;
};

nvArray* nvCreateDoubleScalar(double value)
{
    auto* made = new (std::nothrow) nvArray{value};
    if (made == nullptr) {
        zmsvThrowOutOfMemory();
    }
    return made;
}

void nvDestroyArray(nvArray* value)
{
    delete value;
}

double nvGetScalar(const nvArray* value)
{
    if (value == nullptr) {
        throw zmsvException(zmsvMessageId("skeleton_host", "Null"), "nvGetScalar: the value is null");
    }
    return value->number;
}
