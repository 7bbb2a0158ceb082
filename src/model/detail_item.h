#pragma once

#include "identifiers.h"

#include <QString>
#include <QUuid>

namespace velino {

// One label/value row of the information block; a fresh identity at each construction.
struct DetailItem {
    DetailItem(QString label, QString value)
        : id(randomUuid()), label(std::move(label)), value(std::move(value)) {}

    QUuid id;
    QString label;
    QString value;
};

// One quality check with the sentence to show; a fresh identity at each construction.
struct ChecklistItem {
    ChecklistItem(bool ok, QString text) : id(randomUuid()), ok(ok), text(std::move(text)) {}

    QUuid id;
    bool ok;
    QString text;
};

} // namespace velino
