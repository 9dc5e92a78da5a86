#pragma once
// A layout opened by varno-cli exactly as the editor opens one: the type from the name,
// the background the options name for it, then the file, with refusals collected.

#include "core/LayoutDocument.h"

#include <QStringList>

namespace cli {

struct OpenedLayout {
    LayoutDocument doc;
    QStringList messages;
    bool backgroundLoaded = false;
    bool opened = false;

    explicit OpenedLayout(const QString &file);

    // Without its background every object is refused as outside the layout, so the
    // document looks empty; written back, it would wipe the file.
    bool backgroundMissing() const;
    // Why this layout must not be written back or drawn, or empty when it may.
    QString problem(const QString &file) const;
};

} // namespace cli
