#include "identifiers.h"
#include "qt_state_storage.h"
#include "saved_payload.h"
#include "saved_states.h"
#include "scene_graph_backend.h"
#include "test_records.h"

#include <QClipboard>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QQmlEngine>
#include <QQuickWindow>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>
#include <QtQml/qqmlextensionplugin.h>
#include <QtQuickTest/quicktest.h>
#include <QtWebEngineQuick/qtwebenginequickglobal.h>

#include <list>

Q_IMPORT_QML_PLUGIN(VelinoPlugin)
using namespace Qt::StringLiterals;

namespace {

// The settings and saved document of every window the tests open, never the user's own.
QTemporaryDir configHome;

// What the QML tests need beyond Qt Quick Test, as the singleton TestSupport.
class TestSupport : public QObject {
    Q_OBJECT

public:
    Q_SLOT void qmlEngineAvailable(QQmlEngine *engine) {
        engine->addImportPath(u"qrc:/qt/qml"_s);
        qmlRegisterSingletonInstance("VelinoTest", 1, 0, "TestSupport", this);
    }

    Q_INVOKABLE bool resetSettings() const {
        return QDir(configHome.path() + u"/Korvel"_s).removeRecursively() &&
               QDir(configHome.path() + u"/data/Korvel"_s).removeRecursively();
    }

    // Presets "Preset client 0" (newest) to "Preset client count-1", for the next window.
    Q_INVOKABLE bool saveStateWithPresets(int count) const {
        velino::SavedPayload payload;
        payload.data = velino::MailComposerData::defaultRecord();
        for (int i = 0; i < count; ++i) {
            const velino::Instant at{788918400.0 - i};
            payload.customPresets.append({.id = velino::randomUuid(),
                                          .name = u"Preset client %1"_s.arg(i),
                                          .data = payload.data,
                                          .createdAt = at,
                                          .updatedAt = at});
        }
        return saveState(payload);
    }

    // The default content with `field` holding bench's longText(length, lineLength), for the next
    // window: returns that text, or nothing if it could not be saved.
    Q_INVOKABLE QString saveStateWithLongField(const QString &field, int length,
                                               int lineLength) const {
        const QString text = velino::bench::longText(length, lineLength);
        velino::SavedPayload payload;
        payload.data = velino::test::defaultWith(field, text);
        return saveState(payload) ? text : QString();
    }

    Q_INVOKABLE void setEnvironment(const QString &name, const QString &value) const {
        qputenv(name.toLocal8Bit().constData(), value.toLocal8Bit());
    }
    // The port of a loopback HTTP server that counts the requests it gets, or 0.
    Q_INVOKABLE int startImageServer() {
        if (!m_images.listen(QHostAddress::LocalHost))
            return 0;
        connect(&m_images, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket *socket = m_images.nextPendingConnection()) {
                connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
                connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
                    QObject::disconnect(socket, &QTcpSocket::readyRead, nullptr, nullptr);
                    ++m_imageRequests;
                    socket->write("HTTP/1.1 204 No Content\r\nConnection: close\r\n\r\n");
                    socket->disconnectFromHost();
                });
            }
        });
        return m_images.serverPort();
    }
    Q_INVOKABLE int imageRequests() const { return m_imageRequests; }
    Q_INVOKABLE QString environment(const QString &name) const {
        return qEnvironmentVariable(qUtf8Printable(name));
    }

    Q_INVOKABLE QString makeTemporaryFolder() { return m_folders.emplace_back().path(); }

    Q_INVOKABLE bool fileExists(const QString &path) const { return QFile::exists(path); }

    Q_INVOKABLE QString clipboardText() const { return QGuiApplication::clipboard()->text(); }
    Q_INVOKABLE void setClipboardText(const QString &text) const {
        QGuiApplication::clipboard()->setText(text);
    }

    // Types `text` (Latin-1) into whichever item of `window` has the keyboard focus.
    Q_INVOKABLE void typeText(QQuickWindow *window, const QString &text) const {
        for (const char c : text.toLatin1())
            QTest::keyClick(window, c);
    }
    Q_INVOKABLE void keyClick(QQuickWindow *window, int key, int modifiers = 0) const {
        QTest::keyClick(window, Qt::Key(key), Qt::KeyboardModifiers(modifiers));
    }

private:
    static bool saveState(const velino::SavedPayload &payload) {
        const QString home = configHome.path();
        velino::QtStateStorage storage(
            velino::StateFiles::inFolders(home + u"/Korvel"_s, home + u"/data/Korvel/Velino"_s));
        return storage.writeDocument(payload.toJson());
    }

    std::list<QTemporaryDir> m_folders;
    QTcpServer m_images;
    int m_imageRequests = 0;
};

} // namespace

int main(int argc, char **argv) {
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(configHome.path()));
    qputenv("XDG_DATA_HOME", QFile::encodeName(configHome.path() + u"/data"_s));
    // As in the program: set up before the application object.
    QtWebEngineQuick::initialize();
    velino::ui::chooseSceneGraphBackend();
    TestSupport support;
    return quick_test_main_with_setup(argc, argv, "velino_qml", nullptr, &support);
}

#include "quick_test_main.moc"
