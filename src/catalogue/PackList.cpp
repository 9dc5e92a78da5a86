#include "catalogue/PackList.h"

#include "base/ErrorLog.h"
#include "base/Settings.h"
#include "catalogue/ObjectKinds.h"
#include "catalogue/PackFormat.h"
#include "base/Runtime.h"
#include "imaging/cGraphics.h"

#include <QDir>

using namespace Qt::StringLiterals;

void PackList::Clear()
{
    m_entries.clear();
    m_entries.append(PackEntry{});
}

const PackEntry &PackList::Entry(int number) const
{
    rt::checkIndex(number, 0, Count());
    return m_entries[number];
}

bool PackList::Refresh()
{
    Clear();
    return guarded(u"Objectbar.RefreshPacks"_s, [this] {
        const QString folder = AppPath() + u"packs"_s;
        // Every pack is listed before any is read, so a broken pack ends the previews
        // but not the list: the packs after it keep their rows and can still be dropped
        // (the drop reads the file again and reports what is wrong with it).
        for (const QString &name : PackFileNames(folder, PackSitePrefix()))
            m_entries.append(PackEntry{name, {}, {}});
        for (qsizetype n = 1; n < m_entries.size(); ++n) {
            PackEntry &entry = m_entries[n];
            const PackData pack = ReadPackFile(folder + QDir::separator() + entry.FileName);
            // A pack that ends before its count is as broken for the preview as it is
            // for placing it.
            if (!pack.complete())
                rt::raise(rt::InputPastEndOfFile);
            entry.Preview = PackPreview(pack);
            entry.Caption = PackCaption(entry.FileName);
        }
    });
}

QString PackSitePrefix()
{
    return ObjectKinds()[Kind::Ramp].Allowed ? u"BL"_s : u"AU"_s;
}

QStringList PackFileNames(const QString &folder, const QString &prefix)
{
    QDir dir(folder);
    dir.setNameFilters({prefix + u"_*.pack"_s});
    dir.setFilter(QDir::Files); // no CaseSensitive flag: "au_x.PACK" is a pack too
    dir.setSorting(QDir::Name | QDir::IgnoreCase);
    return dir.entryList();
}

QString PackCaption(const QString &fileName)
{
    return fileName.mid(3, std::max<qsizetype>(0, fileName.size() - 8));
}

cBitmap PackPreview(const PackData &pack)
{
    cBitmap preview;
    preview.CreateFromScan0(48, 48);
    if (preview.isNull())
        rt::raise(rt::OutOfMemory);
    // A box of no size (a single object, or objects on one spot) puts every dot on the
    // centre instead of dividing by zero.
    const int larger = std::max(pack.width, pack.height);
    const double scale = larger == 0 ? 0.0 : 46.0 / double(larger);
    const int16_t halfW = rt::toInt16(double(pack.width) * scale) / 2;
    const int16_t halfH = rt::toInt16(double(pack.height) * scale) / 2;
    {
        cGraphics g; // finished before the preview is handed back
        g.GetGraphicsContext(preview);
        for (const PackRecord &r : pack.records) {
            const int16_t x = rt::toInt16(23.0 - halfW + double(r.X) * scale);
            const int16_t y = rt::toInt16(23.0 - halfH + double(r.Y) * scale);
            g.DrawEllipseI(0xFFFFFFFFu, 1.0f, x, y, 1, 1);
        }
    }
    return preview;
}
