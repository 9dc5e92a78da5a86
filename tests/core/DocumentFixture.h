#pragma once
// A temporary application folder with plain backgrounds of a chosen size for every
// layout type, and helpers that build layout documents and file bytes by hand.

#include "app/Language.h"
#include "app/Startup.h"
#include "catalogue/ObjectKinds.h"
#include "core/LayoutDocument.h"
#include "support/TestSupport.h"

#include <QImage>
#include <QtEndian>
#include <memory>

struct DocumentFixture {
    Options previousOptions = options();
    std::unique_ptr<TempAppFolder> app;

    // Backgrounds of w x h pixels for all five types.
    explicit DocumentFixture(int w = 1000, int h = 1000)
        : app(std::make_unique<TempAppFolder>(false))
    {
        setBackgrounds(w, h);
        // English texts: refusals and boxes are compared by their words.
        options().Language = app->file(QStringLiteral("lang/English.lng"));
        LoadLanguage();
    }

    ~DocumentFixture() { options() = previousOptions; }
    DocumentFixture(const DocumentFixture &) = delete;
    DocumentFixture &operator=(const DocumentFixture &) = delete;

    void setBackgrounds(int w, int h)
    {
        QImage bg(w, h, QImage::Format_RGB32);
        bg.fill(Qt::darkGray);
        const QString path = app->file(QStringLiteral("bg_%1x%2.png").arg(w).arg(h));
        bg.save(path);
        options().AU1 = options().AU2 = options().AU34 = options().BL3 = path;
        options().SaveFolder = app->file(QStringLiteral("layouts"));
        options().RememberSaveFolder = true;
    }

    QString layoutPath(const QString &name) const { return app->file(QStringLiteral("layouts/") + name); }

    // A document for a file name with its background loaded.
    std::unique_ptr<LayoutDocument> document(const QString &name) const
    {
        auto doc = std::make_unique<LayoutDocument>();
        doc->setFileName(layoutPath(name));
        doc->LayoutLoadBG();
        return doc;
    }
};

// Convenience around the by-reference ObjectAdd.
inline void addObject(LayoutDocument &doc, int id, int x, int y, int angle = 0, int width = 0, bool selected = false)
{
    int16_t a = int16_t(angle);
    uint8_t w = uint8_t(width);
    bool fromView = false;
    doc.ObjectAdd(uint8_t(id), int16_t(x), int16_t(y), a, w, fromView, selected);
}

inline QByteArray le16(int v)
{
    QByteArray b(2, 0);
    qToLittleEndian<qint16>(qint16(v), b.data());
    return b;
}

inline QByteArray lytHeader(int revision, int countLow, int countHigh, int laps)
{
    QByteArray h("LFSLYT", 6);
    h += char(0);
    h += char(revision);
    h += char(countLow);
    h += char(countHigh);
    h += char(laps);
    h += char(0);
    return h;
}

inline QByteArray lytRecord(int x, int y, int z, int flags, int index, int heading)
{
    return le16(x) + le16(y) + char(z) + char(flags) + char(index) + char(heading);
}
