// The zoom, measuring and object-line tools.

#include "base/Language.h"
#include "catalogue/ObjectKinds.h"
#include "core/LayoutDocument.h"
#include "base/Runtime.h"
#include "imaging/ColorMatrix.h"
#include "imaging/cGraphics.h"
#include "view/HitTest.h"
#include "app/tools/LayoutTool.h"
#include "app/LayoutSession.h"
#include "view/ViewGeometry.h"

#include <QPainter>
#include <cmath>

namespace {

constexpr double Pi = 3.14159265358979323846;
// Layout units (pixels of the standard pictures) per metre.
constexpr double UnitsPerMetre = 5.7;
// A line never lays more objects than a layout can hold.
constexpr int MaxLinePoints = 512;

QPointF toLayoutF(const ViewGeometry &v, const QPointF &p)
{
    return QPointF((p.x() - v.ViewOffsetX()) / v.Zoom() + v.ScrollX() + 1,
                   (p.y() - v.ViewOffsetY()) / v.Zoom() + v.ScrollY() + 1);
}

QPointF toViewF(const ViewGeometry &v, const QPointF &p)
{
    return QPointF(v.Zoom() * (p.x() - v.ScrollX() - 1) + v.ViewOffsetX(),
                   v.Zoom() * (p.y() - v.ScrollY() - 1) + v.ViewOffsetY());
}

// Metres for a length in layout units; a background of another resolution than the
// standard one is scaled back first.
double metres(const LayoutDocument &doc, double units)
{
    const float scale = doc.BackgroundScale();
    return units / (scale > 0 ? scale : 1.0f) / UnitsPerMetre;
}

QPointF constrainF(const QPointF &from, const QPointF &to)
{
    const QPointF d = to - from;
    const double length = std::hypot(d.x(), d.y());
    if (length == 0)
        return to;
    const double step = 15.0 * Pi / 180.0;
    const double angle = std::round(std::atan2(d.y(), d.x()) / step) * step;
    return from + QPointF(length * std::cos(angle), length * std::sin(angle));
}

} // namespace

QPoint ConstrainTo15(const QPoint &from, const QPoint &to)
{
    const QPointF p = constrainF(from, to);
    return QPoint(int(rt::roundHalfEven(p.x())), int(rt::roundHalfEven(p.y())));
}

// --- every tool ---------------------------------------------------------------------

LayoutDocument &LayoutTool::document() const
{
    return m_context.session().document();
}

void LayoutTool::record(const QString &text, int mergeKey, const std::function<void()> &fn)
{
    m_context.session().record(text, mergeKey, fn);
    m_context.redraw();
}

// --- zoom --------------------------------------------------------------------------

namespace {
// Zooms so that the layout point under the pointer stays under it.
void zoomAbout(ToolContext &context, const QPoint &pos, float factor)
{
    ViewGeometry &v = context.view();
    const QPointF anchor = toLayoutF(v, pos);
    context.setZoom(float(double(v.Zoom()) * factor));
    v.setScroll(0, int(std::lround(anchor.x() - 1 - (pos.x() - v.ViewOffsetX()) / v.Zoom())));
    v.setScroll(1, int(std::lround(anchor.y() - 1 - (pos.y() - v.ViewOffsetY()) / v.Zoom())));
    context.viewChanged();
    context.redraw();
}
} // namespace

void ZoomTool::press(const ToolEvent &e)
{
    if (e.button == Qt::RightButton) {
        zoomAbout(m_context, e.pos, 0.5f);
        return;
    }
    if (e.button != Qt::LeftButton)
        return;
    m_dragging = true;
    m_from = m_to = e.pos;
}

void ZoomTool::move(const ToolEvent &e)
{
    if (m_dragging && (e.buttons & Qt::LeftButton))
        m_to = e.pos;
}

void ZoomTool::release(const ToolEvent &e)
{
    if (e.button != Qt::LeftButton || !m_dragging)
        return;
    m_dragging = false;
    const QRect box = QRect(m_from, e.pos).normalized();
    if (box.width() < 4 && box.height() < 4) {
        zoomAbout(m_context, e.pos, 2.0f);
        return;
    }
    ViewGeometry &v = m_context.view();
    const QPointF a = toLayoutF(v, box.topLeft());
    const QPointF b = toLayoutF(v, box.bottomRight());
    const double w = std::max(1.0, b.x() - a.x());
    const double h = std::max(1.0, b.y() - a.y());
    m_context.setZoom(float(std::min(v.clientWidth() / w, v.clientHeight() / h)));
    m_context.centreOn(int32_t(std::lround((a.x() + b.x()) / 2)), int32_t(std::lround((a.y() + b.y()) / 2)));
}

void ZoomTool::paintOverlay(QPainter &p)
{
    if (!m_dragging)
        return;
    p.save();
    p.setPen(QPen(QColor(255, 220, 80), 1, Qt::DashLine));
    p.setBrush(Qt::NoBrush);
    p.drawRect(QRect(m_from, m_to).normalized());
    p.restore();
}

// --- measuring ---------------------------------------------------------------------

double MeasureTool::distance(const QPointF &a, const QPointF &b) const
{
    return metres(document(), std::hypot(b.x() - a.x(), b.y() - a.y()));
}

void MeasureTool::press(const ToolEvent &e)
{
    if (e.button != Qt::LeftButton)
        return;
    m_dragging = true;
    m_measured = true;
    m_from = m_to = toLayoutF(m_context.view(), e.pos);
}

void MeasureTool::move(const ToolEvent &e)
{
    if (!m_dragging || !(e.buttons & Qt::LeftButton))
        return;
    const QPointF at = toLayoutF(m_context.view(), e.pos);
    m_to = (e.modifiers & Qt::ControlModifier) ? constrainF(m_from, at) : at;
    m_context.redraw();
}

void MeasureTool::release(const ToolEvent &e)
{
    if (e.button != Qt::LeftButton || !m_dragging)
        return;
    m_dragging = false;
    m_context.hint(hint());
}

QString MeasureTool::hint() const
{
    if (!m_measured)
        return Lang(154);
    return Lang(155) + QStringLiteral(": ") + QString::number(distance(m_from, m_to), 'f', 1) + QStringLiteral("m");
}

void MeasureTool::paintOverlay(QPainter &p)
{
    if (!m_measured)
        return;
    const ViewGeometry &v = m_context.view();
    const QPointF a = toViewF(v, m_from);
    const QPointF b = toViewF(v, m_to);
    p.save();
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(QColor(0, 0, 0, 160), 4, Qt::SolidLine, Qt::RoundCap));
    p.drawLine(a, b);
    p.setPen(QPen(QColor(255, 230, 0), 2, Qt::SolidLine, Qt::RoundCap));
    p.drawLine(a, b);
    p.drawEllipse(a, 3, 3);
    p.drawEllipse(b, 3, 3);
    const QString text = QString::number(distance(m_from, m_to), 'f', 1) + QStringLiteral("m");
    const QPointF label = b + QPointF(8, -8);
    const QRectF r = QRectF(p.fontMetrics().boundingRect(text).adjusted(-4, -2, 4, 2)).translated(label);
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(0, 0, 0, 170));
    p.drawRoundedRect(r, 3, 3);
    p.setPen(Qt::white);
    p.drawText(label, text);
    p.restore();
}

// --- object line -------------------------------------------------------------------

LineTool::LineTool(ToolContext &context) : LayoutTool(context) {}

LineTool::~LineTool() = default;

QList<QPoint> LineTool::linePoints(const QPoint &a, const QPoint &b, int spacing)
{
    QList<QPoint> points;
    spacing = std::max(1, spacing);
    const double dx = b.x() - a.x();
    const double dy = b.y() - a.y();
    const double length = std::hypot(dx, dy);
    const int n = std::min(MaxLinePoints - 1, int(std::floor(length / spacing)));
    points.reserve(n + 1);
    for (int k = 0; k <= n; ++k) {
        const double t = length > 0 ? double(k) * spacing / length : 0.0;
        points.append(QPoint(int(rt::roundHalfEven(a.x() + dx * t)), int(rt::roundHalfEven(a.y() + dy * t))));
    }
    return points;
}

QString LineTool::spacingText(int16_t spacing, const LayoutDocument &doc)
{
    return QStringLiteral("spacing %1 (%2m)").arg(spacing).arg(metres(doc, spacing), 0, 'f', 1);
}

QString LineTool::hint() const
{
    if (m_dragging)
        return Lang(153) + QStringLiteral(" \u2014 ") + spacingText(m_context.lineSpacing(), document()) + QStringLiteral(", copies: ")
               + QString::number(m_points.size());
    if (document().Selection().size() != 1)
        return Lang(152);
    return Lang(151) + QStringLiteral(" \u2014 ") + spacingText(m_context.lineSpacing(), document());
}

void LineTool::cancel()
{
    m_dragging = false;
    m_points.clear();
    m_prototype.reset();
}

void LineTool::rebuild()
{
    const int spacing = std::max(1, int(m_context.lineSpacing()));
    m_points = linePoints(m_from, m_to, spacing);
    // The source stands in its own slot of the row: no copy on top of it.
    m_points.removeIf([&](const QPoint &p) {
        return std::hypot(p.x() - m_source.x(), p.y() - m_source.y()) < spacing / 2.0;
    });
}

void LineTool::press(const ToolEvent &e)
{
    if (e.button != Qt::LeftButton)
        return;
    LayoutDocument &doc = document();
    int32_t x = e.pos.x(), y = e.pos.y();
    m_context.view().viewToLayout(x, y);
    if (doc.Selection().size() != 1) {
        // Without a single object to copy, a click picks one.
        ToolEvent click = e;
        click.modifiers = Qt::NoModifier;
        SelectTool picker(m_context);
        picker.press(click);
        picker.release(click);
        m_context.hint(hint());
        return;
    }
    const varnoObject &source = doc.Objects().Item(doc.Selection().first().strKey);
    m_sourceKey = source.Key();
    m_source = QPoint(source.X(), source.Y());
    m_prototype = CreateObjectForKind(source.ID());
    m_prototype->setID(source.ID());
    m_prototype->Update(source.Angle(), source.Width());
    const bool onSource = ObjectAtPoint(doc, m_context.view(), e.pos.x(), e.pos.y()) == m_sourceKey;
    m_from = m_to = onSource ? m_source : QPoint(x, y);
    m_dragging = true;
    rebuild();
    m_context.hint(hint());
}

void LineTool::move(const ToolEvent &e)
{
    if (!m_dragging || !(e.buttons & Qt::LeftButton))
        return;
    int32_t x = e.pos.x(), y = e.pos.y();
    m_context.view().viewToLayout(x, y);
    const QPoint at(x, y);
    m_to = (e.modifiers & Qt::ControlModifier) ? ConstrainTo15(m_from, at) : at;
    rebuild();
    m_context.redraw();
}

void LineTool::release(const ToolEvent &e)
{
    if (e.button != Qt::LeftButton || !m_dragging)
        return;
    m_dragging = false;
    LayoutDocument &doc = document();
    const varnoObject *source = doc.Objects().Find(m_sourceKey);
    const QList<QPoint> points = m_points;
    m_points.clear();
    m_prototype.reset();
    if (!source)
        return;
    const uint8_t id = source->ID();
    const int16_t angle = source->Angle();
    const uint8_t width = source->Width();
    record(Lang(41), 0, [&] {
        for (const QPoint &p : points) {
            int16_t a = angle;
            uint8_t w = width;
            bool fromView = false;
            bool selected = false;
            doc.ObjectAdd(id, rt::toInt16(static_cast<long long>(p.x())), rt::toInt16(static_cast<long long>(p.y())), a,
                          w, fromView, selected);
        }
        doc.SelectionUpdate(true);
        doc.RaiseUpdates();
    });
}

void LineTool::paintOverlay(QPainter &p)
{
    if (!m_dragging || !m_prototype)
        return;
    const ViewGeometry &v = m_context.view();
    cGraphics graphics;
    if (!graphics.CreateFromPainter(&p))
        return;
    const QPointF a = toViewF(v, m_from);
    const QPointF b = toViewF(v, m_to);
    p.save();
    p.setPen(QPen(QColor(255, 255, 255, 140), 1, Qt::DashLine));
    p.drawLine(a, b);
    p.restore();
    for (const QPoint &pt : m_points) {
        const QPointF at = toViewF(v, pt);
        m_prototype->Draw(int(std::lround(at.x())), int(std::lround(at.y())), graphics, v.ObjectScale(),
                          &ghostAttributes());
    }
    // A ring at every copy: at a small zoom the ghosts are a pixel or two, and the user
    // should still see where each copy will land.
    p.save();
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(QColor(255, 255, 255, 200), 1));
    p.setBrush(Qt::NoBrush);
    for (const QPoint &pt : m_points)
        p.drawEllipse(toViewF(v, pt), 3, 3);
    p.restore();
}
