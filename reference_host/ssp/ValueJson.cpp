#include "reference_host/ssp/ValueJson.hpp"

#include "reference_host/ssp/FileErrors.hpp"
#include "reference_host/ssp/JsonWriter.hpp"
#include "reference_host/ssp/NumberForm.hpp"
#include "reference_host/values/NumericTypes.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueReading.hpp"

#include <cmath>
#include <type_traits>

namespace reference_host {

namespace {

class ValueWriter {
public:
    explicit ValueWriter(const JsonLimits& limits) : m_json(limits) {}

    void write(const nvArray* value)
    {
        if (value == nullptr) {
            m_json.null();
            return;
        }
        requireAlive(value);
        switch (value->valueClass) {
            case ValueClass::Char:
                return writeCharacters(value);
            case ValueClass::Cell:
                return writeCells(value);
            case ValueClass::Struct:
            case ValueClass::StructObject:
                return writeStruct(value);
            case ValueClass::ClassObject:
                m_json.null();  // for the place, which is that of the value written last
                throw fileError("ObjectInValue", {m_json.place().text(), className(value)});
            default:
                return writeNumbers(value);
        }
    }

    std::string take() { return m_json.take(); }

private:
    void beginObject(const nvArray* value, std::string_view nameOfClass)
    {
        m_json.beginObject();
        m_json.member("class");
        m_json.string(nameOfClass);
        if (elementCount(value) != 1) {
            m_json.member("size");
            m_json.beginArray();
            for (const std::size_t size : dimensions(value).list()) {
                m_json.unsignedInteger(size);
            }
            m_json.endArray();
        }
    }

    void writeNumbers(const nvArray* value)
    {
        const bool isScalar = elementCount(value) == 1 && !isComplex(value);
        if (isScalar && value->valueClass == ValueClass::Logical) {
            return m_json.boolean(*logicals(value));
        }
        if (isScalar && value->valueClass == ValueClass::Double && std::isfinite(scalar(value))) {
            return m_json.real(scalar(value));
        }
        beginObject(value, className(value));
        m_json.member("data");
        writeElements(value, 0);
        if (isComplex(value)) {
            m_json.member("imaginary");
            writeElements(value, 1);
        }
        m_json.endObject();
    }

    /// The real parts (0) or the imaginary ones (1).
    void writeElements(const nvArray* value, std::size_t part)
    {
        const std::size_t step = isComplex(value) ? 2 : 1;
        const void* data = value->valueClass == ValueClass::Logical ? logicals(value) : numericData(value);
        m_json.beginArray();
        withNumericType(value->valueClass, [&](auto type) {
            for (std::size_t i = 0; i < elementCount(value); ++i) {
                const auto* bytes = static_cast<const std::byte*>(data);
                writeNumber(readNumber<typename decltype(type)::type>(bytes, i * step + part));
            }
        });
        m_json.endArray();
    }

    template <class Number>
    void writeNumber(Number number)
    {
        if constexpr (std::is_same_v<Number, bool>) {
            m_json.boolean(number);
        } else if constexpr (std::is_floating_point_v<Number>) {
            if (std::isfinite(number)) {
                m_json.real(static_cast<double>(number));
            } else {
                m_json.string(notFiniteText(number));
            }
        } else if constexpr (std::is_signed_v<Number>) {
            m_json.integer(number);
        } else {
            m_json.unsignedInteger(number);
        }
    }

    void writeCharacters(const nvArray* value)
    {
        const std::u16string characters = text(value);
        const std::vector<std::size_t> sizes = dimensions(value).list();
        const bool isText =
            sizes.size() == 2 && (characters.empty() ? sizes[0] + sizes[1] == 0 : sizes[0] == 1);
        if (isText && isWellFormed(characters)) {
            return m_json.text(characters);
        }
        beginObject(value, "char");
        m_json.member("text");
        m_json.text(characters);
        m_json.endObject();
    }

    void writeCells(const nvArray* value)
    {
        beginObject(value, "cell");
        m_json.member("values");
        m_json.beginArray();
        for (std::size_t i = 0; i < elementCount(value); ++i) {
            write(cell(value, i));
        }
        m_json.endArray();
        m_json.endObject();
    }

    void writeStruct(const nvArray* value)
    {
        const bool isObject = value->valueClass == ValueClass::StructObject;
        beginObject(value, isObject ? "object" : "struct");
        if (isObject) {
            m_json.member("name");
            m_json.byteText(className(value));
        }
        m_json.member("fields");
        m_json.beginArray();
        for (const std::string& name : fieldNames(value)) {
            m_json.byteText(name);
        }
        m_json.endArray();
        m_json.member("values");
        m_json.beginArray();
        for (std::size_t number = 0; number < fieldNames(value).size(); ++number) {
            writeField(value, number);
        }
        m_json.endArray();
        m_json.endObject();
    }

    void writeField(const nvArray* value, std::size_t number)
    {
        m_json.beginArray();
        for (std::size_t i = 0; i < elementCount(value); ++i) {
            write(numberedField(value, i, number));
        }
        m_json.endArray();
    }

    JsonWriter m_json;
};

}  // namespace

std::string valueToJson(const nvArray* value, const JsonLimits& limits)
{
    ValueWriter writer(limits);
    writer.write(value);
    return writer.take();
}

}  // namespace reference_host
