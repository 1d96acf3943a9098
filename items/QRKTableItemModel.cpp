#include "items/QRKTableItemModel.h"

#include "items/QRKAbstractItemModelNode.h"
#include "items/QRKAbstractSubject.h"
#include "units/DisplayUnitManager.h"
#include "units/UnitManager.h"
#include "units/UnitRegistry.h"

#include <QIcon>
#include <QSize>

namespace rkBase {

namespace {
struct StandardColumn {
    const char* name;
    int field;
    int type;
    bool editable;
};
const StandardColumn kStandardColumns[] = {
    {"Id", Field::Id, QRKTableItemModel::IntegerColumn, false},
    {"Name", Field::Name, QRKTableItemModel::TextColumn, true},
    {"Object Type", Field::ObjectType, QRKTableItemModel::TextColumn, false},
    {"Visible", Field::CheckState, QRKTableItemModel::CheckColumn, true},
    {"In Time", Field::InTime, QRKTableItemModel::CheckColumn, true},
    {"Colour", Field::Colour, QRKTableItemModel::ColourColumn, true},
    {"Horizon", Field::Horizon, QRKTableItemModel::TextColumn, true},
    {"Section", Field::Section, QRKTableItemModel::TextColumn, false},
};
bool isNumeric(int type) { return type >= 1 && type <= 3; }
} // namespace

QRKTableItemModel::QRKTableItemModel(QRKAbstractModelBrowserData* browserData, QObject* parent)
    : QRKAbstractItemModel(browserData, parent)
{
}

QRKTableItemModel::~QRKTableItemModel()
{
    // Row nodes have no parent; each leaves its subject's list as it is deleted.
    const QList<QRKAbstractItemModelNode*> rows = m_rows;
    m_rows.clear();
    qDeleteAll(rows);
}

void QRKTableItemModel::restart()
{
    // Rows vanish in clearNodes, so the reset brackets the whole rebuild.
    beginResetModel();
    m_resetting = true;
    if (!m_root) {
        auto* root = new QRKSimpleFolderNode(QStringLiteral("root"), nullptr, this);
        root->setSortField(Field::None);
        root->setCheckable(false);
        m_root = root;
    } else {
        m_columns.clear();
        clearNodes();
    }
    for (const QMetaObject::Connection& c : m_unitConnections)
        disconnect(c);
    m_unitConnections.clear();
    for (const StandardColumn& s : kStandardColumns) {
        ColumnInfo c;
        c.name = QString::fromLatin1(s.name);
        c.field = s.field;
        c.type = s.type;
        c.editable = s.editable;
        addColumn(c);
    }
    m_resetting = false;
    endResetModel();
}

void QRKTableItemModel::setTreeRootNode(QRKAbstractItemModelCompoundNode* root)
{
    beginResetModel();
    m_resetting = true;
    clearNodes();
    m_treeRoot = root;
    QSet<QRKAbstractSubject*> seen;
    if (root)
        collectChildNodes(root, seen);
    m_resetting = false;
    endResetModel();
}

void QRKTableItemModel::collectChildNodes(QRKAbstractItemModelCompoundNode* node, QSet<QRKAbstractSubject*>& seen)
{
    if (!node)
        return;
    for (int i = 0; i < node->childCount(); ++i) {
        QRKAbstractItemModelNode* c = node->child(i);
        QRKAbstractSubject* s = c->subject();
        if (c->isCompound()) {
            auto* compound = static_cast<QRKAbstractItemModelCompoundNode*>(c);
            if (compound->includeInTable() && !seen.contains(s)) {
                appendRow(s->createTableNode(this));
                seen.insert(s);
            }
            collectChildNodes(compound, seen);
        } else if (s && !seen.contains(s)) {
            appendRow(s->createTableNode(this));
            seen.insert(s);
        }
    }
}

void QRKTableItemModel::appendRow(QRKAbstractItemModelNode* node)
{
    if (!node)
        return;
    node->m_place = m_rows.size();
    m_rows.append(node);
}

int QRKTableItemModel::rowOf(const QRKAbstractItemModelNode* node) const
{
    // Rows have no parent and belong to this model; anything else is absent without a search.
    if (!node || node->parent() || node->model() != this)
        return -1;
    return QRKAbstractItemModelNode::placeIn(m_rows, node);
}

bool QRKTableItemModel::addSubject(QRKAbstractSubject* subject)
{
    if (!subject || !m_treeRoot)
        return false;
    // A row anywhere in the list means the subject is shown already, whatever the order of nodes.
    for (int i = 0; i < subject->nodeCount(); ++i)
        if (subject->node(i)->model() == this && subject->node(i)->subject() == subject)
            return false;
    for (int i = 0; i < subject->nodeCount(); ++i) {
        QRKAbstractItemModelNode* n = subject->node(i);
        for (QRKAbstractItemModelNode* p = n->parent(); p; p = p->parent()) {
            if (p != m_treeRoot)
                continue;
            QRKAbstractItemModelNode* row = subject->createTableNode(this);
            if (!row)
                return false;
            beginInsertRows(QModelIndex(), m_rows.size(), m_rows.size());
            appendRow(row);
            endInsertRows();
            return true;
        }
    }
    return false;
}

void QRKTableItemModel::clearNodes()
{
    if (m_rows.isEmpty())
        return;
    if (!m_resetting)
        beginRemoveRows(QModelIndex(), 0, m_rows.size() - 1);
    const QList<QRKAbstractItemModelNode*> rows = m_rows;
    m_rows.clear();
    for (QRKAbstractItemModelNode* n : rows) {
        if (QRKAbstractSubject* s = n->subject())
            s->removeNode(n);
        else
            delete n;
    }
    if (!m_resetting)
        endRemoveRows();
}

bool QRKTableItemModel::removeRows(int row, int count, const QModelIndex& parent)
{
    if (parent.isValid() || count <= 0 || row < 0 || row + count > m_rows.size())
        return false;
    beginRemoveRows(QModelIndex(), row, row + count - 1);
    for (int k = 0; k < count; ++k) {
        QRKAbstractItemModelNode* n = m_rows.takeAt(row);
        if (QRKAbstractSubject* s = n->subject())
            s->removeNode(n);
        else
            delete n;
    }
    endRemoveRows();
    return true;
}

int QRKTableItemModel::columnIndex(const QString& name) const
{
    for (int i = 0; i < m_columns.size(); ++i)
        if (m_columns.at(i).name == name)
            return i;
    return -1;
}

int QRKTableItemModel::fieldFromColumn(int column) const
{
    return column >= 0 && column < m_columns.size() ? m_columns.at(column).field : int(Field::None);
}

void QRKTableItemModel::showColumn(int column, bool show)
{
    if (column < 0 || column >= m_columns.size())
        return;
    m_columns[column].visible = show;
    emit headerDataChanged(Qt::Horizontal, column, column);
}

void QRKTableItemModel::addColumn(const ColumnInfo& column)
{
    const int at = m_columns.size();
    if (!m_resetting)
        beginInsertColumns(QModelIndex(), at, at);
    m_columns.append(column);
    if (!m_resetting)
        endInsertColumns();
    if (column.unitManager) {
        // A unit switch changes the header's tag and every printed value of the column.
        // The display unit lives in the registry's display table; the model unit in the manager.
        const QString name = column.name;
        const QString category = QString::fromStdString(column.unitManager->category());
        auto refresh = [this, name] {
            const int c = columnIndex(name);
            if (c < 0)
                return;
            emit headerDataChanged(Qt::Horizontal, c, c);
            if (!m_rows.isEmpty())
                emit dataChanged(index(0, c), index(m_rows.size() - 1, c));
        };
        m_unitConnections << connect(column.unitManager.get(), &UnitManager::unitChanged, this, refresh);
        if (DisplayUnitManager* display = column.unitManager->displayUnitManager()) {
            auto ifOurs = [refresh, category](const QString& changed, int) {
                if (changed == category)
                    refresh();
            };
            m_unitConnections << connect(display, &DisplayUnitManager::unitChanged, this, ifOurs);
            m_unitConnections << connect(display, &DisplayUnitManager::precisionChanged, this, ifOurs);
        }
    }
}

QStringList QRKTableItemModel::allowedValues(int column) const
{
    if (column < 0 || column >= m_columns.size() || !m_browserData || !m_browserData->registry())
        return QStringList();
    const ColumnInfo& c = m_columns.at(column);
    if (!c.constrained || c.field <= 0)
        return QStringList();
    return m_browserData->registry()->property_info(c.field).displayConstrainedValues();
}

QModelIndex QRKTableItemModel::index(int row, int column, const QModelIndex& parent) const
{
    if (parent.isValid() || row < 0 || column < 0 || row >= m_rows.size() || column >= m_columns.size())
        return QModelIndex();
    return createIndex(row, column, m_rows.at(row));
}

QModelIndex QRKTableItemModel::parent(const QModelIndex&) const { return QModelIndex(); }

int QRKTableItemModel::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : m_rows.size(); }

int QRKTableItemModel::columnCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : m_columns.size(); }

QModelIndex QRKTableItemModel::indexFromNode(const QRKAbstractItemModelNode* node, int column) const
{
    const int row = node ? rowOf(node) : -1;
    return row < 0 ? QModelIndex() : index(row, column);
}

int QRKTableItemModel::fieldFromIndex(const QModelIndex& index, int role) const
{
    const int column = index.column();
    if (column < 0 || column >= m_columns.size())
        return Field::None;
    const ColumnInfo& c = m_columns.at(column);
    switch (role) {
    case Qt::DisplayRole:
        return c.type == ColourColumn || c.type == CheckColumn ? int(Field::None) : c.field;
    case Qt::EditRole:
        return c.field;
    case Qt::BackgroundRole:
        return c.type == ColourColumn ? c.field : int(Field::None);
    case Qt::CheckStateRole:
        return c.type == CheckColumn ? c.field : int(Field::None);
    case 1:
    case 3:
    case 4:
    case 5:
    case 6:
    case 7:
    case 9:
    case 11:
    case 12:
    case 13:
    case 256:
        return Field::None;
    default:
        return c.type == ColourColumn || c.type == CheckColumn ? int(Field::None) : c.field;
    }
}

QVariant QRKTableItemModel::data(const QModelIndex& index, int role) const
{
    if (role == Qt::TextAlignmentRole) {
        if (!index.isValid() || index.column() >= m_columns.size())
            return QVariant();
        return isNumeric(m_columns.at(index.column()).type) ? QVariant(int(Qt::AlignRight | Qt::AlignVCenter))
                                                            : QVariant();
    }
    return QRKAbstractItemModel::data(index, role);
}

Qt::ItemFlags QRKTableItemModel::flags(const QModelIndex& index) const
{
    if (!index.isValid() || index.column() >= m_columns.size())
        return Qt::NoItemFlags;
    const ColumnInfo& c = m_columns.at(index.column());
    Qt::ItemFlags f = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (c.type == CheckColumn)
        f |= Qt::ItemIsUserCheckable;
    else if (c.editable)
        f |= Qt::ItemIsEditable;
    return f;
}

QVariant QRKTableItemModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || section < 0 || section >= m_columns.size())
        return QVariant();
    const ColumnInfo& c = m_columns.at(section);
    switch (role) {
    case Qt::DisplayRole:
        return c.unitManager ? c.name + QStringLiteral(" (%1)").arg(c.unitManager->getDisplayUnitTag()) : c.name;
    case Qt::DecorationRole:
        return !c.editable && c.type != CheckColumn ? QVariant(QIcon(QStringLiteral(":/rkBaseQt/Resources/lock2.png")))
                                                    : QVariant();
    case Qt::ToolTipRole:
        return c.unitManager ? QVariant(c.unitManager->getDisplayUnitName()) : QVariant();
    case Qt::SizeHintRole:
        if (c.type == ColourColumn)
            return QSize(50, 10);
        if (c.type == CheckColumn)
            return QSize(25, 10);
        return QVariant();
    default:
        return QVariant();
    }
}

void QRKTableItemModel::touch()
{
    if (!m_rows.isEmpty() && !m_columns.isEmpty())
        emit dataChanged(index(0, 0), index(m_rows.size() - 1, m_columns.size() - 1));
}

QItemSelection QRKTableItemModel::getSelectionFromSubjects() const
{
    QItemSelection out;
    int runStart = -1;
    for (int r = 0; r <= m_rows.size(); ++r) {
        QRKAbstractSubject* s = r < m_rows.size() ? m_rows.at(r)->subject() : nullptr;
        const bool selected = s && s->isSelectable(Field::Name) && s->isSelected();
        if (selected && runStart < 0)
            runStart = r;
        if (!selected && runStart >= 0) {
            out.select(index(runStart, 0), index(r - 1, 0));
            runStart = -1;
        }
    }
    return out;
}

} // namespace rkBase
