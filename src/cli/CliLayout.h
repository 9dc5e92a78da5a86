#pragma once
// A layout opened by varno-cli through the same session the editor opens it with, with
// its refusals collected.

#include "app/LayoutSession.h"

#include <QStringList>

namespace cli {

struct OpenedLayout {
    LayoutSession session;
    QStringList messages;
    bool opened = false;

    explicit OpenedLayout(const QString &file);

    const LayoutDocument &doc() const { return session.document(); }
    // Why this layout must not be written back or drawn, or empty when it may.
    QString problem(const QString &file) const;
};

} // namespace cli
