#pragma once

#include <QByteArray>
#include <QString>

#include <cstdio>
#include <cstdlib>

// An invariant of the code under test: when it does not hold, the input is a finding.
#define FUZZ_CHECK(condition, what)                                                                \
    do {                                                                                           \
        if (!(condition)) {                                                                        \
            std::fprintf(stderr, "invariant broken: %s (%s:%d)\n", what, __FILE__, __LINE__);      \
            std::abort();                                                                          \
        }                                                                                          \
    } while (false)

inline QByteArray fuzzBytes(const uint8_t *data, size_t size) {
    return QByteArray(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
}

// Every fuzz target's entry point.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);
