// The Save to image command with its dialogs: the save dialog's request, the size
// dialog's labels, boxes and quality rule, and the whole flow to a written file.

#include "support/DocumentFixture.h"
#include "view/ui/LayoutSaveImage.h"
#include "view/ui/frmSave.h"

#include <QApplication>
#include <QDir>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QTimer>
#include <QtTest>

namespace {

// Runs fn on the size dialog once it is showing, then presses one of its buttons.
void whenDialogShows(const std::function<void(frmSave &)> &fn, const char *button)
{
    QTimer::singleShot(0, [fn, button] {
        auto *dlg = qobject_cast<frmSave *>(QApplication::activeModalWidget());
        if (!dlg)
            return;
        fn(*dlg);
        dlg->findChild<QPushButton *>(QString::fromLatin1(button))->click();
    });
}

int spin(frmSave &d, const char *name)
{
    return d.findChild<QSpinBox *>(QString::fromLatin1(name))->value();
}

} // namespace

class TestSaveImage : public QObject {
    Q_OBJECT

    DocumentFixture m_fx{1000, 800};
    std::optional<ScriptedDialogs> m_dialogs;
    std::unique_ptr<LayoutDocument> m_doc;

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
        m_doc = m_fx.document("AU1_track.lyt");
        addObject(*m_doc, 5, 500, 400);
        QDir(m_fx.app.file("pictures")).removeRecursively();
        QDir().mkpath(m_fx.app.file("pictures"));
    }
    void cleanup()
    {
        m_doc.reset();
        m_dialogs.reset();
    }

    void labelsAndBoxes_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<bool>("quality");
        QTest::newRow(".jpg") << "/p/a.jpg" << true;
        QTest::newRow(".JPG") << "/p/a.JPG" << false;
        QTest::newRow(".png") << "/p/a.png" << false;
    }
    void labelsAndBoxes()
    {
        QFETCH(QString, path);
        QFETCH(bool, quality);
        frmSave dlg;
        QStringList seen;
        whenDialogShows(
            [&](frmSave &d) {
                auto text = [&](const char *name) { return d.findChild<QLabel *>(name)->text(); };
                seen << d.windowTitle() << text("lblFile") << d.findChild<QGroupBox *>("fraOptions")->title()
                     << text("lblWidth") << text("lblHeight") << text("lblPercent") << text("lblQuality")
                     << d.findChild<QPushButton *>("cmdSave")->text() << d.findChild<QPushButton *>("cmdCancel")->text();
                seen << QString::number(spin(d, "udbWidth")) << QString::number(spin(d, "udbHeight"))
                     << QString::number(spin(d, "udbPercent")) << QString::number(spin(d, "udbQual"));
                seen << QString::number(d.findChild<QSpinBox *>("udbWidth")->maximum())
                     << QString::number(d.findChild<QSpinBox *>("udbHeight")->maximum());
                QCOMPARE(d.findChild<QLabel *>("lblQuality")->isEnabled(), quality);
                QCOMPARE(d.findChild<QSpinBox *>("udbQual")->isEnabled(), quality);
            },
            "cmdCancel");
        QVERIFY(!dlg.Save(path, 1000, 800, 30, 70));
        // The quality label comes from slot 18, empty in English, so it reads ":".
        QCOMPARE(seen, (QStringList{"Save to image", path, "Options:", "Width:", "Height:", "Percent:", ":", "Save",
                                    "Cancel", "300", "240", "30", "70", "10000", "8000"}));
    }

    // The user's change of one box moves the others.
    void boxesFollowEachOther()
    {
        frmSave dlg;
        QList<int> after;
        whenDialogShows(
            [&](frmSave &d) {
                d.findChild<QSpinBox *>("udbWidth")->setValue(300);
                after << spin(d, "udbWidth") << spin(d, "udbHeight") << spin(d, "udbPercent");
                d.findChild<QSpinBox *>("udbPercent")->setValue(150);
                after << spin(d, "udbWidth") << spin(d, "udbHeight") << spin(d, "udbPercent");
            },
            "cmdCancel");
        dlg.Save("/p/a.png", 1000, 800, 100, 90);
        QCOMPARE(after, (QList<int>{300, 240, 30, 1500, 1200, 150}));
    }

    void wholeCommand_data()
    {
        QTest::addColumn<QString>("answer");
        QTest::addColumn<QSize>("size");
        QTest::newRow("png at the stored 50%") << "pictures/AU1_track.png" << QSize(500, 400);
        QTest::newRow("upper-case JPG") << "pictures/AU1_track.JPG" << QSize(500, 400);
    }
    void wholeCommand()
    {
        QFETCH(QString, answer);
        QFETCH(QSize, size);
        const QString path = m_fx.app.file(answer);
        m_dialogs->saveAnswers << path;
        whenDialogShows([](frmSave &) {}, "cmdSave");
        QVERIFY(LayoutSaveImage(*m_doc, nullptr));

        QCOMPARE(m_dialogs->saveRequests.size(), 1);
        const FileDialogRequest &r = m_dialogs->saveRequests[0];
        QCOMPARE(r.fileName, QString("AU1_track.png"));
        QCOMPARE(r.initialDir, m_fx.app.file("layouts"));
        QVERIFY(r.filter.startsWith("PNG file (*.png)|*.png|JPG file"));
        QCOMPARE(r.filterIndex, 1);
        QCOMPARE(QImage(path).size(), size);
        QCOMPARE(QDir(m_fx.app.file("pictures")).entryList(QDir::Files), QStringList{QFileInfo(path).fileName()});
        // The folder is remembered by the same count as for layouts; the image options
        // are left as they were.
        QCOMPARE(options().SaveFolder, RememberedSaveFolderFor(path));
        QCOMPARE(options().SavePercent, 50);
        QVERIFY(m_dialogs->messages.isEmpty());
    }

    void cancelledDialogs_data()
    {
        QTest::addColumn<bool>("fileChosen");
        QTest::newRow("save dialog cancelled") << false;
        QTest::newRow("size dialog cancelled") << true;
    }
    void cancelledDialogs()
    {
        QFETCH(bool, fileChosen);
        options().RememberSaveFolder = false;
        if (fileChosen) {
            m_dialogs->saveAnswers << m_fx.app.file("pictures/a.png");
            whenDialogShows([](frmSave &) {}, "cmdCancel");
        }
        QVERIFY(!LayoutSaveImage(*m_doc, nullptr));
        QCOMPARE(QDir(m_fx.app.file("pictures")).entryList(QDir::Files), QStringList());
        QCOMPARE(options().SaveFolder, m_fx.app.file("layouts"));
    }

private:
    static QString RememberedSaveFolderFor(const QString &path)
    {
        const qsizetype last = std::max(path.lastIndexOf('/'), path.lastIndexOf('\\')) + 1;
        return path.left(path.size() - last - 1);
    }
};

QTEST_MAIN(TestSaveImage)
#include "tst_saveimage.moc"
