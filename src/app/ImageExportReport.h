#pragma once
// Telling the user how a picture export went, and the export with that report: the
// drawing and writing live in the model (view/LayoutImageExport.h), which never asks or
// tells the user anything.

#include "view/LayoutImageExport.h"

class LayoutDocument;

// Tells the user what went wrong, as the editor does: the unknown-format box, a
// message for a picture too large for the memory, or the logged "Sorry :(" box
// (" in frmLayout.LayoutSaveImageFile", or " in cGDIP.SaveBitmapToFile" for the writing).
// Nothing for Written and Cancelled. Window thread only.
void ReportImageExport(const ImageExportResult &result, int width, int height);

// The document's LayoutSaveImageFile: RenderLayoutImage then ReportImageExport, on the
// calling thread. True when the file was written.
bool LayoutSaveImageFile(const LayoutDocument &doc, const cBitmap &background, const QString &fileName, int width,
                         int height, int quality,
                         const ExportProgress &progress = {});

