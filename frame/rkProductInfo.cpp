#include "frame/rkProductInfo.h"

#include "core/rkDestructor.h"
#include "frame/BuildConstants_p.h"
#include "frame/LicenceOverlay.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QRegExp>

#include <cstdio>
#include <sstream>

namespace rkBase {

namespace {
// Products for which the licence is never asked: the viewer and the test harness.
bool licenceApplies(const std::string& product) { return product != "TeskViewer" && product != "TeskUnitTests"; }

QString executableSuffix()
{
#ifdef Q_OS_WIN
    return QStringLiteral(".exe");
#else
    return QString();
#endif
}

bool readUnsigned(const QString& text, unsigned int& out)
{
    bool ok = false;
    out = text.toUInt(&ok, 10);
    return ok;
}

// Compares one dotted component; 1 newer, -1 older, 0 equal, and -2 for unreadable text.
int comparePart(const QString& text, unsigned int own)
{
    unsigned int value = 0;
    if (!readUnsigned(text, value))
        return -2;
    return value > own ? 1 : (value < own ? -1 : 0);
}
} // namespace

std::unique_ptr<rkProductInfo>& rkProductInfo::instanceHolder()
{
    // Never destroyed: only the shutdown registry ends the object, whatever the order in which
    // static objects and exit handlers of the process run. Kept apart from get_instance so that
    // destroy_instance never builds an object just to drop it.
    static auto* holder = new std::unique_ptr<rkProductInfo>;
    return *holder;
}

rkProductInfo::rkProductInfo() = default;
rkProductInfo::~rkProductInfo() = default;

std::unique_ptr<rkProductInfo>& rkProductInfo::get_instance()
{
    std::unique_ptr<rkProductInfo>& holder = instanceHolder();
    if (!holder) {
        holder.reset(new rkProductInfo);
        // Owned and deleted by the core library's shutdown registry.
        new TrkDestructor<rkProductInfo>(rkDestructionPhase(5));
    }
    return holder;
}

void rkProductInfo::destroy_instance()
{
    std::unique_ptr<rkProductInfo>& holder = instanceHolder();
    rkProductInfo* object = holder.release();
    delete object;
}

rkProductInfo& rkProductInfo::instance() { return *get_instance(); }
const rkProductInfo& rkProductInfo::const_instance() { return *get_instance(); }

void rkProductInfo::init(const std::string& organisation, const std::string& product, unsigned int major,
                         unsigned int minor, char micro, const std::string& buildDate)
{
    m_organizationName = organisation;
    m_productName = product;
    m_majorVersion = major;
    m_minorVersion = minor;
    m_microVersion = micro;

    char version[64];
    std::snprintf(version, sizeof version, "%u.%u.%u", major, minor, micro_version());
    m_versionNumber = version;

    const QString label = QString::fromLatin1(build::sourceLabel);
    const QString productName = QString::fromStdString(product);
    if (label.startsWith(QLatin1String("rel"), Qt::CaseInsensitive))
        m_marketingName =
            QStringLiteral("%1%2.%3").arg(productName).arg(build::releaseYear).arg(build::releaseMinor).toStdString();
    else
        m_marketingName =
            QStringLiteral("%1%2").arg(productName, QString::fromLatin1(build::longVersion)).toStdString();

    m_buildDate = buildDate;
    m_buildNumber = build::buildNumber;

    QCoreApplication::setOrganizationName(QString::fromStdString(organisation));
    QCoreApplication::setOrganizationDomain(QString::fromLatin1(build::organisationDomain));
    // The major number is part of the name so that each release keeps its own settings.
    QCoreApplication::setApplicationName(productName + QString::number(major));
    QCoreApplication::setApplicationVersion(QString::fromStdString(m_versionNumber) + QLatin1Char('/') +
                                            QString::fromStdString(m_buildNumber));
}

void rkProductInfo::init(const std::string& product)
{
    std::ostringstream date;
    date << build::buildDate << " @ " << build::buildTime;
    init(build::defaultOrganisation, product, build::releaseYear, build::releaseMinor,
         static_cast<char>(build::releaseMicro), date.str());
}

const std::string& rkProductInfo::marketing_name() const
{
    static std::string shown;
    shown = m_marketingName;
    if (licenceApplies(m_productName)) {
        if (std::shared_ptr<LicenceOverlay> licence = LicenceOverlay::provider()) {
            const std::string overlay = licence->overlay();
            if (!overlay.empty())
                shown += " (" + overlay + ")";
        }
    }
    return shown;
}

unsigned int rkProductInfo::micro_version() const
{
    return static_cast<unsigned int>(static_cast<signed char>(m_microVersion));
}

bool rkProductInfo::other_version_is_newer(const QString& version) const
{
    const QStringList parts = version.split(QLatin1Char('.'), Qt::KeepEmptyParts);
    if (parts.size() != 4)
        return false;

    const unsigned int own[3] = {m_majorVersion, m_minorVersion, micro_version()};
    for (int i = 0; i < 3; ++i) {
        const int order = comparePart(parts.at(i), own[i]);
        if (order != 0)
            return order == 1;
    }

    unsigned int ownBuild = 0;
    if (!readUnsigned(QString::fromStdString(m_buildNumber), ownBuild))
        return false;

    QRegExp pattern(QStringLiteral("[0-9]+\\.[0-9]+\\.[0-9]+\\.([0-9]+)"));
    if (pattern.indexIn(version) < 0)
        return false;
    bool ok = false;
    const qulonglong build = pattern.cap(1).trimmed().toULongLong(&ok);
    // Build 0 means "no build given"; so does a number too long to read.
    if (!ok || build == 0)
        return false;
    return build > ownBuild;
}

bool rkProductInfo::start(const QString& executable, const QStringList& arguments)
{
    const QString path = QCoreApplication::applicationDirPath() + QLatin1Char('/') + executable + executableSuffix();
    if (!QFile::exists(path))
        return false;
    return QProcess::startDetached(path, arguments);
}

void rkProductInfo::write_to_log(std::ostream& stream)
{
    const std::string stars(42, '*');
    const std::string frame = "**" + std::string(38, ' ') + "**";
    stream << std::endl;
    stream << stars << std::endl;
    stream << frame << std::endl;
    stream << "**         Product Information          **" << std::endl;
    stream << frame << std::endl;
    stream << stars << std::endl;
    stream << "Product name           : " << m_productName << std::endl;
    stream << "Version number         : " << m_versionNumber << std::endl;
    stream << "Marketing name         : " << marketing_name() << std::endl;
    stream << "Build date             : " << m_buildDate << std::endl;
    stream << "Build number           : " << m_buildNumber << std::endl;
}

void rkProductInfo::showHelp(const QString& page) { emit openHelp(page); }

void rkProductInfo::onShowHelpExternal(const QString& page) { emit openHelpExternal(page); }

} // namespace rkBase
