// varno-cli render: a layout saved as a picture exactly as the editor's Save to image
// writes it, with the options' defaults; a percent follows the size dialog's rules, a
// width or a height is met exactly.

#include "base/ErrorLog.h"
#include "base/Settings.h"
#include "catalogue/ObjectKinds.h"
#include "cli/CliCommands.h"
#include "cli/CliLayout.h"
#include "core/LayoutDocument.h"
#include "base/Runtime.h"
#include "app/ImageExportReport.h"
#include "view/SaveImageRules.h"

#include <QFileInfo>
#include <algorithm>
#include <cstdio>
#include <optional>

#ifdef Q_OS_WIN
#include <io.h>
#define isatty _isatty
#define fileno _fileno
#else
#include <unistd.h>
#endif

using namespace Qt::StringLiterals;

namespace cli {

namespace {

void say(FILE *stream, const QString &text)
{
    const QByteArray bytes = (text + u'\n').toLocal8Bit();
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stream);
    std::fflush(stream);
}

int usageError(const QString &why)
{
    say(stderr, u"varno-cli: "_s + why + u"\n\n"_s + usage());
    return UsageError;
}

// Progress as one line that rewrites itself; only on a terminal, so that logs and
// pipes stay clean.
class TerminalProgress {
public:
    TerminalProgress() : m_enabled(isatty(fileno(stderr))) {}
    ~TerminalProgress() { done(); }
    bool operator()(double fraction)
    {
        const int percent = int(fraction * 100.0);
        if (m_enabled && percent != m_shown) {
            m_shown = percent;
            std::fprintf(stderr, "\rrendering %3d %%", percent);
            std::fflush(stderr);
        }
        return true;
    }
    void done()
    {
        if (m_enabled && m_shown >= 0)
            std::fprintf(stderr, "\r%*s\r", 16, "");
        m_shown = -1;
    }

private:
    bool m_enabled;
    int m_shown = -1;
};

} // namespace

int render(const QStringList &args)
{
    QString in, out;
    std::optional<int> percent, width, height, quality;
    int sizeOptions = 0;
    for (qsizetype i = 0; i < args.size(); ++i) {
        const QString &a = args[i];
        const bool takesValue = a == u"-o"_s || a == u"--output"_s || a == u"--percent"_s || a == u"--width"_s
                                || a == u"--height"_s || a == u"--quality"_s;
        if (!takesValue) {
            if (a.startsWith(u'-') && a.size() > 1)
                return usageError(u"unknown option %1 for render"_s.arg(a));
            if (!in.isEmpty())
                return usageError(u"render takes one layout file"_s);
            in = a;
            continue;
        }
        if (i + 1 >= args.size())
            return usageError(u"%1 needs a value"_s.arg(a));
        const QString value = args[++i];
        if (a == u"-o"_s || a == u"--output"_s) {
            out = value;
            continue;
        }
        bool ok = false;
        const int n = value.toInt(&ok);
        if (!ok)
            return usageError(u"%1 needs a whole number, not %2"_s.arg(a, value));
        if (a == u"--quality"_s) {
            if (n < 0 || n > 100)
                return usageError(u"--quality must be from 0 to 100"_s);
            quality = n;
            continue;
        }
        if (n < 1)
            return usageError(u"%1 must be at least 1"_s.arg(a));
        ++sizeOptions;
        (a == u"--percent"_s ? percent : a == u"--width"_s ? width : height) = n;
    }
    if (in.isEmpty() || out.isEmpty())
        return usageError(u"render needs a layout file and -o OUT"_s);
    if (sizeOptions > 1)
        return usageError(u"give only one of --percent, --width and --height"_s);

    ClearLoggedErrors();
    FillCatalogue();
    const OpenedLayout layout(in);
    const cBitmap &background = layout.session.Background();
    const int baseWidth = background.Width(), baseHeight = background.Height();
    if (const QString problem = layout.problem(in); !problem.isEmpty()) {
        say(stderr, u"varno-cli: "_s + problem + u"; nothing was written."_s);
        return Failure;
    }

    // The size dialog as it opens, then the one box the command line sets.
    SaveImageProportions sizes;
    sizes.open(baseWidth, baseHeight, options().SavePercent, options().SaveQuality);
    if (percent)
        sizes.setPercent(*percent);
    // A width or height asked for on the command line is met exactly, the other side in
    // proportion; the dialog's boxes would pass it through the percent and drift.
    int pictureWidth = sizes.width(), pictureHeight = sizes.height();
    auto proportional = [](int side, int base, int otherBase, int otherMax) {
        return std::clamp(int(rt::roundHalfEven(double(side) * otherBase / base)), 1, otherMax);
    };
    if (width) {
        pictureWidth = std::min(*width, sizes.maxWidth());
        pictureHeight = proportional(pictureWidth, baseWidth, baseHeight, sizes.maxHeight());
    }
    if (height) {
        pictureHeight = std::min(*height, sizes.maxHeight());
        pictureWidth = proportional(pictureHeight, baseHeight, baseWidth, sizes.maxWidth());
    }
    if (quality)
        sizes.setQuality(*quality);
    auto limitNote = [&](const std::optional<int> &asked, const char *name, int got) {
        if (asked && *asked != got && (got == sizes.maxWidth() || got == sizes.maxHeight()
                                       || got == SaveImageProportions::MaxPercent))
            say(stderr, u"varno-cli: %1 %2 is above the limit of ten times the background; using %3"_s.arg(
                            QLatin1String(name)).arg(*asked).arg(got));
    };
    limitNote(percent, "percent", sizes.percent());
    limitNote(width, "width", pictureWidth);
    limitNote(height, "height", pictureHeight);

    const QString target = QFileInfo(out).absoluteFilePath();
    ImageExportResult result;
    {
        TerminalProgress progress;
        result = RenderLayoutImage(ExportScene(layout.doc(), background), target, pictureWidth, pictureHeight, sizes.quality(),
                                   [&](double f) { return progress(f); });
    }
    ReportImageExport(result, pictureWidth, pictureHeight);
    if (result.status != ImageExportResult::Written) {
        say(stderr, u"varno-cli: %1 was not written."_s.arg(out));
        return Failure;
    }
    say(stdout, u"%1: %2 x %3 pixels"_s.arg(out).arg(pictureWidth).arg(pictureHeight));
    return Success;
}

} // namespace cli
