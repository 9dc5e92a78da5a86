// The freedesktop association on temporary XDG folders with real files: the three
// states, the transitions between them, and that nothing but our own entries is ever
// touched. On Windows, the registry association against the system's own registry
// (under Wine, Wine's).

#include "base/Language.h"
#include "app/XdgFileAssociation.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

#ifdef Q_OS_WIN
#include "app/Registry.h"
#include "base/Settings.h"

#include <QFileInfo>
#endif

using namespace Qt::StringLiterals;

class TestFileAssociation : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> m_root;
    QString dataHome() const { return m_root->path() + "/data"; }
    QString configHome() const { return m_root->path() + "/config"; }
    QString systemData() const { return m_root->path() + "/sysdata"; }
    QString systemConfig() const { return m_root->path() + "/sysconfig"; }
    QString userList() const { return configHome() + "/mimeapps.list"; }

    static XdgFileAssociation make(const QString &exe = "/opt/my games/Varno")
    {
        return XdgFileAssociation(exe, false);
    }

    void writeDesktop(const QString &folder, const QString &id, const QString &name, const QString &exec)
    {
        WriteFile(folder + "/applications/" + id,
                  ("[Desktop Entry]\nType=Application\nName=" + name + "\nExec=" + exec + "\n").toUtf8());
    }

private slots:
    void init()
    {
#ifdef Q_OS_WIN
        if (qstrcmp(QTest::currentTestFunction(), "registry") != 0)
            QSKIP("The freedesktop association belongs to Linux desktops; Windows keeps it in the registry");
#endif
        m_root = std::make_unique<QTemporaryDir>();
        qputenv("XDG_DATA_HOME", dataHome().toUtf8());
        qputenv("XDG_CONFIG_HOME", configHome().toUtf8());
        qputenv("XDG_DATA_DIRS", systemData().toUtf8());
        qputenv("XDG_CONFIG_DIRS", systemConfig().toUtf8());
        qunsetenv("XDG_CURRENT_DESKTOP");
        for (int slot : {108, 109})
            SetLang(slot, DefaultLanguageString(slot));
    }

    // A relative XDG folder is ignored for the standard one.
    void relativeFolderIgnored()
    {
        qputenv("XDG_CONFIG_HOME", "relative/path");
        QCOMPARE(XdgFileAssociation::configHome(), QDir::homePath() + "/.config");
    }

    void execLine_data()
    {
        QTest::addColumn<QString>("exe");
        QTest::addColumn<QString>("line");
        QTest::newRow("plain") << "/usr/bin/Varno" << "\"/usr/bin/Varno\" %f";
        QTest::newRow("blank") << "/opt/my games/Varno" << "\"/opt/my games/Varno\" %f";
        QTest::newRow("quote, dollar, percent") << "/x/a\"b$c%d" << "\"/x/a\\\\\"b\\\\$c%%d\" %f";
        QTest::newRow("backslash") << "/x/a\\b" << "\"/x/a\\\\\\\\b\" %f";
    }
    void execLine()
    {
        QFETCH(QString, exe);
        QFETCH(QString, line);
        QCOMPARE(make(exe).execLine(), line);
    }

    // Not associated -> create -> associated -> remove -> not associated, with the
    // user's other lines kept through both changes, and a list made when there was none.
    void createAndRemove_data()
    {
        QTest::addColumn<QByteArray>("others");
        QTest::addColumn<QString>("created");
        QTest::newRow("other lines kept")
            << "[Default Applications]\ntext/plain=gedit.desktop;\n\n[Removed Associations]\nimage/png=gimp.desktop;\n"_ba
            << "[Default Applications]\ntext/plain=gedit.desktop;\napplication/x-lfs-layout=varno.desktop;\n\n"
               "[Removed Associations]\nimage/png=gimp.desktop;\n\n"
               "[Added Associations]\napplication/x-lfs-layout=varno.desktop;\n";
        QTest::newRow("no list yet") << QByteArray()
                                     << "[Default Applications]\napplication/x-lfs-layout=varno.desktop;\n\n"
                                        "[Added Associations]\napplication/x-lfs-layout=varno.desktop;\n";
    }
    void createAndRemove()
    {
        QFETCH(QByteArray, others);
        QFETCH(QString, created);
        if (!others.isEmpty())
            WriteFile(userList(), others);
        XdgFileAssociation a = make();
        QCOMPARE(a.state(), AssociationState::NotAssociated);
        a.create();
        QCOMPARE(a.state(), AssociationState::Associated);
        QCOMPARE(QString::fromUtf8(ReadAll(userList())), created);
        const QString desktop = QString::fromUtf8(ReadAll(a.desktopEntryPath()));
        QVERIFY(desktop.contains("\nExec=\"/opt/my games/Varno\" %f\n"));
        QVERIFY(desktop.contains("\nMimeType=application/x-lfs-layout;\n"));
        QVERIFY(QString::fromUtf8(ReadAll(a.mimePackagePath())).contains("<glob pattern=\"*.lyt\"/>"));
        a.create(); // twice is the same as once
        QCOMPARE(QString::fromUtf8(ReadAll(userList())), created);

        a.remove();
        QCOMPARE(a.state(), AssociationState::NotAssociated);
        QVERIFY(!QFile::exists(a.desktopEntryPath()));
        QVERIFY(!QFile::exists(a.mimePackagePath()));
        const QString after = QString::fromUtf8(ReadAll(userList()));
        QVERIFY2(!after.contains("x-lfs-layout"), qPrintable(after));
        QCOMPARE(after.contains("text/plain=gedit.desktop;") && after.contains("image/png=gimp.desktop;"),
                 !others.isEmpty());
    }

    // Who holds the association, and the state that gives.
    void states_data()
    {
        QTest::addColumn<QString>("listFile");    // relative to the temporary root
        QTest::addColumn<QString>("defaultId");
        QTest::addColumn<QString>("entryFolder"); // where varno.desktop lies, if anywhere
        QTest::addColumn<QString>("entryExec");
        QTest::addColumn<int>("state");
        const int none = int(AssociationState::NotAssociated), ours = int(AssociationState::Associated),
                  other = int(AssociationState::OtherProgram);
        const QString me = "\"/opt/my games/Varno\" %f";
        QTest::newRow("nothing") << "" << "" << "" << "" << none;
        QTest::newRow("ours") << "config/mimeapps.list" << "varno.desktop" << "data" << me << ours;
        QTest::newRow("another program") << "config/mimeapps.list" << "other.desktop" << "" << "" << other;
        QTest::newRow("system default") << "sysconfig/mimeapps.list" << "other.desktop" << "" << "" << other;
        QTest::newRow("old data location") << "data/applications/mimeapps.list" << "other.desktop" << "" << ""
                                           << other;
        QTest::newRow("another copy of Varno") << "config/mimeapps.list" << "varno.desktop" << "data"
                                               << "\"/home/me/old/Varno\" %f" << other;
        QTest::newRow("quoting differs") << "config/mimeapps.list" << "varno.desktop" << "data"
                                         << "/opt/my\\\\ games/Varno %f" << other;
        QTest::newRow("packaged Varno") << "config/mimeapps.list" << "varno.desktop" << "sysdata" << me << other;
        QTest::newRow("our entry is gone") << "config/mimeapps.list" << "varno.desktop" << "" << "" << none;
    }
    void states()
    {
        QFETCH(QString, listFile);
        QFETCH(QString, defaultId);
        QFETCH(QString, entryFolder);
        QFETCH(QString, entryExec);
        QFETCH(int, state);
        if (!listFile.isEmpty())
            WriteFile(m_root->path() + "/" + listFile,
                      ("[Default Applications]\napplication/x-lfs-layout=" + defaultId + ";\n").toUtf8());
        if (!entryFolder.isEmpty())
            writeDesktop(m_root->path() + "/" + entryFolder, "varno.desktop", "Varno", entryExec);
        XdgFileAssociation a = make();
        QCOMPARE(int(a.state()), state);
        if (!listFile.isEmpty())
            QCOMPARE(a.holder().listFile, m_root->path() + "/" + listFile);
    }

    // The user's list wins over the system's, whichever way round.
    void userListComesFirst()
    {
        XdgFileAssociation a = make();
        a.create();
        WriteFile(systemConfig() + "/mimeapps.list", "[Default Applications]\napplication/x-lfs-layout=other.desktop;\n");
        QCOMPARE(a.state(), AssociationState::Associated);
        a.remove();
        QCOMPARE(a.state(), AssociationState::OtherProgram);
        QCOMPARE(a.holder().desktopId, QString("other.desktop"));
    }

    // Another program's association is shown, with its name and where it is set, and
    // left alone; remove() takes only our own name out of the lists.
    void otherProgramIsLeftAlone()
    {
        const QByteArray list = "[Default Applications]\napplication/x-lfs-layout=other.desktop;varno.desktop;\n";
        WriteFile(userList(), list);
        writeDesktop(systemData(), "other.desktop", "Other Editor", "other %f");
        XdgFileAssociation a = make();
        QCOMPARE(a.state(), AssociationState::OtherProgram);
        ScriptedDialogs dialogs;
        a.resolveByHand();
        QCOMPARE(dialogs.messages.size(), 1);
        const QString text = dialogs.messages[0].text;
        QVERIFY2(text.contains("Other Editor (other.desktop)") && text.contains(userList()), qPrintable(text));
        QCOMPARE(ReadAll(userList()), list);

        a.remove();
        QCOMPARE(QString::fromUtf8(ReadAll(userList())),
                 QString("[Default Applications]\napplication/x-lfs-layout=other.desktop;\n"));
        QCOMPARE(a.state(), AssociationState::OtherProgram);
    }

#ifdef Q_OS_WIN
    // Associate, remove, and another program's command (even one that differs only in
    // letter case), which is reported and left alone.
    void registry()
    {
        TempAppFolder app(false);
        QVERIFY(app.path().endsWith(u'\\'));
        const QString command = u".lyt\\shell\\open\\command"_s;
        const QString exe = app.path() + QFileInfo(QCoreApplication::applicationFilePath()).fileName();
        const auto a = NativeFileAssociation();
        a->remove();
        QCOMPARE(a->state(), AssociationState::NotAssociated);
        a->create();
        QCOMPARE(a->state(), AssociationState::Associated);
        QCOMPARE(RegGetString(HKEY_CLASSES_ROOT, command, u"(Default)"_s), u'"' + exe + u"\" \"%1\""_s);
        QCOMPARE(RegGetString(HKEY_CLASSES_ROOT, u".lyt\\DefaultIcon"_s, u"(default)"_s), exe + u",1"_s);
        QCOMPARE(RegGetString(HKEY_CLASSES_ROOT, u".lyt"_s, u"(default)"_s), Lang(108));
        a->remove();
        QCOMPARE(a->state(), AssociationState::NotAssociated);
        QVERIFY(RegGetString(HKEY_CLASSES_ROOT, u".lyt"_s, u"(default)"_s).isEmpty());

        for (const QString &other : {u"\"C:\\Other\\Editor.exe\" \"%1\""_s, (u'"' + exe + u"\" \"%1\""_s).toUpper()}) {
            QVERIFY(RegSetString(HKEY_CLASSES_ROOT, command, other, u"(default)"_s));
            QCOMPARE(a->state(), AssociationState::OtherProgram);
            QCOMPARE(RegGetString(HKEY_CLASSES_ROOT, command, u"(default)"_s), other);
        }
        a->remove();
    }
#endif
};

QTEST_GUILESS_MAIN(TestFileAssociation)
#include "tst_fileassociation.moc"
