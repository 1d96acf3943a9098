// The attribute-table tree: keys across shape changes, the blank sentinel, growth, the stated
// asymmetries of the lookups, typed writes with units, selection and ownership.
#include "matrix/MatrixData.h"
#include "units/UnitManager.h"
#include "units/UnitRegistry.h"

#include <QtTest>

#include <memory>

using rkBase::MatrixData;
using rkBase::UNDEFINED_VALUE;
using rkBase::UnitRegistry;

namespace {

MatrixData* column(const QString& name, int rows, QVariant::Type type = QVariant::Double)
{
    return new MatrixData(name, rows, 1, type, true);
}

// A root with groups "g<i>" holding the leaves named in `leaves[i]`.
std::unique_ptr<MatrixData> tree(const QList<QStringList>& leaves)
{
    auto root = std::make_unique<MatrixData>(QStringLiteral("root"), 0, 1, QVariant::Double, false);
    for (int i = 0; i < leaves.size(); ++i) {
        auto* group = new MatrixData(QStringLiteral("g%1").arg(i), 0, 1, QVariant::Double, false);
        root->appendChild(group, false);
        for (const QString& name : leaves[i])
            group->appendChild(column(name, 3), false);
    }
    return root;
}

} // namespace

class TestMatrixData : public QObject {
    Q_OBJECT

private slots:
    void construction()
    {
        MatrixData lazy(QStringLiteral("n"), 5, 0, QVariant::Int, false);
        QCOMPARE(lazy.columnCount(), 1);
        QCOMPARE(lazy.rowCount(), 5);
        QCOMPARE(lazy.cellCount(), 0);
        MatrixData full(QStringLiteral("n"), 4, 3, QVariant::Int, true);
        QCOMPARE(full.cellCount(), 12);
        QVERIFY(full.isNullObject(3, 2));
        QCOMPARE(full.interfaceName(), QStringLiteral("n"));
        QCOMPARE(full.value(-1, 0), QVariant(QStringLiteral("n"))); // the name for negative indices
    }

    // Column-major keys: after every change of shape each cell is found at c * rows + r.
    void keysAcrossShapeChanges()
    {
        MatrixData m(QStringLiteral("m"), 3, 2, QVariant::Double, true);
        for (int c = 0; c < 2; ++c)
            for (int r = 0; r < 3; ++r)
                m.setDouble(r, c, 10 * c + r);
        m.appendRows(2);
        QCOMPARE(m.rowCount(), 5);
        for (int c = 0; c < 2; ++c) {
            for (int r = 0; r < 3; ++r)
                QCOMPARE(m.toDouble(r, c), double(10 * c + r));
            QCOMPARE(m.value(3, c), QVariant(0.0)); // new rows hold 0.0, not blanks
            QCOMPARE(m.value(4, c), QVariant(0.0));
        }
        QCOMPARE(m.maxValue(), QVariant(12.0)); // the cache holds the last column recomputed
        m.appendColumns(1);
        QCOMPARE(m.columnCount(), 3);
        for (int r = 0; r < 5; ++r)
            QCOMPARE(m.value(r, 2), QVariant(int(r + 1))); // a new column numbers its rows from 1
        QCOMPARE(m.toDouble(2, 1), 12.0);
    }

    void sentinelRoundTrip()
    {
        MatrixData m(QStringLiteral("m"), 2, 1, QVariant::Double, true);
        QCOMPARE(m.toDouble(0, 0), double(UNDEFINED_VALUE));
        QCOMPARE(m.toInt(0, 0), UNDEFINED_VALUE);
        m.setDouble(0, 0, 99999.0);
        QVERIFY(m.isNullObject(0, 0));
        m.setInt(1, 0, 99999);
        QVERIFY(m.isNullObject(1, 0));
        m.setDouble(1, 0, 99998.5);
        QCOMPARE(m.toDouble(1, 0), 99998.5);
        QCOMPARE(m[1], 99998.5);
    }

    void growthByWritingPastTheEnd()
    {
        MatrixData m(QStringLiteral("m"), 2, 1, QVariant::Double, true);
        m.setValue(2, 0, 7.0); // just past the end: one more row
        QCOMPARE(m.rowCount(), 3);
        QCOMPARE(m.toDouble(2, 0), 7.0);
        m.setValue(6, 0, 9.0); // further: a cell, and the count becomes the number of cells
        QCOMPARE(m.rowCount(), 4);
        QCOMPARE(m.cellCount(), 4);
        m.appendValue(QVariant(1.5));
        QCOMPARE(m.rowCount(), 5);
        QCOMPARE(m.validValueRowCount(), 2); // appending does not count valid rows
    }

    void lookups()
    {
        auto root = tree({{"a", "g0", "b"}, {"g1", "c"}, {"d"}});
        // A group's own name wins over a later leaf of that name...
        QCOMPARE(root->getNodeFromName(QStringLiteral("g0"))->name(), QStringLiteral("g0"));
        QVERIFY(root->getNodeFromName(QStringLiteral("g0"))->childCount() == 3);
        // ...but its first leaf of that name replaces it.
        QCOMPARE(root->getNodeFromName(QStringLiteral("g1")), root->child(1)->child(0));
        QCOMPARE(root->getNodeFromName(QStringLiteral("c")), root->child(1)->child(1));
        QCOMPARE(root->getNodeFromName(QStringLiteral("zz")), nullptr);
        // IDs: leaves only, not groups.
        QCOMPARE(root->getNodeFromID(root->child(2)->child(0)->ID()), root->child(2)->child(0));
        QCOMPARE(root->getNodeFromID(root->child(0)->ID()), nullptr);
        // child(QString) finds leaves at any depth, never a group.
        QCOMPARE(root->child(QStringLiteral("d")), root->child(2)->child(0));
        QCOMPARE(root->child(QStringLiteral("g2")), nullptr);
        QCOMPARE(root->leafs().size(), 6);
        // getNode counts selected visible leaves and falls back to the last leaf.
        root->child(0)->child(1)->setSelected(false, true);
        QCOMPARE(root->getNode(1)->name(), QStringLiteral("b"));
        QCOMPARE(root->getNode(99)->name(), QStringLiteral("d"));
        QCOMPARE(root->numberOfSelectedItems(), 5);
        QCOMPARE(tree({})->getNode(0), nullptr);
        QCOMPARE(root->getContainerFromName(QStringLiteral("g2")), root->child(2));
        QCOMPARE(root->getFirstChildWithData(), root->child(0)->child(0));
    }

    void uniqueNames()
    {
        auto root = tree({});
        root->appendChild(column(QStringLiteral("depth"), 1), false);
        root->appendChild(column(QStringLiteral("depth_1"), 1), false);
        QString name = QStringLiteral("depth");
        root->createUniqueName(name);
        QCOMPARE(name, QStringLiteral("depth_1")); // one pass: not tested again, as stated
        QCOMPARE(root->countName(QStringLiteral("DEPTH"), Qt::CaseInsensitive), 1);
        QVERIFY(!root->findName(QStringLiteral("DEPTH"), Qt::CaseSensitive));
        // A shared child (no parent) is descended instead of counted.
        auto* shared = new MatrixData(QStringLiteral("depth"), 0, 1, QVariant::Double, false);
        shared->appendChild(column(QStringLiteral("depth"), 1), false);
        root->appendChild(shared, true);
        QCOMPARE(root->countName(QStringLiteral("depth"), Qt::CaseSensitive), 2);
        root->removeChild(shared);
        delete shared;
    }

    void addChildBlanksAnExistingColumn()
    {
        auto root = tree({{"a"}});
        MatrixData* a = root->child(0)->child(0);
        a->setDouble(0, 0, 4.0);
        bool existed = false;
        QCOMPARE(root->addChild(root->child(0), 3, QStringLiteral("a"), false, existed), a);
        QVERIFY(existed);
        QVERIFY(a->isNullObject(0, 0));
        MatrixData* fresh = root->addChild(root->child(0), 4, QStringLiteral("new"), false, existed);
        QVERIFY(!existed);
        QCOMPARE(fresh->parent(), root->child(0));
        QCOMPARE(fresh->rowCount(), 4);
        QCOMPARE(fresh->cellType(), QVariant::Double);
    }

    void selectionPropagates()
    {
        auto root = tree({{"a", "b"}});
        MatrixData* group = root->child(0);
        // A root passes the value down; the group, having a parent, reports to the root and
        // does not pass it on to its leaves.
        root->setSelected(false, false);
        QVERIFY(group->child(1)->isSelected());
        // A leaf makes its group selected exactly when some visible sibling is.
        group->child(0)->setSelected(false, false);
        QVERIFY(group->isSelected());
        group->child(1)->setSelected(false, false);
        QVERIFY(!group->isSelected());
        group->child(1)->visibleToUser(false);
        group->child(1)->setSelected(true, false);
        QVERIFY(!group->isSelected()); // an invisible sibling does not count
        group->child(0)->setSelected(true, false);
        QVERIFY(group->isSelected());
    }

    void rowCounts()
    {
        auto root = tree({{"a", "b"}, {"c"}});
        root->child(1)->child(0)->appendRows(4);
        root->child(0)->child(0)->setValidValueRowCount(2);
        root->child(0)->child(0)->setStartRowCount(10);
        QCOMPARE(root->maxRowCount(), 7);
        QCOMPARE(root->maxNumbOfSelectedRows(5, 0), 3); // rows 10 + 2 = 12 over 5, rounded up
        QCOMPARE(root->maxNumbOfSelectedRows(1, 8), 8);
        QCOMPARE(tree({})->maxRowCount(), -1);
    }

    void validRowsAndEmptyGroups()
    {
        auto root = tree({{"a"}, {"b"}, {}});
        root->child(0)->child(0)->setDouble(1, 0, 3.0);
        auto* emptyGroup = root->child(1);
        auto* noLeaves = root->child(2);
        root->removeEmptyGroups();
        QCOMPARE(root->childCount(), 1);
        QCOMPARE(root->child(0)->child(0)->validValueRowCount(), 1);
        delete emptyGroup; // handed back, not deleted
        delete noLeaves;
        // A symbol number 0 counts as a value.
        MatrixData icons(QStringLiteral("i"), 2, 1, QVariant::Icon, true);
        MatrixData parent(QStringLiteral("p"), 0, 1, QVariant::Double, false);
        icons.setParent(&parent);
        icons.setValue(0, 0, QVariant(0));
        icons.checkValidRowCount();
        QCOMPARE(icons.validValueRowCount(), 1);
    }

    void typedWrites_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QVariant>("stored");
        QTest::newRow("double") << int(QVariant::Double) << "2.5" << QVariant(2.5);
        QTest::newRow("double, unreadable") << int(QVariant::Double) << "abc" << QVariant();
        QTest::newRow("empty") << int(QVariant::Double) << "" << QVariant();
        QTest::newRow("int from a decimal") << int(QVariant::Int) << "7.9" << QVariant(7);
        QTest::newRow("int too large") << int(QVariant::Int) << "1e12" << QVariant();
        QTest::newRow("bool") << int(QVariant::Bool) << "2" << QVariant(true);
        QTest::newRow("bool zero") << int(QVariant::Bool) << "0" << QVariant(false);
        QTest::newRow("text") << int(QVariant::String) << "granite" << QVariant(QStringLiteral("granite"));
        QTest::newRow("colour") << int(QVariant::Color) << "#ff0000" << QVariant(QStringLiteral("#ff0000"));
    }
    void typedWrites()
    {
        QFETCH(int, type);
        QFETCH(QString, text);
        QFETCH(QVariant, stored);
        MatrixData m(QStringLiteral("m"), 1, 1, QVariant::Type(type), true);
        m.insertValueTypeDependend(0, text);
        QCOMPARE(m.value(0, 0), stored);
    }

    void readerConvertsFromTheNodeUnit()
    {
        UnitRegistry registry;
        MatrixData m(QStringLiteral("depth"), 2, 1, QVariant::Double, true);
        m.setRegistry(&registry);
        m.setUnitManager(UnitRegistry::CATEGORY_ELEVATION);
        QVERIFY(m.unitManager());
        m.setNodeUnitKey(m.unitManager()->findUnit(QStringLiteral("ft")));
        m.insertValueTypeDependend(0, QStringLiteral("1000"));
        QCOMPARE(m.toDouble(0, 0), 304.8);
        QCOMPARE(m.nodeUnitTag(), QStringLiteral("ft"));
        m.setValueTypeDependend(1, QStringLiteral("1000")); // the plain form does not convert
        QCOMPARE(m.toDouble(1, 0), 1000.0);
        QCOMPARE(m.unitCategory(), UnitRegistry::CATEGORY_ELEVATION);
        // Another registry: the node follows to that registry's manager of the category.
        UnitRegistry other;
        m.setRegistry(&other);
        QCOMPARE(m.unitManager(), other.getCategory(UnitRegistry::CATEGORY_ELEVATION));
    }

    void systemTypes_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("back");
        QTest::newRow("bool") << int(QVariant::Bool) << "Boolean" << int(QVariant::Bool);
        QTest::newRow("int") << int(QVariant::Int) << "Integer" << int(QVariant::Int);
        QTest::newRow("double") << int(QVariant::Double) << "Real" << int(QVariant::Double);
        QTest::newRow("string") << int(QVariant::String) << "Text" << int(QVariant::String);
        QTest::newRow("colour") << int(QVariant::Color) << "Color" << int(QVariant::Color);
        QTest::newRow("icon: a symbol number") << int(QVariant::Icon) << "Integer" << int(QVariant::Int);
        QTest::newRow("key sequence") << int(QVariant::KeySequence) << "Real" << int(QVariant::Double);
    }
    void systemTypes()
    {
        QFETCH(int, type);
        QFETCH(QString, name);
        QFETCH(int, back);
        MatrixData m(QStringLiteral("m"), 0, 1, QVariant::Type(type), false);
        QCOMPARE(m.systemType(), name);
        QCOMPARE(int(MatrixData::systemType(name)), back);
        QCOMPARE(int(MatrixData::systemType(QStringLiteral("Nonsense"))), int(QVariant::String));
    }

    void colourSequence()
    {
        // The hue steps by 107 (mod 256) and the value falls by 64 every twelve nodes.
        MatrixData first(QStringLiteral("a"), 0, 1, QVariant::Double, false);
        int h0 = 0, s0 = 0, v0 = 0;
        first.color().getHsv(&h0, &s0, &v0);
        QCOMPARE(s0, 128);
        QList<QColor> colours;
        for (int i = 0; i < 48; ++i)
            colours << MatrixData(QStringLiteral("n"), 0, 1, QVariant::Double, false).color();
        int previousHue = -1;
        for (int i = 0; i < 48; ++i) {
            int h = 0, s = 0, v = 0;
            colours[i].getHsv(&h, &s, &v);
            QCOMPARE(s, 128);
            if (previousHue >= 0)
                QVERIFY((previousHue + 107) % 256 == h || previousHue + 107 - 256 == h || s == 0);
            previousHue = h;
            QVERIFY(v == 255 || v == 191 || v == 127 || v == 63);
        }
        // A copy takes the colour and does not advance the sequence.
        MatrixData copy(first, false);
        QCOMPARE(copy.color(), first.color());
    }

    void copiesShareChildrenWithoutOwningThem()
    {
        auto root = tree({{"a", "b"}});
        root->child(0)->child(0)->setDouble(1, 0, 5.0);
        {
            MatrixData copy(*root, true);
            QCOMPARE(copy.childCount(), 1);
            QCOMPARE(copy.child(0), root->child(0)); // the same pointer
            MatrixData leafCopy(*root->child(0)->child(0));
            QCOMPARE(leafCopy.toDouble(1, 0), 5.0);
        } // the copies go; the children stay (the ASan build proves no double delete)
        QCOMPARE(root->child(0)->child(0)->toDouble(1, 0), 5.0);
        MatrixData assigned(QStringLiteral("x"), 1, 1, QVariant::Double, true);
        assigned.appendChild(column(QStringLiteral("owned"), 1), false);
        assigned = *root->child(0)->child(0);
        QCOMPARE(assigned.toDouble(1, 0), 5.0);
        QCOMPARE(assigned.childCount(), 0);
    }

    void minMaxCache()
    {
        MatrixData m(QStringLiteral("m"), 4, 1, QVariant::Double, true);
        m.setDouble(0, 0, 2.0);
        m.setDouble(2, 0, -4.0);
        m.setDouble(3, 0, 8.0);
        m.setMinMax(0, std::vector<int>());
        QCOMPARE(m.minValue(), QVariant(-4.0));
        QCOMPARE(m.maxValue(), QVariant(8.0));
        QCOMPARE(m.meanValue(), QVariant(2.0));
        m.setMinMax(0, std::vector<int>{0, 1, 99});
        QCOMPARE(m.maxValue(), QVariant(2.0));
        m.setMinMax(0, boost::dynamic_bitset<>(3)); // a set of another size: nothing
        QCOMPARE(m.maxValue(), QVariant(2.0));
        m.setMinMax(0, std::vector<int>{1});
        QVERIFY(m.minValue().isNull()); // only blanks
    }
};

QTEST_GUILESS_MAIN(TestMatrixData)
#include "tst_matrixdata.moc"
