#pragma once

#include "rkbase_export.h"

#include <exception>
#include <string>

/// \brief Exception raised when GDAL reports a failure.
///
/// Carries GDAL's message. `ExceptionThrown()` gives it back; `what()` gives the same text, so
/// code that catches `std::exception` sees it too.
class RKBASE_EXPORT GDALException : public std::exception {
public:
    /// An exception carrying GDAL's message text.
    explicit GDALException(const std::string& message);
    /// Copies the message.
    GDALException(const GDALException&) = default;
    /// Copies the message.
    GDALException& operator=(const GDALException&) = default;
    ~GDALException() override;

    /// GDAL's message.
    const std::string& ExceptionThrown() const { return m_message; }
    /// GDAL's message, valid while the exception lives.
    const char* what() const noexcept override { return m_message.c_str(); }

private:
    std::string m_message;
};
