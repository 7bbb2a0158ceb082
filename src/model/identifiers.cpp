#include "identifiers.h"

#include "text.h"

#include <QRandomGenerator>

#include <array>
#include <cstdint>

namespace velino {
namespace {

// xoshiro256**: a few nanoseconds per draw, enough for row identities rebuilt on every edit.
class FastRandom {
public:
    FastRandom() {
        QRandomGenerator::system()->fillRange(state_.data(), state_.size());
        if ((state_[0] | state_[1] | state_[2] | state_[3]) == 0)
            state_[0] = 0x9E3779B97F4A7C15ULL;
    }

    std::uint64_t next() {
        const std::uint64_t result = rotl(state_[1] * 5, 7) * 9;
        const std::uint64_t t = state_[1] << 17;
        state_[2] ^= state_[0];
        state_[3] ^= state_[1];
        state_[1] ^= state_[2];
        state_[0] ^= state_[3];
        state_[2] ^= t;
        state_[3] = rotl(state_[3], 45);
        return result;
    }

private:
    static std::uint64_t rotl(std::uint64_t x, int k) { return (x << k) | (x >> (64 - k)); }
    std::array<std::uint64_t, 4> state_{};
};

} // namespace

QUuid randomUuid() {
    thread_local FastRandom random;
    const std::uint64_t high = random.next();
    const std::uint64_t low = random.next();
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
