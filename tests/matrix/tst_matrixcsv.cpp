// Table files and the binary column form: round trips of tree, cells, types, colours and
// units; appended tables; statistics rows; plain files; the writer's failure; the clipboard.
#include "matrix/MatrixData.h"
#include "units/UnitManager.h"
#include "units/UnitRegistry.h"

#include <QDataStream>
#include <QMimeData>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

using rkBase::MatrixData;
using rkBase::UnitRegistry;

namespace {

struct Table {
    UnitRegistry registry;
    std::unique_ptr<MatrixData> root{new MatrixData(QStringLiteral("root"), 0, 1, QVariant::Double, false)};
    Table() { root->setRegistry(&registry); }
    MatrixData* add(const QString& group, const QString& name, QVariant::Type type, const QList<QVariant>& cells)
    {
        MatrixData* g = root->getContainerFromName(group);
        if (!g) {
            g = new MatrixData(group, 0, 1, QVariant::Double, false);
            root->appendChild(g, false);
        }
        auto* leaf = new MatrixData(name, cells.size(), 1, type, true);
        for (int r = 0; r < cells.size(); ++r)
            leaf->setValue(r, 0, cells[r]);
        g->appendChild(leaf, false);
        return leaf;
    }
};

void fillSample(Table& t)
{
    MatrixData* depth = t.add("Wells", "depth", QVariant::Double, {12.5, QVariant(), 1500.25});
    depth->setUnitManager(UnitRegistry::CATEGORY_ELEVATION);
    depth->setColor(QColor("#336699"));
    t.add("Wells", "rock", QVariant::String, {"granite, grey", "gneiss", QVariant()});
    t.add("Samples", "count", QVariant::Int, {3, 0, -7});
    t.add("Samples", "fresh", QVariant::Bool, {true, false, true});
}

} // namespace

class TestMatrixCsv : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;
    QString path(const QString& name) const { return m_dir.filePath(name); }

private slots:
    void roundTrip()
    {
        Table t;
        fillSample(t);
        bool ok = false;
        QVERIFY(t.root->writeCSV(path("a.csv"), &ok, false, false, false, true, nullptr));
        QVERIFY(ok);
        Table back;
        QVERIFY(back.root->readCSV(path("a.csv"), 0));
        QCOMPARE(back.root->childCount(), 2);
        MatrixData* depth = back.root->getNodeFromName("depth");
        QVERIFY(depth);
        QCOMPARE(depth->parent()->name(), QStringLiteral("Wells"));
        QCOMPARE(depth->cellType(), QVariant::Double);
        QCOMPARE(depth->toDouble(0, 0), 12.5);
        QVERIFY(depth->isNullObject(1, 0));
        QCOMPARE(depth->toDouble(2, 0), 1500.25);
        QCOMPARE(depth->color(), QColor("#336699"));
        QCOMPARE(depth->unitCategory(), UnitRegistry::CATEGORY_ELEVATION);
        MatrixData* rock = back.root->getNodeFromName("rock");
        QCOMPARE(rock->value(0, 0).toString(), QStringLiteral("granite  grey")); // the comma becomes a blank
        QCOMPARE(back.root->getNodeFromName("count")->value(2, 0), QVariant(-7));
        QCOMPARE(back.root->getNodeFromName("count")->cellType(), QVariant::Int);
        QCOMPARE(back.root->getNodeFromName("fresh")->value(1, 0), QVariant(false));
    }

    void displayUnitsAreWrittenAndReadBack()
    {
        Table t;
        fillSample(t);
        t.registry.setCategoryTable(rkBase::DISPLAY_IMPERIAL); // elevation shown in feet
        QVERIFY(t.root->writeCSV(path("feet.csv"), nullptr, false, false, false, false, nullptr));
        QFile f(path("feet.csv"));
        QVERIFY(f.open(QIODevice::ReadOnly));
        const QString text = QString::fromUtf8(f.readAll());
        QVERIFY2(text.contains(QStringLiteral("\nfoot,")), qPrintable(text));
        QVERIFY(text.contains(QStringLiteral("41.010499,"))); // 12.5 m in feet, six decimals
        Table back;
        QVERIFY(back.root->readCSV(path("feet.csv"), 0));
        QVERIFY(std::fabs(back.root->getNodeFromName("depth")->toDouble(0, 0) - 12.5) < 1e-6); // read in feet, stored in metres
    }

    void appendedTablesAndStatistics()
    {
        Table first;
        fillSample(first);
        QVERIFY(first.root->writeCSV(path("two.csv"), nullptr, true, false, false, false, nullptr));
        Table second;
        second.add("Faults", "throw", QVariant::Double, {1.0, 2.0, 4.0});
        second.root->getNodeFromName("throw")->setMinMax(0, std::vector<int>());
        QVERIFY(second.root->writeCSV(path("two.csv"), nullptr, true, true, true, false, nullptr));
        QFile f(path("two.csv"));
        QVERIFY(f.open(QIODevice::ReadOnly));
        const QString written = QString::fromUtf8(f.readAll());
        QVERIFY(written.contains(MatrixData::csvFileIdentifier() + "," + MatrixData::csvFileTableSeparator()));
        Table back;
        QVERIFY(back.root->readCSV(path("two.csv"), 1));
        QCOMPARE(back.root->childCount(), 1);
        MatrixData* t = back.root->getNodeFromName("throw");
        QVERIFY(t);
        // The statistics rows (1, mean 7/3, 4) come back as data rows before the cells.
        QCOMPARE(t->rowCount(), 6);
        QCOMPARE(t->toDouble(0, 0), 1.0);
        QCOMPARE(t->toDouble(2, 0), 4.0);
        QCOMPARE(t->toDouble(5, 0), 4.0);
        // A one-column table keeps its blank cells (empty lines) in place.
        Table blanks;
        blanks.add("G", "only", QVariant::Double, {1.0, QVariant(), QVariant(), 4.0});
        QVERIFY(blanks.root->writeCSV(path("blanks.csv"), nullptr, true, false, false, false, nullptr));
        Table blanksBack;
        QVERIFY(blanksBack.root->readCSV(path("blanks.csv"), 0));
        MatrixData* only = blanksBack.root->getNodeFromName("only");
        QCOMPARE(only->rowCount(), 4);
        QVERIFY(only->isNullObject(1, 0) && only->isNullObject(2, 0));
        QCOMPARE(only->toDouble(3, 0), 4.0);
        Table firstBack;
        QVERIFY(firstBack.root->readCSV(path("two.csv"), 0));
        QVERIFY(firstBack.root->getNodeFromName("depth"));
        QVERIFY(!firstBack.root->getNodeFromName("throw"));
    }

    void unselectedLeavesAreLeftOut()
    {
        Table t;
        fillSample(t);
        t.root->getNodeFromName("rock")->setSelected(false, true);
        QVERIFY(t.root->writeCSV(path("sel.csv"), nullptr, false, false, false, false, nullptr));
        Table back;
        QVERIFY(back.root->readCSV(path("sel.csv"), 0));
        QVERIFY(!back.root->getNodeFromName("rock"));
        QVERIFY(back.root->getNodeFromName("fresh"));
    }

    void plainFileFallback()
    {
        QFile f(path("plain.csv"));
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write("x,y,name\r\n1.5,2,alpha\n3,,beta\n-4e2,7,\n");
        f.close();
        Table back;
        QVERIFY(back.root->readCSV(path("plain.csv"), 0));
        QCOMPARE(back.root->child(0)->name(), QStringLiteral("plain"));
        MatrixData* x = back.root->getNodeFromName("x");
        QCOMPARE(x->cellType(), QVariant::Double);
        QCOMPARE(x->toDouble(2, 0), -400.0);
        QVERIFY(back.root->getNodeFromName("y")->isNullObject(1, 0));
        QCOMPARE(back.root->getNodeFromName("name")->cellType(), QVariant::String);
        QVERIFY(!back.root->readCSV(path("missing.csv"), 0));
        QCOMPARE(back.root->childCount(), 1); // a missing file leaves the tree as it was
    }

    void unwritablePath()
    {
        Table t;
        fillSample(t);
        bool ok = true;
        QString error;
        QVERIFY(!t.root->writeCSV(m_dir.filePath("no/such/dir/x.csv"), &ok, false, false, false, false, nullptr,
                                  nullptr, &error));
        QVERIFY(!ok);
        QCOMPARE(error, QStringLiteral("The specified file is not writable."));
    }

    void binaryColumn()
    {
        MatrixData depth(QStringLiteral("depth"), 3, 1, QVariant::Double, true);
        depth.setDouble(0, 0, 4.5);
        depth.setDouble(2, 0, -1);
        QByteArray bytes;
        {
            QDataStream out(&bytes, QIODevice::WriteOnly);
            depth.putDataOnStream(out, false);
        }
        QDataStream in(bytes);
        MatrixData back(QStringLiteral("other"), 0, 1, QVariant::String, false);
        back.getDataFromStream(in);
        QCOMPARE(back.name(), QStringLiteral("depth"));
        QCOMPARE(back.rowCount(), 3);
        QCOMPARE(back.cellType(), QVariant::Double);
        QCOMPARE(back.toDouble(0, 0), 4.5);
        QVERIFY(back.isNullObject(1, 0)); // the blank travelled as 99999 and is blank again
        // A hostile stream announcing a billion rows is refused without allocating.
        QByteArray hostile;
        {
            QDataStream out(&hostile, QIODevice::WriteOnly);
            out << 1000000000 << int(QVariant::Double) << QStringLiteral("x");
        }
        QDataStream bad(hostile);
        back.getDataFromStream(bad);
        QCOMPARE(back.rowCount(), 3);
    }

    void clipboardTable()
    {
        Table t;
        fillSample(t);
        QMimeData mime;
        MatrixData::setHTML_MimeData(&mime, {t.root->getNodeFromName("rock"), t.root->getNodeFromName("count")});
        QVERIFY(mime.hasHtml());
        QVERIFY(mime.html().contains(QStringLiteral("<th>rock</th><th>count</th>")));
        QVERIFY(mime.html().contains(QStringLiteral("<td>gneiss</td><td>0</td>")));
    }
};

QTEST_GUILESS_MAIN(TestMatrixCsv)
#include "tst_matrixcsv.moc"
