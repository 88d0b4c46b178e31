#ifndef ZM_REFERENCE_HOST_CLASSES_METHOD_CALL_HPP
#define ZM_REFERENCE_HOST_CLASSES_METHOD_CALL_HPP

#include "reference_host/classes/ClassObjects.hpp"
#include "reference_host/classes/RegisteredClass.hpp"

#include <vector>

namespace reference_host {

/// One call of one method: arguments checked and converted, the method run, its outputs taken. Made for
/// the call and gone with it.
class MethodCall {
public:
    using Arguments = ClassObjects::Arguments;
    using Results = ClassObjects::Results;

    /// REQUIRES: the class outlives the call.
    MethodCall(const RegisteredClass& cosClass, const RegisteredClass::Method& method);

    /// `object` comes before the arguments when the method takes its object, and is null otherwise.
    Results run(const nvArray* object, const Arguments& arguments, int outputCount);

    /// Runs the method as the constructor of an object that has its native data.
    void runConstructor(nvArray* object, const Arguments& arguments);

private:
    class Outputs;

    std::size_t resultCount(int outputCount) const;
    void convertInputs(const nvArray* object, const Arguments& arguments);
    void checkArgumentCount(std::size_t count, std::size_t objects) const;
    void invoke(int outputCount, Outputs& outputs) const;
    [[noreturn]] void throwArgumentError(const char* key, std::size_t position, const std::string& why) const;

    const RegisteredClass& m_class;
    const RegisteredClass::Method& m_method;
    const MethodSignature& m_signature;
    std::string m_name;  ///< "Zelmar.HMI.X.get", for errors and the journal
    std::vector<nvcos::COSValue> m_inputs;
    std::vector<Loan> m_loans;
};

}  // namespace reference_host

#endif
