// Coordinate system texts come from .prj files and project files: any bytes, read as WKT or a
// PROJ string, must give a kind and read-outs without an exception, a crash or a leak, and a
// text that is kept must read back the same.
#include "coordinates/RKCoordinateSystem.h"
#include "frame/GDALErrorHandler.h"

#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const bool ready = (GDALErrorHandler::instance(), true);
    (void)ready;
    const std::string text(reinterpret_cast<const char*>(data), size);
    rkBase::RKCoordinateSystem cs(text);
    const auto kind = cs.coord_system_type();
    if (kind < rkBase::RKCoordinateSystem::Undefined || kind > rkBase::RKCoordinateSystem::InvalidProjection)
        std::abort();
    cs.summary();
    cs.esri_wkt();
    cs.proj4();
    cs.projection_parameters();
    // Unvalidated text is kept as given.
    rkBase::RKCoordinateSystem raw;
    raw.wkt(text);
    if (raw.wkt() != text)
        std::abort();
    raw.coord_system_type();
    raw.projection_summary();
    return 0;
}
