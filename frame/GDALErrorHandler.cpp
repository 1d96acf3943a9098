#include "GDALErrorHandler.h"

#include "core/rkDestructor.h"

#include <cpl_conv.h>
#include <gdal.h>
#include <ogr_api.h>

#include <atomic>
#include <mutex>

namespace {
// Set while a handler object exists. The callback outlives the object (GDAL keeps it installed),
// so it checks this before touching the lists.
std::atomic<bool> handlerAlive{false};

void CPL_STDCALL gdalCallback(CPLErr type, CPLErrorNum, const char* message)
{
    const QString text = QString::fromUtf8(message ? message : "");
    if (type == CE_Failure || type == CE_Fatal)
        // GDAL 3.6, PROJ and libtiff here are built with unwind tables, so this crosses their
        // frames to the caller of the GDAL function that failed.
        throw GDALException(text.toStdString());
    if (type == CE_Warning && handlerAlive.load())
        GDALErrorHandler::instance().addError(text, type);
}
} // namespace

GDALErrorHandler::GDALErrorHandler()
{
    // Every reference the library makes expects x = longitude/easting; this makes it the
    // default for references made anywhere else in the process as well.
    CPLSetConfigOption("OSR_DEFAULT_AXIS_MAPPING_STRATEGY", "TRADITIONAL_GIS_ORDER");
    GDALAllRegister();
    OGRRegisterAll();
    CPLPushErrorHandler(gdalCallback);
    handlerAlive.store(true);
}

GDALErrorHandler::~GDALErrorHandler() { handlerAlive.store(false); }

void GDALErrorHandler::addError(const QString& message, CPLErr type)
{
    if (type != CE_Warning)
        return;
    m_errors.append(message);
    m_errorTypes.append(type);
}

void GDALErrorHandler::reset()
{
    m_errors.clear();
    m_errorTypes.clear();
}

GDALErrorHandler*& GDALErrorHandler::holder()
{
    static GDALErrorHandler* object = nullptr;
    return object;
}

namespace {
// Coordinate and raster code reaches the handler from worker threads, possibly for the first
// time; creation and release are serialised so that exactly one handler is made.
std::mutex& instanceMutex()
{
    static std::mutex m;
    return m;
}
} // namespace

GDALErrorHandler* GDALErrorHandler::get_instance()
{
    std::lock_guard<std::mutex> lock(instanceMutex());
    GDALErrorHandler*& object = holder();
    if (!object) {
        object = new GDALErrorHandler;
        // Owned and deleted by the core library's shutdown registry.
        new rkBase::TrkDestructor<GDALErrorHandler>(rkBase::rkDestructionPhase(5));
    }
    return object;
}

void GDALErrorHandler::destroy_instance()
{
    std::lock_guard<std::mutex> lock(instanceMutex());
    GDALErrorHandler* object = holder();
    holder() = nullptr;
    delete object;
}

GDALErrorHandler& GDALErrorHandler::instance() { return *get_instance(); }
const GDALErrorHandler& GDALErrorHandler::const_instance() { return *get_instance(); }

// ---------------------------------------------------------------------------------------------

namespace {
const char* const factoryName = "GDALErrorHandlerFactory";
}

GDALErrorHandlerFactory::GDALErrorHandlerFactory(const std::string& name, bool makeDefault)
{
    if (!registry().emplace(name, this).second)
        throwDuplicateProduct(factoryName, name);
    registry_str().push_back(name);
    if (makeDefault && default_product() != name)
        default_product() = name;
}

GDALErrorHandlerFactory::~GDALErrorHandlerFactory() = default;

std::map<std::string, GDALErrorHandlerFactory*>& GDALErrorHandlerFactory::registry()
{
    static std::map<std::string, GDALErrorHandlerFactory*> map;
    return map;
}

std::vector<std::string>& GDALErrorHandlerFactory::registry_str()
{
    static std::vector<std::string> names;
    return names;
}

std::string& GDALErrorHandlerFactory::default_product()
{
    static std::string name;
    return name;
}

GDALErrorHandlerFactory* GDALErrorHandlerFactory::pick(const std::string& name)
{
    if (registry().empty())
        throwNoConcreteFactory();
    const auto it = registry().find(name);
    if (it == registry().end())
        throwUnknownProduct(factoryName, name);
    return it->second;
}

GDALErrorHandler* GDALErrorHandlerFactory::create_unmanaged()
{
    if (registry().empty())
        throwNoConcreteFactory();
    // Read once: the default chosen at the first creation holds for the whole process.
    static const std::string chosen = default_product();
    if (!chosen.empty()) {
        if (!registry().count(chosen))
            throwNoConcreteFactory();
        return pick(chosen)->make();
    }
    return pick(registry_str().front())->make();
}

GDALErrorHandler* GDALErrorHandlerFactory::create_unmanaged(const std::string& name) { return pick(name)->make(); }

boost::shared_ptr<GDALErrorHandler> GDALErrorHandlerFactory::create()
{
    // The destructor is protected; this factory, a friend, deletes on the owner's behalf.
    return boost::shared_ptr<GDALErrorHandler>(create_unmanaged(), [](GDALErrorHandler* h) { delete h; });
}

boost::shared_ptr<GDALErrorHandler> GDALErrorHandlerFactory::create(const std::string& name)
{
    return boost::shared_ptr<GDALErrorHandler>(create_unmanaged(name), [](GDALErrorHandler* h) { delete h; });
}

std::vector<std::string> GDALErrorHandlerFactory::products() { return registry_str(); }
std::vector<std::string>::const_iterator GDALErrorHandlerFactory::products_begin() { return registry_str().cbegin(); }
std::vector<std::string>::const_iterator GDALErrorHandlerFactory::products_end() { return registry_str().cend(); }
