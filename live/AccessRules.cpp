#include "live/AccessRules.hpp"

#include <openssl/crypto.h>

#include <algorithm>
#include <charconv>
#include <stdexcept>
#include <utility>

namespace live {

namespace {

std::string lowerCase(std::string_view text)
{
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return result;
}

std::string percentDecoded(std::string_view text)
{
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        unsigned byte = 0;
        if (text[i] == '%' && i + 2 < text.size() &&
            std::from_chars(text.data() + i + 1, text.data() + i + 3, byte, 16).ptr == text.data() + i + 3) {
            result += static_cast<char>(byte);
            i += 2;
        } else {
            result += text[i];
        }
    }
    return result;
}

}  // namespace

AccessRules::AccessRules(std::string address, bool isSecure, std::vector<std::string> origins,
                         std::string token)
    : m_address(std::move(address)),
      m_isSecure(isSecure),
      m_origins(std::move(origins)),
      m_token(std::move(token))
{
    if (!isLoopback(m_address) && m_token.empty()) {
        throw std::invalid_argument("a server on " + m_address +
                                    ", which is not a loopback address, needs a token");
    }
}

bool AccessRules::isLoopback(std::string_view address)
{
    return address == "::1" || address == "localhost" || address.starts_with("127.");
}

std::optional<Refusal> AccessRules::refuse(const RequestHead& request, bool needsToken) const
{
    if (request.method != "GET" && request.method != "HEAD") {
        return Refusal{405, "only GET and HEAD are served"};
    }
    // With a token any name may lead here; the token keeps foreign pages out.
    if (request.host.empty() || (m_token.empty() && !isOwnHost(request.host))) {
        return Refusal{421, "the Host header does not name this server"};
    }
    if (!isAllowedOrigin(request)) {
        return Refusal{403, "pages of this origin may not read from the server"};
    }
    if (needsToken && !hasToken(request)) {
        return Refusal{401, "the token is missing or wrong"};
    }
    return std::nullopt;
}

bool AccessRules::isOwnHost(std::string_view host) const
{
    const std::string port = ':' + std::to_string(m_port);
    const std::string name = lowerCase(host);
    const std::string own = m_address.find(':') == std::string::npos ? m_address : '[' + m_address + ']';
    return name == "localhost" + port || name == own + port ||
           (isLoopback(m_address) && (name == "127.0.0.1" + port || name == "[::1]" + port));
}

bool AccessRules::isAllowedOrigin(const RequestHead& request) const
{
    if (request.origin.empty()) {
        return true;
    }
    const std::string own = (m_isSecure ? "https://" : "http://") + lowerCase(request.host);
    return lowerCase(request.origin) == own ||
           std::find(m_origins.begin(), m_origins.end(), request.origin) != m_origins.end();
}

bool AccessRules::hasToken(const RequestHead& request) const
{
    if (m_token.empty()) {
        return true;
    }
    constexpr std::string_view scheme = "Bearer ";
    const std::string_view header = request.authorization;
    const std::string given = header.starts_with(scheme) ? std::string(header.substr(scheme.size()))
                                                         : queryParameter(request.target, "token");
    return equalInConstantTime(given, m_token);
}

std::string_view pathOf(std::string_view target)
{
    return target.substr(0, target.find('?'));
}

std::string queryParameter(std::string_view target, std::string_view name)
{
    const std::size_t begin = target.find('?');
    std::string_view query = begin == std::string_view::npos ? std::string_view{} : target.substr(begin + 1);
    while (!query.empty()) {
        const std::string_view pair = query.substr(0, query.find('&'));
        query.remove_prefix(std::min(pair.size() + 1, query.size()));
        const std::size_t equals = pair.find('=');
        if (equals != std::string_view::npos && pair.substr(0, equals) == name) {
            return percentDecoded(pair.substr(equals + 1));
        }
    }
    return {};
}

bool equalInConstantTime(std::string_view left, std::string_view right)
{
    return left.size() == right.size() && CRYPTO_memcmp(left.data(), right.data(), left.size()) == 0;
}

}  // namespace live
