#include "colour/QColormapWidget.h"

#include <QLocale>
#include <QPainter>

namespace rkBase {

QColormapWidget::QColormapWidget(RKColormap const& map, Qt::Orientation orientation, QWidget* parent)
    : QWidget(parent), m_map(map), m_orientation(orientation)
{
}

QColormapWidget::~QColormapWidget() = default;

void QColormapWidget::setColormap(RKColormap const& map)
{
    m_map = map;
    update();
}

void QColormapWidget::setOrientation(Qt::Orientation orientation)
{
    m_orientation = orientation;
    update();
}

QSize QColormapWidget::sizeHint() const
{
    return m_orientation == Qt::Horizontal ? QSize(320, 48) : QSize(80, 240);
}

QPixmap QColormapWidget::pixmap(QSize const& size) const
{
    QPixmap out(size.isValid() && !size.isEmpty() ? size : sizeHint());
    out.fill(Qt::white);
    QPainter painter(&out);
    paintLegend(painter, m_map, m_orientation, QRect(QPoint(0, 0), out.size()));
    return out;
}

void QColormapWidget::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), palette().window());
    paintLegend(painter, m_map, m_orientation, rect());
}

void QColormapWidget::paintLegend(QPainter& painter, RKColormap const& m_map, Qt::Orientation m_orientation,
                                  QRect const& area)
{
    if (m_map.empty() || area.width() < 2 || area.height() < 2)
        return;
    const QFontMetrics metrics(painter.font());
    const bool horizontal = m_orientation == Qt::Horizontal;
    // The bar takes what the labels leave: below it when horizontal, to its right otherwise.
    const int labelRoom = horizontal ? metrics.height() + 4 : metrics.horizontalAdvance(QStringLiteral("-0000.00")) + 6;
    QRect bar = area.adjusted(2, 2, -2, -2);
    if (horizontal && bar.height() > labelRoom + 4)
        bar.setBottom(bar.bottom() - labelRoom);
    else if (!horizontal && bar.width() > labelRoom + 4)
        bar.setRight(bar.right() - labelRoom);
    const double min = m_map.min_value(), max = m_map.max_value();
    const int length = horizontal ? bar.width() : bar.height();
    for (int i = 0; i < length; ++i) {
        const double f = length > 1 ? double(i) / (length - 1) : 0.0;
        const double v = min + f * (max - min);
        painter.setPen(m_map.value_to_color(v));
        if (horizontal)
            painter.drawLine(bar.left() + i, bar.top(), bar.left() + i, bar.bottom());
        else // high values at the top
            painter.drawLine(bar.left(), bar.bottom() - i, bar.right(), bar.bottom() - i);
    }
    painter.setPen(Qt::black);
    painter.drawRect(bar.adjusted(0, 0, -1, -1));
    // Tick labels at the breaks, skipping any that would overlap the one before.
    int lastEnd = -1000000;
    for (const auto& entry : m_map) {
        const double f = max > min ? (entry.first - min) / (max - min) : 0.0;
        const QString text = QLocale::c().toString(entry.first, 'g', 6);
        if (horizontal) {
            const int x = bar.left() + int(f * (bar.width() - 1));
            const int w = metrics.horizontalAdvance(text);
            const int left = qBound(area.left(), x - w / 2, area.right() - w);
            painter.drawLine(x, bar.bottom(), x, bar.bottom() + 3);
            if (left > lastEnd + 4 && bar.bottom() + 4 + metrics.ascent() <= area.bottom()) {
                painter.drawText(left, bar.bottom() + 4 + metrics.ascent(), text);
                lastEnd = left + w;
            }
        } else {
            // Breaks run upwards: a label is drawn when it clears the one below it.
            const int y = bar.bottom() - int(f * (bar.height() - 1));
            painter.drawLine(bar.right(), y, bar.right() + 3, y);
            const int baseline = qBound(area.top() + metrics.ascent(), y + metrics.ascent() / 2, area.bottom());
            if (lastEnd == -1000000 || lastEnd - baseline >= metrics.height()) {
                painter.drawText(bar.right() + 5, baseline, text);
                lastEnd = baseline;
            }
        }
    }
}

} // namespace rkBase
