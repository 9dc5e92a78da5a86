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

class TestSaveImage : public DocumentTest {
    Q_OBJECT
    std::unique_ptr<LayoutSession> m_session;
    LayoutDocument *m_doc = nullptr;

    void prepare() override
    {
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

private slots:
    // The whole command: the save dialog's request; the size dialog, whose boxes open at
    // the stored percent, follow each other and offer the quality only for a name ending
    // in exactly "jpg"; the file. A cancel in either dialog writes nothing.
    void wholeCommand_data()
    {
        QTest::addColumn<QString>("answer");
        QTest::addColumn<QString>("button");
        QTest::addColumn<bool>("quality");
        QTest::newRow("jpg") << "pictures/AU1_track.jpg" << "cmdSave" << true;
        QTest::newRow("upper-case JPG") << "pictures/AU1_track.JPG" << "cmdSave" << false;
        QTest::newRow("save dialog cancelled") << "" << "" << false;
        QTest::newRow("size dialog cancelled") << "pictures/a.png" << "cmdCancel" << false;
    }
    void wholeCommand()
    {
        QFETCH(QString, answer);
        QFETCH(QString, button);
        QFETCH(bool, quality);
        const QString path = m_fx.app.file(answer);
        if (!answer.isEmpty())
            m_dialogs->saveAnswers << path;
        QList<int> seen;
        bool qualityShown = false;
        // Once the size dialog shows, read its boxes, change two and press button.
        if (!button.isEmpty())
            QTimer::singleShot(0, [&] {
                auto *d = qobject_cast<frmSave *>(QApplication::activeModalWidget());
                if (!d)
                    return;
                auto box = [&](const char *name) { return d->findChild<QSpinBox *>(name); };
                auto values = [&] {
                    for (const char *name : {"udbWidth", "udbHeight", "udbPercent", "udbQual"})
                        seen << box(name)->value();
                };
                values();
                qualityShown =
                    box("udbQual")->isEnabled() && d->findChild<QLabel *>("lblQuality")->isEnabled();
                box("udbPercent")->setValue(150);
                values();
                box("udbWidth")->setValue(300);
                values();
                d->findChild<QPushButton *>(button)->click();
            });
        const bool saved = button == "cmdSave";
        QCOMPARE(LayoutSaveImage(*m_session, nullptr), saved);
        QCOMPARE(m_dialogs->saveRequests.size(), 1);
        const FileDialogRequest &r = m_dialogs->saveRequests[0];
        QCOMPARE(r.fileName, QString("AU1_track.png"));
        QCOMPARE(r.initialDir, m_fx.app.file("layouts"));
        QVERIFY(r.filter.startsWith("PNG file (*.png)|*.png|JPG file"));
        QCOMPARE(r.filterIndex, 1);
        if (!button.isEmpty())
            QCOMPARE(seen, (QList<int>{1000 / 2, 800 / 2, 50, 80, 1500, 1200, 150, 80, 300, 240, 30, 80}));
        QCOMPARE(qualityShown, quality);
        const QStringList written = QDir(m_fx.app.file("pictures")).entryList(QDir::Files);
        QCOMPARE(written, saved ? QStringList{QFileInfo(path).fileName()} : QStringList());
        if (!saved)
            return;
        QCOMPARE(QImage(path).size(), QSize(300, 240));
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
