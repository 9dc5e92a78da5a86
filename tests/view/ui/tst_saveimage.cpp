// The Save to image command with its dialogs: the save dialog's request, the size
// dialog, and the whole flow to a written file.

#include "support/DocumentFixture.h"
#include "imaging/cGraphics.h"
#include "view/LayoutImageExport.h"
#include "view/SaveImageRules.h"
#include "view/ui/LayoutSaveImage.h"
#include "view/ui/frmSave.h"

#include <QApplication>
#include <QDir>
#include <QPushButton>
#include <QSpinBox>
#include <QTimer>
#include <QtTest>

class TestSaveImage : public DocumentTest {
    Q_OBJECT
    std::unique_ptr<LayoutSession> m_session;

    void prepare() override
    {
        options().SaveFolder = m_fx.app.file("layouts");
        options().SaveType = "png";
        m_session = m_fx.session("AU1_track.lyt");
        addObject(m_session->document(), 5, 500, 400);
        QDir().mkpath(m_fx.app.file("pictures"));
    }

private slots:
    // The whole command: the save dialog's request; the size dialog, where a width is
    // typed; the file. A cancel in either dialog writes nothing.
    void wholeCommand_data()
    {
        QTest::addColumn<QString>("answer");
        QTest::addColumn<QString>("button");
        QTest::newRow("jpg") << "pictures/AU1_track.jpg" << "cmdSave";
        QTest::newRow("save dialog cancelled") << "" << "";
        QTest::newRow("size dialog cancelled") << "pictures/a.png" << "cmdCancel";
    }
    void wholeCommand()
    {
        QFETCH(QString, answer);
        QFETCH(QString, button);
        const QString path = m_fx.app.file(answer);
        if (!answer.isEmpty())
            m_dialogs->saveAnswers << path;
        // Once the size dialog shows, type a width and press button. The timer belongs to
        // this row alone: it goes with the guard, so it never reaches another row's dialog.
        QObject guard;
        QTimer::singleShot(0, &guard, [button] {
            if (auto *d = qobject_cast<frmSave *>(QApplication::activeModalWidget())) {
                d->findChild<QSpinBox *>("udbWidth")->setValue(300);
                d->findChild<QPushButton *>(button)->click();
            }
        });
        const bool saved = button == "cmdSave";
        QCOMPARE(LayoutSaveImage(*m_session, nullptr), saved);
        QCOMPARE(m_dialogs->saveRequests.size(), 1);
        QCOMPARE(m_dialogs->saveRequests[0].fileName, QString("AU1_track.png"));
        QCOMPARE(m_dialogs->saveRequests[0].initialDir, m_fx.app.file("layouts"));
        QCOMPARE(QFileInfo(path).isFile(), saved);
        if (!saved)
            return;
        QCOMPARE(QImage(path).size(), QSize(300, 240));
        // The folder is remembered as for layouts; the image options are left as they were.
        QCOMPARE(options().SaveFolder, RememberedSaveFolder(path));
        QCOMPARE(options().SavePercent, 100);
    }

    // The window keeps painting, at other sizes, while the export draws on its own
    // thread: the export draws its own unselected copies, so neither the window's
    // picture caches nor the selection get into the file.
    void exportWhileTheWindowPaints()
    {
        LayoutDocument &doc = m_session->document();
        for (int i = 0; i < 120; ++i)
            addObject(doc, 5 + i % 40, 20 + i * 8, 100 + i * 5, i * 3, 0, i % 3 == 0);
        doc.SelectionUpdate(false);
        QImage screen(300, 200, QImage::Format_ARGB32_Premultiplied);
        int paints = 0;
        QTimer repaint;
        connect(&repaint, &QTimer::timeout, [&] {
            cGraphics g;
            g.CreateFromHdc(&screen);
            for (const varnoObject &o : doc.Objects())
                o.Draw(150, 100, g, 0.25f + float(paints % 9), nullptr);
            ++paints;
        });
        repaint.start(0);
        const QString path = m_fx.app.file("pictures/busy.png");
        QVERIFY(SaveImageWithProgress(*m_session, path, 4000, 3200, 90, nullptr));
        repaint.stop();
        QVERIFY(paints > 0);
        QImage expected(4000, 3200, QImage::Format_ARGB32_Premultiplied);
        QVERIFY(RenderLayoutPicture(ExportScene(doc, m_session->Background()), expected));
        QVERIFY(QImage(path).convertToFormat(QImage::Format_RGB32) == expected.convertToFormat(QImage::Format_RGB32));
    }
};

QTEST_MAIN(TestSaveImage)
#include "tst_saveimage.moc"
