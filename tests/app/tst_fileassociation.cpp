// The freedesktop association on temporary XDG folders with real files: the three
// states, the transitions between them, and that nothing but our own entries is ever
// touched. On Windows, the registry association against the system's own registry
// (under Wine, Wine's).

#include "app/XdgFileAssociation.h"
#include "base/Language.h"
#include "support/TestSupport.h"

#include <QtTest>

#ifdef Q_OS_WIN
#include "app/Registry.h"
#include "base/Settings.h"
#endif

using namespace Qt::StringLiterals;

class TestFileAssociation : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> m_root;
    QString at(const QString &relative) const { return m_root->path() + "/" + relative; }
    static XdgFileAssociation make(QString exe = "/opt/my games/Varno") { return XdgFileAssociation(exe, false); }
    void writeDesktop(const QString &folder, const QString &id, const QString &name, const QString &exec)
    {
        WriteFile(at(folder + "/applications/" + id),
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
        qputenv("XDG_DATA_HOME", at("data").toUtf8());
        qputenv("XDG_CONFIG_HOME", at("config").toUtf8());
        qputenv("XDG_DATA_DIRS", at("sysdata").toUtf8());
        qputenv("XDG_CONFIG_DIRS", at("sysconfig").toUtf8());
        qunsetenv("XDG_CURRENT_DESKTOP");
        for (int slot : {108, 109})
            SetLang(slot, DefaultLanguageString(slot));
    }

    // Not associated -> create -> associated -> remove -> not associated, with the
    // user's other lines kept through both changes, and a list made when there was none.
    // Another copy of Varno does not hold our association. The Exec line escapes what a desktop entry's quoting rules ask for.
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
            WriteFile(at("config/mimeapps.list"), others);
        XdgFileAssociation a = make("/x/a\"b$c%d");
        QCOMPARE(a.state(), AssociationState::NotAssociated);
        a.create();
        QCOMPARE(a.state(), AssociationState::Associated);
        QCOMPARE(make("/home/me/old/Varno").state(), AssociationState::OtherProgram); // another copy of Varno
        QCOMPARE(QString::fromUtf8(ReadAll(at("config/mimeapps.list"))), created);
        const QString desktop = QString::fromUtf8(ReadAll(a.desktopEntryPath()));
        QVERIFY2(desktop.contains("\nExec=\"/x/a\\\\\"b\\\\$c%%d\" %f\n"), qPrintable(desktop));
        QVERIFY(desktop.contains("\nMimeType=application/x-lfs-layout;\n"));
        QVERIFY(QString::fromUtf8(ReadAll(a.mimePackagePath())).contains("<glob pattern=\"*.lyt\"/>"));
        a.create(); // twice is the same as once
        QCOMPARE(QString::fromUtf8(ReadAll(at("config/mimeapps.list"))), created);

        a.remove();
        QCOMPARE(a.state(), AssociationState::NotAssociated);
        QVERIFY(!QFile::exists(a.desktopEntryPath()));
        QVERIFY(!QFile::exists(a.mimePackagePath()));
        const QString after = QString::fromUtf8(ReadAll(at("config/mimeapps.list")));
        QVERIFY2(!after.contains("x-lfs-layout"), qPrintable(after));
        QCOMPARE(after.contains("text/plain=gedit.desktop;") && after.contains("image/png=gimp.desktop;"),
                 !others.isEmpty());
    }

    // Another program's association is shown, with its name and where it is set, and
    // left alone; remove() takes only our own name out of the lists.
    void otherProgramIsLeftAlone()
    {
        const QByteArray list = "[Default Applications]\napplication/x-lfs-layout=other.desktop;varno.desktop;\n";
        WriteFile(at("config/mimeapps.list"), list);
        writeDesktop("sysdata", "other.desktop", "Other Editor", "other %f");
        XdgFileAssociation a = make();
        QCOMPARE(a.state(), AssociationState::OtherProgram);
        ScriptedDialogs dialogs;
        a.resolveByHand();
        QCOMPARE(dialogs.messages.size(), 1);
        const QString text = dialogs.messages[0].text;
        QVERIFY2(text.contains("Other Editor (other.desktop)") && text.contains(at("config/mimeapps.list")),
                 qPrintable(text));
        QCOMPARE(ReadAll(at("config/mimeapps.list")), list);

        a.remove();
        QCOMPARE(QString::fromUtf8(ReadAll(at("config/mimeapps.list"))),
                 QString("[Default Applications]\napplication/x-lfs-layout=other.desktop;\n"));
        QCOMPARE(a.state(), AssociationState::OtherProgram);
    }

#ifdef Q_OS_WIN
    // Associate, remove, and another program's command (here one that differs only in
    // letter case), which remove() leaves alone.
    void registry()
    {
        TempAppFolder app(false);
        const QString command = u".lyt\\shell\\open\\command"_s;
        const QString exe = app.path() + QFileInfo(QCoreApplication::applicationFilePath()).fileName();
        const auto a = NativeFileAssociation();
        a->remove();
        QCOMPARE(a->state(), AssociationState::NotAssociated);
        a->create();
        QCOMPARE(a->state(), AssociationState::Associated);
        QCOMPARE(RegGetString(HKEY_CLASSES_ROOT, command, u"(Default)"_s), u'"' + exe + u"\" \"%1\""_s);
        QCOMPARE(RegGetString(HKEY_CLASSES_ROOT, u".lyt"_s, u"(default)"_s), Lang(108));
        a->remove();
        QCOMPARE(a->state(), AssociationState::NotAssociated);
        const QString other = (u'"' + exe + u"\" \"%1\""_s).toUpper();
        QVERIFY(RegSetString(HKEY_CLASSES_ROOT, command, other, u"(default)"_s));
        QCOMPARE(a->state(), AssociationState::OtherProgram); // reading the state changes nothing
        QCOMPARE(RegGetString(HKEY_CLASSES_ROOT, command, u"(default)"_s), other);
        a->remove();
    }
#endif
};

QTEST_GUILESS_MAIN(TestFileAssociation)
#include "tst_fileassociation.moc"
