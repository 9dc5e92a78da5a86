#include "base/Language.h"

#include "base/ConfigFile.h"
#include "base/Settings.h"
#include "base/Runtime.h"

#include <QFont>
#include <QLocale>
#include <QMap>
#include <array>

using namespace Qt::StringLiterals;

namespace {

struct DefaultText {
    int slot;
    QString text;
};

// The English texts; every slot the program uses is listed, in ascending order.
const QList<DefaultText> &defaults()
{
    static const QList<DefaultText> table = {
    {25, u"Autocross"_s},
    {26, u"Skid Pad"_s},
    {27, u"Drag Strip"_s},
    {28, u"8 Lane Drag"_s},
    {29, u"Car Park"_s},
    {30, u"New"_s},
    {31, u"Open"_s},
    {32, u"Save"_s},
    {33, u"Close"_s},
    {34, u"Undo"_s},
    {35, u"Redo"_s},
    {40, u"Measure distance"_s},
    {41, u"Object line"_s},
    {50, u"Options"_s},
    {51, u"Help/About"_s},
    {52, u"(refresh list)"_s},
    {55, u"Save to"_s},
    {56, u"Save As to"_s},
    {57, u"Save to image"_s},
    {60, u"Fit &Width"_s},
    {61, u"Fit &Height"_s},
    {62, u"To Selection.."_s},
    {65, u"Laps"_s},
    {66, u"Count"_s},
    {67, u"Zoom"_s},
    {68, u"X"_s},
    {69, u"Y"_s},
    {70, u"Object Zoom"_s},
    {100, u"Layout file"_s},
    {101, u"Pack file"_s},
    {102, u"All files"_s},
    {103, u"file"_s},
    {104, u"untitled"_s},
    {105, u"Browse for more..."_s},
    {106, u"Select a new background image"_s},
    {107, u"Choose a folder"_s},
    {108, u"Live for Speed layout file"_s},
    {109, u"Open with Varno"_s},
    {120, u"No object selected"_s},
    {121, u"Group selection"_s},
    {125, u"Change to..."_s},
    {126, u"Add to pack"_s},
    {130, u"CCW"_s},
    {131, u"CW"_s},
    {135, u"Flip horizontal"_s},
    {136, u"Flip vertical"_s},
    {140, u"Angle"_s},
    {141, u"Width"_s},
    {142, u"Height"_s},
    {150, u"Click the object to change to or the change button to cancel"_s},
    {151, u"Click and drag to create a line of objects"_s},
    {152, u"No object selected. Click an object to create a line"_s},
    {153, u"Hold Ctrl to constrain to 15\u00B0 increments, use < and > to change spacing"_s},
    {154, u"Click and drag to measure distance"_s},
    {155, u"Distance"_s},
    {160, u"Maximum object count reached, cannot add"_s},
    {161, u"Unique object already in layout, cannot add"_s},
    {162, u"Object not allowed in this layout type, cannot add"_s},
    {163, u"Object outside layout, cannot add"_s},
    {164, u"Unsupported layout. Currently only AU1, AU2, AU3, AU4 and BL3 are supported."_s},
    {165, u"Header error"_s},
    {166, u"Not found!?"_s},
    {167, u"Unknown image format. Choose a different one"_s},
    {168, u"Pack file name must begin with AU_ or BL_ and end with .pack"_s},
    {169, u"Save changes before closing?"_s},
    {180, u"Language"_s},
    {181, u"Default background image"_s},
    {182, u"Open options"_s},
    {183, u"Save options"_s},
    {184, u"Remember last open folder used"_s},
    {185, u"Remember last save folder used"_s},
    {186, u"Always use the folder below"_s},
    {187, u"Percent"_s},
    {188, u"Quality"_s},
    {189, u"Image type"_s},
    {190, u"Associate .lyt files with Varno"_s},
    {191, u".lyt file associated with another program!"_s},
    {192, u"Unassociate .lyt file"_s},
    {195, u"Cancel"_s},
    {196, u"Save"_s},
    {200, u"general"_s},
    {201, u"chalk"_s},
    {202, u"cones"_s},
    {203, u"tyres"_s},
    {204, u"objects"_s},
    {205, u"marshall"_s},
    {206, u"packs"_s},
    {210, u"start"_s},
    {211, u"finish"_s},
    {212, u"checkpoint 1"_s},
    {213, u"checkpoint 2"_s},
    {214, u"checkpoint 3"_s},
    {215, u"chalk ahead"_s},
    {216, u"chalk ahead2"_s},
    {217, u"chalk left"_s},
    {218, u"chalk right"_s},
    {219, u"chalk left2"_s},
    {220, u"chalk right2"_s},
    {221, u"chalk left3"_s},
    {222, u"chalk right3"_s},
    {223, u"chalk line"_s},
    {224, u"cone red"_s},
    {225, u"cone red2"_s},
    {226, u"cone red3"_s},
    {227, u"cone red ptr"_s},
    {228, u"cone blue"_s},
    {229, u"cone blue2"_s},
    {230, u"cone blue ptr"_s},
    {231, u"cone yellow"_s},
    {232, u"cone yellow2"_s},
    {233, u"cone yellow ptr"_s},
    {234, u"cone green"_s},
    {235, u"cone green2"_s},
    {236, u"cone green ptr"_s},
    {237, u"cone orange"_s},
    {238, u"cone white"_s},
    {239, u"cone1"_s},
    {240, u"cone2"_s},
    {241, u"tyres white"_s},
    {242, u"tyres2 white"_s},
    {243, u"tyres red"_s},
    {244, u"tyres2 red"_s},
    {245, u"tyres blue"_s},
    {246, u"tyres2 blue"_s},
    {247, u"tyres small"_s},
    {248, u"banner rsc"_s},
    {249, u"banner cromo"_s},
    {250, u"banner ad1"_s},
    {251, u"banner ad2"_s},
    {252, u"banner ad3"_s},
    {253, u"bale"_s},
    {254, u"post"_s},
    {255, u"post green"_s},
    {256, u"post red"_s},
    {257, u"post white"_s},
    {258, u"post orange"_s},
    {259, u"barrier white"_s},
    {260, u"barrier red"_s},
    {261, u"barrier long"_s},
    {262, u"keep left"_s},
    {263, u"keep right"_s},
    {264, u"ramp"_s},
    {265, u"restricted invisible"_s},
    {266, u"restricted marshall"_s},
    {267, u"restricted point left"_s},
    {268, u"restricted point right"_s},
    {269, u"route checker"_s},
    };
    return table;
}

std::array<QString, LanguageSlotCount> &strings()
{
    static std::array<QString, LanguageSlotCount> table;
    return table;
}

// Windows-1252 code points for bytes 0x80..0x9F; the rest of the page is Latin-1.
constexpr char16_t kCp1252High[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

} // namespace

const QString &Lang(int slot)
{
    rt::checkIndex(slot, 0, LanguageSlotCount - 1);
    return strings()[static_cast<size_t>(slot)];
}

void SetLang(int slot, const QString &text)
{
    rt::checkIndex(slot, 0, LanguageSlotCount - 1);
    strings()[static_cast<size_t>(slot)] = text;
}

const QList<int> &LanguageSlots()
{
    static const QList<int> used = [] {
        QList<int> s;
        for (const DefaultText &d : defaults())
            s << d.slot;
        return s;
    }();
    return used;
}

QString DefaultLanguageString(int slot)
{
    for (const DefaultText &d : defaults())
        if (d.slot == slot)
            return d.text;
    return {};
}

void SetLanguageString(int slot, const QString &defaultText)
{
    rt::checkIndex(slot, 0, LanguageSlotCount - 1);
    const QString key = QString::number(slot).rightJustified(3, u'0');
    SetLang(slot, ReadKey(options().Language, key, defaultText));
}

void LoadLanguage()
{
    for (const DefaultText &d : defaults())
        SetLanguageString(d.slot, d.text);
}

QByteArray EnglishLanguageFile()
{
    QByteArray out;
    for (const DefaultText &d : defaults())
        out += EncodeAnsi(QString::number(d.slot).rightJustified(3, u'0') + u' ' + d.text) + "\r\n";
    return out;
}

QString DecodeAnsi(const QByteArray &bytes)
{
    if (bytes.startsWith("\xEF\xBB\xBF"))
        return QString::fromUtf8(bytes.constData() + 3, bytes.size() - 3);
#ifdef Q_OS_WIN
    return QString::fromLocal8Bit(bytes);
#else
    QString out;
    out.reserve(bytes.size());
    for (char c : bytes) {
        const auto b = static_cast<unsigned char>(c);
        out += (b >= 0x80 && b < 0xA0) ? QChar(kCp1252High[b - 0x80]) : QChar(b);
    }
    return out;
#endif
}

QByteArray EncodeAnsi(const QString &text)
{
#ifdef Q_OS_WIN
    return text.toLocal8Bit();
#else
    QByteArray out;
    out.reserve(text.size());
    for (QChar ch : text) {
        const char16_t u = ch.unicode();
        if (u < 0x80 || (u >= 0xA0 && u < 0x100)) {
            out += static_cast<char>(u);
            continue;
        }
        char byte = '?';
        for (int i = 0; i < 32; ++i)
            if (kCp1252High[i] == u)
                byte = static_cast<char>(0x80 + i);
        out += byte;
    }
    return out;
#endif
}

void SetLocaleFont(QFont &font)
{
    // East Asian interfaces need their own font; everyone else keeps the designed one.
    switch (QLocale().language()) {
    case QLocale::Korean:
        font.setFamilies({u"Gulim"_s, u"Noto Sans CJK KR"_s});
        font.setPointSize(9);
        break;
    case QLocale::Japanese:
        font.setFamilies({u"MS UI Gothic"_s, u"Noto Sans CJK JP"_s});
        font.setPointSize(9);
        break;
    case QLocale::Chinese:
        if (QLocale().script() == QLocale::TraditionalChineseScript)
            font.setFamilies({u"PMingLiU"_s, u"Noto Sans CJK TC"_s});
        else
            font.setFamilies({u"SimSun"_s, u"Noto Sans CJK SC"_s});
        font.setPointSize(9);
        break;
    default:
        break;
    }
}
