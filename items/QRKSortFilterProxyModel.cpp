#include "items/QRKSortFilterProxyModel.h"

#include "items/QRKAbstractItemModel.h"
#include "items/QRKAbstractItemModelNode.h"
#include "items/QRKAbstractSubject.h"
#include "items/QRKTableItemModel.h"

#include <QIcon>
#include <QRegExp>

namespace rkBase {

QRKSortFilterProxyModel::QRKSortFilterProxyModel(QObject* parent) : QSortFilterProxyModel(parent)
{
    setDynamicSortFilter(true);
}

void QRKSortFilterProxyModel::setFilterText(const QString& text)
{
    m_filterText = text;
    static const QString meta = QStringLiteral("\\^$.|?*+()[]{}");
    m_plainText = true;
    for (QChar c : text)
        if (meta.contains(c))
            m_plainText = false;
    if (text.isEmpty())
        setFilterRegExp(QRegExp());
    else
        setFilterRegExp(QRegExp(QStringLiteral(".*") + text + QStringLiteral(".*"), Qt::CaseInsensitive));
}

bool QRKSortFilterProxyModel::textFilterAccepts(int sourceRow, const QModelIndex& sourceParent) const
{
    if (m_filterText.isEmpty() || !m_plainText)
        return QSortFilterProxyModel::filterAcceptsRow(sourceRow, sourceParent);
    // ".*text.*" without metacharacters matches exactly the keys that contain the text.
    const QModelIndex key =
        sourceModel()->index(sourceRow, filterKeyColumn() < 0 ? 0 : filterKeyColumn(), sourceParent);
    return sourceModel()->data(key, filterRole()).toString().contains(m_filterText, Qt::CaseInsensitive);
}

QRKAbstractItemModel* QRKSortFilterProxyModel::itemModel() const
{
    return qobject_cast<QRKAbstractItemModel*>(sourceModel());
}

QRKAbstractItemModelNode* QRKSortFilterProxyModel::nodeFromProxyIndex(const QModelIndex& index) const
{
    QRKAbstractItemModel* m = itemModel();
    const QModelIndex s = mapToSource(index);
    return m && s.isValid() ? m->nodeFromIndex(s) : nullptr;
}

// ---------------------------------------------------------------------------------------------

QRKTableProxyItemModel::QRKTableProxyItemModel(QObject* parent) : QRKSortFilterProxyModel(parent) {}

void QRKTableProxyItemModel::setNodeFilter(QRKAbstractItemModelCompoundNode* node, int field, const QVariant& value)
{
    m_filterNode = node;
    m_filterField = field;
    m_filterValue = value;
    invalidateFilter();
}

void QRKTableProxyItemModel::touchHeaderData(int column) { emit headerDataChanged(Qt::Horizontal, column, column); }

void QRKTableProxyItemModel::setSourceModel(QAbstractItemModel* model)
{
    if (model != sourceModel())
        m_filterNode = nullptr;
    QRKSortFilterProxyModel::setSourceModel(model);
}

QVariant QRKTableProxyItemModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Horizontal && role == Qt::DecorationRole && section == filterKeyColumn() &&
        !filterText().isEmpty())
        return QIcon(QStringLiteral(":/rkBaseQt/Resources/filter.png"));
    return QRKSortFilterProxyModel::headerData(section, orientation, role);
}

bool QRKTableProxyItemModel::filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const
{
    QRKAbstractItemModel* m = itemModel();
    QRKAbstractItemModelNode* row = m ? m->nodeFromIndex(m->index(sourceRow, 0, sourceParent)) : nullptr;
    if (!m_filterNode) {
        if (row && m_filterField != Field::None && row->data(m_filterField, Qt::DisplayRole) != m_filterValue)
            return false;
        return textFilterAccepts(sourceRow, sourceParent);
    }
    if (!row)
        return textFilterAccepts(sourceRow, sourceParent);
    QRKAbstractItemModelNode* inside = row->subject() ? row->subject()->childOfNode(m_filterNode) : nullptr;
    if (!inside)
        return false;
    // A leaf inside a compound that has a row of its own belongs to that row.
    for (QRKAbstractItemModelNode* p = inside->parent(); p && p != m_filterNode; p = p->parent())
        if (p->isCompound() && static_cast<QRKAbstractItemModelCompoundNode*>(p)->includeInTable())
            return false;
    if (m_filterField != Field::None && inside->data(m_filterField, Qt::DisplayRole) != m_filterValue)
        return false;
    return textFilterAccepts(sourceRow, sourceParent);
}

bool QRKTableProxyItemModel::lessThan(const QModelIndex& left, const QModelIndex& right) const
{
    QRKAbstractItemModel* m = itemModel();
    auto* table = qobject_cast<QRKTableItemModel*>(m);
    if (m && left.column() == right.column()) {
        QRKAbstractItemModelNode* a = m->nodeFromIndex(left);
        QRKAbstractItemModelNode* b = m->nodeFromIndex(right);
        if (a && b)
            return a->lessThan(b, table ? table->fieldFromColumn(left.column()) : int(Field::Name));
    }
    return QRKSortFilterProxyModel::lessThan(left, right);
}

// ---------------------------------------------------------------------------------------------

QRKTreeProxyItemModel::QRKTreeProxyItemModel(QObject* parent) : QRKSortFilterProxyModel(parent) {}

Qt::DropActions QRKTreeProxyItemModel::supportedDragActions() const { return Qt::CopyAction | Qt::MoveAction; }

bool QRKTreeProxyItemModel::lessThan(const QModelIndex& left, const QModelIndex& right) const
{
    QRKAbstractItemModel* m = itemModel();
    if (m && left.column() == right.column()) {
        QRKAbstractItemModelNode* a = m->nodeFromIndex(left);
        QRKAbstractItemModelNode* b = m->nodeFromIndex(right);
        if (left.parent() != right.parent())
            return a && b && a->lessThan(b, Field::SortLast);
        QRKAbstractItemModelNode* p = m->nodeFromIndex(left.parent());
        if (p && p->isCompound())
            return static_cast<QRKAbstractItemModelCompoundNode*>(p)->lessThan(left.row(), right.row(), Field::None);
    }
    return QRKSortFilterProxyModel::lessThan(left, right);
}

} // namespace rkBase
