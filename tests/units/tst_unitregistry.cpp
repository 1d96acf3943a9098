// The unit registry: its categories and schemes, property slots, the deduction of categories
// from names, the signals of each setter, and how properties follow the display table.
#include "matrix/MatrixData.h"
#include "units/UnitRegistry.h"

#include <QSignalSpy>
#include <QtTest>

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
    void constructionIsSilentAndStartsMetric();
    void deduceCategory_data();
    void deduceCategory();
    void typesWithoutUnits();
    void colourDefaults();
    void precisionAndUnitChoices();
    void slotReuseOnlyByIndex();
    void eraseAndRename();
    void settersSignalOnlyOnChange();
    void schemeSwitchFollowsCategoryProperties();
    void displayTableChangesReachProperties();
    void clonesShareTheTable();
    void cloneOutlivingItsOrigin();
    void visibilityAndEditability();
    void constraints();
    void categoriesCanBeErasedOnlyWhenNotDefault();
    void valuesByProperty();
    void saveUnitListStoresThePresentChoice();
    void systemTypes();
    void axisKeys();
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
    QVERIFY(m);
    QCOMPARE(QString::fromStdString(m->key()), quantity);
    QCOMPARE(QString::fromStdString(m->category()), category);
    QVERIFY(r.is_default_category(category.toStdString()));
    const DisplayUnitManager* table = r.displayUnitManager();
    QCOMPARE(table->getCategoryDisplayName(category.toStdString()), displayName);
    for (int id = 0; id < 3; ++id) {
        QCOMPARE(table->getUnitDisplay(category.toStdString(), DisplayUnitId(id)), schemes[2 * id]);
        QCOMPARE(table->getPrecisionDisplay(category.toStdString(), DisplayUnitId(id)), schemes[2 * id + 1]);
    }
    // Scheme 0 is in force after construction.
    QCOMPARE(m->displayUnit(), schemes[0]);
    QCOMPARE(m->precision(), schemes[1]);
}

void TestUnitRegistry::constructionIsSilentAndStartsMetric()
{
    UnitRegistry r;
    QVERIFY(!r.displayUnitManager()->signalsBlocked());
    QCOMPARE(r.properties_size(), size_t(0));
    // "dimension" stores metres: the small-length manager with its second constructor.
    QCOMPARE(r.getDimensionUnitManager()->modelUnit(), 1);
    QCOMPARE(r.getPhysicalSizeUnitManager()->modelUnit(), 4);
    // The named getters and the category names agree.
    QCOMPARE(r.getXyUnitManager(), r.getCategory(R::CATEGORY_XY));
    QCOMPARE(r.getPercentUnitManager(), r.getCategory(QStringLiteral("percent")));
    QVERIFY(r.getPercentUnitManager() != r.getFractionUnitManager());
    QVERIFY(!r.getCategory(std::string("no such category")));
}

void TestUnitRegistry::deduceCategory_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("category");
    QTest::newRow("dip before frac_") << "frac_sigma_dip"
                                      << "orientation";
    QTest::newRow("upper case") << "Dip_Angle"
                                << "orientation";
    QTest::newRow("azimuth") << "mean_AZIMUTH"
                             << "orientation";
    QTest::newRow("strike before size") << "strike_size"
                                        << "orientation";
    QTest::newRow("size") << "grain_size_max"
                          << "dimension";
    QTest::newRow("width") << "fault_width"
                           << "dimension";
    QTest::newRow("porosity") << "frac_porosity"
                              << "fraction";
    QTest::newRow("porosity needs frac_") << "porosity"
                                          << "dimensionless";
    QTest::newRow("p32") << "frac_p32"
                         << "p32";
    QTest::newRow("perm") << "frac_permeability"
                          << "permeability";
    QTest::newRow("porosity before perm") << "frac_porosity_perm"
                                          << "fraction";
    QTest::newRow("anisotropy") << "frac_anisotropy"
                                << "fraction";
    QTest::newRow("sigma") << "frac_sigma"
                           << "fraction";
    QTest::newRow("conn") << "frac_connectivity"
                          << "fraction";
    QTest::newRow("anything else") << "porosity_total"
                                   << "dimensionless";
}

void TestUnitRegistry::deduceCategory()
{
    QFETCH(QString, name);
    QFETCH(QString, category);
    UnitRegistry r;
    insertReal(r, name.toStdString());
    QCOMPARE(QString::fromStdString(r.property_category(name.toStdString())), category);
    // An explicit category is taken as given.
    insertReal(r, "explicit_" + name.toStdString(), R::CATEGORY_TEMPERATURE);
    QCOMPARE(r.property_category("explicit_" + name.toStdString()), R::CATEGORY_TEMPERATURE);
}

void TestUnitRegistry::typesWithoutUnits()
{
    UnitRegistry r;
    r.insert_property("label", R::TEXT_SYSTEM_TYPE, 0, QColor(), R::CATEGORY_XY, 3, 2);
    const R::AttributeInfo& text = r.property_info("label");
    QVERIFY(text.m_category.empty());
    QCOMPARE(text.m_displayUnit, -1);
    QCOMPARE(text.m_modelUnit, -1);
    QVERIFY(text.m_unitName.isEmpty() && text.m_unitTag.isEmpty());
    QCOMPARE(text.m_precision, -1);
    QVERIFY(!text.m_precisionEditable && !text.m_unitEditable);
    QVERIFY(!r.property_unit_manager("label"));

    // An integer keeps units but has no decimals.
    r.insert_property("count", R::INTEGER_SYETEM_TYPE, 0, QColor(), R::CATEGORY_XY, 3, -1);
    QCOMPARE(r.property_category("count"), R::CATEGORY_XY);
    QCOMPARE(r.property_precision("count"), -1);
    QCOMPARE(r.property_unit_tag("count"), QStringLiteral("m"));

    // An unknown category leaves a real property without units, too.
    insertReal(r, "odd", "no such category");
    QVERIFY(r.property_category("odd").empty());
    QCOMPARE(r.property_display_unit("odd"), -1);
}

void TestUnitRegistry::colourDefaults()
{
    UnitRegistry r;
    QCOMPARE(R::system_type_id("Colour"), 0);
    r.insert_property("tint", "Colour", 0, QColor(), std::string(), -1, -1);
    QCOMPARE(r.property_to_system_type("tint"), R::COLOR_SYSTEM_TYPE);
    QCOMPARE(r.property_to_system_type_id("tint"), int(R::SYSTEM_TYPE_COLOR));
    QCOMPARE(r.property_color("tint"), MatrixData::getDefaultColor(false));
    QVERIFY(MatrixData::getDefaultColor(false) != QColor(Qt::white));
    insertReal(r, "plain");
    QCOMPARE(r.property_color("plain"), QColor(Qt::white));
    r.insert_property("given", R::COLOR_SYSTEM_TYPE, 0, QColor(Qt::red), std::string(), -1, -1);
    QCOMPARE(r.property_color("given"), QColor(Qt::red));
}

void TestUnitRegistry::precisionAndUnitChoices()
{
    UnitRegistry r;
    insertReal(r, "follows", R::CATEGORY_PRESSURE);
    const R::AttributeInfo& f = r.property_info("follows");
    QCOMPARE(f.m_precision, 1);
    QVERIFY(!f.m_precisionEditable && !f.m_unitEditable);
    QCOMPARE(f.m_displayUnit, 1);
    QCOMPARE(f.m_modelUnit, 1);
    QCOMPARE(f.m_unitName, QStringLiteral("megapascal"));
    QCOMPARE(r.property_model_unit_name("follows"), QStringLiteral("megapascal"));

    insertReal(r, "own", R::CATEGORY_PRESSURE, 5, 5);
    const R::AttributeInfo& o = r.property_info("own");
    QCOMPARE(o.m_precision, 5);
    QVERIFY(o.m_precisionEditable && o.m_unitEditable);
    QCOMPARE(o.m_unitTag, QStringLiteral("psi"));
}

void TestUnitRegistry::slotReuseOnlyByIndex()
{
    UnitRegistry r;
    PropertySpy added(r, &UnitRegistry::property_added);
    auto third = r.insert_property(3, "third", R::REAL_SYSTEM_TYPE, 0, QColor(), std::string(), -1, -1);
    QVERIFY(third.second);
    QCOMPARE(r.properties_size(), size_t(4));
    QCOMPARE(third.first->second, 3);
    for (int i = 0; i < 3; ++i)
        QCOMPARE(r.property_info(i).m_index, -1);

    // Without an index, and with the index of a slot in use, the table grows.
    QCOMPARE(insertReal(r, "appended"), 4);
    QCOMPARE(r.insert_property(3, "clash", R::REAL_SYSTEM_TYPE, 0, QColor(), std::string(), -1, -1).first->second, 5);
    // A free slot is taken when named.
    QCOMPARE(r.insert_property(1, "reused", R::REAL_SYSTEM_TYPE, 0, QColor(), std::string(), -1, -1).first->second, 1);

    // An existing name changes nothing and says nothing.
    const int before = added.calls.size();
    auto again = r.insert_property(0, "third", R::TEXT_SYSTEM_TYPE, 0, QColor(), std::string(), -1, -1);
    QVERIFY(!again.second);
    QCOMPARE(again.first->second, 3);
    QCOMPARE(r.property_to_system_type("third"), R::REAL_SYSTEM_TYPE);
    QCOMPARE(added.calls.size(), before);
    QCOMPARE(added.calls.first(), qMakePair(std::string("third"), 3));

    // Erased slots stay free for -1 inserts: the table grows instead.
    QVERIFY(r.erase_property("appended"));
    QCOMPARE(insertReal(r, "after erase"), 6);
    QCOMPARE(r.property_info(4).m_index, -1);
    QCOMPARE(r.property_info(4).m_name, std::string("appended")); // the slot keeps its fields

    // A record inserted whole goes to the end and gets its index.
    R::AttributeInfo info;
    info.m_name = "whole";
    info.m_index = 0;
    QCOMPARE(r.insert_property("whole", info).first->second, 7);
    QCOMPARE(r.property_info("whole").m_index, 7);
    QCOMPARE(added.calls.last(), qMakePair(std::string("whole"), 7));
}

void TestUnitRegistry::eraseAndRename()
{
    ExtendedRegistry r;
    insertReal(r, "kept");
    insertReal(r, "gone");
    r.protect("kept");
    PropertySpy removed(r, &UnitRegistry::property_removed);
    PropertySpy changed(r, &UnitRegistry::property_changed);

    QVERIFY(!r.erase_property("kept"));
    QVERIFY(!r.erase_property("unknown"));
    QVERIFY(r.erase_property("gone"));
    QCOMPARE(removed.calls, (QList<QPair<std::string, int>>{{"gone", 1}}));
    QCOMPARE(r.property_index("gone"), -1);
    QVERIFY(!r.erase_property("gone"));

    QVERIFY(r.rename_property("kept", "renamed"));
    QCOMPARE(r.property_index("renamed"), 0);
    QCOMPARE(r.property_name(0), std::string("renamed"));
    QCOMPARE(r.property_index("kept"), -1);
    QVERIFY(changed.calls.isEmpty());
    insertReal(r, "other");
    QVERIFY(!r.rename_property("renamed", "other"));
    QVERIFY(!r.rename_property("missing", "fresh"));
    QCOMPARE(r.property_index("renamed"), 0);
}

void TestUnitRegistry::settersSignalOnlyOnChange()
{
    UnitRegistry r;
    const int slot = insertReal(r, "depth", R::CATEGORY_ELEVATION);
    PropertySpy changed(r, &UnitRegistry::property_changed);
    const QList<QPair<std::string, int>> once{{"depth", slot}};

    auto take = [&] {
        const QList<QPair<std::string, int>> calls = changed.calls;
        changed.calls.clear();
        return calls;
    };
    const QList<QPair<std::string, int>> none;

    r.set_property_color("depth", Qt::blue);
    QCOMPARE(take(), once);
    r.set_property_color("depth", Qt::blue);
    QCOMPARE(take(), none);

    r.set_property_precision("depth", 3);
    QCOMPARE(take(), once);
    r.set_property_precision("depth", 3);
    QCOMPARE(take(), none);

    r.set_property_unitKey("depth", 2);
    QCOMPARE(take(), once);
    QCOMPARE(r.property_unit_tag("depth"), QStringLiteral("ft"));
    r.set_property_unitKey("depth", 2);
    QCOMPARE(take(), none);

    r.set_property_unitDisplay("depth", QStringLiteral("kilometre"));
    QCOMPARE(take(), once);
    QCOMPARE(r.property_display_unit("depth"), 1);
    r.set_property_unitDisplay("depth", QStringLiteral("kilometre"));
    r.set_property_unitDisplay("depth", QStringLiteral("furlong"));
    r.set_property_unitDisplay("depth", QStringLiteral("km")); // tags are units too, but the name stays
    QCOMPARE(take(), none);

    r.set_property_category("depth", R::CATEGORY_ELEVATION);
    r.set_property_category("depth", std::string());
    QCOMPARE(take(), none);
    r.set_property_category("depth", R::CATEGORY_TEMPERATURE);
    QCOMPARE(take(), once);
    QCOMPARE(r.property_unit_tag("depth"), QStringLiteral("%1C").arg(UnitManager::degreeString()));
    QCOMPARE(r.property_precision("depth"), 1);

    // Unknown names are ignored by every setter.
    r.set_property_color("nobody", Qt::red);
    r.set_property_precision("nobody", 1);
    r.set_property_unitKey("nobody", 1);
    QCOMPARE(take(), none);
}

void TestUnitRegistry::schemeSwitchFollowsCategoryProperties()
{
    UnitRegistry r;
    insertReal(r, "follows", R::CATEGORY_ELEVATION);
    insertReal(r, "own_unit", R::CATEGORY_ELEVATION, -1, 1);
    insertReal(r, "own_precision", R::CATEGORY_ELEVATION, 4, -1);
    insertReal(r, "$hidden", R::CATEGORY_ELEVATION);
    PropertySpy changed(r, &UnitRegistry::property_changed);

    r.setCategoryTable(DISPLAY_IMPERIAL);
    QCOMPARE(r.getElevationUnitManager()->displayUnit(), 2);
    QCOMPARE(r.property_unit_tag("follows"), QStringLiteral("ft"));
    QCOMPARE(r.property_unit_tag("own_unit"), QStringLiteral("km"));
    QCOMPARE(r.property_unit_tag("own_precision"), QStringLiteral("ft"));
    QCOMPARE(r.property_precision("own_precision"), 4);
    QCOMPARE(r.property_unit_tag("$hidden"), QStringLiteral("ft")); // follows the table's signal
    for (const auto& call : changed.calls)
        QVERIFY(call.first != "own_unit");

    // Scheme 2 keeps horizontal measure metric.
    r.setCategoryTable(DISPLAY_METRIC_XY);
    QCOMPARE(r.getXyUnitManager()->displayUnit(), 0);
    QCOMPARE(r.getElevationUnitManager()->displayUnit(), 2);
    r.setCategoryTable(DISPLAY_METRIC);
    QCOMPARE(r.property_unit_tag("follows"), QStringLiteral("m"));

    // Giving up an own unit or precision falls back to the category at once.
    r.set_property_unitEditable("own_unit", false);
    QCOMPARE(r.property_unit_tag("own_unit"), QStringLiteral("m"));
    r.set_property_precisionEditable("own_precision", false);
    QCOMPARE(r.property_precision("own_precision"), 1);
    r.setCategoryTable(DISPLAY_IMPERIAL);
    QCOMPARE(r.property_unit_tag("own_unit"), QStringLiteral("ft"));
}

void TestUnitRegistry::displayTableChangesReachProperties()
{
    UnitRegistry r;
    insertReal(r, "x", R::CATEGORY_XY);
    r.insert_property("n", R::INTEGER_SYETEM_TYPE, 0, QColor(), R::CATEGORY_XY, -1, -1);
    PropertySpy changed(r, &UnitRegistry::property_changed);

    r.setCategoryDisplayUnit(QStringLiteral("xy"), 3);
    QCOMPARE(r.property_unit_tag("x"), QStringLiteral("mi"));
    QCOMPARE(r.property_unit_tag("n"), QStringLiteral("mi"));
    r.setCategoryPrecision(QStringLiteral("xy"), 6);
    QCOMPARE(r.property_precision("x"), 6);
    QCOMPARE(r.property_precision("n"), -1);                // integers have no decimals to follow
    r.setCategoryDisplayUnit(QStringLiteral("no such"), 1); // ignored

    // A display-table refresh of the category brings both back in line.
    r.set_property_precision("x", 2);
    changed.calls.clear();
    r.displayUnitManager()->updateUnitManager(QStringLiteral("xy"));
    QCOMPARE(r.property_precision("x"), 6);
    QCOMPARE(changed.calls.size(), 1);

    changed.calls.clear();
    r.updateAll();
    QCOMPARE(changed.calls, (QList<QPair<std::string, int>>{{std::string(), -1}}));
}

void TestUnitRegistry::clonesShareTheTable()
{
    UnitRegistry r;
    insertReal(r, "depth", R::CATEGORY_ZDIMENSION);
    std::unique_ptr<UnitRegistry> copy(r.clone());
    QVERIFY(copy->parent() == nullptr);
    QCOMPARE(copy->displayUnitManager(), r.displayUnitManager());
    QCOMPARE(copy->getXyUnitManager(), r.getXyUnitManager());
    QCOMPARE(copy->property_index("depth"), 0);

    PropertySpy copyChanged(*copy, &UnitRegistry::property_changed);
    r.setCategoryTable(DISPLAY_IMPERIAL);
    QCOMPARE(copy->property_unit_tag("depth"), QStringLiteral("ft"));
    QVERIFY(!copyChanged.calls.isEmpty());

    // Properties are copied, not shared.
    insertReal(*copy, "only in copy");
    QCOMPARE(r.property_index("only in copy"), -1);
}

void TestUnitRegistry::cloneOutlivingItsOrigin()
{
    std::unique_ptr<UnitRegistry> copy;
    {
        UnitRegistry r;
        insertReal(r, "depth", R::CATEGORY_ZDIMENSION);
        copy.reset(r.clone());
    }
    // Misuse, but it must not crash: the managers and the clone forget the dead table.
    QVERIFY(copy->displayUnitManager() == nullptr);
    QCOMPARE(copy->getXyUnitManager()->displayUnitManager(), static_cast<DisplayUnitManager*>(nullptr));
    QCOMPARE(copy->getXyUnitManager()->printValue(12.0), QStringLiteral("12.00"));
    insertReal(*copy, "late", R::CATEGORY_XY);
    QCOMPARE(copy->property_precision("late"), 2);
    copy->setCategoryTable(DISPLAY_IMPERIAL);
}

void TestUnitRegistry::visibilityAndEditability()
{
    UnitRegistry r;
    const int plain = insertReal(r, "plain");
    const int dollar = insertReal(r, "$internal");
    const int vertex =
        r.insert_property("v", R::VERTEX_DISPLAY_SYSTEM_TYPE, 0, QColor(), std::string(), -1, -1).first->second;
    QList<int> hiddenByBit;
    for (unsigned int bit : {0x08u, 0x10u, 0x20u})
        hiddenByBit << r.insert_property("bit" + std::to_string(bit), R::REAL_SYSTEM_TYPE, bit | 0x100, QColor(),
                                         std::string(), -1, -1)
                           .first->second;
    const int neighbour =
        r.insert_property("bit40", R::REAL_SYSTEM_TYPE, 0x40 | 0x04, QColor(), std::string(), -1, -1).first->second;

    QVERIFY(r.visible_to_user(plain));
    QVERIFY(r.visible_to_user(neighbour));
    QVERIFY(!r.visible_to_user(dollar));
    QVERIFY(!r.visible_to_user(vertex));
    for (int i : hiddenByBit)
        QVERIFY(!r.visible_to_user(i));
    QVERIFY(!r.visible_to_user(-1));
    QVERIFY(!r.visible_to_user(1000));
    QVERIFY(!r.visible_to_user(std::string("unknown")));
    QVERIFY(r.visible_to_user(r.find_property("plain")));

    UnitRegistry::setShowHiddenAttributes(true);
    const bool allShown = r.visible_to_user(dollar) && r.visible_to_user(vertex) && r.visible_to_user(1000);
    UnitRegistry::setShowHiddenAttributes(false);
    QVERIFY(allShown);

    QVERIFY(r.editable(hiddenByBit.first()));
    QVERIFY(!r.editable(plain));
    QVERIFY(!r.editable(neighbour));
    QCOMPARE(r.usage_flag("bit40"), 0x44u);
}

void TestUnitRegistry::constraints()
{
    UnitRegistry r;
    const int slot =
        r.insert_property("rock", R::INTEGER_SYETEM_TYPE, 0, QColor(), std::string(), -1, -1).first->second;
    PropertySpy changed(r, &UnitRegistry::property_changed);
    r.add_constraint(slot, 1, QStringLiteral("granite"));
    r.add_constraint(slot, 1, QStringLiteral("basalt")); // the first pair for a key stays
    r.add_constraint(slot, 2, QStringLiteral("granite"));
    r.add_constraint(99, 3, QStringLiteral("ignored"));
    QCOMPARE(changed.calls.size(), 3); // a repeated key is still announced

    const R::AttributeInfo& info = r.property_info(slot);
    QVERIFY(info.hasConstraints());
    QCOMPARE(info.constrainedKeys(), (QList<QVariant>{1, 2}));
    QCOMPARE(info.displayConstrainedValues(), (QStringList{"granite", "granite"}));
    QCOMPARE(info.displayConstrainedKeys(), (QStringList{"1", "2"}));
    QCOMPARE(info.valueFromKey(1), QVariant(QStringLiteral("granite")));
    QVERIFY(!info.valueFromKey(3).isValid());
    QCOMPARE(info.valueKey(QStringLiteral("granite")), QVariant(1));
    QVERIFY(!info.valueKey(QStringLiteral("basalt")).isValid());

    // Values are checked, not keys; an empty value always passes.
    QVERIFY(info.validValue(QStringLiteral("granite")));
    QVERIFY(!info.validValue(QStringLiteral("basalt")));
    QVERIFY(!info.validValue(1));
    QVERIFY(info.validValue(QVariant()));
    QVERIFY(info.validValue(QString()));
    QVERIFY(R::AttributeInfo().validValue(QStringLiteral("anything")));

    r.add_constraints(slot, {{7, QStringLiteral("shale")}});
    QCOMPARE(r.property_info(slot).constrainedKeys(), QList<QVariant>{7});
    r.add_constraints(-1, {{8, QStringLiteral("nowhere")}});
    r.clear_constraints(slot);
    QVERIFY(!r.property_info(slot).hasConstraints());

    // Category display names through the record's table.
    QCOMPARE(info.getCategoryNameDisplay(R::CATEGORY_ZDIMENSION), QStringLiteral("Depth Measure"));
    QCOMPARE(info.getCategoryFromNameDisplay(QStringLiteral("Per Length")), R::CATEGORY_DIMENSION_FREQUENCY);
    QVERIFY(!R::AttributeInfo().canHaveCategory());
    QVERIFY(info.canHaveCategory() && !info.canHavePrecision());
}

void TestUnitRegistry::categoriesCanBeErasedOnlyWhenNotDefault()
{
    ExtendedRegistry r;
    boost::shared_ptr<UnitManager> custom = r.getXyUnitManager();
    r.addCategory("custom", custom);
    insertReal(r, "a", "custom");
    insertReal(r, "b", R::CATEGORY_XY);
    PropertySpy changed(r, &UnitRegistry::property_changed);

    QVERIFY(!r.erase_category(R::CATEGORY_XY));
    QVERIFY(!r.erase_category("unknown"));
    QVERIFY(!r.insert_category("new", "LengthUnitManager", "New").second);
    QVERIFY(r.insert_category("custom", "", "").first != r.categories_end());
    QVERIFY(r.erase_category("custom"));
    QCOMPARE(r.property_category("a"), R::CATEGORY_DIMENSIONLESS);
    QCOMPARE(r.property_unit_tag("a"), QStringLiteral("m")); // the units stay
    QCOMPARE(changed.calls, (QList<QPair<std::string, int>>{{"a", 0}}));
    QVERIFY(!r.getCategory(std::string("custom")));
}

void TestUnitRegistry::valuesByProperty()
{
    UnitRegistry r;
    const int slot = insertReal(r, "depth", R::CATEGORY_ELEVATION, 2, -1);
    insertReal(r, "name_only", R::CATEGORY_XY);
    r.insert_property("label", R::TEXT_SYSTEM_TYPE, 0, QColor(), std::string(), -1, -1);

    QString out = QStringLiteral("unchanged");
    r.printValue(out, 1234.5, "depth");
    QCOMPARE(out, QStringLiteral("1234.50 m"));
    r.set_property_unitKey("depth", 2);
    r.printValue(out, 304.8, "depth");
    QCOMPARE(out, QStringLiteral("1000.00 ft"));
    QCOMPARE(r.convertModelToDisplay(0.3048, slot), 1.0);
    QCOMPARE(r.convertDisplayToModel(1.0, slot), 0.3048);

    out = QStringLiteral("unchanged");
    r.printValue(out, 1.0, "label");
    r.printValue(out, 1.0, "unknown");
    QCOMPARE(out, QStringLiteral("unchanged"));
    QCOMPARE(r.convertModelToDisplay(5.0, 2), 5.0);
    QCOMPARE(r.convertModelToDisplay(5.0, 99), 5.0);

    // The number is read in the display unit; a tag in the text is not.
    double value = -1;
    QVERIFY(r.parseValue(QStringLiteral("1000"), value, "depth"));
    QCOMPARE(value, 304.8);
    r.set_property_unitKey("depth", 0);
    QVERIFY(r.parseValue(QStringLiteral("5 km"), value, "depth"));
    QCOMPARE(value, 5.0);
    QVERIFY(r.parseValue(QStringLiteral("  7.5"), value, "depth"));
    QCOMPARE(value, 7.5);
    value = -1;
    QVERIFY(!r.parseValue(QStringLiteral("deep"), value, "depth"));
    QVERIFY(!r.parseValue(QStringLiteral("5"), value, "label"));
    QVERIFY(!r.parseValue(QStringLiteral("5"), value, "unknown"));
    QCOMPARE(value, -1.0);

    QCOMPARE(r.printNumber(2.0 / 3.0, QStringLiteral("depth")), QStringLiteral("0.67"));
}

void TestUnitRegistry::saveUnitListStoresThePresentChoice()
{
    UnitRegistry r;
    r.getXyUnitManager()->displayUnit(3);
    r.getXyUnitManager()->precision(5);
    r.saveUnitList(DISPLAY_METRIC_XY);
    const DisplayUnitManager* table = r.displayUnitManager();
    QCOMPARE(table->getUnitDisplay(R::CATEGORY_XY, DISPLAY_METRIC_XY), 3);
    QCOMPARE(table->getPrecisionDisplay(R::CATEGORY_XY, DISPLAY_METRIC_XY), 5);
    QCOMPARE(table->getUnitDisplay(R::CATEGORY_AREA, DISPLAY_METRIC_XY), 0);
    r.setCategoryTable(DISPLAY_IMPERIAL);
    r.setCategoryTable(DISPLAY_METRIC_XY);
    QCOMPARE(r.getXyUnitManager()->displayUnit(), 3);
    QCOMPARE(r.getXyUnitManager()->precision(), 5);
}

void TestUnitRegistry::systemTypes()
{
    const char* names[] = {"Unknown", "Boolean",     "Color",       "Colormap", "Dip",
                           "Flag",    "Integer",     "MappedImage", "Pattern",  "ProjectedImage",
                           "Real",    "RealVector2", "RealVector3", "Text",     "VertexDisplay"};
    for (int id = 0; id < 15; ++id) {
        QCOMPARE(R::system_type_id(names[id]), id);
        if (id > 0)
            QCOMPARE(R::system_type_id_to_property(R::SystemType(id)), std::string(names[id]));
    }
    QCOMPARE(R::system_type_id_to_property(R::SystemType(0)), std::string("Unknown"));
    QCOMPARE(R::system_type_id_to_property(R::SystemType(15)), std::string("Unknown"));
    QCOMPARE(R::system_type_id("real"), 0);
    QCOMPARE(R::INTEGER_SYETEM_TYPE, std::string("Integer"));

    UnitRegistry r;
    for (const char* vector : {"RealVector2", "RealVector3"}) {
        r.insert_property(vector, vector, 0, QColor(), R::CATEGORY_XY, -1, -1);
        QCOMPARE(r.property_precision(vector), 1);
        QCOMPARE(r.property_unit_tag(vector), QStringLiteral("m"));
    }
}

void TestUnitRegistry::axisKeys()
{
    UnitRegistry r;
    QCOMPARE(r.convertAxisKeyToUnitCategoryKey("time"), R::CATEGORY_TIME);
    QCOMPARE(r.convertAxisKeyToUnitCategoryKey("elevation"), R::CATEGORY_ELEVATION);
    QCOMPARE(r.convertAxisKeyToUnitCategoryKey("depth"), R::CATEGORY_ELEVATION);
    QCOMPARE(r.convertAxisKeyToUnitCategoryKey("Depth"), std::string());
    QCOMPARE(r.convertAxisKeyToUnitCategoryKey("x"), std::string());
}

QTEST_GUILESS_MAIN(TestUnitRegistry)
#include "tst_unitregistry.moc"
