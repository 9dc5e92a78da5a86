// The Save to image command with its dialogs: the save dialog's request, the size
// dialog's labels, boxes and quality rule, and the whole flow to a written file.

#include "support/DocumentFixture.h"
#include "imaging/cGraphics.h"
#include "view/LayoutImageExport.h"
#include "view/SaveImageRules.h"
#include "view/ui/LayoutSaveImage.h"
#include "view/ui/frmSave.h"

#include <QApplication>
#include <QDir>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QTimer>
#include <QtTest>

namespace {

// Runs fn on the size dialog once it is showing, then presses one of its buttons.
void whenDialogShows(const std::function<void(frmSave &)> &fn, const QString &button)
{
    QTimer::singleShot(0, [fn, button] {
        auto *dlg = qobject_cast<frmSave *>(QApplication::activeModalWidget());
        if (!dlg)
            return;
        fn(*dlg);
        dlg->findChild<QPushButton *>(button)->click();
    });
}

} // namespace

class TestSaveImage : public QObject {
    Q_OBJECT

    DocumentFixture m_fx{1000, 800};
    std::optional<ScriptedDialogs> m_dialogs;
    std::unique_ptr<LayoutSession> m_session;
    LayoutDocument *m_doc = nullptr;

private slots:
    void init()
    {
        m_dialogs.emplace();
        ClearLoggedErrors();
        options().SaveFolder = m_fx.app.file("layouts");
        options().RememberSaveFolder = true;
        options().SaveType = "png";
        options().SavePercent = 50;
        options().SaveQuality = 80;
        m_session = m_fx.session("AU1_track.lyt");
        m_doc = &m_session->document();
        addObject(*m_doc, 5, 500, 400);
        QDir(m_fx.app.file("pictures")).removeRecursively();
        QDir().mkpath(m_fx.app.file("pictures"));
    }
    void cleanup()
    {
        m_session.reset();
        m_dialogs.reset();
    }

    // The boxes open at the given percent, follow each other, and offer the quality
    // only for a name ending in exactly "jpg".
    void boxes_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<bool>("quality");
        QTest::newRow(".jpg") << "/p/a.jpg" << true;
        QTest::newRow(".JPG") << "/p/a.JPG" << false;
    }
    void boxes()
    {
        QFETCH(QString, path);
        QFETCH(bool, quality);
        frmSave dlg;
        QList<int> seen;
        bool qualityShown = !quality;
        whenDialogShows(
            [&](frmSave &d) {
                auto values = [&] {
                    for (const char *name : {"udbWidth", "udbHeight", "udbPercent", "udbQual"})
                        seen << d.findChild<QSpinBox *>(name)->value();
                };
                values();
                qualityShown = d.findChild<QSpinBox *>("udbQual")->isEnabled()
                               && d.findChild<QLabel *>("lblQuality")->isEnabled();
                d.findChild<QSpinBox *>("udbPercent")->setValue(50);
                d.findChild<QSpinBox *>("udbWidth")->setValue(300);
                values();
            },
            "cmdCancel");
        QVERIFY(!dlg.Save(path, 1000, 800, 150, 70));
        QCOMPARE(seen, (QList<int>{1500, 1200, 150, 70, 300, 240, 30, 70}));
        QCOMPARE(qualityShown, quality);
    }

    // The whole command: the save dialog's request, the size dialog, the file. A cancel
    // in either dialog writes nothing.
    void wholeCommand_data()
    {
        QTest::addColumn<QString>("answer");
        QTest::addColumn<QString>("button");
        QTest::addColumn<QSize>("size");
        QTest::newRow("png at the stored 50%") << "pictures/AU1_track.png" << "cmdSave" << QSize(500, 400);
        QTest::newRow("upper-case JPG") << "pictures/AU1_track.JPG" << "cmdSave" << QSize(500, 400);
        QTest::newRow("save dialog cancelled") << "" << "" << QSize();
        QTest::newRow("size dialog cancelled") << "pictures/a.png" << "cmdCancel" << QSize();
    }
    void wholeCommand()
    {
        QFETCH(QString, answer);
        QFETCH(QString, button);
        QFETCH(QSize, size);
        const QString path = m_fx.app.file(answer);
        if (!answer.isEmpty())
            m_dialogs->saveAnswers << path;
        if (!button.isEmpty())
            whenDialogShows([](frmSave &) {}, button);
        QCOMPARE(LayoutSaveImage(*m_session, nullptr), size.isValid());
        QCOMPARE(m_dialogs->saveRequests.size(), 1);
        const FileDialogRequest &r = m_dialogs->saveRequests[0];
        QCOMPARE(r.fileName, QString("AU1_track.png"));
        QCOMPARE(r.initialDir, m_fx.app.file("layouts"));
        QVERIFY(r.filter.startsWith("PNG file (*.png)|*.png|JPG file"));
        QCOMPARE(r.filterIndex, 1);
        const QStringList written = QDir(m_fx.app.file("pictures")).entryList(QDir::Files);
        if (!size.isValid()) {
            QCOMPARE(written, QStringList());
            return;
        }
        QCOMPARE(QImage(path).size(), size);
        QCOMPARE(written, QStringList{QFileInfo(path).fileName()});
        // The folder is remembered as for layouts; the image options are left as they were.
        QCOMPARE(options().SaveFolder, RememberedSaveFolder(path));
        QCOMPARE(options().SavePercent, 50);
        QVERIFY(m_dialogs->messages.isEmpty());
    }

    // The window keeps painting, at other sizes, while the export draws on its own
    // thread: the export draws its own unselected copies, so neither the window's
    // picture caches nor the selection get into the file.
    void exportWhileTheWindowPaints()
    {
        for (int i = 0; i < 120; ++i)
            addObject(*m_doc, 5 + i % 40, 20 + i * 8, 100 + i * 5, i * 3, 0, i % 3 == 0);
        m_doc->SelectionUpdate(false);
        QImage screen(300, 200, QImage::Format_ARGB32_Premultiplied);
        int paints = 0;
        QTimer repaint;
        connect(&repaint, &QTimer::timeout, [&] {
            cGraphics g;
            g.CreateFromHdc(&screen);
            for (const varnoObject &o : m_doc->Objects())
                o.Draw(150, 100, g, 0.25f + float(paints % 9), nullptr);
            ++paints;
        });
        repaint.start(0);
        const QString path = m_fx.app.file("pictures/busy.png");
        QVERIFY(SaveImageWithProgress(*m_session, path, 4000, 3200, 90, nullptr));
        repaint.stop();
        QVERIFY(paints > 0);
        QImage expected(4000, 3200, QImage::Format_ARGB32_Premultiplied);
        QVERIFY(RenderLayoutPicture(ExportScene(*m_doc, m_session->Background()), expected));
        QVERIFY(QImage(path).convertToFormat(QImage::Format_RGB32) == expected.convertToFormat(QImage::Format_RGB32));
    }
};

QTEST_MAIN(TestSaveImage)
#include "tst_saveimage.moc"
