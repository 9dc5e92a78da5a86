#include "core/LayoutObject.h"

#include "base/ErrorLog.h"
#include "catalogue/ObjectKinds.h"
#include "base/Runtime.h"
#include "imaging/ColorMatrix.h"
#include "imaging/cGraphics.h"

#include <QDateTime>
#include <QPainter>

using namespace Qt::StringLiterals;

namespace {

// A 24-bit linear congruential generator with a full period: consecutive keys of a
// session never share their random part, so two objects made in the same second still
// get different keys.
float nextRandom()
{
    static uint32_t state = static_cast<uint32_t>(QDateTime::currentMSecsSinceEpoch()) & 0xFFFFFFu;
    state = (state * 1140671485u + 12820163u) & 0xFFFFFFu;
    return static_cast<float>(state) / 16777216.0f;
}

// The smallest rectangle holding every pixel that is not fully transparent.
QRect opaqueRect(const QImage &image)
{
    int left = image.width(), right = -1, top = image.height(), bottom = -1;
    for (int y = 0; y < image.height(); ++y) {
        const QRgb *line = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            if (qAlpha(line[x]) == 0)
                continue;
            left = std::min(left, x);
            right = std::max(right, x);
            top = std::min(top, y);
            bottom = std::max(bottom, y);
        }
    }
    return right < 0 ? QRect() : QRect(QPoint(left, top), QPoint(right, bottom));
}

// The picture as it is drawn into a size x size square. Far smaller than its picture,
// an object is averaged over the area each screen pixel covers: sampling reads only a
// few picture pixels per screen pixel, and a finish line, a 5-pixel strip across a
// square of hundreds, showed or vanished depending on where the samples fell. Closer to
// its own size it is stretched as drawing it would be (bilinear, or nearest when the
// surface asks for that), since there every picture pixel is still sampled.
QImage scaledForDrawing(const QImage &source, int size, bool smooth)
{
    if (smooth && size * 2 < source.width())
        return source.scaled(size, size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
            .convertToFormat(QImage::Format_ARGB32_Premultiplied);
    QImage out(size, size, QImage::Format_ARGB32_Premultiplied);
    if (out.isNull())
        return out;
    out.fill(Qt::transparent);
    QPainter p(&out);
    p.setRenderHint(QPainter::SmoothPixmapTransform, smooth);
    p.drawImage(QRect(0, 0, size, size), source);
    return out;
}

const cBitmap &catalogueImage(int16_t id)
{
    return ObjectKindAt(id).Image;
}

} // namespace

// --- varnoObject -------------------------------------------------------------------

void varnoObject::setID(int16_t id)
{
    m_id = id;
}

int16_t varnoObject::ImageSize() const
{
    return rt::toInt16(static_cast<long long>(m_image.Width()));
}

bool varnoObject::OnPixel(int x, int y) const
{
    return m_image.GetPixelAlpha(x, y) > 0;
}

const QImage &varnoObject::highlightedImage() const
{
    if (m_highlighted.isNull() && !m_image.isNull())
        m_highlighted = highlightAttributes().applied(m_image.Handle());
    return m_highlighted;
}

int16_t varnoObject::NormaliseAngle(int16_t angle)
{
    const int16_t minus = rt::sub16(angle, 360);
    const int16_t plus = rt::add16(angle, 360);
    if (angle > 180)
        return minus;
    if (angle < -180)
        return plus;
    return angle;
}

QString varnoObject::NewKey()
{
    const double random = static_cast<double>(nextRandom()) * 100000.0;
    return QDateTime::currentDateTime().toString(u"yyMMdd-HHmmss"_s) + QString::number(random, 'g', 15);
}

void varnoObject::setImage(cBitmap &&image)
{
    m_image = std::move(image);
    m_highlighted = QImage();
    m_sprite = QImage();
}

int varnoObject::drawnSize(float zoom) const
{
    if (zoom <= 0)
        return 1;
    return std::max(
        1, static_cast<int>(rt::toInt32(static_cast<double>(static_cast<float>(m_image.Width()) / zoom))));
}

QRect varnoObject::DrawnRect(int x, int y, float zoom) const
{
    if (m_image.isNull())
        return QRect();
    const int size = drawnSize(zoom);
    const QPoint corner(x - size / 2, y - size / 2);
    if (!m_sprite.isNull() && m_spriteSize == size)
        return m_spriteOpaque.translated(corner);
    return QRect(corner, QSize(size, size));
}

void varnoObject::drawPicture(int x, int y, cGraphics &graphics, float zoom, const ColorMatrix *attributes) const
{
    if (m_image.isNull())
        return;
    const int size = drawnSize(zoom);
    const int left = rt::toInt32(static_cast<long long>(x) - size / 2);
    const int top = rt::toInt32(static_cast<long long>(y) - size / 2);
    // Repaints draw every object at the same size until the zoom changes, so the
    // picture is tinted and scaled once and then only copied. A selected object is
    // highlighted whatever else was asked for.
    // Only the part that is not transparent is copied: turned pictures sit in a
    // padded square, and a line is a thin strip across a large one.
    const ColorMatrix *tint = m_selected                                ? &highlightAttributes()
                              : attributes && !attributes->isIdentity() ? attributes
                                                                        : nullptr;
    const bool smooth = graphics.Handle() && graphics.Handle()->testRenderHint(QPainter::SmoothPixmapTransform);
    if (m_sprite.isNull() || m_spriteSize != size || m_spriteTint != tint || m_spriteSmooth != smooth) {
        const QImage source = !tint        ? m_image.Handle()
                              : m_selected ? highlightedImage()
                                           : tint->applied(m_image.Handle());
        m_sprite = size == source.width() ? source : scaledForDrawing(source, size, smooth);
        m_spriteSize = size;
        m_spriteTint = tint;
        m_spriteSmooth = smooth;
        m_spriteOpaque = opaqueRect(m_sprite);
    }
    const QRect &r = m_spriteOpaque;
    if (!r.isEmpty())
        graphics.DrawImageRectRect(m_sprite, left + r.x(), top + r.y(), r.width(), r.height(), r.x(), r.y(), r.width(),
                                   r.height());
}

// --- nrmlObject --------------------------------------------------------------------

nrmlObject::nrmlObject()
{
    m_key = NewKey();
}

void nrmlObject::setID(int16_t id)
{
    m_id = id;
    // Only the start position uses kind 0; its key makes it easy to find.
    if (id == Kind::Start)
        m_key = u"start"_s;
}

void nrmlObject::Update(int16_t angle, uint8_t)
{
    guarded(u"nrmlObject.varnoObject_Update"_s, [&] {
        setImage(cBitmap());
        m_angle = NormaliseAngle(angle);
        m_spare = 0;
        rt::checkIndex(m_id, 0, KindCount - 1);
        cBitmap rotated;
        rotated.Rotate(catalogueImage(m_id), m_angle);
        setImage(std::move(rotated));
    });
}

void nrmlObject::Draw(int x, int y, cGraphics &graphics, float zoom, const ColorMatrix *attributes) const
{
    drawPicture(x, y, graphics, zoom, attributes);
}

std::unique_ptr<varnoObject> nrmlObject::clone() const
{
    return std::make_unique<nrmlObject>(*this);
}

// --- ctrlObject --------------------------------------------------------------------

void ctrlObject::setID(int16_t id)
{
    m_id = id;
    switch (id) {
    case Kind::Start: m_key = u"start"_s; break;
    case Kind::Finish: m_key = u"finish"_s; break;
    case Kind::Checkpoint1: m_key = u"checkpoint 1"_s; break;
    case Kind::Checkpoint2: m_key = u"checkpoint 2"_s; break;
    case Kind::Checkpoint3: m_key = u"checkpoint 3"_s; break;
    default: break;
    }
}

void ctrlObject::Update(int16_t angle, uint8_t width)
{
    guarded(u"ctrlObject.varnoObject_Update"_s, [&] {
        m_angle = NormaliseAngle(angle);
        m_width = width;
        rt::checkIndex(m_id, 0, KindCount - 1);
        const cBitmap &source = catalogueImage(m_id);
        // Lines are stretched at 22.8 picture pixels per unit of width; restricted-area
        // kinds would get a thin 5-pixel bar.
        const int stretchedWidth = rt::toInt32(static_cast<double>(m_width) * 22.8);
        const int stretchedHeight = m_id >= Kind::RestrictedInvisible ? 5 : source.Height();
        cBitmap stretched;
        stretched.CreateAsCopy(source, stretchedWidth, stretchedHeight);
        cBitmap rotated;
        rotated.Rotate(stretched, m_angle);
        setImage(std::move(rotated));
    });
}

void ctrlObject::Draw(int x, int y, cGraphics &graphics, float zoom, const ColorMatrix *attributes) const
{
    drawPicture(x, y, graphics, zoom, attributes);
}

std::unique_ptr<varnoObject> ctrlObject::clone() const
{
    return std::make_unique<ctrlObject>(*this);
}

// --- mrshObject --------------------------------------------------------------------

mrshObject::mrshObject()
{
    m_key = NewKey();
}

void mrshObject::setID(int16_t id)
{
    m_id = id;
    m_penColour = id == Kind::RouteChecker ? 0xFF008000u : 0xFFFF0000u;
}

uint8_t mrshObject::RouteIndex() const
{
    return m_id == Kind::RouteChecker ? m_routeIndex : 0;
}

int16_t mrshObject::ImageSize() const
{
    return rt::mul16(m_width, 23);
}

void mrshObject::Update(int16_t angle, uint8_t width)
{
    guarded(u"mrshObject.varnoObject_Update"_s, [&] {
        m_angle = NormaliseAngle(angle);
        m_width = width;
        if (m_id >= Kind::RestrictedMarshall && m_id <= Kind::RestrictedPointRight) {
            cBitmap rotated;
            rotated.Rotate(catalogueImage(m_id), m_angle);
            setImage(std::move(rotated));
        }
    });
}

void mrshObject::Draw(int x, int y, cGraphics &graphics, float zoom, const ColorMatrix *attributes) const
{
    const bool checker = m_id == Kind::RouteChecker;
    const uint32_t colour = checker ? (m_selected ? 0xFF90EE90u : 0xFF00FF00u)
                                    : (m_selected ? 0xFFFFC0CBu : 0xFFFF0000u);
    const int penWidth = rt::toInt32(static_cast<double>(4.0f / zoom * 7.0f));
    const int diameter = rt::toInt32(static_cast<double>(static_cast<float>(ImageSize()) / zoom));
    const int corner = penWidth / 2 - diameter / 2;
    const int left = rt::toInt32(static_cast<long long>(x) + corner);
    const int top = rt::toInt32(static_cast<long long>(y) + corner);
    const int edge = rt::toInt32(static_cast<long long>(diameter) - penWidth);
    // The stroke lies inside the nominal circle.
    graphics.DrawEllipseI(colour, static_cast<float>(penWidth), left, top, edge, edge);
    if (m_id >= Kind::RestrictedMarshall && m_id <= Kind::RestrictedPointRight)
        drawPicture(x, y, graphics, zoom, attributes);
}

QRect mrshObject::DrawnRect(int x, int y, float zoom) const
{
    const int diameter =
        zoom > 0 ? rt::toInt32(static_cast<double>(static_cast<float>(ImageSize()) / zoom)) : 0;
    const QRect circle(x - diameter / 2, y - diameter / 2, diameter, diameter);
    return circle | varnoObject::DrawnRect(x, y, zoom);
}

std::unique_ptr<varnoObject> mrshObject::clone() const
{
    return std::make_unique<mrshObject>(*this);
}

std::unique_ptr<varnoObject> CreateObjectForKind(int kind)
{
    switch (ClassForKind(kind)) {
    case ObjectClass::Control: return std::make_unique<ctrlObject>();
    case ObjectClass::Marshall: return std::make_unique<mrshObject>();
    case ObjectClass::Normal: break;
    }
    return std::make_unique<nrmlObject>();
}
