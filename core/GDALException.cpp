#include "core/GDALException.h"

GDALException::GDALException(const std::string& message) : m_message(message) {}

// Out of line so that the vtable and type info live in one library, which lets an exception
// thrown in one shared object be caught by type in another.
GDALException::~GDALException() = default;
