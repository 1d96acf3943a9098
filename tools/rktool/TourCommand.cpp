#include "Cli.h"

#include "frame/rkProductInfo.h"

namespace rktool {
namespace {

int runTour(Args& args, Io& io)
{
    args.expect(0, QStringLiteral("no arguments"));
    const rkBase::rkProductInfo& info = rkBase::rkProductInfo::const_instance();
    io.out << "A short walk through rkBaseQt " << QString::fromStdString(info.version_number()) << " (build "
           << QString::fromStdString(info.build_number()) << ").\n";
    for (const Area& a : areas())
        if (a.tour)
            a.tour(io);
    io.out << "\nEnd of the tour. 'rktool --help' lists every area.\n";
    return Success;
}

const AreaRegistration registration{
    Area{1000, QStringLiteral("tour"), QStringLiteral("a short demonstration of every area on bundled samples"),
         QStringLiteral("Usage: rktool tour\n\nWalks through every area of the library and prints what it did.\n"),
         runTour, nullptr}};

} // namespace
} // namespace rktool
