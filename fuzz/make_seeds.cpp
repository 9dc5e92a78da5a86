// Writes the seed corpora with Varno's own writers: layouts of every type saved by
// LayoutSave, packs by PackWrite, Varno.cfg by SaveOptions, the English .lng, and
// pictures by cGDIP::SaveBitmapToFile, plus copies of those PNGs whose header claims
// an enormous size (with a correct checksum, so only the size is a lie).
//
//   fuzz_seeds OUTPUT_FOLDER      (tools/fuzz.sh runs it into fuzz/corpus/)

#include "FuzzSupport.h"

#include "base/ConfigFile.h"
#include "base/Language.h"
#include "base/Settings.h"
#include "catalogue/ObjectKinds.h"
#include "app/LayoutSession.h"
#include "imaging/cBitmap.h"
#include "imaging/cGDIP.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QtEndian>
#include <cstdio>

namespace {

QString g_out;

void put(const QString &target, const QString &name, const QByteArray &bytes)
{
    QDir().mkpath(g_out + QLatin1Char('/') + target);
    fuzz::write(g_out + QLatin1Char('/') + target + QLatin1Char('/') + name, bytes);
}

void add(LayoutDocument &doc, int id, int x, int y, int angle, int width, bool selected = false)
{
    int16_t a = int16_t(angle);
    uint8_t w = uint8_t(width);
    bool fromView = false;
    doc.ObjectAdd(uint8_t(id), int16_t(x), int16_t(y), a, w, fromView, selected);
}

// A layout of the type with the unique objects, a few ordinary ones, restricted areas
// and two route checkers; the pack seed is its selection.
void layoutSeeds(fuzz::QuietDialogs &dialogs)
{
    for (const char *type : {"AU1", "AU2", "AU3", "AU4", "BL3"}) {
        const QString name = QLatin1String(type) + QStringLiteral("_seed.lyt");
        LayoutSession session;
        LayoutDocument &doc = session.document();
        session.setFileName(fuzz::app(QStringLiteral("out/") + name));
        session.LayoutLoadBG();
        doc.setLaps(3);
        add(doc, 0, 30, 40, 90, 0, true);
        add(doc, 1, 200, 20, 0, 12, true);
        add(doc, 2, 100, 60, -45, 8);
        const bool au = QLatin1String(type).startsWith(QLatin1String("AU"));
        int placed = 0;
        for (int k = Kind::FirstOrdinary; k <= Kind::LastOrdinary && placed < 6; ++k)
            if (FileIndexForKind(k, au) != NotAtSite) {
                add(doc, k, 20 + 30 * placed, 90, 15 * placed, 0, placed < 2);
                ++placed;
            }
        add(doc, 56, 120, 150, 0, 6);
        add(doc, 59, 60, 180, 0, 4);
        add(doc, 59, 160, 180, 0, 4);
        QFile::remove(session.FileName());
        session.LayoutSave(false);
        put(QStringLiteral("fuzz_lyt"), name, fuzz::readAll(session.FileName()));

        const QString pack = fuzz::app(QStringLiteral("packs/") + QLatin1String(type).left(2) + QStringLiteral("_seed.pack"));
        QFile::remove(pack);
        doc.SelectionUpdate();
        dialogs.saveAnswer = pack;
        session.PackWrite();
        dialogs.saveAnswer.clear();
        put(QStringLiteral("fuzz_pack"), QLatin1String(type) + QStringLiteral("_seed.pack"), fuzz::readAll(pack));
    }
    // An empty BL3 layout of the older revision.
    LayoutSession empty;
    empty.setFileName(fuzz::app(QStringLiteral("out/BL3_empty.lyt")));
    empty.LayoutLoadBG();
    empty.document().setRevision(250);
    QFile::remove(empty.FileName());
    empty.LayoutSave(false);
    put(QStringLiteral("fuzz_lyt"), QStringLiteral("BL3_empty.lyt"), fuzz::readAll(empty.FileName()));
}

void configSeeds()
{
    options() = Options::defaults();
    options().SavePercent = 50;
    options().SaveType = QStringLiteral("png");
    options().RememberOpenFolder = false;
    SaveOptions({QStringLiteral("/home/user/layouts/AU1_a.lyt"), QString(), QStringLiteral("/tmp/BL3 b.lyt"), QString()});
    put(QStringLiteral("fuzz_cfg"), QStringLiteral("Varno.cfg"), fuzz::readAll(ConfigPath()));
    options().AU1 = QStringLiteral("/home/user/Bilder/Größe ½.png");
    SaveOptions({QStringLiteral("/home/user/Δ.lyt"), QString()});
    put(QStringLiteral("fuzz_cfg"), QStringLiteral("Varno-utf8.cfg"), fuzz::readAll(ConfigPath()));
    options() = Options::defaults();
}

// The CRC-32 PNG chunks carry (the same as zlib's).
quint32 crc32Of(const QByteArray &bytes)
{
    quint32 crc = 0xffffffffu;
    for (char c : bytes) {
        crc ^= quint8(c);
        for (int k = 0; k < 8; ++k)
            crc = (crc >> 1) ^ (0xedb88320u & (0u - (crc & 1u)));
    }
    return ~crc;
}

// A PNG chunk with its length and checksum.
QByteArray chunk(const char *type, const QByteArray &body)
{
    QByteArray out(4, 0);
    qToBigEndian<quint32>(quint32(body.size()), out.data());
    const QByteArray typed = QByteArray(type, 4) + body;
    out += typed;
    QByteArray crc(4, 0);
    qToBigEndian<quint32>(crc32Of(typed), crc.data());
    return out + crc;
}

// The PNG with its IHDR size replaced; the rest of the file is kept.
QByteArray claimSize(const QByteArray &png, quint32 width, quint32 height)
{
    if (png.size() < 33 || png.mid(12, 4) != "IHDR")
        fuzz::fail("not a PNG written by Varno");
    QByteArray body = png.mid(16, 13);
    qToBigEndian<quint32>(width, body.data());
    qToBigEndian<quint32>(height, body.data() + 4);
    return png.left(8) + chunk("IHDR", body) + png.mid(33);
}

void pictureSeeds()
{
    cBitmap bitmap;
    bitmap.CreateFromScan0(24, 16);
    {
        QPainter p(&bitmap.image());
        p.fillRect(2, 2, 12, 8, QColor(200, 40, 40, 180));
        p.setPen(Qt::blue);
        p.drawLine(0, 15, 23, 0);
    }
    cGDIP gdip;
    for (const char *ext : {"png", "jpg", "gif", "bmp", "tif"}) {
        const QString file = fuzz::app(QStringLiteral("out/seed.") + QLatin1String(ext));
        if (!gdip.SaveBitmapToFile(bitmap, file, 75))
            fuzz::fail("cannot write a seed picture", file);
        put(QStringLiteral("fuzz_picture"), QStringLiteral("seed.") + QLatin1String(ext), fuzz::readAll(file));
    }
    const QByteArray png = fuzz::readAll(fuzz::app(QStringLiteral("out/seed.png")));
    put(QStringLiteral("fuzz_picture"), QStringLiteral("huge-65535.png"), claimSize(png, 65535, 65535));
    put(QStringLiteral("fuzz_picture"), QStringLiteral("huge-2g.png"), claimSize(png, 0x7fffffff, 0x7fffffff));
    put(QStringLiteral("fuzz_picture"), QStringLiteral("wide-1x300000.png"), claimSize(png, 300000, 1));
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: fuzz_seeds OUTPUT_FOLDER\n");
        return 2;
    }
    fuzz::QuietDialogs &dialogs = fuzz::init();
    g_out = QString::fromLocal8Bit(argv[1]);
    layoutSeeds(dialogs);
    configSeeds();
    put(QStringLiteral("fuzz_lng"), QStringLiteral("English.lng"), EnglishLanguageFile());
    pictureSeeds();
    return 0;
}
