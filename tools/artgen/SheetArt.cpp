// The contact sheet: every object picture on asphalt, once fitted to a 48 x 48 palette
// cell and once at its natural size, with the tinted objects also shown in the colours
// the editor gives them. Cells are numbered; docs/object-pictures.md names them.

#include "Artwork.h"

#include <algorithm>

namespace art {

namespace {

constexpr int kCell = 48;
constexpr int kColumns = 4;
constexpr int kNaturalWidth = 240; // room for the stretched line
constexpr int kPad = 8;
constexpr int kLabelHeight = 16;
const QColor kSheet(238, 238, 236);
const QColor kCellGround(92, 94, 98);
const QColor kCellEdge(60, 62, 66);
const QColor kLabelInk(40, 40, 44);

struct Tint {
    const char *object;
    std::vector<QColor> colors;
};

const std::vector<Tint> &tints()
{
    static const std::vector<Tint> list = {
        {"cone",
         {QColor(255, 70, 41), QColor(48, 206, 255), QColor(255, 246, 49), QColor(73, 255, 127),
          QColor(255, 122, 7)}},
        {"cone pointer",
         {QColor(188, 55, 34), QColor(29, 173, 244), QColor(203, 185, 31), QColor(57, 232, 110)}},
        {"post color", {QColor(0, 150, 0), QColor(255, 0, 0), QColor(255, 255, 255), QColor(255, 130, 0)}},
        {"barrier", {QColor(255, 255, 255), QColor(150, 0, 0)}},
        {"line", {QColor(231, 113, 90), QColor(0, 0, 255), QColor(165, 162, 255), QColor(0, 255, 255)}},
    };
    return list;
}

QString rgbText(const QColor &c)
{
    return QString("%1,%2,%3").arg(c.red()).arg(c.green()).arg(c.blue());
}

// The editor stretches the line picture to the line's length and keeps its height.
constexpr int kStretchedLine = 228;

int cellHeight(const SheetCell &cell)
{
    return kLabelHeight + std::max(kCell, cell.picture.height() + 2 * kPad);
}

void drawGround(QPainter &p, const QRect &r)
{
    p.setPen(Qt::NoPen);
    p.setBrush(kCellEdge);
    p.drawRect(r);
    p.setBrush(kCellGround);
    p.drawRect(r.adjusted(1, 1, -1, -1));
}

} // namespace

std::vector<SheetCell> contactSheetCells()
{
    std::vector<SheetCell> cells;
    for (const ObjectPicture &o : objectPictures())
        cells.push_back({QString::fromLatin1(o.name), o.draw()});
    for (const Tint &t : tints()) {
        const auto found = std::find_if(objectPictures().begin(), objectPictures().end(),
                                        [&](const ObjectPicture &o) { return t.object == QString(o.name); });
        QImage base = found->draw();
        const bool isLine = QString(t.object) == "line";
        if (isLine)
            base =
                base.scaled(kStretchedLine, base.height(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        for (const QColor &c : t.colors) {
            QString caption = QString("%1, tinted %2").arg(t.object, rgbText(c));
            if (isLine)
                caption += QString(", stretched to %1 px").arg(kStretchedLine);
            cells.push_back({caption, tinted(base, c)});
        }
    }
    return cells;
}

QImage drawContactSheet(const std::vector<SheetCell> &cells)
{
    const int columnWidth = kPad + kCell + kPad + kNaturalWidth + kPad;
    std::vector<int> rowHeights;
    for (size_t i = 0; i < cells.size(); i += kColumns) {
        int h = 0;
        for (size_t j = i; j < std::min(cells.size(), i + kColumns); ++j)
            h = std::max(h, cellHeight(cells[j]));
        rowHeights.push_back(h + kPad);
    }
    int height = kPad;
    for (int h : rowHeights)
        height += h;

    QImage sheet(kColumns * columnWidth + kPad, height, QImage::Format_ARGB32);
    sheet.fill(kSheet);
    QPainter p(&sheet);
    p.setRenderHint(QPainter::Antialiasing);
    int y = kPad;
    for (size_t row = 0; row < rowHeights.size(); ++row) {
        for (int col = 0; col < kColumns; ++col) {
            const size_t index = row * kColumns + col;
            if (index >= cells.size())
                break;
            const QImage &picture = cells[index].picture;
            const int x = kPad + col * columnWidth;

            // Cell number in stroke digits.
            QPen ink(kLabelInk, 1.4);
            ink.setCapStyle(Qt::RoundCap);
            ink.setJoinStyle(Qt::RoundJoin);
            p.setPen(ink);
            p.setBrush(Qt::NoBrush);
            p.save();
            p.translate(x + 1, y + 2);
            p.drawPath(strokeText(QString::number(index + 1), 9));
            p.restore();

            const int top = y + kLabelHeight;
            const QRect palette(x, top, kCell, kCell);
            drawGround(p, palette);
            const QImage small = fitted(picture, kCell - 2);
            p.drawImage(palette.x() + (kCell - small.width()) / 2, palette.y() + (kCell - small.height()) / 2,
                        small);

            const QRect natural(x + kCell + kPad, top, kNaturalWidth,
                                std::max(kCell, picture.height() + 2 * kPad));
            drawGround(p, natural);
            p.drawImage(natural.x() + (natural.width() - picture.width()) / 2,
                        natural.y() + (natural.height() - picture.height()) / 2, picture);
        }
        y += rowHeights[row];
    }
    p.end();
    return sheet;
}

QString contactSheetCaptions(const std::vector<SheetCell> &cells)
{
    QString text;
    text += "# Object pictures\n\n";
    text += "`docs/object-pictures.png` shows every object picture on an asphalt-coloured cell, on the "
            "left fitted to a 48 x 48 palette cell and on the right at its natural size (22.8 pixels per "
            "metre). Objects the editor colours are also shown tinted. This file and the picture are "
            "written by `varno-artgen`; regenerate them rather than editing by hand.\n\n";
    text += "Cells, numbered left to right, top to bottom:\n\n";
    for (size_t i = 0; i < cells.size(); ++i)
        text += QString("%1. %2 (%3 x %4 px)\n")
                    .arg(i + 1)
                    .arg(cells[i].caption)
                    .arg(cells[i].picture.width())
                    .arg(cells[i].picture.height());
    return text;
}

} // namespace art
