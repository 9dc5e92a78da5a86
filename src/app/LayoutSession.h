#pragma once
// One open layout, without a window: its document, its undo history, its background
// picture, and the file it lives in. The editor's document window and varno-cli both
// open, save and edit layouts through a session, so they read and write a file the
// same way, and whether there is unsaved work is decided here alone.
//
// The file procedures report their errors as the editor always has, under the document
// window's names (" in frmLayout.LayoutOpen" and so on), and ask through the dialog seam.

#include "core/LayoutDocument.h"
#include "imaging/cBitmap.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <QUndoStack>
#include <functional>

// The question Save As asks when the chosen file title does not begin with the type.
QString WrongTypeNameText(const QString &title, const QString &type);

class LayoutSession : public QObject {
    Q_OBJECT
public:
    explicit LayoutSession(QObject *parent = nullptr);
    ~LayoutSession() override;

    enum class Missing { NewLayout, Refuse };
    // Takes the type from the file's name, loads the type's background and reads the
    // file. A file that does not exist opens as a new, empty layout, or with Refuse is
    // reported as not found. False when the file could not be read. The history starts
    // empty and saved.
    bool openLayout(const QString &fileName, Missing missing = Missing::NewLayout);

    // --- the file -----------------------------------------------------------------
    // Sets the path, the name (the file's title) and the document's type (the title's
    // first three characters, upper-cased).
    void setFileName(const QString &fileName);
    const QString &FileName() const { return m_fileName; }
    const QString &LayoutName() const { return m_layoutName; }
    const QString &LayoutType() const { return m_doc.LayoutType(); }
    // A layout made with New that has never been saved: its name is "<type>_untitled.lyt"
    // and saving it asks for a name.
    bool isUntitled() const;
    // There is work the file does not hold: the history is away from its saved point.
    bool Edited() const;

    LayoutDocument &document() { return m_doc; }
    const LayoutDocument &document() const { return m_doc; }
    QUndoStack &undoStack() { return m_undo; }

    // --- the background -----------------------------------------------------------
    // Loads the picture the options name for the type (or the shipped one) and sets the
    // document's bounds from it. A missing picture or an unknown type is told to the
    // user and leaves the layout without bounds. False unless a picture was loaded.
    bool LayoutLoadBG();
    const cBitmap &Background() const { return m_background; }
    const QString &BGName() const { return m_bgName; }
    // A known type whose picture could not be loaded: every object would be refused as
    // outside the layout, so its file must not be written back.
    bool backgroundMissing() const;
    // Loads the named picture from the backgrounds folder as the new background; the
    // scale and the start marker stay. Error 481 when it is no picture.
    void setBGName(const QString &name);

    // --- files --------------------------------------------------------------------
    // Reads the file into the document; "Not found!?" when there is no such file.
    bool LayoutOpen();
    // Writes the file, asking for a name first with saveAs or for an untitled layout.
    // Marks the history saved and returns true when the whole layout was written.
    bool LayoutSave(bool saveAs);
    // Asks for a pack name and writes the selection to it.
    void PackWrite();
    // Places a pack from the packs folder centred on a layout point, as one undo step.
    void PackRead(const QString &name, int16_t x, int16_t y);

    // --- edits ----------------------------------------------------------------------
    // Runs an edit of the document as one undo step, merged with the previous step when
    // mergeKey is non-zero and the same. Nothing is recorded when nothing changed.
    bool record(const QString &text, int mergeKey, const std::function<void()> &fn);
    // A merge key for a series of small edits of one kind (nudges, angle typing, laps):
    // the same key while nothing else happens in between.
    int mergeKeyFor(int kind);
    void breakMerge() { m_lastMergeKind = 0; }

signals:
    // The layout's name after a save (Save As can change it).
    void LayoutNameChanged(const QString &name);

private:
    LayoutDocument m_doc;
    QUndoStack m_undo;
    QString m_fileName;
    QString m_layoutName;
    cBitmap m_background;
    QString m_bgName;
    int m_lastMergeKind = 0;
    int m_mergeSerial = 0;
    QStringList m_lastMergeSelection;
};
