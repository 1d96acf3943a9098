#pragma once

#include "rkbaseqt_export.h"

#include <QList>

namespace rkBase {

/// \brief Row identity delegate of a table whose rows live elsewhere (a database, a model).
///
/// When a root MatrixData has a delegate, its row edits are performed once by the delegate and
/// the columns only change their counts; the delegate owns the cell values, so nothing is saved
/// for undo. The operations are named by their role in editing and in undo/redo.
class RKBASEQT_EXPORT AbstractMatrixDataID {
public:
    virtual ~AbstractMatrixDataID();
    /// Inserts one row at `row`; returns the row inserted.
    virtual int insertRow(int row) = 0;
    /// Inserts the listed rows (after each when `after`).
    virtual void insertRows(QList<int> const& rows, bool after) = 0;
    /// Removes `row`.
    virtual void removeRow(int row) = 0;
    /// Removes every row; returns how many there were.
    virtual int removeAllRows() = 0;
    /// Undoes an insert of the listed rows.
    virtual void undoInsertRows(QList<int> const& rows) = 0;
    /// Redoes an insert of the listed rows.
    virtual void redoInsertRows(QList<int> const& rows) = 0;
    /// Brings a removed row back at `row`.
    virtual void undoRemoveRow(int row) = 0;
    /// Removes `row` again.
    virtual void redoRemoveRow(int row) = 0;
    /// Brings every removed row back; returns how many.
    virtual int undoRemoveAllRows() = 0;
    /// Removes every row again; returns how many.
    virtual int redoRemoveAllRows() = 0;
};

} // namespace rkBase
