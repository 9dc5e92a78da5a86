// Built-in pictures: the missing-picture placeholder, the toolbar and the application
// icon. Toolbar pictures share one palette and a 1 px dark outline so they read as a
// set on a light toolbar.

#include "Artwork.h"

#include <QLinearGradient>
#include <cmath>
#include <functional>

namespace art {

namespace {

const QColor kInk(55, 71, 79);
const QColor kPaper(255, 255, 255);
const QColor kFold(207, 216, 220);
const QColor kBlue(30, 136, 229);
const QColor kLightBlue(227, 242, 253);
const QColor kOrange(251, 140, 0);
const QColor kGreen(67, 160, 71);
const QColor kRed(229, 57, 53);
const QColor kFolderBack(255, 160, 0);
const QColor kFolderFront(255, 202, 40);
const QColor kRulerYellow(255, 213, 79);
const QColor kGearGrey(84, 110, 122);

QImage iconCanvas(int size, const std::function<void(QPainter &)> &draw)
{
    QImage image(size, size, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    draw(p);
    p.end();
    return image;
}

QPen inkPen(double width = 1.0, const QColor &color = kInk)
{
    QPen pen(color, width);
    pen.setCapStyle(Qt::RoundCap);
    pen.setJoinStyle(Qt::RoundJoin);
    return pen;
}

void page(QPainter &p)
{
    QPainterPath sheet;
    sheet.moveTo(4.5, 2.5);
    sheet.lineTo(13.5, 2.5);
    sheet.lineTo(18.5, 7.5);
    sheet.lineTo(18.5, 21.5);
    sheet.lineTo(4.5, 21.5);
    sheet.closeSubpath();
    p.setPen(inkPen());
    p.setBrush(kPaper);
    p.drawPath(sheet);
    p.setBrush(kFold);
    p.drawPolygon(QPolygonF{{13.5, 2.5}, {13.5, 7.5}, {18.5, 7.5}});
    // Text lines.
    p.setPen(inkPen(1.0, kFold.darker(120)));
    for (double y : {10.5, 13.5, 16.5})
        p.drawLine(QPointF(7, y), QPointF(15, y));
}

// A round badge in the lower right with a white plus, minus or cross.
enum class Badge { Plus, Minus, Cross };
void badge(QPainter &p, const QPointF &c, const QColor &color, Badge kind)
{
    p.setPen(inkPen(1.0, kPaper));
    p.setBrush(color);
    p.drawEllipse(c, 5.5, 5.5);
    p.setPen(inkPen(1.8, kPaper));
    if (kind == Badge::Cross) {
        p.drawLine(c + QPointF(-2.2, -2.2), c + QPointF(2.2, 2.2));
        p.drawLine(c + QPointF(-2.2, 2.2), c + QPointF(2.2, -2.2));
        return;
    }
    p.drawLine(c + QPointF(-2.8, 0), c + QPointF(2.8, 0));
    if (kind == Badge::Plus)
        p.drawLine(c + QPointF(0, -2.8), c + QPointF(0, 2.8));
}

void magnifier(QPainter &p, bool plus)
{
    p.setPen(inkPen(3.0));
    p.drawLine(QPointF(15, 15), QPointF(20.5, 20.5));
    p.setPen(inkPen(2.0));
    p.setBrush(kLightBlue);
    p.drawEllipse(QPointF(10, 10), 7, 7);
    p.setPen(inkPen(2.0, kBlue));
    p.drawLine(QPointF(6.5, 10), QPointF(13.5, 10));
    if (plus)
        p.drawLine(QPointF(10, 6.5), QPointF(10, 13.5));
}

// A traffic cone seen from the side, standing on `base` (the middle of its foot).
void sideCone(QPainter &p, const QPointF &base, double height)
{
    const double w = height * 0.62;
    QPainterPath body;
    body.moveTo(base.x() - w * 0.42, base.y() - height * 0.12);
    body.lineTo(base.x() - w * 0.1, base.y() - height);
    body.lineTo(base.x() + w * 0.1, base.y() - height);
    body.lineTo(base.x() + w * 0.42, base.y() - height * 0.12);
    body.closeSubpath();
    p.setPen(inkPen(std::max(1.0, height / 16)));
    p.setBrush(kOrange);
    p.drawPath(body);
    // A white band, clipped to the body.
    p.save();
    p.setClipPath(body);
    p.setPen(Qt::NoPen);
    p.setBrush(kPaper);
    p.drawRect(QRectF(base.x() - w, base.y() - height * 0.62, 2 * w, height * 0.2));
    p.restore();
    p.setPen(inkPen(std::max(1.0, height / 16)));
    p.setBrush(Qt::NoBrush);
    p.drawPath(body);
    p.setBrush(kOrange.darker(130));
    p.drawRoundedRect(QRectF(base.x() - w / 2, base.y() - height * 0.14, w, height * 0.14), height * 0.03,
                      height * 0.03);
}

void gear(QPainter &p)
{
    QPainterPath teeth;
    const QPointF c(12, 12);
    for (int i = 0; i < 8; ++i) {
        QTransform t;
        t.translate(c.x(), c.y());
        t.rotate(i * 45);
        QPainterPath tooth;
        tooth.addRoundedRect(QRectF(-2.3, -10.5, 4.6, 6), 1, 1);
        teeth.addPath(t.map(tooth));
    }
    QPainterPath ring;
    ring.addEllipse(c, 7.5, 7.5);
    QPainterPath hole;
    hole.addEllipse(c, 3.2, 3.2);
    const QPainterPath shape = ring.united(teeth).subtracted(hole);
    p.setPen(inkPen(1.0));
    p.setBrush(kGearGrey.lighter(135));
    p.drawPath(shape);
}

void undoArrow(QPainter &p)
{
    QPainterPath shaft;
    shaft.moveTo(8, 8.5);
    shaft.lineTo(13.5, 8.5);
    shaft.cubicTo(18, 8.5, 20.5, 11, 20.5, 14);
    shaft.cubicTo(20.5, 17, 18, 19.5, 13.5, 19.5);
    shaft.lineTo(10, 19.5);
    QPen pen = inkPen(2.6, kBlue);
    p.setPen(pen);
    p.setBrush(Qt::NoBrush);
    p.drawPath(shaft);
    p.setPen(inkPen(1.0, kBlue));
    p.setBrush(kBlue);
    p.drawPolygon(QPolygonF{{2.5, 8.5}, {9, 3.5}, {9, 13.5}});
}

} // namespace

QImage drawPlaceholder()
{
    return iconCanvas(24, [](QPainter &p) {
        QPen border(QColor(150, 150, 150), 1.0);
        border.setDashPattern({2, 2});
        p.setPen(border);
        p.setBrush(QColor(226, 226, 226));
        p.drawRoundedRect(QRectF(1.5, 1.5, 21, 21), 3, 3);
        QPainterPath mark;
        mark.moveTo(8.5, 9);
        mark.cubicTo(8.5, 5, 15.5, 5, 15.5, 9);
        mark.cubicTo(15.5, 11.8, 12, 11.6, 12, 14.6);
        p.setPen(inkPen(2.2, QColor(110, 110, 110)));
        p.setBrush(Qt::NoBrush);
        p.drawPath(mark);
        p.setPen(Qt::NoPen);
        p.setBrush(QColor(110, 110, 110));
        p.drawEllipse(QPointF(12, 18.2), 1.4, 1.4);
    });
}

QImage drawToolbarIcon(int index)
{
    return iconCanvas(24, [index](QPainter &p) {
        switch (index) {
        case 0: // New
            page(p);
            badge(p, {17.5, 17.5}, kGreen, Badge::Plus);
            break;
        case 1: { // Open
            QPainterPath back;
            back.moveTo(2.5, 5.5);
            back.lineTo(9, 5.5);
            back.lineTo(11, 7.5);
            back.lineTo(19.5, 7.5);
            back.lineTo(19.5, 19.5);
            back.lineTo(2.5, 19.5);
            back.closeSubpath();
            p.setPen(inkPen());
            p.setBrush(kFolderBack);
            p.drawPath(back);
            p.setBrush(kPaper);
            p.drawRect(QRectF(5.5, 9.5, 11, 6));
            p.setBrush(kFolderFront);
            p.drawPolygon(QPolygonF{{6, 11.5}, {22.5, 11.5}, {19.5, 19.5}, {2.5, 19.5}});
            break;
        }
        case 2: { // Save
            QPainterPath disk;
            disk.moveTo(3.5, 3.5);
            disk.lineTo(17.5, 3.5);
            disk.lineTo(20.5, 6.5);
            disk.lineTo(20.5, 20.5);
            disk.lineTo(3.5, 20.5);
            disk.closeSubpath();
            p.setPen(inkPen());
            p.setBrush(kBlue);
            p.drawPath(disk);
            p.setBrush(kLightBlue);
            p.drawRect(QRectF(7.5, 3.5, 9, 6));
            p.setPen(Qt::NoPen);
            p.setBrush(kInk);
            p.drawRect(QRectF(13, 4.5, 2, 4));
            p.setPen(inkPen());
            p.setBrush(kPaper);
            p.drawRect(QRectF(6.5, 13.5, 11, 7));
            p.setPen(inkPen(1.0, kFold.darker(120)));
            p.drawLine(QPointF(8.5, 16), QPointF(15.5, 16));
            p.drawLine(QPointF(8.5, 18.5), QPointF(15.5, 18.5));
            break;
        }
        case 3: // Close
            page(p);
            badge(p, {17.5, 17.5}, kRed, Badge::Cross);
            break;
        case 4: // Zoom in
        case 5: // Zoom out
            magnifier(p, index == 4);
            break;
        case 6: // Object zoom in
        case 7: // Object zoom out
            sideCone(p, {9, 21.5}, 17);
            badge(p, {17.5, 7}, kBlue, index == 6 ? Badge::Plus : Badge::Minus);
            break;
        case 8: { // Measure distance
            p.translate(12, 12);
            p.rotate(-45);
            p.setPen(inkPen());
            p.setBrush(kRulerYellow);
            p.drawRoundedRect(QRectF(-12, -4.5, 24, 9), 1.2, 1.2);
            for (int i = -4; i <= 4; ++i) {
                const double len = i % 2 ? 2.2 : 3.8;
                p.drawLine(QPointF(i * 2.4, -4.5), QPointF(i * 2.4, -4.5 + len));
            }
            break;
        }
        case 9: { // Object line
            QPen dash = inkPen(1.2);
            dash.setDashPattern({1.5, 1.5});
            p.setPen(dash);
            p.drawLine(QPointF(1.5, 21.5), QPointF(22.5, 21.5));
            for (double x : {4.5, 12.0, 19.5})
                sideCone(p, {x, 19.5}, 11);
            break;
        }
        case 10: // Options
            gear(p);
            break;
        case 11: // About
            p.setPen(inkPen(1.0, kBlue.darker(125)));
            p.setBrush(kBlue);
            p.drawEllipse(QPointF(12, 12), 10, 10);
            p.setPen(Qt::NoPen);
            p.setBrush(kPaper);
            p.drawEllipse(QPointF(12, 7), 1.7, 1.7);
            p.drawRoundedRect(QRectF(10.7, 10, 2.6, 8.5), 1, 1);
            break;
        case 12: // Undo
            undoArrow(p);
            break;
        case 13: // Redo
            p.translate(24, 0);
            p.scale(-1, 1);
            undoArrow(p);
            break;
        case 14: { // Select tool: the arrow pointer
            p.setPen(inkPen(1.2));
            p.setBrush(kPaper);
            p.drawPolygon(
                QPolygonF{{6, 2.5}, {6, 19}, {10, 15.2}, {13, 21.5}, {16, 20}, {13, 13.8}, {18.5, 13.8}});
            break;
        }
        case 15: { // Zoom tool: a magnifier over a dashed frame
            QPen dash = inkPen(1.2, kBlue);
            dash.setDashPattern({2, 1.5});
            p.setPen(dash);
            p.setBrush(Qt::NoBrush);
            p.drawRect(QRectF(1.5, 1.5, 17, 17));
            p.setPen(inkPen(3.0));
            p.drawLine(QPointF(17, 17), QPointF(21.5, 21.5));
            p.setPen(inkPen(2.0));
            p.setBrush(kLightBlue);
            p.drawEllipse(QPointF(12.5, 12.5), 6, 6);
            break;
        }
        default:
            break;
        }
    });
}

// A traffic cone in front of a chequered flag corner, drawn on a 256 grid and scaled.
QImage drawAppIcon(int size)
{
    return iconCanvas(size, [size](QPainter &p) {
        p.scale(size / 256.0, size / 256.0);
        QPainterPath tile;
        tile.addRoundedRect(QRectF(12, 12, 232, 232), 46, 46);
        QLinearGradient ground(QPointF(0, 12), QPointF(0, 244));
        ground.setColorAt(0.0, QColor(72, 84, 96));
        ground.setColorAt(1.0, QColor(44, 52, 62));
        p.setPen(Qt::NoPen);
        p.setBrush(ground);
        p.drawPath(tile);

        // The flag's corner fills the upper right, cut on a diagonal.
        QPainterPath corner;
        corner.moveTo(84, 12);
        corner.lineTo(244, 12);
        corner.lineTo(244, 172);
        corner.closeSubpath();
        p.save();
        p.setClipPath(tile.intersected(corner));
        const double cell = 32;
        for (int row = 0; row < 8; ++row)
            for (int col = 0; col < 8; ++col) {
                p.setBrush((row + col) % 2 ? QColor(24, 24, 28) : QColor(250, 250, 250));
                p.drawRect(QRectF(12 + col * cell, 12 + row * cell, cell, cell));
            }
        p.restore();

        // Shadow, then the cone.
        p.setBrush(QColor(0, 0, 0, 70));
        p.drawEllipse(QPointF(128, 224), 96, 12);
        const double baseY = 222;
        QPainterPath body;
        body.moveTo(66, baseY - 22);
        body.lineTo(114, 38);
        body.quadTo(128, 28, 142, 38);
        body.lineTo(190, baseY - 22);
        body.closeSubpath();
        QLinearGradient shade(QPointF(66, 0), QPointF(190, 0));
        shade.setColorAt(0.0, QColor(255, 170, 60));
        shade.setColorAt(0.55, QColor(251, 120, 0));
        shade.setColorAt(1.0, QColor(210, 88, 0));
        p.setBrush(shade);
        p.drawPath(body);
        p.save();
        p.setClipPath(body);
        p.setBrush(QColor(246, 246, 246));
        p.drawRect(QRectF(0, 104, 256, 40));
        p.restore();
        p.setBrush(Qt::NoBrush);
        p.setPen(inkPen(6, QColor(30, 30, 34)));
        p.drawPath(body);
        p.setBrush(QColor(196, 84, 0));
        p.drawRoundedRect(QRectF(44, baseY - 26, 168, 26), 6, 6);
    });
}

} // namespace art
