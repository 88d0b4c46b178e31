#ifndef ZM_HMI_FOUNDATION_BINDINGS_TYPED_METHOD_HPP
#define ZM_HMI_FOUNDATION_BINDINGS_TYPED_METHOD_HPP

#include "hmi_foundation/bindings/CollectionBinding.hpp"
#include "hmi_foundation/bindings/MethodTable.hpp"

#include <optional>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

/// Method descriptors whose bodies are ordinary functions. A descriptor class names its row of the method
/// table and has a static function `body`; the parameter types of the body say how each input is unpacked,
/// and its result how the output is packed. That both agree with the row is checked when it is compiled.
namespace zm_hmi_foundation {

/// As first parameter of a constructor's body: the collection of the new object, which is the output already.
template <class Collection>
struct NewObject {
    Collection& collection() const { return collectionOf<Collection>(output); }
    const nvcos::COSValue& output;
};

/// The result of a method that leaves the output count as the host passed it in.
struct UncountedResult {
    OwnedArray value;
};

namespace unpacking {

/// How a parameter is made from the inputs: from the one at `place`, which counts up.
template <class Parameter>
struct Unpack {
    static constexpr std::size_t inputs = 1;
    static Parameter from(const nvcos::COSValue* inputList, std::size_t place, int /*inputCount*/,
                          const nvcos::COSValue* /*outputs*/)
    {
        using Value = std::remove_cvref_t<Parameter>;
        if constexpr (std::is_same_v<Value, const nvArray*>) {
            return std::get<nvArray*>(inputList[place]);
        } else if constexpr (requires { Value::getFromNVArray(nullptr); }) {
            return collectionOf<Value>(inputList[place]);
        } else {
            return std::get<Value>(inputList[place]);
        }
    }
};

/// An input that callers may leave out is read only when it was passed.
template <class Value>
struct Unpack<std::optional<Value>> {
    static constexpr std::size_t inputs = 1;
    static std::optional<Value> from(const nvcos::COSValue* inputList, std::size_t place, int inputCount,
                                     const nvcos::COSValue* /*outputs*/)
    {
        return static_cast<std::size_t>(inputCount) > place ? std::optional(std::get<Value>(inputList[place]))
                                                            : std::nullopt;
    }
};

template <class Collection>
struct Unpack<NewObject<Collection>> {
    static constexpr std::size_t inputs = 0;
    static NewObject<Collection> from(const nvcos::COSValue* /*inputList*/, std::size_t /*place*/,
                                      int /*inputCount*/, const nvcos::COSValue* outputs)
    {
        return {outputs[0]};
    }
};

/// Whether inputs of that type name arrive as such a parameter.
template <class Parameter>
constexpr bool takes(std::string_view type)
{
    using Value = std::remove_cvref_t<Parameter>;
    if constexpr (std::is_same_v<Value, std::optional<std::u16string>>) {
        return takes<std::u16string>(type);
    } else if constexpr (std::is_same_v<Value, std::optional<bool>>) {
        return takes<bool>(type);
    } else if constexpr (std::is_same_v<Value, std::u16string>) {
        return type == type_name::unicodeString;
    } else if constexpr (std::is_same_v<Value, std::string>) {
        return type == type_name::asciiString;
    } else if constexpr (std::is_same_v<Value, std::uint32_t>) {
        return type == type_name::uint32Scalar;
    } else if constexpr (std::is_same_v<Value, std::int32_t>) {
        return type == type_name::int32Scalar;
    } else if constexpr (std::is_same_v<Value, double>) {
        return type == type_name::doubleScalar;
    } else if constexpr (std::is_same_v<Value, bool>) {
        return type == type_name::logicalScalar;
    } else {
        return type.starts_with("Zelmar.HMI.");
    }
}

template <class Parameter>
inline constexpr bool isOptional = false;
template <class Value>
inline constexpr bool isOptional<std::optional<Value>> = true;

template <class Result, class... Parameters, std::size_t... Index>
consteval bool agrees(const MethodRow& row, std::index_sequence<Index...> /*inputs*/)
{
    constexpr std::size_t first = sizeof...(Parameters) - sizeof...(Index);  // after the new object
    using All = std::tuple<Parameters...>;
    return (row.inputCount() == sizeof...(Index)) &&
           (takes<std::tuple_element_t<first + Index, All>>(row.inputs[Index].type) && ... && true) &&
           (static_cast<int>(isOptional<Parameters>) + ... + 0) == row.optionalInputs &&
           (std::is_same_v<Result, bool>
                ? row.outputType == std::string_view(type_name::logicalScalar)
                : (row.outputType != nullptr) == (!std::is_void_v<Result> || first > 0));
}

}  // namespace unpacking

/// Base of the descriptors of one method each. `Method` has `row` and `body`.
template <class Method>
class TypedMethod : public HMICOSMethodInfo {
public:
    TypedMethod() : HMICOSMethodInfo(describe(Method::row)) {}

    /// Short memory leaves as the host's exception, as everything that the body throws.
    void invoke(const nvcos::COSClient* /*client*/, int& outputCount, nvcos::COSValue* outputs,
                int inputCount, const nvcos::COSValue* inputs) const override
    {
        withHostMemoryErrors([&] { call(&Method::body, outputCount, outputs, inputCount, inputs); });
    }

private:
    template <class Result, class... Parameters>
    static void call(Result (*body)(Parameters...), int& outputCount, nvcos::COSValue* outputs,
                     int inputCount, const nvcos::COSValue* inputs)
    {
        constexpr std::size_t used = (unpacking::Unpack<Parameters>::inputs + ... + 0);
        static_assert(unpacking::agrees<Result, Parameters...>(Method::row, std::make_index_sequence<used>()),
                      "the body's parameters and result are not those of the method's row");
        std::size_t place = 0;
        // Braces: the parameters are unpacked from left to right.
        std::tuple<Parameters...> parameters{unpacking::Unpack<Parameters>::from(
            inputs, std::exchange(place, place + unpacking::Unpack<Parameters>::inputs), inputCount,
            outputs)...};
        const auto run = [&] { return std::apply(body, std::move(parameters)); };
        if constexpr (std::is_void_v<Result>) {
            run();
        } else if constexpr (std::is_same_v<Result, UncountedResult>) {
            outputs[0] = run().value.release();
            return;
        } else if constexpr (std::is_same_v<Result, OwnedArray>) {
            outputs[0] = run().release();
        } else {
            outputs[0] = run();
        }
        if (Method::row.outputType != nullptr) {
            outputCount = 1;
        }
    }
};

/// Registers the methods of a class, which are those of its table in its order.
template <const auto& table, class... Methods>
void addMethods(nvcos::COSClass* cosClass)
{
    static_assert([] {
        std::size_t index = 0;
        return sizeof...(Methods) == table.size() && ((&Methods::row == &table[index++]) && ...);
    }());
    (addMethod<Methods>(cosClass), ...);
}

}  // namespace zm_hmi_foundation

#endif
