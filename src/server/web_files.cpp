#include "web_files.h"

#include <QFile>

namespace velino::server {
namespace {

// Only names made of these characters are looked up: no "..", no other folder.
bool isPlainName(const std::string &name) {
    if (name.empty() || name.front() == '.')
        return false;
    for (const char c : name)
        if (!((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' || c == '.'))
            return false;
    return true;
}

const char *contentTypeOf(const std::string &name) {
    const auto endsWith = [&](const std::string &suffix) {
        return name.size() >= suffix.size() &&
               name.compare(name.size() - suffix.size(), suffix.size(), suffix) == 0;
    };
    if (endsWith(".html"))
        return "text/html; charset=utf-8";
    if (endsWith(".css"))
        return "text/css; charset=utf-8";
    if (endsWith(".js"))
        return "text/javascript; charset=utf-8";
    if (endsWith(".svg"))
        return "image/svg+xml";
    return nullptr;
}

} // namespace

std::optional<HttpResponse> webFile(const std::string &path) {
    std::string name;
    if (path == "/velino.html" || path == "/velino.css" || path == "/velino-logo.svg")
        name = path.substr(1);
    else if (path.rfind("/js/", 0) == 0 && isPlainName(path.substr(4)))
        name = path.substr(1);
    else
        return std::nullopt;
    const char *type = contentTypeOf(name);
    if (!type)
        return std::nullopt;
    QFile file(QStringLiteral(":/velino-web/") + QString::fromStdString(name));
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    HttpResponse response;
    response.contentType = type;
    response.body = file.readAll().toStdString();
    return response;
}

} // namespace velino::server
