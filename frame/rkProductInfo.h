#pragma once

#include "rkbaseqt_export.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <memory>
#include <ostream>
#include <string>

namespace rkBase {

template <class T> class TrkDestructor;

/// \brief Which product is running: names, version, build, and the application's identity.
///
/// Call one of the `init` forms once, early on the main thread; it also sets the organisation,
/// application name and version on QCoreApplication (static setters, so no application object
/// is needed yet). The singleton is ended in an ordered shutdown phase at process exit, never by
/// static destruction order. Not thread-safe: `marketing_name` writes a shared string.
class RKBASEQT_EXPORT rkProductInfo : public QObject {
    Q_OBJECT

public:
    /// The process's one instance, made at first use.
    static rkProductInfo& instance();
    /// The same instance, read-only.
    static const rkProductInfo& const_instance();

    /// Sets the organisation, product, release numbers and build date (text such as "May 13 2016").
    void init(const std::string& organisation, const std::string& product, unsigned int major, unsigned int minor,
              char micro, const std::string& buildDate);
    /// Initialises with organisation "RKE", the release numbers of this build and its build time.
    void init(const std::string& product);

    /// The organisation given to init.
    const std::string& organization_name() const { return m_organizationName; }
    /// The product given to init.
    const std::string& product_name() const { return m_productName; }
    /// The name to show; with a licence overlay, "<name> (<overlay>)". The returned reference is
    /// to one shared string that the next call rewrites.
    const std::string& marketing_name() const;
    /// "major.minor.micro", such as "2016.2.2".
    const std::string& version_number() const { return m_versionNumber; }
    /// The build date given to init.
    const std::string& build_date() const { return m_buildDate; }
    /// The build number of this library build.
    const std::string& build_number() const { return m_buildNumber; }
    /// The release year.
    unsigned int major_version() const { return m_majorVersion; }
    /// The minor release number.
    unsigned int minor_version() const { return m_minorVersion; }
    /// The micro value as a signed char widened to unsigned, as it was stored.
    unsigned int micro_version() const;

    /// True when `version` ("a.b.c.d") is a later release than this one. Text that cannot be
    /// read is never newer.
    bool other_version_is_newer(const QString& version) const;

    /// Starts a sibling executable from the application's directory, detached. False when the
    /// file is not there or cannot be started.
    bool start(const QString& executable, const QStringList& arguments);

    /// Writes the product banner, one flushed line at a time.
    void write_to_log(std::ostream& stream);

    /// Asks the application to show a help page: emits openHelp(page).
    void showHelp(const QString& page);

public slots:
    /// Asks the application to show a help page outside it: emits openHelpExternal(page).
    void onShowHelpExternal(const QString& page);

signals:
    /// A help page to show in the application.
    void openHelp(const QString& page);
    /// A help page to show in an outside browser.
    void openHelpExternal(const QString& page);

private:
    rkProductInfo();
    ~rkProductInfo() override;

    static std::unique_ptr<rkProductInfo>& get_instance();
    static std::unique_ptr<rkProductInfo>& instanceHolder();
    static void destroy_instance();
    friend class TrkDestructor<rkProductInfo>;
    friend struct std::default_delete<rkProductInfo>;

    std::string m_organizationName;
    std::string m_productName;
    std::string m_marketingName;
    std::string m_versionNumber;
    std::string m_buildDate;
    std::string m_buildNumber;
    unsigned int m_majorVersion = 0;
    unsigned int m_minorVersion = 0;
    char m_microVersion = 0;
};

} // namespace rkBase
