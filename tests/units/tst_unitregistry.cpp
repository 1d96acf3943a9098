// The unit registry: its categories and schemes, property slots, the deduction of categories
// from names, the signals of each setter, and how properties follow the display table.
#include "matrix/MatrixData.h"
#include "units/UnitRegistry.h"

#include <QSignalSpy>
#include <QtTest>

#include <climits>

#include <algorithm>
#include <memory>

using namespace rkBase;
using R = UnitRegistry;

Q_DECLARE_METATYPE(std::string)

namespace {

// A registry that knows one more quantity, as an application's subclass would.
class ExtendedRegistry : public UnitRegistry {
public:
    void addCategory(const std::string& name, const boost::shared_ptr<UnitManager>& manager)
    {
        m_categories[name] = manager;
    }
    void protect(const std::string& property) { m_defaultProperties.insert(property); }
};

int insertReal(UnitRegistry& r, const std::string& name, const std::string& category = std::string(),
               int precision = -1, int unitKey = -1)
{
    return r.insert_property(name, R::REAL_SYSTEM_TYPE, 0, QColor(), category, precision, unitKey).first->second;
}

// Collects (name, index) of one of the three property signals.
struct PropertySpy {
    QList<QPair<std::string, int>> calls;
    PropertySpy(UnitRegistry& r, void (UnitRegistry::*signal)(const std::string&, int))
    {
        QObject::connect(&r, signal, [this](const std::string& n, int i) { calls.append({n, i}); });
    }
};

} // namespace

class TestUnitRegistry : public QObject {
    Q_OBJECT

private slots:
    void categoriesAndSchemes_data();
    void categoriesAndSchemes();
    void deduceCategory_data();
    void deduceCategory();
    void insertChoices();
    void slotReuseOnlyByIndex();
    void refusesHostileSlotsAndUnits_data();
    void refusesHostileSlotsAndUnits();
    void eraseAndRename();
    void settersSignalOnlyOnChange();
    void propertiesFollowTheirCategory();
    void clones();
    void visibilityAndEditability();
    void constraints();
    void categoriesCanBeErasedOnlyWhenNotDefault();
    void valuesByProperty();
    void systemTypesAndAxes();
};

void TestUnitRegistry::categoriesAndSchemes_data()
{
    QTest::addColumn<QString>("category");
    QTest::addColumn<QString>("displayName");
    QTest::addColumn<QString>("quantity");
    QTest::addColumn<QList<int>>("schemes"); // unit, precision of schemes 0, 1, 2

    // Written from the catalogue's description, apart from the implementation's table.
    auto row = [](const char* c, const char* d, const char* q, QList<int> s) {
        QTest::newRow(c) << QString::fromLatin1(c) << QString::fromLatin1(d) << QString::fromLatin1(q) << s;
    };
    row("xy", "XY", "Length", {0, 1, 2, 1, 0, 1});
    row("dimension", "Length", "Small Length", {1, 1, 6, 1, 1, 1});
    row("elevation", "Elevation", "Length", {0, 1, 2, 1, 2, 1});
    row("time", "Time", "Time", {0, 2, 0, 2, 0, 2});
    row("age", "Geological Time", "Age", {0, 1, 0, 1, 0, 1});
    row("zdimension", "Depth Measure", "Length", {0, 1, 2, 1, 2, 1});
    row("orientation", "Angle", "Angle", {0, 2, 0, 2, 0, 2});
    row("area", "Area", "Area", {0, 0, 2, 0, 2, 0});
    row("volume", "Volume", "Volume", {0, 0, 1, 0, 1, 0});
    row("physical size", "Physical Size", "Small Length", {4, 2, 7, 2, 7, 2});
    row("temperature", "Temperature", "Temperature", {0, 1, 1, 1, 1, 1});
    row("pressure", "Pressure", "Pressure", {1, 1, 5, 1, 5, 1});
    row("velocity", "Velocity", "Velocity", {0, 0, 1, 0, 1, 0});
    row("density", "Density", "Density", {0, 0, 0, 0, 0, 0});
    row("thermal conductivity", "Thermal Conductivity", "Thermal Conductivity", {0, 2, 0, 2, 0, 2});
    row("thermal diffusivity", "Thermal Diffusivity", "Thermal Diffusivity", {0, 7, 0, 7, 0, 7});
    row("heat capacity", "Heat Capacity", "Specific Heat Capacity", {0, 3, 0, 3, 0, 3});
    row("fraction", "Fraction", "Fraction", {0, 4, 0, 4, 0, 4});
    row("permeability", "Permeability", "Permeability", {0, 4, 0, 4, 0, 4});
    row("p32", "p32", "p32", {0, 4, 0, 4, 0, 4});
    row("pervolume", "Per Volume", "Per Volume", {0, 4, 2, 4, 2, 4});
    row("percent", "Percent", "Fraction", {1, 1, 1, 1, 1, 1});
    row("dimensionless", "Unitless", "Dimension", {0, 4, 0, 4, 0, 4});
    row("depth coefficient", "Depth Coefficient", "depth coefficient", {1, 2, 2, 2, 2, 2});
    row("grain size", "Grain Size", "grain size", {1, 4, 6, 4, 6, 4});
    row("inverse length squared", "Inverse Length Squared", "Dimension Frequency Squared", {0, 2, 2, 2, 2, 2});
    row("dimension frequency", "Per Length", "Dimension Frequency", {0, 2, 2, 2, 2, 2});
    row("frequency", "Frequency", "frequency", {0, 2, 0, 2, 0, 2});
}

void TestUnitRegistry::categoriesAndSchemes()
{
    QFETCH(QString, category);
    QFETCH(QString, displayName);
    QFETCH(QString, quantity);
    QFETCH(QList<int>, schemes);

    UnitRegistry r;
    QCOMPARE(int(r.categories_size()), 28);
    const boost::shared_ptr<UnitManager> m = r.getCategory(category);
    QVERIFY(m && r.is_default_category(category.toStdString()));
    QCOMPARE(QString::fromStdString(m->key()), quantity);
    QCOMPARE(QString::fromStdString(m->category()), category);
    const DisplayUnitManager* table = r.displayUnitManager();
    QCOMPARE(table->getCategoryDisplayName(category.toStdString()), displayName);
    for (int id = 0; id < 3; ++id) {
        QCOMPARE(table->getUnitDisplay(category.toStdString(), DisplayUnitId(id)), schemes[2 * id]);
        QCOMPARE(table->getPrecisionDisplay(category.toStdString(), DisplayUnitId(id)), schemes[2 * id + 1]);
    }
    // Scheme 0 is in force after construction, and the table's signals are open again.
    QCOMPARE(m->displayUnit(), schemes[0]);
    QCOMPARE(m->precision(), schemes[1]);
    QVERIFY(!table->signalsBlocked());
}

void TestUnitRegistry::deduceCategory_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("category");
    // "dip" is tried before "frac_"; "frac_" needs a second word; case does not matter.
    const char* rows[][2] = {
        {"frac_sigma_dip", "orientation"},     {"Dip_Angle", "orientation"},       {"mean_AZIMUTH", "orientation"},
        {"strike_size", "orientation"},        {"grain_size_max", "dimension"},    {"fault_width", "dimension"},
        {"frac_porosity", "fraction"},         {"porosity", "dimensionless"},      {"frac_p32", "p32"},
        {"frac_permeability", "permeability"}, {"frac_porosity_perm", "fraction"}, {"frac_anisotropy", "fraction"},
        {"frac_connectivity", "fraction"},     {"porosity_total", "dimensionless"}};
    for (const auto& row : rows)
        QTest::newRow(row[0]) << QString::fromLatin1(row[0]) << QString::fromLatin1(row[1]);
}

void TestUnitRegistry::deduceCategory()
{
    QFETCH(QString, name);
    QFETCH(QString, category);
    UnitRegistry r;
    insertReal(r, name.toStdString());
    QCOMPARE(QString::fromStdString(r.property_category(name.toStdString())), category);
}

void TestUnitRegistry::insertChoices()
{
    UnitRegistry r;
    // Text has no units, whatever is asked for.
    r.insert_property("label", R::TEXT_SYSTEM_TYPE, 0, QColor(), R::CATEGORY_XY, 3, 2);
    const R::AttributeInfo& text = r.property_info("label");
    QVERIFY(text.m_category.empty() && text.m_unitName.isEmpty() && text.m_unitTag.isEmpty());
    QCOMPARE(text.m_displayUnit + text.m_modelUnit + text.m_precision, -3);
    QVERIFY(!text.m_precisionEditable && !text.m_unitEditable && !r.property_unit_manager("label"));
    // An integer keeps units but has no decimals; an unknown category leaves a real without units.
    r.insert_property("count", R::INTEGER_SYETEM_TYPE, 0, QColor(), R::CATEGORY_XY, 3, -1);
    QCOMPARE(r.property_unit_tag("count"), QStringLiteral("m"));
    QCOMPARE(r.property_precision("count"), -1);
    insertReal(r, "odd", "no such category");
    QVERIFY(r.property_category("odd").empty() && r.property_display_unit("odd") == -1);

    // Following the category, or its own precision and unit.
    insertReal(r, "follows", R::CATEGORY_PRESSURE);
    const R::AttributeInfo& f = r.property_info("follows");
    QVERIFY(!f.m_precisionEditable && !f.m_unitEditable);
    QCOMPARE(f.m_precision, 1);
    QCOMPARE(f.m_unitName, r.property_model_unit_name("follows"));
    insertReal(r, "own", R::CATEGORY_PRESSURE, 5, 5);
    QVERIFY(r.property_info("own").m_precisionEditable && r.property_info("own").m_unitEditable);
    QCOMPARE(r.property_precision("own"), 5);
    QCOMPARE(r.property_unit_tag("own"), QStringLiteral("psi"));
    r.insert_property("v3", R::REAL_VECTOR3_SYSTEM_TYPE, 0, QColor(), R::CATEGORY_XY, -1, -1);
    QCOMPARE(r.property_precision("v3"), 1);

    // "Colour" is stored as "Color" and gets the column default; other types get white.
    QCOMPARE(R::system_type_id("Colour"), 0);
    r.insert_property("tint", "Colour", 0, QColor(), std::string(), -1, -1);
    QCOMPARE(r.property_to_system_type_id("tint"), int(R::SYSTEM_TYPE_COLOR));
    QCOMPARE(r.property_color("tint"), MatrixData::getDefaultColor(false));
    QVERIFY(MatrixData::getDefaultColor(false) != QColor(Qt::white));
    QCOMPARE(r.property_color("follows"), QColor(Qt::white));
}

void TestUnitRegistry::slotReuseOnlyByIndex()
{
    UnitRegistry r;
    PropertySpy added(r, &UnitRegistry::property_added);
    auto insertAt = [&](int index, const std::string& name) {
        return r.insert_property(index, name, R::REAL_SYSTEM_TYPE, 0, QColor(), std::string(), -1, -1);
    };
    QCOMPARE(insertAt(3, "third").first->second, 3);
    QCOMPARE(r.properties_size(), size_t(4));
    QCOMPARE(r.property_info(0).m_index + r.property_info(1).m_index + r.property_info(2).m_index, -3);
    // Without an index, or with a slot in use, the table grows; a free slot is taken when named.
    QCOMPARE(insertReal(r, "appended"), 4);
    QCOMPARE(insertAt(3, "clash").first->second, 5);
    QCOMPARE(insertAt(1, "reused").first->second, 1);

    // An existing name changes nothing and says nothing.
    const int before = added.calls.size();
    auto again = r.insert_property(0, "third", R::TEXT_SYSTEM_TYPE, 0, QColor(), std::string(), -1, -1);
    QVERIFY(!again.second && again.first->second == 3 && added.calls.size() == before);
    QCOMPARE(r.property_to_system_type("third"), R::REAL_SYSTEM_TYPE);

    // An erased slot keeps its fields and is not reused by -1 inserts.
    QVERIFY(r.erase_property("appended"));
    QCOMPARE(insertReal(r, "after erase"), 6);
    QVERIFY(r.property_info(4).m_index == -1 && r.property_info(4).m_name == "appended");

    // A record inserted whole goes to the end and gets its index.
    R::AttributeInfo info;
    info.m_index = 0;
    QCOMPARE(r.insert_property("whole", info).first->second, 7);
    QCOMPARE(added.calls.last(), qMakePair(std::string("whole"), int(r.property_info("whole").m_index)));
}

void TestUnitRegistry::refusesHostileSlotsAndUnits_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("unitKey");
    QTest::addColumn<bool>("accepted");
    const int end = int(UnitRegistry().properties_size());
    QTest::newRow("append") << -1 << -1 << true;
    QTest::newRow("below -1") << -2 << -1 << false;
    QTest::newRow("most negative") << INT_MIN << -1 << false;
    QTest::newRow("largest") << INT_MAX << -1 << false;
    QTest::newRow("a million") << 1000000 << -1 << false;
    QTest::newRow("just past the bound") << end + UnitRegistry::kMaxSlotGap + 1 << -1 << false;
    QTest::newRow("at the bound") << end + UnitRegistry::kMaxSlotGap << -1 << true;
    QTest::newRow("a gap of ten") << end + 10 << -1 << true;
    QTest::newRow("last unit of the category") << -1 << 3 << true;
    QTest::newRow("unit key past the table") << -1 << 99 << false;
    QTest::newRow("unit key beyond the offered units") << -1 << 4 << false;
    QTest::newRow("negative unit key") << -1 << -7 << false;
}

void TestUnitRegistry::refusesHostileSlotsAndUnits()
{
    QFETCH(int, index);
    QFETCH(int, unitKey);
    QFETCH(bool, accepted);
    UnitRegistry r;
    PropertySpy added(r, &UnitRegistry::property_added);
    const size_t before = r.properties_size();
    // Elevation: metre, foot, kilometre, mile are offered.
    auto result = r.insert_property(index, "depth of sample", R::REAL_SYSTEM_TYPE, 0, QColor(), R::CATEGORY_ELEVATION,
                                    -1, unitKey);
    QCOMPARE(result.second, accepted);
    if (!accepted) {
        QVERIFY(result.first == r.find_property("no such property"));
        QCOMPARE(r.properties_size(), before);
        QCOMPARE(r.property_index("depth of sample"), -1);
        QVERIFY(added.calls.isEmpty());
        return;
    }
    QCOMPARE(r.property_index("depth of sample"), result.first->second);
    QCOMPARE(r.property_display_unit("depth of sample"), unitKey == -1 ? r.getElevationUnitManager()->displayUnit() : unitKey);
    QVERIFY(!r.property_unit_tag("depth of sample").isEmpty());
}

void TestUnitRegistry::eraseAndRename()
{
    ExtendedRegistry r;
    insertReal(r, "kept");
    insertReal(r, "gone");
    r.protect("kept");
    PropertySpy removed(r, &UnitRegistry::property_removed);
    PropertySpy changed(r, &UnitRegistry::property_changed);

    QVERIFY(!r.erase_property("kept") && !r.erase_property("unknown"));
    QVERIFY(r.erase_property("gone"));
    QVERIFY(!r.erase_property("gone"));
    QCOMPARE(removed.calls, (QList<QPair<std::string, int>>{{"gone", 1}}));

    // Renaming keeps the slot and sends nothing: listeners hold slot numbers.
    QVERIFY(r.rename_property("kept", "renamed"));
    QCOMPARE(r.property_index("renamed"), 0);
    QCOMPARE(r.property_name(0), std::string("renamed"));
    QCOMPARE(r.property_index("kept"), -1);
    QVERIFY(changed.calls.isEmpty());
    insertReal(r, "other");
    QVERIFY(!r.rename_property("renamed", "other") && !r.rename_property("missing", "fresh"));
}

void TestUnitRegistry::settersSignalOnlyOnChange()
{
    UnitRegistry r;
    const int slot = insertReal(r, "depth", R::CATEGORY_ELEVATION);
    PropertySpy changed(r, &UnitRegistry::property_changed);
    auto count = [&] {
        const int n = changed.calls.size();
        const bool right = n == 0 || changed.calls.last() == qMakePair(std::string("depth"), slot);
        changed.calls.clear();
        return right ? n : -1;
    };

    r.set_property_color("depth", Qt::blue);
    QCOMPARE(count(), 1);
    r.set_property_color("depth", Qt::blue);
    r.set_property_precision("depth", 3);
    QCOMPARE(count(), 1);
    r.set_property_precision("depth", 3);
    r.set_property_unitKey("depth", 2);
    QCOMPARE(count(), 1);
    QCOMPARE(r.property_unit_tag("depth"), QStringLiteral("ft"));
    r.set_property_unitKey("depth", 2);
    QCOMPARE(count(), 0);

    r.set_property_unitDisplay("depth", QStringLiteral("kilometre"));
    QCOMPARE(count(), 1);
    QCOMPARE(r.property_display_unit("depth"), 1);
    r.set_property_unitDisplay("depth", QStringLiteral("kilometre"));
    r.set_property_unitDisplay("depth", QStringLiteral("furlong"));
    r.set_property_unitDisplay("depth", QStringLiteral("km")); // a tag finds the same unit: no change
    QCOMPARE(r.property_info("depth").m_unitName, QStringLiteral("kilometre"));
    r.set_property_category("depth", R::CATEGORY_ELEVATION);
    r.set_property_category("depth", std::string());
    QCOMPARE(count(), 0);
    r.set_property_category("depth", R::CATEGORY_TEMPERATURE);
    QCOMPARE(count(), 1);
    QCOMPARE(r.property_unit_tag("depth"), QStringLiteral("%1C").arg(UnitManager::degreeString()));
    QCOMPARE(r.property_precision("depth"), 1);

    r.set_property_color("nobody", Qt::red);
    r.set_property_unitKey("nobody", 1);
    QCOMPARE(count(), 0);
    r.updateAll();
    QCOMPARE(changed.calls, (QList<QPair<std::string, int>>{{std::string(), -1}}));
}

void TestUnitRegistry::propertiesFollowTheirCategory()
{
    UnitRegistry r;
    insertReal(r, "follows", R::CATEGORY_ELEVATION);
    insertReal(r, "own_unit", R::CATEGORY_ELEVATION, -1, 1);
    insertReal(r, "own_precision", R::CATEGORY_ELEVATION, 4, -1);
    r.insert_property("n", R::INTEGER_SYETEM_TYPE, 0, QColor(), R::CATEGORY_XY, -1, -1);
    PropertySpy changed(r, &UnitRegistry::property_changed);

    r.setCategoryTable(DISPLAY_IMPERIAL);
    QCOMPARE(r.property_unit_tag("follows"), QStringLiteral("ft"));
    QCOMPARE(r.property_unit_tag("own_unit"), QStringLiteral("km"));
    QCOMPARE(r.property_unit_tag("own_precision"), QStringLiteral("ft"));
    QCOMPARE(r.property_precision("own_precision"), 4);
    for (const auto& call : changed.calls)
        QVERIFY(call.first != "own_unit");
    // Scheme 2 keeps horizontal measure metric.
    r.setCategoryTable(DISPLAY_METRIC_XY);
    QCOMPARE(r.getXyUnitManager()->displayUnit(), 0);
    QCOMPARE(r.property_unit_tag("follows"), QStringLiteral("ft"));

    // Giving up an own unit or precision falls back to the category at once.
    r.set_property_unitEditable("own_unit", false);
    QCOMPARE(r.property_unit_tag("own_unit"), QStringLiteral("ft"));
    r.set_property_precisionEditable("own_precision", false);
    QCOMPARE(r.property_precision("own_precision"), 1);

    // Direct changes of the display table reach the properties; integers have no decimals.
    r.setCategoryDisplayUnit(QStringLiteral("xy"), 3);
    r.setCategoryPrecision(QStringLiteral("xy"), 6);
    QCOMPARE(r.property_unit_tag("n"), QStringLiteral("mi"));
    QCOMPARE(r.property_precision("n"), -1);
    r.set_property_precision("follows", 2);
    r.displayUnitManager()->updateUnitManager(QStringLiteral("elevation"));
    QCOMPARE(r.property_precision("follows"), 1);

    // saveUnitList stores the present choice as a scheme.
    r.saveUnitList(DISPLAY_METRIC_XY);
    r.setCategoryTable(DISPLAY_METRIC);
    r.setCategoryTable(DISPLAY_METRIC_XY);
    QCOMPARE(r.getXyUnitManager()->displayUnit(), 3);
    QCOMPARE(r.getXyUnitManager()->precision(), 6);
}

void TestUnitRegistry::clones()
{
    std::unique_ptr<UnitRegistry> copy;
    {
        UnitRegistry r;
        insertReal(r, "depth", R::CATEGORY_ZDIMENSION);
        copy.reset(r.clone());
        QVERIFY(copy->parent() == nullptr);
        QCOMPARE(copy->displayUnitManager(), r.displayUnitManager());
        QCOMPARE(copy->getXyUnitManager(), r.getXyUnitManager());
        // A change of the shared table reaches the clone's own properties.
        r.setCategoryTable(DISPLAY_IMPERIAL);
        QCOMPARE(copy->property_unit_tag("depth"), QStringLiteral("ft"));
        insertReal(*copy, "only in copy");
        QCOMPARE(r.property_index("only in copy"), -1);
    }
    // Outliving the origin is misuse, but must not crash: the table is forgotten everywhere.
    QVERIFY(copy->displayUnitManager() == nullptr);
    QCOMPARE(copy->getXyUnitManager()->printValue(12.0), QStringLiteral("12.00"));
    insertReal(*copy, "late", R::CATEGORY_XY);
    QCOMPARE(copy->property_precision("late"), 2);
    copy->setCategoryTable(DISPLAY_IMPERIAL);
}

void TestUnitRegistry::visibilityAndEditability()
{
    UnitRegistry r;
    auto add = [&](const std::string& name, unsigned int usage, const std::string& type = R::REAL_SYSTEM_TYPE) {
        return r.insert_property(name, type, usage, QColor(), std::string(), -1, -1).first->second;
    };
    const int plain = add("plain", 0x40 | 0x04), editable = add("editable", 0x100);
    const QList<int> hidden{add("$internal", 0),
                            add("v", 0, R::VERTEX_DISPLAY_SYSTEM_TYPE),
                            add("b8", 0x108),
                            add("b10", 0x10),
                            add("b20", 0x20),
                            -1,
                            1000};
    QVERIFY(r.visible_to_user(plain) && r.visible_to_user(r.find_property("editable")));
    for (int i : hidden)
        QVERIFY2(!r.visible_to_user(i), qPrintable(QString::number(i)));
    UnitRegistry::setShowHiddenAttributes(true);
    const bool allShown = std::all_of(hidden.begin(), hidden.end(), [&](int i) { return r.visible_to_user(i); });
    UnitRegistry::setShowHiddenAttributes(false);
    QVERIFY(allShown);
    QVERIFY(r.editable(editable) && r.editable(hidden[2]) && !r.editable(plain));
}

void TestUnitRegistry::constraints()
{
    UnitRegistry r;
    const int slot = r.insert_property("rock", R::INTEGER_SYETEM_TYPE, 0, QColor(), "", -1, -1).first->second;
    PropertySpy changed(r, &UnitRegistry::property_changed);
    r.add_constraint(slot, 1, QStringLiteral("granite"));
    r.add_constraint(slot, 1, QStringLiteral("basalt")); // the first pair for a key stays
    r.add_constraint(slot, 2, QStringLiteral("granite"));
    r.add_constraint(99, 3, QStringLiteral("ignored"));
    QCOMPARE(changed.calls.size(), 3); // a repeated key is still announced

    const R::AttributeInfo& info = r.property_info(slot);
    QCOMPARE(info.displayConstrainedKeys() + info.displayConstrainedValues(),
             (QStringList{"1", "2", "granite", "granite"}));
    QCOMPARE(info.valueKey(QStringLiteral("granite")), QVariant(1)); // the first match
    QVERIFY(!info.valueFromKey(3).isValid() && !info.valueKey(QStringLiteral("basalt")).isValid());
    // Values are checked, not keys; an empty value always passes.
    QVERIFY(info.validValue(QStringLiteral("granite")) && info.validValue(QVariant()) && info.validValue(QString()));
    QVERIFY(!info.validValue(QStringLiteral("basalt")) && !info.validValue(1));
    QVERIFY(R::AttributeInfo().validValue(QStringLiteral("anything")));

    r.add_constraints(slot, {{7, QStringLiteral("shale")}});
    QCOMPARE(r.property_info(slot).valueFromKey(7), QVariant(QStringLiteral("shale")));
    r.clear_constraints(slot);
    QVERIFY(!r.property_info(slot).hasConstraints());
    QCOMPARE(info.getCategoryNameDisplay(R::CATEGORY_ZDIMENSION), QStringLiteral("Depth Measure"));
    QCOMPARE(info.getCategoryFromNameDisplay(QStringLiteral("Per Length")), R::CATEGORY_DIMENSION_FREQUENCY);
}

void TestUnitRegistry::categoriesCanBeErasedOnlyWhenNotDefault()
{
    ExtendedRegistry r;
    r.addCategory("custom", r.getXyUnitManager());
    insertReal(r, "a", "custom");
    insertReal(r, "b", R::CATEGORY_XY);
    PropertySpy changed(r, &UnitRegistry::property_changed);
    QVERIFY(!r.erase_category(R::CATEGORY_XY) && !r.erase_category("unknown"));
    QVERIFY(!r.insert_category("new", "LengthUnitManager", "New").second);
    QVERIFY(r.erase_category("custom"));
    QCOMPARE(r.property_category("a"), R::CATEGORY_DIMENSIONLESS);
    QCOMPARE(r.property_unit_tag("a"), QStringLiteral("m")); // the units stay
    QCOMPARE(changed.calls, (QList<QPair<std::string, int>>{{"a", 0}}));
}

void TestUnitRegistry::valuesByProperty()
{
    UnitRegistry r;
    const int slot = insertReal(r, "depth", R::CATEGORY_ELEVATION, 2, -1);
    r.insert_property("label", R::TEXT_SYSTEM_TYPE, 0, QColor(), std::string(), -1, -1);
    QString out;
    r.set_property_unitKey("depth", 2);
    r.printValue(out, 304.8, "depth");
    QCOMPARE(out, QStringLiteral("1000.00 ft"));
    QCOMPARE(r.convertModelToDisplay(0.3048, slot), 1.0);
    QCOMPARE(r.convertDisplayToModel(1.0, slot), 0.3048);
    r.printValue(out, 1.0, "label");
    r.printValue(out, 1.0, "unknown");
    QCOMPARE(out, QStringLiteral("1000.00 ft"));
    QCOMPARE(r.convertModelToDisplay(5.0, 1) + r.convertModelToDisplay(5.0, 99), 10.0);

    // The number is read in the display unit; a tag in the text is not.
    double value = -1;
    QVERIFY(r.parseValue(QStringLiteral("1000"), value, "depth"));
    QCOMPARE(value, 304.8);
    r.set_property_unitKey("depth", 0);
    QVERIFY(r.parseValue(QStringLiteral("5 km"), value, "depth"));
    QCOMPARE(value, 5.0);
    value = -1;
    QVERIFY(!r.parseValue(QStringLiteral("deep"), value, "depth"));
    QVERIFY(!r.parseValue(QStringLiteral("5"), value, "label") && !r.parseValue(QStringLiteral("5"), value, "x"));
    QCOMPARE(value, -1.0);
    QCOMPARE(r.printNumber(2.0 / 3.0, QStringLiteral("depth")), QStringLiteral("0.67"));
}

void TestUnitRegistry::systemTypesAndAxes()
{
    const char* names[] = {"Unknown", "Boolean",     "Color",       "Colormap", "Dip",
                           "Flag",    "Integer",     "MappedImage", "Pattern",  "ProjectedImage",
                           "Real",    "RealVector2", "RealVector3", "Text",     "VertexDisplay"};
    for (int id = 0; id < 15; ++id) {
        QCOMPARE(R::system_type_id(names[id]), id);
        QCOMPARE(R::system_type_id_to_property(R::SystemType(id)), std::string(names[id]));
    }
    QCOMPARE(R::system_type_id_to_property(R::SystemType(15)), std::string("Unknown"));
    QCOMPARE(R::system_type_id("real"), 0);

    UnitRegistry r;
    QCOMPARE(r.convertAxisKeyToUnitCategoryKey("time"), R::CATEGORY_TIME);
    QCOMPARE(r.convertAxisKeyToUnitCategoryKey("elevation"), R::CATEGORY_ELEVATION);
    QCOMPARE(r.convertAxisKeyToUnitCategoryKey("depth"), R::CATEGORY_ELEVATION);
    QCOMPARE(r.convertAxisKeyToUnitCategoryKey("Depth"), std::string());
}

QTEST_GUILESS_MAIN(TestUnitRegistry)
#include "tst_unitregistry.moc"
