#pragma once

#include "rkbaseqt_export.h"

#include <QAbstractItemModel>
#include <QItemSelection>
#include <QList>
#include <QMimeData>

namespace rkBase {

class QRKAbstractSubject;
class QRKAbstractItemModelNode;
class QRKAbstractItemModelCompoundNode;
class QRKAbstractModelBrowserData;
class QRKObjectTypesTreeItemModel;
class QRKSetsTreeItemModel;
class QRKTableItemModel;
class UnitRegistry;

/// \brief Common base of the trees and the table: a tree of nodes, each pointing at a subject.
///
/// The model owns its root and folder nodes and deletes every node it still holds when it goes,
/// removing each from its subject's list; subjects must outlive it. User-interface thread only.
class RKBASEQT_EXPORT QRKAbstractItemModel : public QAbstractItemModel {
    Q_OBJECT
public:
    /// An empty model; `restart` builds its root. `browserData` may be null.
    explicit QRKAbstractItemModel(QRKAbstractModelBrowserData* browserData = nullptr, QObject* parent = nullptr);
    /// Deletes the nodes it holds (see the class comment).
    ~QRKAbstractItemModel() override;

    /// Builds (or rebuilds) the root and fixed folders.
    virtual void restart() = 0;
    /// Redraws the row of `node`.
    virtual void touch(QRKAbstractItemModelNode* node);
    /// Redraws the top-level rows.
    virtual void touch();
    /// Redraws the children of `node`.
    virtual void touchChildren(QRKAbstractItemModelCompoundNode* node);
    /// The node of an index of this model; the root for an invalid index, null for a foreign one.
    virtual QRKAbstractItemModelNode* nodeFromIndex(const QModelIndex& index) const;
    /// The index of `node` in `column`; invalid when the node is not shown by this model.
    virtual QModelIndex indexFromNode(const QRKAbstractItemModelNode* node, int column) const = 0;
    /// The subject field that `index` shows in `role`; -99 for none.
    virtual int fieldFromIndex(const QModelIndex& index, int role) const = 0;
    /// Removes every row of this model that shows `subject`.
    virtual void removeSubject(QRKAbstractSubject* subject);
    /// Removes the node's row (children first); an emptied parent whose subject asks for it goes too.
    virtual bool removeNode(QRKAbstractItemModelNode* node);
    /// An empty drag payload; the views fill it.
    virtual QMimeData* createMimeData() const;

    /// Resets the model (views re-read everything).
    void touchReset();
    /// The subject of the index's node, or null.
    QRKAbstractSubject* subjectFromIndex(const QModelIndex& index) const;
    /// The subjects of the indexes, each once, in first-seen order.
    QList<QRKAbstractSubject*> subjectsFromIndexes(const QModelIndexList& indexes) const;
    /// The browser data that groups this model with the document's others; may be null.
    QRKAbstractModelBrowserData* parentModel() const { return m_browserData; }
    /// The root node, null before `restart`.
    QRKAbstractItemModelCompoundNode* rootNode() const { return m_root; }

    /// The node's value for the index's field; invalid for field -99.
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    /// Stores through the node; on success tells the browser data and redraws the row.
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    /// "text/plain".
    QStringList mimeTypes() const override;
    /// `createMimeData` with the subjects' names as text, one a line.
    QMimeData* mimeData(const QModelIndexList& indexes) const override;

    using QObject::parent;

protected:
    /// Whether `node` is reachable from the root through its parent chain.
    bool isAttached(const QRKAbstractItemModelNode* node) const;
    /// Takes out every descendant node of `node` (depth first, through their subjects) without signals.
    void dropDescendants(QRKAbstractItemModelCompoundNode* node);
    /// Detaches and deletes `node` and everything below it; used at teardown.
    void deleteTree(QRKAbstractItemModelNode* node);
    /// Refreshes the ancestors of `node` (a child's check state changes its folder's tri-state).
    void touchAncestors(QRKAbstractItemModelNode* node);

    QRKAbstractItemModelCompoundNode* m_root = nullptr;   ///< owned
    QRKAbstractModelBrowserData* m_browserData = nullptr; ///< not owned
    QList<QRKAbstractItemModelNode*> m_ownedNodes;        ///< folders made by this model, deleted with it
};

/// \brief Base of the one-column trees; an index's internal pointer is its node.
class RKBASEQT_EXPORT QRKAbstractTreeItemModel : public QRKAbstractItemModel {
    Q_OBJECT
public:
    /// An empty tree; `restart` builds it.
    explicit QRKAbstractTreeItemModel(QRKAbstractModelBrowserData* browserData = nullptr, QObject* parent = nullptr);

    /// Appends `node` under `parent` (the root when null); false if already there, null, or owned by another parent.
    virtual bool addNode(QRKAbstractItemModelNode* node, QRKAbstractItemModelCompoundNode* parent);
    /// Inserts `node` under `parent` at `place`; the same refusals as addNode.
    virtual bool insertNode(QRKAbstractItemModelNode* node, QRKAbstractItemModelCompoundNode* parent, int place);
    /// Replaces the children of `parent` by `nodes` (nulls and duplicates dropped).
    virtual bool replaceNodes(QRKAbstractItemModelCompoundNode* parent, const QList<QRKAbstractItemModelNode*>& nodes);
    /// Removes every descendant of `node`; true for null.
    virtual bool clearNodes(QRKAbstractItemModelCompoundNode* node);
    /// Drops plain and empty compound children of `node`; whether anything changed.
    virtual bool clearEmptyChildren(QRKAbstractItemModelCompoundNode* node);
    /// A new detached folder node named `name`, owned by this model; `parent` is not joined.
    virtual QRKAbstractItemModelCompoundNode*
    createDefaultFolderNode(const QString& name, QRKAbstractItemModelNode* parent, QRKAbstractItemModel*);

    /// Ranges of selected, selectable subjects below `parent`, recursively.
    QItemSelection getSelectionFromSubjects(const QModelIndex& parent = QModelIndex()) const;

    /// The child at `row` of the parent's node, column 0 only; invalid when absent.
    QModelIndex index(int row, int column, const QModelIndex& parent = QModelIndex()) const override;
    /// The index of the node's parent; invalid at the top level.
    QModelIndex parent(const QModelIndex& child) const override;
    using QObject::parent;
    /// Number of children of a compound node, else 0.
    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    /// One column.
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    /// The node's flags; drop-enabled for the invalid index.
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QModelIndex indexFromNode(const QRKAbstractItemModelNode* node, int column) const override;
    /// Roles 0 and 2 show the name, 1 the colour, 10 the check state.
    int fieldFromIndex(const QModelIndex& index, int role) const override;
    /// Removes `count` rows from `row` (bounded to the existing rows), descendants first.
    bool removeRows(int row, int count, const QModelIndex& parent = QModelIndex()) override;
    /// Copy and move.
    Qt::DropActions supportedDragActions() const override;
    /// Copy and move.
    Qt::DropActions supportedDropActions() const override;
    /// Drops are handled by the views; false here.
    bool dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                      const QModelIndex& parent) override;

private:
    void collectSelection(const QModelIndex& parent, QItemSelection& out) const;
};

/// \brief One document's three models: the table, the object-types tree and the sets tree.
///
/// Spreads an edit made in one model to the other appearances of the subject. Owns its models.
class RKBASEQT_EXPORT QRKAbstractModelBrowserData : public QObject {
    Q_OBJECT
public:
    /// Creates the three models (not yet restarted); `registry` gives the table's units and may be null.
    explicit QRKAbstractModelBrowserData(UnitRegistry* registry = nullptr, QObject* parent = nullptr);
    ~QRKAbstractModelBrowserData() override;

    /// Restarts the object-types tree, the sets tree and the table, then mirrors the types tree in the table.
    virtual void restart();
    /// Redraws the three models.
    virtual void touch();
    /// Resets the three models.
    virtual void touchReset();
    /// Redraws every other appearance of the node's subject; `model` is the one edited.
    virtual void nodeChanged(QRKAbstractItemModel* model, QRKAbstractItemModelNode* node);
    /// Does nothing here; an application writes edits back to its document.
    virtual void updateDocument();

    /// The table model.
    QRKTableItemModel* tableModel() const { return m_table; }
    /// The object-types tree.
    QRKObjectTypesTreeItemModel* objectTypesModel() const { return m_objectTypes; }
    /// The sets tree.
    QRKSetsTreeItemModel* setsModel() const { return m_sets; }
    /// The unit registry given at construction, may be null.
    UnitRegistry* registry() const { return m_registry; }
    /// True while a check-state edit is being stored (listeners may skip their own touches).
    bool ignoreTouch() const { return m_ignoreTouch; }
    /// Sets the flag read by ignoreTouch().
    void setIgnoreTouch(bool ignore) { m_ignoreTouch = ignore; }

protected:
    QRKTableItemModel* m_table = nullptr;                 ///< owned
    QRKObjectTypesTreeItemModel* m_objectTypes = nullptr; ///< owned
    QRKSetsTreeItemModel* m_sets = nullptr;               ///< owned
    UnitRegistry* m_registry = nullptr;                   ///< not owned
    bool m_ignoreTouch = false;                           ///< see ignoreTouch()
};

} // namespace rkBase
