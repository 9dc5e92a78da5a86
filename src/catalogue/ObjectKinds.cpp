#include "catalogue/ObjectKinds.h"

#include "base/ErrorLog.h"
#include "base/Language.h"
#include "base/Settings.h"
#include "base/Runtime.h"
#include "imaging/ColorMatrix.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>

using namespace Qt::StringLiterals;

const std::array<KindDefinition, KindCount> &KindDefinitions()
{
    // category, caption slot, picture, mirror, tint R G B, index at AU sites, index at BL sites.
    // The indices are the simulator's own numbers and are kept exactly, asymmetries included.
    static const std::array<KindDefinition, KindCount> table = {{
        {0, 210, "start", false, 255, 255, 255, 0, 0}, // 0 start
        {0, 211, "line", false, 231, 113, 90, 0, 0}, // 1 finish
        {0, 212, "line", false, 0, 0, 255, 0, 0}, // 2 checkpoint 1
        {0, 213, "line", false, 165, 162, 255, 0, 0}, // 3 checkpoint 2
        {0, 214, "line", false, 0, 255, 255, 0, 0}, // 4 checkpoint 3
        {1, 215, "chalk ahead", false, 255, 255, 255, 50, 46}, // 5 chalk ahead
        {1, 216, "chalk ahead2", false, 255, 255, 255, 53, 47}, // 6 chalk ahead2
        {1, 217, "chalk", false, 255, 255, 255, 52, 49}, // 7 chalk left
        {1, 218, "chalk", true, 255, 255, 255, 51, 48}, // 8 chalk right
        {1, 219, "chalk2", false, 255, 255, 255, 54, 51}, // 9 chalk left2
        {1, 220, "chalk2", true, 255, 255, 255, 55, 50}, // 10 chalk right2
        {1, 221, "chalk3", false, 255, 255, 255, 57, 53}, // 11 chalk left3
        {1, 222, "chalk3", true, 255, 255, 255, 56, 52}, // 12 chalk right3
        {1, 223, "chalk line", false, 255, 255, 255, 59, 54}, // 13 chalk line
        {2, 224, "cone red", false, 255, 255, 255, 29, 22}, // 14 cone red
        {2, 225, "cone", false, 255, 70, 41, 34, 23}, // 15 cone red2
        {2, 226, "cone red3", false, 255, 255, 255, 30, 24}, // 16 cone red3
        {2, 227, "cone pointer", false, 188, 55, 34, 33, 33}, // 17 cone red ptr
        {2, 228, "cone blue", false, 255, 255, 255, 31, 25}, // 18 cone blue
        {2, 229, "cone", false, 48, 206, 255, 61, 30}, // 19 cone blue2
        {2, 230, "cone pointer", false, 29, 173, 244, 64, 35}, // 20 cone blue ptr
        {2, 231, "cone yellow", false, 255, 255, 255, 32, 27}, // 21 cone yellow
        {2, 232, "cone", false, 255, 246, 49, 62, 32}, // 22 cone yellow2
        {2, 233, "cone pointer", false, 203, 185, 31, 63, 34}, // 23 cone yellow ptr
        {2, 234, "cone green", false, 255, 255, 255, 39, 26}, // 24 cone green
        {2, 235, "cone", false, 73, 255, 127, 60, 31}, // 25 cone green2
        {2, 236, "cone pointer", false, 57, 232, 110, 65, 36}, // 26 cone green ptr
        {2, 237, "cone", false, 255, 122, 7, 40, 28}, // 27 cone orange
        {2, 238, "cone white", false, 255, 255, 255, 41, 29}, // 28 cone white
        {2, 239, "cone1", false, 255, 255, 255, 193, 0}, // 29 cone1
        {2, 240, "cone2", false, 255, 255, 255, 193, 1}, // 30 cone2
        {3, 241, "tyres white", false, 255, 255, 255, 0, 12}, // 31 tyres white
        {3, 242, "tyres2 white", false, 255, 255, 255, 3, 17}, // 32 tyres2 white
        {3, 243, "tyres red", false, 255, 255, 255, 1, 193}, // 33 tyres red
        {3, 244, "tyres2 red", false, 255, 255, 255, 4, 193}, // 34 tyres2 red
        {3, 245, "tyres blue", false, 255, 255, 255, 193, 13}, // 35 tyres blue
        {3, 246, "tyres2 blue", false, 255, 255, 255, 193, 18}, // 36 tyres2 blue
        {3, 247, "tyres small", false, 255, 255, 255, 19, 193}, // 37 tyres small
        {4, 248, "banner rsc", false, 255, 255, 255, 193, 19}, // 38 banner rsc
        {4, 249, "banner cromo", false, 255, 255, 255, 193, 20}, // 39 banner cromo
        {4, 250, "banner ad1", false, 255, 255, 255, 24, 193}, // 40 banner ad1
        {4, 251, "banner ad2", false, 255, 255, 255, 25, 193}, // 41 banner ad2
        {4, 252, "banner ad3", false, 255, 255, 255, 27, 193}, // 42 banner ad3
        {4, 253, "bale", false, 255, 255, 255, 23, 193}, // 43 bale
        {4, 254, "post", false, 255, 255, 255, 2, 193}, // 44 post
        {4, 255, "post color", false, 0, 150, 0, 42, 42}, // 45 post green
        {4, 256, "post color", false, 255, 0, 0, 43, 43}, // 46 post red
        {4, 257, "post color", false, 255, 255, 255, 44, 44}, // 47 post white
        {4, 258, "post color", false, 255, 130, 0, 45, 193}, // 48 post orange
        {4, 259, "barrier", false, 255, 255, 255, 46, 41}, // 49 barrier white
        {4, 260, "barrier", false, 150, 0, 0, 47, 40}, // 50 barrier red
        {4, 261, "barrier long", false, 255, 255, 255, 48, 39}, // 51 barrier long
        {4, 262, "keep", false, 255, 255, 255, 49, 38}, // 52 keep left
        {4, 263, "keep", true, 255, 255, 255, 58, 37}, // 53 keep right
        {4, 264, "ramp", false, 255, 255, 255, 193, 82}, // 54 ramp
        {5, 265, "", false, 255, 255, 255, 255, 255}, // 55 restricted invisible
        {5, 266, "marshall", false, 255, 255, 255, 255, 255}, // 56 restricted marshall
        {5, 267, "marshall point", false, 255, 255, 255, 255, 255}, // 57 restricted point left
        {5, 268, "marshall point", true, 255, 255, 255, 255, 255}, // 58 restricted point right
        {5, 269, "", false, 255, 255, 255, 255, 255}, // 59 route checker
        {-1, -1, "b0rk!", false, 255, 255, 255, 193, 193}, // 60 index error!?
    }};
    return table;
}

ObjectClass ClassForKind(int kind)
{
    if (kind >= Kind::Finish && kind <= Kind::Checkpoint3)
        return ObjectClass::Control;
    if (kind >= Kind::RestrictedInvisible && kind <= Kind::RouteChecker)
        return ObjectClass::Marshall;
    return ObjectClass::Normal;
}

std::array<ObjectKind, KindCount> &ObjectKinds()
{
    static std::array<ObjectKind, KindCount> kinds;
    return kinds;
}

ObjectKind &ObjectKindAt(int kind)
{
    rt::checkIndex(kind, 0, KindCount - 1);
    return ObjectKinds()[static_cast<size_t>(kind)];
}

namespace {

// Pictures decoded during one filling of the table: several kinds share a file, and
// each gets its own tinted or mirrored copy of the one decoded picture.
QHash<QString, QImage> *g_decoded = nullptr;

cBitmap loadPicture(const QString &path)
{
    cBitmap picture;
    if (g_decoded) {
        const auto it = g_decoded->constFind(path);
        if (it != g_decoded->constEnd()) {
            picture.setImage(*it);
            return picture;
        }
    }
    if (!QFileInfo::exists(path) || !picture.LoadFromFile(path))
        picture.CreateFromResource(100); // the built-in placeholder
    if (g_decoded)
        g_decoded->insert(path, picture.Handle());
    return picture;
}

} // namespace

void AddItem(int16_t index, int16_t category, const QString &caption, uint8_t indexAU, uint8_t indexBL,
             const QString &imageName, uint8_t red, uint8_t green, uint8_t blue, bool mirror)
{
    if (category > 6)
        return;
    const QString path = AppPath() + u"objects"_s + QDir::separator() + imageName + u".png"_s;
    cBitmap picture = loadPicture(path);
    if (mirror)
        picture.RotateFlip(RotateNoneFlipX);
    const ColorMatrix tint = ColorMatrix::tint(red, green, blue);

    ObjectKind &kind = ObjectKindAt(index);
    kind.HasImage = !imageName.isEmpty() && !picture.isNull();
    if (kind.HasImage) {
        kind.Image.setImage(tint.isIdentity() ? picture.Handle() : tint.applied(picture.Handle()));
        const int w = kind.Image.Width();
        const int h = kind.Image.Height();
        const int m = std::max(w, h);
        kind.Scale = m < 49 ? 1.0f : 48.0f / static_cast<float>(m);
        kind.OffsetX = rt::sub16(24, rt::toInt16(double(kind.Scale * static_cast<float>(w))) / 2);
        kind.OffsetY = rt::sub16(24, rt::toInt16(double(kind.Scale * static_cast<float>(h))) / 2);
    } else {
        kind.Image = cBitmap();
        kind.Scale = 1.0f;
        kind.OffsetX = 0;
        kind.OffsetY = 0;
    }
    kind.Category = category;
    kind.Caption = caption;
    kind.IndexAU = indexAU;
    kind.IndexBL = indexBL;
    kind.Allowed = -1;
    kind.Available = -1;
}

void FillCatalogue()
{
    QHash<QString, QImage> decoded;
    g_decoded = &decoded;
    guarded(u"Objectbar.Initilize"_s, [] {
        const auto &defs = KindDefinitions();
        for (int i = 0; i < KindCount; ++i) {
            const KindDefinition &d = defs[static_cast<size_t>(i)];
            const QString caption = d.captionSlot < 0 ? u"index error!?"_s : Lang(d.captionSlot);
            AddItem(static_cast<int16_t>(i), d.category, caption, d.indexAU, d.indexBL,
                    QString::fromLatin1(d.imageName), d.red, d.green, d.blue, d.mirror);
        }
    });
    g_decoded = nullptr;
}

int KindForFileIndex(uint8_t index, bool auSite)
{
    // 193 marks a kind that does not exist at the site; no file byte maps onto it.
    if (index == NotAtSite)
        return UnknownKind;
    const auto &defs = KindDefinitions();
    for (int k = Kind::FirstOrdinary; k <= Kind::LastOrdinary; ++k) {
        const KindDefinition &d = defs[static_cast<size_t>(k)];
        if ((auSite ? d.indexAU : d.indexBL) == index)
            return k;
    }
    return UnknownKind;
}

uint8_t FileIndexForKind(int kind, bool auSite)
{
    rt::checkIndex(kind, 0, KindCount - 1);
    const KindDefinition &d = KindDefinitions()[static_cast<size_t>(kind)];
    return auSite ? d.indexAU : d.indexBL;
}

bool IsAuSite(const QString &layoutType)
{
    return layoutType.left(2) == u"AU"_s;
}

void UpdateAllowedAvailable(const QString &layoutType, bool hasStart, bool hasCheckpoint1,
                            bool hasCheckpoint2, bool hasCheckpoint3, bool hasFinish)
{
    auto &kinds = ObjectKinds();
    auto flag = [](bool b) -> int16_t { return b ? -1 : 0; };
    kinds[Kind::Start].Available = flag(!hasStart);
    kinds[Kind::Finish].Available = flag(!hasFinish);
    kinds[Kind::Checkpoint1].Available = flag(!hasCheckpoint1);
    kinds[Kind::Checkpoint2].Available = flag(!hasCheckpoint2);
    kinds[Kind::Checkpoint3].Available = flag(!hasCheckpoint3);
    const bool au = IsAuSite(layoutType);
    for (int k = Kind::FirstOrdinary; k <= Kind::LastOrdinary; ++k) {
        ObjectKind &kind = kinds[static_cast<size_t>(k)];
        kind.Allowed = flag((au ? kind.IndexAU : kind.IndexBL) != NotAtSite);
    }
}
