#pragma once
// The catalogue: the fixed table of the 61 object kinds a layout can hold. Every other
// part names a kind only by its number (0..60), which indexes ObjectKinds().

#include "imaging/cBitmap.h"

#include <QString>
#include <array>
#include <cstdint>

constexpr int KindCount = 61;
constexpr int UnknownKind = 60;         // a file index no kind has
constexpr uint8_t NotAtSite = 193;      // the kind does not exist at that site
constexpr uint8_t FlagStoredIndex = 255; // restricted areas and the route checker

namespace Kind {
constexpr int Start = 0;
constexpr int Finish = 1;
constexpr int Checkpoint1 = 2;
constexpr int Checkpoint2 = 3;
constexpr int Checkpoint3 = 4;
constexpr int FirstOrdinary = 5;
constexpr int LastOrdinary = 54;
constexpr int Ramp = 54;
constexpr int RestrictedInvisible = 55;
constexpr int RestrictedMarshall = 56;
constexpr int RestrictedPointLeft = 57;
constexpr int RestrictedPointRight = 58;
constexpr int RouteChecker = 59;
} // namespace Kind

// Which implementation of the layout-object interface a kind is built with.
enum class ObjectClass { Normal, Control, Marshall };
ObjectClass ClassForKind(int kind);

struct ObjectKind {
    int16_t Category = 0;
    cBitmap Image;        // mirrored and tinted; empty when the kind has no picture
    bool HasImage = false;
    float Scale = 1.0f;   // fits the picture into a 48 x 48 palette cell
    int16_t OffsetX = 0;
    int16_t OffsetY = 0;
    int16_t Allowed = 0;   // 0 or -1: the kind exists at the active layout's site
    int16_t Available = 0; // 0 or -1: the kind may be placed now
    QString Caption;
    uint8_t IndexAU = 0;
    uint8_t IndexBL = 0;
};

// The settled data each kind is registered from.
struct KindDefinition {
    int16_t category;
    int captionSlot;        // language slot; -1 for the fixed caption "index error!?"
    const char *imageName;  // base name in objects/; empty for no picture
    bool mirror;
    uint8_t red, green, blue;
    uint8_t indexAU, indexBL;
};
const std::array<KindDefinition, KindCount> &KindDefinitions();

// The process-wide table; empty until FillCatalogue has run.
std::array<ObjectKind, KindCount> &ObjectKinds();
// Bounds-checked access (error 9 outside 0..60).
ObjectKind &ObjectKindAt(int kind);

// Registers one kind: loads objects/<imageName>.png once (the built-in placeholder when
// the file is missing), mirrors and tints it, and computes the palette fit.
void AddItem(int16_t index, int16_t category, const QString &caption, uint8_t indexAU, uint8_t indexBL,
             const QString &imageName, uint8_t red, uint8_t green, uint8_t blue, bool mirror);
// Registers kinds 0..60 in order with captions from the language table. Errors are
// reported " in Objectbar.Initilize". Safe to call again after a language change.
void FillCatalogue();

// The kind an ordinary object's file index stands for at a site: the first of kinds
// 5..54 with that index, or 60.
int KindForFileIndex(uint8_t index, bool auSite);
// The index byte written for a kind at a site.
uint8_t FileIndexForKind(int kind, bool auSite);
// "AU" site for a layout type beginning with AU, otherwise BL.
bool IsAuSite(const QString &layoutType);

// Recomputes Allowed (kinds 5..54, by site) and Available (kinds 0..4, by the unique
// objects the layout holds). The flags are start, checkpoint 1, 2, 3 and finish.
void UpdateAllowedAvailable(const QString &layoutType, bool hasStart, bool hasCheckpoint1,
                            bool hasCheckpoint2, bool hasCheckpoint3, bool hasFinish);
