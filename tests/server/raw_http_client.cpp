#include "raw_http_client.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>

namespace velino::test {
namespace {

using Clock = std::chrono::steady_clock;

// Waits for bytes until `deadline`: false when none came or the stream ended.
bool receive(int fd, std::string &buffer, Clock::time_point deadline) {
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
    pollfd p{fd, POLLIN, 0};
    if (fd < 0 || poll(&p, 1, int(std::max<long long>(0, left.count()))) <= 0)
        return false;
    char chunk[65536];
    const ssize_t n = recv(fd, chunk, sizeof chunk, 0);
    if (n > 0)
        buffer.append(chunk, size_t(n));
    return n > 0;
}

} // namespace

RawHttpConnection::RawHttpConnection(int port) {
    fd_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(uint16_t(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (fd_ >= 0 && connect(fd_, reinterpret_cast<sockaddr *>(&address), sizeof address) != 0) {
        close(fd_);
        fd_ = -1;
    }
    const int on = 1;
    if (fd_ >= 0)
        setsockopt(fd_, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

RawHttpConnection::~RawHttpConnection() {
    if (fd_ >= 0)
        close(fd_);
}

bool RawHttpConnection::send(const std::string &bytes) {
    size_t sent = 0;
    while (fd_ >= 0 && sent < bytes.size()) {
        const ssize_t n = ::send(fd_, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
        if (n <= 0)
            return false;
        sent += size_t(n);
    }
    return fd_ >= 0;
}

std::optional<RawHttpAnswer> RawHttpConnection::readAnswer(std::chrono::milliseconds timeout) {
    const Clock::time_point deadline = Clock::now() + timeout;
    for (;;) {
        const size_t headerEnd = buffer_.find("\r\n\r\n");
        if (headerEnd != std::string::npos) {
            RawHttpAnswer answer;
            const std::string head = buffer_.substr(0, headerEnd);
            answer.status = std::atoi(head.substr(head.find(' ') + 1, 3).c_str());
            for (size_t start = head.find("\r\n"); start != std::string::npos;) {
                const size_t end = head.find("\r\n", start + 2);
                const std::string line = head.substr(start + 2, end - start - 2);
                start = end;
                const size_t colon = line.find(':');
                if (colon == std::string::npos)
                    continue;
                std::string name = line.substr(0, colon);
                std::transform(name.begin(), name.end(), name.begin(),
                               [](unsigned char c) { return char(std::tolower(c)); });
                answer.headers[name] = line.substr(line.find_first_not_of(' ', colon + 1));
            }
            const size_t length = size_t(std::atoll(answer.headers["content-length"].c_str()));
            if (buffer_.size() >= headerEnd + 4 + length) {
                answer.body = buffer_.substr(headerEnd + 4, length);
                buffer_.erase(0, headerEnd + 4 + length);
                return answer;
            }
        }
        if (!receive(fd_, buffer_, deadline))
            return std::nullopt;
    }
}

std::optional<RawHttpAnswer> RawHttpConnection::exchange(const std::string &method,
                                                         const std::string &target,
                                                         const std::string &body) {
    std::string request = method + " " + target + " HTTP/1.1\r\nHost: 127.0.0.1\r\n";
    if (method != "GET")
        request +=
            "Content-Type: application/json\r\nContent-Length: " + std::to_string(body.size()) +
            "\r\n";
    if (!send(request + "\r\n" + body))
        return std::nullopt;
    return readAnswer(std::chrono::seconds(10));
}

bool RawHttpConnection::closedWithin(std::chrono::milliseconds timeout) {
    const Clock::time_point deadline = Clock::now() + timeout;
    while (fd_ >= 0 && Clock::now() < deadline) {
        pollfd p{fd_, POLLIN, 0};
        char chunk[65536];
        if (poll(&p, 1, 50) > 0 && recv(fd_, chunk, sizeof chunk, 0) <= 0)
            return true;
    }
    return fd_ < 0;
}

std::optional<RawHttpAnswer> rawRequest(int port, const std::string &method,
                                        const std::string &target, const std::string &body) {
    return RawHttpConnection(port).exchange(method, target, body);
}

} // namespace velino::test
