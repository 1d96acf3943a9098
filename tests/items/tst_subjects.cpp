// Subjects, nodes and their ownership; the natural order and the sort tie-break chain.
#include "itemtestsubjects.h"

#include "items/QRKAbstractItemModelNode.h"
#include "items/QRKObjectTypesTreeItemModel.h"

#include <QRandomGenerator>
#include <QtTest>

using namespace rkBase;

namespace {

// Reference natural order written independently of the library: split into tokens first, then
// compare token lists.
struct Token {
    enum Kind { Letters, Sep, Digits, Special } kind;
    QString text;
};

QList<Token> tokens(const QString& s)
{
    QList<Token> out;
    for (int i = 0; i < s.size();) {
        const QChar c = s[i];
        if (c == QChar(0xFFFC) || c == QChar(0xFFFD)) {
            out.append({Token::Special, QString(c)});
            ++i;
        } else if (c.isDigit()) {
            int j = i;
            while (j < s.size() && s[j].isDigit())
                ++j;
            out.append({Token::Digits, s.mid(i, j - i)});
            i = j;
        } else if (c.isPunct() || c.isSpace() || c.isSymbol()) {
            out.append({Token::Sep, QString(c)});
            ++i;
        } else {
            int j = i;
            while (j < s.size() && !s[j].isDigit() && !s[j].isPunct() && !s[j].isSpace() && !s[j].isSymbol() &&
                   s[j] != QChar(0xFFFC) && s[j] != QChar(0xFFFD))
                ++j;
            out.append({Token::Letters, s.mid(i, j - i).toLower()});
            i = j;
        }
    }
    return out;
}

int sign(int v) { return (v > 0) - (v < 0); }

int referenceCompare(const QString& a, const QString& b)
{
    const QList<Token> x = tokens(a), y = tokens(b);
    for (int k = 0; k < x.size() && k < y.size(); ++k) {
        const Token& p = x[k];
        const Token& q = y[k];
        if (p.kind == Token::Special && q.kind == Token::Special && p.text == q.text)
            continue;
        for (ushort special : {0xFFFC, 0xFFFD}) {
            if (p.kind == Token::Special && p.text[0].unicode() == special)
                return 1;
            if (q.kind == Token::Special && q.text[0].unicode() == special)
                return -1;
        }
        if (p.kind == Token::Letters || q.kind == Token::Letters) {
            // A missing letter run is the empty text.
            const QString l = p.kind == Token::Letters ? p.text : QString();
            const QString r = q.kind == Token::Letters ? q.text : QString();
            if (l != r)
                return sign(QString::compare(l, r));
            if (p.kind != q.kind)
                return p.kind == Token::Letters ? 1 : -1;
            continue;
        }
        if (p.kind == Token::Digits && q.kind == Token::Digits) {
            const bool fraction = p.text.startsWith('0') || q.text.startsWith('0');
            if (!fraction && p.text.size() != q.text.size())
                return p.text.size() < q.text.size() ? -1 : 1;
            if (p.text != q.text)
                return sign(QString::compare(p.text, q.text));
            continue;
        }
        if (p.text[0] != q.text[0])
            return p.text[0] < q.text[0] ? -1 : 1;
        if (p.kind != q.kind)
            return 0; // unreachable: same first character means same kind
        if (p.text != q.text)
            return sign(QString::compare(p.text, q.text));
    }
    return sign(x.size() - y.size());
}

} // namespace

class TestSubjects : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { QLocale::setDefault(QLocale::c()); }

    void compoundState_data();
    void compoundState();
    void leafSubjectsDepthFirst();
    void compoundRefusesCycles();
    void simpleSubjectRoles();
    void folderSelection();
    void touchReachesEveryModel();
    void nodeOwnership();
    void clearNodesTerminatesForDetachedNodes();
    void copiedSubjectLeavesOriginalsAlone();
    void childOfNode();
    void naturalOrder_data();
    void naturalOrder();
    void naturalOrderAgainstReference();
    void tieBreakChain_data();
    void tieBreakChain();
    void compoundRowOrder();
};

void TestSubjects::compoundState_data()
{
    QTest::addColumn<QList<int>>("states");
    QTest::addColumn<int>("expected");
    QTest::addColumn<bool>("selected");
    QTest::newRow("no children") << QList<int>{} << 0 << false;
    QTest::newRow("all checked") << QList<int>{2, 2} << 2 << true;
    QTest::newRow("mixed") << QList<int>{2, 0} << 1 << true;
    QTest::newRow("all unchecked") << QList<int>{0, 0, 0} << 0 << true;
}

void TestSubjects::compoundState()
{
    QFETCH(QList<int>, states);
    QFETCH(int, expected);
    QFETCH(bool, selected);
    Group g(QStringLiteral("g"));
    QList<Obj*> objs;
    for (int s : states) {
        objs << new Obj(QStringLiteral("o"), Qt::CheckState(s));
        objs.last()->setSelected(true);
        g.addChild(objs.last());
    }
    QCOMPARE(g.state(), expected);
    QCOMPARE(g.isSelected(), selected);
    // Only the check state in the check-state role is passed down; an edit of the name is refused.
    QVERIFY(!g.setData(Field::Name, QStringLiteral("x"), Qt::EditRole));
    QVERIFY(g.setData(Field::CheckState, int(Qt::Checked), Qt::CheckStateRole));
    for (Obj* o : objs)
        QCOMPARE(o->checkStateValue(), int(Qt::Checked));
    qDeleteAll(objs);
}

void TestSubjects::leafSubjectsDepthFirst()
{
    Obj a(QStringLiteral("a")), b(QStringLiteral("b")), c(QStringLiteral("c"));
    Group top(QStringLiteral("top")), inner(QStringLiteral("inner")), shown(QStringLiteral("shown"), true);
    inner.addChild(&b);
    shown.addChild(&c);
    top.addChild(&a);
    top.addChild(&inner);
    top.addChild(&shown);
    const QList<QRKAbstractSubject*> expected{&a, &b, &shown, &c};
    QCOMPARE(top.leafSubjects(), expected);
}

void TestSubjects::compoundRefusesCycles()
{
    Group a(QStringLiteral("a")), b(QStringLiteral("b")), c(QStringLiteral("c"));
    a.addChild(&b);
    b.addChild(&c);
    c.addChild(&a); // would close a cycle
    a.addChild(&a);
    QCOMPARE(c.childCount(), 0);
    QCOMPARE(a.childCount(), 1);
    QCOMPARE(a.leafSubjects().size(), 0); // terminates
    // Shared children (a diamond) stay allowed.
    Obj o(QStringLiteral("o"));
    b.addChild(&o);
    c.addChild(&o);
    QCOMPARE(a.leafSubjects().size(), 2);
}

void TestSubjects::simpleSubjectRoles()
{
    QRKSimpleSubject s(QStringLiteral("Top Chalk"), Qt::blue, Qt::Unchecked);
    QCOMPARE(s.data(Field::Name, Qt::DisplayRole).toString(), QStringLiteral("Top Chalk"));
    QCOMPARE(s.data(Field::Colour, Qt::DisplayRole).value<QColor>(), QColor(Qt::blue));
    QCOMPARE(s.data(Field::CheckState, Qt::DisplayRole).toInt(), int(Qt::Unchecked));
    QCOMPARE(s.data(Field::Name, Qt::DecorationRole).value<QColor>(), QColor(Qt::blue));
    QCOMPARE(s.data(Field::Colour, Qt::DecorationRole).value<QColor>(), QColor(Qt::blue));
    QCOMPARE(s.data(Field::Name, Qt::CheckStateRole).toInt(), int(Qt::Unchecked));
    QVERIFY(!s.data(Field::Name, Qt::ToolTipRole).isValid());
    QVERIFY(!s.data(7, Qt::DisplayRole).isValid());
    QVERIFY(!s.setData(Field::Name, QStringLiteral("x"), Qt::EditRole));
}

void TestSubjects::folderSelection()
{
    Obj a(QStringLiteral("a")), b(QStringLiteral("b"));
    QRKSimpleFolder f(QStringLiteral("F"));
    f.addChild(&a);
    f.addChild(&b);
    f.setCheckable(false);
    f.setSelected(true);
    QVERIFY(!a.isSelected() && !b.isSelected());
    QVERIFY(!f.isSelected());
    QVERIFY(!f.data(Field::CheckState, Qt::CheckStateRole).isValid());
    f.setCheckable(true);
    f.setSelected(true);
    QVERIFY(a.isSelected() && b.isSelected() && f.isSelected());
    a.setCheckStateValue(Qt::Unchecked);
    QCOMPARE(f.data(Field::CheckState, Qt::CheckStateRole).toInt(), int(Qt::PartiallyChecked));
    QCOMPARE(f.data(Field::Name, Qt::DisplayRole).toString(), QStringLiteral("F"));
    QVERIFY(f.data(Field::Name, Qt::DecorationRole).canConvert<QIcon>());
}

void TestSubjects::touchReachesEveryModel()
{
    QRKObjectTypesTreeItemModel m1, m2;
    m1.restart();
    m2.restart();
    Obj o(QStringLiteral("pin"));
    m1.addPin(&o);
    m2.addFault(&o);
    QCOMPARE(o.nodeCount(), 2);
    QSignalSpy s1(&m1, &QAbstractItemModel::dataChanged), s2(&m2, &QAbstractItemModel::dataChanged);
    o.touch();
    QCOMPARE(s1.count(), 1);
    QCOMPARE(s2.count(), 1);
    QCOMPARE(o.node(&m2)->model(), &m2);
    QVERIFY(!o.node(5));
}

void TestSubjects::nodeOwnership()
{
    Obj o(QStringLiteral("o"));
    auto* parent = new QRKAbstractItemModelCompoundNode(nullptr, nullptr, nullptr);
    auto* withSubject = new QRKAbstractItemModelNode(&o, parent, nullptr);
    o.addNode(withSubject);
    auto* bare = new QRKAbstractItemModelNode(nullptr, parent, nullptr);
    QCOMPARE(parent->childCount(), 2);
    QCOMPARE(withSubject->parent(), parent);
    parent->removeChild(withSubject); // survives: its subject holds it
    QCOMPARE(o.nodeCount(), 1);
    QVERIFY(!withSubject->parent());
    parent->removeChild(bare); // deleted (ASan proves it is not leaked)
    QCOMPARE(parent->childCount(), 0);
    o.removeNode(withSubject); // neither parent nor subject: gone
    QCOMPARE(o.nodeCount(), 0);
    // A node cannot become its own ancestor.
    auto* child = new QRKAbstractItemModelCompoundNode(nullptr, parent, nullptr);
    child->addChild(parent);
    QCOMPARE(child->childCount(), 0);
    delete parent; // takes the subject-less child with it
}

void TestSubjects::clearNodesTerminatesForDetachedNodes()
{
    QRKObjectTypesTreeItemModel model;
    model.restart();
    Obj o(QStringLiteral("o"));
    o.createTreeNode(&model);  // made but never placed: no model can remove it
    o.createTreeNode(nullptr); // no model at all
    model.addPin(&o);
    QCOMPARE(o.nodeCount(), 3);
    o.clearNodes();
    QCOMPARE(o.nodeCount(), 0);
    QCOMPARE(model.rowCount(), 0); // the emptied folder went with the pin
}

void TestSubjects::copiedSubjectLeavesOriginalsAlone()
{
    QRKObjectTypesTreeItemModel model;
    model.restart();
    Obj original(QStringLiteral("o"));
    model.addPin(&original);
    {
        Obj copy(original);
        QCOMPARE(copy.nodeCount(), 1);
        copy.clearNodes(); // the shared entry points at the original: dropped, not removed
        QCOMPARE(copy.nodeCount(), 0);
    }
    QCOMPARE(original.nodeCount(), 1);
    QCOMPARE(model.rowCount(model.index(0, 0)), 1);
}

void TestSubjects::childOfNode()
{
    QRKObjectTypesTreeItemModel model;
    model.restart();
    Group fault(QStringLiteral("fault"));
    Obj block(QStringLiteral("block")), other(QStringLiteral("other"));
    auto* faultNode = static_cast<QRKAbstractItemModelCompoundNode*>(model.addFault(&fault));
    QRKAbstractItemModelNode* blockNode = block.createTreeNode(&model);
    model.addNode(blockNode, faultNode);
    model.addPin(&other);
    QCOMPARE(block.childOfNode(faultNode), blockNode);
    QCOMPARE(block.childOfNode(model.faultFolder()), blockNode);
    QVERIFY(!other.childOfNode(faultNode));
    QVERIFY(!fault.childOfNode(faultNode));
}

void TestSubjects::naturalOrder_data()
{
    QTest::addColumn<QString>("a");
    QTest::addColumn<QString>("b");
    QTest::addColumn<int>("expected");
    QTest::newRow("numbers by value") << "item2"
                                      << "item10" << -1;
    QTest::newRow("case folded") << "Item2"
                                 << "item2" << 0;
    QTest::newRow("fraction digits") << "x01"
                                     << "x012" << -1;
    QTest::newRow("fraction first digit") << "x09"
                                          << "x1" << -1;
    QTest::newRow("zero run against number") << "a05"
                                             << "a4" << -1;
    QTest::newRow("same length numbers") << "w123"
                                         << "w124" << -1;
    QTest::newRow("prefix first") << "well"
                                  << "well 1" << -1;
    QTest::newRow("punctuation") << "a-b"
                                 << "a_b" << -1;
    QTest::newRow("letters before longer letters") << "ab1"
                                                   << "abc1" << -1;
    QTest::newRow("object replacement last") << QString(QChar(0xFFFC)) << "zzz" << 1;
    QTest::newRow("replacement char last") << "a" + QString(QChar(0xFFFD)) << "a1" << 1;
    QTest::newRow("FFFC before FFFD decides") << "a" + QString(QChar(0xFFFC)) << "a" + QString(QChar(0xFFFD)) << 1;
    QTest::newRow("empty first") << ""
                                 << "a" << -1;
    QTest::newRow("signs are punctuation") << "-5"
                                           << "+5" << 1;
}

void TestSubjects::naturalOrder()
{
    QFETCH(QString, a);
    QFETCH(QString, b);
    QFETCH(int, expected);
    QCOMPARE(sign(naturalCompare(a, b)), expected);
    QCOMPARE(sign(naturalCompare(b, a)), -expected);
    QCOMPARE(referenceCompare(a, b), expected);
}

void TestSubjects::naturalOrderAgainstReference()
{
    QRandomGenerator rng(20261124);
    const QString alphabet = QStringLiteral("aAbZz0012399 -+._/") + QChar(0xFFFC) + QChar(0xFFFD);
    auto randomText = [&] {
        QString s;
        const int n = rng.bounded(9);
        for (int i = 0; i < n; ++i)
            s += alphabet[rng.bounded(alphabet.size())];
        return s;
    };
    for (int k = 0; k < 20000; ++k) {
        const QString a = randomText(), b = randomText();
        const int got = sign(naturalCompare(a, b));
        if (got != referenceCompare(a, b))
            QFAIL(qPrintable(QStringLiteral("'%1' vs '%2': %3").arg(a, b).arg(got)));
        QCOMPARE(sign(naturalCompare(b, a)), -got); // antisymmetric
        QCOMPARE(naturalCompare(a, a), 0);
    }
}

void TestSubjects::tieBreakChain_data()
{
    using Fields = QHash<int, QVariant>;
    QTest::addColumn<Fields>("left");
    QTest::addColumn<Fields>("right");
    QTest::addColumn<int>("field");
    QTest::addColumn<bool>("less");
    QTest::addColumn<bool>("greater");
    const int k13 = Field::SortFirst, k18 = Field::SortLast, k19 = Field::SortSecond;
    // Names are "a" (left) and "b" (right) unless the fields say otherwise.
    QTest::newRow("missing value sorts first") << Fields{} << Fields{{7, 1}} << 7 << true << false;
    QTest::newRow("both missing: names") << Fields{} << Fields{} << 7 << true << false;
    QTest::newRow("ints") << Fields{{7, 5}} << Fields{{7, -3}} << 7 << false << true;
    QTest::newRow("equal ints end") << Fields{{7, 5}} << Fields{{7, 5}} << 7 << false << false;
    QTest::newRow("unsigned 64") << Fields{{7, QVariant::fromValue<qulonglong>(1ull << 63)}}
                                 << Fields{{7, QVariant::fromValue<qulonglong>(1)}} << 7 << false << true;
    QTest::newRow("doubles") << Fields{{7, 1.5}} << Fields{{7, 2.5}} << 7 << true << false;
    QTest::newRow("-13 equal doubles go to names") << Fields{{k13, 1.0}} << Fields{{k13, 1.0}} << k13 << true << false;
    QTest::newRow("-13 missing goes to -19") << Fields{{k19, 9}} << Fields{{k19, 1}} << k13 << false << true;
    QTest::newRow("-19 missing goes to names") << Fields{} << Fields{} << k19 << true << false;
    QTest::newRow("equal strings go to names") << Fields{{7, "x"}} << Fields{{7, "X"}} << 7 << true << false;
    QTest::newRow("equal names go to -18")
        << Fields{{Field::Name, "n"}, {k18, 2}} << Fields{{Field::Name, "N"}, {k18, 1}} << 7 << false << true;
    QTest::newRow("-18 missing ends") << Fields{{Field::Name, "n"}} << Fields{{Field::Name, "n"}} << k18 << false
                                      << false;
    QTest::newRow("colours by rgb") << Fields{{7, QColor(1, 0, 0)}} << Fields{{7, QColor(0, 0, 1)}} << 7 << false
                                    << true;
    QTest::newRow("natural strings") << Fields{{7, "item2"}} << Fields{{7, "item10"}} << 7 << true << false;
}

void TestSubjects::tieBreakChain()
{
    using Fields = QHash<int, QVariant>;
    QFETCH(Fields, left);
    QFETCH(Fields, right);
    QFETCH(int, field);
    QFETCH(bool, less);
    QFETCH(bool, greater);
    Obj a(QStringLiteral("a")), b(QStringLiteral("b"));
    a.fields = left;
    b.fields = right;
    QRKAbstractItemModelNode na(&a, nullptr, nullptr), nb(&b, nullptr, nullptr);
    QCOMPARE(na.lessThan(&nb, field), less);
    QCOMPARE(nb.lessThan(&na, field), greater);
    QVERIFY(!na.lessThan(&na, field)); // irreflexive
}

void TestSubjects::compoundRowOrder()
{
    Obj a(QStringLiteral("b")), b(QStringLiteral("a"));
    QRKAbstractItemModelCompoundNode parent(nullptr, nullptr, nullptr);
    QRKAbstractItemModelNode* na = a.createTreeNode(nullptr);
    QRKAbstractItemModelNode* nb = b.createTreeNode(nullptr);
    parent.addChild(na);
    parent.addChild(nb);
    QVERIFY(parent.lessThan(1, 0, Field::None)); // sort field -2: by name
    parent.setSortField(Field::None);
    QVERIFY(parent.lessThan(0, 1, Field::None)); // insertion order
    QVERIFY(!parent.lessThan(0, 5, Field::Name));
    parent.clearChildren();
    a.clearNodes();
    b.clearNodes();
}

QTEST_MAIN(TestSubjects)
#include "tst_subjects.moc"
