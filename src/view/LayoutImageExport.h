#pragma once
// Saving a layout as a picture: the background stretched to the chosen size, every
// object drawn on it at that scale in collection order, written in the format the
// file's extension names. The view's zoom, scroll position and selection play no part.
//
// Pictures can be as large as ten times the background each way, so the work is done
// in one full-size picture and small buffers only: it is drawn in bands of rows, and
// each band goes to the encoder as soon as it is final, while the next one is drawn.

#include "base/Runtime.h"
#include "imaging/cBitmap.h"

#include <QImage>
#include <QString>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

class LayoutDocument;
class varnoObject;

// What an export draws: its own copies of the document's background and objects, every
// object unselected. Made on the window's thread before the drawing starts, so that the
// drawing thread shares no picture cache with the window's painting, whatever the
// window does meanwhile. One export at a time may draw from a scene.
struct ExportScene {
    ExportScene(const LayoutDocument &doc, const cBitmap &background);
    ~ExportScene();
    cBitmap background;
    std::vector<std::unique_ptr<varnoObject>> objects;
};

struct ImageExportResult {
    enum Status {
        Written,       // the file is in place
        Cancelled,     // the progress callback said stop; nothing was written
        UnknownFormat, // no encoder for the extension; nothing was written
        NoMemory,      // the picture did not fit in memory; nothing was written
        Failed,        // a run-time error; nothing was written
    };
    Status status = Failed;
    QString extension;              // for UnknownFormat
    qint64 bytesNeeded = 0;         // for NoMemory
    std::optional<rt::Error> error; // for Failed
    QString where;                  // the procedure the error is logged under
};

// Told how far the export is (0..1); returning false cancels it. Called on the thread
// that runs RenderLayoutImage, a few times a second at least.
using ExportProgress = std::function<bool(double fraction)>;

// Renders and writes the picture, and shows and logs nothing, so that it can run away
// from the window thread. Width and height are those of the picture; scale is
// width / background width, the height plays no part.
ImageExportResult RenderLayoutImage(const ExportScene &scene, const QString &fileName, int width, int height,
                                    int quality, const ExportProgress &progress = {});

// Only the drawing: fills picture (ARGB32 premultiplied, already of the wanted size)
// with the stretched background and the objects. bandDone, when given, hears the
// number of rows that are final after each band and may return false to stop. Throws
// rt::Error for a drawing failure.
bool RenderLayoutPicture(const ExportScene &scene, QImage &picture,
                         const std::function<bool(int rowsDone)> &bandDone = {});

// The bytes a width x height picture takes in memory, or -1 when no QImage can be that large.
qint64 ExportPictureBytes(int width, int height);
