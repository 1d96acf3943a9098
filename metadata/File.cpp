#include "metadata/File.h"

#include <QBuffer>
#include <QFile>

#include <cstring>
#include <vector>

#include <unistd.h>

namespace rkBase {

namespace {

// A read-only file for the readers' access pattern: many small reads at scattered offsets, many
// seeks and many questions for the size. QFile answers each size() with a stat call and each
// seek with an lseek that also drops its buffer, which cost a camera JPEG some 300 system calls.
// This device knows its size from opening, seeks without a system call, and reads through one
// block of its own with pread.
class BlockFile : public QIODevice {
public:
    explicit BlockFile(const QString& path, QObject* parent)
        : QIODevice(parent)
        , m_file(path)
    {
    }

    bool openReadOnly()
    {
        if (!m_file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
            return false;
        m_size = m_file.size();
        m_fd = m_file.handle();
        return m_fd >= 0 && QIODevice::open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    }

    bool isSequential() const override { return false; }
    qint64 size() const override { return m_size; }
    void close() override
    {
        QIODevice::close();
        m_file.close();
    }

protected:
    qint64 readData(char* data, qint64 maxSize) override
    {
        qint64 pos = this->pos();
        qint64 done = 0;
        while (done < maxSize && pos < m_size) {
            if (pos < m_blockStart || pos >= m_blockStart + m_blockLength) {
                if (maxSize - done >= kFirstBlock) { // all but small reads go straight to the caller
                    const ssize_t n = ::pread(m_fd, data + done, size_t(maxSize - done), pos);
                    if (n <= 0)
                        break;
                    done += n;
                    pos += n;
                    continue;
                }
                // Small blocks while the readers hop between headers, growing while one scans on.
                const bool onward = pos == m_blockStart + m_blockLength;
                m_nextBlock = onward ? qMin(m_nextBlock * 2, kBlock) : kFirstBlock;
                m_block.resize(size_t(m_nextBlock));
                const ssize_t n = ::pread(m_fd, m_block.data(), m_block.size(), pos);
                m_blockLength = n > 0 ? n : 0;
                m_blockStart = pos;
                if (n <= 0)
                    break;
            }
            const qint64 offset = pos - m_blockStart;
            const qint64 n = qMin<qint64>(maxSize - done, m_blockLength - offset);
            std::memcpy(data + done, m_block.data() + offset, size_t(n));
            done += n;
            pos += n;
        }
        return done == 0 && maxSize > 0 && pos < m_size ? -1 : done;
    }
    qint64 writeData(const char*, qint64) override { return -1; }

private:
    static constexpr qint64 kBlock = 64 * 1024;
    static constexpr qint64 kFirstBlock = 4 * 1024;
    QFile m_file;
    int m_fd = -1;
    qint64 m_size = 0;
    std::vector<char> m_block;
    qint64 m_blockStart = 0;
    qint64 m_blockLength = 0;
    qint64 m_nextBlock = kFirstBlock / 2;
};

} // namespace

File::File(const QString& path, QObject* parent) : QObject(parent)
{
    auto* file = new BlockFile(path, this);
    if (file->openReadOnly())
        m_file = file;
    else
        delete file;
}

File::File(QByteArray* data, QObject* parent) : QObject(parent)
{
    if (!data)
        return;
    auto* buffer = new QBuffer(data, this);
    if (buffer->open(QIODevice::ReadOnly))
        m_file = buffer;
    else
        delete buffer;
}

File::File(QIODevice* device, QObject* parent) : QObject(parent), m_file(device) {}

File::~File() = default;

void File::InitExif() {}
void File::InitIptc() {}
void File::InitXmp() {}
bool File::IsValid() { return m_file != nullptr; }

void File::startUp()
{
    if (!IsValid())
        return;
    InitExif();
    InitIptc();
    InitXmp();
}

} // namespace rkBase
