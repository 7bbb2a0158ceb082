#include "identifiers.h"

#include "text.h"

#include <QRandomGenerator>

#include <random>

namespace velino {
QUuid randomUuid() {
    // The standard Mersenne Twister, seeded by the system once per thread: a few nanoseconds
    // per draw for the row identities rebuilt at every regeneration, where QUuid::createUuid
    // and Qt's locked global generator cost about a microsecond per regeneration.
    thread_local std::mt19937_64 random(QRandomGenerator::system()->generate64());
    const quint64 high = random();
    const quint64 low = random();
    const auto byte = [low](int i) { return static_cast<uchar>(low >> (56 - 8 * i)); };
    return QUuid(static_cast<uint>(high >> 32), static_cast<ushort>(high >> 16),
                 static_cast<ushort>((high & 0x0FFF) | 0x4000), // version 4
                 static_cast<uchar>((byte(0) & 0x3F) | 0x80),   // RFC 4122 variant
                 byte(1), byte(2), byte(3), byte(4), byte(5), byte(6), byte(7));
}

QString uuidText(const QUuid &id) {
    return QString::fromLatin1(id.toByteArray(QUuid::WithoutBraces).toUpper());
}

std::optional<QUuid> parseUuid(QStringView text) {
    if (text.size() != 36)
        return std::nullopt;
    char bytes[16];
    int byteIndex = 0;
    for (qsizetype i = 0; i < 36;) {
        if (i == 8 || i == 13 || i == 18 || i == 23) {
            if (text[i] != u'-')
                return std::nullopt;
            ++i;
            continue;
        }
        const int high = text::hexDigitValue(text[i].unicode());
        const int low = text::hexDigitValue(text[i + 1].unicode());
        if (high < 0 || low < 0)
            return std::nullopt;
        bytes[byteIndex++] = static_cast<char>(high * 16 + low);
        i += 2;
    }
    return QUuid::fromRfc4122(QByteArrayView(bytes, 16));
}

} // namespace velino
