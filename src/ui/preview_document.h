#pragma once

#include "composer_store.h"

#include <QObject>
#include <QPointer>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace velino::ui {

// The document the live preview shows: the store's generated HTML, except when a field
// holds a very long text (see long_text.h). Then the e-mail is rendered again from a copy
// of the record whose long texts are cut to their first characters, so that a web page of
// several megabytes is not laid out again after every keystroke in another field. The copy,
// the export, the draft and the sync always carry the whole text; `isShortened` lets the
// view say so.
class PreviewDocument : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(velino::ComposerStore *store READ store WRITE setStore NOTIFY storeChanged)
    Q_PROPERTY(QString html READ html NOTIFY htmlChanged)
    Q_PROPERTY(bool isShortened READ isShortened NOTIFY htmlChanged)

public:
    using QObject::QObject;

    ComposerStore *store() const { return m_store; }
    void setStore(ComposerStore *store);
    QString html() const { return m_html; }
    bool isShortened() const { return m_shortened; }

    // The record with every long text cut to its beginning and "[...]"; nothing when no
    // field is long.
    static std::optional<MailComposerData> shortenedForPreview(const MailComposerData &data);

Q_SIGNALS:
    void storeChanged();
    void htmlChanged();

private:
    void update();

    QPointer<ComposerStore> m_store;
    QMetaObject::Connection m_connection;
    QString m_html;
    bool m_shortened = false;
};

} // namespace velino::ui
