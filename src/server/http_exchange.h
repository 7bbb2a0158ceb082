#pragma once

#include <map>
#include <optional>
#include <string>

// One HTTP request and its answer as the service's handlers see them, apart from any
// socket or HTTP library, so that the handlers are tested as plain functions.
namespace velino::server {

struct HttpRequest {
    std::string method;
    std::string path;                              // decoded, without the query
    std::multimap<std::string, std::string> query; // decoded items
    std::map<std::string, std::string> headers;    // names in lower case
    std::string body;
    std::string peerAddress; // the address the connection comes from

    std::string header(const std::string &lowerCaseName) const {
        const auto found = headers.find(lowerCaseName);
        return found == headers.end() ? std::string() : found->second;
    }
    std::optional<std::string> queryItem(const std::string &name) const {
        const auto found = query.find(name);
        if (found == query.end())
            return std::nullopt;
        return found->second;
    }
};

struct HttpResponse {
    int status = 200;
    std::string contentType;
    std::string body;
    std::multimap<std::string, std::string> headers;
};

} // namespace velino::server
