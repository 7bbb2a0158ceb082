#pragma once

#include <QByteArray>
#include <QDeadlineTimer>

#include <map>
#include <optional>
#include <string>

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace velino::test {

struct RawHttpAnswer {
    int status = 0;
    std::map<std::string, std::string> headers; // names in lower case
    std::string body;
};

// The head of a PUT to the sync address, with more header lines (each ending in CRLF).
inline std::string putHead(const std::string &moreHeaders) {
    return "PUT /api/velino-sync HTTP/1.1\r\nHost: 127.0.0.1\r\n" + moreHeaders + "\r\n";
}
inline std::string contentLength(qint64 length) {
    return "Content-Length: " + std::to_string(length) + "\r\n";
}

// Sends exactly the bytes it is given to 127.0.0.1: requests no HTTP library would send.
class RawHttpConnection {
public:
    explicit RawHttpConnection(int port) : fd_(socket(AF_INET, SOCK_STREAM, 0)) {
        sockaddr_in address{AF_INET, htons(uint16_t(port)), {htonl(INADDR_LOOPBACK)}, {}};
        connected_ = connect(fd_, reinterpret_cast<sockaddr *>(&address), sizeof address) == 0;
    }
    ~RawHttpConnection() { close(fd_); }
    RawHttpConnection(const RawHttpConnection &) = delete;

    // A blocking socket: one call sends everything or fails.
    bool send(const std::string &bytes) {
        return connected_ &&
               ::send(fd_, bytes.data(), bytes.size(), MSG_NOSIGNAL) == ssize_t(bytes.size());
    }

    // One answer with a Content-Length body, or nothing when the connection ends first.
    std::optional<RawHttpAnswer> readAnswer(std::chrono::milliseconds timeout) {
        const QDeadlineTimer deadline(timeout);
        for (;;) {
            const qsizetype headEnd = buffer_.indexOf("\r\n\r\n");
            RawHttpAnswer answer;
            const QList<QByteArray> lines = buffer_.left(headEnd).split('\n');
            answer.status = lines[0].mid(lines[0].indexOf(' ') + 1, 3).toInt();
            for (const QByteArray &line : lines.mid(1)) {
                const qsizetype colon = line.indexOf(':');
                answer.headers[line.left(colon).toLower().toStdString()] =
                    line.mid(colon + 1).trimmed().toStdString();
            }
            const int length = std::atoi(answer.headers["content-length"].c_str());
            if (headEnd >= 0 && buffer_.size() >= headEnd + 4 + length) {
                answer.body = buffer_.mid(headEnd + 4, length).toStdString();
                buffer_.remove(0, headEnd + 4 + length);
                return answer;
            }
            if (!receive(deadline))
                return std::nullopt;
        }
    }

    bool closedWithin(std::chrono::milliseconds timeout) {
        const QDeadlineTimer deadline(timeout);
        while (receive(deadline)) {
        }
        return !deadline.hasExpired();
    }

private:
    bool receive(const QDeadlineTimer &deadline) {
        pollfd p{fd_, POLLIN, 0};
        char chunk[65536];
        const ssize_t n = connected_ && poll(&p, 1, int(deadline.remainingTime())) > 0
                              ? recv(fd_, chunk, sizeof chunk, 0)
                              : 0;
        buffer_.append(chunk, n > 0 ? n : 0);
        return n > 0;
    }

    int fd_;
    bool connected_;
    QByteArray buffer_;
};

} // namespace velino::test
