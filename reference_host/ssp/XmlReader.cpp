#include "reference_host/ssp/XmlReader.hpp"

#include "host/Exceptions.hpp"
#include "reference_host/model/DiagramErrors.hpp"
#include "reference_host/ssp/XmlEncoding.hpp"

#include <expat.h>
#include <exception>
#include <istream>
#include <memory>
#include <type_traits>

namespace reference_host {

namespace {

constexpr std::size_t pieceSize = std::size_t{1} << 18U;

struct ParserDeleter {
    void operator()(XML_Parser parser) const noexcept { XML_ParserFree(parser); }
};
using Parser = std::unique_ptr<std::remove_pointer_t<XML_Parser>, ParserDeleter>;

/// One reading. The parser is C and must not be unwound: what a callback throws is kept, stops the
/// parser and is thrown again when it has returned.
class XmlReading {
public:
    XmlReading(const std::string& file, const XmlLimits& limits, XmlHandler& handler)
        : m_file(file), m_limits(limits), m_handler(handler), m_parser(XML_ParserCreate("UTF-8"))
    {
        if (m_parser == nullptr) {
            zmsvThrowOutOfMemory();
        }
        XML_SetUserData(m_parser.get(), this);
        XML_SetElementHandler(m_parser.get(), &XmlReading::onBegin, &XmlReading::onEnd);
        XML_SetStartDoctypeDeclHandler(m_parser.get(), &XmlReading::onDocumentType);
    }

    void read(std::string_view document)
    {
        if (document.size() > m_limits.bytes) {
            refuse(1, diagramError("TooLarge", {std::uint64_t{m_limits.bytes}}));
        }
        std::string buffer;
        std::string_view rest = utf8(document, buffer);
        do {
            const std::string_view piece = rest.substr(0, pieceSize);
            rest.remove_prefix(piece.size());
            parse(piece, rest.empty());
        } while (!rest.empty());
    }

private:
    static void XMLCALL onBegin(void* self, const XML_Char* element, const XML_Char** attributes)
    {
        static_cast<XmlReading*>(self)->guarded([&](XmlReading& reading) {
            reading.enter();
            reading.m_handler.begin(element, XmlAttributes(attributes), reading.tag());
        });
    }

    static void XMLCALL onEnd(void* self, const XML_Char*)
    {
        static_cast<XmlReading*>(self)->guarded([](XmlReading& reading) {
            --reading.m_depth;
            reading.m_handler.end(reading.tag());
        });
    }

    static void XMLCALL onDocumentType(void* self, const XML_Char*, const XML_Char*, const XML_Char*, int)
    {
        static_cast<XmlReading*>(self)->guarded(
            [](XmlReading&) { throw diagramError("DocumentTypeRefused", {}); });
    }

    /// Also keeps out the callbacks that the parser still makes after it was stopped.
    template <class Work>
    void guarded(Work work) noexcept
    {
        if (m_failure) {
            return;
        }
        try {
            work(*this);
        } catch (...) {
            m_failure = std::current_exception();
            m_failureLine = line();
            XML_StopParser(m_parser.get(), XML_FALSE);
        }
    }

    void enter()
    {
        if (++m_depth > m_limits.depth) {
            throw diagramError("TooDeep", {std::uint64_t{m_limits.depth}});
        }
    }

    std::string_view utf8(std::string_view document, std::string& buffer) const
    {
        try {
            return asUtf8(document, buffer);
        } catch (const zmsvException& error) {
            refuse(1, error);
        }
    }

    void parse(std::string_view piece, bool isLast)
    {
        const XML_Status status = XML_Parse(m_parser.get(), piece.data(), static_cast<int>(piece.size()),
                                            isLast ? XML_TRUE : XML_FALSE);
        if (m_failure) {
            rethrow();
        }
        if (status != XML_STATUS_OK) {
            refuseMalformed();
        }
    }

    [[noreturn]] void rethrow() const
    {
        try {
            std::rethrow_exception(m_failure);
        } catch (const zmsvException& error) {
            refuse(m_failureLine, error);
        }
    }

    [[noreturn]] void refuseMalformed() const
    {
        const XML_Error error = XML_GetErrorCode(m_parser.get());
        if (error == XML_ERROR_NO_MEMORY) {
            zmsvThrowOutOfMemory();
        }
        const std::string reason = error == XML_ERROR_INVALID_TOKEN
                                       ? "a character that is not allowed here, or bytes that are not UTF-8"
                                       : XML_ErrorString(error);
        refuse(line(), diagramError("NotWellFormed", {reason}));
    }

    [[noreturn]] void refuse(std::uint64_t line, const zmsvException& reason) const
    {
        throw diagramError("InvalidDiagram", {m_file, line, std::string(reason.what())});
    }

    XmlTag tag() const noexcept
    {
        const auto begin = static_cast<std::size_t>(XML_GetCurrentByteIndex(m_parser.get()));
        return {line(), begin, begin + static_cast<std::size_t>(XML_GetCurrentByteCount(m_parser.get()))};
    }

    std::uint64_t line() const noexcept { return XML_GetCurrentLineNumber(m_parser.get()); }

    const std::string& m_file;
    const XmlLimits& m_limits;
    XmlHandler& m_handler;
    Parser m_parser;
    std::size_t m_depth = 0;
    std::exception_ptr m_failure;
    std::uint64_t m_failureLine = 0;
};

}  // namespace

const char* XmlAttributes::find(std::string_view name) const noexcept
{
    for (const char* const* pair = m_list; *pair != nullptr; pair += 2) {
        if (name == pair[0]) {
            return pair[1];
        }
    }
    return nullptr;
}

void readXml(std::istream& in, const std::string& file, const XmlLimits& limits, XmlHandler& handler)
{
    std::string document;
    while (in && document.size() <= limits.bytes) {
        const std::size_t size = document.size();
        document.resize(size + pieceSize);
        in.read(document.data() + size, pieceSize);
        document.resize(size + static_cast<std::size_t>(in.gcount()));
    }
    if (in.bad()) {
        throw diagramError("UnreadableFile", {file, std::string("Reading failed.")});
    }
    readXml(document, file, limits, handler);
}

void readXml(std::string_view document, const std::string& file, const XmlLimits& limits, XmlHandler& handler)
{
    XmlReading(file, limits, handler).read(document);
}

}  // namespace reference_host
