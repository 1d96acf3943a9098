// Row editing on a table and its undo/redo: recipes in the entries' texts, mirrors between the
// lists, the trim, the delegate path with a small real delegate, and a random walk checked
// against a plain model of the rows.
#include "matrix/AbstractMatrixDataID.h"
#include "matrix/MatrixData.h"
#include "matrix/MatrixDataRestore.h"

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QRandomGenerator>
#include <QtTest>

#include <memory>

using rkBase::MatrixData;
using rkBase::MatrixDataRestore;

namespace {

using Rows = QList<QList<QVariant>>; // row -> one value per column

// A root, one group and `columns` double columns holding row * 10 + column.
std::unique_ptr<MatrixData> table(int rows, int columns)
{
    auto root = std::make_unique<MatrixData>(QStringLiteral("table"), 0, 1, QVariant::Double, false);
    auto* group = new MatrixData(QStringLiteral("group"), 0, 1, QVariant::Double, false);
    root->appendChild(group, false);
    for (int c = 0; c < columns; ++c) {
        auto* leaf = new MatrixData(QStringLiteral("c%1").arg(c), rows, 1, QVariant::Double, true);
        for (int r = 0; r < rows; ++r)
            leaf->setDouble(r, 0, r * 10 + c);
        group->appendChild(leaf, false);
    }
    return root;
}

Rows contents(MatrixData& root)
{
    Rows out;
    const QList<MatrixData*> leaves = root.child(0)->children();
    for (int r = 0; r < leaves.first()->rowCount(); ++r) {
        QList<QVariant> row;
        for (MatrixData* leaf : leaves) {
            if (leaf->rowCount() != leaves.first()->rowCount())
                return Rows{{QStringLiteral("columns differ in length")}};
            row << leaf->value(r, 0);
        }
        out << row;
    }
    return out;
}

// Rows kept by an application somewhere else; the table's columns only count them.
struct IdDelegate : rkBase::AbstractMatrixDataID {
    QStringList ids, removed;
    QStringList log;
    int next = 0;
    int insertRow(int row) override
    {
        ids.insert(row, QStringLiteral("n%1").arg(next++));
        log << QStringLiteral("insert %1").arg(row);
        return row;
    }
    void insertRows(QList<int> const& rows, bool after) override
    {
        for (int r : rows)
            insertRow(r + (after ? 1 : 0));
    }
    void removeRow(int row) override
    {
        removed << ids.takeAt(row);
        log << QStringLiteral("remove %1").arg(row);
    }
    int removeAllRows() override
    {
        const int n = ids.size();
        removed = ids + removed;
        ids.clear();
        return n;
    }
    void undoInsertRows(QList<int> const& rows) override
    {
        for (int k = rows.size() - 1; k >= 0; --k)
            ids.removeAt(rows.at(k));
        log << QStringLiteral("undo insert");
    }
    void redoInsertRows(QList<int> const& rows) override
    {
        for (int r : rows)
            ids.insert(r, QStringLiteral("again"));
    }
    void undoRemoveRow(int row) override { ids.insert(row, removed.takeLast()); }
    void redoRemoveRow(int row) override { removed << ids.takeAt(row); }
    int undoRemoveAllRows() override
    {
        const int n = removed.size();
        ids = removed;
        removed.clear();
        return n;
    }
    int redoRemoveAllRows() override { return removeAllRows(); }
};

} // namespace

class TestMatrixUndo : public QObject {
    Q_OBJECT

private slots:
    void insertUndoRedoMirrors()
    {
        auto t = table(8, 3);
        const Rows before = contents(*t);
        QCOMPARE(t->insertRowAtPos(5), 5);
        QCOMPARE(t->undoAction(0)->actionName(), QStringLiteral("Row Operation: Insert Row: value=5"));
        Rows inserted = before;
        inserted.insert(5, QList<QVariant>{QVariant(), QVariant(), QVariant()});
        QCOMPARE(contents(*t), inserted);

        t->lastUndo(false);
        QCOMPARE(contents(*t), before);
        QCOMPARE(t->sizeUndoActions(), 0);
        QCOMPARE(t->redoAction(0)->actionName(), QStringLiteral("Row Operation: ReInsert Row: value=5"));
        t->lastRedo(false);
        QCOMPARE(contents(*t), inserted);
        QCOMPARE(t->undoAction(0)->actionName(), QStringLiteral("Row Operation: UnInsert Row: value=5"));
        t->lastUndo(false);
        QCOMPARE(contents(*t), before);
    }

    void removeSavesAndRestoresValues()
    {
        auto t = table(10, 2);
        const Rows before = contents(*t);
        t->removeRowsFromEachColumn(QList<int>{7, 3}, false); // descending, as callers must
        Rows expected = before;
        expected.removeAt(7);
        expected.removeAt(3);
        QCOMPARE(contents(*t), expected);
        QCOMPARE(t->undoAction(0)->actionName(), QStringLiteral("Row Operation: Remove Row: value= 7 3"));
        QCOMPARE(t->undoAction(0)->removedData().size(), 4);
        t->lastUndo(false);
        QCOMPARE(contents(*t), before);
        t->lastRedo(false);
        QCOMPARE(contents(*t), expected);
        t->lastUndo(false); // a second round still has the values
        QCOMPARE(contents(*t), before);

        // In ascending order the second removal hits a row that has moved: callers sort.
        auto u = table(10, 1);
        u->removeRowsFromEachColumn(QList<int>{3, 7}, false);
        QCOMPARE(u->child(0)->child(0)->toDouble(6, 0), 70.0); // row 8 (80) was removed instead of 7
    }

    void newEditClearsRedoAndTheListIsTrimmed()
    {
        auto t = table(4, 1);
        t->insertRowAtPos(0);
        t->lastUndo(false);
        QCOMPARE(t->sizeRedoActions(), 1);
        for (int i = 0; i < 60; ++i)
            t->insertRowAtPos(i % 3);
        QCOMPARE(t->sizeRedoActions(), 0);
        QCOMPARE(t->sizeUndoActions(), 51);
        // The oldest nine are gone: the first kept is the tenth edit (row 9 % 3 = 0).
        QCOMPARE(t->undoAction(0)->actionName(), QStringLiteral("Row Operation: Insert Row: value=0"));
        QCOMPARE(t->undoAction(1)->actionName(), QStringLiteral("Row Operation: Insert Row: value=1"));
        t->clearUndoRedo();
        QCOMPARE(t->sizeUndoActions(), 0);
    }

    void removeAllWithoutDelegateDoesNothing()
    {
        auto t = table(4, 2);
        t->removeRowsFromEachColumn();
        QCOMPARE(t->sizeUndoActions(), 0);
        QCOMPARE(contents(*t).size(), 4);
    }

    void delegateOwnsTheRows()
    {
        auto t = table(3, 2);
        IdDelegate ids;
        ids.ids = QStringList{"a", "b", "c"};
        t->setMatrixDataIDs(&ids);
        t->insertRowAtPos(1);
        QCOMPARE(ids.ids, (QStringList{"a", "n0", "b", "c"}));
        QCOMPARE(t->child(0)->child(1)->rowCount(), 4); // counts follow, cells are the delegate's
        t->removeRowFromEachColumn(0);
        QCOMPARE(ids.ids, (QStringList{"n0", "b", "c"}));
        QVERIFY(t->undoAction(1)->removedData().isEmpty());
        t->lastUndo(false);
        QCOMPARE(ids.ids, (QStringList{"a", "n0", "b", "c"}));
        t->lastUndo(false);
        QCOMPARE(ids.ids, (QStringList{"a", "b", "c"}));
        QCOMPARE(t->child(0)->child(0)->rowCount(), 3);
        t->removeRowsFromEachColumn();
        QCOMPARE(t->undoAction(0)->actionName(), QStringLiteral("Row Operation: Remove All Rows: value=3"));
        QCOMPARE(t->child(0)->child(0)->rowCount(), 0);
        t->lastUndo(false);
        QCOMPARE(ids.ids, (QStringList{"a", "b", "c"}));
        QCOMPARE(t->child(0)->child(0)->rowCount(), 3);
        QCOMPARE(t->redoAction(0)->actionName(), QStringLiteral("Row Operation: ReRemove All Rows: value=3"));
        t->lastRedo(false);
        QVERIFY(ids.ids.isEmpty());
    }

    void attributeCreateDeleteAndComputedNodes()
    {
        auto t = table(3, 2);
        MatrixData* group = t->child(0);
        MatrixData* c1 = group->child(1);
        // Deleting an attribute: the entry keeps its cells; undo brings it back.
        t->appendUndoAction(new MatrixDataRestore(c1, QStringLiteral("Delete Attribute"), true), true);
        group->removeChild(c1);
        delete c1;
        t->lastUndo(false);
        MatrixData* back = t->getNodeFromName(QStringLiteral("c1"));
        QVERIFY(back);
        QCOMPARE(back->toDouble(2, 0), 21.0);
        QCOMPARE(back->parent(), group);
        // Its mirror deletes it again.
        t->lastRedo(false);
        QCOMPARE(t->getNodeFromName(QStringLiteral("c1")), nullptr);

        // A computed column keeps its cells; colour and name still come back.
        MatrixData* c0 = group->child(0);
        const QColor was = c0->color();
        t->appendUndoAction(new MatrixDataRestore(c0, QStringLiteral("Edit"), true), true);
        c0->setNodeComputed(true);
        c0->setDouble(0, 0, -5.0);
        c0->setColor(Qt::red);
        t->lastUndo(false);
        QCOMPARE(c0->toDouble(0, 0), -5.0);
        QCOMPARE(c0->color(), was);
        c0->setNodeComputed(false);
        t->lastRedo(false); // the mirror holds no cells (none were written): colour goes back to red
        QCOMPARE(c0->color(), QColor(Qt::red));
    }

    void menuUndo()
    {
        auto t = table(6, 1);
        for (int r : {0, 1, 2})
            t->insertRowAtPos(r);
        QMenu wrong;
        QAction* one = wrong.addAction(QStringLiteral("only"));
        t->undo(one, &wrong); // not three extra actions: ignored
        QCOMPARE(t->sizeUndoActions(), 3);

        QMenu menu;
        QList<QAction*> actions;
        actions << menu.addAction(QStringLiteral("header"));
        for (int i = 0; i < 3; ++i) {
            actions << menu.addAction(QStringLiteral("entry %1").arg(i));
            actions.last()->setData(i);
        }
        menu.addAction(QStringLiteral("separator"));
        menu.addAction(QStringLiteral("all"))->setData(-1);
        const Rows before = contents(*table(6, 1));
        t->undo(actions.at(2), &menu); // the two newest
        QCOMPARE(t->sizeUndoActions(), 1);
        QCOMPARE(t->sizeRedoActions(), 2);
        t->lastUndo(false);
        QCOMPARE(contents(*t), before);
    }

    void randomWalkAgainstAModel()
    {
        QRandomGenerator rng(20161);
        auto t = table(12, 3);
        Rows model = contents(*t);
        QList<Rows> undoModels, redoModels;
        for (int step = 0; step < 400; ++step) {
            const int op = int(rng.bounded(5));
            const int n = model.size();
            if (op == 0 || (op == 1 && n == 0)) {
                const int r = int(rng.bounded(n + 1));
                undoModels << model;
                t->insertRowAtPos(r);
                model.insert(r, QList<QVariant>{QVariant(), QVariant(), QVariant()});
                redoModels.clear();
            } else if (op == 1) {
                QList<int> rows;
                for (int k = 0; k < 1 + int(rng.bounded(3)); ++k) {
                    const int r = int(rng.bounded(n));
                    if (!rows.contains(r))
                        rows << r;
                }
                std::sort(rows.begin(), rows.end(), std::greater<int>());
                undoModels << model;
                t->removeRowsFromEachColumn(rows, false);
                for (int r : rows)
                    model.removeAt(r);
                redoModels.clear();
            } else if (op == 2 && !undoModels.isEmpty()) {
                redoModels << model;
                model = undoModels.takeLast();
                t->lastUndo(false);
            } else if (op == 3 && !redoModels.isEmpty()) {
                undoModels << model;
                model = redoModels.takeLast();
                t->lastRedo(false);
            } else if (op == 4 && n > 0) {
                // An edit that is not recorded changes a cell of the model too.
                const int r = int(rng.bounded(n));
                t->child(0)->child(1)->setDouble(r, 0, step);
                model[r][1] = double(step);
                undoModels.clear(); // the lists no longer describe the cells: start over
                redoModels.clear();
                t->clearUndoRedo();
            }
            while (undoModels.size() > 51)
                undoModels.removeFirst();
            QCOMPARE(t->sizeUndoActions(), undoModels.size());
            if (contents(*t) != model)
                QFAIL(qPrintable(QStringLiteral("step %1 (op %2): the table differs from the model").arg(step).arg(op)));
        }
    }
};

QTEST_MAIN(TestMatrixUndo)
#include "tst_matrixundo.moc"
