#include "app/ui/Application.h"
#include "app/ui/QtDialogs.h"
#include "app/ui/frmMDI.h"
#include "app/ui/frmOptions.h"
#include "base/Settings.h"
#include "support/TestSupport.h"

#include <QtTest>
#include <QtWidgets>

using namespace Qt::StringLiterals;

class TestMainWindow : public QObject {
    Q_OBJECT
private slots:
    void commandLine_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("path");
        QTest::newRow("quotes removed anywhere") << QStringList{"Varno", "\"/my maps/AU1_a.lyt\""}
                                                 << "/my maps/AU1_a.lyt";
        QTest::newRow("quoted program name with blanks")
            << QStringList{"\"C:\\Program Files\\Varno\\Varno.exe\"", "C:\\my", "maps\\AU1_a.lyt"}
            << "C:\\my maps\\AU1_a.lyt";
    }
    void commandLine()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, path);
        // The raw line a Windows shell builds from the same words.
        QCOMPARE(WindowsCommandLinePath(arguments.join(u' ')), path);
#ifndef Q_OS_WIN // there the process's own command line is read, not the arguments
        QCOMPARE(CommandLinePath(arguments), path);
#endif
    }

    // A first run shows the options without blocking the main window, and frees them when
    // they close. With a Varno.cfg there is nothing to show.
    void firstRunOptionsModeless()
    {
        TempAppFolder app(false);
        ScriptedDialogs dlg;
        options() = Options::defaults();
        frmMDI mdi;
        mdi.show();
        // Were the dialog modal, this ends it so that the test fails instead of hanging.
        QTimer::singleShot(0, [] { if (QWidget *w = QApplication::activeModalWidget()) w->close(); });
        QPointer<frmOptions> dialog = ShowFirstRunOptions(mdi);
        QVERIFY(dialog && dialog->isVisible() && !dialog->isModal() && !QApplication::activeModalWidget()
                && dialog->parent() == &mdi);
        dialog->close();
        QTRY_VERIFY(!dialog);
        WriteFile(ConfigPath(), {});
        QVERIFY(!ShowFirstRunOptions(mdi));
    }

    // A save dialog whose folder does not exist (a remembered save folder often is a
    // cut-off path) starts in the nearest folder above it, not where the last dialog,
    // the pack dialog in packs/, happened to be.
    void saveDialogStartsNearItsFolder()
    {
        TempAppFolder app(false);
        QtDialogs dialogs;
        QString shown;
        auto save = [&](const QString &folder, const QString &name) {
            QTimer::singleShot(0, [&] {
                if (auto *d = qobject_cast<QFileDialog *>(QApplication::activeModalWidget())) {
                    shown = d->directory().path();
                    d->reject();
                }
            });
            dialogs.saveFile(FileDialogRequest{.initialDir = folder, .fileName = name});
            return QFileInfo(shown).canonicalFilePath();
        };
        const QString packs = QDir().mkpath(app.file(u"packs"_s)) ? app.file(u"packs"_s) : QString();
        QCOMPARE(save(packs, u"AU_x.pack"_s), QFileInfo(packs).canonicalFilePath());
        QCOMPARE(save(app.file(u"layo"_s), u"AU1_x.lyt"_s), QFileInfo(app.path()).canonicalFilePath());
    }
};

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
