#pragma once
// The rules of "Save to image" that need no window, shared by the dialog and varno-cli:
// the proposed file name, the file-type filter, when the quality applies, the folder
// that is remembered, and how width, height and percent follow each other.

#include <QString>

// The layout's name less its last three characters (the "lyt", keeping the dot), then
// the preferred type: "AU1_track.lyt" with "png" gives "AU1_track.png".
QString SaveImageProposedName(const QString &layoutName, const QString &saveType);

// The save dialog's filter with the preferred type first, the other three in the order
// JPG, PNG, GIF, BMP, and "All files" last. Anything but png, gif and bmp counts as jpg.
QString SaveImageFilter(const QString &saveType);

// Quality is offered only when the path ends in exactly "jpg": "a.JPG" gets no quality
// box, although it is written as a JPEG with the quality the box holds.
bool SaveImageQualityEnabled(const QString &path);

// The folder kept in SaveFolder after a save dialog chose path. The count of characters
// kept is the file name's length less one, as it always was for layouts too: users'
// Varno.cfg files hold folders written this way.
QString RememberedSaveFolder(const QString &path);

// Width, height and percent of the picture, as three spin boxes that follow each other.
// A box reports a change only when its value really changes, and each report runs the
// rule for that box, which may set the other boxes and so report again; values are
// rounded half to even. The rules are kept exactly, with the small drift that rounding
// can cause between boxes.
class SaveImageProportions {
public:
    // As the dialog opens: the base size is stored, the limits set (ten times the base
    // each way, percent up to 1000), then width, height, percent and quality are set in
    // this order, so the sizes end up at percent of the base.
    void open(int baseWidth, int baseHeight, int percent, int quality);

    // A change to one box, by the user or by a program; clamped to its limits.
    void setWidth(int value);
    void setHeight(int value);
    void setPercent(int value);
    void setQuality(int value);

    int baseWidth() const { return m_baseWidth; }
    int baseHeight() const { return m_baseHeight; }
    int width() const { return m_width.value; }
    int height() const { return m_height.value; }
    int percent() const { return m_percent.value; }
    int quality() const { return m_quality.value; }
    int maxWidth() const { return m_width.max; }
    int maxHeight() const { return m_height.max; }
    static constexpr int MaxPercent = 1000;

private:
    struct Box {
        int value = 0;
        int min = 0;
        int max = 0;
    };
    // Sets a box and says whether its value changed.
    static bool assign(Box &box, double value);
    void widthChanged();
    void heightChanged();
    void percentChanged();

    int m_baseWidth = 0;
    int m_baseHeight = 0;
    Box m_width, m_height, m_percent, m_quality;
    int m_depth = 0;
};
