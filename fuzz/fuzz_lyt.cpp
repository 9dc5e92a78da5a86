// The .lyt reader. Every input is opened under each layout type's file name (the type
// comes from the name only), plus a lower-case name and one of no known type. A layout
// that opens is saved and opened again, and must come back with the same objects:
// a file Varno accepted is never changed by its own save.

#include "FuzzSupport.h"

#include "base/ErrorLog.h"
#include "app/LayoutSession.h"

#include <QFile>
#include <QStringList>
#include <memory>
#include <vector>

namespace {

struct Slot {
    QString name;
    bool roundTrip; // AU3 and AU4 are read back displaced on purpose; no round trip there
    std::unique_ptr<LayoutSession> doc;
    std::unique_ptr<LayoutSession> back;
    DocumentState empty;
};

// A route checker's heading byte holds its number, so its angle is not kept; its width
// is written in steps of two, and a width of 1 is written as 0, which reads as 10.
int keptWidth(const varnoObject &o)
{
    if (o.ID() != 59)
        return o.Width();
    const int even = o.Width() / 2 * 2;
    return even == 0 ? 10 : even;
}

QString objectsText(const LayoutDocument &doc)
{
    QStringList out;
    for (const varnoObject &o : doc.Objects())
        out << QStringLiteral("%1@%2,%3 a%4 w%5")
                   .arg(o.ID())
                   .arg(o.X())
                   .arg(o.Y())
                   .arg(o.ID() == 59 ? 0 : o.Angle())
                   .arg(keptWidth(o));
    return out.join(QStringLiteral("; "));
}

std::vector<Slot> &layouts()
{
    static std::vector<Slot> list = [] {
        std::vector<Slot> s;
        const QList<QPair<QString, bool>> names{
            {QStringLiteral("AU1_f.lyt"), true}, {QStringLiteral("AU2_f.lyt"), true},
            {QStringLiteral("AU3_f.lyt"), false}, {QStringLiteral("AU4_f.lyt"), false},
            {QStringLiteral("BL3_f.lyt"), true}, {QStringLiteral("bl3_f.lyt"), true},
            {QStringLiteral("XY9_f.lyt"), false}};
        for (const auto &[name, roundTrip] : names) {
            Slot slot{name, roundTrip, std::make_unique<LayoutSession>(), std::make_unique<LayoutSession>()};
            // Both documents keep their background; LayoutOpen starts every read afresh.
            slot.doc->setFileName(fuzz::app(QStringLiteral("layouts/") + name));
            slot.doc->LayoutLoadBG();
            slot.back->setFileName(fuzz::app(QStringLiteral("out/") + name));
            slot.back->LayoutLoadBG();
            slot.empty = slot.doc->document().snapshot();
            // Every type's name points at the one input file.
            QFile::link(fuzz::app(QStringLiteral("layouts/input.lyt")), slot.doc->FileName());
            s.push_back(std::move(slot));
        }
        return s;
    }();
    return list;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    fuzz::init();
    fuzz::write(fuzz::app(QStringLiteral("layouts/input.lyt")), data, size);
    for (Slot &slot : layouts()) {
        fuzz::resetLog();
        LayoutSession &session = *slot.doc;
        LayoutDocument &doc = session.document();
        doc.restore(slot.empty); // as a new window would start
        const bool opened = session.LayoutOpen();
        fuzz::check(doc.Objects().Count() <= qMax<qsizetype>(0, (qsizetype(size) - 12) / 8),
                    "more objects than records", slot.name);
        if (!opened || !slot.roundTrip)
            continue;
        const QString saved = slot.back->FileName();
        QFile::remove(saved);
        // Save a copy: the document's file name moves to out/ and back.
        const QString source = session.FileName();
        session.setFileName(saved);
        const bool written = session.LayoutSave(false);
        session.setFileName(source);
        fuzz::check(written, "an opened layout could not be saved", slot.name + QLatin1Char(' ') + LoggedErrors().join(QLatin1Char('\n')));
        fuzz::check(slot.back->LayoutOpen(), "a saved layout does not open", slot.name);
        const LayoutDocument &back = slot.back->document();
        fuzz::check(objectsText(back) == objectsText(doc), "a saved layout came back changed",
                    slot.name + QStringLiteral("\nopened: ") + objectsText(doc) + QStringLiteral("\nsaved:  ")
                        + objectsText(back));
        fuzz::check(back.Laps() == doc.Laps(), "laps changed by a save", slot.name);
    }
    return 0;
}
