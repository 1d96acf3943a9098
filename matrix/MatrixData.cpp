#include "matrix/MatrixData.h"

#include "matrix/AbstractMatrixDataID.h"
#include "matrix/MatrixDataRestore.h"
#include "units/UnitManager.h"
#include "units/UnitRegistry.h"

#include <QAction>
#include <QMenu>

#include <algorithm>
#include <cmath>

namespace rkBase {

int MatrixData::m_iGlobalID = 0;

namespace {

// Drives the colour of each new node: the hue steps by 107, and every twelve nodes the value
// falls by 64, in a cycle of 48 colours.
int s_colourCounter = 0;

QColor nextNodeColour()
{
    const int n = s_colourCounter++;
    const int hue = (n * 107) % 256;
    const int value = (255 - 64 * ((n / 12) % 4)) % 256;
    return QColor::fromHsv(hue, 128, value, 255);
}

bool isBlank(const QVariant& v) { return v.isNull() || !v.isValid(); }

} // namespace

QColor MatrixData::getDefaultColor(bool varied)
{
    if (!varied)
        return QColor(31, 119, 180);
    // Twelve hues 150 degrees apart: neighbours in the cycle never look alike.
    static int next = 0;
    const int hue = (next * 150) % 360;
    next = (next + 1) % 12;
    return QColor::fromHsv(hue, 200, 210);
}

// --- construction --------------------------------------------------------------------------

MatrixData::MatrixData(QString const& name, int rows, int columns, QVariant::Type type, bool initialise)
    : m_name(name), m_interfaceName(name), m_cellType(type), m_color(nextNodeColour())
{
    if (initialise) {
        initialize(rows, columns);
    } else {
        m_rowCount = rows;
        m_validValueRowCount = rows;
        m_columnCount = columns == 0 ? 1 : columns;
    }
}

MatrixData::MatrixData(MatrixData const& other, bool copyData)
    : m_name(other.m_name), m_interfaceName(other.m_interfaceName), m_cellType(other.m_cellType),
      m_color(other.m_color), m_registry(other.m_registry), m_unitManager(other.m_unitManager)
{
    auto& source = const_cast<MatrixData&>(other); // the counts are virtual and non-const
    m_rowCount = source.rowCount();
    m_columnCount = source.columnCount();
    m_validValueRowCount = other.m_validValueRowCount;
    m_startRowCount = other.m_startRowCount;
    m_ID = other.m_ID;
    m_checkStateRoleExclusive = other.m_checkStateRoleExclusive;
    m_checkStateActive = other.m_checkStateActive;
    m_parent = other.m_parent;
    m_matrixDataID = other.m_matrixDataID;
    m_inEditedState = other.m_inEditedState;
    m_nodeEditable = other.isNodeEditable();
    m_nodeDeletable = other.m_nodeDeletable;
    m_nodeCanBeBlank = other.m_nodeCanBeBlank;
    m_nodeComputed = other.m_nodeComputed;
    m_nodeCanBeNegative = other.m_nodeCanBeNegative;
    m_visibleToUser = other.m_visibleToUser;
    m_selected = other.m_selected;
    m_defaultFilterStepSize = other.m_defaultFilterStepSize;
    m_children = other.m_children;
    if (copyData) {
        m_cells.reserve(qMax(1, m_rowCount * m_columnCount));
        for (int c = 0; c < m_columnCount; ++c)
            for (int r = 0; r < m_rowCount; ++r)
                m_cells.insert(c * m_rowCount + r, other.value(r, c));
        m_minValue = other.m_minValue;
        m_maxValue = other.m_maxValue;
        m_meanValue = other.m_meanValue;
    }
}

MatrixData::MatrixData(MatrixData const& other) : MatrixData(other, true) {}

MatrixData& MatrixData::operator=(MatrixData const& other)
{
    if (this == &other)
        return *this;
    if (m_rowCount != other.m_rowCount || m_columnCount != other.m_columnCount)
        m_cells.clear();
    m_name = other.m_name;
    m_interfaceName = other.m_interfaceName;
    m_unitManager = other.m_unitManager;
    m_geoType = other.m_geoType;
    m_cellType = other.m_cellType;
    m_color = other.m_color;
    m_minValue = other.m_minValue;
    m_maxValue = other.m_maxValue;
    m_meanValue = other.m_meanValue;
    m_rowCount = other.m_rowCount;
    m_columnCount = other.m_columnCount;
    m_validValueRowCount = other.m_validValueRowCount;
    m_startRowCount = other.m_startRowCount;
    m_ID = other.m_ID;
    m_lookupTable = other.m_lookupTable;
    m_minName = other.m_minName;
    m_meanName = other.m_meanName;
    m_maxName = other.m_maxName;
    if (m_cells.isEmpty()) {
        m_cells.reserve(qMax(1, m_rowCount * m_columnCount));
        for (int c = 0; c < m_columnCount; ++c)
            for (int r = 0; r < m_rowCount; ++r)
                m_cells.insert(c * m_rowCount + r, other.value(r, c));
    } else {
        for (int c = 0; c < m_columnCount; ++c)
            for (int r = 0; r < m_rowCount; ++r)
                setValue(r, c, other.value(r, c));
    }
    m_parent = other.m_parent;
    m_selected = other.m_selected;
    m_defaultFilterStepSize = other.m_defaultFilterStepSize;
    if (m_children != other.m_children) {
        // Children this node owned and no longer lists would be unreachable: they go now. The
        // ones taken from `other` stay owned by `other`.
        const QList<MatrixData*> dropped = m_children;
        m_children = other.m_children;
        for (MatrixData* c : dropped)
            if (!m_children.contains(c) && m_owned.remove(c))
                delete c;
        for (MatrixData* c : m_children)
            m_owned.remove(c);
    }
    m_registry = other.m_registry;
    m_matrixDataID = other.m_matrixDataID;
    m_visibleToUser = other.m_visibleToUser;
    m_checkStateActive = other.m_checkStateActive;
    m_colorMapStepSize = 99999.0;
    m_flipColorMap = true;
    return *this;
}

MatrixData::~MatrixData()
{
    clearUndoRedo();
    // Each child once: a shared child (keepOwnerAndID) belongs to the tree that made it, and a
    // copy lists its source's children without owning them.
    const QList<MatrixData*> children = m_children;
    m_children.clear();
    for (MatrixData* c : children)
        if (m_owned.remove(c)) {
            if (c->m_parent == this)
                c->m_parent = nullptr;
            delete c;
        }
}

// --- shape --------------------------------------------------------------------------------

void MatrixData::initialize(int rows, int columns)
{
    m_rowCount = rows;
    m_validValueRowCount = rows;
    m_columnCount = columns == 0 ? 1 : columns;
    m_cells.clear();
    const qint64 cells = qint64(qMax(rows, 0)) * m_columnCount;
    m_cells.reserve(int(qBound<qint64>(1, cells, 1 << 26)));
    for (int key = 0; key < cells; ++key)
        m_cells.insert(key, QVariant());
    m_minValue = m_maxValue = m_meanValue = QVariant();
}

void MatrixData::initialize(std::vector<double> const& values)
{
    m_cells.clear();
    m_cells.reserve(int(qMax<size_t>(1, values.size())));
    for (size_t i = 0; i < values.size(); ++i)
        m_cells.insert(int(i), values[i]);
    m_rowCount = int(values.size());
    m_columnCount = 0;
}

int MatrixData::rowCount() { return m_rowCount; }
int MatrixData::columnCount() { return m_columnCount; }

void MatrixData::incrementRows(int n)
{
    m_rowCount += n;
    m_validValueRowCount += n;
}

void MatrixData::decrementRows(int n)
{
    m_rowCount -= n;
    m_validValueRowCount -= n;
}

void MatrixData::appendRows(int n)
{
    if (n <= 0)
        return;
    const QHash<int, QVariant> old = m_cells;
    const int columns = qMax(1, m_columnCount);
    const int grown = m_rowCount + n;
    m_cells.clear();
    m_cells.reserve(grown * columns);
    for (int c = 0; c < columns; ++c) {
        for (int r = 0; r < m_rowCount; ++r) {
            auto it = old.constFind(m_rowCount * c + r);
            if (it != old.constEnd())
                m_cells.insert(grown * c + r, it.value());
        }
        for (int j = 0; j < n; ++j)
            m_cells.insert(grown * c + m_rowCount + j, QVariant(0.0));
    }
    m_rowCount = grown;
    // The cache is recomputed over the grown column, as the new rows are part of it.
    for (int c = 0; c < columns; ++c)
        setMinMax(c, boost::dynamic_bitset<>());
}

void MatrixData::appendColumns(int n)
{
    const int rows = rowCount();
    for (int c = m_columnCount; c < m_columnCount + n; ++c)
        for (int r = 0; r < rows; ++r)
            m_cells.insert(rows * c + r, QVariant(int(r + 1)));
    const int first = m_columnCount;
    m_columnCount += qMax(0, n);
    for (int c = first; c < m_columnCount; ++c)
        setMinMax(c, boost::dynamic_bitset<>());
}

void MatrixData::computeRowIndices() const
{
    if (!m_rowIndicesDirty)
        return;
    m_rowIndicesDirty = false;
    m_rowIndices.clear();
    const int limit = m_hiddenRows.size() + m_rowCount;
    for (int i = 0; i < limit && m_rowIndices.size() < m_rowCount; ++i)
        if (!m_hiddenRows.contains(i))
            m_rowIndices.append(i);
}

// --- tree ---------------------------------------------------------------------------------

void MatrixData::assignIdAndStats(MatrixData* child, bool keepOwnerAndID, bool onlyWithRows)
{
    if (!keepOwnerAndID)
        child->m_parent = this;
    if (!onlyWithRows || child->rowCount() > 0)
        for (int c = 0; c < child->columnCount(); ++c)
            child->setMinMax(c, boost::dynamic_bitset<>());
    if (!keepOwnerAndID)
        child->m_ID = m_iGlobalID++;
}

MatrixData* MatrixData::addChild(MatrixData* parent, int rows, QString const& name, bool keepOwnerAndID, bool& existed)
{
    existed = true;
    MatrixData* node = getNodeFromName(name);
    if (!node) {
        existed = false;
        node = new MatrixData(name, rows, 1, QVariant::Double, true);
        (parent ? parent : this)->appendChild(node, keepOwnerAndID);
    }
    node->setDefaultValue1(QVariant());
    return node;
}

void MatrixData::appendChild(MatrixData* child, bool keepOwnerAndID)
{
    if (!child || child == this || m_children.contains(child))
        return;
    assignIdAndStats(child, keepOwnerAndID, true);
    m_children.append(child);
    if (!keepOwnerAndID)
        m_owned.insert(child);
    if (m_registry)
        child->setRegistry(m_registry);
}

void MatrixData::insertChild(int pos, MatrixData* child, bool keepOwnerAndID)
{
    if (!child || child == this)
        return;
    assignIdAndStats(child, keepOwnerAndID, false);
    m_children.insert(qBound(0, pos, m_children.size()), child);
    if (!keepOwnerAndID)
        m_owned.insert(child);
}

void MatrixData::insertChild(int pos, MatrixData* child)
{
    if (!child || child == this)
        return;
    m_children.insert(qBound(0, pos, m_children.size()), child);
    m_owned.insert(child);
    child->setRegistry(m_registry);
    child->m_ID = m_iGlobalID++;
}

void MatrixData::removeChild(MatrixData* child)
{
    for (int i = 0; i < m_children.size(); ++i) {
        MatrixData* c = m_children.at(i);
        if (c == child) {
            m_children.removeAt(i);
            m_owned.remove(child); // handed back to the caller
            if (child->m_parent == this)
                child->m_parent = nullptr;
            return;
        }
        c->removeChild(child);
    }
}

void MatrixData::removeEmptyGroups()
{
    checkValidRowCount();
    const QList<MatrixData*> groups = m_children;
    for (MatrixData* group : groups) {
        bool hasRows = false;
        for (MatrixData* leaf : group->m_children)
            hasRows = hasRows || leaf->m_validValueRowCount != 0;
        if (!hasRows)
            removeChild(group);
    }
}

MatrixData* MatrixData::child(QString const& name) const
{
    for (MatrixData* c : m_children) {
        if (c->m_children.isEmpty()) {
            if (c->m_name == name)
                return c;
        } else if (MatrixData* found = c->child(name)) {
            return found;
        }
    }
    return nullptr;
}

QList<MatrixData*> MatrixData::leafs() const
{
    QList<MatrixData*> out;
    for (MatrixData* c : m_children) {
        if (c->m_children.isEmpty())
            out.append(c);
        else
            out.append(c->leafs());
    }
    return out;
}

MatrixData* MatrixData::getNode(int index) const
{
    MatrixData* last = nullptr;
    int count = -1;
    for (MatrixData* group : m_children)
        for (MatrixData* leaf : group->m_children) {
            last = leaf;
            if (leaf->m_selected && leaf->m_visibleToUser && ++count == index)
                return leaf;
        }
    return last;
}

MatrixData* MatrixData::getNodeFromID(int id) const
{
    for (MatrixData* group : m_children)
        for (MatrixData* leaf : group->m_children)
            if (leaf->m_ID == id)
                return leaf;
    return nullptr;
}

MatrixData* MatrixData::getNodeFromName(QString const& name) const
{
    MatrixData* result = nullptr;
    for (MatrixData* group : m_children) {
        if (result)
            break;
        if (group->m_name == name) {
            // Only the group's first leaf can stand in for the group: a later leaf of the same
            // name leaves the group as the answer.
            result = group;
            if (!group->m_children.isEmpty() && group->m_children.first()->m_name == name)
                result = group->m_children.first();
            continue;
        }
        for (MatrixData* leaf : group->m_children)
            if (leaf->m_name == name) {
                result = leaf;
                break;
            }
    }
    return result;
}

MatrixData* MatrixData::getContainerFromName(QString const& name) const
{
    for (MatrixData* c : m_children)
        if (c->m_name == name && (!c->m_parent || !c->m_parent->m_parent))
            return c;
    return nullptr;
}

MatrixData* MatrixData::getFirstChildWithData() const
{
    for (MatrixData* c : m_children) {
        if (c->m_children.isEmpty()) {
            if (c->rowCount() >= 1)
                return c;
        } else if (MatrixData* found = c->getFirstChildWithData()) {
            return found;
        }
    }
    return nullptr;
}

int MatrixData::countName(QString const& name, Qt::CaseSensitivity cs) const
{
    int n = 0;
    for (MatrixData* c : m_children) {
        if (c->m_parent)
            n += c->m_name.compare(name, cs) == 0 ? 1 : 0;
        else
            n += c->countName(name, cs);
    }
    return n;
}

bool MatrixData::findName(QString const& name, Qt::CaseSensitivity cs) const
{
    for (MatrixData* c : m_children) {
        if (c->m_parent) {
            if (c->m_name.compare(name, cs) == 0)
                return true;
        } else if (c->findName(name, cs)) {
            return true;
        }
    }
    return false;
}

void MatrixData::createUniqueName(QString& name) const
{
    const int n = countName(name, Qt::CaseSensitive);
    if (n != 0)
        name += QLatin1Char('_') + QString::number(n);
}

bool MatrixData::hasOrientationData() const
{
    for (MatrixData* group : m_children) {
        if (group->unitCategory() == UnitRegistry::CATEGORY_ORIENTATION)
            return true;
        for (MatrixData* leaf : group->m_children)
            if (leaf->unitCategory() == UnitRegistry::CATEGORY_ORIENTATION)
                return true;
    }
    return false;
}

bool MatrixData::hasWriteValues() const
{
    for (MatrixData* c : m_children)
        if (c->hasWriteValues())
            return true;
    return false;
}

// --- selection ------------------------------------------------------------------------------

void MatrixData::setSelected(bool selected, bool noPropagation)
{
    m_selected = selected;
    if (noPropagation)
        return;
    if (!m_parent) {
        for (MatrixData* c : m_children)
            c->setSelected(selected, false);
        return;
    }
    int count = 0;
    for (MatrixData* sibling : m_parent->m_children)
        count += sibling->m_selected && sibling->m_visibleToUser ? 1 : 0;
    // Compared with this node's own child count, as it always was: for a leaf (no children) the
    // group is selected exactly when some visible sibling is.
    m_parent->setSelected(count != childCount(), true);
}

int MatrixData::numberOfSelectedItems() const
{
    int n = 0;
    for (MatrixData* group : m_children)
        for (MatrixData* leaf : group->m_children)
            n += leaf->m_selected && leaf->m_visibleToUser ? 1 : 0;
    return n;
}

int MatrixData::maxNumbOfSelectedRows(int divisor, int rows) const
{
    if (rows == 0)
        for (MatrixData* group : m_children) {
            if (!group->m_selected || !group->m_visibleToUser)
                continue;
            for (MatrixData* leaf : group->m_children)
                rows = qMax(rows, leaf->m_startRowCount + leaf->m_validValueRowCount);
        }
    if (divisor > 1) {
        double whole = 0.0;
        const double fraction = std::modf(double(rows) / divisor, &whole);
        return int(whole) + (fraction != 0.0 ? 1 : 0);
    }
    return rows;
}

int MatrixData::maxBaseCount(bool valid) const
{
    int best = -1;
    for (MatrixData* group : m_children)
        for (MatrixData* leaf : group->m_children) {
            if (leaf->m_cellType == QVariant::Color)
                continue;
            const int n = valid ? leaf->m_validValueRowCount : leaf->rowCount();
            if (n != UNDEFINED_VALUE)
                best = qMax(best, n);
        }
    return best;
}

// --- cells ----------------------------------------------------------------------------------

QVariant MatrixData::value(int row, int column) const
{
    if (row < 0 || column < 0)
        return QVariant(m_name);
    return m_cells.value(column * m_rowCount + row);
}

QVariant MatrixData::value(QModelIndex const& index) const
{
    return m_cells.value(index.column() * m_rowCount + index.row());
}

QVariant MatrixData::rawValue(QVariant const& v) const { return v; }
QVariant MatrixData::rawValue(int row) const { return value(row, 0); }
QVariant MatrixData::rawValue(QModelIndex const& index) const { return value(index.row(), index.column()); }

double MatrixData::toDouble(int row, int column) const
{
    const QVariant v = value(row, column);
    return isBlank(v) ? double(UNDEFINED_VALUE) : v.toDouble();
}

int MatrixData::toInt(int row, int column) const
{
    const QVariant v = value(row, column);
    return isBlank(v) ? UNDEFINED_VALUE : v.toInt();
}

double MatrixData::toDisplayDouble(QVariant v) const { return convertModelToDisplay(v.toDouble()); }

bool MatrixData::isNullObject(int row, int column) const { return value(row, column).isNull(); }

void MatrixData::setValue(int key, QVariant const& v) { m_cells.insert(key, v); }

void MatrixData::setValue(QModelIndex const& index, QVariant const& v)
{
    setValue(index.row(), index.column(), v);
}

void MatrixData::setValue(int row, int column, QVariant const& v)
{
    if (row < 0 || column < 0)
        return;
    // Writing at row == rowCount of column 0 first reserves the cell with a null and then writes
    // it: the same key, so one insert does both.
    m_cells.insert(column * m_rowCount + row, v);
    if (column == 0 && row >= m_rowCount)
        m_rowCount = m_cells.size();
}

void MatrixData::setDouble(int row, int column, double const& v)
{
    setValue(row, column, v == double(UNDEFINED_VALUE) ? QVariant() : QVariant(v));
}

void MatrixData::setInt(int row, int column, int const& v)
{
    setValue(row, column, v == UNDEFINED_VALUE ? QVariant() : QVariant(v));
}

void MatrixData::appendValue(QVariant const& v)
{
    m_cells.insert(m_cells.size(), v);
    ++m_rowCount;
}

void MatrixData::appendValue(int, QVariant const& v) { appendValue(v); }

void MatrixData::insertValue(int key, QVariant const& v) { m_cells.insert(key, v); }

void MatrixData::setValueTypeDependend(int key, QString const& text)
{
    if (text.isEmpty()) {
        m_cells.insert(key, QVariant());
        return;
    }
    switch (m_cellType) {
    case QVariant::Double:
        m_cells.insert(key, text.toDouble());
        break;
    case QVariant::String:
    case QVariant::Color:
        m_cells.insert(key, text);
        break;
    case QVariant::Int:
        m_cells.insert(key, text.toInt(nullptr, 10));
        break;
    default:
        break;
    }
}

void MatrixData::insertValueTypeDependend(int key, QString const& text)
{
    if (text.isEmpty()) {
        m_cells.insert(key, QVariant());
        return;
    }
    bool ok = false;
    switch (m_cellType) {
    case QVariant::Double: {
        double v = text.toDouble(&ok);
        if (!ok) {
            m_cells.insert(key, QVariant());
            return;
        }
        if (m_unitManager && m_nodeUnitKey != -1)
            v = m_unitManager->convert(v, m_nodeUnitKey, m_unitManager->modelUnit());
        m_cells.insert(key, v);
        break;
    }
    case QVariant::String:
    case QVariant::Color:
        m_cells.insert(key, text);
        break;
    case QVariant::Int: {
        const double v = text.toDouble(&ok);
        // Out of the int range the truncation would be undefined; such a number is no integer.
        m_cells.insert(key, ok && std::isfinite(v) && std::fabs(v) < 2147483648.0 ? QVariant(int(v)) : QVariant());
        break;
    }
    case QVariant::Bool: {
        const double v = text.toDouble(&ok);
        m_cells.insert(key, ok ? QVariant(v != 0.0) : QVariant());
        break;
    }
    default:
        break;
    }
}

bool MatrixData::isValueAllowed(QVariant const& v) const
{
    if (m_nodeCanBeNegative)
        return true;
    bool ok = false;
    const double d = v.toDouble(&ok);
    return !(ok && d < 0);
}

bool MatrixData::hasValidData() const
{
    for (int r = 0; r < m_rowCount; ++r) {
        const QVariant v = value(r, 0);
        if (!v.isNull() && !(v.type() == QVariant::String && v.toString().isEmpty()))
            return true;
    }
    return false;
}

void MatrixData::checkValidRowCount()
{
    if (!m_parent) {
        for (MatrixData* leaf : leafs())
            leaf->checkValidRowCount();
        return;
    }
    int count = 0;
    for (int i = 0; i < m_rowCount; ++i) {
        const QVariant v = value(i, 0);
        if (v.isNull())
            continue;
        // A number's text is never empty (a symbol number 0 included), so only other cells need
        // their text looked at; turning millions of numbers into text would cost more than reading them.
        const int type = int(v.type());
        if (m_cellType == QVariant::Icon || type == QMetaType::Double || type == QMetaType::Int ||
            type == QMetaType::Bool || type == QMetaType::LongLong) {
            ++count;
            continue;
        }
        const QString text = v.toString();
        if (!text.isEmpty() && !text.isNull())
            ++count;
    }
    m_validValueRowCount = 0;
    if (count != 0)
        m_validValueRowCount = count;
}

void MatrixData::resetRowCount(bool fill)
{
    if (m_columnCount != 1)
        return;
    m_validValueRowCount = m_cells.size();
    if (fill)
        for (int key = m_cells.size(); key < 100; ++key)
            m_cells.insert(key, QVariant());
    m_rowCount = m_cells.size();
}

void MatrixData::setDefaultValue1(QVariant const& v)
{
    const int rows = rowCount(), columns = qMax(1, columnCount());
    for (int c = 0; c < columns; ++c)
        for (int r = 0; r < rows; ++r)
            setValue(r, c, v);
}

void MatrixData::setDefaultValue2(double step)
{
    const int cells = rowCount() * qMax(1, columnCount());
    if (cells <= 0)
        return;
    m_cells.insert(0, QVariant(int(0)));
    double previous = 0.0;
    for (int i = 1; i < cells; ++i) {
        previous += step;
        m_cells.insert(i, previous);
    }
}

void MatrixData::clearWriteContainer(int) {}
void MatrixData::removeRowIndices(int) {}
bool MatrixData::isValueValid(int, int) const { return true; }
bool MatrixData::isValueEditable(int, int) { return m_nodeEditable; }
QWidget* MatrixData::comboBoxEditor(QWidget*) { return nullptr; }
QWidget* MatrixData::comboBoxEditor(QWidget* parent, QModelIndex) { return comboBoxEditor(parent); }

// --- statistics cache -----------------------------------------------------------------------

void MatrixData::getMinMaxForColumn(int const& column, double& min, double& max, double& sum, int& count,
                                    boost::dynamic_bitset<> const& rows)
{
    const int n = rowCount();
    if (n <= 0)
        return;
    min = max = sum = 0.0;
    count = 0;
    for (int r = 0; r < n; ++r) {
        if (!rows.empty() && (size_t(r) >= rows.size() || !rows.test(size_t(r))))
            continue;
        const QVariant v = value(r, column);
        if (isBlank(v))
            continue;
        const double d = v.toDouble();
        if (count == 0 || d < min)
            min = d;
        if (count == 0 || d > max)
            max = d;
        sum += d;
        ++count;
    }
}

void MatrixData::setMinMax(int const& column, boost::dynamic_bitset<> const& rows)
{
    if (!rows.empty() && int(rows.size()) != rowCount())
        return;
    if (column < 0 || column >= qMax(1, columnCount()))
        return;
    if (m_cellType != QVariant::Int && m_cellType != QVariant::Double)
        return;
    double min = 0, max = 0, sum = 0;
    int count = 0;
    getMinMaxForColumn(column, min, max, sum, count, rows);
    if (count == 0) {
        m_minValue = m_maxValue = m_meanValue = QVariant();
        return;
    }
    m_minValue = min;
    m_maxValue = max;
    m_meanValue = sum / count;
}

void MatrixData::setMinMax(int const& column, std::vector<int> const& rows)
{
    if (rows.empty()) {
        setMinMax(column, boost::dynamic_bitset<>());
        return;
    }
    const int n = rowCount();
    if (n < 1)
        return;
    boost::dynamic_bitset<> bits(static_cast<size_t>(n));
    for (int r : rows)
        if (r >= 0 && r < n)
            bits.set(static_cast<size_t>(r));
    setMinMax(column, bits);
}

// --- names and types ------------------------------------------------------------------------

void MatrixData::setName(QString const& name)
{
    m_name = name;
    m_interfaceName = name;
}

QString MatrixData::systemType() const
{
    switch (int(m_cellType)) {
    case QVariant::Bool:
        return QStringLiteral("Boolean");
    case QVariant::Int:
    case QVariant::Icon:
        return QStringLiteral("Integer");
    case QVariant::String:
        return QStringLiteral("Text");
    case QVariant::Color:
        return QStringLiteral("Color");
    default:
        return QStringLiteral("Real");
    }
}

QVariant::Type MatrixData::systemType(QString const& name)
{
    if (name == QLatin1String("Real"))
        return QVariant::Double;
    if (name == QLatin1String("Integer"))
        return QVariant::Int;
    if (name == QLatin1String("Color"))
        return QVariant::Color;
    if (name == QLatin1String("Boolean"))
        return QVariant::Bool;
    return QVariant::String;
}

void MatrixData::setMatrixDataIDs(AbstractMatrixDataID* id)
{
    setMatrixDataID(id);
    for (MatrixData* group : m_children)
        for (MatrixData* leaf : group->m_children)
            leaf->setMatrixDataID(id);
}

// --- units ----------------------------------------------------------------------------------

void MatrixData::setRegistry(UnitRegistry* registry)
{
    m_registry = registry;
    if (m_unitManager && registry)
        if (boost::shared_ptr<UnitManager> own = registry->getCategory(m_unitManager->category()))
            m_unitManager = own;
    for (MatrixData* c : m_children)
        if (c->m_registry != registry)
            c->setRegistry(registry);
}

void MatrixData::setUnitManager(boost::shared_ptr<UnitManager> manager)
{
    if (manager)
        m_unitManager = manager;
}

void MatrixData::setUnitManager(QString const& category) { setUnitManager(category.toStdString()); }

void MatrixData::setUnitManager(std::string const& category)
{
    if (m_registry)
        setUnitManager(m_registry->getCategory(category));
}

std::string MatrixData::unitCategory() const { return m_unitManager ? m_unitManager->category() : std::string(); }

void MatrixData::setNodeUnitKey(int key)
{
    m_previousUnitKey = m_nodeUnitKey == -1 ? key : m_nodeUnitKey;
    m_nodeUnitKey = key;
}

QString MatrixData::nodeUnitTag() const
{
    return m_unitManager && m_nodeUnitKey != -1 ? m_unitManager->getUnitTag(m_nodeUnitKey) : QString();
}

double MatrixData::convertNodeToModelUnit(double v) const
{
    if (m_nodeUnitKey == -1 || !m_unitManager)
        return v;
    return m_unitManager->convert(v, m_nodeUnitKey, m_unitManager->modelUnit());
}

double MatrixData::convertNodeUnit(double v) const
{
    if (m_nodeUnitKey == -1 || m_previousUnitKey == -1 || !m_unitManager)
        return v;
    return m_unitManager->convert(v, m_previousUnitKey, m_nodeUnitKey);
}

double MatrixData::convertModelToDisplay(double const& v) const
{
    const std::string property = m_name.toStdString();
    if (m_registry && m_registry->property_index(property) >= 0)
        return m_registry->convertModelToDisplay(v, m_registry->property_index(property));
    if (m_unitManager)
        return m_unitManager->convertModelToDisplay(v);
    return v;
}

double MatrixData::convertDisplayToModel(double const& v) const
{
    const std::string property = m_name.toStdString();
    if (m_registry && m_registry->property_index(property) >= 0)
        return m_registry->convertDisplayToModel(v, m_registry->property_index(property));
    if (m_unitManager)
        return m_unitManager->convertDisplayToModel(v);
    return v;
}

QString MatrixData::displayUnitTag() const
{
    const std::string property = m_name.toStdString();
    if (m_registry && m_registry->property_index(property) >= 0)
        return m_registry->property_unit_tag(property);
    if (m_unitManager)
        return m_unitManager->getDisplayUnitTag();
    return QString();
}

int MatrixData::unitPrecision() const
{
    const std::string property = m_name.toStdString();
    if (m_registry && m_registry->property_index(property) >= 0)
        return m_registry->property_precision(property);
    if (m_unitManager)
        return m_unitManager->precision();
    return 2;
}

QString MatrixData::printValue(double v) const
{
    QString out = QStringLiteral("%1").arg(v, 0, 'g', -1);
    const std::string property = m_name.toStdString();
    if (m_registry && m_registry->property_index(property) >= 0)
        m_registry->printValue(out, v, property);
    else if (m_unitManager)
        m_unitManager->printValue(out, v, -1, -1, 6);
    return out;
}

// --- row primitives (one column) ----------------------------------------------------------

void MatrixData::removeRow(int row)
{
    --m_rowCount;
    --m_validValueRowCount;
    for (int i = row; i < m_rowCount; ++i)
        m_cells.insert(i, m_cells.value(i + 1));
}

void MatrixData::unRemoveRow(int row, QVariant const& v)
{
    ++m_rowCount;
    ++m_validValueRowCount;
    for (int i = m_rowCount - 1; i > row; --i)
        m_cells.insert(i, m_cells.value(i - 1));
    m_cells.insert(row, v);
}

void MatrixData::insertRows(QList<int> const& rows, bool after)
{
    if (rows.isEmpty())
        return;
    const int k = rows.size();
    const int from = rows.last() + (after ? 1 : 0);
    for (int i = m_rowCount - 1; i >= from; --i)
        m_cells.insert(i + k, m_cells.value(i));
    m_rowCount += k;
    m_validValueRowCount += k;
    // Each row is addressed as if all k rows were already in place, as files made by earlier
    // versions expect.
    for (int r : rows)
        m_cells.insert(r + (after ? 1 : 0) + k - 1, QVariant());
}

void MatrixData::unInsertRows(QList<int> const& rows)
{
    if (rows.isEmpty())
        return;
    const int k = rows.size();
    for (int i = rows.first(); i < m_rowCount; ++i) {
        auto above = m_cells.constFind(i + k);
        if (above != m_cells.constEnd())
            m_cells.insert(i, above.value());
    }
    m_rowCount -= k;
    m_validValueRowCount -= k;
}

// --- row editing on the root ------------------------------------------------------------------

QList<MatrixData*> MatrixData::twoLevelLeaves() const
{
    QList<MatrixData*> out;
    for (MatrixData* group : m_children)
        for (MatrixData* leaf : group->m_children)
            out.append(leaf);
    return out;
}

namespace {
const QString kInsert = QStringLiteral("Row Operation: Insert Row: value=");
const QString kRemove = QStringLiteral("Row Operation: Remove Row: value=");
const QString kRemoveAll = QStringLiteral("Row Operation: Remove All Rows: value=");
} // namespace

int MatrixData::insertRowAtPos(int row)
{
    if (m_children.isEmpty()) { // a column inserts into itself
        insertRows(QList<int>{row}, false);
        return row;
    }
    if (m_matrixDataID) {
        m_matrixDataID->insertRow(row);
        for (MatrixData* leaf : twoLevelLeaves())
            leaf->incrementRows(1);
    } else {
        for (MatrixData* leaf : twoLevelLeaves())
            leaf->insertRowAtPos(row);
    }
    appendUndoAction(new MatrixDataRestore(this, kInsert + QString::number(row), false), true);
    return row;
}

void MatrixData::insertRowsAtPos(QList<int> const& rows, bool after, bool viaLeaf)
{
    if (m_children.isEmpty()) {
        insertRows(rows, after);
        return;
    }
    QString text = kInsert;
    if (m_matrixDataID) {
        m_matrixDataID->insertRows(rows, after);
        for (MatrixData* leaf : twoLevelLeaves())
            leaf->incrementRows(rows.size());
        for (int r : rows)
            text += QLatin1Char(' ') + QString::number(r + (after ? 1 : 0));
    } else {
        for (MatrixData* leaf : twoLevelLeaves()) {
            if (viaLeaf)
                leaf->insertRowsAtPos(rows, after, true);
            else
                leaf->insertRows(rows, after);
        }
        for (int r : rows)
            text += QString::number(r + (after ? 1 : 0)) + QLatin1Char(' ');
    }
    appendUndoAction(new MatrixDataRestore(this, text, false), true);
}

void MatrixData::removeRowFromEachColumn(int row)
{
    if (m_children.isEmpty()) {
        removeRow(row);
        return;
    }
    auto* entry = new MatrixDataRestore(this, kRemove + QString::number(row), false);
    if (m_matrixDataID) {
        m_matrixDataID->removeRow(row);
        for (MatrixData* leaf : twoLevelLeaves())
            leaf->decrementRows(1);
    } else {
        QList<QVariant> saved;
        for (MatrixData* leaf : twoLevelLeaves()) {
            saved.append(leaf->value(row, 0));
            leaf->removeRow(row);
        }
        entry->removedData(saved);
    }
    appendUndoAction(entry, true);
}

void MatrixData::removeRowsFromEachColumn()
{
    if (!m_matrixDataID)
        return;
    const int count = m_matrixDataID->removeAllRows();
    for (MatrixData* leaf : twoLevelLeaves())
        leaf->decrementRows(count);
    appendUndoAction(new MatrixDataRestore(this, kRemoveAll + QString::number(count), false), true);
}

void MatrixData::removeRowsFromEachColumn(QList<int> const& rows, bool strikeItself)
{
    QString text = kRemove;
    auto* entry = new MatrixDataRestore(this, QString(), false);
    if (m_matrixDataID) {
        QList<int> sorted = rows;
        std::sort(sorted.begin(), sorted.end(), std::greater<int>());
        for (int r : sorted) {
            m_matrixDataID->removeRow(r);
            for (MatrixData* leaf : twoLevelLeaves())
                leaf->decrementRows(1);
        }
    } else {
        // In the caller's order: callers pass rows in descending order.
        QList<QVariant> saved;
        for (int r : rows)
            for (MatrixData* group : m_children)
                for (MatrixData* leaf : group->m_children) {
                    saved.append(leaf->value(r, 0));
                    if (strikeItself && leaf->name() == QLatin1String("strike"))
                        leaf->removeRowFromEachColumn(r);
                    else
                        leaf->removeRow(r);
                }
        entry->removedData(saved);
    }
    for (int r : rows)
        text += QLatin1Char(' ') + QString::number(r);
    entry->setActionName(text);
    appendUndoAction(entry, true);
}

bool MatrixData::removeRowsWhereValuesUndefined(QStringList const& names)
{
    QList<MatrixData*> columns;
    for (const QString& n : names)
        if (MatrixData* c = child(n))
            columns.append(c);
    if (columns.isEmpty())
        return false;
    QList<int> doomed;
    const int rows = columns.first()->rowCount();
    for (int r = 0; r < rows; ++r) {
        bool bad = false;
        for (MatrixData* c : columns)
            bad = bad || !c->value(r, 0).isValid() || c->value(r, 0).isNull();
        if (bad)
            doomed.prepend(r); // ends in descending order
    }
    for (int r : doomed)
        removeRowFromEachColumn(r);
    return !doomed.isEmpty();
}

void MatrixData::insertOneRowForEachColumn(int row)
{
    if (row == -1) {
        appendOneRowForEachColumn();
        return;
    }
    for (MatrixData* leaf : twoLevelLeaves())
        leaf->insertRows(QList<int>{row}, false);
}

void MatrixData::appendOneRowForEachColumn()
{
    for (MatrixData* leaf : twoLevelLeaves()) {
        ++leaf->m_validValueRowCount;
        if (leaf->m_validValueRowCount > leaf->rowCount()) {
            leaf->m_cells.insert(leaf->m_cells.size(), QVariant());
            ++leaf->m_rowCount;
        }
    }
}

// --- replay -------------------------------------------------------------------------------------

void MatrixData::unInsertRowAtPos(QList<int> const& rows, bool viaLeaf)
{
    if (m_children.isEmpty()) {
        unInsertRows(rows);
        return;
    }
    if (m_matrixDataID) {
        m_matrixDataID->undoInsertRows(rows);
        for (MatrixData* leaf : twoLevelLeaves())
            leaf->decrementRows(rows.size());
        return;
    }
    for (MatrixData* leaf : twoLevelLeaves())
        viaLeaf ? leaf->unInsertRowAtPos(rows, false) : leaf->unInsertRows(rows);
}

void MatrixData::reInsertRowAtPos(QList<int> const& rows, bool viaLeaf)
{
    if (m_children.isEmpty()) {
        insertRows(rows, false);
        return;
    }
    if (m_matrixDataID) {
        m_matrixDataID->redoInsertRows(rows);
        for (MatrixData* leaf : twoLevelLeaves())
            leaf->incrementRows(rows.size());
        return;
    }
    for (MatrixData* leaf : twoLevelLeaves())
        viaLeaf ? leaf->reInsertRowAtPos(rows, false) : leaf->insertRows(rows, false);
}

void MatrixData::unRemoveRowFromEachColumn(int row, QList<QVariant> const& values)
{
    if (m_children.isEmpty()) {
        unRemoveRow(row, values.value(0));
        return;
    }
    if (m_matrixDataID) {
        m_matrixDataID->undoRemoveRow(row);
        for (MatrixData* leaf : twoLevelLeaves())
            leaf->incrementRows(1);
        return;
    }
    int i = 0;
    for (MatrixData* leaf : twoLevelLeaves())
        leaf->unRemoveRow(row, values.value(i++));
}

void MatrixData::unRemoveRowsFromEachColumn(QList<int> const& rows, QList<QVariant> const& values, bool viaLeaf)
{
    if (m_matrixDataID) {
        for (int k = rows.size() - 1; k >= 0; --k) {
            m_matrixDataID->undoRemoveRow(rows.at(k));
            for (MatrixData* leaf : twoLevelLeaves())
                leaf->incrementRows(1);
        }
        return;
    }
    // Rows, groups and leaves in reverse, so that each value goes back where it was taken from.
    QList<QVariant> remaining = values;
    const QList<MatrixData*> leaves = twoLevelLeaves();
    for (int k = rows.size() - 1; k >= 0; --k)
        for (int j = leaves.size() - 1; j >= 0; --j) {
            const QVariant v = remaining.isEmpty() ? QVariant() : remaining.takeLast();
            if (viaLeaf)
                leaves.at(j)->unRemoveRowFromEachColumn(rows.at(k), QList<QVariant>{v});
            else
                leaves.at(j)->unRemoveRow(rows.at(k), v);
        }
}

void MatrixData::reRemoveRowFromEachColumn(int row, bool viaLeaf)
{
    if (m_children.isEmpty()) {
        removeRow(row);
        return;
    }
    if (m_matrixDataID) {
        m_matrixDataID->redoRemoveRow(row);
        for (MatrixData* leaf : twoLevelLeaves())
            leaf->decrementRows(1);
        return;
    }
    for (MatrixData* leaf : twoLevelLeaves())
        viaLeaf ? leaf->reRemoveRowFromEachColumn(row, false) : leaf->removeRow(row);
}

void MatrixData::reRemoveRowsFromEachColumn(QList<int> const& rows, bool viaLeaf)
{
    for (int r : rows) {
        if (m_matrixDataID) {
            m_matrixDataID->redoRemoveRow(r);
            for (MatrixData* leaf : twoLevelLeaves())
                leaf->decrementRows(1);
            continue;
        }
        for (MatrixData* leaf : twoLevelLeaves())
            viaLeaf ? leaf->reRemoveRowFromEachColumn(r, false) : leaf->removeRow(r);
    }
}

void MatrixData::unRemoveRowsFromEachColumn()
{
    if (!m_matrixDataID)
        return;
    const int count = m_matrixDataID->undoRemoveAllRows();
    for (MatrixData* leaf : twoLevelLeaves())
        leaf->incrementRows(count);
}

void MatrixData::reRemoveRowsFromEachColumn()
{
    if (!m_matrixDataID)
        return;
    const int count = m_matrixDataID->redoRemoveAllRows();
    for (MatrixData* leaf : twoLevelLeaves())
        leaf->decrementRows(count);
}

// --- undo and redo lists --------------------------------------------------------------------------

void MatrixData::pushUndoTrimmed(MatrixDataRestore* entry)
{
    if (int(m_undoList.size()) > MAX_UNDO_BEFORE_TRIM) {
        delete m_undoList.front();
        m_undoList.erase(m_undoList.begin());
    }
    m_undoList.push_back(entry);
}

void MatrixData::appendUndoAction(MatrixDataRestore* entry, bool clearRedo)
{
    if (!entry)
        return;
    pushUndoTrimmed(entry);
    if (clearRedo) {
        for (MatrixDataRestore* e : m_redoList)
            delete e;
        m_redoList.clear();
    }
}

void MatrixData::appendRedoAction(MatrixDataRestore* entry)
{
    if (entry)
        m_redoList.push_back(entry);
}

void MatrixData::removeLastUndoAction()
{
    if (m_undoList.empty())
        return;
    delete m_undoList.back();
    m_undoList.pop_back();
}

void MatrixData::removeLastRedoAction()
{
    if (m_redoList.empty())
        return;
    delete m_redoList.back();
    m_redoList.pop_back();
}

void MatrixData::clearUndoRedo()
{
    for (MatrixDataRestore* e : m_undoList)
        delete e;
    for (MatrixDataRestore* e : m_redoList)
        delete e;
    m_undoList.clear();
    m_redoList.clear();
}

MatrixDataRestore* MatrixData::mirrorOf(MatrixDataRestore* entry, bool viaLeaf)
{
    if (auto* proxy = dynamic_cast<MatrixDataRestoreProxy*>(entry)) {
        auto* mirror = new MatrixDataRestoreProxy;
        proxy->restore(mirror);
        mirror->setActionName(proxy->actionName());
        return mirror;
    }
    auto* mirror = new MatrixDataRestore(entry);
    entry->restore(this, mirror, viaLeaf);
    return mirror;
}

MatrixDataRestore* MatrixData::undo(int index, bool viaLeaf)
{
    return index >= 0 && index < int(m_undoList.size()) ? mirrorOf(m_undoList.at(size_t(index)), viaLeaf) : nullptr;
}

MatrixDataRestore* MatrixData::redo(int index, bool viaLeaf)
{
    return index >= 0 && index < int(m_redoList.size()) ? mirrorOf(m_redoList.at(size_t(index)), viaLeaf) : nullptr;
}

void MatrixData::lastUndo(bool viaLeaf)
{
    if (m_undoList.empty())
        return;
    MatrixDataRestore* mirror = undo(int(m_undoList.size()) - 1, viaLeaf);
    appendRedoAction(mirror);
    removeLastUndoAction();
}

void MatrixData::lastRedo(bool viaLeaf)
{
    if (m_redoList.empty())
        return;
    MatrixDataRestore* mirror = redo(int(m_redoList.size()) - 1, viaLeaf);
    removeLastRedoAction();
    pushUndoTrimmed(mirror);
}

void MatrixData::menuStep(QAction* action, QMenu* menu, bool undoing)
{
    if (!action || !menu)
        return;
    std::vector<MatrixDataRestore*>& list = undoing ? m_undoList : m_redoList;
    const int size = int(list.size());
    const QList<QAction*> actions = menu->actions();
    if (actions.size() - 3 != size)
        return;
    if (size == 1) {
        undoing ? lastUndo(false) : lastRedo(false);
        return;
    }
    const int chosen = action->data().toInt();
    QList<MatrixDataRestore*> mirrors;
    for (int k = 1; k <= actions.size() - 3; ++k) {
        if (chosen != -1 && actions.at(k)->data().toInt() > chosen)
            break;
        const int index = size - k;
        if (index < 0)
            break;
        MatrixDataRestore* m = undoing ? undo(index, false) : redo(index, false);
        if (m)
            mirrors.append(m);
    }
    for (MatrixDataRestore* m : mirrors) {
        if (undoing) {
            appendRedoAction(m);
            removeLastUndoAction();
        } else {
            pushUndoTrimmed(m);
            removeLastRedoAction();
        }
    }
}

void MatrixData::undo(QAction* action, QMenu* menu) { menuStep(action, menu, true); }
void MatrixData::redo(QAction* action, QMenu* menu) { menuStep(action, menu, false); }

} // namespace rkBase
