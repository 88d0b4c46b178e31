#include "contract/Check.hpp"
#include "contract/Values.hpp"
#include "host/Calls.hpp"

#include <cstdlib>
#include <new>
#include <stdexcept>
#include <string>

// Diagnostics and exceptions: host/Calls.hpp, host/Exceptions.hpp.

using namespace contract;

namespace {

zmsvException thrownBy(zmsvDiagnostic* diagnostic, const char* context = nullptr)
{
    try {
        zmsvThrowIExceptionFromDiagnostic(diagnostic, context);
    } catch (const zmsvException& exception) {
        return exception;
    }
    fail("zmsvThrowIExceptionFromDiagnostic returned");
}

/// The diagnostic of whatever the body throws.
template <class Body>
zmsvDiagnostic* caughtFrom(Body body)
{
    try {
        body();
    } catch (...) {
        return zmsvCreateDiagnosticFromCatchClause();
    }
    return nullptr;
}

zmsvMessageId makeId()
{
    return {"a catalog with a long name",
            "Key",
            {std::uint64_t{3}, std::int64_t{-4}, 2.5, std::string("an argument of some length")}};
}

void expectWhole(const zmsvMessageId& id)
{
    expectEqual(id.catalog(), std::string("a catalog with a long name"));
    expectEqual(id.key(), std::string("Key"));
    expectEqual(id.arguments().size(), std::size_t{4});
    expectEqual(std::get<std::uint64_t>(id.arguments()[0]), std::uint64_t{3});
    expectEqual(std::get<std::int64_t>(id.arguments()[1]), std::int64_t{-4});
    expectEqual(std::get<double>(id.arguments()[2]), 2.5);
    expectEqual(std::get<std::string>(id.arguments()[3]), std::string("an argument of some length"));
}

std::string textOf(const std::exception& exception)
{
    return exception.what();
}

/// An object in memory that held zeros, so that a constructor that does nothing leaves none.
template <class Object>
class InZeros {
public:
    template <class... Arguments>
    explicit InZeros(const Arguments&... arguments)
        : m_object(new(std::calloc(1, sizeof(Object))) Object(arguments...))
    {
    }
    InZeros(const InZeros&) = delete;
    InZeros& operator=(const InZeros&) = delete;
    ~InZeros()
    {
        m_object->~Object();
        std::free(m_object);
    }

    /// Through a pointer that the compiler knows nothing about, so that what() is a virtual call.
    Object& get() const { return *m_object; }

private:
    Object* volatile m_object;
};

bool contains(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

}  // namespace

ZM_CHECK(diagnosticKeepsItsId, "zmsvCreateDiagnostic zmsvThrowIExceptionFromDiagnostic",
         "A thrown diagnostic has the id that it was made of.")
{
    expectWhole(thrownBy(zmsvCreateDiagnostic(makeId(), "the text")).id());
}

ZM_CHECK(diagnosticKeepsItsText, "zmsvCreateDiagnostic zmsvThrowIExceptionFromDiagnostic",
         "A thrown diagnostic has the text that it was made of.")
{
    expectEqual(textOf(thrownBy(zmsvCreateDiagnostic(makeId(), "the text"))), std::string("the text"));
}

ZM_CHECK(diagnosticWithoutATextHasTheCatalogs, "zmsvCreateDiagnostic",
         "A diagnostic with an empty text has the text of the catalog, with its arguments.")
{
    const zmsvMessageId id("dvx_hmi_foundation:errors", "InvalidElementIndex", {std::uint64_t{3}});
    const std::string text = textOf(thrownBy(zmsvCreateDiagnostic(id, "")));
    expectTrue(contains(text, "3"), "the count is in the text: " + text);
}

ZM_CHECK(catalogHasTheTypeError, "zmsvCreateDiagnostic",
         "The catalog has a text for a wrong observers parameter.")
{
    const zmsvMessageId id("dvx_hmi_foundation:errors", "SignalObserversSetParamInvalidType");
    expectTrue(!textOf(thrownBy(zmsvCreateDiagnostic(id, ""))).empty(), "there is a text");
}

ZM_CHECK(thrownDiagnosticNamesItsContext, "zmsvThrowIExceptionFromDiagnostic",
         "A diagnostic that is thrown with a context has it in its text.")
{
    const std::string text = textOf(thrownBy(zmsvCreateDiagnostic(makeId(), "the text"), "loading"));
    expectTrue(contains(text, "loading") && contains(text, "the text"), text);
}

ZM_CHECK(caughtHostExceptionIsKept, "zmsvCreateDiagnosticFromCatchClause",
         "The diagnostic of a host exception has its id and text.")
{
    const zmsvException thrown = thrownBy(caughtFrom([] { throw zmsvException(makeId(), "the text"); }));
    expectWhole(thrown.id());
    expectEqual(textOf(thrown), std::string("the text"));
}

ZM_CHECK(caughtStandardExceptionHasItsText, "zmsvCreateDiagnosticFromCatchClause",
         "The diagnostic of a standard exception has its text.")
{
    const zmsvException thrown = thrownBy(caughtFrom([] { throw std::runtime_error("of the library"); }));
    expectTrue(contains(textOf(thrown), "of the library"), textOf(thrown));
}

ZM_CHECK(caughtShortMemoryIsADiagnostic, "zmsvCreateDiagnosticFromCatchClause",
         "Short memory becomes a diagnostic with a text.")
{
    expectTrue(!textOf(thrownBy(caughtFrom([] { throw std::bad_alloc(); }))).empty(), "std::bad_alloc");
    expectTrue(!textOf(thrownBy(caughtFrom([] { zmsvThrowOutOfMemory(); }))).empty(), "the host's own");
}

ZM_CHECK(caughtUnknownTypeIsADiagnostic, "zmsvCreateDiagnosticFromCatchClause",
         "An exception of an unknown type becomes a diagnostic with a text.")
{
    expectTrue(!textOf(thrownBy(caughtFrom([] { throw 3; }))).empty(), "an int");
}

ZM_CHECK(noDiagnosticOutsideACatchClause, "zmsvCreateDiagnosticFromCatchClause",
         "Outside a catch clause there is no exception to make a diagnostic of.")
{
    expectHostError("zmsvCreateDiagnosticFromCatchClause", [] { zmsvCreateDiagnosticFromCatchClause(); });
}

ZM_CHECK(warningIsQuietTowardsTheCaller, "zmsvReportAsWarning", "A diagnostic can be shown as a warning.")
{
    zmsvReportAsWarning(zmsvCreateDiagnostic(makeId(), "shown by a check"));
}

ZM_CHECK(discardedDiagnosticIsQuiet, "zmsvDiscardDiagnostic", "A diagnostic can be discarded.")
{
    zmsvDiscardDiagnostic(zmsvCreateDiagnostic(makeId(), "not shown"));
}

ZM_CHECK(messageIdKeepsItsParts, "zmsvMessageId::zmsvMessageId",
         "A message id has catalog, key and arguments.")
{
    expectWhole(makeId());
    expectTrue(zmsvMessageId("c", "K").arguments().empty(), "no arguments unless given");
}

ZM_CHECK(messageIdIsCopied, "zmsvMessageId::copy zmsvMessageId::~zmsvMessageId",
         "A message id is copied whole.")
{
    const zmsvMessageId original = makeId();
    {
        const zmsvMessageId copy(original);
        expectWhole(copy);
    }
    expectWhole(original);
}

ZM_CHECK(messageIdIsMoved, "zmsvMessageId::move", "A message id is moved whole.")
{
    zmsvMessageId original = makeId();
    const zmsvMessageId moved(std::move(original));
    expectWhole(moved);
}

ZM_CHECK(messageIdIsAssigned, "zmsvMessageId::copy-assignment", "A message id is assigned whole.")
{
    const zmsvMessageId original = makeId();
    zmsvMessageId copy("other", "Other", {1.0});
    copy = original;
    expectWhole(copy);
    expectWhole(original);
}

ZM_CHECK(messageIdIsMoveAssigned, "zmsvMessageId::move-assignment", "A message id is move-assigned whole.")
{
    zmsvMessageId copy("other", "Other", {1.0});
    copy = makeId();
    expectWhole(copy);
}

ZM_CHECK(exceptionKeepsIdAndText, "zmsvException::zmsvException zmsvException::what",
         "A host exception has the id and the text that it was made of.")
{
    const zmsvException exception(makeId(), "what went wrong, at some length");
    expectEqual(textOf(exception), std::string("what went wrong, at some length"));
    expectWhole(exception.id());
}

ZM_CHECK(exceptionIsCopied, "zmsvException::copy zmsvException::~zmsvException",
         "A host exception is copied whole.")
{
    const zmsvException original(makeId(), "what went wrong, at some length");
    {
        const zmsvException copy(original);
        expectWhole(copy.id());
        expectEqual(textOf(copy), std::string("what went wrong, at some length"));
    }
    expectWhole(original.id());
}

ZM_CHECK(exceptionIsAssigned, "zmsvException::copy-assignment", "A host exception is assigned whole.")
{
    zmsvException copy(zmsvMessageId("other", "Other"), "other");
    copy = zmsvException(makeId(), "what went wrong, at some length");
    expectWhole(copy.id());
    expectEqual(textOf(copy), std::string("what went wrong, at some length"));
}

ZM_CHECK(exceptionIsAStandardOne, "zmsvException::zmsvException", "A host exception is a std::exception.")
{
    try {
        throw zmsvException(makeId(), "what went wrong");
    } catch (const std::exception& exception) {
        expectEqual(textOf(exception), std::string("what went wrong"));
    }
}

ZM_CHECK(shortMemoryIsThrown, "zmsvThrowOutOfMemory",
         "Short memory is thrown as an exception type of its own.")
{
    try {
        zmsvThrowOutOfMemory();
    } catch (const zmsvOutOfMemoryException& exception) {
        const std::exception& base = exception;
        expectTrue(dynamic_cast<const zmsvException*>(&base) == nullptr, "it is no zmsvException");
        return;
    } catch (const std::exception& exception) {
        fail(std::string("another exception: ") + exception.what());
    }
}

ZM_CHECK(shortMemoryHasAText,
         "zmsvOutOfMemoryException::what zmsvOutOfMemoryException::zmsvOutOfMemoryException",
         "The exception for short memory says that memory is short.")
{
    const InZeros<zmsvOutOfMemoryException> exception;
    expectTrue(contains(textOf(exception.get()), "emory"), textOf(exception.get()));
}

ZM_CHECK(shortMemoryIsCopied,
         "zmsvOutOfMemoryException::copy zmsvOutOfMemoryException::copy-assignment "
         "zmsvOutOfMemoryException::~zmsvOutOfMemoryException",
         "The exception for short memory can be copied and assigned.")
{
    const zmsvOutOfMemoryException original;
    InZeros<zmsvOutOfMemoryException> copy(original);
    expectEqual(textOf(copy.get()), textOf(original));
    copy.get() = original;
    expectEqual(textOf(copy.get()), textOf(original));
}
