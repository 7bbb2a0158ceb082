#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

namespace velino {

// A strict pull parser over one JSON document in UTF-8, for reading large documents
// straight into records without building a QJsonObject first. Every method returns false
// once the document is found invalid; error() then says where and why, in French. Parts of
// the document that the caller skips are still checked in full.
class JsonCursor {
public:
    enum class Type { Object, Array, String, Number, Bool, Null, Invalid };

    explicit JsonCursor(QByteArrayView json);

    // The type of the next value (after white space), without consuming it.
    Type peek();

    // Objects: beginObject() consumes "{"; then nextMember(&key) gives each key in turn
    // (the value follows) and returns false at the closing "}", which it consumes.
    bool beginObject();
    // The key is valid until the next call on the cursor.
    bool nextMember(QByteArrayView *key);
    // Arrays: beginArray(), then nextElement() before each element; false at "]".
    bool beginArray();
    bool nextElement();

    bool readString(QString *value);
    bool readNumber(double *value, bool *isInteger = nullptr);
    bool readBool(bool *value);
    bool readNull();
    bool skipValue();

    // Only white space is left.
    bool finish();

    bool ok() const { return error_.isEmpty(); }
    const QString &error() const { return error_; }
    bool fail(const char *reason);

private:
    void skipSpace();
    bool open(char bracket, const char *reason);
    // Before each item of the innermost object or array: false at its closing bracket
    // (consumed), true once the comma between two items has been read.
    bool nextItem(char closingBracket);
    bool expect(char c, const char *reason);
    bool readRawString(QByteArray *utf8);
    bool readLiteral(const char *literal, qsizetype length);

    const char *begin_;
    const char *p_;
    const char *end_;
    QString error_;
    QByteArray keyBuffer_; // keys that hold escapes, decoded
    // Separator state of the innermost object or array being read.
    bool first_ = true;
    int depth_ = 0;
};

// French name of a cursor value type, for messages.
const char *jsonCursorTypeName(JsonCursor::Type type);

// Where a member sits in the document: its parent's path and its key, joined only when a
// message needs them.
struct MemberPath {
    QStringView parent;
    QStringView key;
    QString toString() const {
        return parent.isEmpty() ? key.toString() : parent.toString() + u'.' + key.toString();
    }
};

// For the value of the member at path: true when it has the expected type; otherwise
// false with *error set to the decoders' message (null, wrong type, or the syntax error).
bool checkMemberType(JsonCursor &cursor, JsonCursor::Type expected, const char *expectedName,
                     const MemberPath &path, QString *error);

// Reads a string member, with the checks above.
bool readStringMember(JsonCursor &cursor, const MemberPath &path, QString *value, QString *error);

} // namespace velino
