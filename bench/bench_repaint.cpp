// Repaint cost of a full-HD document view: an AU1 layout with 512 objects of mixed
// kinds and angles plus 100 restricted areas and route checkers, all inside the view,
// at zooms 0.25, 1 and 4. Prints the median time per repaint, the background alone
// (kept stretched, and stretched afresh as after a zoom or scroll), and a zoom step.

#include "base/Settings.h"
#include "catalogue/ObjectKinds.h"
#include "app/LayoutSession.h"
#include "imaging/ColorMatrix.h"
#include "imaging/cGraphics.h"
#include "view/LayoutPainter.h"
#include "view/ViewGeometry.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QRandomGenerator>
#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

constexpr int ViewW = 1920;
constexpr int ViewH = 1080;
constexpr int Runs = 41;

double medianMs(std::vector<qint64> ns)
{
    std::sort(ns.begin(), ns.end());
    return ns[ns.size() / 2] / 1e6;
}

template <typename F> double timeIt(F &&f)
{
    std::vector<qint64> samples;
    QElapsedTimer t;
    for (int i = 0; i < Runs; ++i) {
        t.start();
        f();
        samples.push_back(t.nsecsElapsed());
    }
    return medianMs(samples);
}

} // namespace

int main(int argc, char **argv)
{
    QGuiApplication app(argc, argv);
    SetAppPath(QCoreApplication::applicationDirPath());
    options() = Options::defaults();
    FillCatalogue();

    // Ordinary kinds present at the AU site, to mix.
    std::vector<int> kinds;
    for (int k = Kind::FirstOrdinary; k <= Kind::LastOrdinary; ++k)
        if (FileIndexForKind(k, true) != NotAtSite)
            kinds.push_back(k);

    std::printf("view %dx%d, AU1, 512 objects + 100 restricted areas / route checkers, median of %d\n", ViewW, ViewH,
                Runs);
    std::printf("%-6s %12s %14s %16s %12s %14s\n", "zoom", "repaint ms", "bg kept ms", "bg stretched ms",
                "objects ms", "zoom step ms");
    for (float zoom : {0.25f, 1.0f, 4.0f}) {
        LayoutSession session;
        LayoutDocument &doc = session.document();
        session.setFileName(QStringLiteral("AU1_bench.lyt"));
        if (!session.LayoutLoadBG()) {
            std::fprintf(stderr, "cannot load the AU1 background from %s\n", qPrintable(AppPath()));
            return 1;
        }
        ViewGeometry view;
        view.setClientSize(ViewW, ViewH);
        view.setBackground(doc.BoundsWidth(), doc.BoundsHeight(), 1630);
        view.setZoom(zoom);
        view.centreOn(doc.BoundsWidth() / 2, doc.BoundsHeight() / 2);

        // Everything lies inside what the view shows at this zoom.
        const int left = std::max(1, view.ScrollX() + 1);
        const int top = std::max(1, view.ScrollY() + 1);
        const int right = std::min(doc.BoundsWidth(), view.ScrollX() + view.VisibleWidth());
        const int bottom = std::min(doc.BoundsHeight(), view.ScrollY() + view.VisibleHeight());
        QRandomGenerator rng(42);
        auto place = [&](int kind) {
            int16_t angle = int16_t(rng.bounded(-180, 181));
            uint8_t width = 0;
            bool fromView = false, selected = rng.bounded(8) == 0;
            doc.ObjectAdd(uint8_t(kind), int16_t(rng.bounded(left, right + 1)), int16_t(rng.bounded(top, bottom + 1)),
                          angle, width, fromView, selected);
        };
        for (int i = 0; i < 512; ++i)
            place(kinds[size_t(i) % kinds.size()]);
        for (int i = 0; i < 100; ++i)
            place(Kind::RestrictedInvisible + i % 5);

        QImage target(ViewW, ViewH, QImage::Format_ARGB32_Premultiplied);
        LayoutPainter painter;
        auto paint = [&](bool full) {
            cGraphics g;
            g.CreateFromHdc(&target);
            if (full)
                painter.Draw(g, doc, session.Background(), view);
            else
                painter.DrawBackground(g, session.Background(), view);
        };
        paint(true); // warm the pictures and the stretched background
        const double full = timeIt([&] { paint(true); });
        const double bgKept = timeIt([&] { paint(false); });
        const double bgFresh = timeIt([&] {
            painter.invalidate();
            paint(false);
        });
        // A zoom key: the zoom changes and the next repaint stretches afresh.
        const double step = timeIt([&] {
            view.setZoom(zoom * 2);
            paint(true);
            view.setZoom(zoom);
            paint(true);
        }) / 2;
        std::printf("%-6.2f %12.2f %14.2f %16.2f %12.2f %14.2f\n", zoom, full, bgKept, bgFresh, full - bgKept, step);
    }
    return 0;
}
