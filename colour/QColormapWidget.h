#pragma once

#include "rkbaseqt_export.h"

#include "colour/RKColormap.h"

#include <QPixmap>
#include <QWidget>

class QPainter;

namespace rkBase {

/// \brief A colour legend: the map's colours painted along its length, with the breaks' values
/// as tick labels.
///
/// Horizontal when wider than tall. The widget keeps its own copy of the map.
class RKBASEQT_EXPORT QColormapWidget : public QWidget {
    Q_OBJECT

public:
    /// A legend of `map`.
    explicit QColormapWidget(RKColormap const& map, Qt::Orientation orientation = Qt::Horizontal,
                             QWidget* parent = nullptr);
    ~QColormapWidget() override;

    /// Replaces the map shown.
    void setColormap(RKColormap const& map);
    /// The map shown.
    RKColormap const& colormap() const { return m_map; }
    /// Sets the direction of the colour bar.
    void setOrientation(Qt::Orientation orientation);
    /// The direction of the colour bar.
    Qt::Orientation orientation() const { return m_orientation; }
    /// The legend painted at `size`, on a white ground.
    QPixmap pixmap(QSize const& size) const;
    /// A legend wide enough for its labels.
    QSize sizeHint() const override;
    /// Paints the legend of `map` into `area`: the colour bar and the break values. Needs a
    /// QGuiApplication (for the labels' font), not a widget.
    static void paintLegend(QPainter& painter, RKColormap const& map, Qt::Orientation orientation, QRect const& area);

protected:
    /// Paints the legend over the whole widget.
    void paintEvent(QPaintEvent* event) override;

private:
    RKColormap m_map;
    Qt::Orientation m_orientation;
};

} // namespace rkBase
