#pragma once

#include "rkbaseqt_export.h"

#include <QColor>
#include <QHash>
#include <QList>
#include <QMap>
#include <QModelIndex>
#include <QPointF>
#include <QSet>
#include <QString>
#include <QVariant>
#include <QVector>

#include <boost/dynamic_bitset.hpp>
#include <boost/shared_ptr.hpp>

#include <string>
#include <vector>

class QAction;
class QDataStream;
class QMenu;
class QMimeData;
class QTextStream;
class QWidget;

namespace rkBase {

class UnitManager;
class UnitRegistry;
class AbstractMatrixDataID;
class AbstractProgress;
class MatrixDataRestore;

/// The number that stands for a blank cell wherever cells are read as numbers.
constexpr int UNDEFINED_VALUE = 99999;

/// \brief Node of the attribute-table tree: the table (root), a group, or a column (leaf).
///
/// Cells are a sparse, column-major QHash: the cell at row r, column c has the key
/// `c * rowCount() + r`, an absent key reads as a null QVariant, and a null cell reads as
/// UNDEFINED_VALUE through toDouble() and toInt(). The walks that serve item models and row
/// editing (getNode, getNodeFromID, getNodeFromName, numberOfSelectedItems, the row counts) look
/// at exactly two levels under the root; child(QString) and leafs() go to any depth.
///
/// Ownership: a node owns the children it was given and deletes them; a child added with
/// `keepOwnerAndID` is shared (its parent and ID stay as they were, walks descend it as a
/// container, and the tree that made it deletes it), and a copy lists its source's children
/// without owning them. The registry, the parent and the row identity delegate are not owned. Not thread-safe; one thread
/// at a time per tree. Nothing here reports errors: missing nodes are null, missing cells null.
class RKBASEQT_EXPORT MatrixData {
public:
    /// A node named `name` (also its interface name) with `rows` x `columns` cells of `type`.
    /// With `initialise` every cell exists as a null QVariant; otherwise only the counts are
    /// recorded (0 columns counting as 1).
    MatrixData(QString const& name, int rows, int columns, QVariant::Type type, bool initialise);
    /// A copy that shares `other`'s children (the pointers, not copies) and, with `copyData`,
    /// its cells and statistics. Geo type, lookup table, undo lists, renamability and unit
    /// keys are not carried over.
    MatrixData(MatrixData const& other, bool copyData);
    /// Same as the two-argument form with `copyData` true.
    MatrixData(MatrixData const& other);
    /// Copies names, unit manager, cells, counts and flags; see the class notes on sharing.
    MatrixData& operator=(MatrixData const& other);
    /// Deletes the children and the undo and redo entries.
    virtual ~MatrixData();

    // --- shape -------------------------------------------------------------------------------

    /// Sets both row counts and the column count (0 becomes 1) and fills every cell with null.
    virtual void initialize(int rows, int columns);
    /// Replaces the cells by `values` in one column; the column count becomes 0 (as settled).
    void initialize(std::vector<double> const& values);
    /// Number of rows.
    virtual int rowCount();
    /// Number of columns.
    virtual int columnCount();
    /// Adds `n` to the row and valid-row counts without touching a cell.
    virtual void incrementRows(int n);
    /// Subtracts `n` from the row and valid-row counts without touching a cell.
    virtual void decrementRows(int n);
    /// Adds `n` rows of 0.0 to every column, moving every cell to its new key.
    virtual void appendRows(int n);
    /// Adds `n` columns holding the one-based row numbers.
    virtual void appendColumns(int n);
    /// Recomputes the rows that remain after hidden ones when marked dirty.
    virtual void computeRowIndices() const;
    /// The rows that remain after hidden ones (see computeRowIndices()).
    const QVector<int>& rowIndices() const { return m_rowIndices; }

    // --- tree --------------------------------------------------------------------------------

    /// Finds `name` under this node or creates a double column of `rows` rows under `parent`;
    /// either way blanks every cell. `existed` tells which.
    MatrixData* addChild(MatrixData* parent, int rows, QString const& name, bool keepOwnerAndID, bool& existed);
    /// Appends `child` (owned from now on) unless it is already a child; gives it an ID and this
    /// node as parent unless `keepOwnerAndID`.
    void appendChild(MatrixData* child, bool keepOwnerAndID);
    /// Inserts `child` at `pos` as appendChild does, without the duplicate check.
    void insertChild(int pos, MatrixData* child, bool keepOwnerAndID);
    /// Inserts `child` at `pos` and gives it the registry and a new ID; the parent is not set.
    void insertChild(int pos, MatrixData* child);
    /// Takes `child` out wherever it is below this node; it is not deleted.
    void removeChild(MatrixData* child);
    /// Takes out (without deleting) groups without leaves or with no valid rows in any leaf.
    void removeEmptyGroups();
    /// Direct child `i`.
    MatrixData* child(int i) const { return m_children.at(i); }
    /// The first node without children named `name`, depth-first; null if none.
    MatrixData* child(QString const& name) const;
    /// Number of direct children.
    int childCount() const { return m_children.size(); }
    /// The direct children.
    const QList<MatrixData*>& children() const { return m_children; }
    /// The parent, or null for a root or a shared node.
    MatrixData* parent() const { return m_parent; }
    /// Sets the parent (not owned).
    void setParent(MatrixData* parent) { m_parent = parent; }
    /// Every node without children, depth-first.
    QList<MatrixData*> leafs() const;
    /// The `index`-th selected, visible leaf (two levels); the last leaf if the index is never
    /// reached; null without leaves.
    MatrixData* getNode(int index) const;
    /// The first leaf (two levels) with ID `id`, or null.
    MatrixData* getNodeFromID(int id) const;
    /// A group or leaf named `name` (two levels); a group's own name wins over all but its
    /// first leaf.
    MatrixData* getNodeFromName(QString const& name) const;
    /// The direct child named `name`, or null.
    MatrixData* getContainerFromName(QString const& name) const;
    /// The first node without children that has at least one row.
    MatrixData* getFirstChildWithData() const;
    /// How many direct children are named `name` (shared children are descended).
    int countName(QString const& name, Qt::CaseSensitivity cs) const;
    /// Whether a direct child is named `name` (shared children are descended).
    bool findName(QString const& name, Qt::CaseSensitivity cs) const;
    /// Appends "_<n>" to `name` when n children already bear it (one pass, not re-tested).
    void createUniqueName(QString& name) const;
    /// Whether a group or one of its leaves is in the orientation category.
    bool hasOrientationData() const;
    /// Whether any child has values waiting to be written; false for a plain leaf.
    virtual bool hasWriteValues() const;

    // --- selection ---------------------------------------------------------------------------

    /// Sets the selection; without `noPropagation` a root passes it to its children and a child
    /// updates its parent.
    void setSelected(bool selected, bool noPropagation);
    /// Whether the node is selected.
    bool isSelected() const { return m_selected; }
    /// Number of selected, visible leaves (two levels).
    int numberOfSelectedItems() const;
    /// Rows of the selected, visible groups (or `rows` if given), divided by `divisor` and
    /// rounded up.
    int maxNumbOfSelectedRows(int divisor, int rows) const;
    /// The largest row count of the leaves (colour columns and 99999 left out); -1 for none.
    int maxRowCount() const { return maxBaseCount(false); }
    /// The largest valid-row count of the leaves; -1 for none.
    int maxValidRowCount() const { return maxBaseCount(true); }

    // --- cells -------------------------------------------------------------------------------

    /// The cell, or a QVariant holding the node's name for negative indices.
    virtual QVariant value(int row, int column) const;
    /// The cell at the index's row and column.
    virtual QVariant value(QModelIndex const& index) const;
    /// `v` itself; a subclass may map display values to stored ones.
    virtual QVariant rawValue(QVariant const& v) const;
    /// The cell of `row` in column 0.
    virtual QVariant rawValue(int row) const;
    /// The cell at the index.
    virtual QVariant rawValue(QModelIndex const& index) const;
    /// The cell as a number; UNDEFINED_VALUE for a null cell.
    virtual double toDouble(int row, int column) const;
    /// The cell as an int; UNDEFINED_VALUE for a null cell.
    virtual int toInt(int row, int column) const;
    /// A stored number in the node's display unit.
    virtual double toDisplayDouble(QVariant v) const;
    /// toDouble(row, 0).
    double operator[](int row) const { return toDouble(row, 0); }
    /// Whether the cell is a null QVariant.
    bool isNullObject(int row, int column) const;
    /// Writes by raw key.
    virtual void setValue(int key, QVariant const& v);
    /// Writes the cell at the index.
    virtual void setValue(QModelIndex const& index, QVariant const& v);
    /// Writes the cell; a write at or past the end of column 0 grows the node.
    virtual void setValue(int row, int column, QVariant const& v);
    /// Writes a number; UNDEFINED_VALUE stores a null cell.
    void setDouble(int row, int column, double const& v);
    /// Writes an int; UNDEFINED_VALUE stores a null cell.
    virtual void setInt(int row, int column, int const& v);
    /// Appends at key size() and adds a row.
    void appendValue(QVariant const& v);
    /// As appendValue(v); the first argument is not read.
    void appendValue(int ignored, QVariant const& v);
    /// Plain insert by key.
    void insertValue(int key, QVariant const& v);
    /// Stores `text` by the node's type (empty: null; double, int or text).
    void setValueTypeDependend(int key, QString const& text);
    /// The reader's form: as setValueTypeDependend, numbers converted from the node's unit to
    /// the model unit, booleans read as numbers; unreadable numbers store null.
    void insertValueTypeDependend(int key, QString const& text);
    /// Whether `v` may be stored (negative numbers only where allowed).
    bool isValueAllowed(QVariant const& v) const;
    /// Whether a row of column 0 holds a value.
    bool hasValidData() const;
    /// Recounts the rows of column 0 that hold a value (a root does it for every leaf).
    void checkValidRowCount();
    /// For one-column nodes: the counts become the number of cells; with `fill` at least 100 rows.
    void resetRowCount(bool fill);
    /// Writes `v` into every cell.
    void setDefaultValue1(QVariant const& v);
    /// Fills the cells as a ramp from 0 in steps of `step`.
    void setDefaultValue2(double step);
    /// Start of the cells (raw keys).
    QHash<int, QVariant>::const_iterator begin() const { return m_cells.constBegin(); }
    /// End of the cells.
    QHash<int, QVariant>::const_iterator end() const { return m_cells.constEnd(); }
    /// Number of cells held.
    int cellCount() const { return m_cells.size(); }
    /// Does nothing here; a node that buffers writes clears them.
    virtual void clearWriteContainer(int row);
    /// Does nothing here; a node with hidden rows drops a row from them.
    virtual void removeRowIndices(int row);
    /// True here; a subclass may refuse cells.
    virtual bool isValueValid(int row, int column) const;
    /// Whether the cell may be edited; the node's editability here.
    virtual bool isValueEditable(int row, int column);
    /// An editor for a node whose cells choose from a list (a lookup table, symbols), made as a
    /// child of `parent`; null here: the view's own editor serves.
    virtual QWidget* comboBoxEditor(QWidget* parent);
    /// The same for the cell at `index`.
    virtual QWidget* comboBoxEditor(QWidget* parent, QModelIndex index);

    // --- row editing (on the root; recorded for undo) --------------------------------------

    /// Inserts a blank row at `row` in every column (on a leaf: in this column); returns `row`.
    virtual int insertRowAtPos(int row);
    /// Inserts the listed rows (after each when `after`); `viaLeaf` lets each column do it itself.
    virtual void insertRowsAtPos(QList<int> const& rows, bool after, bool viaLeaf);
    /// Removes `row` from every column, saving its values for undo.
    virtual void removeRowFromEachColumn(int row);
    /// With a delegate, removes every row; without one does nothing and records nothing.
    virtual void removeRowsFromEachColumn();
    /// Removes the listed rows in the order given (pass them in descending order), saving the
    /// values; with `strikeItself` a column named "strike" removes through its own operation.
    virtual void removeRowsFromEachColumn(QList<int> const& rows, bool strikeItself);
    /// Removes, through removeRowFromEachColumn(int), every row where a cell of one of the named
    /// columns is not valid; true when a row was removed.
    bool removeRowsWhereValuesUndefined(QStringList const& names);
    /// Inserts a blank row at `row` in every column (-1: appends one); records nothing.
    void insertOneRowForEachColumn(int row);
    /// Appends a blank row to every column that needs one; records nothing.
    void appendOneRowForEachColumn();

    /// Replay: takes the listed inserted rows out again.
    virtual void unInsertRowAtPos(QList<int> const& rows, bool viaLeaf);
    /// Replay: inserts the listed rows again.
    virtual void reInsertRowAtPos(QList<int> const& rows, bool viaLeaf);
    /// Replay: puts a removed row back with its values, one per column.
    virtual void unRemoveRowFromEachColumn(int row, QList<QVariant> const& values);
    /// Replay: puts removed rows back; values are taken from the end of the list.
    virtual void unRemoveRowsFromEachColumn(QList<int> const& rows, QList<QVariant> const& values, bool viaLeaf);
    /// Replay: removes `row` again.
    virtual void reRemoveRowFromEachColumn(int row, bool viaLeaf);
    /// Replay: removes the listed rows again.
    virtual void reRemoveRowsFromEachColumn(QList<int> const& rows, bool viaLeaf);
    /// Replay with a delegate: brings every removed row back.
    void unRemoveRowsFromEachColumn();
    /// Replay with a delegate: removes every row again.
    void reRemoveRowsFromEachColumn();

    /// Column primitive: removes `row`, moving later cells of column 0 down by one.
    void removeRow(int row);
    /// Column primitive: inserts `v` at `row`, moving later cells up by one.
    void unRemoveRow(int row, QVariant const& v);
    /// Column primitive: moves the cells from the last listed row on up by the number of rows
    /// and writes a blank for each listed row r at r + after + k - 1 (k rows; each is addressed
    /// as if all were already in place, as settled).
    void insertRows(QList<int> const& rows, bool after);
    /// Column primitive: takes out the rows inserted by insertRows.
    void unInsertRows(QList<int> const& rows);

    // --- undo and redo -----------------------------------------------------------------------

    /// The undo list is trimmed to this many entries (plus the one being added).
    static constexpr int MAX_UNDO_BEFORE_TRIM = 50;
    /// Pushes `entry` (owned from now on), dropping the oldest beyond the limit; `clearRedo`
    /// deletes every redo entry (a new edit invalidates them).
    void appendUndoAction(MatrixDataRestore* entry, bool clearRedo);
    /// Pushes `entry` (owned from now on) on the redo list.
    void appendRedoAction(MatrixDataRestore* entry);
    /// Number of undo entries.
    int sizeUndoActions() const { return int(m_undoList.size()); }
    /// Number of redo entries.
    int sizeRedoActions() const { return int(m_redoList.size()); }
    /// Undo entry `i` (oldest first).
    MatrixDataRestore* undoAction(int i) const { return m_undoList.at(size_t(i)); }
    /// Redo entry `i` (oldest first).
    MatrixDataRestore* redoAction(int i) const { return m_redoList.at(size_t(i)); }
    /// The undo entries, oldest first.
    const std::vector<MatrixDataRestore*>& undoList() const { return m_undoList; }
    /// The redo entries, oldest first.
    const std::vector<MatrixDataRestore*>& redoList() const { return m_redoList; }
    /// Deletes the newest undo entry.
    void removeLastUndoAction();
    /// Deletes the newest redo entry.
    void removeLastRedoAction();
    /// Deletes every entry of both lists.
    void clearUndoRedo();
    /// Undoes the newest entry; its mirror goes on the redo list.
    void lastUndo(bool viaLeaf);
    /// Redoes the newest redo entry; its mirror goes on the undo list.
    void lastRedo(bool viaLeaf);
    /// Undoes down to the entry chosen in an undo button's menu (`action`'s data: the index,
    /// -1 for all). The menu holds one action per entry and three more; any other menu is
    /// ignored.
    void undo(QAction* action, QMenu* menu);
    /// The same for the redo button.
    void redo(QAction* action, QMenu* menu);

    // --- statistics cache ----------------------------------------------------------------------

    /// Cached minimum (null when unknown).
    virtual QVariant minValue() const { return m_minValue; }
    /// Cached maximum.
    virtual QVariant maxValue() const { return m_maxValue; }
    /// Cached mean.
    virtual QVariant meanValue() const { return m_meanValue; }
    /// Sets the cached minimum.
    virtual void setMinValue(QVariant const& v) { m_minValue = v; }
    /// Sets the cached mean.
    virtual void setMeanValue(QVariant const& v) { m_meanValue = v; }
    /// Sets the cached maximum.
    virtual void setMaxValue(QVariant const& v) { m_maxValue = v; }
    /// Recomputes the cache from `column` for int and double nodes, over the rows whose bit is
    /// set (all rows for an empty set; a set of another size than rowCount() does nothing).
    virtual void setMinMax(int const& column, boost::dynamic_bitset<> const& rows);
    /// The same with row numbers (empty: all rows).
    void setMinMax(int const& column, std::vector<int> const& rows);
    /// Minimum, maximum, sum and count of the non-blank cells of `column` over `rows`;
    /// untouched without rows.
    virtual void getMinMaxForColumn(int const& column, double& min, double& max, double& sum, int& count,
                                    boost::dynamic_bitset<> const& rows);

    // --- statistics and analyses ---------------------------------------------------------------

    /// Kinds of histogram made by newFrequencyData().
    enum HistogramType {
        HISTOGRAM_COUNT = 0,     ///< counts per bin
        HISTOGRAM_PERCENT = 1,   ///< percentage of all counted values per bin
        HISTOGRAM_CUMULATIVE = 2 ///< running total of the percentages
    };
    /// Minimum, mean and maximum over every column and the rows whose bit is set (all for an
    /// empty set); false without columns or values (the outputs are then 0).
    bool getMinMax(double& min, double& mean, double& max, boost::dynamic_bitset<> const& rows);
    /// Population standard deviation of column 0 about the value of row 1 (where a statistics
    /// table holds its mean, as it always was); 0 without values.
    double standardDeviation();
    /// Mean direction in degrees of the directions in column 0 (empty `rows`: all rows), and in
    /// `length` the mean resultant length; 99999 when the cosines sum to about 0.
    double resultantMeanDirection(double& length, std::vector<int> const& rows);
    /// Least-squares line through the QPointF cells; a vertical set gives slope 99999 and the
    /// mean y as intercept. Values below 5e-6 become 0.
    void calculateRegressionLine(double& slope, double& intercept, double& correlation);
    /// Eigenvalues, largest first, of the orientation matrix of the QPointF cells read as
    /// (plunge, azimuth) in degrees; false (outputs 0) when the solver does not settle.
    bool calculateMomentsOfInertia(double& largest, double& middle, double& smallest);
    /// Plunge and azimuth (degrees) of a line with `rakeOrPitch` on a plane of `strike` and `dip`.
    static void plungeAndAzimuth(double& plunge, double& azimuth, double const& rakeOrPitch, double const& strike,
                                 double const& dip);
    /// The same with the quadrant the rake is measured from ("N", "E", "S", "W" or the words).
    static void plungeAndAzimuth(double& plunge, double& azimuth, double const& rakeOrPitch, double const& strike,
                                 double const& dip, QString const& quadrant);
    /// A new "Measured Depth" column (owned by the caller): the running 3D distance between
    /// consecutive rows of `x`, `y`, `z`; null without columns.
    static MatrixData* createMeasuredDepth(MatrixData* x, MatrixData* y, MatrixData* z);
    /// Adds (or refills) a computed "Measured Depth" column from "East", "North" and "Z" of this
    /// table; returns it, or null when the table has no data or lacks one of them.
    MatrixData* createMeasuredDepth();
    /// A histogram of column 0 (owned by the caller): 50 bins for `step` 99999 (the step used is
    /// written back), bins of 1 for `step` 0. `axial` false counts a direction also at +180.
    MatrixData* newFrequencyData(double& step, HistogramType type, std::vector<int> const& rows, MatrixData* owner,
                                 bool axial, bool startAtZero);
    /// The histogram with `bins` bins of `step` from `start`; the values of `secondary` in each
    /// bin go to `binValues` when it is given.
    MatrixData* newFrequencyData(double step, int bins, double start, HistogramType type,
                                 std::vector<int> const& rows, MatrixData* secondary, MatrixData* owner,
                                 std::vector<std::vector<QVariant>>& binValues, bool axial);
    /// A new table (owned by the caller) with one row per run of equal keys (within 0.0005):
    /// the mean of `valueColumn` and the key.
    MatrixData* reduceToAveraged(int keyColumn, int valueColumn);
    /// y at `x`, linear between the rows (ordered by x); the end values outside; 99999 with
    /// fewer than two rows or coincident x.
    double getInterpolationValue(double x, int xColumn, int yColumn);
    /// Fills the rows strictly between `from` and `to` linearly from the two end values;
    /// `restore`, when given, records column 0 of each row first.
    void interpolate(int from, int to, int column, MatrixDataRestore* restore);
    /// A filter step of a twentieth of the selected rows (at least 1), remembered.
    int defaultFilterStepSize(int rows);
    /// The remembered filter step; -1 before one was computed.
    int defaultFilterStepSize() const { return m_defaultFilterStepSize; }
    /// Forgets and recomputes the filter step.
    void resetDefaultFilterStepSize();
    /// The bin of `v` among `n` bins of `step` from `start`, counting it in `counts` and filling
    /// the bounds up to it; the top of the last bin belongs to it. -1 when no bin holds `v`.
    static int findInterval(double v, int const& n, double const& start, double const& step, int* counts,
                            double* lower, double* upper);
    /// Whether `p` lies in the closed polygon of the QPointF cells (winding angle).
    bool pointInOrOut(QPointF const& p);

    // --- CSV, streams and clipboard ------------------------------------------------------------

    /// The first line of a table file: "Ardmuir Fenton,4DTesk2.0 v1.0".
    static QString csvFileIdentifier();
    /// The line that starts a further table in the same file.
    static QString csvFileTableSeparator();
    /// Writes the selected leaves (root, group, leaf) as a table file: the header block, the
    /// statistics rows when `statistics`, then the rows. `raw` writes stored numbers instead of
    /// display values; `append` adds the table after a separator line; `checkRows` recounts the
    /// valid rows first. On failure `*ok` (when given) is false, `errorText` (when given) gets
    /// the reason, and a warning box appears only when `parent` is given or a widget application
    /// runs. `progress` (optional) sees one step per row.
    bool writeCSV(QString const& file, bool* ok, bool raw, bool append, bool statistics, bool checkRows,
                  QWidget* parent, AbstractProgress* progress = nullptr, QString* errorText = nullptr);
    /// Reads table `table` (0: the first) of a table file into this root, adding groups and
    /// leaves; a file without the header block goes to readCSV_withNoHeader(). False, with the
    /// tree as it was, for a missing or unreadable file or a header that does not add up.
    bool readCSV(QString const& file, int table, AbstractProgress* progress = nullptr);
    /// Reads a plain comma-separated file whose first line names the columns: one group named
    /// after the file, a column per name, numbers where every non-empty field of a column is a
    /// number and text otherwise.
    bool readCSV_withNoHeader(QString const& file);
    /// Writes one header field of this leaf: "SystemType", "AttributeName", "AttributeColor",
    /// "DisplayUnit" or "UnitCategory".
    void writeCSVHeaderData(QString const& label, QTextStream& stream);
    /// Writes the cell of `row` as the table file holds it (display units unless `raw`).
    void putDataOnStream(int row, QTextStream& stream, bool raw);
    /// Writes a cached statistic: 0 minimum, 1 mean, 2 maximum.
    void putMinMaxMeanDataOnStream(QTextStream& stream, int which);
    /// Writes the leaf in binary: row count, cell type, name, then each cell.
    void putDataOnStream(QDataStream& stream, bool raw);
    /// Writes the cell of `row` in binary (a blank number as 99999).
    void putDataOnStream(int row, QDataStream& stream, bool raw);
    /// Replaces the leaf by one read with putDataOnStream(QDataStream&, bool).
    void getDataFromStream(QDataStream& stream);
    /// Reads one cell written by putDataOnStream(int, QDataStream&, bool) into (row, column).
    void getDataFromStream(int row, int column, QDataStream& stream);
    /// Puts the columns as an HTML table (names in the header row) into `mime`.
    static void setHTML_MimeData(QMimeData* mime, std::vector<MatrixData*> const& columns);
    /// The colour as "#RRGGBB" text.
    QString colorHexaString() const;
    /// A colour from "#RRGGBB" text; invalid for anything else.
    static QColor colorFromHexaString(QString const& text);

    // --- names and flags -----------------------------------------------------------------------

    /// The key of the node.
    const QString& name() const { return m_name; }
    /// Sets the key and the interface name.
    void setName(QString const& name);
    /// The name shown; the key when none is set.
    QString interfaceName() const { return m_interfaceName.isEmpty() ? m_name : m_interfaceName; }
    /// Sets the name shown.
    void setInterfaceName(QString const& name) { m_interfaceName = name; }
    /// Geometry type text set by the application.
    const QString& geoType() const { return m_geoType; }
    /// See geoType().
    void setGeoType(QString const& type) { m_geoType = type; }
    /// The cell type.
    QVariant::Type cellType() const { return m_cellType; }
    /// Sets the cell type (cells are not converted).
    void setCellType(QVariant::Type type) { m_cellType = type; }
    /// The attribute system's name of the cell type ("Real", "Integer", "Text", ...).
    QString systemType() const;
    /// The cell type of an attribute system name; "Text" for unknown names.
    static QVariant::Type systemType(QString const& name);
    /// Identity within the tree; -1 until attached.
    int ID() const { return m_ID; }
    /// Sets the identity.
    void setID(int id) { m_ID = id; }
    /// Colour of the node.
    const QColor& color() const { return m_color; }
    /// Sets the colour.
    void setColor(QColor const& c) { m_color = c; }
    /// Lookup table of the column.
    QMap<QString, QVariant>& lookupTable() { return m_lookupTable; }
    /// Label of the minimum row.
    const QString& minName() const { return m_minName; }
    /// Sets the minimum's label.
    void setMinName(QString const& n) { m_minName = n; }
    /// Label of the mean row.
    const QString& meanName() const { return m_meanName; }
    /// Sets the mean's label.
    void setMeanName(QString const& n) { m_meanName = n; }
    /// Label of the maximum row.
    const QString& maxName() const { return m_maxName; }
    /// Sets the maximum's label.
    void setMaxName(QString const& n) { m_maxName = n; }
    /// Whether the node may be edited.
    virtual bool isNodeEditable() const { return m_nodeEditable; }
    /// See isNodeEditable().
    virtual void setNodeEditable(bool on) { m_nodeEditable = on; }
    /// Whether the node may be deleted.
    bool isNodeDeletable() const { return m_nodeDeletable; }
    /// See isNodeDeletable().
    void setNodeDeletable(bool on) { m_nodeDeletable = on; }
    /// Whether the node may be renamed.
    bool isNodeRenamable() const { return m_nodeRenamable; }
    /// See isNodeRenamable().
    void setNodeRenamable(bool on) { m_nodeRenamable = on; }
    /// Whether cells may be blank.
    bool nodeCanBeBlank() const { return m_nodeCanBeBlank; }
    /// See nodeCanBeBlank().
    void setNodeCanBeBlank(bool on) { m_nodeCanBeBlank = on; }
    /// Whether the node is computed (undo does not write into it).
    bool isNodeComputed() const { return m_nodeComputed; }
    /// See isNodeComputed().
    void setNodeComputed(bool on) { m_nodeComputed = on; }
    /// Whether negative numbers are allowed.
    bool nodeCanBeNegative() const { return m_nodeCanBeNegative; }
    /// See nodeCanBeNegative().
    void setNodeCanBeNegative(bool on) { m_nodeCanBeNegative = on; }
    /// Whether the node's colour map runs reversed.
    bool flipColorMap() const { return m_flipColorMap; }
    /// See flipColorMap().
    void setFlipColorMap(bool on) { m_flipColorMap = on; }
    /// Step of the node's colour map; 99999 for none.
    double colorMapStepSize() const { return m_colorMapStepSize; }
    /// See colorMapStepSize().
    void setColorMapStepSize(double step) { m_colorMapStepSize = step; }
    /// Whether cells show check boxes.
    bool checkStateActive() const { return m_checkStateActive; }
    /// See checkStateActive().
    void enableCheckState(bool on) { m_checkStateActive = on; }
    /// Whether the check boxes act as radio buttons.
    bool checkStateRoleExclusive() const { return m_checkStateRoleExclusive; }
    /// See checkStateRoleExclusive().
    void setCheckStateRoleExclusive(bool on) { m_checkStateRoleExclusive = on; }
    /// Whether users see the node.
    bool visibleToUser() const { return m_visibleToUser; }
    /// See visibleToUser().
    void visibleToUser(bool on) { m_visibleToUser = on; }
    /// Marks the node as being edited.
    void setInEditedState(bool on) { m_inEditedState = on; }
    /// Whether the node is being edited.
    bool inEditedState() const { return m_inEditedState; }
    /// Row at which the node's rows start.
    int startRowCount() const { return m_startRowCount; }
    /// See startRowCount().
    void setStartRowCount(int n) { m_startRowCount = n; }
    /// Rows that hold a value.
    int validValueRowCount() const { return m_validValueRowCount; }
    /// See validValueRowCount().
    void setValidValueRowCount(int n) { m_validValueRowCount = n; }
    /// The row identity delegate, or null (not owned).
    AbstractMatrixDataID* getMatrixDataId() const { return m_matrixDataID; }
    /// Sets the row identity delegate of this node.
    virtual void setMatrixDataID(AbstractMatrixDataID* id) { m_matrixDataID = id; }
    /// Sets the delegate on this node and every leaf (two levels).
    void setMatrixDataIDs(AbstractMatrixDataID* id);

    // --- units -------------------------------------------------------------------------------

    /// Uses `registry` (not owned); a node with a unit manager switches to the registry's
    /// manager of the same category; children follow.
    void setRegistry(UnitRegistry* registry);
    /// The registry, or null.
    UnitRegistry* registry() const { return m_registry; }
    /// Sets the unit manager; a null pointer is ignored.
    void setUnitManager(boost::shared_ptr<UnitManager> manager);
    /// Sets the unit manager of `category` from the registry; nothing without a registry.
    void setUnitManager(QString const& category);
    /// The same for a category given as std::string.
    void setUnitManager(std::string const& category);
    /// The unit manager, or null.
    boost::shared_ptr<UnitManager> unitManager() const { return m_unitManager; }
    /// The manager's category, or empty.
    std::string unitCategory() const;
    /// The unit the stored numbers stand in; remembers the former one for convertNodeUnit().
    void setNodeUnitKey(int key);
    /// See setNodeUnitKey(); -1 for none.
    int nodeUnitKey() const { return m_nodeUnitKey; }
    /// Tag of the node's unit; empty without one.
    QString nodeUnitTag() const;
    /// From the node's unit to the model unit; `v` without a node unit.
    double convertNodeToModelUnit(double v) const;
    /// From the former node unit to the present one; `v` when either is unknown.
    double convertNodeUnit(double v) const;
    /// Model to display unit, through the registry's property named like the node first, else
    /// the unit manager; `v` without either.
    double convertModelToDisplay(double const& v) const;
    /// Display to model unit, in the same order.
    double convertDisplayToModel(double const& v) const;
    /// Tag of the display unit, in the same order; empty without either.
    QString displayUnitTag() const;
    /// Decimals shown, in the same order; 2 by default.
    int unitPrecision() const;
    /// `v` as shown to users, in the same order; plain "%1" formatting without units.
    QString printValue(double v) const;

    /// The next ID given to an attached node.
    static int m_iGlobalID;
    /// Restarts IDs at 0.
    static void resetGlobalIDCounter() { m_iGlobalID = 0; }
    /// The colour a new column gets. With `varied` false it is always the same colour; with
    /// `varied` true each call gives the next colour of a fixed, well-separated cycle.
    static QColor getDefaultColor(bool varied);

protected:
    /// The cells, column-major by key `column * rowCount() + row`.
    QHash<int, QVariant> m_cells;
    /// Number of rows.
    int m_rowCount = 0;
    /// Number of columns.
    int m_columnCount = 1;
    /// Rows that hold a value.
    int m_validValueRowCount = 0;
    /// Undo entries, oldest first (owned).
    std::vector<MatrixDataRestore*> m_undoList;
    /// Redo entries, oldest first (owned).
    std::vector<MatrixDataRestore*> m_redoList;

private:
    int maxBaseCount(bool valid) const;
    QList<MatrixData*> twoLevelLeaves() const;
    MatrixDataRestore* undo(int index, bool viaLeaf);
    MatrixDataRestore* redo(int index, bool viaLeaf);
    MatrixDataRestore* mirrorOf(MatrixDataRestore* entry, bool viaLeaf);
    void pushUndoTrimmed(MatrixDataRestore* entry);
    void menuStep(QAction* action, QMenu* menu, bool undoing);
    void assignIdAndStats(MatrixData* child, bool keepOwnerAndID, bool onlyWithRows);

    QString m_name;
    QString m_interfaceName;
    QString m_geoType;
    QVariant::Type m_cellType;
    QColor m_color;
    QMap<QString, QVariant> m_lookupTable;
    QVariant m_minValue, m_maxValue, m_meanValue;
    QString m_minName = QStringLiteral("Minimum");
    QString m_meanName = QStringLiteral("Mean");
    QString m_maxName = QStringLiteral("Maximum");
    UnitRegistry* m_registry = nullptr;
    boost::shared_ptr<UnitManager> m_unitManager;
    int m_nodeUnitKey = -1;
    int m_previousUnitKey = -1;
    int m_startRowCount = 0;
    int m_ID = -1;
    bool m_checkStateRoleExclusive = false;
    QSet<int> m_hiddenRows;
    mutable QVector<int> m_rowIndices;
    mutable bool m_rowIndicesDirty = false;
    bool m_checkStateActive = false;
    MatrixData* m_parent = nullptr;
    QList<MatrixData*> m_children;
    QSet<MatrixData*> m_owned; // children this node deletes: not the shared ones, not a copy's
    AbstractMatrixDataID* m_matrixDataID = nullptr;
    bool m_inEditedState = false;
    bool m_nodeEditable = true;
    bool m_nodeDeletable = true;
    bool m_nodeRenamable = true;
    bool m_nodeCanBeBlank = true;
    bool m_nodeComputed = false;
    bool m_nodeCanBeNegative = true;
    bool m_flipColorMap = true;
    double m_colorMapStepSize = 99999.0;
    bool m_visibleToUser = true;
    bool m_selected = true;
    int m_defaultFilterStepSize = -1;
};

} // namespace rkBase
