#pragma once

#include "rkbaseqt_export.h"
#include "units/DisplayUnitManager.h"

#include <QObject>
#include <QRegExp>
#include <QString>
#include <QStringList>

#include <string>
#include <vector>

namespace rkBase {

/// \brief One physical quantity: its unit table, conversion, printing and parsing.
///
/// Values are stored in the model unit and shown in the category's display unit with the
/// category's precision; both live in the shared DisplayUnitManager, so every manager and editor
/// of a category follows one choice. A unit is its zero-based key; -1 means "none given" and
/// takes the default told at each operation. Bad keys pass values through, give empty texts or
/// are ignored; nothing throws.
///
/// A concrete class supplies `initUnitTables()` (append factors, names and tags with
/// `addUnit`) and ends its constructor with `setup(precision)`. Held through
/// `boost::shared_ptr<UnitManager>`. GUI thread only.
class RKBASEQT_EXPORT UnitManager : public QObject {
    Q_OBJECT

public:
    /// The manager's own name, such as "length" (fixed by the concrete class).
    const std::string& key() const { return m_key; }
    /// The category it registered under in the display table; empty when not registered.
    const std::string& category() const { return m_category; }
    /// The shared display table, or null.
    DisplayUnitManager* displayUnitManager() const { return m_displayUnitManager; }
    /// Whether printed values carry the unit tag.
    bool showsUnitTag() const { return m_showTag; }
    /// Whether values print in the compound form (such as degrees, minutes, seconds).
    bool getMSP() const { return m_msp; }
    /// Turns the compound form on or off; only managers with a full chain support it.
    void setMSP(bool on) { m_msp = on; }

    /// The key of the unit values are stored in.
    int modelUnit() const { return m_modelUnit; }
    /// The category's display unit; 0 when the category is not registered or there is no table.
    int displayUnit() const;
    /// The custom precision if one was set, else the table's, else 2.
    int precision() const;
    /// How many units a user may choose from; may be fewer than the table holds.
    virtual int numUnits() const;
    /// The chain of compound printing for `unit`: major, second and last unit keys, -1 for none.
    virtual void getMSPSystem(int unit, int& major, int& second, int& last) const;

    /// The unit's name, such as "metre"; empty for a bad key.
    QString getUnitName(int unit) const;
    /// The unit's tag, such as "m"; empty for a bad key.
    QString getUnitTag(int unit) const;
    /// The display unit's name.
    QString getDisplayUnitName() const { return getUnitName(displayUnit()); }
    /// The display unit's tag.
    QString getDisplayUnitTag() const { return getUnitTag(displayUnit()); }
    /// The model unit's name.
    QString getModelUnitName() const { return getUnitName(m_modelUnit); }
    /// First unit whose name or tag (name tested first) equals `text` exactly; -1 if none.
    int getUnitKey(const QString& text) const;
    /// The parsing pattern: number, optional exponent, blanks, optional tag.
    QString regexString() const { return m_regexString; }
    /// The category's name for people, from the display table; the argument is not read.
    QString getCategoryDisplayName(const std::string& ignored = std::string());
    /// The category whose name for people is `name`; empty if none.
    std::string getCategoryFromDisplayName(const QString& name);

    /// Makes `unit` the category's display unit in the shared table (every manager of the
    /// category follows); keys outside the offered units are ignored.
    void displayUnit(int unit);
    /// The same, by unit name; an unknown name is ignored.
    void displayUnit(const QString& name);
    /// Sets the category's precision (decimals) in the shared table.
    void precision(int value);
    /// Overrides the table's precision for this manager alone, for good.
    void setCustomPrecision(int value);
    /// Stores values in `unit` from now on (the factors are rebased); emits `unitChanged` when it
    /// changes. Keys outside the offered units are ignored.
    void modelUnit(int unit);
    /// Unlike the int form, emits `unitChanged` even when the unit stays the same.
    void modelUnit(const QString& name);
    /// Registers under `category` with this manager's default display unit and precision.
    void setCategory(const std::string& category);
    /// Sets the category's name for people; ignored when not registered.
    void setCategoryDisplayName(const QString& name);
    /// Applies one stored scheme to the category.
    void setDisplayUnit(const DisplayUnitId& id);
    /// Stores `unit` and `precision` for the category in scheme `id`.
    void setUnitList(const DisplayUnitId& id, int unit, int precision);

    /// `value * factor[from] / factor[to]`; the value unchanged for equal or bad keys.
    virtual double convert(double value, int from, int to) const;
    /// From the model unit to the display unit.
    double convertModelToDisplay(double value) const;
    /// From the model unit to `unit`.
    double convertModelToDisplay(double value, int unit) const;
    /// From the display unit to the model unit.
    double convertDisplayToModel(double value) const;

    /// Model value in the display unit, padded to the precision's width, with the tag.
    virtual QString printValue(double modelValue) const;
    /// Writes `value`, converted from `from` to `to` (-1: model and display unit), into `out` with
    /// the precision's decimals, padded to `fieldWidth` (negative: on the right), and the tag when
    /// `to` is a valid key. Uses the compound form when it is on. Returns `out`.
    virtual QString& printValue(QString& out, double value, int from, int to, int fieldWidth) const;
    /// As printValue, with the absolute value of the converted number and the tag always added.
    virtual QString& printPositiveValue(QString& out, double value, int from, int to, int fieldWidth) const;
    /// Model value as its absolute value in the display unit, with the tag.
    virtual QString printPositiveValue(double modelValue) const;
    /// Compound form (such as degrees, minutes, seconds) along the chain of `getMSPSystem`.
    virtual QString& printValueMSP(QString& out, double value, int from, int to, int fieldWidth) const;
    /// The number alone: no conversion, no tag.
    QString& printNumber(QString& out, double value) const;

    /// Reads "<number> [tag]" (text after it is ignored), taking the display unit when no tag is
    /// given, and converts into `to` (-1: the model unit). False without a table or on a bad
    /// number or an unknown tag.
    virtual bool parseValue(const QString& text, double& value, int to = -1, int* unitOut = nullptr) const;
    /// Reads the number without converting. Only text whose number starts within its first two
    /// characters is accepted; any tag is ignored.
    bool parseNumber(const QString& text, double& value, int* unitOut = nullptr) const;
    /// Reads "<number> [unit]" strictly, as a command line or a form that must not guess wants:
    /// blanks around the text, the number first (sign +, - or U+2212, digits, one point, an
    /// exponent with e or E), then nothing or one unit of this category as findUnit() knows it.
    /// No unit means the display unit. Converts into `to` (-1: the model unit). False, with
    /// `value` untouched, for anything else: text before the number, an unknown unit, NaN,
    /// infinities or a number too large for a double. `used` receives how many characters were
    /// understood (the whole text on success), so a caller can point at the rest. Unlike
    /// parseValue, no display table is needed.
    bool parseValueStrict(const QString& text, double& value, int to = -1, int* unitOut = nullptr,
                          int* used = nullptr) const;
    /// The unit a person means by `text`: a name or tag exactly; else the same ignoring case
    /// where that picks one unit only; a plural name ("metres", "feet"); or an ASCII spelling
    /// ("um" for the micro sign, "m2" or "m^2" for squared, "degC" for the degree sign, Greek mu
    /// for the micro sign). -1 when none, or when several units would fit.
    int findUnit(const QString& text) const;
    /// Up to `count` unit names or tags closest to `text` by edit distance, nearest first, for
    /// "did you mean" messages; empty when none is close.
    QStringList nearestUnits(const QString& text, int count = 3) const;
    /// Reads the whole of `text` as a finite number in the strict form of parseValueStrict.
    static bool readNumber(const QString& text, double& value);

    /// Applies the compiled pattern to `text`: the position of the match (-1 for none), the
    /// number's text and the tag's text.
    int matchPattern(const QString& text, QString* number, QString* tag) const;
    /// The same, as views into `text` (no copies).
    int matchPattern(const QString& text, QStringRef& number, QStringRef& tag) const;

    /// "\u00B0", for tags.
    static QString degreeString();
    /// "\u00B2", for tags.
    static QString squaredString();
    /// "\u00B3", for tags.
    static QString cubedString();
    /// "\u00B7", for tags.
    static QString middleDotString();
    /// Superscript minus one, for tags.
    static QString invertedString();
    /// Superscript minus two, for tags.
    static QString invertedSquaredString();

signals:
    /// The model unit was set (to `unit`).
    void unitChanged(int unit);

protected:
    /// For concrete classes: `unitCount` units offered, stored in `modelUnit`, shown in
    /// `defaultDisplayUnit` unless the category says otherwise; registers at setup().
    UnitManager(const std::string& key, const std::string& category, int unitCount, int modelUnit,
                int defaultDisplayUnit, DisplayUnitManager* manager);
    /// Managers are held through shared pointers; never deleted directly.
    ~UnitManager() override;

    /// Ends every concrete constructor: fills the tables, builds the pattern and registers the
    /// category. Must run exactly once.
    void setup(int precision);
    /// Fills the unit table with addUnit(), in key order.
    virtual void initUnitTables() = 0;
    /// Appends one row; for `initUnitTables`.
    void addUnit(double factor, const QString& name, const QString& tag);

    /// 0.3048, the international foot.
    static const double m_metresPerFoot;
    /// 1609.344, the international mile.
    static const double m_metresPerMile;

private slots:
    void onDisplayUnitManagerNeedCleaning();

private:
    bool validKey(int unit) const { return unit >= 0 && unit < static_cast<int>(m_factors.size()); }
    QString formatNumber(double value, int fieldWidth, int decimals) const;
    bool quickMatch(const QString& text, QStringRef& number, QStringRef& tag) const;
    int unitKey(const QStringRef& text) const;
    void rebaseFactors(int unit);
    QString& printPlain(QString& out, double value, int from, int to, int fieldWidth, bool positive) const;
    QString& printWithoutMSP(QString& out, double value, int from, int to, int fieldWidth) const;
    bool wholeRatio(int larger, int smaller) const;
    QString& printChainCarrying(QString& out, double value, int from, int to, int major, int second, int last,
                                int fieldWidth, int decimals) const;

    DisplayUnitManager* m_displayUnitManager;
    QString m_regexString;
    mutable QRegExp m_regex;   // compiled once by setup; matching keeps state, hence mutable
    QStringList m_literalTags; // tags without pattern characters, for quickMatch
    std::vector<double> m_factors;
    QStringList m_unitNames;
    QStringList m_unitTags;
    std::string m_category;
    int m_modelUnit;
    int m_unitCount;
    bool m_showTag = true;
    mutable bool m_msp = false; // cleared for the length of a plain print inside a compound one
    int m_customPrecision = 2;
    bool m_hasCustomPrecision = false;
    int m_defaultDisplayUnit;
    std::string m_key;
};

} // namespace rkBase
