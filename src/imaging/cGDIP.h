#pragma once
// The imaging session and the picture writer.

#include "imaging/PictureEncoders.h"

#include <QString>
#include <QStringList>

class cBitmap;

struct ImageEncoder {
    QString mimeType;
    QString formatName;   // "BMP", "JPEG", "GIF", "TIFF", "PNG"
    QStringList patterns; // "*.BMP", "*.DIB", ...
};

class cGDIP {
public:
    cGDIP();
    ~cGDIP();
    cGDIP(const cGDIP &) = delete;
    cGDIP &operator=(const cGDIP &) = delete;

    // The encoders in the order they are searched: BMP, JPEG, GIF, TIFF, PNG.
    static const QList<ImageEncoder> &encoders();
    // The extension of fileName: the text after its last "." (the whole name if none).
    static QString extensionOf(const QString &fileName);
    // The encoder whose pattern list holds *.ext, compared without regard to case; null if none.
    static const ImageEncoder *encoderFor(const QString &extension);

    // Writes the bitmap in the format its extension names. An unknown extension shows
    // "(ext) Unknown image format. Choose a different one" and writes nothing. Quality
    // (0..100) applies when the extension starts with "j". Returns whether a file was written.
    bool SaveBitmapToFile(const cBitmap &bitmap, const QString &fileName, int quality);

    // "(ext) Unknown image format. Choose a different one" in the error box.
    static void ShowUnknownFormat(const QString &extension);
    // The writing behind SaveBitmapToFile, without any box: the encoder is chosen by the
    // extension (an unknown one is error 5), rows are streamed to a temporary file beside
    // fileName, which replaces it only when complete. Failures are rt::Error and leave
    // no file behind; false when options.progress stopped it, also leaving nothing.
    static bool WritePictureFile(const QImage &picture, const QString &fileName, int quality,
                                 const picture::WriteOptions &options = {});
};
