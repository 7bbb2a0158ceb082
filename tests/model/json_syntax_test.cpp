#include "json_reader.h"
#include "json_syntax.h"

#include <gtest/gtest.h>

using namespace velino;

namespace {

QString syntaxError(const QByteArray &json) {
    QString error;
    return checkJsonSyntax(json, &error) ? QString() : error;
}

} // namespace

TEST(JsonSyntax, RefusesEveryFormOutsideRfc8259AndSaysWhere) {
    const std::pair<const char *, const char *> cases[] = {
        {"{\"a\":1.}", "octet 7 : chiffre attendu apres le point d'un nombre"},
        {"{\"a\":\"x\ty\"}", "octet 7 : caractere de controle non echappe dans un texte"},
        {"{\"a\":01}", "octet 6 : zero en tete d'un nombre"},
        {"{\"a\":-05}", "octet 7 : zero en tete d'un nombre"},
        {"{\"a\":1} x", "octet 8 : contenu en trop apres le document"},
        {"{\"a\":\"\xC3\x28\"}", "octet 6 : UTF-8 invalide"},
        {"{\"a\":\"\xED\xA0\x80\"}", "octet 6 : UTF-8 invalide"},     // encoded surrogate
        {"{\"a\":\"\xC0\xAF\"}", "octet 6 : UTF-8 invalide"},         // overlong slash
        {"{\"a\":\"\xF4\x90\x80\x80\"}", "octet 6 : UTF-8 invalide"}, // above U+10FFFF
        {"\xEF\xBB\xBF{}", "octet 0 : caractere inattendu hors d'un texte"},
        {"{\"a\":1}\xFF", "octet 7 : UTF-8 invalide"},
        {"{\"a\":.5}", "octet 5 : valeur illegale"},
        {"{\"a\":1e}", "octet 7 : chiffre attendu dans l'exposant d'un nombre"},
        {"{\"a\":-}", "octet 6 : nombre illegal"},
        {"{\"a\":tru}", "octet 5 : valeur illegale"},
        {"{\"a\":NaN}", "octet 5 : valeur illegale"},
        {"{\"a\":\"\\x\"}", "octet 6 : sequence d'echappement illegale"},
        {"{\"a\":\"\\u12g4\"}", "octet 8 : sequence d'echappement illegale"},
        {"{\"a\":1,}", "octet 7 : nom de cle attendu"},
        {"[1,]", "octet 3 : valeur illegale"},
        {"[1 2]", "octet 3 : virgule manquante entre deux valeurs"},
        {"{\"a\" 1}", "octet 5 : deux-points manquant apres une cle"},
        {"{a:1}", "octet 1 : nom de cle attendu"},
        {"{\"a\":[1}", "octet 7 : virgule manquante entre deux valeurs"},
        {"{\"a\":\"open}", "octet 11 : texte non termine"},
        {"", "octet 0 : fin inattendue du document"},
        {"[", "octet 1 : fin inattendue du document"}};
    for (const auto &[json, error] : cases) {
        EXPECT_EQ(syntaxError(json), QStringLiteral("JSON invalide a l'") + error) << json;
        QString message;
        EXPECT_FALSE(parseJsonObject(json, &message)) << json;
    }
}

TEST(JsonSyntax, AcceptsWhatRfc8259Accepts) {
    const QByteArray valid =
        " {\"a\": [1, -0, -0.5e+3, 2E-2, true, false, null, {\"b\": \"\\u00e9\\ud83d\\ude00\\n\\/"
        "\xC3\xA9\xF0\x9F\x98\x80\"}], \"c\": {}, \"d\": [], \"e\": \"\", \"\": 0}\r\n";
    EXPECT_EQ(syntaxError(valid), QString());
    EXPECT_EQ(syntaxError(QByteArray(512, '[') + QByteArray(512, ']')), QString());
    // Far deeper documents are refused without exhausting the stack.
    EXPECT_TRUE(syntaxError(QByteArray(100000, '[') + QByteArray(100000, ']'))
                    .endsWith("imbrication trop profonde"));
}

TEST(JsonReader, LoneSurrogateEscapesReadAsTheReplacementCharacter) {
    QString error;
    const auto object = parseJsonObject(R"({"a":"x\ud800y\udd13\ud83d\ude00"})", &error);
    ASSERT_TRUE(object) << error.toStdString();
    JsonReader reader(*object, QString(), &error);
    EXPECT_EQ(reader.string(u"a"), QString::fromUtf16(u"x\uFFFDy\uFFFD\U0001F600"));
}
