#pragma once
// Shared plumbing of rktool: areas, argument handling, output and exit codes.

#include <QString>
#include <QStringList>
#include <QTextStream>

#include <functional>
#include <vector>

namespace rktool {

enum ExitCode { Success = 0, Failed = 1, BadUsage = 2 };

/// Output streams of one run; tests of the tool read them through the process.
struct Io {
    QTextStream out;
    QTextStream err;
    Io();
};

/// Thrown by argument helpers on bad usage; main turns it into exit code 2.
struct UsageError {
    QString message;
};

/// Thrown by an area when an operation fails; main turns it into exit code 1.
struct Failure {
    QString message;
};

/// Walks the arguments of one verb: options (--name value, --flag) and positionals.
class Args {
public:
    explicit Args(QStringList args) : m_args(std::move(args)) {}
    /// Takes the verb, which must come first; a usage error listing `verbs` otherwise.
    QString takeVerb(const QString& verbs);
    bool flag(const QString& name);
    /// The value after `--name`, or `fallback` when the option is absent.
    QString option(const QString& name, const QString& fallback = QString());
    bool has(const QString& name) const { return m_args.contains(name); }
    /// Remaining positionals after options were taken; anything left that starts with "--" is
    /// an unknown option.
    QStringList positionals() const;
    /// Exactly `count` positionals, or a usage error naming `what`.
    QStringList expect(int count, const QString& what) const;

private:
    QStringList m_args;
};

/// Reads a double in the C locale; a usage error otherwise.
double toNumber(const QString& text, const QString& what);
/// Reads an int; a usage error otherwise.
int toInt(const QString& text, const QString& what);

/// One area of the tool ("units", "version", ...).
struct Area {
    int order; ///< place in `rktool --help` and in the tour
    QString name;
    QString summary;
    /// Full help of the area, printed for `rktool <area> --help`.
    QString help;
    std::function<int(Args&, Io&)> run;
    /// Section of `rktool tour`; empty when the area has nothing to show.
    std::function<void(Io&)> tour;
};

/// Every area, in the order of `rktool --help` and of the tour.
std::vector<Area>& areas();
/// Registers an area at static initialisation; one per Command file.
struct AreaRegistration {
    explicit AreaRegistration(Area area);
};

/// A heading line of the tour.
void tourHeading(Io& io, const QString& title);

} // namespace rktool
