#ifndef ZM_LIVE_ACCESS_RULES_HPP
#define ZM_LIVE_ACCESS_RULES_HPP

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace live {

/// What of an HTTP request decides whether it is served. Header values as they came; empty when missing.
struct RequestHead {
    std::string method;
    std::string target;  ///< path and query
    std::string host;
    std::string origin;
    std::string authorization;
};

struct Refusal {
    unsigned status = 0;  ///< of HTTP
    std::string reason;
};

/// Who may read from the server. A web page of another origin in the user's browser must not: its requests
/// carry an `Origin`, or, after rebinding its name to this address, a foreign `Host`. Viewers on the desktop
/// send no `Origin`. A server that listens on another address than loopback needs a token.
class AccessRules {
public:
    /// `address` is the one that the server listens on. Throws std::invalid_argument when it is not loopback
    /// and the token is empty.
    AccessRules(std::string address, bool isSecure, std::vector<std::string> origins, std::string token);

    /// Is called before the first request: the port may have been chosen by the system.
    void setPort(std::uint16_t port) { m_port = port; }

    /// `needsToken` is false for files that contain no values.
    std::optional<Refusal> refuse(const RequestHead& request, bool needsToken) const;

    static bool isLoopback(std::string_view address);

private:
    bool isOwnHost(std::string_view host) const;
    bool isAllowedOrigin(const RequestHead& request) const;
    bool hasToken(const RequestHead& request) const;

    std::string m_address;
    bool m_isSecure;
    std::vector<std::string> m_origins;
    std::string m_token;
    std::uint16_t m_port = 0;
};

/// The path of a request's target, without the query.
std::string_view pathOf(std::string_view target);

/// A parameter of the query, percent-decoded; empty when missing.
std::string queryParameter(std::string_view target, std::string_view name);

/// Compares in a time that depends on the lengths only.
bool equalInConstantTime(std::string_view left, std::string_view right);

}  // namespace live

#endif
