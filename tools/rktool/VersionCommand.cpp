#include "Cli.h"

#include "frame/rkProductInfo.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <sstream>

namespace rktool {
namespace {

int runVersion(Args& args, Io& io)
{
    const bool json = args.flag(QStringLiteral("--json"));
    args.expect(0, QStringLiteral("no arguments"));
    rkBase::rkProductInfo& info = rkBase::rkProductInfo::instance();
    if (json) {
        QJsonObject o;
        o[QStringLiteral("product")] = QString::fromStdString(info.product_name());
        o[QStringLiteral("version")] = QString::fromStdString(info.version_number());
        o[QStringLiteral("marketing_name")] = QString::fromStdString(info.marketing_name());
        o[QStringLiteral("build_date")] = QString::fromStdString(info.build_date());
        o[QStringLiteral("build_number")] = QString::fromStdString(info.build_number());
        io.out << QJsonDocument(o).toJson(QJsonDocument::Indented);
        return Success;
    }
    std::ostringstream banner;
    info.write_to_log(banner);
    io.out << QString::fromStdString(banner.str());
    return Success;
}

void tourProduct(Io& io)
{
    tourHeading(io, QStringLiteral("Product information"));
    const rkBase::rkProductInfo& info = rkBase::rkProductInfo::const_instance();
    io.out << "product " << QString::fromStdString(info.product_name()) << ", marketing name "
           << QString::fromStdString(info.marketing_name()) << "\n";
    for (const char* other : {"2016.2.2.20000", "2016.2.2.100", "2017.0.0.0", "2016.2.2"})
        io.out << "is " << other << " newer? "
               << (info.other_version_is_newer(QString::fromLatin1(other)) ? "yes" : "no") << "\n";
}

const AreaRegistration registration{
    Area{0, QStringLiteral("version"), QStringLiteral("print the product banner (name, version, build)"),
         QStringLiteral("Usage: rktool version [--json]\n\n"
                        "Prints the product banner that applications write to their log.\n"
                        "  --json   the same fields as a JSON object\n"),
         runVersion, tourProduct}};

} // namespace
} // namespace rktool
