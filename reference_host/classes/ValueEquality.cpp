#include "reference_host/classes/ValueEquality.hpp"

#include "reference_host/classes/ClassErrors.hpp"
#include "reference_host/classes/ClassReflection.hpp"
#include "reference_host/classes/ObjectAccess.hpp"
#include "reference_host/values/NumericTypes.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace reference_host {

namespace {

bool isNumber(const nvArray* value)
{
    return isNumeric(value) || value->valueClass == ValueClass::Logical;
}

/// Null counts as this.
bool isEmptyValue(const nvArray* value)
{
    return value == nullptr ||
           (isNumber(value) && dimensions(value).list() == std::vector<std::size_t>{0, 0});
}

/// The numbers of a value one by one, complex ones as pairs. A long double represents every number of every
/// class exactly.
class NumberReader {
public:
    explicit NumberReader(const nvArray* value)
        : m_class(value->valueClass),
          m_isComplex(isComplex(value)),
          m_data(static_cast<const std::byte*>(value->valueClass == ValueClass::Logical ? logicals(value)
                                                                                        : numericData(value)))
    {
    }
    long double real(std::size_t index) const { return at(m_isComplex ? 2 * index : index); }
    long double imaginary(std::size_t index) const { return m_isComplex ? at(2 * index + 1) : 0.0L; }

private:
    long double at(std::size_t place) const
    {
        return withNumericType(m_class, [&](auto type) {
            return static_cast<long double>(readNumber<typename decltype(type)::type>(m_data, place));
        });
    }

    ValueClass m_class;
    bool m_isComplex;
    const std::byte* m_data;
};

bool areNumbersEqual(const nvArray* left, const nvArray* right)
{
    const NumberReader a(left);
    const NumberReader b(right);
    for (std::size_t i = 0; i < elementCount(left); ++i) {
        if (a.real(i) != b.real(i) || a.imaginary(i) != b.imaginary(i)) {
            return false;
        }
    }
    return true;
}

bool haveSameFields(const nvArray* left, const nvArray* right)
{
    const std::vector<std::string>& names = fieldNames(left);
    return std::ranges::is_permutation(names, fieldNames(right));
}

/// One comparison from top to bottom.
class Comparison {
public:
    bool values(const nvArray* left, const nvArray* right)
    {
        if (left == nullptr || right == nullptr) {
            return isEmptyValue(left) && isEmptyValue(right);
        }
        if (dimensions(left).list() != dimensions(right).list()) {
            return false;
        }
        if (isNumber(left) && isNumber(right)) {
            return areNumbersEqual(left, right);
        }
        return left->valueClass == right->valueClass && className(left) == className(right) &&
               contents(left, right);
    }

private:
    bool contents(const nvArray* left, const nvArray* right)
    {
        switch (left->valueClass) {
            case ValueClass::Char:
                return text(left) == text(right);
            case ValueClass::Cell:
                return allElements(left,
                                   [&](std::size_t i) { return values(cell(left, i), cell(right, i)); });
            case ValueClass::ClassObject:
                return allElements(left, [&](std::size_t i) { return instances(left, right, i); });
            default:
                return haveSameFields(left, right) &&
                       allElements(left, [&](std::size_t i) { return fields(left, right, i); });
        }
    }

    template <class Test>
    static bool allElements(const nvArray* value, Test test)
    {
        for (std::size_t i = 0; i < elementCount(value); ++i) {
            if (!test(i)) {
                return false;
            }
        }
        return true;
    }

    bool fields(const nvArray* left, const nvArray* right, std::size_t index)
    {
        return std::ranges::all_of(fieldNames(left), [&](const std::string& name) {
            return values(field(left, index, name.c_str()), field(right, index, name.c_str()));
        });
    }

    bool instances(const nvArray* left, const nvArray* right, std::size_t index)
    {
        const Pair pair{objects(left)[index].get(), objects(right)[index].get()};
        if (pair.first == pair.second || std::ranges::find(m_underWay, pair) != m_underWay.end()) {
            return true;
        }
        m_underWay.push_back(pair);
        const bool equal = properties(left, right, index);
        m_underWay.pop_back();
        return equal;
    }

    bool properties(const nvArray* left, const nvArray* right, std::size_t index)
    {
        bool any = false;
        for (const PropertyDescription& property : describeClass(className(left)).properties) {
            if (property.access != nvcos::COSPropAccess::ReadWrite) {
                continue;
            }
            any = true;
            const OwnedValue a = ObjectAccess::getProperty(left, property.name, index);
            const OwnedValue b = ObjectAccess::getProperty(right, property.name, index);
            if (!values(a.get(), b.get())) {
                return false;
            }
        }
        return any;
    }

    using Pair = std::pair<const nvcos::COSInterface*, const nvcos::COSInterface*>;
    std::vector<Pair> m_underWay;
};

}  // namespace

bool areEqual(const nvArray* left, const nvArray* right)
{
    return Comparison().values(left, right);
}

void isEqual(HostFunctionCall& call)
{
    if (call.inputs().size() != 2) {
        throwClassError("WrongArgument:function",
                        {call.functionName(), "two values, not " + std::to_string(call.inputs().size())});
    }
    call.setOutput(0, makeLogical(areEqual(call.input(0), call.input(1))));
}

}  // namespace reference_host
