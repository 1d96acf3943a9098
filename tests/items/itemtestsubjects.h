#pragma once
// Subjects for the item-model tests: a simple subject whose name, check state and extra fields
// can be edited, the way an application's objects behave.
#include "items/QRKAbstractSubject.h"

#include <QHash>

class Obj : public rkBase::QRKSimpleSubject {
public:
    explicit Obj(const QString& name, Qt::CheckState state = Qt::Checked) : QRKSimpleSubject(name, Qt::red, state) {}
    ~Obj() override { clearNodes(); }

    QVariant data(int field, int role) const override
    {
        // Editors and user roles read the same values as the display.
        if (role == Qt::EditRole || role >= Qt::UserRole)
            role = Qt::DisplayRole;
        if (role == Qt::DisplayRole && fields.contains(field))
            return fields.value(field);
        return QRKSimpleSubject::data(field, role);
    }
    bool setData(int field, const QVariant& value, int role) override
    {
        if (field == rkBase::Field::CheckState && (role == Qt::CheckStateRole || role == Qt::EditRole)) {
            m_checkState = value.toInt();
            return true;
        }
        if (field == rkBase::Field::Name && role == Qt::EditRole) {
            m_name = value.toString();
            return true;
        }
        return false;
    }
    bool isCheckable(int) const override { return true; }

    QHash<int, QVariant> fields;
};

/// A compound application object (a fault with its blocks, say).
class Group : public rkBase::QRKAbstractCompoundSubject {
public:
    explicit Group(const QString& name, bool inTable = false) : m_name(name) { setIncludeInTable(inTable); }
    ~Group() override { clearNodes(); }
    QVariant data(int field, int role) const override
    {
        if (field == rkBase::Field::Name && (role == Qt::DisplayRole || role == Qt::EditRole))
            return m_name;
        if (field == rkBase::Field::CheckState && (role == Qt::DisplayRole || role == Qt::CheckStateRole))
            return checkState();
        return QVariant();
    }
    bool isSelectable(int) const override { return true; }
    bool isCheckable(int) const override { return true; }
    bool shouldBeDeletedWhenEmpty() const override { return deleteWhenEmpty; }
    bool deleteWhenEmpty = true;
    int state() const { return checkState(); }

private:
    QString m_name;
};
