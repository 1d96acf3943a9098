// Random operations on one document shown in all three models, both proxies and two views,
// checked after every step against a plain model of the document kept here.
#include "itemtestsubjects.h"

#include "items/QRKAbstractItemModelNode.h"
#include "items/QRKObjectTypesTreeItemModel.h"
#include "items/QRKSetsTreeItemModel.h"
#include "items/QRKSortFilterProxyModel.h"
#include "items/QRKTableItemModel.h"

#include <QAbstractItemModelTester>
#include <QRandomGenerator>
#include <QTableView>
#include <QTreeView>
#include <QtTest>
#include <map>
#include <memory>

using namespace rkBase;

namespace {

// What the document should look like: folders in the order they are shown, their subjects in
// insertion order, the table's subjects in row order.
struct Tree {
    QList<int> shown;                    // folder ids under the root
    std::map<int, QList<Obj*>> contents; // folder id -> subjects

    int folderOf(Obj* s) const
    {
        for (const auto& [id, list] : contents)
            if (list.contains(s))
                return id;
        return -1;
    }
    void add(int id, Obj* s)
    {
        if (!shown.contains(id))
            shown.append(id);
        contents[id].append(s);
    }
    // Removal through removeNode: an emptied folder leaves the root.
    void removeCascading(Obj* s)
    {
        const int id = folderOf(s);
        if (id < 0)
            return;
        contents[id].removeAll(s);
        if (contents[id].isEmpty())
            shown.removeAll(id);
    }
    void removeKeepingFolder(Obj* s)
    {
        const int id = folderOf(s);
        if (id >= 0)
            contents[id].removeAll(s);
    }
    void clearEmpty()
    {
        for (int i = shown.size() - 1; i >= 0; --i)
            if (contents[shown[i]].isEmpty())
                shown.removeAt(i);
    }
};

} // namespace

class TestItemProperty : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { QLocale::setDefault(QLocale::c()); }
    void randomOperations_data();
    void randomOperations();

private:
    void verify(const QString& step);
    template <class M> void verifyTree(M* model, const Tree& ref, const QString& step);

    std::unique_ptr<QRKAbstractModelBrowserData> m_doc;
    QList<Obj*> m_objs;
    Tree m_types, m_sets;
    QList<Obj*> m_table;
};

template <class M> void TestItemProperty::verifyTree(M* model, const Tree& ref, const QString& step)
{
    QVERIFY2(model->rowCount() == ref.shown.size(), qPrintable(step));
    for (int r = 0; r < ref.shown.size(); ++r) {
        const QModelIndex folder = model->index(r, 0);
        const int id = ref.shown[r];
        QCOMPARE(model->nodeFromIndex(folder), model->folder(id));
        const QList<Obj*>& list = ref.contents.at(id);
        QVERIFY2(model->rowCount(folder) == list.size(), qPrintable(step));
        const QString expected =
            list.isEmpty() ? M::folderName(id) : QStringLiteral("%1 (%2)").arg(M::folderName(id)).arg(list.size());
        QCOMPARE(model->data(folder).toString(), expected);
        bool anyChecked = false, anyUnchecked = false;
        for (int k = 0; k < list.size(); ++k) {
            const QModelIndex child = model->index(k, 0, folder);
            QVERIFY2(model->subjectFromIndex(child) == list[k], qPrintable(step));
            QCOMPARE(model->parent(child), folder);
            QCOMPARE(model->data(child).toString(), list[k]->name());
            QCOMPARE(model->data(child, Qt::CheckStateRole).toInt(), list[k]->checkStateValue());
            (list[k]->checkStateValue() == Qt::Checked ? anyChecked : anyUnchecked) = true;
        }
        if (!list.isEmpty()) {
            const int tri = anyChecked && anyUnchecked ? 1 : anyChecked ? 2 : 0;
            QCOMPARE(model->folder(id)->data(Field::CheckState, Qt::DisplayRole).toInt(), tri);
        }
    }
}

void TestItemProperty::verify(const QString& step)
{
    verifyTree(m_doc->objectTypesModel(), m_types, step);
    if (QTest::currentTestFailed())
        return;
    verifyTree(m_doc->setsModel(), m_sets, step);
    if (QTest::currentTestFailed())
        return;
    QRKTableItemModel* table = m_doc->tableModel();
    QVERIFY2(table->rowCount() == m_table.size(), qPrintable(step));
    for (int r = 0; r < m_table.size(); ++r)
        QVERIFY2(table->node(r)->subject() == m_table[r], qPrintable(step));
    // Every subject's list holds exactly its appearances, each pointing back at it.
    for (Obj* s : m_objs) {
        const int expected = (m_types.folderOf(s) >= 0) + (m_sets.folderOf(s) >= 0) + m_table.contains(s);
        QVERIFY2(s->nodeCount() == expected, qPrintable(step + QStringLiteral(" nodes of ") + s->name()));
        for (int i = 0; i < s->nodeCount(); ++i)
            QCOMPARE(s->node(i)->subject(), static_cast<QRKAbstractSubject*>(s));
    }
}

void TestItemProperty::randomOperations_data()
{
    QTest::addColumn<quint32>("seed");
    QTest::addColumn<bool>("modelsFirst");
    QTest::newRow("seed 1") << 1u << true;
    QTest::newRow("seed 2") << 2u << false;
    QTest::newRow("seed 3") << 3u << true;
    QTest::newRow("seed 4") << 4u << false;
}

void TestItemProperty::randomOperations()
{
    QFETCH(quint32, seed);
    QFETCH(bool, modelsFirst);
    QRandomGenerator rng(seed);
    m_doc = std::make_unique<QRKAbstractModelBrowserData>();
    m_types = Tree();
    m_sets = Tree();
    m_table.clear();
    for (int i = 0; i < 30; ++i)
        m_objs << new Obj(QStringLiteral("obj %1").arg(rng.bounded(100)), rng.bounded(2) ? Qt::Checked : Qt::Unchecked);

    QRKObjectTypesTreeItemModel* types = m_doc->objectTypesModel();
    QRKSetsTreeItemModel* sets = m_doc->setsModel();
    QRKTableItemModel* table = m_doc->tableModel();
    using Tester = QAbstractItemModelTester;
    const auto mode = Tester::FailureReportingMode::QtTest;
    QRKTreeProxyItemModel typesProxy, setsProxy;
    QRKTableProxyItemModel tableProxy;
    typesProxy.setSourceModel(types);
    setsProxy.setSourceModel(sets);
    tableProxy.setSourceModel(table);
    tableProxy.setFilterKeyColumn(1);
    Tester t1(types, mode), t2(sets, mode), t3(table, mode), t4(&typesProxy, mode), t5(&setsProxy, mode),
        t6(&tableProxy, mode);
    QTreeView treeView;
    treeView.setModel(&typesProxy);
    QTableView tableView;
    tableView.setModel(&tableProxy);
    treeView.show();
    tableView.show();
    m_doc->restart();

    const int steps = 800;
    for (int step = 0; step < steps; ++step) {
        Obj* s = m_objs[rng.bounded(m_objs.size())];
        const int op = rng.bounded(13);
        QString what;
        switch (op) {
        case 0:
        case 1: { // add to a kind (or move there)
            const int id = rng.bounded(6);
            if (m_types.folderOf(s) >= 0) {
                types->removeNode(s->node(types));
                m_types.removeCascading(s);
            }
            if (rng.bounded(2)) {
                types->addSubjectTo(id, s);
                m_types.add(id, s);
            } else { // insert at a random place, showing the folder first when needed
                QRKAbstractItemModelCompoundNode* folder = types->folder(id);
                if (!m_types.shown.contains(id)) {
                    QVERIFY(types->addNode(folder, types->rootNode()));
                    m_types.shown.append(id);
                }
                const int place = rng.bounded(folder->childCount() + 1);
                QVERIFY(types->insertNode(s->createTreeNode(types), folder, place));
                m_types.contents[id].insert(place, s);
            }
            if (table->addSubject(s) != !m_table.contains(s))
                QFAIL("addSubject disagrees with the rows");
            if (!m_table.contains(s))
                m_table.append(s);
            what = QStringLiteral("add %1 to kind %2").arg(s->name()).arg(id);
            break;
        }
        case 2: { // add to a set
            if (m_sets.folderOf(s) >= 0)
                break;
            const int id = rng.bounded(int(QRKSetsTreeItemModel::FolderCount));
            sets->addSubjectTo(id, s);
            m_sets.add(id, s);
            what = QStringLiteral("set %1 in %2").arg(s->name()).arg(id);
            break;
        }
        case 3: // remove from the kinds tree, folder stays
            types->removeSubject(s);
            m_types.removeKeepingFolder(s);
            what = QStringLiteral("removeSubject ") + s->name();
            break;
        case 4: // remove everywhere
            if (rng.bounded(2))
                s->clearNodes();
            else
                s->destroyNodes();
            m_types.removeCascading(s);
            m_sets.removeCascading(s);
            m_table.removeAll(s);
            what = QStringLiteral("clear ") + s->name();
            break;
        case 5: { // rename through the table
            const int row = m_table.indexOf(s);
            if (row < 0)
                break;
            QVERIFY(table->setData(table->index(row, 1), QStringLiteral("obj %1").arg(rng.bounded(100))));
            what = QStringLiteral("rename");
            break;
        }
        case 6: { // check or uncheck through a tree
            QRKAbstractItemModelNode* n = s->node(types);
            if (!n)
                break;
            const int state = rng.bounded(2) ? Qt::Checked : Qt::Unchecked;
            QVERIFY(types->setData(types->indexFromNode(n, 0), state, Qt::CheckStateRole));
            QCOMPARE(s->checkStateValue(), state);
            what = QStringLiteral("check");
            break;
        }
        case 7: // check a whole folder through the folder's subject
            if (m_types.shown.isEmpty())
                break;
            {
                const int id = m_types.shown[rng.bounded(m_types.shown.size())];
                types->folder(id)->subject()->setData(Field::CheckState, int(Qt::Checked), Qt::CheckStateRole);
                for (Obj* o : m_types.contents[id])
                    QCOMPARE(o->checkStateValue(), int(Qt::Checked));
            }
            what = QStringLiteral("check folder");
            break;
        case 8: // restart everything: sets empty, table rebuilt from the kinds tree
            m_doc->restart();
            for (auto& [id, list] : m_sets.contents)
                list.clear();
            m_table.clear();
            for (int id : m_types.shown)
                for (Obj* o : m_types.contents[id])
                    if (!m_table.contains(o))
                        m_table.append(o);
            what = QStringLiteral("restart");
            break;
        case 9:
            if (rng.bounded(2)) {
                types->clearEmptyChildren();
                m_types.clearEmpty();
            } else {
                sets->clearEmptyChildren();
                m_sets.clearEmpty();
            }
            what = QStringLiteral("clearEmptyChildren");
            break;
        case 10: { // sort a proxy
            const int column = QList<int>{0, 1, 3}[rng.bounded(3)];
            tableProxy.sort(column, rng.bounded(2) ? Qt::AscendingOrder : Qt::DescendingOrder);
            typesProxy.sort(0);
            what = QStringLiteral("sort");
            break;
        }
        case 11: { // filter the table
            const QString text = rng.bounded(3) == 0 ? QString() : QString::number(rng.bounded(10));
            tableProxy.setNodeFilter(nullptr, -99, QVariant());
            tableProxy.setFilterText(text);
            int expected = 0;
            for (Obj* o : m_table)
                expected += o->name().contains(text, Qt::CaseInsensitive);
            QCOMPARE(tableProxy.rowCount(), expected);
            what = QStringLiteral("filter ") + text;
            break;
        }
        default: { // a node filter on one kind
            if (m_types.shown.isEmpty() || rng.bounded(2)) {
                tableProxy.setNodeFilter(nullptr, -99, QVariant());
                break;
            }
            const int id = m_types.shown[rng.bounded(m_types.shown.size())];
            tableProxy.setFilterText(QString());
            tableProxy.setNodeFilter(types->folder(id), -99, QVariant());
            int expected = 0;
            for (Obj* o : m_table)
                expected += m_types.contents[id].contains(o);
            QCOMPARE(tableProxy.rowCount(), expected);
            what = QStringLiteral("node filter");
            break;
        }
        }
        if (QTest::currentTestFailed())
            return;
        verify(QStringLiteral("step %1 (%2)").arg(step).arg(what));
        if (QTest::currentTestFailed())
            return;
        // The sorted table proxy agrees with the natural order of names.
        if (tableProxy.sortColumn() == 1)
            for (int r = 1; r < tableProxy.rowCount(); ++r) {
                const int c = naturalCompare(tableProxy.index(r - 1, 1).data().toString(),
                                             tableProxy.index(r, 1).data().toString());
                QVERIFY(tableProxy.sortOrder() == Qt::AscendingOrder ? c <= 0 : c >= 0);
            }
    }
    tableProxy.setNodeFilter(nullptr, -99, QVariant());
    if (modelsFirst) {
        treeView.setModel(nullptr);
        tableView.setModel(nullptr);
        m_doc.reset();
        for (Obj* o : m_objs)
            QCOMPARE(o->nodeCount(), 0);
        qDeleteAll(m_objs);
    } else {
        qDeleteAll(m_objs); // each clears its nodes through the models
        QCOMPARE(table->rowCount(), 0);
        QCOMPARE(
            types->rowCount(), m_types.shown.size() - [&] {
                int emptied = 0;
                for (int id : m_types.shown)
                    emptied += !m_types.contents[id].isEmpty();
                return emptied;
            }());
        m_doc.reset();
    }
    m_objs.clear();
}

QTEST_MAIN(TestItemProperty)
#include "tst_itemproperty.moc"
