// Table files (a header block and one field per column), the binary form of one column for
// drag and drop, and the clipboard's HTML table.
#include "frame/AbstractProgress.h"
#include "matrix/MatrixData.h"
#include "units/UnitManager.h"
#include "units/UnitRegistry.h"

#include <QApplication>
#include <QDataStream>
#include <QFile>
#include <QFileInfo>
#include <QMessageBox>
#include <QMimeData>
#include <QTextStream>

#include <charconv>
#include <cmath>
#include <cstring>
#include <string_view>
#include <vector>

namespace rkBase {

namespace {

const char kWriteTitle[] = "Save As CSV";
const char kNotWritable[] = "The specified file is not writable.";

// One line of the file: `field` writes the field of a leaf; separators as the layout has them.
template <class Field> void writeLine(QTextStream& out, const MatrixData& root, Field field)
{
    const QList<MatrixData*>& groups = root.children();
    for (int g = 0; g < groups.size(); ++g) {
        const QList<MatrixData*>& leaves = groups.at(g)->children();
        for (int l = 0; l < leaves.size(); ++l) {
            MatrixData* leaf = leaves.at(l);
            if (leaf->validValueRowCount() == UNDEFINED_VALUE || !leaf->isSelected())
                continue;
            field(groups.at(g), leaf);
            if (l != leaves.size() - 1)
                out << ',';
        }
        if (g != groups.size() - 1)
            out << ',';
    }
    out << '\n';
}

bool isNumber(const QStringRef& text, double& v)
{
    bool ok = false;
    v = text.toDouble(&ok);
    return ok && std::isfinite(v);
}

} // namespace

QString MatrixData::csvFileIdentifier() { return QStringLiteral("Ardmuir Fenton,4DTesk2.0 v1.0"); }

QString MatrixData::csvFileTableSeparator() { return QStringLiteral("Ardmuir Fenton,4DTesk2.0 v1.0,New Table"); }

QString MatrixData::colorHexaString() const { return m_color.name(QColor::HexRgb); }

QColor MatrixData::colorFromHexaString(QString const& text)
{
    const QString t = text.trimmed();
    if (t.size() != 7 || !t.startsWith(QLatin1Char('#')))
        return QColor();
    return QColor(t);
}

// --- writing ---------------------------------------------------------------------------------

void MatrixData::writeCSVHeaderData(QString const& label, QTextStream& out)
{
    if (label == QLatin1String("SystemType"))
        out << systemType();
    else if (label == QLatin1String("AttributeName"))
        out << name();
    else if (label == QLatin1String("AttributeColor"))
        out << colorHexaString();
    else if (label == QLatin1String("DisplayUnit"))
        out << (m_unitManager ? m_unitManager->getDisplayUnitName() : QString());
    else if (label == QLatin1String("UnitCategory"))
        out << QString::fromStdString(unitCategory());
}

void MatrixData::putDataOnStream(int row, QTextStream& out, bool raw)
{
    if (row >= m_rowCount)
        return;
    const QVariant v = value(row, 0);
    if (v.isNull() || v.toString().isEmpty())
        return;
    switch (int(m_cellType)) {
    case QVariant::Double:
        out << (raw ? v.toDouble() : convertModelToDisplay(v.toDouble()));
        break;
    case QVariant::Int:
    case QVariant::Icon:
        out << v.toInt();
        break;
    case QVariant::String:
        out << v.toString().replace(QLatin1Char(','), QLatin1Char(' '));
        break;
    case QVariant::Color:
        out << v.toString();
        break;
    case QVariant::Bool:
        out << (v.toBool() ? "1" : "0");
        break;
    default:
        out << v.toString();
        break;
    }
}

void MatrixData::putMinMaxMeanDataOnStream(QTextStream& out, int which)
{
    const QVariant v = which == 0 ? minValue() : which == 1 ? meanValue() : maxValue();
    if (v.isNull() || v.toString().isEmpty())
        return;
    if (m_cellType == QVariant::Double)
        out << convertModelToDisplay(v.toDouble());
    else
        out << v.toString();
}

bool MatrixData::writeCSV(QString const& file, bool* ok, bool raw, bool append, bool statistics, bool checkRows,
                          QWidget* parent, AbstractProgress* progress, QString* errorText)
{
    if (ok)
        *ok = false;
    if (!append && QFile::exists(file))
        QFile::remove(file);
    QFile f(file);
    if (!f.open(QIODevice::WriteOnly | QIODevice::Text | (append ? QIODevice::Append : QIODevice::Truncate))) {
        const QString text = QString::fromLatin1(kNotWritable);
        if (errorText)
            *errorText = text;
        // A command-line caller has no one to show a box to: it gets the result and the text.
        if (parent || qobject_cast<QApplication*>(QCoreApplication::instance()))
            QMessageBox::warning(parent, QString::fromLatin1(kWriteTitle), text);
        return false;
    }
    if (checkRows)
        checkValidRowCount();
    QTextStream out(&f);
    out.setCodec("UTF-8");
    out.setRealNumberNotation(QTextStream::FixedNotation);
    if (append && f.size() > 0)
        out << '\n' << csvFileIdentifier() << ',' << csvFileTableSeparator() << '\n';
    else
        out << csvFileIdentifier() << '\n';

    writeLine(out, *this, [&](MatrixData* group, MatrixData*) {
        out << QString(group->name()).replace(QLatin1Char(','), QLatin1Char(' '));
    });
    for (const char* label : {"SystemType", "AttributeName", "AttributeColor", "DisplayUnit", "UnitCategory"})
        writeLine(out, *this, [&](MatrixData*, MatrixData* leaf) { leaf->writeCSVHeaderData(QLatin1String(label), out); });
    if (statistics)
        for (int which = 0; which < 3; ++which)
            writeLine(out, *this, [&](MatrixData*, MatrixData* leaf) { leaf->putMinMaxMeanDataOnStream(out, which); });
    const int rows = maxBaseCount(false);
    if (progress)
        progress->start_progress(true);
    for (int r = 0; r < rows; ++r) {
        writeLine(out, *this, [&](MatrixData*, MatrixData* leaf) { leaf->putDataOnStream(r, out, raw); });
        if (progress && (r % 4096 == 0) && progress->set_progress(int(qint64(r) * 100 / rows)))
            break;
    }
    if (progress)
        progress->finish_progress();
    out.flush();
    const bool written = out.status() == QTextStream::Ok && f.error() == QFileDevice::NoError;
    if (!written && errorText)
        *errorText = f.errorString();
    if (ok)
        *ok = written;
    return written;
}

// --- reading ---------------------------------------------------------------------------------

bool MatrixData::readCSV(QString const& file, int table, AbstractProgress* progress)
{
    QFile f(file);
    if (!f.open(QIODevice::ReadOnly))
        return false;
    const QByteArray bytes = f.readAll();
    f.close();
    // The file stays in its bytes: only the few header lines become text, and numbers are read
    // straight from the bytes. Empty lines are kept: in a one-column table an empty line is a
    // blank cell, or an empty unit or category row of the header, and dropping it would shift
    // every row after it. Only the empty lines that close the file, or a table before a
    // separator, are dropped.
    const char* data = bytes.constData();
    struct Span {
        int start, length;
    };
    std::vector<Span> lines;
    lines.reserve(size_t(bytes.count('\n')) + 1);
    for (int start = 0; start < bytes.size();) {
        const char* nl = static_cast<const char*>(std::memchr(data + start, '\n', size_t(bytes.size() - start)));
        const int end = nl ? int(nl - data) : bytes.size();
        int length = end - start;
        if (length > 0 && data[start + length - 1] == '\r')
            --length;
        lines.push_back({start, length});
        start = end + 1;
    }
    while (!lines.empty() && lines.back().length == 0)
        lines.pop_back();
    const auto view = [&](size_t i) { return std::string_view(data + lines[i].start, size_t(lines[i].length)); };
    const auto text = [&](size_t i) { return QString::fromUtf8(data + lines[i].start, lines[i].length); };
    const QByteArray separatorBytes = csvFileTableSeparator().toUtf8(), identifierBytes = csvFileIdentifier().toUtf8();
    const std::string_view separator(separatorBytes.constData(), size_t(separatorBytes.size()));
    const std::string_view identifier(identifierBytes.constData(), size_t(identifierBytes.size()));
    const auto holds = [&](size_t i, std::string_view what) { return view(i).find(what) != std::string_view::npos; };

    size_t s = 0;
    if (table > 0) {
        // Table n is found by stepping over n separators; without separators the identifier
        // line (or the bare maker's line) starts the only table.
        int seen = 0;
        bool found = false;
        for (size_t i = 0; i < lines.size() && !found; ++i)
            if (holds(i, separator) && ++seen == table) {
                s = i;
                found = true;
            }
        for (size_t i = 0; i < lines.size() && !found; ++i)
            if (view(i) == identifier || view(i) == std::string_view("Ardmuir Fenton")) {
                s = i;
                found = true;
            }
        if (!found)
            return false;
    }
    for (size_t i = s + 1; i < lines.size(); ++i)
        if (holds(i, separator)) {
            lines.resize(i);
            while (lines.size() > s + 1 && lines.back().length == 0)
                lines.pop_back();
            break;
        }
    if (lines.empty())
        return false;
    if (!holds(0, "Ardmuir Fenton") && !holds(0, "RKETesk 2014.1"))
        return readCSV_withNoHeader(file);
    if (lines.size() <= s + 4)
        return false;

    removeEmptyGroups();
    const QStringList groups = text(s + 1).split(QLatin1Char(','));
    const QStringList types = text(s + 2).split(QLatin1Char(','));
    const QStringList names = text(s + 3).split(QLatin1Char(','));
    const QStringList colours = text(s + 4).split(QLatin1Char(','));
    QStringList units, categories;
    size_t first = 5;
    if (holds(0, "4DTesk2.0 v1.0") || holds(0, "RKETesk 2014.1")) {
        if (lines.size() <= s + 6)
            return false;
        units = text(s + 5).split(QLatin1Char(','));
        categories = text(s + 6).split(QLatin1Char(','));
        first = s + 7;
    }
    if (groups.size() != names.size() || names.size() != types.size())
        return false;

    const int columns = names.size();
    const int rows = lines.size() > first ? int(lines.size() - first) : 0;
    QVector<MatrixData*> leaves(columns, nullptr);
    QVector<UnitManager*> converters(columns, nullptr);
    QVector<int> unitKeys(columns, -1);
    for (int c = 0; c < columns; ++c) {
        MatrixData* group = getContainerFromName(groups[c]);
        if (!group) {
            group = new MatrixData(groups[c], 0, 1, QVariant::Double, false);
            appendChild(group, false);
        }
        // The counts only: absent cells read as blanks, so only the fields that hold something
        // are stored.
        auto* leaf = new MatrixData(names[c], rows, 1, systemType(types[c]), false);
        leaf->m_cells.reserve(rows);
        leaf->setRegistry(m_registry);
        if (c < colours.size()) {
            const QColor colour = colorFromHexaString(colours[c]);
            if (colour.isValid())
                leaf->setColor(colour);
        }
        const QString category = c < categories.size() ? categories[c] : QString();
        if (!category.isEmpty() && m_registry) {
            leaf->setUnitManager(m_registry->getCategory(category));
            if (leaf->unitManager() && c < units.size())
                leaf->setNodeUnitKey(leaf->unitManager()->getUnitKey(units[c]));
        }
        if (leaf->unitManager() && leaf->nodeUnitKey() != -1)
            converters[c] = leaf->unitManager().get();
        unitKeys[c] = leaf->nodeUnitKey();
        group->appendChild(leaf, false);
        leaves[c] = leaf;
    }
    if (progress)
        progress->start_progress(true);
    for (size_t i = first; i < lines.size(); ++i) {
        const int row = int(i - first);
        const char* p = data + lines[i].start;
        const char* const end = p + lines[i].length;
        for (int c = 0; c < columns; ++c) {
            const char* comma = static_cast<const char*>(std::memchr(p, ',', size_t(end - p)));
            const char* fieldEnd = comma ? comma : end;
            MatrixData* leaf = leaves[c];
            if (fieldEnd != p) {
                double v = 0;
                const char* a = p;
                const char* z = fieldEnd;
                while (a < z && (*a == ' ' || *a == '\t'))
                    ++a;
                while (z > a && (z[-1] == ' ' || z[-1] == '\t'))
                    --z;
                const std::from_chars_result parsed =
                    leaf->m_cellType == QVariant::Double && a < z && *a != '+' ? std::from_chars(a, z, v)
                                                                               : std::from_chars_result{a, std::errc::invalid_argument};
                if (parsed.ec == std::errc() && parsed.ptr == z) {
                    if (converters[c])
                        v = converters[c]->convert(v, unitKeys[c], converters[c]->modelUnit());
                    leaf->m_cells.insert(row, v);
                } else {
                    // Anything but a plain number goes the typed way, with its rules for text.
                    leaf->insertValueTypeDependend(row, QString::fromUtf8(p, int(fieldEnd - p)));
                }
            }
            if (!comma)
                break;
            p = comma + 1;
        }
        if (progress && (row % 16384 == 0) && progress->set_progress(int(qint64(row) * 100 / qMax(1, rows))))
            break;
    }
    if (progress)
        progress->finish_progress();
    for (MatrixData* leaf : leaves) {
        leaf->checkValidRowCount();
        leaf->setMinMax(0, boost::dynamic_bitset<>());
    }
    return true;
}

bool MatrixData::readCSV_withNoHeader(QString const& file)
{
    QFile f(file);
    if (!f.open(QIODevice::ReadOnly))
        return false;
    const QString text = QString::fromUtf8(f.readAll());
    QVector<QStringRef> lines = text.splitRef(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (QStringRef& l : lines)
        if (l.endsWith(QLatin1Char('\r')))
            l.chop(1);
    if (lines.isEmpty())
        return false;
    const QVector<QStringRef> names = lines.first().split(QLatin1Char(','));
    const int columns = names.size();
    const int rows = lines.size() - 1;
    // A column is numeric when every non-empty field of it reads as a number.
    QVector<bool> numeric(columns, true);
    for (int i = 1; i < lines.size(); ++i) {
        const QVector<QStringRef> fields = lines[i].split(QLatin1Char(','));
        for (int c = 0; c < columns && c < fields.size(); ++c) {
            double v = 0;
            const QStringRef field = fields[c].trimmed();
            if (numeric[c] && !field.isEmpty() && !isNumber(field, v))
                numeric[c] = false;
        }
    }
    auto* group = new MatrixData(QFileInfo(file).completeBaseName(), 0, 1, QVariant::Double, false);
    appendChild(group, false);
    QVector<MatrixData*> leaves;
    for (int c = 0; c < columns; ++c) {
        QString name = names[c].trimmed().toString();
        if (name.isEmpty())
            name = QStringLiteral("Column %1").arg(c + 1);
        auto* leaf = new MatrixData(name, rows, 1, numeric[c] ? QVariant::Double : QVariant::String, true);
        leaf->setRegistry(m_registry);
        group->appendChild(leaf, false);
        leaves.append(leaf);
    }
    for (int i = 1; i < lines.size(); ++i) {
        const QVector<QStringRef> fields = lines[i].split(QLatin1Char(','));
        for (int c = 0; c < columns && c < fields.size(); ++c)
            leaves[c]->insertValueTypeDependend(i - 1, fields[c].trimmed().toString());
    }
    for (MatrixData* leaf : leaves) {
        leaf->checkValidRowCount();
        leaf->setMinMax(0, boost::dynamic_bitset<>());
    }
    return true;
}

// --- binary form of one column -------------------------------------------------------------------

void MatrixData::putDataOnStream(QDataStream& stream, bool raw)
{
    stream << rowCount() << int(m_cellType) << name();
    for (int r = 0; r < rowCount(); ++r)
        putDataOnStream(r, stream, raw);
}

void MatrixData::putDataOnStream(int row, QDataStream& stream, bool)
{
    switch (int(m_cellType)) {
    case QVariant::Double:
        stream << toDouble(row, 0);
        break;
    case QVariant::Int:
    case QVariant::Icon:
    case QVariant::KeySequence:
        stream << toInt(row, 0);
        break;
    case QVariant::String:
    case QVariant::Color:
        stream << value(row, 0).toString();
        break;
    case QVariant::Bool:
        stream << value(row, 0).toBool();
        break;
    default:
        stream << value(row, 0).toString();
        break;
    }
}

void MatrixData::getDataFromStream(QDataStream& stream)
{
    int rows = 0, type = 0;
    QString name;
    stream >> rows >> type >> name;
    // A stream from elsewhere (a drop) is not trusted with the size of what it announces.
    if (stream.status() != QDataStream::Ok || rows < 0 || rows > 100000000)
        return;
    m_cells.clear();
    m_name = name;
    initialize(rows, 1);
    m_cellType = QVariant::Type(type);
    for (int r = 0; r < rows && stream.status() == QDataStream::Ok; ++r)
        getDataFromStream(r, 0, stream);
}

void MatrixData::getDataFromStream(int row, int column, QDataStream& stream)
{
    switch (int(m_cellType)) {
    case QVariant::Double: {
        double v = 0;
        stream >> v;
        setDouble(row, column, v);
        break;
    }
    case QVariant::Int:
    case QVariant::Icon:
    case QVariant::KeySequence: {
        int v = 0;
        stream >> v;
        setInt(row, column, v);
        break;
    }
    case QVariant::Bool: {
        bool v = false;
        stream >> v;
        setValue(row, column, v);
        break;
    }
    default: {
        QString v;
        stream >> v;
        setValue(row, column, v.isEmpty() ? QVariant() : QVariant(v));
        break;
    }
    }
}

// --- clipboard ---------------------------------------------------------------------------------------

void MatrixData::setHTML_MimeData(QMimeData* mime, std::vector<MatrixData*> const& columns)
{
    if (!mime)
        return;
    QString html = QStringLiteral("<table>\n<tr>");
    int rows = 0;
    for (MatrixData* c : columns) {
        html += QStringLiteral("<th>") + c->interfaceName().toHtmlEscaped() + QStringLiteral("</th>");
        rows = qMax(rows, c->rowCount());
    }
    html += QStringLiteral("</tr>\n");
    for (int r = 0; r < rows; ++r) {
        html += QStringLiteral("<tr>");
        for (MatrixData* c : columns) {
            QString cell;
            QTextStream out(&cell);
            out.setRealNumberNotation(QTextStream::FixedNotation);
            c->putDataOnStream(r, out, false);
            out.flush();
            html += QStringLiteral("<td>") + cell.toHtmlEscaped() + QStringLiteral("</td>");
        }
        html += QStringLiteral("</tr>\n");
    }
    html += QStringLiteral("</table>\n");
    mime->setHtml(html);
}

} // namespace rkBase
