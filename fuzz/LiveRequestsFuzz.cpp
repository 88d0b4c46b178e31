// HTTP requests to the server of live values, through the parser that the server uses.

#include "live/AccessRules.hpp"
#include "live/PageFiles.hpp"

#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http.hpp>

#include <cstdint>
#include <cstdlib>
#include <string>

namespace http = boost::beast::http;
using namespace live;

namespace {

template <class View>
std::string text(View view)
{
    return {view.data(), view.size()};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const PageFiles page("/nowhere");
    static const AccessRules rules = [] {
        AccessRules made("127.0.0.1", false, {"https://viewer.example"}, "");
        made.setPort(80);
        return made;
    }();
    static const AccessRules guarded("0.0.0.0", false, {}, "token");
    http::request_parser<http::empty_body> parser;
    parser.header_limit(8 * 1024);
    parser.body_limit(0);
    boost::system::error_code error;
    parser.put(boost::asio::buffer(data, size), error);
    if (error || !parser.is_header_done()) {
        return 0;
    }
    const auto& request = parser.get();
    const RequestHead head{text(request.method_string()), text(request.target()),
                           text(request[http::field::host]), text(request[http::field::origin]),
                           text(request[http::field::authorization])};
    const bool isAllowed = !rules.refuse(head, true);
    if (isAllowed && !head.origin.empty() && head.origin != "https://viewer.example" &&
        head.origin.size() != std::string("http://").size() + head.host.size()) {
        std::abort();
    }
    if (!guarded.refuse(head, true) && head.authorization != "Bearer token" &&
        queryParameter(head.target, "token") != "token") {
        std::abort();
    }
    const Answer answer = page.answer(pathOf(head.target), nullptr);
    if (answer.status != 404 && pathOf(head.target) != "/scene.json") {
        std::abort();
    }
    return 0;
}
