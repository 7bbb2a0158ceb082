#pragma once

#include <QByteArray>

#include <chrono>
#include <map>
#include <optional>
#include <string>

namespace velino::test {

struct RawHttpAnswer {
    int status = 0;
    std::map<std::string, std::string> headers; // names in lower case
    std::string body;
};

// A plain TCP connection to 127.0.0.1 that sends exactly the bytes it is given, for
// requests no HTTP library would send (slow, malformed, lying about their length).
class RawHttpConnection {
public:
    explicit RawHttpConnection(int port);
    ~RawHttpConnection();
    RawHttpConnection(const RawHttpConnection &) = delete;
    RawHttpConnection &operator=(const RawHttpConnection &) = delete;

    // False when the peer no longer takes bytes.
    bool send(const std::string &bytes);
    // One answer with a Content-Length body, or nothing when the connection ends first or
    // the time is over.
    std::optional<RawHttpAnswer> readAnswer(std::chrono::milliseconds timeout);
    // An ordinary request (a JSON body unless GET) and its answer.
    std::optional<RawHttpAnswer> exchange(const std::string &method, const std::string &target,
                                          const std::string &body = {});
    // True when the server closes the connection within `timeout`, whatever it sent before.
    bool closedWithin(std::chrono::milliseconds timeout);

private:
    // Reads what has come within `timeout`; false when nothing came or the stream ended.
    bool receive(std::chrono::milliseconds timeout);

    int fd_ = -1;
    QByteArray buffer_;
};

} // namespace velino::test
