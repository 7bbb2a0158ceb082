#pragma once

#include <QByteArray>
#include <QChar>
#include <QString>
#include <QStringView>

namespace velino {

// Compact JSON written straight into one UTF-8 buffer: much faster than building a
// QJsonObject for documents of thousands of records. The caller writes keys and values in
// a valid order; the writer adds the commas.
class JsonWriter {
public:
    explicit JsonWriter(qsizetype capacity = 1024);

    void beginObject();
    void endObject();
    void beginArray();
    void endArray();
    void key(QStringView name);

    void string(QStringView value);
    // Shortest text that reads back as the same double.
    void number(double value);
    void number(qint64 value);
    void boolean(bool value);

    QByteArray take();

private:
    void separate();
    void put(char c) {
        reserve(1);
        *cursor_++ = c;
    }
    void put(const char *text, qsizetype length);
    void reserve(qsizetype extra) {
        if (end_ - cursor_ < extra)
            grow(extra);
    }
    void grow(qsizetype extra);
    void writeEscaped(QStringView value);

    QByteArray out_;
    char *begin_ = nullptr;
    char *cursor_ = nullptr;
    char *end_ = nullptr;
    bool needsComma_ = false;
};

} // namespace velino
