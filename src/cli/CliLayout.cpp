#include "cli/CliLayout.h"

#include "base/Language.h"
#include "core/LayoutFormat.h"

#include <QDir>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace cli {

OpenedLayout::OpenedLayout(const QString &file)
{
    QObject::connect(&session.document(), &LayoutDocument::Refused,
                     [this](LayoutDocument::Refusal why, int16_t, int16_t) { messages << Lang(why); });
    opened = session.openLayout(QFileInfo(file).absoluteFilePath(), LayoutSession::Missing::Refuse);
}

QString OpenedLayout::problem(const QString &file) const
{
    if (!opened)
        return u"%1 could not be opened"_s.arg(file);
    // Without its background every object is refused as outside the layout, so the
    // document looks empty; written back, it would wipe the file.
    if (session.backgroundMissing())
        return u"the background picture %1 of %2 could not be loaded, so its objects cannot be placed"_s.arg(
            QDir::toNativeSeparators(session.BGName()), file);
    // It opened only because it is empty; the simulator would not know where it belongs.
    if (!lyt::typeInfo(session.LayoutType()))
        return u"%1 is of the unknown layout type %2"_s.arg(file, session.LayoutType());
    return QString();
}

} // namespace cli
