#include "metadata/Xmp.h"

#include "metadata/MetaIo_p.h"

#include <QIODevice>

namespace rkBase {

namespace {
const QByteArray kHeaderStart("<?xpacket begin=\"");
const QByteArray kBom("\xef\xbb\xbf");
const QByteArray kHeaderId("\" id=\"W5M0MpCehiHzreSzNTczkc9d\"");
const QByteArray kTrailer("xpacket end=\"w\"?>");
} // namespace

Xmp::Xmp(QObject* parent) : Standard(parent) {}

bool Xmp::Init(QIODevice* device, qint64 offset)
{
    set_file(device);
    set_file_start_offset(offset);
    if (!device)
        return false;
    metaio::seekWithin(device, offset);
    // Bytes that are not a standard packet header are not an error: the packet is "present".
    if (metaio::readBounded(device, kHeaderStart.size()) != kHeaderStart)
        return true;
    if (metaio::readBounded(device, 3) != kBom)
        return true;
    if (metaio::readBounded(device, kHeaderId.size()) != kHeaderId)
        return true;
    if (device->atEnd())
        return false;

    // End of the header: "?" then ">"; any other byte after "?" is consumed with it. The
    // device's own buffer makes the one-byte reads cheap, and the end of the device ends both
    // searches.
    char c = 0;
    for (;;) {
        if (!device->getChar(&c))
            return false;
        if (c != '?')
            continue;
        if (!device->getChar(&c))
            return false;
        if (c == '>')
            break;
    }
    if (device->atEnd())
        return false;
    for (;;) {
        if (!device->getChar(&c))
            return false;
        if (c != '<')
            continue;
        if (!device->getChar(&c))
            return false;
        if (c != '?')
            continue;
        if (metaio::readBounded(device, kTrailer.size()) == kTrailer)
            return true;
    }
}

} // namespace rkBase
