#pragma once
// Objects placed in a layout. Each owns its rotated picture and draws itself.
//  nrmlObject: ordinary objects and the start position
//  ctrlObject: finish and checkpoints, lines with a width
//  mrshObject: restricted areas, marshalls and route checkers, drawn as circles

#include "imaging/cBitmap.h"

#include <QRect>
#include <QString>
#include <cstdint>
#include <memory>

class cGraphics;
class ColorMatrix;

class varnoObject {
public:
    virtual ~varnoObject() = default;

    int16_t X() const { return m_x; }
    void setX(int16_t x) { m_x = x; }
    int16_t Y() const { return m_y; }
    void setY(int16_t y) { m_y = y; }
    bool Selected() const { return m_selected; }
    void setSelected(bool s) { m_selected = s; }

    // The kind, read as 8 bits from the stored 16-bit value.
    uint8_t ID() const { return static_cast<uint8_t>(m_id); }
    virtual void setID(int16_t id);
    virtual uint8_t RouteIndex() const { return m_routeIndex; }
    void setRouteIndex(uint8_t r) { m_routeIndex = r; }
    const QString &Key() const { return m_key; }
    int16_t Angle() const { return m_angle; }
    virtual uint8_t Width() const = 0;
    virtual int16_t ImageSize() const;

    // Hit test in the picture's pixel coordinates: alpha above 0.
    bool OnPixel(int x, int y) const;
    // Sets heading (and width where the class has one) and rebuilds the picture.
    // Errors are logged " in <class>.varnoObject_Update".
    virtual void Update(int16_t angle, uint8_t width) = 0;
    // Draws the object centred on (x, y) in view pixels; zoom is layout units per
    // pixel (larger is smaller). A selected object is drawn highlighted. The tinted,
    // scaled picture is kept for the next draw, matched by the attributes' address, so
    // pass long-lived attributes (the program-wide ones).
    virtual void Draw(int x, int y, cGraphics &graphics, float zoom, const ColorMatrix *attributes) const = 0;

    // Where the object's picture lands when drawn centred on (x, y) at zoom: its visible
    // part when it was last drawn at that size, else its whole square. Empty without a
    // picture.
    virtual QRect DrawnRect(int x, int y, float zoom) const;

    // The rotated picture (empty for kinds without one).
    const cBitmap &image() const { return m_image; }
    // The picture as drawn when selected, made once per Update.
    const QImage &highlightedImage() const;

    // A full copy with the same key, for undo.
    virtual std::unique_ptr<varnoObject> clone() const = 0;
    // Puts back a key saved earlier (undo restores objects under their old keys).
    void restoreKey(const QString &key) { m_key = key; }

    // Normalises an angle once: above 180 minus 360, below -180 plus 360 (16-bit checked).
    static int16_t NormaliseAngle(int16_t angle);
    // A fresh creation key: "yymmdd-HhNnSs" followed by a random number below 100000.
    static QString NewKey();

protected:
    // The edge of the square the picture is drawn into: round(width / zoom), at least 1.
    int drawnSize(float zoom) const;
    // Draws the picture into that square, centred on (x, y).
    void drawPicture(int x, int y, cGraphics &graphics, float zoom, const ColorMatrix *attributes) const;
    void setImage(cBitmap &&image);

    int16_t m_x = 0;
    int16_t m_y = 0;
    bool m_selected = false;
    int16_t m_id = 0;
    uint8_t m_routeIndex = 0;
    QString m_key;
    int16_t m_angle = 0;
    cBitmap m_image;
    mutable QImage m_highlighted;
    // The picture as last drawn, tinted and scaled to its size on screen: a cache, so
    // drawing a const object may refresh it.
    mutable QImage m_sprite;
    mutable int m_spriteSize = -1;
    mutable const ColorMatrix *m_spriteTint = nullptr;
    mutable bool m_spriteSmooth = true;
    mutable QRect m_spriteOpaque;
};

class nrmlObject : public varnoObject {
public:
    nrmlObject();
    void setID(int16_t id) override; // ID 0 makes the key "start"
    uint8_t Width() const override { return 0; }
    void Update(int16_t angle, uint8_t width = 0) override;
    void Draw(int x, int y, cGraphics &graphics, float zoom, const ColorMatrix *attributes) const override;
    std::unique_ptr<varnoObject> clone() const override;

private:
    uint8_t m_spare = 0;
};

class ctrlObject : public varnoObject {
public:
    ctrlObject() = default; // no creation key
    void setID(int16_t id) override; // 0..4 give "start", "finish", "checkpoint 1".."3"
    uint8_t Width() const override { return m_width; }
    void Update(int16_t angle, uint8_t width) override;
    void Draw(int x, int y, cGraphics &graphics, float zoom, const ColorMatrix *attributes) const override;
    std::unique_ptr<varnoObject> clone() const override;

private:
    uint8_t m_width = 0;
};

class mrshObject : public varnoObject {
public:
    mrshObject();
    void setID(int16_t id) override; // also picks the pen colour
    uint8_t RouteIndex() const override; // only route checkers have one
    uint8_t Width() const override { return m_width; }
    int16_t ImageSize() const override; // Width x 23
    QRect DrawnRect(int x, int y, float zoom) const override; // the circle and any picture
    void Update(int16_t angle, uint8_t width) override;
    void Draw(int x, int y, cGraphics &graphics, float zoom, const ColorMatrix *attributes) const override;
    std::unique_ptr<varnoObject> clone() const override;

    // The circle's colour as set with the ID (green for route checkers, red otherwise).
    uint32_t PenColour() const { return m_penColour; }

private:
    uint8_t m_width = 0;
    uint32_t m_penColour = 0xFFFF0000u;
};

// A new object of the class a kind is built with (not yet set up).
std::unique_ptr<varnoObject> CreateObjectForKind(int kind);

// One record of the selection: the object's key and its offset inside the selection box.
struct selObject {
    QString strKey;
    int16_t X = 0;
    int16_t Y = 0;
};
