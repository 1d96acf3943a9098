#pragma once

#include "rkbaseqt_export.h"

#include <QHash>
#include <QIcon>
#include <QList>
#include <QPointer>
#include <QVariant>

class QWidget;

namespace rkBase {

class QRKAbstractSubject;
class QRKAbstractItemModel;
class QRKAbstractItemModelCompoundNode;
class QRKSimpleFolder;
class QRKTableView;

/// \brief Natural order of two texts: digit runs compare as numbers, runs starting with 0 as
/// fractions; negative when `a` sorts first, 0 when equal, positive otherwise.
RKBASEQT_EXPORT int naturalCompare(const QString& a, const QString& b, Qt::CaseSensitivity cs = Qt::CaseInsensitive);

/// \brief One appearance of a subject in one model.
///
/// Neither parent nor subject is owned. A node deletes itself once it has neither parent nor
/// subject; a node with a subject stays alive in the subject's list. Deleting a node removes it
/// from its subject's list. User-interface thread only.
class RKBASEQT_EXPORT QRKAbstractItemModelNode {
public:
    /// A node on `subject` in `model`; a compound `parent` receives it as its last child.
    QRKAbstractItemModelNode(QRKAbstractSubject* subject, QRKAbstractItemModelNode* parent,
                             QRKAbstractItemModel* model);
    /// Leaves the subject's list; children are left as told in QRKAbstractItemModelCompoundNode.
    virtual ~QRKAbstractItemModelNode();
    QRKAbstractItemModelNode(const QRKAbstractItemModelNode&) = delete;
    QRKAbstractItemModelNode& operator=(const QRKAbstractItemModelNode&) = delete;

    /// Points the node at another subject; with null and no parent the node deletes itself.
    virtual void setSubject(QRKAbstractSubject* subject);
    /// Qt item flags for `field`: selectable, drag-enabled, enabled, and checkable as the subject says.
    virtual Qt::ItemFlags flags(int field) const;
    /// The subject's value; invalid without a subject.
    virtual QVariant data(int field, int role) const;
    /// Forwards to the subject; false without one.
    virtual bool setData(int field, const QVariant& value, int role);
    /// Forwards to the subject; false without one.
    virtual bool contextMenu(const QPoint& globalPos, QWidget* widget);
    /// Forwards to the subject; false without one.
    virtual bool doubleClick(QWidget* widget);
    /// Forwards to the subject; false without one.
    virtual bool altClick(QWidget* widget);
    /// Asks the model to redraw this node.
    virtual void touch();
    /// Whether this node sorts before `other` by `field`, with the tie-break chain -13, -19, -2, -18.
    virtual bool lessThan(const QRKAbstractItemModelNode* other, int field) const;
    /// Whether the node filters a table view itself; false by default.
    virtual bool filterTable(QRKTableView* view);

    /// The parent node, null at the top or when detached.
    QRKAbstractItemModelNode* parent() const { return m_parent; }
    /// The parent when it is a compound node, else null.
    QRKAbstractItemModelCompoundNode* compoundParent() const;
    /// Sets the parent; clearing it deletes a node that has no subject.
    void setParent(QRKAbstractItemModelNode* parent);
    /// The subject shown, or null.
    QRKAbstractSubject* subject() const { return m_subject; }
    /// The model the node belongs to; null once that model is gone.
    QRKAbstractItemModel* model() const;
    /// Whether this is a compound node (cheaper than a cast).
    virtual bool isCompound() const { return false; }

protected:
    QRKAbstractItemModelNode* m_parent = nullptr; ///< not owned
    QRKAbstractSubject* m_subject = nullptr;      ///< not owned
    QPointer<QRKAbstractItemModel> m_model;       ///< cleared when the model goes

    /// Place of `node` in `list`, -1 when absent. Uses the node's remembered place, then a short
    /// search around it (rows shift by a few after nearby insertions and removals), and only
    /// then renumbers the whole list, so lookups stay constant time in practice.
    static int placeIn(const QList<QRKAbstractItemModelNode*>& list, const QRKAbstractItemModelNode* node);

private:
    friend class QRKAbstractItemModelCompoundNode;
    friend class QRKAbstractTreeItemModel;
    friend class QRKAbstractItemModel;
    friend class QRKTableItemModel;
    /// Deletes this node when it has neither parent nor subject.
    void deleteIfOrphan();
    mutable int m_place = -1; // last known place in the parent's list or the table's rows

protected:
    /// Leaves the subject's list and forgets the subject, without deleting anything.
    void leaveSubject();
};

/// \brief A node with children: folders and compound subjects.
///
/// Children whose subject is null are deleted when taken out; the others stay with their subject.
class RKBASEQT_EXPORT QRKAbstractItemModelCompoundNode : public QRKAbstractItemModelNode {
public:
    /// A compound node on `subject` in `model`, the last child of a compound `parent`.
    QRKAbstractItemModelCompoundNode(QRKAbstractSubject* subject, QRKAbstractItemModelNode* parent,
                                     QRKAbstractItemModel* model);
    /// Clears the children (see clearChildren).
    ~QRKAbstractItemModelCompoundNode() override;

    bool isCompound() const override { return true; }
    /// Copies the sort field from a compound subject.
    void setSubject(QRKAbstractSubject* subject) override;
    /// Drop-enabled; checkable and draggable as the subject says; selectable and enabled with children.
    Qt::ItemFlags flags(int field) const override;
    /// The children's check state for field -5; a name followed by " (n)" in role 0.
    QVariant data(int field, int role) const override;
    using QRKAbstractItemModelNode::lessThan;

    /// Whether views show the children.
    virtual bool expanded() const { return m_expanded; }
    /// Sets whether views show the children.
    virtual void setExpanded(bool expanded) { m_expanded = expanded; }
    /// Place of `node` among the children, -1 when absent; constant time after the first call.
    virtual int childIndex(const QRKAbstractItemModelNode* node) const;
    /// Child at place `i`, null when out of range.
    virtual QRKAbstractItemModelNode* child(int i) const;
    /// First child on `subject`, or null.
    virtual QRKAbstractItemModelNode* childFromSubject(const QRKAbstractSubject* subject) const;
    /// Appends and adopts a child; null, a present child or one that would close a cycle is ignored.
    virtual void addChild(QRKAbstractItemModelNode* child);
    /// Inserts at `place`; at or beyond the end it appends.
    virtual void insertChild(QRKAbstractItemModelNode* child, int place);
    /// Takes a child out; it is deleted when it has no subject.
    virtual void removeChild(QRKAbstractItemModelNode* child);
    /// Whether child `row1` sorts before child `row2` by `field`; -99 uses the sort field, and
    /// -99 there keeps insertion order. False when a child is missing.
    virtual bool lessThan(int row1, int row2, int field) const;

    /// Number of children.
    int childCount() const { return m_children.size(); }
    /// Detaches every child, deleting those without a subject.
    void clearChildren();
    /// Whether the subject is a compound subject that the table shows as a row.
    bool includeInTable() const;
    /// The field that orders the children.
    int sortField() const { return m_sortField; }
    /// Sets the field that orders the children; -99 keeps insertion order.
    void setSortField(int field) { m_sortField = field; }
    /// Whether `node` is this node or one of its ancestors (a child that would close a cycle).
    bool hasAncestorOrSelf(const QRKAbstractItemModelNode* node) const;

protected:
    /// Children's common check state: 0 with none valid, 1 when two differ.
    virtual int checkState() const;
    /// Detaches `child` from this list without deleting it.
    void takeChild(int place);

    QList<QRKAbstractItemModelNode*> m_children; ///< owned only when they have no subject
    bool m_expanded = false;                     ///< see expanded()
    int m_sortField = -2;                        ///< see sortField()

private:
    friend class QRKAbstractTreeItemModel;
    friend class QRKAbstractItemModel;
};

/// \brief A folder node with an icon; the one built from a name owns its QRKSimpleFolder.
class RKBASEQT_EXPORT QRKSimpleFolderNode : public QRKAbstractItemModelCompoundNode {
public:
    /// A folder node on an existing subject (not owned).
    QRKSimpleFolderNode(QRKAbstractSubject* subject, QRKAbstractItemModelNode* parent, QRKAbstractItemModel* model);
    /// A folder node that makes and owns a QRKSimpleFolder named `name`.
    QRKSimpleFolderNode(const QString& name, QRKAbstractItemModelNode* parent, QRKAbstractItemModel* model);
    /// Deletes the folder it made.
    ~QRKSimpleFolderNode() override;

    /// Ignored once a subject is set: a folder node never changes subject.
    void setSubject(QRKAbstractSubject* subject) override;
    /// The decoration in role 1, the children's check state in role 10 when checkable.
    QVariant data(int field, int role) const override;
    /// Also adds the child's subject to the folder subject.
    void addChild(QRKAbstractItemModelNode* child) override;
    /// Also adds the child's subject to the folder subject.
    void insertChild(QRKAbstractItemModelNode* child, int place) override;
    /// Also removes the child's subject from the folder subject.
    void removeChild(QRKAbstractItemModelNode* child) override;

    /// Renames the folder subject when it is a QRKSimpleFolder.
    void setName(const QString& name);
    /// Makes the folder subject checkable or not, when it is a QRKSimpleFolder.
    void setCheckable(bool checkable);
    /// The icon in role 1; a null icon falls back on the subject's decoration.
    void setDecoration(const QIcon& icon)
    {
        m_decoration = icon;
        m_decorationFile.clear();
    }
    /// Whether this node made its folder and deletes it.
    bool ownsSubject() const { return m_ownedFolder != nullptr; }

protected:
    mutable QIcon m_decoration; ///< see setDecoration()
    /// Icon file loaded into m_decoration on first use: icons need a GUI application, and
    /// command-line users of the models never ask for them.
    QString m_decorationFile;

private:
    QRKSimpleFolder* m_ownedFolder = nullptr;
    QPointer<QRKSimpleFolder> m_parentFolder; // the folder that received ours as a child
};

} // namespace rkBase
