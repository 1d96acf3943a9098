// The item models have no files to read, so this area only shows, in the tour, a small
// document as the three models present it: by kind, by role and as one sorted table.
#include "Cli.h"

#include "items/QRKAbstractItemModelNode.h"
#include "items/QRKAbstractSubject.h"
#include "items/QRKObjectTypesTreeItemModel.h"
#include "items/QRKSetsTreeItemModel.h"
#include "items/QRKSortFilterProxyModel.h"
#include "items/QRKTableItemModel.h"

#include <memory>
#include <vector>

using namespace rktool;
using namespace rkBase;

namespace {

// An application object of the sample document: a name, an id, a kind and, for horizons, the
// age that orders them.
class SampleObject : public QRKSimpleSubject {
public:
    SampleObject(const QString& name, int id, const QString& kind, Qt::CheckState state = Qt::Checked)
        : QRKSimpleSubject(name, Qt::darkGreen, state), m_id(id), m_kind(kind)
    {
    }
    QVariant data(int field, int role) const override
    {
        if (role == Qt::DisplayRole || role == Qt::EditRole) {
            if (field == Field::Id)
                return m_id;
            if (field == Field::ObjectType)
                return m_kind;
            if (field == Field::SortFirst && age >= 0)
                return age;
            if (field == Field::Name && role == Qt::EditRole)
                return name();
        }
        return QRKSimpleSubject::data(field, role);
    }
    bool setData(int field, const QVariant& value, int role) override
    {
        if (field != Field::CheckState || role != Qt::CheckStateRole)
            return false;
        setCheckStateValue(value.toInt());
        return true;
    }
    bool isCheckable(int) const override { return true; }
    double age = -1;

private:
    int m_id;
    QString m_kind;
};

// A fault with its blocks: one row of its own in the table.
class SampleFault : public QRKAbstractCompoundSubject {
public:
    explicit SampleFault(const QString& name) : m_name(name) { setIncludeInTable(true); }
    QVariant data(int field, int role) const override
    {
        if (field == Field::CheckState && (role == Qt::DisplayRole || role == Qt::CheckStateRole))
            return checkState();
        if (role != Qt::DisplayRole)
            return QVariant();
        if (field == Field::Name)
            return m_name;
        if (field == Field::ObjectType)
            return QStringLiteral("Fault");
        return QVariant();
    }
    bool isSelectable(int) const override { return true; }
    bool isCheckable(int) const override { return true; }

private:
    QString m_name;
};

QString checkMark(const QVariant& state)
{
    if (!state.isValid())
        return QStringLiteral("   ");
    switch (state.toInt()) {
    case Qt::Checked:
        return QStringLiteral("[x]");
    case Qt::PartiallyChecked:
        return QStringLiteral("[~]");
    default:
        return QStringLiteral("[ ]");
    }
}

void printTree(Io& io, const QAbstractItemModel& m, const QModelIndex& parent, int depth)
{
    for (int r = 0; r < m.rowCount(parent); ++r) {
        const QModelIndex i = m.index(r, 0, parent);
        io.out << QString(2 + 2 * depth, QLatin1Char(' ')) << checkMark(m.data(i, Qt::CheckStateRole)) << " "
               << m.data(i).toString() << "\n";
        printTree(io, m, i, depth + 1);
    }
}

void printTable(Io& io, const QAbstractItemModel& m, const QList<int>& columns)
{
    QStringList header;
    for (int c : columns)
        header << m.headerData(c, Qt::Horizontal).toString().leftJustified(c == 1 ? 18 : 12);
    io.out << "  " << header.join(QString()).trimmed() << "\n";
    for (int r = 0; r < m.rowCount(); ++r) {
        QStringList cells;
        for (int c : columns) {
            const QModelIndex i = m.index(r, c);
            const QVariant check = m.data(i, Qt::CheckStateRole);
            const QString text = check.isValid() ? checkMark(check) : m.data(i).toString();
            cells << text.leftJustified(c == 1 ? 18 : 12);
        }
        QString line = QStringLiteral("  ") + cells.join(QString());
        while (line.endsWith(QLatin1Char(' ')))
            line.chop(1);
        io.out << line << "\n";
    }
}

void tourItems(Io& io)
{
    tourHeading(io, QStringLiteral("Subjects and item models"));
    std::vector<std::unique_ptr<SampleObject>> objects;
    auto make = [&](const QString& name, int id, const QString& kind, Qt::CheckState s = Qt::Checked) {
        objects.emplace_back(new SampleObject(name, id, kind, s));
        return objects.back().get();
    };
    auto doc = std::make_unique<QRKAbstractModelBrowserData>();
    doc->restart();
    QRKObjectTypesTreeItemModel* types = doc->objectTypesModel();
    QRKSetsTreeItemModel* sets = doc->setsModel();

    SampleObject* w10 = make(QStringLiteral("Well 10"), 3, QStringLiteral("Well"));
    SampleObject* w2 = make(QStringLiteral("Well 2"), 1, QStringLiteral("Well"), Qt::Unchecked);
    SampleObject* top = make(QStringLiteral("Top Chalk"), 4, QStringLiteral("Surface"));
    SampleObject* base = make(QStringLiteral("Base Chalk"), 5, QStringLiteral("Surface"));
    top->age = 66.0;
    base->age = 100.5;
    SampleObject* b1 = make(QStringLiteral("Block A"), 6, QStringLiteral("Fault block"));
    SampleObject* b2 = make(QStringLiteral("Block B"), 7, QStringLiteral("Fault block"));
    SampleFault fault(QStringLiteral("F1 Main"));
    fault.addChild(b1);
    fault.addChild(b2);

    types->addWell(w10);
    types->addWell(w2);
    types->addMeshSurface(base);
    types->addMeshSurface(top);
    auto* faultNode = static_cast<QRKAbstractItemModelCompoundNode*>(types->addFault(&fault));
    types->addNode(b1->createTreeNode(types), faultNode);
    types->addNode(b2->createTreeNode(types), faultNode);
    sets->addHorizon(base);
    sets->addHorizon(top);
    sets->addFaultBlock(b1);
    sets->addFaultBlock(b2);
    doc->tableModel()->setTreeRootNode(types->rootNode());

    io.out << "A document of two wells, two surfaces and a fault with two blocks; the same\n"
              "objects appear in three models at once. By kind (folders appear with their first\n"
              "object; [~] is a folder whose objects differ in visibility):\n";
    QRKTreeProxyItemModel typesView, setsView;
    typesView.setSourceModel(types);
    typesView.sort(0);
    printTree(io, typesView, QModelIndex(), 0);
    io.out << "By role (horizons ordered by age, field -13, then by name):\n";
    setsView.setSourceModel(sets);
    setsView.sort(0);
    printTree(io, setsView, QModelIndex(), 0);

    io.out << "As one table, sorted by name in natural order (Well 2 before Well 10); the fault\n"
              "has a row of its own beside its blocks:\n";
    QRKTableProxyItemModel table;
    table.setSourceModel(doc->tableModel());
    table.setFilterKeyColumn(1);
    table.sort(1);
    printTable(io, table, {0, 1, 2, 3});
    table.setFilterText(QStringLiteral("WELL"));
    io.out << "Filtered by the text \"WELL\" (any case):\n";
    printTable(io, table, {0, 1, 3});

    // Hiding Well 10 through the tree shows in the table at once, and the folder turns unchecked.
    const QModelIndex folder = types->indexFromNode(types->wellFolder(), 0);
    types->setData(types->indexFromNode(w10->node(types), 0), int(Qt::Unchecked), Qt::CheckStateRole);
    io.out << "After hiding Well 10 in the tree: folder \"" << types->data(folder).toString() << "\" "
           << checkMark(types->data(folder, Qt::CheckStateRole)) << ", table row "
           << checkMark(table.index(1, 3).data(Qt::CheckStateRole)) << "\n";

    // Removing the last block of a fault takes the emptied fault and folder with it.
    b1->clearNodes();
    b2->clearNodes();
    doc->tableModel()->setTreeRootNode(types->rootNode());
    io.out << "After removing both blocks the emptied fault and its folder go too: " << types->rowCount()
           << " folders remain by kind,\nand the table rebuilt from the tree has " << doc->tableModel()->rowCount()
           << " rows.\n";
    doc.reset(); // models go first; each takes its nodes out of the objects' lists
}

const AreaRegistration registration{
    Area{95, QStringLiteral("items"), QStringLiteral("subjects and item models (shown in the tour; no verbs)"),
         QStringLiteral("Usage: rktool tour\n\n"
                        "The item models show an application's objects by kind, by role and as one\n"
                        "table. They read no files, so this area has no verbs: 'rktool tour' builds a\n"
                        "small document and prints its three models as indented text.\n"),
         [](Args&, Io&) -> int { throw UsageError{QStringLiteral("no verbs; the models are shown by 'rktool tour'")}; },
         tourItems}};

} // namespace
