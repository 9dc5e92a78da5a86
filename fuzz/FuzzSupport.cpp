#include "FuzzSupport.h"

#include "base/ErrorLog.h"
#include "base/Language.h"
#include "base/Settings.h"
#include "catalogue/ObjectKinds.h"
#include "imaging/cBitmap.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>
#include <cstdio>
#include <cstdlib>

namespace fuzz {

MsgResult QuietDialogs::message(const QString &text, const QString &, MsgIcon, MsgButtons buttons)
{
    ++shown;
    lastText = text;
    switch (buttons) {
    case MsgButtons::Ok: return MsgResult::Ok;
    case MsgButtons::YesNo: return MsgResult::No;
    default: return MsgResult::Cancel;
    }
}

QuietDialogs &init()
{
    static QuietDialogs *dialogs = [] {
        static int argc = 1;
        static char name[] = "varno-fuzz";
        static char *argv[] = {name, nullptr};
        new QCoreApplication(argc, argv);
        InitVarnoResources();

        static QTemporaryDir dir(QDir::tempPath() + QStringLiteral("/varno-fuzz-XXXXXX"));
        if (!dir.isValid())
            fail("no temporary folder");
        for (const char *d : {"objects", "backgrounds", "lang", "packs", "layouts", "out"})
            QDir(dir.path()).mkpath(QLatin1String(d));
        SetAppPath(dir.path());
        options() = Options::defaults();

        QImage bg(250, 200, QImage::Format_RGB32);
        bg.fill(Qt::darkGreen);
        const QString bgPath = app(QStringLiteral("backgrounds/bg.png"));
        if (!bg.save(bgPath))
            fail("cannot write the background");
        options().AU1 = options().AU2 = options().AU34 = options().BL3 = bgPath;
        write(options().Language, EnglishLanguageFile());
        LoadLanguage();
        FillCatalogue();

        auto *d = new QuietDialogs;
        setDialogs(d);
        return d;
    }();
    return *dialogs;
}

QString app(const QString &relative)
{
    return AppPath() + relative;
}

void write(const QString &path, const uint8_t *data, size_t size)
{
    QFile f(path);
    if (!f.open(QIODevice::WriteOnly | QIODevice::Truncate))
        fail("cannot write the input file", path);
    if (size && f.write(reinterpret_cast<const char *>(data), qint64(size)) != qint64(size))
        fail("cannot write the input file", path);
}

void write(const QString &path, const QByteArray &bytes)
{
    write(path, reinterpret_cast<const uint8_t *>(bytes.constData()), size_t(bytes.size()));
}

QByteArray readAll(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

void resetLog()
{
    ClearLoggedErrors();
    QFile::remove(app(QStringLiteral("Varno.log")));
}

void fail(const char *what, const QString &detail)
{
    std::fprintf(stderr, "varno-fuzz: %s\n%s\n", what, qPrintable(detail));
    std::abort();
}

} // namespace fuzz
