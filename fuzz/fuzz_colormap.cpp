// Colour map files come from users and other programs: the stated cpt reader, the GMT reader
// and the cmap reader must read any bytes without crashing, hanging or allocating without bound,
// and what they read must be usable.
#include "colour/RKColormap.h"

#include <QBuffer>

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), int(size));
    QVector<unsigned int> table;
    for (int reader = 0; reader < 3; ++reader) {
        QBuffer buffer;
        buffer.setData(bytes);
        buffer.open(QIODevice::ReadOnly | QIODevice::Text);
        rkBase::RKColormap map;
        map.fill_spectrum_color_list(0.0, 1.0, 2, false);
        rkBase::RKColormap::GmtColours extra;
        if (reader == 0)
            map.load(buffer, reader == 0 && size % 2);
        else if (reader == 1)
            map.loadGmt(buffer, &extra);
        else
            map.loadCMapFile(buffer);
        if (map.size() > 100000)
            std::abort(); // a few bytes may not make an unbounded table
        map.value_to_color(0.5);
        map.getColorTable(table, 256);
        QBuffer out;
        out.open(QIODevice::WriteOnly);
        map.save(out);
    }
    return 0;
}
