#pragma once

#include <QAbstractListModel>
#include <QList>
#include <QPointer>
#include <QString>
#include <QtQml/qqmlregistration.h>

#include <optional>

class QEventLoop;

namespace velino::ui {

// The window's save dialog for HTML files: a folder listing (sub-folders, then the HTML
// files already there), a file name pre-filled by the caller, and folder creation. run()
// blocks, like a modal panel, until the view calls save() or cancel(); the view shows the
// panel while isOpen is true.
class SavePanel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("A SavePanel belongs to its window's dialogs.")
    Q_PROPERTY(bool isOpen READ isOpen NOTIFY isOpenChanged)
    Q_PROPERTY(QString title READ title NOTIFY isOpenChanged)
    Q_PROPERTY(QString folder READ folder NOTIFY folderChanged)
    Q_PROPERTY(QString folderName READ folderName NOTIFY folderChanged)
    Q_PROPERTY(bool canGoUp READ canGoUp NOTIFY folderChanged)
    Q_PROPERTY(QString fileName READ fileName WRITE setFileName NOTIFY fileNameChanged)
    Q_PROPERTY(bool canSave READ canSave NOTIFY fileNameChanged)
    Q_PROPERTY(QString chosenPath READ chosenPath NOTIFY chosenPathChanged)
    Q_PROPERTY(bool replacesFile READ replacesFile NOTIFY chosenPathChanged)
    Q_PROPERTY(QString errorText READ errorText NOTIFY errorTextChanged)

public:
    enum Role { NameRole = Qt::UserRole + 1, IsFolderRole, PathRole };
    Q_ENUM(Role)

    explicit SavePanel(QObject *parent = nullptr);
    ~SavePanel() override;

    // Shows the panel in startFolder() with the name field holding suggestedName and waits
    // for the user's answer: the chosen file's path, or nothing when cancelled. A second
    // request while the panel is open is refused (nothing).
    std::optional<QString> run(const QString &title, const QString &suggestedName);

    // True from run() until save() or cancel() answers it.
    bool isOpen() const;
    QString title() const { return m_title; }
    QString folder() const { return m_folder; }
    QString folderName() const;
    bool canGoUp() const;
    QString fileName() const { return m_fileName; }
    void setFileName(const QString &name);
    // A name is accepted when it is not blank and names no folder ("/", "." or "..").
    bool canSave() const;
    // The file the panel would save to: the folder and the name, with ".html" added unless
    // the name already ends in ".html" or ".htm" (any case). Empty while !canSave.
    QString chosenPath() const;
    bool replacesFile() const;
    QString errorText() const { return m_errorText; }

    // The folder the panel opens in: the last folder saved to, else Documents when it
    // exists, else the home folder.
    QString startFolder() const;

    Q_INVOKABLE void openFolder(const QString &path);
    Q_INVOKABLE void goUp();
    // A folder row opens that folder; a file row takes its name.
    Q_INVOKABLE void activate(int row);
    // Creates the folder `name` in the current folder and opens it; false (with errorText)
    // when the name is unusable, the folder exists or cannot be made.
    Q_INVOKABLE bool createFolder(const QString &name);
    Q_INVOKABLE void save();
    Q_INVOKABLE void cancel();

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void isOpenChanged();
    void folderChanged();
    void fileNameChanged();
    void chosenPathChanged();
    void errorTextChanged();

private:
    struct Entry {
        QString name;
        bool isFolder = false;
    };

    void refresh();
    void setErrorText(const QString &text);
    void finish(std::optional<QString> result);

    QString m_title;
    QString m_folder;
    QString m_fileName;
    QString m_lastFolder;
    QString m_errorText;
    QList<Entry> m_entries;
    QPointer<QEventLoop> m_loop;
    std::optional<QString> m_result;
};

} // namespace velino::ui
