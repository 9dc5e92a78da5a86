#pragma once
// A temporary application folder with a plain background of one size for every layout
// type, and helpers that build layout documents and file bytes by hand.

#include "base/Language.h"
#include "base/Settings.h"
#include "catalogue/ObjectKinds.h"
#include "app/LayoutSession.h"
#include "core/LayoutFormat.h"
#include "base/Runtime.h"
#include "support/TestSupport.h"

#include "base/ErrorLog.h"

#include <QImage>
#include <QObject>
#include <QtEndian>
#include <functional>
#include <memory>
#include <optional>

struct DocumentFixture {
    Options previousOptions = options();
    TempAppFolder app{false};

    int width, height;

    explicit DocumentFixture(int w = 1000, int h = 800) : width(w), height(h)
    {
        QImage bg(w, h, QImage::Format_RGB32);
        bg.fill(Qt::darkGray);
        const QString path = app.file(QStringLiteral("bg.png"));
        bg.save(path);
        options().AU1 = options().AU2 = options().AU34 = options().BL3 = path;
        options().SaveFolder = app.file(QStringLiteral("layouts"));
        options().RememberSaveFolder = true;
        // English texts: refusals and boxes are compared by their words.
        options().Language = app.file(QStringLiteral("lang/English.lng"));
        LoadLanguage();
        FillCatalogue();
    }
    ~DocumentFixture() { options() = previousOptions; }

    QString layoutPath(const QString &name) const { return app.file(QStringLiteral("layouts/") + name); }

    // A session for a file name in layouts/, its background loaded, the file not read.
    std::unique_ptr<LayoutSession> session(const QString &name) const
    {
        auto s = std::make_unique<LayoutSession>();
        s->setFileName(layoutPath(name));
        s->LayoutLoadBG();
        return s;
    }
    // A document of the type the name begins with, as a session leaves it with the
    // fixture's background loaded.
    std::unique_ptr<LayoutDocument> document(const QString &name) const
    {
        auto doc = std::make_unique<LayoutDocument>();
        doc->setLayoutType(name.left(3).toUpper());
        doc->ResetStartMarker();
        // An unknown type gets no picture, so no bounds.
        if (const lyt::TypeInfo *type = lyt::typeInfo(doc->LayoutType())) {
            doc->setBounds(width, height);
            doc->setBackgroundScale(float(double(width) / type->span));
        }
        return doc;
    }
};

// Convenience around the by-reference ObjectAdd.
inline void addObject(LayoutDocument &doc, int id, int x, int y, int angle = 0, int width = 0,
                      bool selected = false, bool fromView = false)
{
    int16_t a = int16_t(angle);
    uint8_t w = uint8_t(width);
    doc.ObjectAdd(uint8_t(id), int16_t(x), int16_t(y), a, w, fromView, selected);
}

// The same as one undo step of the session, as the editor adds an object.
inline void addRecorded(LayoutSession &session, int id, int x, int y, int angle = 0, int width = 0)
{
    session.record(QStringLiteral("add"), 0, [&] { addObject(session.document(), id, x, y, angle, width); });
}

// The number of the run-time error fn raised, 0 when none.
inline int errorOf(const std::function<void()> &fn)
{
    try {
        fn();
    } catch (const rt::Error &e) {
        return e.number();
    }
    return 0;
}

// The objects (or only the selected ones) as "id@x,y aAngle wWidth; ...".
inline QString objectsText(const LayoutDocument &doc, bool selectedOnly = false)
{
    QStringList out;
    for (const varnoObject &o : doc.Objects())
        if (o.Selected() || !selectedOnly)
            out << QStringLiteral("%1@%2,%3 a%4 w%5")
                       .arg(o.ID())
                       .arg(o.X())
                       .arg(o.Y())
                       .arg(o.Angle())
                       .arg(o.Width());
    return out.join(QStringLiteral("; "));
}

inline QByteArray le16(int v)
{
    QByteArray b(2, 0);
    qToLittleEndian<qint16>(qint16(v), b.data());
    return b;
}

inline QByteArray lytHeader(int revision, int count, int laps)
{
    return QByteArray("LFSLYT\0", 7) + char(revision) + le16(count) + char(laps) + char(0);
}

inline QByteArray lytRecord(int x, int y, int z, int flags, int index, int heading)
{
    return le16(x) + le16(y) + char(z) + char(flags) + char(index) + char(heading);
}

inline QByteArray packHeader(int w, int h, int count)
{
    return le16(w) + le16(h) + le16(count);
}

inline QByteArray packRecord(int id, int x, int y, int angle, int width)
{
    return char(id) + le16(x) + le16(y) + le16(angle) + char(width);
}

// Shared set-up of the document suites: a 1000 x 800 application folder, and fresh
// dialogs and an empty error list for every test function.
class DocumentTest : public QObject {
    Q_OBJECT
protected:
    DocumentFixture m_fx{1000, 800};
    std::optional<ScriptedDialogs> m_dialogs;

protected slots:
    void init()
    {
        m_dialogs.emplace();
        ClearLoggedErrors();
        prepare();
    }
    void cleanup() { m_dialogs.reset(); }

protected:
    virtual void prepare() {}
};
