// Save to image without a window: the file name and filter rules, the proportions of
// the size dialog, and the export itself, decoded back and compared with the picture
// drawn in one piece the plain way. Positions are scaled in single precision: at a scale
// of 203 / 200 the X of 100 lands on 101.5 exactly and goes to 102.

#include "support/DocumentFixture.h"
#include "imaging/cGraphics.h"
#include "app/ImageExportReport.h"
#include "view/SaveImageRules.h"

#include <QDir>
#include <QtTest>

namespace {

// The picture the export must produce, drawn in one go: the background stretched, and
// each object, unselected, at its scaled, rounded position with zoom 4 / scale.
QImage referencePicture(const LayoutDocument &doc, const cBitmap &background, QSize size)
{
    QImage picture(size, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    const float scale = float(size.width()) / float(background.Width());
    {
        cGraphics g;
        g.CreateFromHdc(&picture);
        g.SetInterpolationMode(InterpolationModeHighQualityBicubic);
        g.DrawImageRectI(background, 0, 0, size.width(), size.height());
        for (const varnoObject &o : doc.Objects()) {
            const auto plain = o.clone();
            plain->setSelected(false);
            plain->Draw(int(rt::roundHalfEven(double(float(o.X()) * scale))),
                        int(rt::roundHalfEven(double(float(o.Y()) * scale))), g, 4.0f / scale, nullptr);
        }
    }
    return picture.convertToFormat(QImage::Format_ARGB32);
}

QStringList filesIn(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden);
}

} // namespace

class TestImageExport : public DocumentTest {
    Q_OBJECT
    std::unique_ptr<LayoutSession> m_session;
    LayoutDocument *m_doc = nullptr;
    QString m_out;

    void prepare() override
    {
        // A 200 x 160 background with detail in both directions, so a wrong stretch shows.
        QImage bg(200, 160, QImage::Format_RGB32);
        for (int y = 0; y < bg.height(); ++y)
            for (int x = 0; x < bg.width(); ++x)
                bg.setPixel(x, y, qRgb(40 + x / 2, 60 + y / 2, (x * 7 + y * 3) % 64));
        bg.save(options().AU1);
        m_session = m_fx.session(QStringLiteral("AU1_export.lyt"));
        m_doc = &m_session->document();
        addObject(*m_doc, Kind::Finish, 100, 80, 0, 20); // a line with a width, selected
        addObject(*m_doc, 12, 199, 159, -90);            // turned, at the corner, partly outside
        m_doc->Select({m_doc->Objects().At(0).Key()}, LayoutDocument::SelectMode::Add);
        m_out = m_fx.app.file(QStringLiteral("out/") + QString::fromLatin1(QTest::currentTestFunction()) + u'/'
                              + QString::fromLatin1(QTest::currentDataTag()));
        QDir().mkpath(m_out);
    }

private slots:
    // The save dialog's rules, one function a row. The filter puts the chosen type first,
    // in the words of the language; the proposed name gives up its last three characters,
    // whatever they are, for the type; the remembered folder keeps (length - position of
    // the last separator - 1) characters. The size boxes: base size and the opening
    // percent, then one change; the width, height and percent after it.
    void rules_data()
    {
        QTest::addColumn<QString>("rule");
        QTest::addColumn<QString>("input");
        QTest::addColumn<QString>("expected");
        const QString png = "PNG file (*.png)|*.png|", jpg = "JPG file (*.jpg)|*.jpg|",
                      gif = "GIF file (*.gif)|*.gif|", bmp = "BMP file (*.bmp)|*.bmp|", all = "All files (*.*)|*.*";
        QTest::newRow("upper case GIF filter") << "filter" << "GIF" << gif + jpg + png + bmp + all;
        QTest::newRow("any other filter is jpg") << "filter" << "tif" << jpg + png + gif + bmp + all;
        QTest::newRow("filter in German") << "Datei" << "gif"
            << "GIF Datei (*.gif)|*.gif|JPG Datei (*.jpg)|*.jpg|PNG Datei (*.png)|*.png|BMP Datei (*.bmp)|*.bmp|"
               "Alle Dateien (*.*)|*.*";
        QTest::newRow("name without extension") << "name" << "BL3_abcdef gif" << "BL3_abcgif";
        QTest::newRow("folder") << "folder" << "/home/me/pics/a.jpg" << "/hom";
        QTest::newRow("height 400 on 1000x800") << "boxes" << "1000 800 100 height 400" << "500 400 50";
        // Width 5 of 200 x 100 asks for height 2.5, which is 2, which asks for width 4.
        QTest::newRow("ties to even") << "boxes" << "200 100 100 width 5" << "4 2 2";
        QTest::newRow("stored percent 2000 clamps") << "boxes" << "100 50 2000" << "1000 500 1000";
        // 333 wide: height 266.4 gives 266, which in turn asks for width 332.5, so 332;
        // the boxes settle a step away from what was typed, as they always did.
        QTest::newRow("rounding drift") << "boxes" << "1000 800 100 width 333" << "330 264 33";
    }
    void rules()
    {
        QFETCH(QString, rule);
        QFETCH(QString, input);
        QFETCH(QString, expected);
        if (rule == "Datei")
            SetLang(103, "Datei"), SetLang(102, "Alle Dateien");
        const QStringList a = input.split(' ');
        SaveImageProportions p;
        if (rule == "boxes") {
            p.open(a[0].toInt(), a[1].toInt(), a[2].toInt(), 90);
            if (a.size() > 3)
                (p.*(a[3] == "width" ? &SaveImageProportions::setWidth : &SaveImageProportions::setHeight))(a[4].toInt());
        }
        const QString got = rule == "name"      ? SaveImageProposedName(a[0], a.value(1))
                            : rule == "folder"  ? RememberedSaveFolder(input)
                            : rule == "boxes"   ? QString("%1 %2 %3").arg(p.width()).arg(p.height()).arg(p.percent())
                                                : SaveImageFilter(input);
        LoadLanguage();
        QCOMPARE(got, expected);
    }

    // The written file, decoded, against the picture drawn in one piece: it must match
    // exactly (the writers' lossy formats are tst_imagewriting's). A save that fails logs
    // and shows why and leaves no file.
    void saveImageFile_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QSize>("size");
        QTest::addColumn<QString>("logged");
        QTest::addColumn<QString>("shown");
        auto row = [](const char *tag, const char *name, QSize size, const char *logged = "",
                      const char *shown = "") { QTest::newRow(tag) << name << size << logged << shown; };
        row("png 1000%, many bands", "a.png", {2000, 1600});
        row("bmp odd width", "a.bmp", {203, 162});
        row("missing folder", "missing/a.png", {200, 160}, "76: Path not found in cGDIP.SaveBitmapToFile");
        row("zero width", "a.png", {0, 160},
            "5: The picture must be at least 1 x 1 pixels in frmLayout.LayoutSaveImageFile");
        row("no memory", "a.png", {200000, 200000}, "", "A picture of 200000 x 200000 pixels needs");
        row("unknown format", "a.xyz", {200, 160}, "",
            "\n(xyz) Unknown image format. Choose a different one\r");
        // With no dot the whole path is taken for the extension.
        row("no extension", "picture", {200, 160}, "",
            "/picture) Unknown image format. Choose a different one\r");
    }
    void saveImageFile()
    {
        QFETCH(QString, name);
        QFETCH(QSize, size);
        QFETCH(QString, logged);
        QFETCH(QString, shown);
        const QString path = m_out + u'/' + name;
        const bool ok = logged.isEmpty() && shown.isEmpty();
        QCOMPARE(LayoutSaveImageFile(*m_doc, m_session->Background(), path, size.width(), size.height(), 95), ok);
        QCOMPARE(LoggedErrors(), ok || logged.isEmpty() ? QStringList() : QStringList{logged});
        QCOMPARE(m_dialogs->messages.size(), ok ? 0 : 1);
        QCOMPARE(filesIn(m_out), ok ? QStringList{name} : QStringList());
        QVERIFY2(ok || m_dialogs->messages[0].text.contains(shown.isEmpty() ? logged : shown),
                 qPrintable(m_dialogs->messages.value(0).text));
        if (ok)
            QVERIFY2(QImage(path).convertToFormat(QImage::Format_ARGB32)
                         == referencePicture(*m_doc, m_session->Background(), size),
                     "the file differs from the picture drawn in one piece");
    }

    // Stopping at any point leaves neither the file nor a temporary beside it, and an
    // older picture of the same name stays as it was. Progress reaches 1 at the end.
    void cancelLeavesNoFile_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<double>("stopAt");
        QTest::addColumn<bool>("existing");
        QTest::newRow("png half-way") << "a.png" << 0.5 << false;
        QTest::newRow("jpg near the end") << "a.jpg" << 0.95 << false;
        QTest::newRow("gif half-way") << "a.gif" << 0.5 << false;
        QTest::newRow("png over an old file") << "a.png" << 0.5 << true;
        QTest::newRow("never stopped") << "a.jpg" << 2.0 << false;
    }
    void cancelLeavesNoFile()
    {
        QFETCH(QString, name);
        QFETCH(double, stopAt);
        QFETCH(bool, existing);
        const QString path = m_out + u'/' + name;
        if (existing)
            WriteFile(path, "old picture");
        double last = -1;
        const ImageExportResult r = RenderLayoutImage(ExportScene(*m_doc, m_session->Background()), path, 2000, 1600, 90, [&](double f) {
            last = f;
            return f < stopAt;
        });
        const bool stopped = stopAt <= 1;
        QCOMPARE(r.status, stopped ? ImageExportResult::Cancelled : ImageExportResult::Written);
        QVERIFY2(stopped ? last >= stopAt : last == 1.0, qPrintable(QString::number(last)));
        QCOMPARE(filesIn(m_out), stopped && !existing ? QStringList() : QStringList{name});
        if (existing)
            QCOMPARE(ReadAll(path), QByteArray("old picture"));
    }
};

QTEST_MAIN(TestImageExport)
#include "tst_imageexport.moc"
