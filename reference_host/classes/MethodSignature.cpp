#include "reference_host/classes/MethodSignature.hpp"

#include "reference_host/calls/BoundaryCall.hpp"
#include "reference_host/classes/ClassError.hpp"
#include "reference_host/classes/DescribeClassArguments.hpp"
#include "reference_host/support/Ledger.hpp"

#include <string>

namespace reference_host {

namespace {

LedgerCounter& signatures()
{
    static LedgerCounter& counter = Ledger::counter("signatures");
    return counter;
}

}  // namespace

MethodSignature::MethodSignature()
{
    signatures().open();
}

MethodSignature::~MethodSignature()
{
    setMeantToLive(false);
    signatures().close();
}

void MethodSignature::setMeantToLive(bool isMeant) const noexcept
{
    if (isMeant != m_isMeantToLive) {
        m_isMeantToLive = isMeant;
        signatures().declareMeantToLive(isMeant ? 1 : -1);
    }
}

void MethodSignature::addInput(const nvcos::COSType* type)
{
    BoundaryCall({"COSMethodSignature::addInput"}, type).run([&] { appendInput(type); });
}

void MethodSignature::addOutput(const nvcos::COSType* type)
{
    BoundaryCall({"COSMethodSignature::addOutput"}, type).run([&] { appendOutput(type); });
}

void MethodSignature::setNumberOfOptionalInputs(int count)
{
    BoundaryCall({"COSMethodSignature::setNumberOfOptionalInputs"}, count).run([&] {
        makeInputsOptional(count);
    });
}

void MethodSignature::appendInput(const nvcos::COSType* type)
{
    if (type == nullptr) {
        throwClassError("NullType",
                        "input " + std::to_string(m_inputs.size() + 1) + " of a signature has no type");
    }
    m_inputs.push_back(type);
}

void MethodSignature::appendOutput(const nvcos::COSType* type)
{
    if (type == nullptr) {
        throwClassError("NullType",
                        "output " + std::to_string(m_outputs.size() + 1) + " of a signature has no type");
    }
    m_outputs.push_back(type);
}

void MethodSignature::makeInputsOptional(int count)
{
    if (count < 0 || static_cast<std::size_t>(count) > m_inputs.size()) {
        throwClassError("BadOptionalInputs", std::to_string(count) + " optional inputs in a signature of " +
                                                 std::to_string(m_inputs.size()));
    }
    m_optionalInputs = static_cast<std::size_t>(count);
}

}  // namespace reference_host

nvcos::COSMethodSignature::COSMethodSignature() = default;
nvcos::COSMethodSignature::~COSMethodSignature() = default;

nvcos::COSMethodSignature* nvcos::COSMethodSignature::createMethodSignature()
{
    using namespace reference_host;
    return BoundaryCall(Operation("COSMethodSignature::createMethodSignature")).run([] {
        return static_cast<COSMethodSignature*>(new MethodSignature);
    });
}
