#pragma once

#include "rkbaseqt_export.h"

#include <QColor>
#include <QList>
#include <QObject>
#include <QPoint>
#include <QSet>
#include <QString>
#include <QVariant>

class QWidget;

namespace rkBase {

class QRKAbstractItemModel;
class QRKAbstractItemModelNode;
class QRKAbstractItemModelCompoundNode;

/// The fields that the framework reserves; an application numbers its own fields beside them.
namespace Field {
enum : int {
    Id = -1,          ///< column "Id"
    Name = -2,        ///< the object's name
    ObjectType = -3,  ///< column "Object Type"
    Colour = -4,      ///< the object's colour
    CheckState = -5,  ///< visibility as a Qt::CheckState value
    InTime = -6,      ///< column "In Time"
    Horizon = -8,     ///< column "Horizon"
    SortFirst = -13,  ///< first sort key of the tie-break chain
    Section = -14,    ///< column "Section"
    SortLast = -18,   ///< last sort key of the tie-break chain
    SortSecond = -19, ///< second sort key of the tie-break chain
    None = -99        ///< no field
};
}

/// \brief An application object as the item models see it.
///
/// A subject holds one node per place where it appears (one per model appearance); it does
/// not own them. Every property is reached by an integer field through `data` and `setData`.
/// Before deleting a subject its owner calls `clearNodes` (models alive) or `destroyNodes`.
/// Not a QObject; user-interface thread only.
class RKBASEQT_EXPORT QRKAbstractSubject {
public:
    QRKAbstractSubject() = default;
    /// Copies take the list of nodes by value; a copy never acts on nodes that point elsewhere.
    QRKAbstractSubject(const QRKAbstractSubject& other) = default;
    /// Takes the other's list of nodes by value.
    QRKAbstractSubject& operator=(const QRKAbstractSubject& other) = default;
    /// Touches no node: clear or destroy the nodes first.
    virtual ~QRKAbstractSubject();

    /// Asks every model that shows this subject to redraw it.
    virtual void touch();
    /// A new parentless node on this subject in `model`, appended to the list; the caller places it.
    virtual QRKAbstractItemModelNode* createTreeNode(QRKAbstractItemModel* model);
    /// A new parentless row node on this subject in `model`, appended to the list.
    virtual QRKAbstractItemModelNode* createTableNode(QRKAbstractItemModel* model);
    /// The value of `field` in Qt item `role`; invalid when there is none.
    virtual QVariant data(int field, int role) const = 0;
    /// Stores a value; false when refused (the default).
    virtual bool setData(int field, const QVariant& value, int role);
    /// Whether views may select the object through `field`.
    virtual bool isSelectable(int field) const = 0;
    /// Whether `field` shows a user check box.
    virtual bool isCheckable(int field) const = 0;
    /// Marks the object selected; does nothing by default.
    virtual void setSelected(bool selected);
    /// False by default.
    virtual bool isSelected() const;
    /// Shows a context menu at the global position; false (nothing shown) by default.
    virtual bool contextMenu(const QPoint& globalPos, QRKAbstractItemModelNode* node, QWidget* widget);
    /// Reacts to a double click; false by default.
    virtual bool doubleClick(QWidget* widget);
    /// Reacts to an Alt+click; false by default.
    virtual bool altClick(QWidget* widget);
    /// Whether a compound node on this subject is removed once its last child goes; true by default.
    virtual bool shouldBeDeletedWhenEmpty() const;

    /// The node at place `i`, null when out of range.
    QRKAbstractItemModelNode* node(int i) const;
    /// The first node that belongs to `model`, or null.
    QRKAbstractItemModelNode* node(const QRKAbstractItemModel* model) const;
    /// Number of nodes (appearances in models).
    int nodeCount() const { return m_nodes.size(); }
    /// Appends a node; null or a node already listed changes nothing.
    void addNode(QRKAbstractItemModelNode* node);
    /// Takes the node out of the list and clears its subject, which deletes a parentless node.
    void removeNode(QRKAbstractItemModelNode* node);
    /// Removes every node through its model (rows vanish from views); always empties the list.
    void clearNodes();
    /// For use when the models are gone: detaches and deletes every node without model signals;
    /// a node whose model is still alive is removed through that model, as by clearNodes().
    void destroyNodes();
    /// The node of this subject that lies below `compound` in its model, or null.
    QRKAbstractItemModelNode* childOfNode(QRKAbstractItemModelCompoundNode* compound) const;

protected:
    QList<QRKAbstractItemModelNode*> m_nodes; ///< one entry per appearance; not owned

private:
    friend class QRKAbstractItemModelNode;
    /// Drops a node from the list without touching it (the node is being deleted).
    void forgetNode(QRKAbstractItemModelNode* node) { m_nodes.removeAll(node); }
    /// The node entries that really point at this subject; copies may hold foreign ones.
    QRKAbstractItemModelNode* firstOwnNode();
    /// Removes `node`, the first of the list, through its model, or directly when no model can.
    void removeThroughModel(QRKAbstractItemModelNode* node);
};

/// \brief A subject with child subjects, shown as a folder-like compound node in trees.
///
/// Children are not owned. Adding a child that would close a cycle is refused; shared children
/// (a child in two compounds) are allowed.
class RKBASEQT_EXPORT QRKAbstractCompoundSubject : public QRKAbstractSubject {
public:
    QRKAbstractCompoundSubject() = default;
    /// Copies children, nodes, sort field and table flag by value.
    QRKAbstractCompoundSubject(const QRKAbstractCompoundSubject& other) = default;
    /// Copies children, nodes, sort field and table flag by value.
    QRKAbstractCompoundSubject& operator=(const QRKAbstractCompoundSubject& other) = default;

    /// Builds a compound node, so that the subject shows as a folder.
    QRKAbstractItemModelNode* createTreeNode(QRKAbstractItemModel* model) override;
    /// Only the check state (field -5, role 10): passed to every child, then all are touched.
    bool setData(int field, const QVariant& value, int role) override;
    /// Passes the selection to every child.
    void setSelected(bool selected) override;
    /// True only when there are children and every one is selected.
    bool isSelected() const override;
    /// The non-compound descendants in depth-first order, plus compounds that are in the table.
    virtual QList<QRKAbstractSubject*> leafSubjects() const;

    /// Child at place `i`, null when out of range.
    QRKAbstractSubject* child(int i) const { return i >= 0 && i < m_children.size() ? m_children.at(i) : nullptr; }
    /// Number of child subjects.
    int childCount() const { return m_children.size(); }
    /// Appends a child; null, a child already present or one that would make a cycle is ignored.
    void addChild(QRKAbstractSubject* child);
    /// Takes the child out of the list (not deleted).
    void removeChild(QRKAbstractSubject* child);
    /// Touches every child, then this subject.
    void touchChildren();
    /// The field that orders this subject's children in trees (-2, name, by default).
    int sortField() const { return m_sortField; }
    /// Sets the field that orders the children; -99 keeps insertion order.
    void setSortField(int field) { m_sortField = field; }
    /// Whether the table shows this compound as a row of its own.
    bool includeInTable() const { return m_includeInTable; }
    /// Makes the table show (or not) this compound as a row of its own.
    void setIncludeInTable(bool include) { m_includeInTable = include; }

protected:
    /// Children's common check state (field -5): 0 without children, 1 when they differ.
    int checkState() const;
    /// Whether `candidate` is this subject or one of its descendants.
    bool reaches(const QRKAbstractSubject* candidate) const;

    QList<QRKAbstractSubject*> m_children; ///< not owned
    int m_sortField = -2;                  ///< see sortField()
    bool m_includeInTable = false;         ///< see includeInTable()

private:
    /// Whether `child` is in the list, in constant time; the set is rebuilt when a derived class
    /// changed the list directly.
    bool hasChild(QRKAbstractSubject* child) const;
    mutable QSet<QRKAbstractSubject*> m_childSet;
};

/// \brief A plain object with a name, a colour and a check state.
class RKBASEQT_EXPORT QRKSimpleSubject : public QRKAbstractSubject {
public:
    QRKSimpleSubject() = default;
    /// An object with the given name, colour and visibility.
    QRKSimpleSubject(const QString& name, const QColor& colour, Qt::CheckState state = Qt::Checked);
    /// Copies the values and the list of nodes.
    QRKSimpleSubject(const QRKSimpleSubject& other) = default;
    /// Copies the values and the list of nodes.
    QRKSimpleSubject& operator=(const QRKSimpleSubject& other) = default;

    /// Name (-2), colour (-4) and check state (-5) in role 0; colour as decoration and background;
    /// check state in role 10.
    QVariant data(int field, int role) const override;
    /// Always true.
    bool isSelectable(int field) const override;
    /// Always false unless overridden.
    bool isCheckable(int field) const override;
    /// Stores the flag.
    void setSelected(bool selected) override;
    /// The stored flag.
    bool isSelected() const override;

    /// The name.
    QString name() const { return m_name; }
    /// Sets the name; the caller touches the subject to refresh views.
    void setName(const QString& name) { m_name = name; }
    /// The colour.
    QColor colour() const { return m_colour; }
    /// Sets the colour.
    void setColour(const QColor& colour) { m_colour = colour; }
    /// The check state as a Qt::CheckState value.
    int checkStateValue() const { return m_checkState; }
    /// Sets the check state.
    void setCheckStateValue(int state) { m_checkState = state; }

protected:
    QString m_name;                 ///< see name()
    QColor m_colour;                ///< see colour()
    int m_checkState = Qt::Checked; ///< see checkStateValue()
    bool m_selected = false;        ///< see isSelected()
};

/// \brief A named folder of subjects; its check state and selection follow its children.
class RKBASEQT_EXPORT QRKSimpleFolder : public QObject, public QRKAbstractCompoundSubject {
    Q_OBJECT
public:
    /// A checkable folder with that name.
    explicit QRKSimpleFolder(const QString& name = QString(), QObject* parent = nullptr);

    /// Folder icon as decoration, name, and the children's check state.
    QVariant data(int field, int role) const override;
    /// The checkable flag, whatever the field.
    bool isSelectable(int field) const override;
    /// The checkable flag, whatever the field.
    bool isCheckable(int field) const override;
    /// Stores the value and passes it to the children; ignored when not checkable.
    void setSelected(bool selected) override;
    /// The stored value.
    bool isSelected() const override;

    /// The name.
    QString name() const { return m_name; }
    /// Sets the name.
    void setName(const QString& name) { m_name = name; }
    /// Makes the folder checkable (and selectable) or not.
    void setCheckable(bool checkable) { m_checkable = checkable; }

protected:
    /// Selects every child, then touches the folder.
    void selectChildren();

    bool m_checkable = true; ///< see isCheckable()
    bool m_selected = false; ///< see isSelected()
    QString m_name;          ///< see name()
};

} // namespace rkBase
