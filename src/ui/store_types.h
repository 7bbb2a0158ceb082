#pragma once

#include "composer_store.h"
#include "mail_composer_data.h"

#include <QObject>
#include <QtQml/qqmlregistration.h>

// The composer store and its content record as QML sees them. Both come from velino_core,
// which knows nothing of QML: these declarations register them from the window's module.
namespace velino::ui {

// The window's state object; QML only reads it and calls its operations, a window
// controller creates it.
struct ComposerStoreForeign {
    Q_GADGET
    QML_FOREIGN(velino::ComposerStore)
    QML_NAMED_ELEMENT(ComposerStore)
    QML_UNCREATABLE("A ComposerStore belongs to its WindowController.")
};

// The content record, read field by field: store.data.subject.
struct MailComposerDataForeign {
    Q_GADGET
    QML_FOREIGN(velino::MailComposerData)
    QML_VALUE_TYPE(mailComposerData)
};

} // namespace velino::ui
