#pragma once

#include "rkbaseqt_export.h"

#include <QString>
#include <QStringList>

namespace rkBase {

/// \brief Extracts a zip archive into a folder, never outside it.
///
/// An entry whose name is absolute, has a drive letter or climbs out with ".." (either
/// separator) makes extract() fail before anything of it is written; symbolic-link entries are
/// written as plain files holding the link text; nothing is written through a link on disk.
/// Names without the UTF-8 flag that are not valid UTF-8 are read as code page 437. Entries of
/// 4 GiB and more are read to the end of their stream. A cancelled or failed run keeps what was
/// written. One thread.
class RKBASEQT_EXPORT RKUnzip {
public:
    /// Progress: `percent` of all bytes done; returning false stops the work.
    using Callback = bool (*)(void* data, int percent);

    /// No archive open.
    RKUnzip();
    /// Copies the handle; only one copy may close it.
    RKUnzip(RKUnzip const& other);
    /// Copies the handle; only one copy may close it.
    RKUnzip& operator=(RKUnzip const& other);
    /// Closes the archive.
    virtual ~RKUnzip();

    /// Opens the archive at `path`, closing an open one first. On failure `error` is "Given file
    /// does not exist" or "Error opening zip archive. Probably not a zip archive or file has been
    /// corrupted.". An archive with no entries opens too.
    bool open(QString const& path, QString& error);
    /// Extracts every entry below `folder`, creating directories; true with nothing made for an
    /// empty archive. False on a refused name, a read or write failure, or a false from the
    /// callback (optional).
    bool extract(QString const& folder, Callback callback, void* data);
    /// Closes the archive.
    void close();
    /// The entry names in archive order (directories end in "/"); empty when none is open.
    QStringList entries();

protected:
    /// Whether `path` is an existing regular file.
    bool exist(QString const& path);
    /// Extracts the current entry; `done` counts the bytes written so far of `total`.
    bool extractFile(QString const& folder, Callback callback, void* data, qint64& done, qint64 total);
    /// Creates the directories of `target` (all of it when `isDirectory`, else up to its last
    /// separator). False on an empty path or when a part exists as something else.
    bool path(QString const& target, bool isDirectory);

private:
    bool inflateToEnd(int fd, Callback callback, void* data, qint64 done, qint64 total, qint64& written,
                      unsigned long expectedCrc);

    void* m_unzip = nullptr;
    bool m_empty = false; // an archive of no entries, which the zip library refuses to open
};

} // namespace rkBase
