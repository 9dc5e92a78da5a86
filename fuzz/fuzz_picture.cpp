// Picture bytes as a background (LayoutLoadBG) and as an object picture (AddItem).
// Neither may fail other than by saying so; a picture that loads has the size it says.

#include "FuzzSupport.h"

#include "base/ErrorLog.h"
#include "base/Settings.h"
#include "catalogue/ObjectKinds.h"
#include "app/LayoutSession.h"
#include "base/Runtime.h"

#include <memory>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    fuzz::init();
    const QString path = fuzz::app(QStringLiteral("objects/fuzz.png"));
    fuzz::write(path, data, size);
    fuzz::resetLog();

    options().AU1 = path;
    static auto doc = [] {
        auto d = std::make_unique<LayoutSession>();
        d->setFileName(fuzz::app(QStringLiteral("layouts/AU1_picture.lyt")));
        return d;
    }();
    const bool loaded = doc->LayoutLoadBG();
    fuzz::check(loaded == LoggedErrors().isEmpty(), "LayoutLoadBG neither loaded nor told",
                LoggedErrors().join(QLatin1Char('\n')));
    if (loaded) {
        const LayoutDocument &d = doc->document();
        fuzz::check(d.BoundsWidth() > 0 && d.BoundsHeight() > 0, "a loaded background without a size");
        fuzz::check(doc->Background().Handle().width() == d.BoundsWidth(), "bounds differ from the picture");
    }

    try {
        AddItem(20, 1, QStringLiteral("fuzz"), 20, 20, QStringLiteral("fuzz"), 255, 128, 0, (size & 1) != 0);
    } catch (const rt::Error &e) {
        // Only a picture too large for the palette's 16-bit offsets may be refused.
        fuzz::check(e.number() == rt::Overflow, "unexpected AddItem error", e.message());
    }
    const ObjectKind &kind = ObjectKindAt(20);
    fuzz::check(kind.HasImage && kind.Image.Width() > 0, "AddItem left the kind without a picture");
    return 0;
}
