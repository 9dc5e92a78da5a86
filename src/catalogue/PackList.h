#pragma once
// The packs the palette offers: the pack files of the active site, each with a 48 x 48
// dot preview and a caption. Built without a widget so it can be tested on its own.

#include "imaging/cBitmap.h"

#include <QList>
#include <QString>
#include <QStringList>

struct PackData;

struct PackEntry {
    QString FileName; // inside the packs folder, e.g. "AU_slalom.pack"
    cBitmap Preview;  // 48 x 48
    QString Caption;  // the name without its site prefix and ".pack"
};

class PackList {
public:
    PackList() { Clear(); }

    // Back to the single empty entry 0.
    void Clear();
    // Packs are numbered from 1; Count() is the highest number.
    int Count() const { return int(m_entries.size()) - 1; }
    // Entry 0 is always empty; error 9 outside 0..Count().
    const PackEntry &Entry(int number) const;

    // Rebuilds the list for the active site from AppPath() + "packs/": every pack file is
    // listed first, then read for its preview and caption. A pack that cannot be read is
    // reported " in Objectbar.RefreshPacks" and ends the reading: every pack stays listed,
    // but it and the packs after it have no preview or caption. Returns false then.
    bool Refresh();

private:
    QList<PackEntry> m_entries;
};

// "BL" when the ramp, which exists only at the BL site, is Allowed; otherwise "AU".
QString PackSitePrefix();
// The pack files in folder whose names match prefix + "_*.pack" (case-insensitive, as
// the file system that packs come from matches names), ordered by name.
QStringList PackFileNames(const QString &folder, const QString &prefix);
// The caption shown for a pack file name: from the fourth character, length - 8.
QString PackCaption(const QString &fileName);
// The 48 x 48 preview: one white dot per record, the box scaled to fit 46 pixels and
// centred. Overflow of a dot position raises error 6.
cBitmap PackPreview(const PackData &pack);
