#pragma once

#include "rkbaseqt_export.h"

#include <QString>
#include <QStringList>

struct tm_zip_s;

namespace rkBase {

/// \brief Writes a folder tree into a zip archive.
///
/// Entries are named relative to the folder with "/" separators, in UTF-8 with the UTF-8 flag.
/// Folders come first (entries ending in "/"), then files; files of the compressed kinds (.png,
/// .jpg, .gz, .zip, ...) are stored, the others deflated at level 4; a file of 4 GiB or more is
/// written with Zip64. A cancelled or failed archive stays on disk as far as it got. One thread.
class RKBASEQT_EXPORT RKZip {
public:
    /// Progress: `percent` of all bytes done; returning false stops the work.
    using Callback = bool (*)(void* data, int percent);

    /// No archive open.
    RKZip();
    /// Copies the handle; only one copy may close it.
    RKZip(RKZip const& other);
    /// Copies the handle; only one copy may close it.
    RKZip& operator=(RKZip const& other);
    /// Closes the archive.
    virtual ~RKZip();

    /// Creates (or replaces) the archive at `path`, closing an open one first. False when the
    /// file cannot be created.
    bool create(QString const& path);
    /// Adds everything below `folder` (not the folder's own name). False without an open
    /// archive, when `folder` is not a directory, on a read or write failure, or when the
    /// callback (optional) returns false.
    bool addFolder(QString const& folder, Callback callback, void* data);
    /// Finishes the archive.
    void close();

protected:
    /// True for "." and "..".
    bool dotCheck(QString const& name);
    /// The last-write time of `path` in the entry's date fields; false when it does not exist.
    bool fileTime(QString const& path, tm_zip_s* time, unsigned long* dosDate);
    /// Whether the name's suffix is a compressed kind that is stored as it is.
    bool hasZipSuffix(QString const& name);
    /// Whether the file is 0xFFFFFFFF bytes or larger (written with Zip64).
    bool isLargeFile(QString const& path);
    /// Adds the files (paths relative to `base`); `total` bytes for the percentages.
    bool processFiles(QString const& base, QStringList const& files, Callback callback, void* data, qint64 total);
    /// Adds the folder entries.
    bool processFolders(QString const& base, QStringList const& folders);
    /// Native separators, one trailing separator dropped.
    void formatDirectoryPath(QString& path);

private:
    void* m_zip = nullptr;
};

} // namespace rkBase
