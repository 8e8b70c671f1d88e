#pragma once

#include <QtCore/QStringList>
#include <QtGui/QPaintDevice>
#include <QtGui/QPaintEngine>
#include <QtGui/QPainterPath>
#include <QtGui/QPen>
#include <QtGui/QTransform>
#include <QtWidgets/QWidget>

#include <span>

namespace vantoraudio::vantorAudioEngine::UI {

/** Writes down what is painted onto it, a line each: what, in which colour, where. Texts appear with the left end
 *  of their base line. */
class PaintRecorder : public QPaintDevice
{
public:
    explicit PaintRecorder(const QWidget& like) : m_dpi(like.logicalDpiX()), m_size(like.size()) {}

    [[nodiscard]] const QStringList& Lines() const { return m_engine.m_lines; }
    [[nodiscard]] QPaintEngine* paintEngine() const override { return &m_engine; }

protected:
    [[nodiscard]] int metric(PaintDeviceMetric metric) const override
    {
        switch (metric) {
        case PdmWidth:
            return m_size.width();
        case PdmHeight:
            return m_size.height();
        case PdmDpiX:
        case PdmDpiY:
        case PdmPhysicalDpiX:
        case PdmPhysicalDpiY:
            return m_dpi;
        default:
            return QPaintDevice::metric(metric);
        }
    }

private:
    class Engine : public QPaintEngine
    {
    public:
        Engine() : QPaintEngine(AllFeatures) {}

        bool begin(QPaintDevice*) override { return true; }
        bool end() override { return true; }
        [[nodiscard]] Type type() const override { return User; }
        void updateState(const QPaintEngineState& changed) override
        {
            m_pen = changed.state() & DirtyPen ? changed.pen() : m_pen;
            m_brush = changed.state() & DirtyBrush ? changed.brush() : m_brush;
            m_transform = changed.state() & DirtyTransform ? changed.transform() : m_transform;
        }
        void drawLines(const QLineF* lines, int count) override
        {
            for (const QLineF& line : std::span(lines, static_cast<std::size_t>(count))) {
                Write("line", m_pen.color(), {m_transform.map(line.p1()), m_transform.map(line.p2())});
            }
        }
        void drawRects(const QRectF* rects, int count) override
        {
            for (const QRectF& rect : std::span(rects, static_cast<std::size_t>(count))) {
                Write(m_brush.style() == Qt::NoBrush ? "rect" : "filled rect", m_pen.color(),
                      {m_transform.map(rect.topLeft()), m_transform.map(rect.bottomRight())});
            }
        }
        void drawTextItem(const QPointF& position, const QTextItem& item) override
        {
            Write(qPrintable(u"text \"" + item.text() + u'"'), m_pen.color(), {m_transform.map(position)});
        }
        void drawPath(const QPainterPath& path) override
        {
            const QRectF bounds = m_transform.map(path).boundingRect();
            Write("path", m_brush.color(), {bounds.topLeft(), bounds.bottomRight()});
        }
        void drawPolygon(const QPointF* points, int count, PolygonDrawMode) override
        {
            const QRectF bounds = m_transform.map(QPolygonF(QList(points, points + count))).boundingRect();
            Write("path", m_brush.color(), {bounds.topLeft(), bounds.bottomRight()});
        }
        void drawPixmap(const QRectF& rect, const QPixmap&, const QRectF&) override
        {
            Write("pixmap", {}, {m_transform.map(rect.topLeft()), m_transform.map(rect.bottomRight())});
        }

        QStringList m_lines;

    private:
        void Write(const char* what, const QColor& color, const QList<QPointF>& points)
        {
            QString line = QString::fromUtf8(what) + u' ' + color.name();
            for (const QPointF& point : points) {
                line += u' ' + QString::number(point.x(), 'g', 6) + u',' + QString::number(point.y(), 'g', 6);
            }
            m_lines << line;
        }

        QPen m_pen;
        QBrush m_brush;
        QTransform m_transform;
    };

    int m_dpi;
    QSize m_size;
    mutable Engine m_engine;
};

} // namespace vantoraudio::vantorAudioEngine::UI
