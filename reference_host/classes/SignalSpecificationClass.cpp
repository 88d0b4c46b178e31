#include "reference_host/classes/SignalSpecificationClass.hpp"

#include "reference_host/classes/RecordClass.hpp"
#include "reference_host/values/Value.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueReading.hpp"

#include <string>

namespace reference_host {

namespace {

std::string structOrEmpty(const nvArray* value)
{
    return isStruct(value) || isEmpty(value) ? "" : "must be a struct or empty, not " + describe(value);
}

std::string numberOrEmpty(const nvArray* value)
{
    const bool isNumber = isNumeric(value) && !isComplex(value) && elementCount(value) == 1;
    return isNumber || isEmpty(value) ? "" : "must be one real number or empty, not " + describe(value);
}

}  // namespace

std::unique_ptr<nvcos::COSClassInfo> makeSignalSpecificationClass()
{
    return makeRecordClass("SignalSpecification", {
                                                      textProperty("UUID"),
                                                      textProperty("BlockPath_"),
                                                      textProperty("ZID_"),
                                                      textProperty("SubPath_"),
                                                      numberProperty("OutputPortIndex_"),
                                                      numberProperty("LogicalPortIndex_"),
                                                      textProperty("SignalName_"),
                                                      textProperty("SubSysPath_"),
                                                      numberProperty("Decimation_", 1.0),
                                                      numberProperty("MaxPoints_"),
                                                      flagProperty("TargetBufferedStreaming_"),
                                                      flagProperty("IsFrameBased_"),
                                                      flagProperty("HideInDVX_"),
                                                      textProperty("DomainType_"),
                                                      anyProperty("DomainParams_", structOrEmpty),
                                                      textProperty("VisualType_"),
                                                      textProperty("BindingRule_"),
                                                      anyProperty("CachedBlockHandle_", numberOrEmpty),
                                                      anyProperty("CachedPortIdx_", numberOrEmpty),
                                                      flagProperty("ExcludeForSave_"),
                                                  });
}

}  // namespace reference_host
