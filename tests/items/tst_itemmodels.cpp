// The object-type and sets trees, the table and the proxies, each watched by QAbstractItemModelTester.
#include "itemtestsubjects.h"

#include "items/QRKAbstractItemModelNode.h"
#include "items/QRKObjectTypesTreeItemModel.h"
#include "items/QRKSetsTreeItemModel.h"
#include "items/QRKSortFilterProxyModel.h"
#include "items/QRKTableItemModel.h"
#include "units/UnitManager.h"
#include "units/UnitRegistry.h"

#include <QAbstractItemModelTester>
#include <QtTest>
#include <memory>

using namespace rkBase;

namespace {
using Tester = QAbstractItemModelTester;
std::unique_ptr<Tester> watch(QAbstractItemModel* m)
{
    return std::make_unique<Tester>(m, Tester::FailureReportingMode::QtTest);
}
QString text(const QAbstractItemModel& m, int row, int col = 0, const QModelIndex& parent = QModelIndex(),
             int role = Qt::DisplayRole)
{
    return m.data(m.index(row, col, parent), role).toString();
}
} // namespace

class TestItemModels : public QObject {
    Q_OBJECT
private slots:
    void initTestCase()
    {
        QLocale::setDefault(QLocale::c());
        qRegisterMetaType<Qt::Orientation>();
    }
    void objectTypesFolders();
    void folderShowsWithFirstObject();
    void removingLastChildCascades();
    void removeRowsIsBounded_data();
    void removeRowsIsBounded();
    void refusesNodesThatWouldBreakTheTree();
    void clearEmptyChildrenKeepsCompounds();
    void setsRestart();
    void treeProxyOrder();
    void checkEditSpreadsToOtherModels();
    void tableColumns_data();
    void tableColumns();
    void tableHeaders();
    void tableMirrorsTree();
    void tableFilters_data();
    void tableFilters();
    void tableSortNatural();
    void selectionFromSubjects();
    void hostileOrders();
    void teardownInEitherOrder_data();
    void teardownInEitherOrder();
};

void TestItemModels::objectTypesFolders()
{
    QRKObjectTypesTreeItemModel m;
    auto t = watch(&m);
    m.restart();
    QCOMPARE(m.rowCount(), 0);
    QCOMPARE(m.flags(QModelIndex()), Qt::ItemIsDropEnabled);
    const QStringList names{"Mesh Surfaces",
                            "Grid Surfaces",
                            "Guide Lines",
                            "Polylines",
                            "Trace Lines",
                            "Faults",
                            "Pins",
                            "Posts",
                            "Polygons",
                            "TetraVolumes",
                            "GeoCellular Volumes",
                            "Point Clouds",
                            "Dip Data",
                            "Wells",
                            "Wells (Projected)",
                            "Wells (Pseudo)",
                            "Labels",
                            "3DTesk Fracture Sets",
                            "4DTesk Fracture Sets",
                            "Stratigraphic Columns",
                            "Images",
                            "osgEarth Layers"};
    QCOMPARE(int(QRKObjectTypesTreeItemModel::FolderCount), names.size());
    for (int i = 0; i < names.size(); ++i)
        QCOMPARE(m.folder(i)->data(Field::Name, Qt::EditRole).toString(), names[i]);
    QCOMPARE(m.gridFolder(), m.folder(QRKObjectTypesTreeItemModel::GridFolder));
    QRKAbstractItemModelCompoundNode* before = m.pinFolder();
    m.restart();
    QCOMPARE(m.pinFolder(), before);
}

void TestItemModels::folderShowsWithFirstObject()
{
    QRKObjectTypesTreeItemModel m;
    auto t = watch(&m);
    m.restart();
    Obj a(QStringLiteral("pin 1")), b(QStringLiteral("pin 2")), c(QStringLiteral("pin 3"));
    QVERIFY(m.addPin(&a));
    QCOMPARE(m.rowCount(), 1);
    QCOMPARE(text(m, 0), QStringLiteral("Pins (1)"));
    m.addPin(&b);
    m.addPin(&c);
    QCOMPARE(text(m, 0), QStringLiteral("Pins (3)"));
    QCOMPARE(text(m, 0, 0, QModelIndex(), Qt::EditRole), QStringLiteral("Pins"));
    const QModelIndex folder = m.index(0, 0);
    QCOMPARE(m.rowCount(folder), 3);
    QCOMPARE(text(m, 1, 0, folder), QStringLiteral("pin 2"));
    QCOMPARE(m.parent(m.index(1, 0, folder)), folder);
    QCOMPARE(int(m.flags(folder)), 8 | 20 | 33);
    QCOMPARE(int(m.flags(m.index(0, 0, folder))), 37 | 16);
    QCOMPARE(m.subjectFromIndex(m.index(2, 0, folder)), &c);
    QCOMPARE(m.subjectsFromIndexes({m.index(2, 0, folder), m.index(0, 0, folder), m.index(2, 0, folder)}),
             (QList<QRKAbstractSubject*>{&c, &a}));
    // A node of the tree given to another model is not read as one of its own.
    QRKObjectTypesTreeItemModel other;
    QVERIFY(!other.nodeFromIndex(folder));
    std::unique_ptr<QMimeData> mime(m.mimeData({m.index(0, 0, folder), m.index(1, 0, folder)}));
    QCOMPARE(mime->text(), QStringLiteral("pin 1\npin 2"));
}

void TestItemModels::removingLastChildCascades()
{
    QRKObjectTypesTreeItemModel m;
    auto t = watch(&m);
    m.restart();
    Group fault(QStringLiteral("F1"));
    Obj block(QStringLiteral("block")), pin(QStringLiteral("pin"));
    auto* faultNode = static_cast<QRKAbstractItemModelCompoundNode*>(m.addFault(&fault));
    QRKAbstractItemModelNode* blockNode = block.createTreeNode(&m);
    QVERIFY(m.addNode(blockNode, faultNode));
    m.addPin(&pin);
    QCOMPARE(m.rowCount(), 2);
    // The block goes, then its emptied fault, then the emptied "Faults" folder.
    QVERIFY(m.removeNode(blockNode));
    QCOMPARE(m.rowCount(), 1);
    QCOMPARE(text(m, 0), QStringLiteral("Pins (1)"));
    QCOMPARE(block.nodeCount(), 0);
    QCOMPARE(fault.nodeCount(), 0);
    // A compound that stays when empty ends the cascade.
    fault.deleteWhenEmpty = false;
    faultNode = static_cast<QRKAbstractItemModelCompoundNode*>(m.addFault(&fault));
    m.addNode(block.createTreeNode(&m), faultNode);
    m.removeSubject(&block);
    QCOMPARE(m.rowCount(), 2);
    QCOMPARE(m.rowCount(m.indexFromNode(faultNode, 0)), 0);
    // Removing a compound with children takes the children's nodes too.
    m.addNode(block.createTreeNode(&m), faultNode);
    QVERIFY(m.removeNode(faultNode));
    QCOMPARE(block.nodeCount(), 0);
    QCOMPARE(fault.nodeCount(), 0);
}

void TestItemModels::removeRowsIsBounded_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<int>("count");
    QTest::addColumn<bool>("ok");
    QTest::newRow("zero count") << 0 << 0 << false;
    QTest::newRow("count zero past end") << 5 << 0 << false;
    QTest::newRow("negative row") << -1 << 1 << false;
    QTest::newRow("past the end") << 1 << 2 << false;
    QTest::newRow("last row") << 1 << 1 << true;
    QTest::newRow("all") << 0 << 2 << true;
}

void TestItemModels::removeRowsIsBounded()
{
    QFETCH(int, row);
    QFETCH(int, count);
    QFETCH(bool, ok);
    QRKAbstractModelBrowserData doc;
    auto t1 = watch(doc.objectTypesModel());
    auto t2 = watch(doc.tableModel());
    doc.restart();
    Obj a(QStringLiteral("a")), b(QStringLiteral("b"));
    doc.objectTypesModel()->addPin(&a);
    doc.objectTypesModel()->addPin(&b);
    doc.tableModel()->addSubject(&a);
    doc.tableModel()->addSubject(&b);
    const QModelIndex folder = doc.objectTypesModel()->index(0, 0);
    QCOMPARE(doc.objectTypesModel()->removeRows(row, count, folder), ok);
    QCOMPARE(doc.tableModel()->removeRows(row, count), ok);
    QCOMPARE(doc.tableModel()->rowCount(), ok ? 2 - count : 2);
    QCOMPARE(a.nodeCount() + b.nodeCount(), ok ? 4 - 2 * count : 4);
}

void TestItemModels::refusesNodesThatWouldBreakTheTree()
{
    QRKObjectTypesTreeItemModel m;
    auto t = watch(&m);
    m.restart();
    Obj a(QStringLiteral("a"));
    QRKAbstractItemModelNode* n = m.addPin(&a);
    QVERIFY(!m.addNode(n, m.faultFolder())); // already has a parent
    QVERIFY(!m.addNode(nullptr, m.pinFolder()));
    QVERIFY(!m.insertNode(m.rootNode(), m.pinFolder(), 0)); // its own ancestor
    QVERIFY(!m.replaceNodes(nullptr, {}));
    QVERIFY(m.replaceNodes(m.pinFolder(), {nullptr, a.createTreeNode(&m), nullptr}));
    QCOMPARE(m.rowCount(m.index(0, 0)), 1);
    QCOMPARE(a.nodeCount(), 1);
}

void TestItemModels::clearEmptyChildrenKeepsCompounds()
{
    QRKObjectTypesTreeItemModel m;
    auto t = watch(&m);
    m.restart();
    Obj a(QStringLiteral("a")), b(QStringLiteral("b"));
    m.addPin(&a);
    m.addFault(&b);
    m.removeRows(0, 1, m.indexFromNode(m.faultFolder(), 0)); // no cascade through removeRows
    QCOMPARE(m.rowCount(), 2);
    QVERIFY(m.clearEmptyChildren());
    QCOMPARE(m.rowCount(), 1);
    QCOMPARE(text(m, 0), QStringLiteral("Pins (1)"));
    QVERIFY(!m.clearEmptyChildren());
    m.addFault(&b); // the hidden folder comes back with its next object
    QCOMPARE(m.rowCount(), 2);
}

void TestItemModels::setsRestart()
{
    QRKSetsTreeItemModel m;
    auto t = watch(&m);
    m.restart();
    QCOMPARE(m.rowCount(), 0);
    Obj h(QStringLiteral("h")), s(QStringLiteral("s"));
    m.addHorizon(&h);
    m.addSection(&s);
    QCOMPARE(m.rowCount(), 2);
    QVERIFY(m.folder(QRKSetsTreeItemModel::HorizonFolder)->expanded());
    QCOMPARE(m.folder(QRKSetsTreeItemModel::HorizonFolder)->sortField(), int(Field::SortFirst));
    QVERIFY(!(m.flags(m.index(0, 0)) & Qt::ItemIsUserCheckable));
    m.restart();
    QCOMPARE(m.rowCount(), 2);
    QCOMPARE(m.rowCount(m.index(0, 0)), 0);
    QCOMPARE(m.rowCount(m.index(1, 0)), 0);
    QCOMPARE(h.nodeCount() + s.nodeCount(), 0);
    QCOMPARE(text(m, 0), QStringLiteral("2. Horizons"));
}

void TestItemModels::treeProxyOrder()
{
    QRKSetsTreeItemModel m;
    m.restart();
    QRKTreeProxyItemModel proxy;
    proxy.setSourceModel(&m);
    auto t1 = watch(&m);
    auto t2 = watch(&proxy);
    proxy.sort(0);
    Obj h1(QStringLiteral("Top")), h2(QStringLiteral("Base")), h3(QStringLiteral("Mid")), s(QStringLiteral("s10"));
    h1.fields[Field::SortFirst] = 1.0;
    h2.fields[Field::SortFirst] = 3.0;
    h3.fields[Field::SortFirst] = 3.0; // equal key: names decide
    m.addSet(&s);
    m.addHorizon(&h2);
    m.addHorizon(&h1);
    m.addHorizon(&h3);
    // The root keeps insertion order; horizons follow field -13, then names.
    QCOMPARE(text(proxy, 0), QStringLiteral("6. Sets (1)"));
    const QModelIndex horizons = proxy.index(1, 0);
    QCOMPARE(text(proxy, 0, 0, horizons), QStringLiteral("Top"));
    QCOMPARE(text(proxy, 1, 0, horizons), QStringLiteral("Base"));
    QCOMPARE(text(proxy, 2, 0, horizons), QStringLiteral("Mid"));
    QCOMPARE(proxy.supportedDragActions(), Qt::CopyAction | Qt::MoveAction);
}

void TestItemModels::checkEditSpreadsToOtherModels()
{
    QRKAbstractModelBrowserData doc;
    auto t1 = watch(doc.objectTypesModel());
    auto t2 = watch(doc.setsModel());
    auto t3 = watch(doc.tableModel());
    doc.restart();
    Obj a(QStringLiteral("a")), b(QStringLiteral("b"));
    for (Obj* o : {&a, &b}) {
        doc.objectTypesModel()->addWell(o);
        doc.setsModel()->addSet(o);
        doc.tableModel()->addSubject(o);
    }
    QRKObjectTypesTreeItemModel* types = doc.objectTypesModel();
    const QModelIndex folder = types->index(0, 0);
    QCOMPARE(types->data(folder, Qt::CheckStateRole).toInt(), int(Qt::Checked));
    QSignalSpy treeSpy(types, &QAbstractItemModel::dataChanged);
    QSignalSpy setsSpy(doc.setsModel(), &QAbstractItemModel::dataChanged);
    QSignalSpy tableSpy(doc.tableModel(), &QAbstractItemModel::dataChanged);
    QVERIFY(types->setData(types->index(0, 0, folder), int(Qt::Unchecked), Qt::CheckStateRole));
    QVERIFY(!doc.ignoreTouch());
    QCOMPARE(types->data(folder, Qt::CheckStateRole).toInt(), int(Qt::PartiallyChecked));
    bool folderTouched = false;
    for (const QList<QVariant>& args : treeSpy)
        folderTouched |= args.at(0).toModelIndex() == folder;
    QVERIFY(folderTouched);
    QVERIFY(setsSpy.count() >= 1);
    QVERIFY(tableSpy.count() >= 1);
    const int visible = doc.tableModel()->columnIndex(QStringLiteral("Visible"));
    QCOMPARE(doc.tableModel()->data(doc.tableModel()->index(0, visible), Qt::CheckStateRole).toInt(),
             int(Qt::Unchecked));
    // Renaming through the table shows in the trees.
    QVERIFY(doc.tableModel()->setData(doc.tableModel()->index(1, 1), QStringLiteral("b2")));
    QCOMPARE(text(*types, 1, 0, folder), QStringLiteral("b2"));
    QVERIFY(!types->setData(folder, 1, Qt::ToolTipRole)); // field -99
}

void TestItemModels::tableColumns_data()
{
    QTest::addColumn<QString>("column");
    QTest::addColumn<int>("role");
    QTest::addColumn<QVariant>("expected");
    QTest::newRow("name") << "Name" << int(Qt::DisplayRole) << QVariant("w1");
    QTest::newRow("name edit") << "Name" << int(Qt::EditRole) << QVariant("w1");
    QTest::newRow("colour has no text") << "Colour" << int(Qt::DisplayRole) << QVariant();
    QTest::newRow("colour as background") << "Colour" << int(Qt::BackgroundRole) << QVariant(QColor(Qt::red));
    QTest::newRow("name has no background") << "Name" << int(Qt::BackgroundRole) << QVariant();
    QTest::newRow("visible check") << "Visible" << int(Qt::CheckStateRole) << QVariant(int(Qt::Checked));
    QTest::newRow("visible no text") << "Visible" << int(Qt::DisplayRole) << QVariant();
    QTest::newRow("id right aligned") << "Id" << int(Qt::TextAlignmentRole) << QVariant(130);
    QTest::newRow("id value") << "Id" << int(Qt::DisplayRole) << QVariant(17);
    QTest::newRow("text not aligned") << "Name" << int(Qt::TextAlignmentRole) << QVariant();
    QTest::newRow("user role reads field") << "Id" << int(Qt::UserRole + 3) << QVariant(17);
    QTest::newRow("tool tip") << "Id" << int(Qt::ToolTipRole) << QVariant();
}

void TestItemModels::tableColumns()
{
    QFETCH(QString, column);
    QFETCH(int, role);
    QFETCH(QVariant, expected);
    QRKAbstractModelBrowserData doc;
    auto t = watch(doc.tableModel());
    doc.restart();
    Obj w(QStringLiteral("w1"));
    w.fields[Field::Id] = 17;
    doc.objectTypesModel()->addWell(&w);
    QVERIFY(doc.tableModel()->addSubject(&w));
    QVERIFY(!doc.tableModel()->addSubject(&w)); // the row exists
    QRKTableItemModel* table = doc.tableModel();
    const int c = table->columnIndex(column);
    QVERIFY(c >= 0);
    QCOMPARE(table->data(table->index(0, c), role), expected);
}

void TestItemModels::tableHeaders()
{
    UnitRegistry registry;
    QRKAbstractModelBrowserData doc(&registry);
    QRKTableItemModel* table = doc.tableModel();
    auto t = watch(table);
    doc.restart();
    QCOMPARE(table->columnCount(), 8);
    const QStringList names{"Id", "Name", "Object Type", "Visible", "In Time", "Colour", "Horizon", "Section"};
    for (int i = 0; i < names.size(); ++i)
        QCOMPARE(table->headerData(i, Qt::Horizontal).toString(), names[i]);
    // Locked columns show the lock, check boxes never do.
    QVERIFY(table->headerData(0, Qt::Horizontal, Qt::DecorationRole).canConvert<QIcon>());
    QVERIFY(!table->headerData(1, Qt::Horizontal, Qt::DecorationRole).isValid());
    QVERIFY(!table->headerData(3, Qt::Horizontal, Qt::DecorationRole).isValid());
    QCOMPARE(table->headerData(5, Qt::Horizontal, Qt::SizeHintRole).toSize(), QSize(50, 10));
    QCOMPARE(table->headerData(4, Qt::Horizontal, Qt::SizeHintRole).toSize(), QSize(25, 10));
    QVERIFY(!table->headerData(0, Qt::Vertical).isValid());
    QCOMPARE(int(table->flags(table->index(0, 0))), 0); // no rows yet: invalid index
    // A unit column: the tag follows the display unit.
    QRKTableItemModel::ColumnInfo depth;
    depth.name = QStringLiteral("Depth");
    depth.field = 42;
    depth.type = QRKTableItemModel::RealColumn;
    depth.unitManager = registry.getElevationUnitManager();
    depth.editable = true;
    table->addColumn(depth);
    QCOMPARE(table->columnCount(), 9);
    const auto um = depth.unitManager;
    QCOMPARE(table->headerData(8, Qt::Horizontal).toString(),
             QStringLiteral("Depth (%1)").arg(um->getDisplayUnitTag()));
    QCOMPARE(table->headerData(8, Qt::Horizontal, Qt::ToolTipRole).toString(), um->getDisplayUnitName());
    QSignalSpy header(table, &QAbstractItemModel::headerDataChanged);
    const QString before = um->getDisplayUnitTag();
    um->displayUnit(um->displayUnit() == 0 ? 1 : 0);
    QVERIFY(um->getDisplayUnitTag() != before);
    QVERIFY(header.count() >= 1);
    QCOMPARE(table->headerData(8, Qt::Horizontal).toString(),
             QStringLiteral("Depth (%1)").arg(um->getDisplayUnitTag()));
    QCOMPARE(table->fieldFromColumn(8), 42);
    QCOMPARE(table->fieldFromColumn(9), int(Field::None));
    QVERIFY(table->allowedValues(8).isEmpty());
    table->showColumn(2, false);
    QVERIFY(!table->columns().at(2).visible);
}

void TestItemModels::tableMirrorsTree()
{
    QRKAbstractModelBrowserData doc;
    auto t = watch(doc.tableModel());
    doc.restart();
    QRKObjectTypesTreeItemModel* types = doc.objectTypesModel();
    Obj a(QStringLiteral("a")), b(QStringLiteral("b")), outside(QStringLiteral("x"));
    Group shown(QStringLiteral("G"), true), hidden(QStringLiteral("H"));
    types->addPin(&a);
    types->addFault(&a); // the same subject twice in the tree: one row
    auto* g = static_cast<QRKAbstractItemModelCompoundNode*>(types->addFault(&shown));
    types->addNode(b.createTreeNode(types), g);
    auto* h = static_cast<QRKAbstractItemModelCompoundNode*>(types->addFault(&hidden));
    Obj c(QStringLiteral("c"));
    types->addNode(c.createTreeNode(types), h);
    doc.tableModel()->setTreeRootNode(types->rootNode());
    QRKTableItemModel* table = doc.tableModel();
    QStringList rows;
    for (int r = 0; r < table->rowCount(); ++r)
        rows << text(*table, r, 1);
    QCOMPARE(rows, (QStringList{"a", "G", "b", "c"}));
    QRKSetsTreeItemModel sets;
    sets.restart();
    sets.addSet(&outside);
    QVERIFY(!table->addSubject(&outside)); // not below the mirrored root
    QCOMPARE(table->rowCount(), 4);
    table->clearNodes();
    QCOMPARE(table->rowCount(), 0);
    QCOMPARE(a.nodeCount(), 2);
}

void TestItemModels::tableFilters_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("field");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<bool>("byNode");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("none") << "" << -99 << QVariant() << false << QStringList{"Well 1", "well 10", "Pin A", "G", "in g"};
    QTest::newRow("text any case") << "WELL 1" << -99 << QVariant() << false << QStringList{"Well 1", "well 10"};
    QTest::newRow("regexp syntax") << "^pin" << -99 << QVariant() << false << QStringList{"Pin A"};
    QTest::newRow("field value") << "" << 7 << QVariant(1) << false << QStringList{"well 10"};
    QTest::newRow("node: wells") << "" << -99 << QVariant() << true << QStringList{"Well 1", "well 10"};
    QTest::newRow("node and text") << "10" << -99 << QVariant() << true << QStringList{"well 10"};
}

void TestItemModels::tableFilters()
{
    QFETCH(QString, text);
    QFETCH(int, field);
    QFETCH(QVariant, value);
    QFETCH(bool, byNode);
    QFETCH(QStringList, expected);
    QRKAbstractModelBrowserData doc;
    doc.restart();
    QRKObjectTypesTreeItemModel* types = doc.objectTypesModel();
    Obj w1(QStringLiteral("Well 1")), w10(QStringLiteral("well 10")), p(QStringLiteral("Pin A")),
        leaf(QStringLiteral("in g"));
    w10.fields[7] = 1;
    Group g(QStringLiteral("G"), true);
    types->addWell(&w1);
    types->addWell(&w10);
    types->addPin(&p);
    auto* gn = static_cast<QRKAbstractItemModelCompoundNode*>(types->addFault(&g));
    types->addNode(leaf.createTreeNode(types), gn);
    doc.tableModel()->setTreeRootNode(types->rootNode());
    QRKTableProxyItemModel proxy;
    proxy.setSourceModel(doc.tableModel());
    auto t = watch(&proxy);
    proxy.setFilterKeyColumn(1);
    proxy.setFilterText(text);
    proxy.setNodeFilter(byNode ? types->wellFolder() : nullptr, field, value);
    QStringList rows;
    for (int r = 0; r < proxy.rowCount(); ++r)
        rows << proxy.index(r, 1).data().toString();
    QCOMPARE(rows, expected);
    QCOMPARE(proxy.headerData(1, Qt::Horizontal, Qt::DecorationRole).canConvert<QIcon>(), !text.isEmpty());
    // With the fault as filter node, the leaf inside the included compound is hidden.
    proxy.setFilterText(QString());
    proxy.setNodeFilter(gn, -99, QVariant());
    QCOMPARE(proxy.rowCount(), 1);
    QCOMPARE(proxy.index(0, 1).data().toString(), QStringLiteral("in g"));
    proxy.setNodeFilter(types->faultFolder(), -99, QVariant());
    QCOMPARE(proxy.rowCount(), 1);
    QCOMPARE(proxy.index(0, 1).data().toString(), QStringLiteral("G"));
}

void TestItemModels::tableSortNatural()
{
    QRKAbstractModelBrowserData doc;
    doc.restart();
    QList<Obj*> objs;
    for (const char* n : {"item10", "Item2", "item1", "item02"}) {
        objs << new Obj(QString::fromLatin1(n));
        doc.objectTypesModel()->addPin(objs.last());
        doc.tableModel()->addSubject(objs.last());
    }
    objs[0]->fields[Field::Id] = 3;
    objs[1]->fields[Field::Id] = 1;
    // item1 and item02 have no id: they sort ahead, by name.
    QRKTableProxyItemModel proxy;
    proxy.setSourceModel(doc.tableModel());
    auto t = watch(&proxy);
    proxy.sort(1);
    QStringList rows;
    for (int r = 0; r < proxy.rowCount(); ++r)
        rows << proxy.index(r, 1).data().toString();
    QCOMPARE(rows, (QStringList{"item02", "item1", "Item2", "item10"}));
    proxy.sort(0);
    rows.clear();
    for (int r = 0; r < proxy.rowCount(); ++r)
        rows << proxy.index(r, 1).data().toString();
    QCOMPARE(rows, (QStringList{"item02", "item1", "Item2", "item10"}));
    objs[1]->fields[Field::Id] = 5; // dynamic sort follows a touched row
    objs[1]->touch();
    QCOMPARE(proxy.index(3, 1).data().toString(), QStringLiteral("Item2"));
    for (Obj* o : objs)
        o->clearNodes();
    QCOMPARE(proxy.rowCount(), 0);
    qDeleteAll(objs);
}

void TestItemModels::selectionFromSubjects()
{
    QRKAbstractModelBrowserData doc;
    doc.restart();
    QList<Obj*> objs;
    for (bool selected : {true, true, false, true}) {
        objs << new Obj(QStringLiteral("o%1").arg(objs.size()));
        objs.last()->setSelected(selected);
        doc.objectTypesModel()->addPin(objs.last());
        doc.tableModel()->addSubject(objs.last());
    }
    // Runs of neighbouring selected rows become one range each.
    const QItemSelection table = doc.tableModel()->getSelectionFromSubjects();
    QCOMPARE(table.size(), 2);
    QCOMPARE(table.at(0).top(), 0);
    QCOMPARE(table.at(0).bottom(), 1);
    QCOMPARE(table.at(1).top(), 3);
    QCOMPARE(table.at(1).right(), 0);
    const QItemSelection tree = doc.objectTypesModel()->getSelectionFromSubjects();
    QCOMPARE(tree.size(), 2);
    const QModelIndex pins = doc.objectTypesModel()->index(0, 0);
    QCOMPARE(tree.at(0).parent(), pins);
    QCOMPARE(tree.at(0).bottom(), 1);
    QCOMPARE(tree.at(1).top(), 3);
    for (Obj* o : objs)
        o->clearNodes();
    qDeleteAll(objs);
}

void TestItemModels::hostileOrders()
{
    // What a view or careless caller can do in any order: every model stays consistent for the
    // testers and nothing is read after it is freed (the ASan build checks that).
    QRKAbstractModelBrowserData doc;
    QRKTableProxyItemModel tableProxy;
    QRKTreeProxyItemModel treeProxy;
    tableProxy.setSourceModel(doc.tableModel());
    treeProxy.setSourceModel(doc.objectTypesModel());
    auto t1 = watch(doc.objectTypesModel());
    auto t2 = watch(doc.setsModel());
    auto t3 = watch(doc.tableModel());
    auto t4 = watch(&tableProxy);
    auto t5 = watch(&treeProxy);
    QRKObjectTypesTreeItemModel* types = doc.objectTypesModel();
    // Before restart: no root, nothing to show, nothing accepted.
    QVERIFY(!types->addPin(static_cast<QRKAbstractSubject*>(nullptr)));
    QCOMPARE(types->rowCount(), 0);
    QVERIFY(!types->removeNode(nullptr));
    types->removeSubject(nullptr);
    doc.tableModel()->setTreeRootNode(nullptr);
    tableProxy.sort(1);
    treeProxy.sort(0);
    doc.touch();
    doc.restart();
    Obj a(QStringLiteral("a")), b(QStringLiteral("b"));
    types->addPin(&a);
    types->addWell(&b);
    doc.tableModel()->addSubject(&a);
    doc.tableModel()->addSubject(&b);
    // Folder rows removed from the root come back with their next object.
    QVERIFY(types->removeRows(0, 2, QModelIndex()));
    QCOMPARE(types->rowCount(), 0);
    QCOMPARE(a.nodeCount(), 1); // its table row
    QVERIFY(!types->removeNode(types->rootNode()));
    types->addPin(&a);
    QCOMPARE(types->rowCount(), 1);
    // Replacing the root's children by a detached folder and a duplicate of it.
    QVERIFY(types->replaceNodes(types->rootNode(), {types->wellFolder(), types->wellFolder(), nullptr}));
    QCOMPARE(types->rowCount(), 1);
    QCOMPARE(types->nodeFromIndex(types->index(0, 0)), types->wellFolder());
    QCOMPARE(a.nodeCount(), 1);
    // Adding under a detached folder changes no shown rows; attaching shows them at once.
    QVERIFY(types->addNode(a.createTreeNode(types), types->pinFolder()));
    QCOMPARE(types->rowCount(), 1);
    QVERIFY(types->addNode(types->pinFolder(), types->rootNode()));
    QCOMPARE(types->rowCount(types->index(1, 0)), 1);
    QVERIFY(types->clearNodes(types->rootNode()));
    QCOMPARE(types->rowCount(), 0);
    QVERIFY(!types->index(0, 0, doc.setsModel()->index(0, 0)).isValid());
    doc.touchReset();
    doc.restart(); // the table mirrors the now empty tree
    QCOMPARE(doc.tableModel()->rowCount(), 0);
    QCOMPARE(a.nodeCount() + b.nodeCount(), 0);
}

void TestItemModels::teardownInEitherOrder_data()
{
    QTest::addColumn<bool>("modelsFirst");
    QTest::newRow("models first") << true;
    QTest::newRow("subjects first") << false;
}

void TestItemModels::teardownInEitherOrder()
{
    QFETCH(bool, modelsFirst);
    auto doc = std::make_unique<QRKAbstractModelBrowserData>();
    doc->restart();
    auto a = std::make_unique<Obj>(QStringLiteral("a"));
    auto g = std::make_unique<Group>(QStringLiteral("g"), true);
    doc->objectTypesModel()->addPin(a.get());
    doc->setsModel()->addSet(a.get());
    auto* gn = static_cast<QRKAbstractItemModelCompoundNode*>(doc->objectTypesModel()->addFault(g.get()));
    Obj leaf(QStringLiteral("leaf"));
    doc->objectTypesModel()->addNode(leaf.createTreeNode(doc->objectTypesModel()), gn);
    doc->tableModel()->setTreeRootNode(doc->objectTypesModel()->rootNode());
    QCOMPARE(a->nodeCount(), 3);
    if (modelsFirst) {
        doc.reset();
        QCOMPARE(a->nodeCount(), 0);
        QCOMPARE(leaf.nodeCount(), 0);
        a.reset();
        g.reset();
    } else {
        a.reset();
        g->destroyNodes(); // models alive: removed through them
        g.reset();
        // The leaf's tree node went with its compound; the table does not follow the tree.
        QCOMPARE(doc->tableModel()->rowCount(), 1);
        QCOMPARE(leaf.nodeCount(), 1);
        doc.reset();
    }
}

QTEST_MAIN(TestItemModels)
#include "tst_itemmodels.moc"
