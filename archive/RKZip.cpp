#include "archive/RKZip.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <minizip/zip.h>

#include <vector>

namespace rkBase {

namespace {
constexpr int kBlock = 16384;
constexpr unsigned long kDirectoryAttributes = 0x40000010ul;
constexpr unsigned long kUtf8NamesFlag = 0x800; // general purpose bit 11
} // namespace

RKZip::RKZip() = default;
RKZip::RKZip(RKZip const& other) = default;
RKZip& RKZip::operator=(RKZip const& other) = default;
RKZip::~RKZip() { close(); }

bool RKZip::create(QString const& path)
{
    close();
    zlib_filefunc64_def functions;
    fill_fopen64_filefunc(&functions);
    const QByteArray name = QFile::encodeName(path);
    m_zip = zipOpen2_64(name.constData(), APPEND_STATUS_CREATE, nullptr, &functions);
    return m_zip != nullptr;
}

void RKZip::close()
{
    if (m_zip)
        zipClose(static_cast<zipFile>(m_zip), nullptr);
    m_zip = nullptr;
}

bool RKZip::dotCheck(QString const& name) { return name == QLatin1String(".") || name == QLatin1String(".."); }

bool RKZip::fileTime(QString const& path, tm_zip_s* time, unsigned long* dosDate)
{
    const QFileInfo info(path);
    if (!info.exists())
        return false;
    const QDateTime t = info.lastModified(); // local time, as zip tools write it
    time->tm_sec = uInt(t.time().second());
    time->tm_min = uInt(t.time().minute());
    time->tm_hour = uInt(t.time().hour());
    time->tm_mday = uInt(t.date().day());
    time->tm_mon = uInt(t.date().month() - 1);
    time->tm_year = uInt(t.date().year());
    if (dosDate)
        *dosDate = 0; // the date is taken from the fields above
    return true;
}

bool RKZip::hasZipSuffix(QString const& name)
{
    const int dot = name.lastIndexOf(QLatin1Char('.'));
    if (dot < 0)
        return false;
    static const QStringList stored{".z", ".zip", ".zoo", ".arc", ".lzh", ".arj", ".gz", ".tgz", ".png", ".jpg", ".gif"};
    return stored.contains(name.mid(dot).toLower());
}

bool RKZip::isLargeFile(QString const& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) && f.size() >= qint64(0xFFFFFFFFll);
}

void RKZip::formatDirectoryPath(QString& path)
{
    path = QDir::toNativeSeparators(path);
    if (path.size() > 1 && (path.endsWith(QLatin1Char('/')) || path.endsWith(QLatin1Char('\\'))))
        path.chop(1);
}

bool RKZip::addFolder(QString const& folder, Callback callback, void* data)
{
    if (!m_zip)
        return false;
    QString base = folder;
    formatDirectoryPath(base);
    const QFileInfo root(base);
    if (!root.isDir())
        return false;
    QStringList files, folders;
    qint64 total = 0;
    QStringList work{base};
    while (!work.isEmpty()) {
        const QString dir = work.takeFirst();
        const QFileInfoList entries =
            QDir(dir).entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
        for (const QFileInfo& entry : entries) {
            if (dotCheck(entry.fileName()))
                continue;
            const QString relative = entry.absoluteFilePath().mid(QFileInfo(base).absoluteFilePath().size() + 1);
            if (entry.isDir()) {
                // A link to a directory may lead back up the tree; it is not followed.
                if (entry.isSymLink())
                    continue;
                folders << relative;
                work << entry.absoluteFilePath();
            } else if (entry.isFile()) {
                files << relative;
                total += entry.size();
            }
        }
    }
    if (!processFolders(base, folders))
        return false;
    return processFiles(base, files, callback, data, total);
}

bool RKZip::processFolders(QString const& base, QStringList const& folders)
{
    for (const QString& folder : folders) {
        zip_fileinfo info{};
        fileTime(base + QLatin1Char('/') + folder, &info.tmz_date, &info.dosDate);
        info.external_fa = kDirectoryAttributes;
        const QByteArray name = (QString(folder).replace(QLatin1Char('\\'), QLatin1Char('/')) + QLatin1Char('/')).toUtf8();
        if (zipOpenNewFileInZip4_64(static_cast<zipFile>(m_zip), name.constData(), &info, nullptr, 0, nullptr, 0, nullptr,
                                    0, 0, 0, -MAX_WBITS, DEF_MEM_LEVEL, Z_DEFAULT_STRATEGY, nullptr, 0, 0,
                                    kUtf8NamesFlag, 0) != ZIP_OK)
            return false;
        if (zipCloseFileInZip(static_cast<zipFile>(m_zip)) != ZIP_OK)
            return false;
    }
    return true;
}

bool RKZip::processFiles(QString const& base, QStringList const& files, Callback callback, void* data, qint64 total)
{
    std::vector<char> buffer(kBlock);
    qint64 before = 0;
    bool failed = false;
    for (const QString& file : files) {
        if (failed)
            break;
        const QString full = base + QLatin1Char('/') + file;
        zip_fileinfo info{};
        fileTime(full, &info.tmz_date, &info.dosDate);
        const QByteArray name = QString(file).replace(QLatin1Char('\\'), QLatin1Char('/')).toUtf8();
        const bool stored = hasZipSuffix(file);
        QFile source(full);
        const bool large = isLargeFile(full);
        if (zipOpenNewFileInZip4_64(static_cast<zipFile>(m_zip), name.constData(), &info, nullptr, 0, nullptr, 0, nullptr,
                                    stored ? 0 : Z_DEFLATED, stored ? 0 : 4, 0, -MAX_WBITS, DEF_MEM_LEVEL,
                                    Z_DEFAULT_STRATEGY, nullptr, 0, 0, kUtf8NamesFlag, large ? 1 : 0) != ZIP_OK)
            return false;
        if (!source.open(QIODevice::ReadOnly)) {
            zipCloseFileInZip(static_cast<zipFile>(m_zip));
            return false;
        }
        const qint64 size = source.size();
        qint64 done = 0;
        while (done < size) {
            const qint64 n = source.read(buffer.data(), kBlock);
            if (n <= 0) {
                failed = true;
                break;
            }
            if (zipWriteInFileInZip(static_cast<zipFile>(m_zip), buffer.data(), unsigned(n)) != ZIP_OK)
                failed = true;
            done += n;
            if (callback && !callback(data, int(float((before + done) * 100.0 / double(total)))))
                failed = true;
            if (failed)
                break;
        }
        before += size;
        if (!failed && zipCloseFileInZip(static_cast<zipFile>(m_zip)) != ZIP_OK)
            failed = true;
    }
    return !failed;
}

} // namespace rkBase
