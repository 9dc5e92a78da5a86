// The .pack reader, then PackRead into an AU1 and a BL3 layout at the centre, at the
// corner and far outside (where the offsets overflow 16 bits). What a drop placed is
// written back with PackWrite and must read back as the same records.

#include "FuzzSupport.h"

#include "base/ErrorLog.h"
#include "app/LayoutSession.h"
#include "base/Runtime.h"

#include <QFile>
#include <array>
#include <memory>

namespace {

struct Target {
    std::unique_ptr<LayoutSession> session;
    LayoutDocument *doc = nullptr;
    DocumentState empty;
};

std::array<Target, 2> &targets()
{
    static std::array<Target, 2> list = [] {
        std::array<Target, 2> t;
        const char *names[2] = {"layouts/AU1_pack.lyt", "layouts/BL3_pack.lyt"};
        for (int i = 0; i < 2; ++i) {
            t[i].session = std::make_unique<LayoutSession>();
            t[i].session->setFileName(fuzz::app(QLatin1String(names[i])));
            t[i].session->LayoutLoadBG();
            t[i].doc = &t[i].session->document();
            t[i].empty = t[i].doc->snapshot();
        }
        return t;
    }();
    return list;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    fuzz::QuietDialogs &dialogs = fuzz::init();
    const QString input = fuzz::app(QStringLiteral("packs/AU_input.pack"));
    fuzz::write(input, data, size);
    fuzz::resetLog();

    try {
        const PackData pack = ReadPackFile(input);
        fuzz::check(pack.records.size() <= qMax<int>(0, pack.count), "more records than the count");
        fuzz::check(pack.records.size() * 8 + 6 <= qsizetype(size), "records that are not in the file");
    } catch (const rt::Error &e) {
        fuzz::check(e.number() == rt::InputPastEndOfFile && size < 6, "unexpected reader error", e.message());
    }

    const int16_t drops[3][2] = {{125, 100}, {1, 1}, {32767, -32768}};
    for (Target &t : targets()) {
        for (const auto &drop : drops) {
            fuzz::resetLog();
            t.doc->restore(t.empty);
            t.session->PackRead(QStringLiteral("AU_input.pack"), drop[0], drop[1]);
            t.session->undoStack().clear(); // one input's history is no use to the next
            fuzz::check(t.doc->Objects().Count() <= qMax<qsizetype>(0, (qsizetype(size) - 6) / 8),
                        "more objects than records");
            if (t.doc->Selection().isEmpty())
                continue;
            // What was placed goes out as a pack again and reads back record for record.
            const QString out = fuzz::app(QStringLiteral("packs/") + t.doc->LayoutType().left(2)
                                          + QStringLiteral("_out.pack"));
            QFile::remove(out);
            dialogs.saveAnswer = out;
            fuzz::resetLog();
            t.session->PackWrite();
            dialogs.saveAnswer.clear();
            if (!LoggedErrors().isEmpty())
                continue; // a box wider than 16 bits is refused with an overflow
            const PackData back = ReadPackFile(out);
            fuzz::check(back.count == t.doc->Selection().size() && back.records.size() == back.count,
                        "a written pack reads back short");
            for (int i = 0; i < back.records.size(); ++i) {
                const selObject &s = t.doc->Selection()[i];
                const varnoObject &o = t.doc->Objects().Item(s.strKey);
                const PackRecord &r = back.records[i];
                fuzz::check(r.ID == o.ID() && r.X == s.X && r.Y == s.Y && r.Angle == o.Angle() && r.Width == o.Width(),
                            "a written pack record differs");
            }
        }
    }
    return 0;
}
