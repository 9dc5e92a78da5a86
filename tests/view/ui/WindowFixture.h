#pragma once
// A document window on a plain 1000 x 800 background at zoom 1, scrolled to the top
// left, with the real object pictures, English texts and dialogs that never block.

#include "base/ErrorLog.h"
#include "base/Language.h"
#include "base/Settings.h"
#include "catalogue/ObjectKinds.h"
#include "base/Runtime.h"
#include "support/TestSupport.h"
#include "view/ObjectClipboard.h"
#include "view/ui/frmLayout.h"

#include <QApplication>
#include <QMouseEvent>
#include <QtTest>
#include <memory>
#include <optional>

inline const QColor FixtureGround(30, 90, 30);

struct WindowFixture {
    Options previousOptions = options();
    TempAppFolder app{true};
    ScriptedDialogs dialogs;

    WindowFixture()
    {
        QImage bg(1000, 800, QImage::Format_RGB32);
        bg.fill(FixtureGround);
        const QString path = app.file(QStringLiteral("plain.png"));
        bg.save(path);
        options().AU1 = options().AU2 = options().AU34 = options().BL3 = path;
        options().SaveFolder = app.file(QStringLiteral("layouts"));
        options().Language = app.file(QStringLiteral("lang/English.lng"));
        LoadLanguage();
        FillCatalogue();
        ClearLoggedErrors();
        objectClipboard() = ObjectClipboard();
    }
    ~WindowFixture() { options() = previousOptions; }

    QString layoutPath(const QString &name) const { return app.file(QStringLiteral("layouts/") + name); }

    // A shown window for the file, at zoom 1 with layout (1, 1) at the top left.
    std::unique_ptr<frmLayout> window(const QString &name)
    {
        auto w = std::make_unique<frmLayout>();
        w->resize(660, 520);
        if (!w->Initilize(layoutPath(name)))
            return nullptr;
        w->show();
        if (!QTest::qWaitForWindowExposed(w.get()))
            return nullptr;
        w->setZoom(1.0f);
        w->view().setScroll(0, 0);
        w->view().setScroll(1, 0);
        w->syncScrollBars();
        return w;
    }
};

// Layout point to view pixel of the window.
inline QPoint viewOf(frmLayout &w, int x, int y)
{
    int32_t vx = x, vy = y;
    w.view().layoutToView(vx, vy);
    return QPoint(vx, vy);
}

inline void addTo(frmLayout &w, int id, int x, int y, int angle = 0, int width = 0, bool selected = false)
{
    int16_t a = int16_t(angle);
    uint8_t wd = uint8_t(width);
    bool fromView = false;
    w.document().ObjectAdd(uint8_t(id), int16_t(x), int16_t(y), a, wd, fromView, selected);
    w.document().SelectionUpdate(false);
}

// Sends one mouse event straight to the canvas (no real pointer involved).
inline void mouse(frmLayout &w, QEvent::Type type, const QPoint &pos, Qt::MouseButton button,
                  Qt::MouseButtons buttons, Qt::KeyboardModifiers mods = Qt::NoModifier)
{
    QWidget *c = w.canvas();
    QMouseEvent e(type, QPointF(pos), c->mapToGlobal(QPointF(pos)), button, buttons, mods);
    QApplication::sendEvent(c, &e);
}

// Press at a, move through the steps to b, release at b.
inline void drag(frmLayout &w, const QPoint &a, const QPoint &b, Qt::MouseButton button = Qt::LeftButton,
                 Qt::KeyboardModifiers mods = Qt::NoModifier, int steps = 4)
{
    mouse(w, QEvent::MouseButtonPress, a, button, button, mods);
    for (int i = 1; i <= steps; ++i)
        mouse(w, QEvent::MouseMove, a + (b - a) * i / steps, Qt::NoButton, button, mods);
    mouse(w, QEvent::MouseButtonRelease, b, button, Qt::NoButton, mods);
}

inline void click(frmLayout &w, const QPoint &at, Qt::MouseButton button = Qt::LeftButton,
                  Qt::KeyboardModifiers mods = Qt::NoModifier)
{
    mouse(w, QEvent::MouseButtonPress, at, button, button, mods);
    mouse(w, QEvent::MouseButtonRelease, at, button, Qt::NoButton, mods);
}

// "id@x,y aAngle wWidth" of every object, with "*" for selected ones.
inline QString describe(const LayoutDocument &doc)
{
    QStringList out;
    for (const varnoObject &o : doc.Objects())
        out << QStringLiteral("%1@%2,%3 a%4 w%5%6")
                   .arg(o.ID())
                   .arg(o.X())
                   .arg(o.Y())
                   .arg(o.Angle())
                   .arg(o.Width())
                   .arg(o.Selected() ? QStringLiteral("*") : QString());
    return out.join(QStringLiteral("; "));
}
