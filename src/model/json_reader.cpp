#include "json_reader.h"

#include "json_syntax.h"

#include <QJsonDocument>

#include <QJsonParseError>
#include <algorithm>

namespace velino {

const char *jsonTypeName(QJsonValue::Type type) {
    switch (type) {
    case QJsonValue::Null:
        return "null";
    case QJsonValue::Bool:
        return "booleen";
    case QJsonValue::Double:
        return "nombre";
    case QJsonValue::String:
        return "texte";
    case QJsonValue::Array:
        return "tableau";
    case QJsonValue::Object:
        return "objet";
    case QJsonValue::Undefined:
        break;
    }
    return "absent";
}

QString missingKeyMessage(const QString &path) {
    return QStringLiteral("cle manquante : %1").arg(path);
}

QString nullKeyMessage(const QString &path) {
    return QStringLiteral("valeur null pour la cle %1").arg(path);
}

QString wrongTypeMessage(const QString &path, const char *expected, const char *found) {
    return QStringLiteral("type incorrect pour la cle %1 : %2 attendu, %3 trouve")
        .arg(path, QLatin1String(expected), QLatin1String(found));
}

JsonReader::JsonReader(const QJsonObject &object, QString path, QString *error)
    : object_(object), path_(std::move(path)), error_(error) {}

QString JsonReader::pathOf(QStringView key) const {
    return path_.isEmpty() ? key.toString() : path_ + u'.' + key.toString();
}

void JsonReader::fail(const QString &message) {
    if (error_->isEmpty())
        *error_ = message;
}

QJsonValue JsonReader::value(QStringView key) {
    if (!ok())
        return {};
    const auto it = object_.constFind(key);
    if (it == object_.constEnd()) {
        fail(missingKeyMessage(pathOf(key)));
        return {};
    }
    if (it->isNull()) {
        fail(nullKeyMessage(pathOf(key)));
        return {};
    }
    return *it;
}

QJsonValue JsonReader::required(QStringView key, QJsonValue::Type type, const char *typeName) {
    const QJsonValue v = value(key);
    if (!ok())
        return {};
    if (v.type() != type) {
        fail(wrongTypeMessage(pathOf(key), typeName, jsonTypeName(v.type())));
        return {};
    }
    return v;
}

namespace {

// A "\uD800"-style escape without its other half has no UTF-8 form: it reads as U+FFFD, as
// JsonWriter writes it, so that a document read and written again says the same.
QString withoutLoneSurrogates(QString text) {
    const auto isSurrogate = [](QChar c) { return c.isSurrogate(); };
    if (std::none_of(text.cbegin(), text.cend(), isSurrogate))
        return text;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate())
            ++i;
        else if (text[i].isSurrogate())
            text[i] = QChar::ReplacementCharacter;
    }
    return text;
}

} // namespace

QString JsonReader::string(QStringView key) {
    return withoutLoneSurrogates(required(key, QJsonValue::String, "texte").toString());
}

bool JsonReader::boolean(QStringView key) {
    return required(key, QJsonValue::Bool, "booleen").toBool();
}

double JsonReader::number(QStringView key) {
    return required(key, QJsonValue::Double, "nombre").toDouble();
}

qint64 JsonReader::integer(QStringView key) {
    const QJsonValue v = required(key, QJsonValue::Double, "nombre entier");
    if (!ok())
        return 0;
    // Only a number written without fraction or exponent is kept as an integer.
    if (v.toVariant().typeId() != QMetaType::LongLong) {
        fail(QStringLiteral("type incorrect pour la cle %1 : nombre entier attendu")
                 .arg(pathOf(key)));
        return 0;
    }
    return v.toInteger();
}

QJsonObject JsonReader::object(QStringView key) {
    return required(key, QJsonValue::Object, "objet").toObject();
}

QJsonArray JsonReader::array(QStringView key) {
    return required(key, QJsonValue::Array, "tableau").toArray();
}

std::optional<QString> JsonReader::optionalString(QStringView key) {
    const QJsonValue v = object_.value(key);
    if (!ok() || v.isUndefined() || v.isNull())
        return std::nullopt;
    return string(key);
}

std::optional<QJsonArray> JsonReader::optionalArray(QStringView key) {
    const QJsonValue v = object_.value(key);
    if (!ok() || v.isUndefined() || v.isNull())
        return std::nullopt;
    return array(key);
}

namespace {

const char *parseErrorText(QJsonParseError::ParseError error) {
    switch (error) {
    case QJsonParseError::UnterminatedObject:
        return "objet non termine";
    case QJsonParseError::MissingNameSeparator:
        return "deux-points manquant apres une cle";
    case QJsonParseError::UnterminatedArray:
        return "tableau non termine";
    case QJsonParseError::MissingValueSeparator:
        return "virgule manquante entre deux valeurs";
    case QJsonParseError::IllegalValue:
        return "valeur illegale";
    case QJsonParseError::TerminationByNumber:
        return "fin inattendue apres un nombre";
    case QJsonParseError::IllegalNumber:
        return "nombre illegal";
    case QJsonParseError::IllegalEscapeSequence:
        return "sequence d'echappement illegale";
    case QJsonParseError::IllegalUTF8String:
        return "UTF-8 invalide dans un texte";
    case QJsonParseError::UnterminatedString:
        return "texte non termine";
    case QJsonParseError::MissingObject:
        return "objet attendu";
    case QJsonParseError::DeepNesting:
        return "imbrication trop profonde";
    case QJsonParseError::DocumentTooLarge:
        return "document trop volumineux";
    case QJsonParseError::GarbageAtEnd:
        return "contenu en trop apres le document";
    case QJsonParseError::NoError:
        break;
    }
    return "erreur inconnue";
}

} // namespace

std::optional<QJsonObject> parseJsonObject(const QByteArray &bytes, QString *error) {
    // Qt's own parser accepts more than RFC 8259 ("1.", raw tabs in strings): every input
    // is checked first, so that it only ever builds the object of a valid document.
    if (!checkJsonSyntax(bytes, error))
        return std::nullopt;
    QJsonParseError parseError{};
    const QJsonDocument document = QJsonDocument::fromJson(bytes, &parseError);
    if (parseError.error != QJsonParseError::NoError) {
        *error = QStringLiteral("JSON invalide a l'octet %1 : %2")
                     .arg(parseError.offset)
                     .arg(QLatin1String(parseErrorText(parseError.error)));
        return std::nullopt;
    }
    if (!document.isObject()) {
        *error = QStringLiteral("JSON invalide : un objet est attendu");
        return std::nullopt;
    }
    return document.object();
}

} // namespace velino
