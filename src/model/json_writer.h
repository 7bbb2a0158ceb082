#pragma once

#include <QByteArray>
#include <QString>
#include <QStringView>

namespace velino {

// Compact JSON written straight into one UTF-8 buffer: much faster than building a
// QJsonObject for documents of thousands of records. The caller writes keys and values in
// a valid order; the writer adds the commas.
class JsonWriter {
public:
    explicit JsonWriter(qsizetype capacity = 1024) { out_.reserve(capacity); }

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

    const QByteArray &bytes() const { return out_; }
    QByteArray take() { return std::move(out_); }

private:
    void separate();
    void writeEscaped(QStringView value);

    QByteArray out_;
    bool needsComma_ = false;
};

} // namespace velino
