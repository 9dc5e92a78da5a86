#pragma once
// The "Save to image" command of a document window, whole: the save dialog with the
// proposed name and the preferred type first, the size dialog, and the export with a
// progress dialog that can cancel it.

#include <QString>

class LayoutSession;
class QWidget;

// Runs the command for an open layout. True when a picture was written.
bool LayoutSaveImage(const LayoutSession &session, QWidget *parent);

// The export behind the size dialog's Save: drawn and written away from the window
// thread, while a progress dialog with Cancel shows for any export that takes more
// than a moment and the windows keep painting. Failures are reported as the editor
// reports them. True when the file was written.
bool SaveImageWithProgress(const LayoutSession &session, const QString &fileName, int width, int height, int quality,
                           QWidget *parent);
