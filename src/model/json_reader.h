#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QString>

#include <optional>

namespace velino {

// Strict reader of one JSON object. Every accessor names the key it reads; the first
// problem met (missing key, null, wrong type) is kept as a French message naming the key
// by its full path, and later reads return empty values. Unknown keys are ignored.
class JsonReader {
public:
    JsonReader(const QJsonObject &object, QString path, QString *error);

    bool ok() const { return error_->isEmpty(); }
    QString pathOf(QStringView key) const;

    QString string(QStringView key);
    bool boolean(QStringView key);
    double number(QStringView key);
    qint64 integer(QStringView key);
    QJsonObject object(QStringView key);
    QJsonArray array(QStringView key);

    // Missing or null gives nothing; any other type than the expected one is an error.
    std::optional<QString> optionalString(QStringView key);
    std::optional<QJsonArray> optionalArray(QStringView key);

    // Present and not null, of any type.
    QJsonValue value(QStringView key);

    void fail(const QString &message);

private:
    QJsonValue required(QStringView key, QJsonValue::Type type, const char *typeName);

    QJsonObject object_;
    QString path_;
    QString *error_;
};

// Reads bytes as one JSON object, strictly as RFC 8259 defines JSON; on failure sets *error
// to a French message. Every JSON input of the program is read through here.
std::optional<QJsonObject> parseJsonObject(const QByteArray &bytes, QString *error);

// French name of a JSON type, for messages.
const char *jsonTypeName(QJsonValue::Type type);

// The messages of every strict decoder, naming the key by its full path.
QString missingKeyMessage(const QString &path);
QString nullKeyMessage(const QString &path);
QString wrongTypeMessage(const QString &path, const char *expected, const char *found);

} // namespace velino
