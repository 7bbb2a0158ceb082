#include "save_panel.h"

#include "text.h"

#include <QCollator>
#include <QDir>
#include <QEventLoop>
#include <QFileInfo>
#include <QStandardPaths>

#include <algorithm>

namespace velino::ui {

namespace {

bool hasHtmlSuffix(const QString &name) {
    return name.endsWith(QStringLiteral(".html"), Qt::CaseInsensitive) ||
           name.endsWith(QStringLiteral(".htm"), Qt::CaseInsensitive);
}

// A single path component: not blank, no separator, not "." or "..".
bool isPlainName(const QString &name) {
    const QString trimmed = text::trimmed(name);
    return !trimmed.isEmpty() && !trimmed.contains(u'/') && trimmed != QStringLiteral(".") &&
           trimmed != QStringLiteral("..");
}

} // namespace

SavePanel::SavePanel(QObject *parent) : QAbstractListModel(parent) {}

SavePanel::~SavePanel() {
    if (m_loop)
        m_loop->quit();
}

std::optional<QString> SavePanel::run(const QString &title, const QString &suggestedName) {
    if (isOpen())
        return std::nullopt;
    QEventLoop loop;
    m_title = title;
    m_result.reset();
    setErrorText(QString());
    setFileName(suggestedName);
    openFolder(startFolder());
    m_loop = &loop;
    Q_EMIT isOpenChanged();
    loop.exec();
    // Closed by save() or cancel(); still open when the loop ended for another reason
    // (the application quitting), which counts as a cancel.
    if (m_loop) {
        m_loop = nullptr;
        Q_EMIT isOpenChanged();
    }
    std::optional<QString> result = std::move(m_result);
    m_result.reset();
    if (result)
        m_lastFolder = QFileInfo(*result).absolutePath();
    return result;
}

bool SavePanel::isOpen() const {
    return !m_loop.isNull();
}

QString SavePanel::folderName() const {
    const QString name = QDir(m_folder).dirName();
    return name.isEmpty() ? m_folder : name;
}

bool SavePanel::canGoUp() const {
    return !m_folder.isEmpty() && !QDir(m_folder).isRoot();
}

void SavePanel::setFileName(const QString &name) {
    if (m_fileName == name)
        return;
    m_fileName = name;
    Q_EMIT fileNameChanged();
    Q_EMIT chosenPathChanged();
}

bool SavePanel::canSave() const {
    return isPlainName(m_fileName);
}

QString SavePanel::chosenPath() const {
    if (!canSave() || m_folder.isEmpty())
        return QString();
    QString name = text::trimmed(m_fileName);
    if (!hasHtmlSuffix(name))
        name += QStringLiteral(".html");
    return QDir(m_folder).filePath(name);
}

bool SavePanel::replacesFile() const {
    const QString path = chosenPath();
    return !path.isEmpty() && QFileInfo::exists(path);
}

QString SavePanel::startFolder() const {
    if (!m_lastFolder.isEmpty() && QFileInfo(m_lastFolder).isDir())
        return m_lastFolder;
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    if (!documents.isEmpty() && QFileInfo(documents).isDir())
        return documents;
    return QDir::homePath();
}

void SavePanel::openFolder(const QString &path) {
    const QFileInfo info(path);
    if (path.isEmpty() || !info.isDir())
        return;
    const QString folder = QDir::cleanPath(info.absoluteFilePath());
    setErrorText(QString());
    if (folder != m_folder) {
        m_folder = folder;
        Q_EMIT folderChanged();
        Q_EMIT chosenPathChanged();
    }
    refresh();
}

void SavePanel::goUp() {
    if (!canGoUp())
        return;
    QDir dir(m_folder);
    if (dir.cdUp())
        openFolder(dir.absolutePath());
}

void SavePanel::activate(int row) {
    if (row < 0 || row >= m_entries.size())
        return;
    const Entry entry = m_entries.at(row);
    if (entry.isFolder)
        openFolder(QDir(m_folder).filePath(entry.name));
    else
        setFileName(entry.name);
}

bool SavePanel::createFolder(const QString &name) {
    const QString trimmed = text::trimmed(name);
    if (!isPlainName(trimmed)) {
        setErrorText(QStringLiteral("Nom de dossier invalide."));
        return false;
    }
    QDir dir(m_folder);
    if (dir.exists(trimmed)) {
        setErrorText(QStringLiteral("Ce dossier existe deja."));
        return false;
    }
    if (m_folder.isEmpty() || !dir.mkdir(trimmed)) {
        setErrorText(QStringLiteral("Impossible de creer le dossier."));
        return false;
    }
    openFolder(dir.filePath(trimmed));
    return true;
}

void SavePanel::save() {
    if (!isOpen() || !canSave())
        return;
    finish(chosenPath());
}

void SavePanel::cancel() {
    if (isOpen())
        finish(std::nullopt);
}

void SavePanel::finish(std::optional<QString> result) {
    m_result = std::move(result);
    QPointer<QEventLoop> loop = m_loop;
    m_loop = nullptr;
    Q_EMIT isOpenChanged();
    if (loop)
        loop->quit();
}

int SavePanel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : int(m_entries.size());
}

QVariant SavePanel::data(const QModelIndex &index, int role) const {
    if (!index.isValid() || index.row() >= m_entries.size())
        return QVariant();
    const Entry &entry = m_entries.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
    case NameRole:
        return entry.name;
    case IsFolderRole:
        return entry.isFolder;
    case PathRole:
        return QDir(m_folder).filePath(entry.name);
    default:
        return QVariant();
    }
}

QHash<int, QByteArray> SavePanel::roleNames() const {
    return {{NameRole, "name"}, {IsFolderRole, "isFolder"}, {PathRole, "path"}};
}

void SavePanel::refresh() {
    QList<Entry> entries;
    const QDir dir(m_folder);
    const QFileInfoList infos =
        dir.entryInfoList(QDir::AllDirs | QDir::Files | QDir::NoDotAndDotDot | QDir::Readable);
    for (const QFileInfo &info : infos) {
        if (info.isDir())
            entries.append({info.fileName(), true});
        else if (hasHtmlSuffix(info.fileName()))
            entries.append({info.fileName(), false});
    }
    QCollator collator;
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    collator.setNumericMode(true);
    std::stable_sort(entries.begin(), entries.end(), [&collator](const Entry &a, const Entry &b) {
        if (a.isFolder != b.isFolder)
            return a.isFolder;
        return collator.compare(a.name, b.name) < 0;
    });
    beginResetModel();
    m_entries = std::move(entries);
    endResetModel();
    Q_EMIT chosenPathChanged();
}

void SavePanel::setErrorText(const QString &text) {
    if (m_errorText == text)
        return;
    m_errorText = text;
    Q_EMIT errorTextChanged();
}

} // namespace velino::ui
