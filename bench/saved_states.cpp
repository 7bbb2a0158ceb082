#include "saved_states.h"

#include "identifiers.h"
#include "qt_state_storage.h"
#include "saved_payload.h"

#include <QDir>

namespace velino::bench {

namespace {

constexpr qsizetype kFourMegabytes = 4 * 1000 * 1000;

SavedPayload bodyOf(QString body) {
    SavedPayload payload;
    payload.data = MailComposerData::defaultRecord();
    payload.data.mailBody = std::move(body);
    return payload;
}

} // namespace

// Words and blanks up to `size` characters; with `lineLength` > 0, a line break ends every
// line of that many characters.
QString longText(qsizetype size, qsizetype lineLength) {
    static const QString words = QStringLiteral("ecran batterie clavier reparation devis ");
    QString text;
    text.reserve(size);
    qsizetype column = 0;
    qsizetype next = 0;
    while (text.size() < size) {
        if (lineLength > 0 && column == lineLength - 1) {
            text += QLatin1Char('\n');
            column = 0;
            continue;
        }
        text += words[next++ % words.size()];
        ++column;
    }
    return text;
}

SavedPayload libraryOf1000Presets() {
    SavedPayload payload;
    payload.data = MailComposerData::defaultRecord();
    for (int i = 0; i < 1000; ++i) {
        CustomMailPreset preset;
        preset.id = randomUuid();
        preset.name = QStringLiteral("Preset client %1").arg(i);
        preset.sourcePreset = kAllPresetKinds[i % 4];
        preset.data = MailComposerData::defaultRecord();
        preset.data.applyPreset(preset.sourcePreset);
        preset.data.recipientName = QStringLiteral("Client %1").arg(i);
        preset.createdAt = Instant{788918400.0 + i};
        preset.updatedAt = Instant{788918400.0 + (i * 7919) % 1000};
        payload.customPresets.append(preset);
    }
    return payload;
}

QStringList savedStateNames() {
    return {QStringLiteral("empty"), QStringLiteral("presets-1000"),
            QStringLiteral("body-4mb-line"), QStringLiteral("body-4mb-lines")};
}

bool writeSavedState(const QString &name, const QString &configHome, const QString &dataHome) {
    SavedPayload payload;
    if (name == QStringLiteral("empty"))
        return true;
    if (name == QStringLiteral("presets-1000"))
        payload = libraryOf1000Presets();
    else if (name == QStringLiteral("body-4mb-line"))
        payload = bodyOf(longText(kFourMegabytes, 0));
    else if (name == QStringLiteral("body-4mb-lines"))
        payload = bodyOf(longText(kFourMegabytes, kFourMegabytes / 150000));
    else
        return false;
    QtStateStorage storage(StateFiles::inFolders(configHome + QStringLiteral("/Korvel"),
                                                 dataHome + QStringLiteral("/Korvel/Velino")));
    return storage.writeDocument(payload.toJson());
}

} // namespace velino::bench
