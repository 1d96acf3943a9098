#include "Cli.h"

#include <algorithm>
#include <cstdio>

namespace rktool {

Io::Io() : out(stdout), err(stderr)
{
    out.setCodec("UTF-8");
    err.setCodec("UTF-8");
}

QString Args::takeVerb(const QString& verbs)
{
    if (m_args.isEmpty() || m_args.first().startsWith(QLatin1String("--")))
        throw UsageError{QStringLiteral("which verb? %1").arg(verbs)};
    return m_args.takeFirst();
}

bool Args::flag(const QString& name) { return m_args.removeAll(name) > 0; }

QString Args::option(const QString& name, const QString& fallback)
{
    const int at = m_args.indexOf(name);
    if (at < 0)
        return fallback;
    if (at + 1 >= m_args.size())
        throw UsageError{QStringLiteral("option %1 needs a value").arg(name)};
    const QString value = m_args.at(at + 1);
    m_args.erase(m_args.begin() + at, m_args.begin() + at + 2);
    return value;
}

QStringList Args::positionals() const
{
    QStringList result;
    bool optionsEnded = false;
    for (const QString& a : m_args) {
        if (!optionsEnded && a == QLatin1String("--")) {
            optionsEnded = true;
            continue;
        }
        // A lone "-" or a negative number is a value, not an option.
        if (!optionsEnded && a.startsWith(QLatin1String("--")))
            throw UsageError{QStringLiteral("unknown option %1").arg(a)};
        result << a;
    }
    return result;
}

QStringList Args::expect(int count, const QString& what) const
{
    const QStringList p = positionals();
    if (p.size() != count)
        throw UsageError{QStringLiteral("expected %1").arg(what)};
    return p;
}

double toNumber(const QString& text, const QString& what)
{
    bool ok = false;
    const double v = text.toDouble(&ok);
    if (!ok)
        throw UsageError{QStringLiteral("%1 is not a number: %2").arg(what, text)};
    return v;
}

int toInt(const QString& text, const QString& what)
{
    bool ok = false;
    const int v = text.toInt(&ok);
    if (!ok)
        throw UsageError{QStringLiteral("%1 is not a whole number: %2").arg(what, text)};
    return v;
}

std::vector<Area>& areas()
{
    static std::vector<Area> all;
    return all;
}

AreaRegistration::AreaRegistration(Area area)
{
    // Registration runs in static initialisation, whose order across files is unspecified.
    std::vector<Area>& all = areas();
    auto at = std::find_if(all.begin(), all.end(), [&](const Area& a) { return a.order > area.order; });
    all.insert(at, std::move(area));
}

void tourHeading(Io& io, const QString& title) { io.out << "\n== " << title << " ==\n"; }

} // namespace rktool
