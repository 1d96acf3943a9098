#pragma once

#include "core/GDALException.h"
#include "core/rkAbstractFactory.h"
#include "rkbase_export.h"

#include <QList>
#include <QStringList>
#include <boost/shared_ptr.hpp>
#include <cpl_error.h>

#include <map>
#include <string>
#include <vector>

namespace rkBase {
template <class T> class TrkDestructor;
}

/// \brief Process-wide receiver of GDAL's error reports.
///
/// Its first use registers GDAL's raster and OGR's vector drivers, sets the traditional GIS axis
/// order (x longitude, y latitude) as the default and installs the callback. A `CE_Failure` or
/// `CE_Fatal` report is thrown as `GDALException` from inside the GDAL call that raised it, so
/// every caller of GDAL must be ready to catch it. Warnings are collected here; debug notes are
/// dropped. The lists are not locked: code that reads them uses GDAL under its own mutex.
class RKBASE_EXPORT GDALErrorHandler {
public:
    /// The handler, built (and GDAL registered) at first use; ended at shutdown phase 5.
    static GDALErrorHandler& instance();
    /// As `instance()`.
    static const GDALErrorHandler& const_instance();

    /// True when at least one warning has been collected since the last `reset()`.
    bool errors_reported() const { return !m_errors.isEmpty(); }
    /// The collected warning messages, oldest first.
    QStringList errors() const { return m_errors; }
    /// The class of each collected message, parallel to `errors()`; always `CE_Warning`.
    QList<CPLErr> errorTypes() const { return m_errorTypes; }
    /// Records a message as the callback would: only `CE_Warning` is kept, any other class is
    /// ignored.
    void addError(const QString& message, CPLErr type);
    /// Forgets every collected message.
    void reset();

protected:
    /// Registers the drivers and installs the callback; sets the alive flag.
    GDALErrorHandler();
    /// Clears the alive flag. The callback stays installed and from then on only throws.
    virtual ~GDALErrorHandler();

private:
    GDALErrorHandler(const GDALErrorHandler&) = delete;
    GDALErrorHandler& operator=(const GDALErrorHandler&) = delete;

    static GDALErrorHandler*& holder();
    static GDALErrorHandler* get_instance();
    static void destroy_instance();
    friend class rkBase::TrkDestructor<GDALErrorHandler>;
    friend class GDALErrorHandlerFactory;

    QStringList m_errors;
    QList<CPLErr> m_errorTypes;
};

/// \brief String-keyed abstract factory of `GDALErrorHandler` products.
///
/// The library registers no concrete factory; an application derives one, overrides
/// `make()`, and creates a static instance of it. The misuse errors are `std::runtime_error`.
class RKBASE_EXPORT GDALErrorHandlerFactory : public rkBase::rkAbstractFactory {
public:
    ~GDALErrorHandlerFactory() override;

    /// A handler from the default product, or from the first registered one when no default
    /// was named. Throws when nothing is registered or the default is unknown.
    static boost::shared_ptr<GDALErrorHandler> create();
    /// A handler from the product `name`. Throws when it is not registered.
    static boost::shared_ptr<GDALErrorHandler> create(const std::string& name);
    /// As `create()`; the caller owns and deletes the result.
    static GDALErrorHandler* create_unmanaged();
    /// As `create(name)`; the caller owns and deletes the result.
    static GDALErrorHandler* create_unmanaged(const std::string& name);

    /// The product names in order of registration.
    static std::vector<std::string> products();
    /// Start of the product names in order of registration.
    static std::vector<std::string>::const_iterator products_begin();
    /// End of the product names.
    static std::vector<std::string>::const_iterator products_end();

protected:
    /// Registers this factory under `name`, as default when `makeDefault`. Throws when the
    /// name is taken. The factory must outlive every `create` call.
    GDALErrorHandlerFactory(const std::string& name, bool makeDefault);

    /// Makes one handler; the caller owns it.
    virtual GDALErrorHandler* make() const = 0;

    /// Product name to factory.
    static std::map<std::string, GDALErrorHandlerFactory*>& registry();
    /// Product names in order of registration.
    static std::vector<std::string>& registry_str();
    /// The default product name, empty when none was named.
    static std::string& default_product();

    /// Lets a derived factory build a handler through the protected constructor.
    template <class T> static T* construct() { return new T; }

private:
    static GDALErrorHandlerFactory* pick(const std::string& name);
};
