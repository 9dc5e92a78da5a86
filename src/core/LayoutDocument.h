#pragma once
// The content of one open layout: the objects, the placement rules, the layout type
// with its bounds, the selection, and the bytes of layout and pack files. It opens no
// file and shows nothing: LayoutSession does the files and dialogs around it.
//
// Refusals come back through Refused; run-time errors go to the caller.

#include "catalogue/PackFormat.h"
#include "core/LayoutObject.h"
#include "core/ObjectCollection.h"

#include <QList>
#include <QObject>
#include <QPoint>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

class QIODevice;

// Everything an edit can change, for undo: the objects in order under their keys,
// with every property, and the counters and flags that go with them.
struct DocumentState {
    std::vector<std::shared_ptr<const varnoObject>> objects;
    int16_t marshallCount = 0;
    bool hasStart = false, hasCheckpoint1 = false, hasCheckpoint2 = false, hasCheckpoint3 = false,
         hasFinish = false;
    uint8_t laps = 0;
};

// The smallest and largest X and Y over the selected objects.
struct SelectionBox {
    int32_t left = 0, top = 0, right = 0, bottom = 0;
};

class LayoutDocument : public QObject {
    Q_OBJECT
public:
    // Why an object was not placed. Each value is the language slot that words it.
    enum Refusal { TooManyObjects = 160, AlreadyPlaced = 161, NotAtThisSite = 162, OutsideTheLayout = 163 };
    Q_ENUM(Refusal)

    // Turns view (client) pixels into layout coordinates in place.
    using ViewToLayout = std::function<void(int32_t &x, int32_t &y)>;

    explicit LayoutDocument(QObject *parent = nullptr);
    ~LayoutDocument() override;

    // --- identity -----------------------------------------------------------------
    // The layout type (the file title's first three characters, upper-cased), which
    // decides the site's rules and the file's position mapping.
    void setLayoutType(const QString &type) { m_layoutType = type; }
    const QString &LayoutType() const { return m_layoutType; }
    bool IsAuSite() const;
    uint8_t Revision() const { return m_revision; }
    void setRevision(uint8_t r) { m_revision = r; }

    // --- objects and placement rules ----------------------------------------------
    const ObjectCollection &Objects() const { return m_objects; }
    // Entries minus marshall-class objects: the count the user sees and the limit uses.
    int16_t ObjectCount() const;
    int16_t MarshallCount() const { return m_marshallCount; }
    bool HasStart() const { return m_hasStart; }
    bool HasCheckpoint1() const { return m_hasCheckpoint1; }
    bool HasCheckpoint2() const { return m_hasCheckpoint2; }
    bool HasCheckpoint3() const { return m_hasCheckpoint3; }
    bool HasFinish() const { return m_hasFinish; }
    uint8_t Laps() const { return m_laps; }
    void setLaps(uint8_t laps);

    void ObjectAdd(uint8_t ID, int16_t X, int16_t Y, int16_t &Angle, uint8_t &Width, bool &FromView,
                   bool &Selected);
    void ObjectRemove(const QString &key);

    // The pointer's last position over the view, in layout units (set by the view),
    // reported with every refusal.
    void setPointer(int16_t x, int16_t y) { m_pointerX = x; m_pointerY = y; }
    int16_t PointerX() const { return m_pointerX; }
    int16_t PointerY() const { return m_pointerY; }
    void setViewToLayout(ViewToLayout fn) { m_viewToLayout = std::move(fn); }

    // --- placement area -----------------------------------------------------------
    // The area objects may be placed in: the background picture's size in layout units
    // (0 x 0 while there is no picture, which refuses every object).
    void setBounds(int width, int height) { m_boundsWidth = width; m_boundsHeight = height; }
    int BoundsWidth() const { return m_boundsWidth; }
    int BoundsHeight() const { return m_boundsHeight; }
    // Background pixels per metre of the type's area.
    float BackgroundScale() const { return m_backgroundScale; }
    void setBackgroundScale(float scale) { m_backgroundScale = scale; }
    // Makes the type's default start position (ID 0), outside the collection, at the
    // type's start (at 0,0 for an unknown type). Drawing refreshes the marker's cached
    // pictures, like the objects'; nullptr before the first call.
    void ResetStartMarker();
    const varnoObject *StartMarker() const { return m_startMarker.get(); }

    // --- selection ----------------------------------------------------------------
    // Rebuilds the selection list and bounds from the objects' Selected flags, in
    // collection order; Notify raises Updated afterwards.
    void SelectionUpdate(bool Notify = false);
    const QList<selObject> &Selection() const { return m_selection; }
    const SelectionBox &SelectionBounds() const { return m_bounds; }
    // Raises Updated, then ObjectUpdated with the unique flags.
    void RaiseUpdates();
    // Marks every object selected (or none) and rebuilds the selection.
    void SelectAll(bool selected = true);
    // Selects the objects under keys: only them (Replace), them as well (Add), or each
    // the other way round (Toggle); then rebuilds the selection and raises the updates.
    enum class SelectMode { Replace, Add, Toggle };
    void Select(const QStringList &keys, SelectMode mode);

    // --- selection operations (they rebuild the selection and raise the updates) ----
    // The rotation last applied to the selection as a group; back to 0 whenever the
    // set of selected objects changes, so a new group turns by exactly the next step.
    int16_t GroupAngle() const { return m_groupAngle; }
    void setGroupAngle(int16_t angle) { m_groupAngle = angle; }
    // Mirrors the selection about the middle of its bounds.
    void SelectionFlip(bool Vertical);
    // Turns one selected object to the angle, or a group about the centre of its bounds
    // by the difference to GroupAngle.
    void ObjectRotate(int32_t angle);
    // Re-types every selected object at its place, angle and width; a refused object
    // stays as it was.
    void ObjectChange(uint8_t kind);
    // Sets the width of the selected objects that have one.
    void ObjectWidth(uint8_t width);
    // Moves the selected objects, stopping at the layout's edges; returns how far they
    // actually went.
    QPoint MoveSelection(int32_t dx, int32_t dy);

    // --- undo ---------------------------------------------------------------------
    DocumentState snapshot() const;
    void restore(const DocumentState &state);

    // --- file contents (run-time errors go to the caller) ---------------------------
    // Replaces the content with a layout file's: the header, then as many records as
    // its count says (a longer file's old tail is ignored). Objects read before an
    // error stay. name is the file title, for the unknown-type error.
    void ReadLayout(QIODevice &file, const QString &name);
    // The layout file's bytes. unsupported is set when the type cannot be written, and
    // the bytes then stop after the header.
    QByteArray LayoutBytes(bool *unsupported) const;
    // The selection as a pack file, its box the selection's bounds.
    QByteArray SelectionPackBytes() const;
    // Places a pack centred on a layout point; its objects become the selection.
    // Error 62 after placing what there is when the pack ends early.
    void PlacePack(const PackData &pack, int16_t x, int16_t y);

signals:
    // An object was refused at the pointer's last position (layout units).
    void Refused(LayoutDocument::Refusal why, int16_t x, int16_t y);
    void Updated();
    void ObjectUpdated(bool start, bool checkpoint1, bool checkpoint2, bool checkpoint3, bool finish);

private:
    void refuse(Refusal why);
    void resetContent();

    QString m_layoutType;
    uint8_t m_revision = 0;

    ObjectCollection m_objects;
    int16_t m_marshallCount = 0;
    bool m_hasStart = false;
    bool m_hasCheckpoint1 = false;
    bool m_hasCheckpoint2 = false;
    bool m_hasCheckpoint3 = false;
    bool m_hasFinish = false;
    uint8_t m_laps = 0;

    int16_t m_pointerX = 0;
    int16_t m_pointerY = 0;
    ViewToLayout m_viewToLayout;

    int m_boundsWidth = 0;
    int m_boundsHeight = 0;
    float m_backgroundScale = 0.0f;
    std::unique_ptr<varnoObject> m_startMarker;

    QList<selObject> m_selection;
    SelectionBox m_bounds;
    int16_t m_groupAngle = 0;
};
