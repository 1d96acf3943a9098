#pragma once

#include "items/QRKAbstractItemModel.h"

#include <QHash>
#include <QSet>
#include <QStringList>
#include <boost/shared_ptr.hpp>

namespace rkBase {

class UnitManager;

/// \brief One flat table of the document's objects, one row per subject and one column per field.
///
/// Rows mirror a tree's root: `setTreeRootNode` collects every subject below it once (plain
/// nodes, and compounds whose subject asks to be in the table). The table does not follow later
/// tree changes by itself: call `addSubject` after adding to the tree. User-interface thread only.
class RKBASEQT_EXPORT QRKTableItemModel : public QRKAbstractItemModel {
    Q_OBJECT
public:
    /// Column kinds: 1 to 3 numeric (right-aligned), 4 colour, 5 text, 6 check box.
    enum ColumnType {
        IntegerColumn = 1,
        RealColumn = 2,
        NumberColumn = 3,
        ColourColumn = 4,
        TextColumn = 5,
        CheckColumn = 6
    };

    /// \brief Description of one column.
    struct ColumnInfo {
        QString name;                               ///< header text
        int field = -99;                            ///< the subject field shown
        int type = TextColumn;                      ///< a ColumnType value
        boost::shared_ptr<UnitManager> unitManager; ///< gives the header's unit; may be empty
        bool editable = false;                      ///< whether cells may be edited
        bool visible = true;                        ///< whether views show the column
        bool constrained = false;                   ///< positive fields then take allowed values from the registry
    };

    /// An empty table; restart() adds the standard columns.
    explicit QRKTableItemModel(QRKAbstractModelBrowserData* browserData = nullptr, QObject* parent = nullptr);
    /// Deletes its row nodes (taking them out of their subjects' lists).
    ~QRKTableItemModel() override;

    /// Clears rows and columns and sets the eight standard columns; resets the model.
    void restart() override;
    /// Mirrors the tree below `root` (not owned; must outlive the table or be replaced first).
    virtual void setTreeRootNode(QRKAbstractItemModelCompoundNode* root);
    /// Adds a row for a subject shown below the mirrored root; false when it has a row or lies outside.
    virtual bool addSubject(QRKAbstractSubject* subject);
    /// Column with header `name`, -1 when none.
    virtual int columnIndex(const QString& name) const;
    /// The field of `column`, -99 out of range.
    virtual int fieldFromColumn(int column) const;
    /// Marks the column visible or hidden for views.
    virtual void showColumn(int column, bool show);
    /// Appends a column; a column with a unit manager refreshes its header when the display unit changes.
    virtual void addColumn(const ColumnInfo& column);
    /// Removes every row.
    virtual void clearNodes();
    /// Appends rows for the subjects below `node` not yet in `seen`, depth first.
    virtual void collectChildNodes(QRKAbstractItemModelCompoundNode* node, QSet<QRKAbstractSubject*>& seen);

    /// The columns.
    const QList<ColumnInfo>& columns() const { return m_columns; }
    /// The row node at `row`, null out of range.
    QRKAbstractItemModelNode* node(int row) const { return row >= 0 && row < m_rows.size() ? m_rows.at(row) : nullptr; }
    /// The mirrored tree root, or null.
    QRKAbstractItemModelCompoundNode* treeRootNode() const { return m_treeRoot; }
    /// Runs of selected, selectable rows as ranges over column 0.
    QItemSelection getSelectionFromSubjects() const;
    /// The allowed values of a constrained column with a positive field, from the registry; empty otherwise.
    QStringList allowedValues(int column) const;

    /// The cell at (`row`, `column`); invalid out of range or under a valid parent.
    QModelIndex index(int row, int column, const QModelIndex& parent = QModelIndex()) const override;
    /// Always invalid: the table is flat.
    QModelIndex parent(const QModelIndex& child) const override;
    using QObject::parent;
    /// Number of rows for the invalid parent, 0 otherwise.
    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    /// Number of columns for the invalid parent, 0 otherwise.
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    /// Right alignment (130) for numeric columns in role 7; the rest through the subject.
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    /// Enabled and selectable; check boxes checkable, editable columns editable.
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    /// Name with the unit tag, lock icon, unit name and size hints, for the horizontal header.
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    /// Removes rows (bounded to the existing ones); each row node leaves its subject.
    bool removeRows(int row, int count, const QModelIndex& parent = QModelIndex()) override;
    QModelIndex indexFromNode(const QRKAbstractItemModelNode* node, int column) const override;
    /// The column's field by role; -99 where the role shows nothing.
    int fieldFromIndex(const QModelIndex& index, int role) const override;
    /// Redraws every cell.
    void touch() override;
    using QRKAbstractItemModel::touch;

private:
    int rowOf(const QRKAbstractItemModelNode* node) const;
    void appendRow(QRKAbstractItemModelNode* node);

    QRKAbstractItemModelCompoundNode* m_treeRoot = nullptr; // not owned
    QList<ColumnInfo> m_columns;
    QList<QRKAbstractItemModelNode*> m_rows;
    bool m_resetting = false;
    QList<QMetaObject::Connection> m_unitConnections;
};

} // namespace rkBase
