#include "archive/RKUnzip.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTextCodec>

#include <minizip/unzip.h>
#include <zlib.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <vector>

namespace rkBase {

namespace {

constexpr int kBlock = 16384;
constexpr int kNameBuffer = 512;
const char kNoFile[] = "Given file does not exist";
const char kNotZip[] = "Error opening zip archive. Probably not a zip archive or file has been corrupted.";

unzFile handle(void* p) { return static_cast<unzFile>(p); }

// Code page 437, the upper half: what zip tools have always taken names without the UTF-8 flag
// to be.
QString fromCp437(const QByteArray& bytes)
{
    static const char16_t upper[128] = {
        0x00C7, 0x00FC, 0x00E9, 0x00E2, 0x00E4, 0x00E0, 0x00E5, 0x00E7, 0x00EA, 0x00EB, 0x00E8, 0x00EF, 0x00EE, 0x00EC, 0x00C4, 0x00C5,
        0x00C9, 0x00E6, 0x00C6, 0x00F4, 0x00F6, 0x00F2, 0x00FB, 0x00F9, 0x00FF, 0x00D6, 0x00DC, 0x00A2, 0x00A3, 0x00A5, 0x20A7, 0x0192,
        0x00E1, 0x00ED, 0x00F3, 0x00FA, 0x00F1, 0x00D1, 0x00AA, 0x00BA, 0x00BF, 0x2310, 0x00AC, 0x00BD, 0x00BC, 0x00A1, 0x00AB, 0x00BB,
        0x2591, 0x2592, 0x2593, 0x2502, 0x2524, 0x2561, 0x2562, 0x2556, 0x2555, 0x2563, 0x2551, 0x2557, 0x255D, 0x255C, 0x255B, 0x2510,
        0x2514, 0x2534, 0x252C, 0x251C, 0x2500, 0x253C, 0x255E, 0x255F, 0x255A, 0x2554, 0x2569, 0x2566, 0x2560, 0x2550, 0x256C, 0x2567,
        0x2568, 0x2564, 0x2565, 0x2559, 0x2558, 0x2552, 0x2553, 0x256B, 0x256A, 0x2518, 0x250C, 0x2588, 0x2584, 0x258C, 0x2590, 0x2580,
        0x03B1, 0x00DF, 0x0393, 0x03C0, 0x03A3, 0x03C3, 0x00B5, 0x03C4, 0x03A6, 0x0398, 0x03A9, 0x03B4, 0x221E, 0x03C6, 0x03B5, 0x2229,
        0x2261, 0x00B1, 0x2265, 0x2264, 0x2320, 0x2321, 0x00F7, 0x2248, 0x00B0, 0x2219, 0x00B7, 0x221A, 0x207F, 0x00B2, 0x25A0, 0x00A0};
    QString out;
    out.reserve(bytes.size());
    for (char c : bytes) {
        const unsigned char u = static_cast<unsigned char>(c);
        out += u < 128 ? QChar(u) : QChar(upper[u - 128]);
    }
    return out;
}

QString entryName(const QByteArray& raw, unsigned long flags)
{
    if (flags & 0x800)
        return QString::fromUtf8(raw);
    QTextCodec::ConverterState state;
    const QString utf8 = QTextCodec::codecForName("UTF-8")->toUnicode(raw.constData(), raw.size(), &state);
    return state.invalidChars == 0 ? utf8 : fromCp437(raw);
}

// A name that stays inside the target: relative, no drive, no ".." part, no NUL.
bool safeName(const QString& name)
{
    if (name.isEmpty() || name.contains(QChar(0)))
        return false;
    const QString slashed = QString(name).replace(QLatin1Char('\\'), QLatin1Char('/'));
    if (slashed.startsWith(QLatin1Char('/')))
        return false;
    if (slashed.size() >= 2 && slashed[1] == QLatin1Char(':') && slashed[0].isLetter())
        return false;
    for (const QString& part : slashed.split(QLatin1Char('/')))
        if (part == QLatin1String(".."))
            return false;
    return true;
}

// An empty archive is its end record alone, at offset 0, which the zip library will not open.
bool isEmptyArchive(const QString& path)
{
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly) || f.size() < 22 || f.size() > 22 + 65535)
        return false;
    const QByteArray head = f.read(22);
    return head.startsWith(QByteArray("PK\x05\x06", 4)) && head.mid(8, 4) == QByteArray(4, '\0');
}

} // namespace

RKUnzip::RKUnzip() = default;
RKUnzip::RKUnzip(RKUnzip const& other) = default;
RKUnzip& RKUnzip::operator=(RKUnzip const& other) = default;
RKUnzip::~RKUnzip() { close(); }

void RKUnzip::close()
{
    if (m_unzip)
        unzClose(handle(m_unzip));
    m_unzip = nullptr;
    m_empty = false;
}

bool RKUnzip::exist(QString const& path)
{
    const QFileInfo info(path);
    return info.exists() && info.isFile();
}

bool RKUnzip::open(QString const& path, QString& error)
{
    close();
    if (!exist(path)) {
        error = QString::fromLatin1(kNoFile);
        return false;
    }
    zlib_filefunc64_def functions;
    fill_fopen64_filefunc(&functions);
    const QByteArray name = QFile::encodeName(path);
    m_unzip = unzOpen2_64(name.constData(), &functions);
    if (!m_unzip) {
        if (isEmptyArchive(path)) {
            m_empty = true;
            return true;
        }
        error = QString::fromLatin1(kNotZip);
        return false;
    }
    return true;
}

QStringList RKUnzip::entries()
{
    QStringList names;
    if (!m_unzip)
        return names;
    for (int r = unzGoToFirstFile(handle(m_unzip)); r == UNZ_OK; r = unzGoToNextFile(handle(m_unzip))) {
        unz_file_info64 info{};
        char raw[kNameBuffer] = {0};
        if (unzGetCurrentFileInfo64(handle(m_unzip), &info, raw, sizeof raw - 1, nullptr, 0, nullptr, 0) != UNZ_OK)
            break;
        names << entryName(QByteArray(raw, int(qMin<uLong>(info.size_filename, sizeof raw - 1))), info.flag);
    }
    return names;
}

bool RKUnzip::path(QString const& target, bool isDirectory)
{
    QString p = QDir::cleanPath(target);
    if (p.isEmpty())
        return false;
    if (!isDirectory) {
        const int slash = p.lastIndexOf(QLatin1Char('/'));
        if (slash <= 0)
            return true;
        p = p.left(slash);
    }
    // Each part must be a real directory or be made one: a link on disk is never walked through.
    const QStringList parts = p.split(QLatin1Char('/'));
    QString walked = p.startsWith(QLatin1Char('/')) ? QStringLiteral("/") : QString();
    for (const QString& part : parts) {
        if (part.isEmpty())
            continue;
        walked += (walked.isEmpty() || walked.endsWith(QLatin1Char('/')) ? QString() : QStringLiteral("/")) + part;
        struct stat st {};
        const QByteArray native = QFile::encodeName(walked);
        if (::lstat(native.constData(), &st) == 0) {
            if (!S_ISDIR(st.st_mode))
                return false;
            continue;
        }
        if (::mkdir(native.constData(), 0755) != 0)
            return false;
    }
    return true;
}

bool RKUnzip::extract(QString const& folder, Callback callback, void* data)
{
    QString base = folder;
    if (base.size() > 1 && (base.endsWith(QLatin1Char('/')) || base.endsWith(QLatin1Char('\\'))))
        base.chop(1);
    if (m_empty)
        return true;
    if (!m_unzip)
        return false;
    unz_global_info64 global{};
    if (unzGetGlobalInfo64(handle(m_unzip), &global) != UNZ_OK)
        return false;
    // First pass: the total, and every name checked before anything is written.
    qint64 total = 0;
    for (int r = unzGoToFirstFile(handle(m_unzip)); r == UNZ_OK; r = unzGoToNextFile(handle(m_unzip))) {
        unz_file_info64 info{};
        char raw[kNameBuffer] = {0};
        if (unzGetCurrentFileInfo64(handle(m_unzip), &info, raw, sizeof raw - 1, nullptr, 0, nullptr, 0) != UNZ_OK)
            return false;
        if (info.size_filename >= sizeof raw - 1 || !safeName(entryName(QByteArray(raw, int(info.size_filename)), info.flag)))
            return false;
        total += qint64(qMin<ZPOS64_T>(info.uncompressed_size, ZPOS64_T(1) << 50));
    }
    if (total == 0)
        total = 1;
    if (!path(base, true))
        return false;
    qint64 done = 0;
    for (int r = unzGoToFirstFile(handle(m_unzip)); r == UNZ_OK; r = unzGoToNextFile(handle(m_unzip)))
        if (!extractFile(base, callback, data, done, total))
            return false;
    return true;
}

bool RKUnzip::extractFile(QString const& folder, Callback callback, void* data, qint64& done, qint64 total)
{
    unz_file_info64 info{};
    char raw[kNameBuffer] = {0};
    if (unzGetCurrentFileInfo64(handle(m_unzip), &info, raw, sizeof raw - 1, nullptr, 0, nullptr, 0) != UNZ_OK)
        return false;
    QString name = entryName(QByteArray(raw, int(qMin<uLong>(info.size_filename, sizeof raw - 1))), info.flag);
    if (!safeName(name))
        return false;
    name.replace(QLatin1Char('\\'), QLatin1Char('/'));
    const bool isDirectory = name.endsWith(QLatin1Char('/'));
    if (isDirectory)
        name.chop(1);
    const QString target = folder + QLatin1Char('/') + name;
    if (!path(target, isDirectory))
        return false;
    if (isDirectory || name.isEmpty())
        return true;
    // The packaged zip library reads the size of an entry of 4 GiB or more written by other
    // tools as 0xFFFFFFFF, stops there and then fails on the checksum. Such an entry is read raw
    // and inflated here to the end of its stream, and the checksum is checked here.
    const bool sizeUnknown = info.uncompressed_size == 0xFFFFFFFFull && info.compression_method == Z_DEFLATED;
    int method = 0, level = 0;
    if ((sizeUnknown ? unzOpenCurrentFile2(handle(m_unzip), &method, &level, 1) : unzOpenCurrentFile(handle(m_unzip))) != UNZ_OK)
        return false;
    // No following a link that stands where the file goes (O_NOFOLLOW), and a symbolic-link
    // entry becomes a plain file holding its text.
    const QByteArray native = QFile::encodeName(target);
    const int fd = ::open(native.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, 0644);
    if (fd < 0) {
        unzCloseCurrentFile(handle(m_unzip));
        return false;
    }
    std::vector<char> buffer(kBlock);
    bool ok = true;
    qint64 written = 0;
    if (sizeUnknown) {
        ok = inflateToEnd(fd, callback, data, done, total, written, info.crc);
        ::close(fd);
        done += written;
        unzCloseCurrentFile(handle(m_unzip)); // raw reading: the library checks nothing
        return ok;
    }
    for (;;) {
        const int n = unzReadCurrentFile(handle(m_unzip), buffer.data(), kBlock);
        if (n < 0) {
            ok = false;
            break;
        }
        if (n == 0)
            break;
        if (::write(fd, buffer.data(), size_t(n)) != n) {
            ok = false;
            break;
        }
        written += n;
        if (callback && !callback(data, int(float((done + written) * 100.0 / double(total))))) {
            ok = false;
            break;
        }
    }
    ::close(fd);
    done += written;
    const int closed = unzCloseCurrentFile(handle(m_unzip));
    return ok && closed == UNZ_OK;
}

bool RKUnzip::inflateToEnd(int fd, Callback callback, void* data, qint64 done, qint64 total, qint64& written,
                           unsigned long expectedCrc)
{
    z_stream stream{};
    if (inflateInit2(&stream, -MAX_WBITS) != Z_OK)
        return false;
    std::vector<unsigned char> in(kBlock), out(kBlock);
    uLong crc = crc32(0L, Z_NULL, 0);
    bool ok = true, ended = false;
    while (ok && !ended) {
        const int n = unzReadCurrentFile(handle(m_unzip), in.data(), kBlock);
        if (n < 0) {
            ok = false;
            break;
        }
        if (n == 0)
            break; // the compressed bytes ran out before the stream's end: damaged
        stream.next_in = in.data();
        stream.avail_in = uInt(n);
        while (stream.avail_in > 0 && ok && !ended) {
            stream.next_out = out.data();
            stream.avail_out = uInt(out.size());
            const int r = inflate(&stream, Z_NO_FLUSH);
            if (r != Z_OK && r != Z_STREAM_END) {
                ok = false;
                break;
            }
            const size_t produced = out.size() - stream.avail_out;
            if (produced && ::write(fd, out.data(), produced) != ssize_t(produced)) {
                ok = false;
                break;
            }
            crc = crc32(crc, out.data(), uInt(produced));
            written += qint64(produced);
            ended = r == Z_STREAM_END;
        }
        if (ok && callback && !callback(data, int(float((done + written) * 100.0 / double(total)))))
            ok = false;
    }
    inflateEnd(&stream);
    return ok && ended && crc == expectedCrc;
}

} // namespace rkBase
