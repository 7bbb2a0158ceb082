#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>

namespace velino {

// Creates the folder (and its parents) when missing, and makes it enterable by its owner
// only (0700), also when it already existed with wider permissions. False when it cannot
// be made so.
bool makePrivateFolder(const QString &folder);

// Writes bytes to path as a file only its owner can read and write (0600), whatever the
// umask, through a temporary file flushed to disk and renamed over the old one, then asks
// for the folder to be flushed as well. Some file systems refuse to flush a folder; the
// file is whole all the same, so only the file's own write decides the result.
bool writePrivateFile(const QString &path, const QByteArray &bytes);

// Removes the plain files of folder last modified before the given time; subfolders and
// their content are left alone.
void removeFilesModifiedBefore(const QString &folder, const QDateTime &limit);

} // namespace velino
