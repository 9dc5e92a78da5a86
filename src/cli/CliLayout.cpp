#include "cli/CliLayout.h"

#include "core/LayoutFormat.h"

#include <QDir>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace cli {

OpenedLayout::OpenedLayout(const QString &file)
{
    QObject::connect(&doc, &LayoutDocument::Message,
                     [this](bool, int16_t, int16_t, const QString &text) { messages << text; });
    doc.setFileName(QFileInfo(file).absoluteFilePath());
    backgroundLoaded = doc.LayoutLoadBG();
    opened = doc.LayoutOpen();
}

bool OpenedLayout::backgroundMissing() const
{
    return !backgroundLoaded && lyt::typeInfo(doc.LayoutType());
}

QString OpenedLayout::problem(const QString &file) const
{
    if (!opened)
        return u"%1 could not be opened"_s.arg(file);
    if (backgroundMissing())
        return u"the background picture %1 of %2 could not be loaded, so its objects cannot be placed"_s.arg(
            QDir::toNativeSeparators(doc.BGName()), file);
    // It opened only because it is empty; the simulator would not know where it belongs.
    if (!lyt::typeInfo(doc.LayoutType()))
        return u"%1 is of the unknown layout type %2"_s.arg(file, doc.LayoutType());
    return QString();
}

} // namespace cli
