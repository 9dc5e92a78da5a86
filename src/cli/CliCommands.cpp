#include "cli/CliCommands.h"

#include "base/ErrorLog.h"
#include "base/Language.h"
#include "catalogue/ObjectKinds.h"
#include "cli/CliDialogs.h"
#include "cli/CliLayout.h"
#include "cli/Json.h"
#include "core/LayoutDocument.h"

#include <QFileInfo>
#include <QTextStream>
#include <cstdio>

using namespace Qt::StringLiterals;

namespace cli {

namespace {

void out(const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stdout);
    std::fflush(stdout);
}

void err(const QString &text)
{
    const QByteArray bytes = (text + u'\n').toLocal8Bit();
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stderr);
}

QString kindCaption(int id)
{
    if (id < 0 || id >= KindCount)
        return u"?"_s;
    const QString &caption = ObjectKinds()[size_t(id)].Caption;
    return caption.isEmpty() ? QString::fromLatin1(KindDefinitions()[size_t(id)].imageName) : caption;
}

QString layoutJson(const OpenedLayout &l)
{
    JsonWriter j;
    j.beginObject();
    j.field(u"type"_s, l.doc().LayoutType());
    j.field(u"revision"_s, int(l.doc().Revision()));
    j.field(u"laps"_s, int(l.doc().Laps()));
    j.field(u"opened"_s, l.opened);
    j.field(u"objectCount"_s, int(l.doc().ObjectCount()));
    j.beginArray(u"objects"_s);
    for (const varnoObject &o : l.doc().Objects()) {
        j.beginObject();
        j.field(u"id"_s, int(o.ID()));
        j.field(u"kind"_s, kindCaption(o.ID()));
        j.field(u"x"_s, int(o.X()));
        j.field(u"y"_s, int(o.Y()));
        j.field(u"angle"_s, int(o.Angle()));
        j.field(u"width"_s, int(o.Width()));
        j.field(u"route"_s, int(o.RouteIndex()));
        j.endObject();
    }
    j.endArray();
    j.stringArray(u"messages"_s, l.messages);
    j.stringArray(u"errors"_s, LoggedErrors());
    j.endObject();
    return j.text() + u'\n';
}

QString layoutText(const QString &file, const OpenedLayout &l)
{
    QString s;
    QTextStream t(&s);
    t << "File:      " << QFileInfo(file).absoluteFilePath() << '\n';
    t << "Type:      " << l.doc().LayoutType() << '\n';
    t << "Revision:  " << l.doc().Revision() << '\n';
    t << "Laps:      " << l.doc().Laps() << '\n';
    t << "Opened:    " << (l.opened ? "yes" : "no") << '\n';
    t << "Objects:   " << l.doc().ObjectCount() << " (plus " << l.doc().MarshallCount()
      << " restricted areas and route checkers)\n";
    if (!l.doc().Objects().isEmpty()) {
        t << '\n'
          << qSetFieldWidth(5) << "#" << qSetFieldWidth(0) << "  " << qSetFieldWidth(24) << Qt::left << "kind"
          << qSetFieldWidth(7) << Qt::right << "x" << "y" << "angle" << "width" << "route" << qSetFieldWidth(0)
          << '\n';
        int n = 0;
        for (const varnoObject &o : l.doc().Objects()) {
            t << qSetFieldWidth(5) << ++n << qSetFieldWidth(0) << "  " << qSetFieldWidth(24) << Qt::left
              << kindCaption(o.ID()) << qSetFieldWidth(7) << Qt::right << o.X() << o.Y() << o.Angle()
              << o.Width() << o.RouteIndex() << qSetFieldWidth(0) << '\n';
        }
    }
    if (!l.messages.isEmpty()) {
        t << "\nMessages:\n";
        for (const QString &m : l.messages)
            t << "  " << m << '\n';
    }
    if (!LoggedErrors().isEmpty()) {
        t << "\nErrors:\n";
        for (const QString &e : LoggedErrors())
            t << "  " << e << '\n';
    }
    t.flush();
    return s;
}

bool prepare()
{
    ClearLoggedErrors();
    FillCatalogue();
    return true;
}

} // namespace

QString usage()
{
    return u"Usage:\n"
           "  varno-cli info FILE.lyt [--json]      print a layout as the editor opens it\n"
           "  varno-cli resave IN.lyt OUT.lyt       open IN and save it as OUT\n"
           "  varno-cli pack-info FILE.pack [--json] print a pack's box and records\n"
           "  varno-cli render FILE.lyt -o OUT [--percent P | --width W | --height H] [--quality Q]\n"
           "                                        save the layout as a picture, as Save to image\n"
           "                                        does; the type follows OUT's extension (png, jpg,\n"
           "                                        gif, bmp); SavePercent and SaveQuality are the defaults\n"
           "  varno-cli --help | --version\n"
           "\n"
           "The layout type comes from the first three letters of the file name (AU1, AU2,\n"
           "AU3, AU4, BL3). Varno.cfg and Varno.log in the application folder (beside\n"
           "varno-cli; ~/.local/share/varno for an installed copy) are used as the editor\n"
           "uses its own. Exit status: 0 success, 1 failure or a logged error (also a layout\n"
           "that could not be read whole: broken, of an unknown type, or whose background\n"
           "picture could not be loaded, so that its objects would be lost), 2 usage error.\n"_s;
}

int info(const QString &file, bool json)
{
    prepare();
    OpenedLayout l(file);
    if (l.opened && l.session.backgroundMissing()) {
        err(u"varno-cli: "_s + l.problem(file) + u'.');
        return Failure;
    }
    out(json ? layoutJson(l) : layoutText(file, l));
    return l.opened && LoggedErrors().isEmpty() ? Success : Failure;
}

int resave(const QString &in, const QString &outFile)
{
    prepare();
    OpenedLayout l(in);
    if (const QString problem = l.problem(in); !problem.isEmpty()) {
        err(u"varno-cli: "_s + problem + u"; nothing was written."_s);
        return Failure;
    }
    // Saved through the same path as the editor's Save As, with the name given here.
    CliDialogs::instance().answerSaveWith(QFileInfo(outFile).absoluteFilePath());
    const bool saved = l.session.LayoutSave(true);
    CliDialogs::instance().answerSaveWith(QString());
    if (!saved || !LoggedErrors().isEmpty()) {
        err(u"varno-cli: %1 was not written."_s.arg(outFile));
        return Failure;
    }
    return Success;
}

int packInfo(const QString &file, bool json)
{
    prepare();
    PackData pack;
    const bool ok = guarded(u"varno-cli.pack-info"_s, [&] { pack = ReadPackFile(file); }, false);
    if (!ok) {
        err(u"varno-cli: %1: %2"_s.arg(file, LoggedErrors().value(0)));
        return Failure;
    }
    if (json) {
        JsonWriter j;
        j.beginObject();
        j.field(u"width"_s, int(pack.width));
        j.field(u"height"_s, int(pack.height));
        j.field(u"count"_s, int(pack.count));
        j.field(u"complete"_s, pack.complete());
        j.beginArray(u"records"_s);
        for (const PackRecord &r : pack.records) {
            j.beginObject();
            j.field(u"id"_s, int(r.ID));
            j.field(u"kind"_s, kindCaption(r.ID));
            j.field(u"x"_s, int(r.X));
            j.field(u"y"_s, int(r.Y));
            j.field(u"angle"_s, int(r.Angle));
            j.field(u"width"_s, int(r.Width));
            j.endObject();
        }
        j.endArray();
        j.endObject();
        out(j.text() + u'\n');
    } else {
        QString s;
        QTextStream t(&s);
        t << "File:    " << QFileInfo(file).absoluteFilePath() << '\n';
        t << "Box:     " << pack.width << " x " << pack.height << '\n';
        t << "Count:   " << pack.count << '\n';
        if (!pack.complete())
            t << "Records: only " << pack.records.size() << " present\n";
        int n = 0;
        for (const PackRecord &r : pack.records)
            t << qSetFieldWidth(5) << ++n << qSetFieldWidth(0) << "  " << qSetFieldWidth(24) << Qt::left
              << kindCaption(r.ID) << qSetFieldWidth(7) << Qt::right << r.X << r.Y << r.Angle << r.Width
              << qSetFieldWidth(0) << '\n';
        t.flush();
        out(s);
    }
    return pack.complete() ? Success : Failure;
}

int run(const QStringList &args)
{
    if (args.isEmpty()) {
        err(usage());
        return UsageError;
    }
    const QString command = args.first();
    if (command == u"--help"_s || command == u"-h"_s || command == u"help"_s) {
        out(usage());
        return Success;
    }
    if (command == u"--version"_s) {
        out(u"varno-cli " VARNO_VERSION "\n"_s);
        return Success;
    }
    if (command == u"render"_s)
        return render(args.mid(1));
    QStringList rest = args.mid(1);
    const bool json = rest.removeAll(u"--json"_s) > 0;
    for (const QString &a : rest)
        if (a.startsWith(u"--"_s)) {
            err(u"varno-cli: unknown option %1\n\n"_s.arg(a) + usage());
            return UsageError;
        }
    if (command == u"info"_s && rest.size() == 1)
        return info(rest[0], json);
    if (command == u"pack-info"_s && rest.size() == 1)
        return packInfo(rest[0], json);
    if (command == u"resave"_s && rest.size() == 2 && !json)
        return resave(rest[0], rest[1]);
    err(u"varno-cli: cannot understand that command line.\n\n"_s + usage());
    return UsageError;
}

} // namespace cli
