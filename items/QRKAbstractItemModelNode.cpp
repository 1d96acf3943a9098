#include "items/QRKAbstractItemModelNode.h"

#include "items/QRKAbstractItemModel.h"
#include "items/QRKAbstractSubject.h"

#include <QColor>

namespace rkBase {

namespace {

const QChar kObject(0xFFFC);
const QChar kReplacement(0xFFFD);

// Sorting compares names character by character, so plain ASCII skips Unicode's tables.
inline QChar fold(QChar c, Qt::CaseSensitivity cs)
{
    if (cs != Qt::CaseInsensitive)
        return c;
    const ushort u = c.unicode();
    if (u < 128)
        return QChar(u >= 'A' && u <= 'Z' ? u + 32 : u);
    return c.toLower();
}
inline bool isDigitChar(QChar c)
{
    const ushort u = c.unicode();
    return u < 128 ? (u >= '0' && u <= '9') : c.isDigit();
}
// U+FFFC and U+FFFD end every run so that the check for them at a run boundary sees them.
inline bool isSpecial(QChar c) { return c == kObject || c == kReplacement; }
inline bool isSeparator(QChar c)
{
    const ushort u = c.unicode();
    if (u < 128)
        return (u <= ' ' && (u == ' ' || (u >= 9 && u <= 13))) ||
               (u > ' ' && u < 127 && !((u >= '0' && u <= '9') || (u >= 'A' && u <= 'Z') || (u >= 'a' && u <= 'z')));
    return (c.isPunct() || c.isSpace() || c.isSymbol()) && !isSpecial(c);
}
inline bool isLetterLike(QChar c) { return !isDigitChar(c) && !isSeparator(c) && !isSpecial(c); }

// Next step of the tie-break chain once both values are missing; 0 ends it with "not less".
int chainWhenMissing(int field)
{
    switch (field) {
    case Field::SortSecond:
        return Field::Name;
    case Field::SortLast:
        return 0;
    case Field::SortFirst:
        return Field::SortSecond;
    case Field::Name:
        return Field::SortLast;
    default:
        return Field::Name;
    }
}

// Next step once both values are present and equal.
int chainWhenEqual(int field)
{
    if (field == Field::SortLast)
        return 0;
    return field == Field::Name ? Field::SortLast : Field::Name;
}

} // namespace

int naturalCompare(const QString& a, const QString& b, Qt::CaseSensitivity cs)
{
    if (a.constData() == b.constData() && a.size() == b.size())
        return 0;
    const int na = a.size(), nb = b.size();
    int i = 0, j = 0;
    while (i < na && j < nb) {
        const QChar ca = fold(a[i], cs), cb = fold(b[j], cs);
        // The same marker on both sides decides nothing; otherwise the side that has it sorts later.
        if (isSpecial(ca) && ca == cb) {
            ++i;
            ++j;
            continue;
        }
        if (ca == kObject)
            return 1;
        if (cb == kObject)
            return -1;
        if (ca == kReplacement)
            return 1;
        if (cb == kReplacement)
            return -1;

        // Runs of letters compare as text.
        int ei = i, ej = j;
        while (ei < na && isLetterLike(a[ei]))
            ++ei;
        while (ej < nb && isLetterLike(b[ej]))
            ++ej;
        if (ei > i || ej > j) {
            for (int k = 0; i + k < ei && j + k < ej; ++k) {
                const QChar x = fold(a[i + k], cs), y = fold(b[j + k], cs);
                if (x != y)
                    return x < y ? -1 : 1;
            }
            if (ei - i != ej - j)
                return (ei - i) < (ej - j) ? -1 : 1;
            i = ei;
            j = ej;
            continue;
        }
        // Punctuation and white space, character by character.
        if (isSeparator(a[i]) && isSeparator(b[j])) {
            while (i < na && j < nb && isSeparator(a[i]) && isSeparator(b[j])) {
                if (a[i] != b[j])
                    return a[i] < b[j] ? -1 : 1;
                ++i;
                ++j;
            }
            continue;
        }
        if (isDigitChar(a[i]) && isDigitChar(b[j])) {
            if (a[i] != QLatin1Char('0') && b[j] != QLatin1Char('0')) {
                int ri = i, rj = j;
                while (ri < na && isDigitChar(a[ri]))
                    ++ri;
                while (rj < nb && isDigitChar(b[rj]))
                    ++rj;
                if (ri - i != rj - j)
                    return (ri - i) < (rj - j) ? -1 : 1;
                for (; i < ri; ++i, ++j)
                    if (a[i] != b[j])
                        return a[i].digitValue() < b[j].digitValue() ? -1 : 1;
            } else {
                // A leading zero reads as a fraction: the first differing digit decides, and
                // the run that ends first is the smaller.
                while (i < na && j < nb && isDigitChar(a[i]) && isDigitChar(b[j])) {
                    if (a[i] != b[j])
                        return a[i].digitValue() < b[j].digitValue() ? -1 : 1;
                    ++i;
                    ++j;
                }
                const bool moreA = i < na && isDigitChar(a[i]), moreB = j < nb && isDigitChar(b[j]);
                if (moreA != moreB)
                    return moreA ? 1 : -1;
            }
            continue;
        }
        // Different kinds side by side (digit against punctuation): compare the characters, so
        // that every round consumes something.
        if (ca != cb)
            return ca < cb ? -1 : 1;
        ++i;
        ++j;
    }
    if (i >= na && j >= nb)
        return 0;
    return i >= na ? -1 : 1;
}

// ---------------------------------------------------------------------------------------------

QRKAbstractItemModelNode::QRKAbstractItemModelNode(QRKAbstractSubject* subject, QRKAbstractItemModelNode* parent,
                                                   QRKAbstractItemModel* model)
    : m_subject(subject), m_model(model)
{
    if (parent && parent->isCompound())
        static_cast<QRKAbstractItemModelCompoundNode*>(parent)->addChild(this);
    else
        m_parent = parent;
}

QRKAbstractItemModelNode::~QRKAbstractItemModelNode() { leaveSubject(); }

void QRKAbstractItemModelNode::leaveSubject()
{
    if (m_subject)
        m_subject->forgetNode(this);
    m_subject = nullptr;
}

QRKAbstractItemModel* QRKAbstractItemModelNode::model() const { return m_model.data(); }

QRKAbstractItemModelCompoundNode* QRKAbstractItemModelNode::compoundParent() const
{
    return m_parent && m_parent->isCompound() ? static_cast<QRKAbstractItemModelCompoundNode*>(m_parent) : nullptr;
}

void QRKAbstractItemModelNode::deleteIfOrphan()
{
    if (!m_parent && !m_subject)
        delete this;
}

void QRKAbstractItemModelNode::setSubject(QRKAbstractSubject* subject)
{
    m_subject = subject;
    deleteIfOrphan();
}

void QRKAbstractItemModelNode::setParent(QRKAbstractItemModelNode* parent)
{
    m_parent = parent;
    deleteIfOrphan();
}

Qt::ItemFlags QRKAbstractItemModelNode::flags(int field) const
{
    Qt::ItemFlags f = Qt::ItemIsSelectable | Qt::ItemIsDragEnabled | Qt::ItemIsEnabled;
    if (!m_subject || m_subject->isCheckable(field))
        f |= Qt::ItemIsUserCheckable;
    return f;
}

QVariant QRKAbstractItemModelNode::data(int field, int role) const
{
    return m_subject ? m_subject->data(field, role) : QVariant();
}

bool QRKAbstractItemModelNode::setData(int field, const QVariant& value, int role)
{
    return m_subject && m_subject->setData(field, value, role);
}

bool QRKAbstractItemModelNode::contextMenu(const QPoint& globalPos, QWidget* widget)
{
    return m_subject && m_subject->contextMenu(globalPos, this, widget);
}

bool QRKAbstractItemModelNode::doubleClick(QWidget* widget) { return m_subject && m_subject->doubleClick(widget); }
bool QRKAbstractItemModelNode::altClick(QWidget* widget) { return m_subject && m_subject->altClick(widget); }

void QRKAbstractItemModelNode::touch()
{
    if (m_model)
        m_model->touch(this);
}

bool QRKAbstractItemModelNode::lessThan(const QRKAbstractItemModelNode* other, int field) const
{
    if (!other)
        return false;
    int f = field;
    // The chain ends at -18 within a handful of steps; the bound only guards misuse.
    for (int step = 0; step < 8 && f != 0; ++step) {
        const QVariant a = data(f, Qt::DisplayRole);
        const QVariant b = other->data(f, Qt::DisplayRole);
        if (!a.isValid() || !b.isValid()) {
            if (a.isValid() != b.isValid())
                return !a.isValid();
            f = chainWhenMissing(f);
            continue;
        }
        switch (a.userType()) {
        case QMetaType::Int:
        case QMetaType::LongLong:
        case QMetaType::UInt:
            return a.toLongLong() < b.toLongLong();
        case QMetaType::ULongLong:
            return a.toULongLong() < b.toULongLong();
        case QMetaType::Double:
            if (f == Field::SortFirst && a.toDouble() == b.toDouble()) {
                f = Field::Name;
                continue;
            }
            return a.toDouble() < b.toDouble();
        case QMetaType::QString: {
            const int c = naturalCompare(a.toString(), b.toString(), Qt::CaseInsensitive);
            if (c != 0)
                return c < 0;
            break;
        }
        case QMetaType::QColor:
            return a.value<QColor>().rgb() < b.value<QColor>().rgb();
        default:
            break;
        }
        f = chainWhenEqual(f);
    }
    return false;
}

bool QRKAbstractItemModelNode::filterTable(QRKTableView*) { return false; }

// ---------------------------------------------------------------------------------------------

QRKAbstractItemModelCompoundNode::QRKAbstractItemModelCompoundNode(QRKAbstractSubject* subject,
                                                                   QRKAbstractItemModelNode* parent,
                                                                   QRKAbstractItemModel* model)
    : QRKAbstractItemModelNode(subject, parent, model)
{
    if (auto* compound = dynamic_cast<QRKAbstractCompoundSubject*>(subject))
        m_sortField = compound->sortField();
}

QRKAbstractItemModelCompoundNode::~QRKAbstractItemModelCompoundNode() { clearChildren(); }

void QRKAbstractItemModelCompoundNode::setSubject(QRKAbstractSubject* subject)
{
    if (auto* compound = dynamic_cast<QRKAbstractCompoundSubject*>(subject))
        m_sortField = compound->sortField();
    QRKAbstractItemModelNode::setSubject(subject);
}

Qt::ItemFlags QRKAbstractItemModelCompoundNode::flags(int field) const
{
    Qt::ItemFlags f = Qt::ItemIsDropEnabled;
    if (m_subject && m_subject->isCheckable(field))
        f |= Qt::ItemIsUserCheckable | Qt::ItemIsDragEnabled;
    if (!m_children.isEmpty())
        f |= Qt::ItemIsSelectable | Qt::ItemIsEnabled;
    return f;
}

QVariant QRKAbstractItemModelCompoundNode::data(int field, int role) const
{
    if (field == Field::CheckState)
        return checkState();
    QVariant v = QRKAbstractItemModelNode::data(field, role);
    if (role == Qt::DisplayRole && field == Field::Name && !m_children.isEmpty()) {
        const QString text = v.toString();
        if (!text.isEmpty())
            return text + QStringLiteral(" (%1)").arg(m_children.size());
    }
    return v;
}

int QRKAbstractItemModelCompoundNode::checkState() const
{
    QVariant result;
    for (const QRKAbstractItemModelNode* c : m_children) {
        if (!c->subject())
            continue;
        if (c->isCompound() && static_cast<const QRKAbstractItemModelCompoundNode*>(c)->childCount() == 0)
            continue;
        const QVariant v = c->data(Field::CheckState, Qt::DisplayRole);
        if (!v.isValid())
            continue;
        if (!result.isValid())
            result = v;
        else if (v != result)
            return Qt::PartiallyChecked;
    }
    return result.isValid() ? result.toInt() : 0;
}

int QRKAbstractItemModelNode::placeIn(const QList<QRKAbstractItemModelNode*>& list,
                                      const QRKAbstractItemModelNode* node)
{
    const int size = list.size();
    if (!node || size == 0)
        return -1;
    const int hint = node->m_place;
    if (hint >= 0 && hint < size && list.at(hint) == node)
        return hint;
    const int from = qBound(0, hint, size - 1);
    for (int d = 0; d <= 64; ++d) {
        if (from - d >= 0 && list.at(from - d) == node)
            return node->m_place = from - d;
        if (from + d < size && list.at(from + d) == node)
            return node->m_place = from + d;
    }
    for (int k = 0; k < size; ++k)
        list.at(k)->m_place = k;
    const int place = node->m_place;
    return place >= 0 && place < size && list.at(place) == node ? place : -1;
}

int QRKAbstractItemModelCompoundNode::childIndex(const QRKAbstractItemModelNode* node) const
{
    // A node has one parent, so anything else is absent without a search.
    if (!node || node->m_parent != this)
        return -1;
    return placeIn(m_children, node);
}

QRKAbstractItemModelNode* QRKAbstractItemModelCompoundNode::child(int i) const
{
    return i >= 0 && i < m_children.size() ? m_children.at(i) : nullptr;
}

QRKAbstractItemModelNode* QRKAbstractItemModelCompoundNode::childFromSubject(const QRKAbstractSubject* subject) const
{
    for (QRKAbstractItemModelNode* c : m_children)
        if (c->subject() == subject)
            return c;
    return nullptr;
}

bool QRKAbstractItemModelCompoundNode::hasAncestorOrSelf(const QRKAbstractItemModelNode* node) const
{
    for (const QRKAbstractItemModelNode* p = this; p; p = p->m_parent)
        if (p == node)
            return true;
    return false;
}

void QRKAbstractItemModelCompoundNode::addChild(QRKAbstractItemModelNode* child)
{
    if (!child || childIndex(child) >= 0 || hasAncestorOrSelf(child))
        return;
    child->m_place = m_children.size();
    m_children.append(child);
    child->m_parent = this;
}

void QRKAbstractItemModelCompoundNode::insertChild(QRKAbstractItemModelNode* child, int place)
{
    if (place < 0 || place >= m_children.size()) {
        addChild(child);
        return;
    }
    if (!child || childIndex(child) >= 0 || hasAncestorOrSelf(child))
        return;
    m_children.insert(place, child);
    child->m_place = place;
    child->m_parent = this;
}

void QRKAbstractItemModelCompoundNode::takeChild(int place)
{
    QRKAbstractItemModelNode* c = m_children.takeAt(place);
    c->m_parent = nullptr;
    c->m_place = -1;
}

void QRKAbstractItemModelCompoundNode::removeChild(QRKAbstractItemModelNode* child)
{
    const int place = childIndex(child);
    if (place < 0)
        return;
    takeChild(place);
    child->deleteIfOrphan();
}

void QRKAbstractItemModelCompoundNode::clearChildren()
{
    const QList<QRKAbstractItemModelNode*> children = m_children;
    m_children.clear();
    for (QRKAbstractItemModelNode* c : children) {
        c->m_parent = nullptr;
        c->deleteIfOrphan();
    }
}

bool QRKAbstractItemModelCompoundNode::includeInTable() const
{
    auto* compound = dynamic_cast<QRKAbstractCompoundSubject*>(m_subject);
    return compound && compound->includeInTable();
}

bool QRKAbstractItemModelCompoundNode::lessThan(int row1, int row2, int field) const
{
    if (field == Field::None)
        field = m_sortField;
    if (field == Field::None)
        return row1 < row2;
    const QRKAbstractItemModelNode* a = child(row1);
    const QRKAbstractItemModelNode* b = child(row2);
    return a && b && a->lessThan(b, field);
}

// ---------------------------------------------------------------------------------------------

QRKSimpleFolderNode::QRKSimpleFolderNode(QRKAbstractSubject* subject, QRKAbstractItemModelNode* parent,
                                         QRKAbstractItemModel* model)
    : QRKAbstractItemModelCompoundNode(subject, parent, model)
{
}

QRKSimpleFolderNode::QRKSimpleFolderNode(const QString& name, QRKAbstractItemModelNode* parent,
                                         QRKAbstractItemModel* model)
    : QRKAbstractItemModelCompoundNode(nullptr, parent, model)
{
    m_decorationFile = QStringLiteral(":/model/Resources/icon_folder.png");
    m_ownedFolder = new QRKSimpleFolder(name);
    m_ownedFolder->addNode(this);
    m_subject = m_ownedFolder;
    m_sortField = m_ownedFolder->sortField();
    if (m_model)
        m_model->touch(this);
    if (parent)
        if (auto* compound = dynamic_cast<QRKAbstractCompoundSubject*>(parent->subject())) {
            compound->addChild(m_ownedFolder);
            m_parentFolder = dynamic_cast<QRKSimpleFolder*>(compound);
        }
}

QRKSimpleFolderNode::~QRKSimpleFolderNode()
{
    if (!m_ownedFolder)
        return;
    QRKSimpleFolder* folder = m_ownedFolder;
    if (m_parentFolder)
        m_parentFolder->removeChild(folder);
    leaveSubject();
    delete folder;
}

void QRKSimpleFolderNode::setSubject(QRKAbstractSubject* subject)
{
    if (m_subject)
        return;
    QRKAbstractItemModelCompoundNode::setSubject(subject);
}

QVariant QRKSimpleFolderNode::data(int field, int role) const
{
    if (role == Qt::DecorationRole) {
        if (m_decoration.isNull() && !m_decorationFile.isEmpty())
            m_decoration = QIcon(m_decorationFile);
        if (!m_decoration.isNull())
            return m_decoration;
    }
    if (role == Qt::CheckStateRole) {
        auto* compound = dynamic_cast<QRKAbstractCompoundSubject*>(m_subject);
        if (compound && compound->isCheckable(Field::CheckState))
            return checkState();
        return QVariant();
    }
    return QRKAbstractItemModelCompoundNode::data(field, role);
}

void QRKSimpleFolderNode::addChild(QRKAbstractItemModelNode* child)
{
    const int before = m_children.size();
    QRKAbstractItemModelCompoundNode::addChild(child);
    if (m_children.size() != before)
        if (auto* compound = dynamic_cast<QRKAbstractCompoundSubject*>(m_subject))
            compound->addChild(child->subject());
}

void QRKSimpleFolderNode::insertChild(QRKAbstractItemModelNode* child, int place)
{
    const int before = m_children.size();
    QRKAbstractItemModelCompoundNode::insertChild(child, place);
    if (m_children.size() != before)
        if (auto* compound = dynamic_cast<QRKAbstractCompoundSubject*>(m_subject))
            compound->addChild(child->subject());
}

void QRKSimpleFolderNode::removeChild(QRKAbstractItemModelNode* child)
{
    if (childIndex(child) < 0)
        return;
    QRKAbstractSubject* childSubject = child->subject();
    QRKAbstractItemModelCompoundNode::removeChild(child);
    auto* compound = dynamic_cast<QRKAbstractCompoundSubject*>(m_subject);
    if (!compound || !childSubject)
        return;
    // Another node of the same subject may still be in this folder; the subject's own short list
    // of nodes says so without walking the folder.
    for (int i = 0; i < childSubject->nodeCount(); ++i)
        if (childSubject->node(i)->parent() == this)
            return;
    compound->removeChild(childSubject);
}

void QRKSimpleFolderNode::setName(const QString& name)
{
    if (auto* folder = dynamic_cast<QRKSimpleFolder*>(m_subject))
        folder->setName(name);
}

void QRKSimpleFolderNode::setCheckable(bool checkable)
{
    if (auto* folder = dynamic_cast<QRKSimpleFolder*>(m_subject))
        folder->setCheckable(checkable);
}

} // namespace rkBase
