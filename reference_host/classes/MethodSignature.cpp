#include "reference_host/classes/MethodSignature.hpp"

#include "reference_host/calls/BoundaryCall.hpp"
#include "reference_host/classes/ClassErrors.hpp"
#include "reference_host/classes/Types.hpp"
#include "reference_host/support/Ledger.hpp"

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
        throwClassError("NullType:input", {m_inputs.size() + 1});
    }
    m_inputs.push_back(type);
}

void MethodSignature::appendOutput(const nvcos::COSType* type)
{
    if (type == nullptr) {
        throwClassError("NullType:output", {m_outputs.size() + 1});
    }
    m_outputs.push_back(type);
}

void MethodSignature::makeInputsOptional(int count)
{
    if (count < 0 || static_cast<std::size_t>(count) > m_inputs.size()) {
        throwClassError("BadOptionalInputs", {count, m_inputs.size()});
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

std::string nvcos::describeArgument(const COSMethodSignature* signature)
{
    return signature != nullptr ? "signature" : "null";
}
