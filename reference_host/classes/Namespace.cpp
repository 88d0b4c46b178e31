#include "reference_host/classes/Namespace.hpp"

#include "reference_host/calls/BoundaryCall.hpp"
#include "reference_host/classes/ClassErrors.hpp"
#include "reference_host/classes/LibraryCall.hpp"
#include "reference_host/classes/Types.hpp"

#include <algorithm>
#include <cstring>
#include <utility>

namespace reference_host {

namespace {

template <class Members>
auto* findBySimpleName(const Members& members, const std::string& name)
{
    const auto found =
        std::ranges::find(members, name, [](const auto& member) { return member->simpleName(); });
    return found != members.end() ? found->get() : nullptr;
}

}  // namespace

void checkSimpleName(const char* kind, const char* name)
{
    if (name == nullptr || *name == '\0') {
        throwClassError("NoName", {kind});
    }
    if (std::strchr(name, '.') != nullptr) {
        throwClassError("BadName", {name, kind});
    }
}

SplitName::SplitName(const std::string& fullName)
{
    const std::size_t dot = fullName.rfind('.');
    if (dot == std::string::npos) {
        simple = fullName;
        return;
    }
    parent = fullName.substr(0, dot);
    simple = fullName.substr(dot + 1);
}

Namespace::Namespace(std::string fullName, const Contributions& contributions)
    : m_fullName(std::move(fullName)), m_contributions(contributions)
{
}

Namespace::~Namespace() = default;

std::string Namespace::simpleName() const
{
    return SplitName(m_fullName).simple;
}

void Namespace::addInnerNamespace(nvcos::COSNamespaceInfo* info)
{
    const char* name = info != nullptr ? info->getName() : nullptr;
    BoundaryCall({"COSNamespace::addInnerNamespace"}, m_fullName, name).run([&] {
        insertNamespace(name, info);
    });
}

void Namespace::addClass(nvcos::COSClassInfo* info, int first, int second)
{
    const char* name = info != nullptr ? info->getClassName() : nullptr;
    BoundaryCall({"COSNamespace::addClass"}, m_fullName, name, first, second).run([&] {
        insertClass(info, ClassOrigin::Library);
    });
}

Namespace& Namespace::insertNamespace(const char* name, nvcos::COSNamespaceInfo* info)
{
    define();
    checkNewName("namespace", name);
    m_inner.push_back(std::make_unique<Namespace>(m_fullName + "." + name, m_contributions));
    m_inner.back()->adopt(info);
    return *m_inner.back();
}

void Namespace::insertClass(nvcos::COSClassInfo* info, ClassOrigin origin)
{
    const char* name = info != nullptr ? info->getClassName() : nullptr;
    define();
    checkNewName("class", name);
    m_classes.push_back(std::make_unique<RegisteredClass>(m_fullName + "." + name, name, origin));
    m_classes.back()->adopt(info);
}

/// A name that something new in this namespace may have.
void Namespace::checkNewName(const char* kind, const char* name)
{
    checkSimpleName(kind, name);
    if (knownClass(name) == nullptr && knownInner(name) == nullptr) {
        return;
    }
    if (m_info) {
        m_info->throwErrorForDefinitionOfExistingName(this, intern(name));
    }
    throwClassError("DuplicateName", {name, m_fullName});
}

void Namespace::define()
{
    if (m_state != State::Undefined) {
        return;
    }
    m_state = State::Defining;
    try {
        addContributions();
        if (m_info) {
            callLibrary(
                "defineContents", [this] { m_info->defineContents(this); }, m_fullName);
        }
    } catch (...) {
        removeContents();
        m_state = State::Undefined;
        throw;
    }
    m_state = State::Defined;
}

void Namespace::addContributions()
{
    // A factory may contribute more classes. Those are added at once, and are not to be added again here.
    const std::size_t count = m_contributions.size();
    for (std::size_t i = 0; i < count; ++i) {
        const Contribution contribution = m_contributions[i];
        if (contribution.namespaceName == m_fullName) {
            insertContributed(contribution);
        }
    }
}

void Namespace::insertContributed(const Contribution& contribution)
{
    std::unique_ptr<nvcos::COSClassInfo> info = contribution.makeInfo();
    insertClass(info.get(), ClassOrigin::HostCode);
    static_cast<void>(info.release());
}

void Namespace::removeContents()
{
    std::erase_if(m_classes, [](const auto& cosClass) { return cosClass->instances() == 0; });
    std::erase_if(m_inner, [](const auto& inner) { return !inner->hasInstances(); });
}

bool Namespace::hasInstances() const
{
    return std::ranges::any_of(m_classes, [](const auto& cosClass) { return cosClass->instances() != 0; }) ||
           std::ranges::any_of(m_inner, [](const auto& inner) { return inner->hasInstances(); });
}

Namespace* Namespace::knownInner(const std::string& simpleName) const
{
    return findBySimpleName(m_inner, simpleName);
}

RegisteredClass* Namespace::knownClass(const std::string& simpleName) const
{
    return findBySimpleName(m_classes, simpleName);
}

Namespace* Namespace::findInner(const std::string& simpleName)
{
    define();
    Namespace* inner = knownInner(simpleName);
    if (inner == nullptr && m_info && m_info->attemptToLoadInnerNamespace(this, intern(simpleName.c_str()))) {
        inner = knownInner(simpleName);
    }
    return inner;
}

RegisteredClass* Namespace::findClass(const std::string& simpleName)
{
    define();
    RegisteredClass* cosClass = knownClass(simpleName);
    if (cosClass == nullptr && m_info && m_info->attemptToLoadClass(this, intern(simpleName.c_str()))) {
        cosClass = knownClass(simpleName);
    }
    return cosClass;
}

const std::vector<std::unique_ptr<Namespace>>& Namespace::innerNamespaces()
{
    define();
    return m_inner;
}

const std::vector<std::unique_ptr<RegisteredClass>>& Namespace::classes()
{
    define();
    return m_classes;
}

void Namespace::listInstances(std::vector<std::string>& lines) const
{
    for (const auto& cosClass : m_classes) {
        if (cosClass->instances() != 0) {
            lines.push_back(cosClass->fullName() + ": " + std::to_string(cosClass->instances()));
        }
    }
    for (const auto& inner : m_inner) {
        inner->listInstances(lines);
    }
}

}  // namespace reference_host

nvcos::COSNamespace::COSNamespace() = default;
nvcos::COSNamespace::~COSNamespace() = default;

std::string nvcos::describeArgument(const COSNamespace* cosNamespace)
{
    using reference_host::Namespace;
    return cosNamespace != nullptr ? "namespace " + static_cast<const Namespace*>(cosNamespace)->fullName()
                                   : "null";
}
