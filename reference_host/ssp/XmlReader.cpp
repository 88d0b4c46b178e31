#include "reference_host/ssp/XmlReader.hpp"

#include "host/Exceptions.hpp"
#include "reference_host/model/DiagramErrors.hpp"

#include <libxml/parser.h>
#include <libxml/parserInternals.h>
#include <exception>
#include <limits>
#include <memory>

namespace reference_host {

namespace {

constexpr std::size_t pointersEach = 5;
constexpr std::ptrdiff_t longestAttribute = 10'000'000;

std::string_view viewOf(const xmlChar* text) noexcept
{
    return text == nullptr ? std::string_view() : reinterpret_cast<const char*>(text);
}

/// The first line of the parser's message, without what ends the sentence.
std::string reasonOf(const xmlError& error)
{
    const std::string_view message = error.message == nullptr ? "" : error.message;
    const std::string_view line = message.substr(0, message.find('\n'));
    return std::string(line.substr(0, line.find_last_not_of(" .!") + 1));
}

struct ParserDeleter {
    void operator()(xmlParserCtxt* parser) const noexcept { xmlFreeParserCtxt(parser); }
};

/// Errors of character conversion do not go to the parser but to a function of the process, by default to
/// stderr.
class SilentErrors {
public:
    SilentErrors() noexcept
    {
        xmlSetStructuredErrorFunc(nullptr, [](void*, xmlErrorPtr) {});
    }
    ~SilentErrors() { xmlSetStructuredErrorFunc(m_context, m_former); }
    SilentErrors(const SilentErrors&) = delete;
    SilentErrors& operator=(const SilentErrors&) = delete;

private:
    xmlStructuredErrorFunc m_former = xmlStructuredError;
    void* m_context = xmlStructuredErrorContext;
};

/// One reading. The parser is C and must not be unwound: an exception from a callback is kept, stops the
/// parser, and is rethrown after the parser has returned.
class XmlReading {
public:
    XmlReading(const std::string& file, const XmlLimits& limits, XmlHandler& handler)
        : m_file(file), m_limits(limits), m_handler(handler)
    {
    }

    void read(std::string_view document)
    {
        if (document.size() > m_limits.bytes || document.size() > std::numeric_limits<int>::max()) {
            refuse(1, diagramError("TooLarge", {std::uint64_t{m_limits.bytes}}));
        }
        if (document.empty()) {
            refuse(1, diagramError("NotWellFormed", {std::string("Document is empty")}));
        }
        m_parser.reset(xmlCreateMemoryParserCtxt(document.data(), static_cast<int>(document.size())));
        if (m_parser == nullptr) {
            zmsvThrowOutOfMemory();
        }
        *m_parser->sax = callbacks();
        m_parser->userData = this;
        // Huge: the parser's own limits would refuse some documents of more than 10 MB for no visible reason.
        xmlCtxtUseOptions(m_parser.get(), XML_PARSE_NONET | XML_PARSE_NOENT | XML_PARSE_HUGE);
        const SilentErrors silence;
        xmlParseDocument(m_parser.get());
        if (m_failure) {
            rethrow();
        }
        if (m_parser->wellFormed == 0) {
            refuse(line(), diagramError("NotWellFormed", {std::string("unknown error")}));
        }
    }

private:
    static xmlSAXHandler callbacks() noexcept
    {
        xmlSAXHandler sax{};
        sax.initialized = XML_SAX2_MAGIC;
        sax.internalSubset = [](void* self, const xmlChar*, const xmlChar*, const xmlChar*) {
            of(self).guarded([] { throw diagramError("DocumentTypeRefused", {}); });
        };
        sax.startElementNs = &XmlReading::onBegin;
        sax.endElementNs = [](void* self, const xmlChar*, const xmlChar*, const xmlChar*) {
            of(self).onEnd();
        };
        sax.characters = [](void* self, const xmlChar*, int) { of(self).onText(); };
        sax.ignorableWhitespace = sax.characters;
        sax.cdataBlock = [](void* self, const xmlChar*, int) { of(self).onNode(); };
        sax.comment = [](void* self, const xmlChar*) { of(self).onNode(); };
        sax.processingInstruction = [](void* self, const xmlChar*, const xmlChar*) { of(self).onNode(); };
        sax.serror = [](void* self, xmlErrorPtr error) { of(self).onError(*error); };
        return sax;
    }

    static XmlReading& of(void* self) noexcept { return *static_cast<XmlReading*>(self); }

    static void onBegin(void* self, const xmlChar* name, const xmlChar* prefix, const xmlChar* uri,
                        int declarations, const xmlChar**, int attributes, int, const xmlChar** pointers)
    {
        XmlReading& reading = of(self);
        reading.guarded([&] {
            reading.countNode();
            reading.m_attributes += static_cast<std::size_t>(declarations + attributes);
            if (++reading.m_depth > reading.m_limits.depth) {
                throw diagramError("TooDeep", {std::uint64_t{reading.m_limits.depth}});
            }
            if (reading.m_attributes > reading.m_limits.attributes) {
                throw diagramError("TooMany",
                                   {std::string("attributes"), std::uint64_t{reading.m_limits.attributes}});
            }
            for (int i = 0; i < attributes; ++i) {
                const auto* const value = pointers + static_cast<std::size_t>(i) * pointersEach;
                if (value[4] - value[3] > longestAttribute) {
                    throw diagramError(
                        "TooMany", {std::string("bytes in one attribute"), std::uint64_t{longestAttribute}});
                }
            }
            reading.m_handler.begin({viewOf(name),
                                     viewOf(prefix),
                                     viewOf(uri),
                                     reading.line(),
                                     {pointers, static_cast<std::size_t>(attributes) * pointersEach}});
        });
    }

    void onEnd()
    {
        guarded([this] {
            m_isInText = false;
            --m_depth;
            m_handler.end();
        });
    }

    /// The parser gives a long text in pieces.
    void onText()
    {
        if (!m_isInText) {
            onNode();
        }
        m_isInText = true;
    }

    void onNode()
    {
        guarded([this] { countNode(); });
    }

    void countNode()
    {
        m_isInText = false;
        if (++m_nodes > m_limits.nodes) {
            throw diagramError("TooMany", {std::string("XML nodes"), std::uint64_t{m_limits.nodes}});
        }
    }

    /// Namespace errors are of a lower level: published diagrams use prefixes that they do not declare.
    void onError(const xmlError& error)
    {
        if (error.level != XML_ERR_FATAL || m_failure) {
            return;
        }
        guarded([&error] {
            if (error.code == XML_ERR_NO_MEMORY) {
                zmsvThrowOutOfMemory();
            }
            throw diagramError("NotWellFormed", {reasonOf(error)});
        });
        m_failureLine = error.line > 0 ? static_cast<std::uint64_t>(error.line) : m_failureLine;
    }

    /// The parser may still call after it was stopped.
    template <class Work>
    void guarded(Work work) noexcept
    {
        if (m_failure) {
            return;
        }
        try {
            work();
        } catch (...) {
            m_failure = std::current_exception();
            m_failureLine = line();
            xmlStopParser(m_parser.get());
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

    [[noreturn]] void refuse(std::uint64_t line, const zmsvException& reason) const
    {
        throw diagramError("InvalidDiagram", {m_file, line, std::string(reason.what())});
    }

    std::uint64_t line() const noexcept
    {
        return m_parser->input == nullptr ? 1 : static_cast<std::uint64_t>(m_parser->input->line);
    }

    const std::string& m_file;
    const XmlLimits& m_limits;
    XmlHandler& m_handler;
    std::unique_ptr<xmlParserCtxt, ParserDeleter> m_parser;
    std::size_t m_depth = 0;
    std::size_t m_nodes = 0;
    std::size_t m_attributes = 0;
    bool m_isInText = false;
    std::exception_ptr m_failure;
    std::uint64_t m_failureLine = 0;
};

}  // namespace

std::optional<std::string_view> XmlStartTag::attribute(std::string_view attributeName) const noexcept
{
    for (std::size_t i = 0; i < attributes.size(); i += pointersEach) {
        if (attributes[i + 1] == nullptr && viewOf(attributes[i]) == attributeName) {
            const auto* value = reinterpret_cast<const char*>(attributes[i + 3]);
            const auto* end = reinterpret_cast<const char*>(attributes[i + 4]);
            return std::string_view(value, static_cast<std::size_t>(end - value));
        }
    }
    return std::nullopt;
}

void readXml(std::string_view document, const std::string& file, const XmlLimits& limits, XmlHandler& handler)
{
    XmlReading(file, limits, handler).read(document);
}

}  // namespace reference_host
