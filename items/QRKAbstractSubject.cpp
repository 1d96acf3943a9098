#include "items/QRKAbstractSubject.h"

#include "items/QRKAbstractItemModel.h"
#include "items/QRKAbstractItemModelNode.h"

#include <QIcon>
#include <QSet>

namespace rkBase {

QRKAbstractSubject::~QRKAbstractSubject() = default;

void QRKAbstractSubject::touch()
{
    // A touch can change the list (a model may drop the node), so walk a copy.
    const QList<QRKAbstractItemModelNode*> nodes = m_nodes;
    for (QRKAbstractItemModelNode* n : nodes)
        if (m_nodes.contains(n) && n->subject() == this)
            n->touch();
}

QRKAbstractItemModelNode* QRKAbstractSubject::createTreeNode(QRKAbstractItemModel* model)
{
    auto* n = new QRKAbstractItemModelNode(this, nullptr, model);
    m_nodes.append(n);
    return n;
}

QRKAbstractItemModelNode* QRKAbstractSubject::createTableNode(QRKAbstractItemModel* model)
{
    auto* n = new QRKAbstractItemModelNode(this, nullptr, model);
    m_nodes.append(n);
    return n;
}

bool QRKAbstractSubject::setData(int, const QVariant&, int) { return false; }
void QRKAbstractSubject::setSelected(bool) {}
bool QRKAbstractSubject::isSelected() const { return false; }
bool QRKAbstractSubject::contextMenu(const QPoint&, QRKAbstractItemModelNode*, QWidget*) { return false; }
bool QRKAbstractSubject::doubleClick(QWidget*) { return false; }
bool QRKAbstractSubject::altClick(QWidget*) { return false; }
bool QRKAbstractSubject::shouldBeDeletedWhenEmpty() const { return true; }

QRKAbstractItemModelNode* QRKAbstractSubject::node(int i) const
{
    return i >= 0 && i < m_nodes.size() ? m_nodes.at(i) : nullptr;
}

QRKAbstractItemModelNode* QRKAbstractSubject::node(const QRKAbstractItemModel* model) const
{
    for (QRKAbstractItemModelNode* n : m_nodes)
        if (n->model() == model)
            return n;
    return nullptr;
}

void QRKAbstractSubject::addNode(QRKAbstractItemModelNode* node)
{
    if (node && !m_nodes.contains(node))
        m_nodes.append(node);
}

void QRKAbstractSubject::removeNode(QRKAbstractItemModelNode* node)
{
    if (m_nodes.removeAll(node) > 0 && node->subject() == this)
        node->setSubject(nullptr);
}

QRKAbstractItemModelNode* QRKAbstractSubject::firstOwnNode()
{
    // A copied subject holds the original's node pointers; those are not ours to act on.
    while (!m_nodes.isEmpty() && m_nodes.first()->subject() != this)
        m_nodes.removeFirst();
    return m_nodes.isEmpty() ? nullptr : m_nodes.first();
}

void QRKAbstractSubject::removeThroughModel(QRKAbstractItemModelNode* n)
{
    if (QRKAbstractItemModel* model = n->model())
        model->removeNode(n);
    // A node in no model's tree cannot be removed by a model; take it out here so that every
    // round shrinks the list.
    if (!m_nodes.isEmpty() && m_nodes.first() == n) {
        if (QRKAbstractItemModelCompoundNode* p = n->compoundParent())
            p->removeChild(n);
        removeNode(n);
    }
}

void QRKAbstractSubject::clearNodes()
{
    while (QRKAbstractItemModelNode* n = firstOwnNode())
        removeThroughModel(n);
}

void QRKAbstractSubject::destroyNodes()
{
    while (QRKAbstractItemModelNode* n = firstOwnNode()) {
        // While its model lives, a node is taken out through it, or the model would keep a
        // dangling row.
        if (n->model()) {
            removeThroughModel(n);
            continue;
        }
        m_nodes.removeFirst();
        if (QRKAbstractItemModelCompoundNode* p = n->compoundParent())
            p->removeChild(n);
        else
            n->setParent(nullptr);
        n->setSubject(nullptr);
        // A folder node keeps its own folder; it is deleted with its model.
    }
}

QRKAbstractItemModelNode* QRKAbstractSubject::childOfNode(QRKAbstractItemModelCompoundNode* compound) const
{
    if (!compound || compound->subject() == this)
        return nullptr;
    for (QRKAbstractItemModelNode* n : m_nodes) {
        if (n->subject() != this)
            continue;
        for (const QRKAbstractItemModelNode* p = n; p; p = p->parent())
            if (p->subject() == compound->subject())
                return n;
    }
    return nullptr;
}

// ---------------------------------------------------------------------------------------------

QRKAbstractItemModelNode* QRKAbstractCompoundSubject::createTreeNode(QRKAbstractItemModel* model)
{
    auto* n = new QRKAbstractItemModelCompoundNode(this, nullptr, model);
    m_nodes.append(n);
    return n;
}

bool QRKAbstractCompoundSubject::setData(int field, const QVariant& value, int role)
{
    if (role != Qt::CheckStateRole || field != Field::CheckState)
        return false;
    for (QRKAbstractSubject* c : m_children)
        c->setData(field, value, role);
    touchChildren();
    return true;
}

void QRKAbstractCompoundSubject::setSelected(bool selected)
{
    for (QRKAbstractSubject* c : m_children)
        c->setSelected(selected);
}

bool QRKAbstractCompoundSubject::isSelected() const
{
    if (m_children.isEmpty())
        return false;
    for (QRKAbstractSubject* c : m_children)
        if (!c->isSelected())
            return false;
    return true;
}

QList<QRKAbstractSubject*> QRKAbstractCompoundSubject::leafSubjects() const
{
    QList<QRKAbstractSubject*> out;
    for (QRKAbstractSubject* c : m_children) {
        auto* compound = dynamic_cast<QRKAbstractCompoundSubject*>(c);
        if (!compound) {
            out.append(c);
            continue;
        }
        if (compound->includeInTable())
            out.append(c);
        out.append(compound->leafSubjects());
    }
    return out;
}

bool QRKAbstractCompoundSubject::reaches(const QRKAbstractSubject* candidate) const
{
    if (candidate == this)
        return true;
    for (QRKAbstractSubject* c : m_children)
        if (auto* compound = dynamic_cast<QRKAbstractCompoundSubject*>(c))
            if (compound->reaches(candidate))
                return true;
    return false;
}

bool QRKAbstractCompoundSubject::hasChild(QRKAbstractSubject* child) const
{
    if (m_childSet.size() != m_children.size())
        m_childSet = QSet<QRKAbstractSubject*>(m_children.begin(), m_children.end());
    return m_childSet.contains(child);
}

void QRKAbstractCompoundSubject::addChild(QRKAbstractSubject* child)
{
    if (!child || hasChild(child))
        return;
    // A child that already reaches this subject would make every recursive walk endless.
    if (auto* compound = dynamic_cast<QRKAbstractCompoundSubject*>(child))
        if (compound->reaches(this))
            return;
    m_children.append(child);
    m_childSet.insert(child);
}

void QRKAbstractCompoundSubject::removeChild(QRKAbstractSubject* child)
{
    if (!hasChild(child))
        return;
    // Children are unique; the search runs from the end, where recent additions are.
    m_children.removeAt(m_children.lastIndexOf(child));
    m_childSet.remove(child);
}

void QRKAbstractCompoundSubject::touchChildren()
{
    const QList<QRKAbstractSubject*> children = m_children;
    for (QRKAbstractSubject* c : children)
        c->touch();
    touch();
}

int QRKAbstractCompoundSubject::checkState() const
{
    if (m_children.isEmpty())
        return 0;
    const int first = m_children.first()->data(Field::CheckState, Qt::DisplayRole).toInt();
    for (QRKAbstractSubject* c : m_children)
        if (c->data(Field::CheckState, Qt::DisplayRole).toInt() != first)
            return Qt::PartiallyChecked;
    return first;
}

// ---------------------------------------------------------------------------------------------

QRKSimpleSubject::QRKSimpleSubject(const QString& name, const QColor& colour, Qt::CheckState state)
    : m_name(name), m_colour(colour), m_checkState(state)
{
}

QVariant QRKSimpleSubject::data(int field, int role) const
{
    switch (role) {
    case Qt::DisplayRole:
        if (field == Field::Name)
            return m_name;
        if (field == Field::Colour)
            return m_colour;
        if (field == Field::CheckState)
            return m_checkState;
        break;
    case Qt::DecorationRole:
        // Trees ask the colour field for the decoration; older callers ask the name field.
        if (field == Field::Name || field == Field::Colour)
            return m_colour;
        break;
    case Qt::CheckStateRole:
        // The table's check-box column asks field -5; trees ask it too.
        if (field == Field::Name || field == Field::CheckState)
            return m_checkState;
        break;
    case Qt::BackgroundRole:
        // The table's colour column shows its swatch through the background role.
        if (field == Field::Colour)
            return m_colour;
        break;
    default:
        break;
    }
    return QVariant();
}

bool QRKSimpleSubject::isSelectable(int) const { return true; }
bool QRKSimpleSubject::isCheckable(int) const { return false; }
void QRKSimpleSubject::setSelected(bool selected) { m_selected = selected; }
bool QRKSimpleSubject::isSelected() const { return m_selected; }

// ---------------------------------------------------------------------------------------------

QRKSimpleFolder::QRKSimpleFolder(const QString& name, QObject* parent) : QObject(parent), m_name(name) {}

QVariant QRKSimpleFolder::data(int field, int role) const
{
    if (role == Qt::DecorationRole)
        return field == Field::Name ? QVariant(QIcon(QStringLiteral(":/model/Resources/icon_folder.png"))) : QVariant();
    if (role == Qt::CheckStateRole)
        return field == Field::CheckState && m_checkable ? QVariant(checkState()) : QVariant();
    if (field == Field::CheckState)
        return checkState();
    if (field == Field::Name)
        return m_name;
    return QVariant();
}

bool QRKSimpleFolder::isSelectable(int) const { return m_checkable; }
bool QRKSimpleFolder::isCheckable(int) const { return m_checkable; }

void QRKSimpleFolder::setSelected(bool selected)
{
    if (!m_checkable)
        return;
    m_selected = selected;
    for (QRKAbstractSubject* c : m_children)
        c->setSelected(selected);
}

bool QRKSimpleFolder::isSelected() const { return m_selected; }

void QRKSimpleFolder::selectChildren()
{
    for (QRKAbstractSubject* c : m_children)
        c->setSelected(true);
    touch();
}

} // namespace rkBase
