#include "items/QRKAbstractItemModel.h"

#include "items/QRKAbstractItemModelNode.h"
#include "items/QRKAbstractSubject.h"
#include "items/QRKObjectTypesTreeItemModel.h"
#include "items/QRKSetsTreeItemModel.h"
#include "items/QRKTableItemModel.h"

#include <QSet>

namespace rkBase {

QRKAbstractItemModel::QRKAbstractItemModel(QRKAbstractModelBrowserData* browserData, QObject* parent)
    : QAbstractItemModel(parent), m_browserData(browserData)
{
}

QRKAbstractItemModel::~QRKAbstractItemModel()
{
    // Nodes still in the tree and the folders this model made go with it; subjects outlive us.
    QList<QRKAbstractItemModelNode*> tops = m_ownedNodes;
    if (m_root && !tops.contains(m_root))
        tops.prepend(m_root);
    QSet<QRKAbstractItemModelNode*> all;
    QList<QRKAbstractItemModelNode*> stack = tops;
    while (!stack.isEmpty()) {
        QRKAbstractItemModelNode* n = stack.takeLast();
        if (all.contains(n))
            continue;
        all.insert(n);
        if (n->isCompound())
            stack.append(static_cast<QRKAbstractItemModelCompoundNode*>(n)->m_children);
    }
    for (QRKAbstractItemModelNode* n : all) {
        n->m_parent = nullptr;
        if (n->isCompound()) {
            auto* c = static_cast<QRKAbstractItemModelCompoundNode*>(n);
            c->m_children.clear();
        }
    }
    // Owned folder subjects may be children of one another: delete plain nodes first, then
    // folders, each of which unhooks its folder from a parent folder that is still alive.
    QList<QRKAbstractItemModelNode*> compounds;
    for (QRKAbstractItemModelNode* n : all) {
        if (n->isCompound())
            compounds.append(n);
        else
            delete n;
    }
    qDeleteAll(compounds);
}

void QRKAbstractItemModel::touch(QRKAbstractItemModelNode* node)
{
    const QModelIndex first = indexFromNode(node, 0);
    if (first.isValid())
        emit dataChanged(first, first.sibling(first.row(), qMax(0, columnCount(first.parent()) - 1)));
}

void QRKAbstractItemModel::touch() { touchChildren(m_root); }

void QRKAbstractItemModel::touchChildren(QRKAbstractItemModelCompoundNode* node)
{
    if (!node || node->childCount() == 0)
        return;
    const QModelIndex first = indexFromNode(node->child(0), 0);
    const QModelIndex last = indexFromNode(node->child(node->childCount() - 1), 0);
    if (first.isValid() && last.isValid())
        emit dataChanged(first, last.sibling(last.row(), qMax(0, columnCount(last.parent()) - 1)));
}

void QRKAbstractItemModel::touchReset()
{
    beginResetModel();
    endResetModel();
}

QRKAbstractItemModelNode* QRKAbstractItemModel::nodeFromIndex(const QModelIndex& index) const
{
    if (!index.isValid())
        return m_root;
    if (index.model() != this)
        return nullptr;
    return static_cast<QRKAbstractItemModelNode*>(index.internalPointer());
}

QRKAbstractSubject* QRKAbstractItemModel::subjectFromIndex(const QModelIndex& index) const
{
    QRKAbstractItemModelNode* n = nodeFromIndex(index);
    return n ? n->subject() : nullptr;
}

QList<QRKAbstractSubject*> QRKAbstractItemModel::subjectsFromIndexes(const QModelIndexList& indexes) const
{
    QList<QRKAbstractSubject*> out;
    QSet<QRKAbstractSubject*> seen;
    for (const QModelIndex& i : indexes)
        if (QRKAbstractSubject* s = subjectFromIndex(i))
            if (!seen.contains(s)) {
                seen.insert(s);
                out.append(s);
            }
    return out;
}

QVariant QRKAbstractItemModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return QVariant();
    const int field = fieldFromIndex(index, role);
    if (field == Field::None)
        return QVariant();
    QRKAbstractItemModelNode* n = nodeFromIndex(index);
    return n ? n->data(field, role) : QVariant();
}

bool QRKAbstractItemModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    QRKAbstractItemModelNode* n = index.isValid() ? nodeFromIndex(index) : nullptr;
    const int field = fieldFromIndex(index, role);
    if (!n || field == Field::None)
        return false;
    const bool checking = field == Field::CheckState;
    if (checking && m_browserData)
        m_browserData->setIgnoreTouch(true);
    const bool ok = n->setData(field, value, role);
    if (ok) {
        if (m_browserData)
            m_browserData->nodeChanged(this, n);
        touch(n);
        if (checking)
            touchAncestors(n);
    }
    if (checking && m_browserData)
        m_browserData->setIgnoreTouch(false);
    return ok;
}

void QRKAbstractItemModel::touchAncestors(QRKAbstractItemModelNode* node)
{
    for (QRKAbstractItemModelNode* p = node->parent(); p && p != m_root; p = p->parent())
        touch(p);
}

QStringList QRKAbstractItemModel::mimeTypes() const { return {QStringLiteral("text/plain")}; }

QMimeData* QRKAbstractItemModel::createMimeData() const { return new QMimeData; }

QMimeData* QRKAbstractItemModel::mimeData(const QModelIndexList& indexes) const
{
    QMimeData* mime = createMimeData();
    QStringList names;
    for (QRKAbstractSubject* s : subjectsFromIndexes(indexes))
        names << s->data(Field::Name, Qt::DisplayRole).toString();
    mime->setText(names.join(QLatin1Char('\n')));
    return mime;
}

void QRKAbstractItemModel::removeSubject(QRKAbstractSubject* subject)
{
    if (!subject)
        return;
    QList<QRKAbstractItemModelNode*> mine;
    for (int i = 0; i < subject->nodeCount(); ++i)
        if (subject->node(i)->model() == this)
            mine.append(subject->node(i));
    for (QRKAbstractItemModelNode* n : mine) {
        // An earlier removal (of an ancestor) may have taken this node already.
        bool still = false;
        for (int i = 0; i < subject->nodeCount() && !still; ++i)
            still = subject->node(i) == n;
        if (!still)
            continue;
        const QModelIndex idx = indexFromNode(n, 0);
        if (idx.isValid())
            removeRows(idx.row(), 1, idx.parent());
    }
}

bool QRKAbstractItemModel::removeNode(QRKAbstractItemModelNode* node)
{
    if (!node)
        return false;
    const QModelIndex idx = indexFromNode(node, 0);
    if (!idx.isValid())
        return false;
    QRKAbstractItemModelCompoundNode* parentNode = node->compoundParent();
    // removeRows takes the node's descendants first, so the node itself may be gone after it.
    const bool ok = removeRows(idx.row(), 1, idx.parent());
    if (ok && parentNode && parentNode != m_root && parentNode->childCount() == 0 && parentNode->subject() &&
        parentNode->subject()->shouldBeDeletedWhenEmpty())
        removeNode(parentNode);
    return ok;
}

bool QRKAbstractItemModel::isAttached(const QRKAbstractItemModelNode* node) const
{
    if (!m_root)
        return false;
    for (const QRKAbstractItemModelNode* p = node; p; p = p->parent())
        if (p == m_root)
            return true;
    return false;
}

void QRKAbstractItemModel::dropDescendants(QRKAbstractItemModelCompoundNode* node)
{
    while (node->childCount() > 0) {
        QRKAbstractItemModelNode* c = node->child(node->childCount() - 1);
        if (c->isCompound())
            dropDescendants(static_cast<QRKAbstractItemModelCompoundNode*>(c));
        QRKAbstractSubject* s = c->subject();
        const bool ownFolder = c->isCompound() && dynamic_cast<QRKSimpleFolderNode*>(c) &&
                               static_cast<QRKSimpleFolderNode*>(c)->ownsSubject();
        node->removeChild(c);
        if (s && !ownFolder)
            s->removeNode(c);
    }
}

void QRKAbstractItemModel::deleteTree(QRKAbstractItemModelNode* node)
{
    if (node->isCompound())
        dropDescendants(static_cast<QRKAbstractItemModelCompoundNode*>(node));
    delete node;
}

// ---------------------------------------------------------------------------------------------

QRKAbstractTreeItemModel::QRKAbstractTreeItemModel(QRKAbstractModelBrowserData* browserData, QObject* parent)
    : QRKAbstractItemModel(browserData, parent)
{
}

QModelIndex QRKAbstractTreeItemModel::index(int row, int column, const QModelIndex& parent) const
{
    if (!m_root || column != 0 || row < 0)
        return QModelIndex();
    QRKAbstractItemModelNode* p = nodeFromIndex(parent);
    if (!p || !p->isCompound())
        return QModelIndex();
    QRKAbstractItemModelNode* c = static_cast<QRKAbstractItemModelCompoundNode*>(p)->child(row);
    return c ? createIndex(row, column, c) : QModelIndex();
}

QModelIndex QRKAbstractTreeItemModel::parent(const QModelIndex& child) const
{
    QRKAbstractItemModelNode* n = child.isValid() ? nodeFromIndex(child) : nullptr;
    if (!n || !n->compoundParent() || n->parent() == m_root)
        return QModelIndex();
    return indexFromNode(n->parent(), 0);
}

int QRKAbstractTreeItemModel::rowCount(const QModelIndex& parent) const
{
    if (parent.column() > 0)
        return 0;
    QRKAbstractItemModelNode* n = nodeFromIndex(parent);
    return n && n->isCompound() ? static_cast<QRKAbstractItemModelCompoundNode*>(n)->childCount() : 0;
}

int QRKAbstractTreeItemModel::columnCount(const QModelIndex&) const { return 1; }

Qt::ItemFlags QRKAbstractTreeItemModel::flags(const QModelIndex& index) const
{
    // Views and QAbstractItemModelTester take the invalid index as the drop target "below all".
    if (!index.isValid())
        return Qt::ItemIsDropEnabled;
    QRKAbstractItemModelNode* n = nodeFromIndex(index);
    if (!n)
        return Qt::ItemIsSelectable | Qt::ItemIsDragEnabled | Qt::ItemIsEnabled;
    return n->flags(fieldFromIndex(index, Qt::DisplayRole));
}

QModelIndex QRKAbstractTreeItemModel::indexFromNode(const QRKAbstractItemModelNode* node, int column) const
{
    if (!node || node == m_root || column != 0)
        return QModelIndex();
    QRKAbstractItemModelCompoundNode* p = node->compoundParent();
    if (!p || !isAttached(p))
        return QModelIndex();
    const int row = p->childIndex(node);
    return row < 0 ? QModelIndex() : createIndex(row, column, const_cast<QRKAbstractItemModelNode*>(node));
}

int QRKAbstractTreeItemModel::fieldFromIndex(const QModelIndex&, int role) const
{
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return Field::Name;
    case Qt::DecorationRole:
        return Field::Colour;
    case Qt::CheckStateRole:
        return Field::CheckState;
    default:
        return Field::None;
    }
}

namespace {
bool acceptable(QRKAbstractItemModelNode* node, QRKAbstractItemModelCompoundNode* parent)
{
    // One node in two child lists would break parent(); a node cannot hold its own ancestor.
    return node && parent && parent->childIndex(node) < 0 && !node->parent() && !parent->hasAncestorOrSelf(node);
}
} // namespace

bool QRKAbstractTreeItemModel::addNode(QRKAbstractItemModelNode* node, QRKAbstractItemModelCompoundNode* parent)
{
    if (!parent)
        parent = m_root;
    if (!acceptable(node, parent))
        return false;
    if (!isAttached(parent)) {
        parent->addChild(node);
        return true;
    }
    const QModelIndex p = parent == m_root ? QModelIndex() : indexFromNode(parent, 0);
    beginInsertRows(p, parent->childCount(), parent->childCount());
    parent->addChild(node);
    endInsertRows();
    return true;
}

bool QRKAbstractTreeItemModel::insertNode(QRKAbstractItemModelNode* node, QRKAbstractItemModelCompoundNode* parent,
                                          int place)
{
    if (!parent)
        parent = m_root;
    if (!acceptable(node, parent))
        return false;
    const int row = place < 0 || place > parent->childCount() ? parent->childCount() : place;
    if (!isAttached(parent)) {
        parent->insertChild(node, row);
        return true;
    }
    const QModelIndex p = parent == m_root ? QModelIndex() : indexFromNode(parent, 0);
    beginInsertRows(p, row, row);
    parent->insertChild(node, row);
    endInsertRows();
    return true;
}

bool QRKAbstractTreeItemModel::removeRows(int row, int count, const QModelIndex& parent)
{
    QRKAbstractItemModelNode* pn = nodeFromIndex(parent);
    if (!pn || !pn->isCompound())
        return false;
    auto* p = static_cast<QRKAbstractItemModelCompoundNode*>(pn);
    if (count <= 0 || row < 0 || row + count > p->childCount())
        return false;
    const bool signal = isAttached(p);
    if (signal)
        beginRemoveRows(parent, row, row + count - 1);
    for (int k = 0; k < count; ++k) {
        QRKAbstractItemModelNode* c = p->child(row);
        if (c->isCompound())
            dropDescendants(static_cast<QRKAbstractItemModelCompoundNode*>(c));
        QRKAbstractSubject* s = c->subject();
        const bool ownFolder = c->isCompound() && dynamic_cast<QRKSimpleFolderNode*>(c) &&
                               static_cast<QRKSimpleFolderNode*>(c)->ownsSubject();
        p->removeChild(c);
        // A folder this model made stays alive (it rejoins with its next object).
        if (s && !ownFolder)
            s->removeNode(c);
    }
    if (signal)
        endRemoveRows();
    return true;
}

bool QRKAbstractTreeItemModel::replaceNodes(QRKAbstractItemModelCompoundNode* parent,
                                            const QList<QRKAbstractItemModelNode*>& nodes)
{
    if (!parent)
        return false;
    const QModelIndex p = parent == m_root ? QModelIndex() : indexFromNode(parent, 0);
    if (parent->childCount() > 0 && !removeRows(0, parent->childCount(), p))
        return false;
    QList<QRKAbstractItemModelNode*> fresh;
    QSet<QRKAbstractItemModelNode*> seen;
    for (QRKAbstractItemModelNode* n : nodes)
        if (n && !seen.contains(n) && !n->parent() && !parent->hasAncestorOrSelf(n)) {
            seen.insert(n);
            fresh.append(n);
        }
    if (fresh.isEmpty())
        return true;
    const bool signal = isAttached(parent);
    if (signal)
        beginInsertRows(p, 0, fresh.size() - 1);
    for (QRKAbstractItemModelNode* n : fresh)
        parent->addChild(n);
    if (signal)
        endInsertRows();
    return true;
}

bool QRKAbstractTreeItemModel::clearNodes(QRKAbstractItemModelCompoundNode* node)
{
    if (!node || node->childCount() == 0)
        return true;
    const QModelIndex p = node == m_root ? QModelIndex() : indexFromNode(node, 0);
    if (!isAttached(node)) {
        dropDescendants(node);
        return true;
    }
    return removeRows(0, node->childCount(), p);
}

bool QRKAbstractTreeItemModel::clearEmptyChildren(QRKAbstractItemModelCompoundNode* node)
{
    if (!node)
        return false;
    const QModelIndex p = node == m_root ? QModelIndex() : indexFromNode(node, 0);
    bool changed = false;
    // From the end, one row at a time, so that kept children are never taken out and re-added.
    for (int row = node->childCount() - 1; row >= 0; --row) {
        QRKAbstractItemModelNode* c = node->child(row);
        const bool keep = c->isCompound() && static_cast<QRKAbstractItemModelCompoundNode*>(c)->childCount() > 0;
        if (keep)
            continue;
        if (isAttached(node))
            removeRows(row, 1, p);
        else {
            QRKAbstractSubject* s = c->subject();
            const bool ownFolder =
                dynamic_cast<QRKSimpleFolderNode*>(c) && static_cast<QRKSimpleFolderNode*>(c)->ownsSubject();
            node->removeChild(c);
            if (s && !ownFolder)
                s->removeNode(c);
        }
        changed = true;
    }
    return changed;
}

QRKAbstractItemModelCompoundNode* QRKAbstractTreeItemModel::createDefaultFolderNode(const QString& name,
                                                                                    QRKAbstractItemModelNode* parent,
                                                                                    QRKAbstractItemModel*)
{
    // Built detached: a folder joins its parent through addNode with its first object, so that
    // views hear of it.
    auto* folder = new QRKSimpleFolderNode(name, nullptr, this);
    if (parent)
        if (auto* compound = dynamic_cast<QRKAbstractCompoundSubject*>(parent->subject()))
            compound->addChild(folder->subject());
    m_ownedNodes.append(folder);
    return folder;
}

void QRKAbstractTreeItemModel::collectSelection(const QModelIndex& parent, QItemSelection& out) const
{
    const int rows = rowCount(parent);
    int runStart = -1;
    auto close = [&](int endRow) {
        if (runStart >= 0)
            out.select(index(runStart, 0, parent), index(endRow, columnCount(parent) - 1, parent));
        runStart = -1;
    };
    for (int r = 0; r < rows; ++r) {
        const QModelIndex i = index(r, 0, parent);
        QRKAbstractSubject* s = subjectFromIndex(i);
        if (s && s->isSelectable(Field::Name)) {
            if (s->isSelected()) {
                if (runStart < 0)
                    runStart = r;
            } else
                close(r - 1);
        }
        collectSelection(i, out);
    }
    close(rows - 1);
}

QItemSelection QRKAbstractTreeItemModel::getSelectionFromSubjects(const QModelIndex& parent) const
{
    QItemSelection out;
    collectSelection(parent, out);
    return out;
}

Qt::DropActions QRKAbstractTreeItemModel::supportedDragActions() const { return Qt::CopyAction | Qt::MoveAction; }
Qt::DropActions QRKAbstractTreeItemModel::supportedDropActions() const { return Qt::CopyAction | Qt::MoveAction; }

bool QRKAbstractTreeItemModel::dropMimeData(const QMimeData*, Qt::DropAction, int, int, const QModelIndex&)
{
    return false;
}

// ---------------------------------------------------------------------------------------------

QRKAbstractModelBrowserData::QRKAbstractModelBrowserData(UnitRegistry* registry, QObject* parent)
    : QObject(parent), m_registry(registry)
{
    m_table = new QRKTableItemModel(this, this);
    m_objectTypes = new QRKObjectTypesTreeItemModel(this, this);
    m_sets = new QRKSetsTreeItemModel(this, this);
}

QRKAbstractModelBrowserData::~QRKAbstractModelBrowserData()
{
    // The table mirrors the object-types tree's root: it goes first.
    delete m_table;
    delete m_sets;
    delete m_objectTypes;
}

void QRKAbstractModelBrowserData::restart()
{
    if (m_objectTypes)
        m_objectTypes->restart();
    if (m_sets)
        m_sets->restart();
    if (m_table) {
        m_table->restart();
        m_table->setTreeRootNode(m_objectTypes ? m_objectTypes->rootNode() : nullptr);
    }
}

void QRKAbstractModelBrowserData::touch()
{
    m_objectTypes->touch();
    m_sets->touch();
    m_table->touch();
}

void QRKAbstractModelBrowserData::touchReset()
{
    m_objectTypes->touchReset();
    m_sets->touchReset();
    m_table->touchReset();
}

void QRKAbstractModelBrowserData::nodeChanged(QRKAbstractItemModel*, QRKAbstractItemModelNode* node)
{
    QRKAbstractSubject* s = node ? node->subject() : nullptr;
    if (!s)
        return;
    for (int i = 0; i < s->nodeCount(); ++i) {
        QRKAbstractItemModelNode* other = s->node(i);
        if (other != node && other->subject() == s) {
            other->touch();
            if (QRKAbstractItemModel* m = other->model())
                m->touch(other->parent()); // the folder's tri-state follows its child
        }
    }
}

void QRKAbstractModelBrowserData::updateDocument() {}

} // namespace rkBase
