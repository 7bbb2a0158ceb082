#pragma once

#include <QBuffer>
#include <QImage>
#include <QTcpServer>
#include <QTcpSocket>

// A loopback HTTP server that answers every request with a small PNG and counts the
// requests: it tells whether a page asked for its remote images at all.
class CountingImageServer : public QObject {
public:
    // The port it listens on (127.0.0.1), or 0 when it could not listen.
    int start() {
        if (!m_server.isListening() && !m_server.listen(QHostAddress::LocalHost))
            return 0;
        connect(&m_server, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket *socket = m_server.nextPendingConnection())
                serve(socket);
        });
        return m_server.serverPort();
    }

    int requests() const { return m_requests; }

private:
    void serve(QTcpSocket *socket) {
        connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
            m_pending[socket] += socket->readAll();
            if (!m_pending[socket].contains("\r\n\r\n"))
                return;
            m_pending.remove(socket);
            ++m_requests;
            const QByteArray png = picture();
            socket->write("HTTP/1.1 200 OK\r\nContent-Type: image/png\r\nConnection: close\r\n"
                          "Content-Length: " +
                          QByteArray::number(png.size()) + "\r\n\r\n" + png);
            socket->disconnectFromHost();
        });
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    }

    static QByteArray picture() {
        QImage image(8, 8, QImage::Format_RGB32);
        image.fill(Qt::darkBlue);
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        image.save(&buffer, "PNG");
        return bytes;
    }

    QTcpServer m_server;
    QHash<QTcpSocket *, QByteArray> m_pending;
    int m_requests = 0;
};
