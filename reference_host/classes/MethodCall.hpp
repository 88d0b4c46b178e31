#pragma once

#include "reference_host/classes/RegisteredClass.hpp"
#include "reference_host/values/Value.hpp"

#include <string>
#include <vector>

namespace reference_host {

/// One call of one method: checks and converts the arguments, runs the method and takes its outputs. Used
/// for one call only.
class MethodCall {
public:
    using Arguments = std::vector<const nvArray*>;
    using Results = std::vector<OwnedValue>;

    static constexpr int AllOutputs = -1;

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
    std::string context() const;

    const RegisteredClass& m_class;
    const RegisteredClass::Method& m_method;
    const MethodSignature& m_signature;
    std::string m_name;  ///< "Zelmar.HMI.X.get", for errors and the journal
    std::vector<nvcos::COSValue> m_inputs;
    std::vector<Loan> m_loans;
};

}  // namespace reference_host
