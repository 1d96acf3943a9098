#include "metadata/File.h"

#include <QBuffer>
#include <QFile>

namespace rkBase {

File::File(const QString& path, QObject* parent) : QObject(parent)
{
    auto* file = new QFile(path, this);
    if (file->open(QIODevice::ReadOnly))
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
