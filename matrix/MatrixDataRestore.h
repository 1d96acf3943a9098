#pragma once

#include "rkbaseqt_export.h"

#include <QColor>
#include <QList>
#include <QString>
#include <QVariant>

#include <boost/shared_ptr.hpp>

#include <vector>

namespace rkBase {

class MatrixData;
class UnitManager;

/// \brief One undo or redo entry of a MatrixData tree.
///
/// The action name is the recipe: a row operation's text holds its kind and its rows ("Row
/// Operation: Remove Row: value= 3 7"), and restoring parses it. Restoring builds the opposite
/// entry (the mirror) for the other list. Entries are owned by the list that holds them.
class RKBASEQT_EXPORT MatrixDataRestore {
public:
    /// Records `node` (name, type, colour, unit manager, parent, place among the parent's
    /// children) under `action`; with `storeData`, column 0 of every row too.
    MatrixDataRestore(MatrixData* node, QString const& action, bool storeData);
    /// A fresh entry for the same node as `other`, without stored data: the start of a mirror.
    explicit MatrixDataRestore(MatrixDataRestore* other);
    /// Owns nothing but its values.
    virtual ~MatrixDataRestore();

    /// Values of removed rows, in the order they were visited.
    const QList<QVariant>& removedData() const { return m_removedData; }
    /// Sets the values of removed rows.
    void removedData(QList<QVariant> const& data) { m_removedData = data; }
    /// The recipe text.
    const QString& actionName() const { return m_actionName; }
    /// Sets the recipe text.
    void setActionName(QString const& name) { m_actionName = name; }
    /// Appends to the recipe text.
    void addToActionName(QString const& text) { m_actionName += text; }
    /// The node's name when recorded.
    const QString& name() const { return m_name; }
    /// The name the node is looked up by when restoring.
    const QString& oldName() const { return m_oldName; }
    /// See oldName().
    void setOldName(QString const& name) { m_oldName = name; }
    /// Exchanges name and old name.
    void swapOldName() { std::swap(m_name, m_oldName); }
    /// The node's cell type when recorded.
    QVariant::Type cellType() const { return m_cellType; }
    /// The node's colour when recorded.
    const QColor& color() const { return m_color; }
    /// See color().
    void setColor(QColor const& c) { m_color = c; }
    /// The node's unit manager when recorded.
    boost::shared_ptr<UnitManager> unitManager() const { return m_unitManager; }
    /// See unitManager().
    void setUnitManager(boost::shared_ptr<UnitManager> m) { m_unitManager = m; }
    /// The node's parent when recorded (not owned).
    MatrixData* parent() const { return m_parent; }
    /// The node's place among the parent's children; -1 if none.
    int childPosition() const { return m_childPosition; }
    /// Stores the value of `row`.
    void dataStore(int row, QVariant const& v);
    /// Rows of the stored values.
    const std::vector<int>& rows() const { return m_rows; }
    /// Stored values, parallel to rows().
    const std::vector<QVariant>& values() const { return m_values; }

    /// Restores the entry on the tree of `root` and fills `mirror` (made by the caller from this
    /// entry; it may be replaced) with what undoes the restore. `flag` chooses the leaves' own
    /// virtual row operations (true) or the row primitives (false) for row operations.
    void restore(MatrixData* root, MatrixDataRestore*& mirror, bool flag);
    /// The row operation named by the recipe, on `root`; `mirror` gets the opposite recipe.
    void restoreRowOperation(MatrixData* root, MatrixDataRestore*& mirror, bool flag);

protected:
    /// For the proxy: an entry of no node.
    MatrixDataRestore() = default;

private:
    QList<QVariant> m_removedData;
    QString m_actionName;
    QString m_name;
    QString m_oldName;
    QVariant::Type m_cellType = QVariant::Invalid;
    QColor m_color;
    boost::shared_ptr<UnitManager> m_unitManager;
    MatrixData* m_parent = nullptr;
    int m_childPosition = -1;
    std::vector<int> m_rows;
    std::vector<QVariant> m_values;
};

/// \brief One undo step made of entries for several nodes, restored together.
class RKBASEQT_EXPORT MatrixDataRestoreProxy : public MatrixDataRestore {
public:
    /// An empty step.
    MatrixDataRestoreProxy();
    /// Deletes its entries.
    ~MatrixDataRestoreProxy() override;
    /// Adds `entry` (owned from now on) for `member`.
    void addToList(MatrixDataRestore* entry, MatrixData* member);
    /// Stores `v` for `row` in entry `index`.
    void addDataStore(int index, int row, QVariant const& v);
    /// The first member, or null.
    MatrixData* firstNode() const { return m_members.empty() ? nullptr : m_members.front(); }
    /// Number of entries.
    int size() const { return int(m_entries.size()); }
    /// Sets the parent every member is restored under.
    void setParent(MatrixData* parent) { m_proxyParent = parent; }
    /// Restores every entry in order; `mirror` (an empty proxy from the caller) receives the
    /// opposite entries.
    void restore(MatrixDataRestoreProxy*& mirror);

private:
    std::vector<MatrixDataRestore*> m_entries;
    std::vector<MatrixData*> m_members;
    MatrixData* m_proxyParent = nullptr;
};

} // namespace rkBase
