#include "view/SaveImageRules.h"

#include "base/Language.h"
#include "base/Runtime.h"

#include <algorithm>
#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;

QString SaveImageProposedName(const QString &layoutName, const QString &saveType)
{
    return layoutName.left(std::max<qsizetype>(0, layoutName.size() - 3)) + saveType;
}

QString SaveImageFilter(const QString &saveType)
{
    const QString f = Lang(103);
    auto entry = [&](const char *name, const char *ext) {
        return QLatin1String(name) + u' ' + f + u" (*."_s + QLatin1String(ext) + u")|*."_s + QLatin1String(ext) + u'|';
    };
    const QString type = saveType.toLower();
    QString filter;
    if (type == u"png"_s)
        filter = entry("PNG", "png") + entry("JPG", "jpg") + entry("GIF", "gif") + entry("BMP", "bmp");
    else if (type == u"gif"_s)
        filter = entry("GIF", "gif") + entry("JPG", "jpg") + entry("PNG", "png") + entry("BMP", "bmp");
    else if (type == u"bmp"_s)
        filter = entry("BMP", "bmp") + entry("JPG", "jpg") + entry("PNG", "png") + entry("GIF", "gif");
    else
        filter = entry("JPG", "jpg") + entry("PNG", "png") + entry("GIF", "gif") + entry("BMP", "bmp");
    return filter + Lang(102) + u" (*.*)|*.*"_s;
}

bool SaveImageQualityEnabled(const QString &path)
{
    return path.right(3) == u"jpg"_s;
}

QString RememberedSaveFolder(const QString &path)
{
    const qsizetype last = std::max(path.lastIndexOf(u'\\'), path.lastIndexOf(u'/')) + 1;
    return path.left(std::max<qsizetype>(0, path.size() - last - 1));
}

bool SaveImageProportions::assign(Box &box, double value)
{
    const double rounded = rt::roundHalfEven(value);
    const int v = int(std::clamp(rounded, double(box.min), double(box.max)));
    if (v == box.value)
        return false;
    box.value = v;
    return true;
}

void SaveImageProportions::open(int baseWidth, int baseHeight, int percent, int quality)
{
    m_baseWidth = baseWidth;
    m_baseHeight = baseHeight;
    m_width = {0, 1, int(rt::mul32(baseWidth, 10))};
    m_height = {0, 1, int(rt::mul32(baseHeight, 10))};
    m_percent = {0, 1, MaxPercent};
    m_quality = {0, 0, 100};
    setWidth(baseWidth);
    setHeight(baseHeight);
    setPercent(percent);
    setQuality(quality);
}

void SaveImageProportions::setWidth(int value)
{
    if (assign(m_width, value))
        widthChanged();
}

void SaveImageProportions::setHeight(int value)
{
    if (assign(m_height, value))
        heightChanged();
}

void SaveImageProportions::setPercent(int value)
{
    if (assign(m_percent, value))
        percentChanged();
}

void SaveImageProportions::setQuality(int value)
{
    assign(m_quality, value);
}

// Each rule sets the other boxes one after the other, and each of those that really
// changes runs its own rule at once, before the next box is set. The depth guard only
// stops a run-away chain that rounding could in theory keep alive.
void SaveImageProportions::widthChanged()
{
    if (m_baseWidth <= 0 || m_depth > 32)
        return;
    ++m_depth;
    const double ratio = double(m_width.value) / double(m_baseWidth);
    if (assign(m_height, ratio * double(m_baseHeight)))
        heightChanged();
    if (assign(m_percent, double(m_width.value) / double(m_baseWidth) * 100.0))
        percentChanged();
    --m_depth;
}

void SaveImageProportions::heightChanged()
{
    if (m_baseHeight <= 0 || m_depth > 32)
        return;
    ++m_depth;
    if (assign(m_width, double(m_height.value) / double(m_baseHeight) * double(m_baseWidth)))
        widthChanged();
    if (assign(m_percent, double(m_height.value) / double(m_baseHeight) * 100.0))
        percentChanged();
    --m_depth;
}

void SaveImageProportions::percentChanged()
{
    if (m_depth > 32)
        return;
    ++m_depth;
    if (assign(m_width, double(m_percent.value) / 100.0 * double(m_baseWidth)))
        widthChanged();
    if (assign(m_height, double(m_percent.value) / 100.0 * double(m_baseHeight)))
        heightChanged();
    --m_depth;
}
