#pragma once

#include "rkbaseqt_export.h"

#include <QSortFilterProxyModel>

namespace rkBase {

class QRKAbstractItemModel;
class QRKAbstractItemModelNode;
class QRKAbstractItemModelCompoundNode;

/// \brief Base of the views' proxies: dynamic sorting and filtering on, and the text filter.
///
/// The filter pattern is the case-insensitive QRegExp ".*text.*" (regular-expression syntax in
/// the text is honoured); text without metacharacters is matched as a plain substring, which
/// selects the same rows far faster.
class RKBASEQT_EXPORT QRKSortFilterProxyModel : public QSortFilterProxyModel {
    Q_OBJECT
public:
    /// A proxy with dynamic sort and filter.
    explicit QRKSortFilterProxyModel(QObject* parent = nullptr);

    /// Filters the key column by `text`; empty text clears the filter.
    void setFilterText(const QString& text);
    /// The text given to setFilterText().
    QString filterText() const { return m_filterText; }
    /// The node behind a proxy index, or null.
    QRKAbstractItemModelNode* nodeFromProxyIndex(const QModelIndex& index) const;

protected:
    /// The text filter on the key column of `sourceRow`.
    bool textFilterAccepts(int sourceRow, const QModelIndex& sourceParent) const;
    /// The source as one of the library's models, or null.
    QRKAbstractItemModel* itemModel() const;

private:
    QString m_filterText;
    bool m_plainText = true;
};

/// \brief The table view's proxy: text filter, field filter and the filter of one tree node.
class RKBASEQT_EXPORT QRKTableProxyItemModel : public QRKSortFilterProxyModel {
    Q_OBJECT
public:
    /// A proxy without filters.
    explicit QRKTableProxyItemModel(QObject* parent = nullptr);

    /// Shows only rows below `node` (null for all) whose `field` equals `value` (-99 for any).
    void setNodeFilter(QRKAbstractItemModelCompoundNode* node, int field, const QVariant& value);
    /// Tells views that the header of `column` changed (the filter icon comes or goes).
    void touchHeaderData(int column);
    /// Sets the source and drops a node filter that belonged to the old source.
    void setSourceModel(QAbstractItemModel* model) override;
    /// The filter icon on the key column's header while a filter text is set.
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

    /// The field of the field filter, -99 for none.
    int filterField() const { return m_filterField; }
    /// The node of the node filter, or null.
    QRKAbstractItemModelCompoundNode* filterNode() const { return m_filterNode; }

protected:
    /// The node filter, the field filter and the text filter, as described for setNodeFilter().
    bool filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const override;
    /// The nodes' own order for the column's field.
    bool lessThan(const QModelIndex& left, const QModelIndex& right) const override;

private:
    int m_filterField = -99;
    QVariant m_filterValue;
    QRKAbstractItemModelCompoundNode* m_filterNode = nullptr;
};

/// \brief The trees' proxy: each folder orders its children by its own sort field.
class RKBASEQT_EXPORT QRKTreeProxyItemModel : public QRKSortFilterProxyModel {
    Q_OBJECT
public:
    /// A proxy over a tree model.
    explicit QRKTreeProxyItemModel(QObject* parent = nullptr);
    /// Copy and move.
    Qt::DropActions supportedDragActions() const override;

protected:
    /// Siblings by their parent's order; nodes of different parents by the last sort key.
    bool lessThan(const QModelIndex& left, const QModelIndex& right) const override;
};

} // namespace rkBase
