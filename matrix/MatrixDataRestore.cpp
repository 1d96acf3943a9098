#include "matrix/MatrixDataRestore.h"

#include "matrix/AbstractMatrixDataID.h"
#include "matrix/MatrixData.h"

namespace rkBase {

AbstractMatrixDataID::~AbstractMatrixDataID() = default;

namespace {

int placeByName(MatrixData* parent, const QString& name)
{
    if (!parent)
        return -1;
    for (int i = 0; i < parent->childCount(); ++i)
        if (parent->child(i)->name() == name)
            return i;
    return -1;
}

} // namespace

MatrixDataRestore::MatrixDataRestore(MatrixData* node, QString const& action, bool storeData)
    : m_actionName(action)
{
    if (!node)
        return;
    m_name = m_oldName = node->name();
    m_cellType = node->cellType();
    m_color = node->color();
    m_unitManager = node->unitManager();
    m_parent = node->parent();
    m_childPosition = placeByName(m_parent, m_name);
    if (storeData)
        for (int r = 0; r < node->rowCount(); ++r)
            dataStore(r, node->value(r, 0));
}

MatrixDataRestore::MatrixDataRestore(MatrixDataRestore* other)
{
    if (!other)
        return;
    m_name = other->m_name;
    m_oldName = other->m_oldName;
    m_cellType = other->m_cellType;
    m_color = other->m_color;
    m_unitManager = other->m_unitManager;
    m_parent = other->m_parent;
    m_childPosition = placeByName(m_parent, m_name);
}

MatrixDataRestore::~MatrixDataRestore() = default;

void MatrixDataRestore::dataStore(int row, QVariant const& v)
{
    m_rows.push_back(row);
    m_values.push_back(v);
}

void MatrixDataRestore::restore(MatrixData* root, MatrixDataRestore*& mirror, bool flag)
{
    if (!root)
        return;
    if (m_actionName.contains(QLatin1String("Row Operation:"))) {
        restoreRowOperation(root, mirror, flag);
        return;
    }
    MatrixData* node = root->getNodeFromName(m_oldName);
    if (!node) {
        // The node is gone (a created attribute was undone, or a deleted one is brought back).
        if (!m_parent)
            return;
        node = new MatrixData(m_name, int(m_rows.size()), 1, m_cellType, true);
        node->setParent(m_parent);
        m_parent->insertChild(m_childPosition < 0 ? m_parent->childCount() : m_childPosition, node);
        // The mirror of bringing an attribute back takes it away again: it keeps the recipe.
        if (m_actionName.contains(QLatin1String("Delete Attribute")) ||
            m_actionName.contains(QLatin1String("Create Attribute")))
            mirror->setActionName(m_actionName);
    } else if (m_actionName.contains(QLatin1String("Delete Attribute")) ||
               m_actionName.contains(QLatin1String("Create Attribute"))) {
        delete mirror;
        mirror = new MatrixDataRestore(node, m_actionName, true);
        root->removeChild(node);
        delete node;
        return;
    }
    const QColor present = node->color();
    mirror->setColor(present);
    node->setColor(m_color);
    const boost::shared_ptr<UnitManager> presentManager = node->unitManager();
    mirror->setUnitManager(presentManager);
    node->setUnitManager(m_unitManager);
    mirror->swapOldName();
    node->setName(m_name);
    for (size_t i = 0; i < m_rows.size(); ++i) {
        if (node->isNodeComputed() || !root->isNodeEditable())
            continue;
        const int row = m_rows[i];
        mirror->dataStore(row, node->cellType() == QVariant::Icon ? QVariant(node->toInt(row, 0)) : node->value(row, 0));
        node->setValue(row, 0, m_values[i]);
    }
    node->setMinMax(0, boost::dynamic_bitset<>());
}

void MatrixDataRestore::restoreRowOperation(MatrixData* root, MatrixDataRestore*& mirror, bool flag)
{
    struct Form {
        const char* test;
        const char* prefix;
        const char* mirrorText;
        int kind; // 0 un-insert, 1 re-insert, 2 un-remove, 3 re-remove, 4 un-remove all, 5 re-remove all
    };
    // Tested in this order: "UnInsert Row" contains "Insert Row", and the blanks before the
    // last two keep them from matching the UnRemove and ReRemove forms.
    static const Form forms[] = {
        {"UnInsert Row", "Row Operation: UnInsert Row: value=", "Row Operation: ReInsert Row: value=%1", 0},
        {"ReInsert Row", "Row Operation: ReInsert Row: value=", "Row Operation: UnInsert Row: value=%1", 1},
        {"Insert Row", "Row Operation: Insert Row: value=", "Row Operation: ReInsert Row: value=%1", 0},
        {"UnRemove Row", "Row Operation: UnRemove Row: value=", "Row Operation: ReRemove Row: value=%1", 2},
        {"ReRemove Row", "Row Operation: ReRemove Row: value=", "Row Operation: UnRemove Row: value=%1", 3},
        {"Remove Row", "Row Operation: Remove Row: value=", "Row Operation: ReRemove Row: value=%1", 2},
        {"UnRemove All Rows", "Row Operation: UnRemove All Rows: value=", "Row Operation: ReRemove All Rows: value=%1", 4},
        {" ReRemove All Rows", "Row Operation: ReRemove All Rows: value=", "Row Operation: UnRemove All Rows: value=%1", 5},
        {" Remove All Rows", "Row Operation: Remove All Rows: value=", "Row Operation: ReRemove All Rows: value=%1", 4},
    };
    for (const Form& f : forms) {
        if (!m_actionName.contains(QLatin1String(f.test)))
            continue;
        QString rest = m_actionName;
        rest.remove(QLatin1String(f.prefix));
        QList<int> rows;
        for (const QString& part : rest.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
            bool ok = false;
            const int r = part.toInt(&ok);
            if (ok)
                rows.append(r);
        }
        switch (f.kind) {
        case 0:
            root->unInsertRowAtPos(rows, flag);
            break;
        case 1:
            root->reInsertRowAtPos(rows, flag);
            break;
        case 2:
            root->unRemoveRowsFromEachColumn(rows, m_removedData, flag);
            break;
        case 3:
            root->reRemoveRowsFromEachColumn(rows, flag);
            break;
        case 4:
            root->unRemoveRowsFromEachColumn();
            break;
        case 5:
            root->reRemoveRowsFromEachColumn();
            break;
        }
        if (f.kind >= 4)
            mirror->setActionName(QString::fromLatin1(f.mirrorText).arg(rest.trimmed().toInt(), 0, 10));
        else
            mirror->setActionName(QString::fromLatin1(f.mirrorText).arg(rest));
        if (f.kind == 2 || f.kind == 3)
            mirror->removedData(m_removedData);
        return;
    }
}

// --- proxy ----------------------------------------------------------------------------------------

MatrixDataRestoreProxy::MatrixDataRestoreProxy() = default;

MatrixDataRestoreProxy::~MatrixDataRestoreProxy()
{
    for (MatrixDataRestore* e : m_entries)
        delete e;
}

void MatrixDataRestoreProxy::addToList(MatrixDataRestore* entry, MatrixData* member)
{
    if (!entry)
        return;
    m_entries.push_back(entry);
    m_members.push_back(member);
}

void MatrixDataRestoreProxy::addDataStore(int index, int row, QVariant const& v)
{
    if (index >= 0 && index < int(m_entries.size()))
        m_entries[size_t(index)]->dataStore(row, v);
}

void MatrixDataRestoreProxy::restore(MatrixDataRestoreProxy*& mirror)
{
    for (size_t i = 0; i < m_entries.size(); ++i) {
        MatrixData* member = m_members[i];
        MatrixDataRestore* copy = new MatrixDataRestore(m_entries[i]);
        MatrixData* root = member ? member->parent() : m_proxyParent;
        m_entries[i]->restore(root ? root : m_proxyParent, copy, false);
        mirror->addToList(copy, member);
    }
}

} // namespace rkBase
