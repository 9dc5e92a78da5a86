// The options dialog: what it shows, what Save writes to Varno.cfg and reads back, the
// background and folder choosers, and the association button over a fake backend.

#include "app/Config.h"
#include "app/Language.h"
#include "app/Startup.h"
#include "app/ui/frmOptions.h"
#include "support/TestSupport.h"

#include <QComboBox>
#include <QDir>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QtTest>

using namespace Qt::StringLiterals;

namespace {

// Records what the dialog asks of the association and moves between states as a real
// backend would.
class FakeAssociation : public FileAssociation {
public:
    explicit FakeAssociation(AssociationState s, QStringList *log) : m_state(s), m_log(log) {}
    AssociationState state() const override { return m_state; }
    void remove() override
    {
        *m_log << "remove";
        if (m_state == AssociationState::Associated)
            m_state = AssociationState::NotAssociated;
    }
    void create() override
    {
        *m_log << "create";
        m_state = AssociationState::Associated;
    }
    void resolveByHand() override { *m_log << "by hand"; }

private:
    AssociationState m_state;
    QStringList *m_log;
};

template <typename W> W *child(QWidget &w, const QString &name)
{
    W *c = w.findChild<W *>(name);
    if (!c)
        qFatal("no %s", qPrintable(name));
    return c;
}

} // namespace

class TestOptions : public QObject {
    Q_OBJECT

    std::unique_ptr<TempAppFolder> m_app;
    std::optional<ScriptedDialogs> m_dialogs;
    QStringList m_log;

    std::unique_ptr<frmOptions> dialog(AssociationState s = AssociationState::NotAssociated)
    {
        return std::make_unique<frmOptions>([] { return QStringList{"/l/AU1_a.lyt", "", "/l/BL3_c.lyt", ""}; },
                                            nullptr, std::make_unique<FakeAssociation>(s, &m_log));
    }

private slots:
    void init()
    {
        m_app = std::make_unique<TempAppFolder>(true);
        WriteFile(m_app->file("lang/Deutsch.lng"), "180 Sprache\r\n050 Optionen\r\n");
        WriteFile(m_app->file("backgrounds/AU1_night.jpg"), "x");
        options() = Options::defaults();
        LoadLanguage();
        m_dialogs.emplace();
        m_log.clear();
    }
    void cleanup()
    {
        m_dialogs.reset();
        m_app.reset();
        options() = Options::defaults();
    }

    void captionsAndLists()
    {
        auto d = dialog();
        QCOMPARE(d->windowTitle(), QString("Options"));
        QCOMPARE(child<QLabel>(*d, "lblLanguage")->text(), QString("Language"));
        QCOMPARE(child<QGroupBox>(*d, "framBG")->title(), QString("Default background image"));
        QCOMPARE(child<QGroupBox>(*d, "framOpen")->title(), QString("Open options"));
        QCOMPARE(child<QGroupBox>(*d, "framSave")->title(), QString("Save options"));
        QCOMPARE(child<QRadioButton>(*d, "optOpenFolder0")->text(), QString("Remember last open folder used"));
        QCOMPARE(child<QRadioButton>(*d, "optSaveFolder0")->text(), QString("Remember last save folder used"));
        QCOMPARE(child<QRadioButton>(*d, "optSaveFolder1")->text(), QString("Always use the folder below"));
        QCOMPARE(child<QLabel>(*d, "lblPercent")->text(), QString("Percent"));
        QCOMPARE(child<QLabel>(*d, "lblQuality")->text(), QString("Quality"));
        QCOMPARE(child<QLabel>(*d, "lblType")->text(), QString("Image type"));
        QCOMPARE(child<QPushButton>(*d, "cmdSave")->text(), QString("Save"));
        QCOMPARE(child<QPushButton>(*d, "cmdCancel")->text(), QString("Cancel"));

        auto *language = child<QComboBox>(*d, "cboLanguage");
        QStringList names;
        for (int i = 0; i < language->count(); ++i)
            names << language->itemText(i);
        names.sort();
        QCOMPARE(names, (QStringList{"Deutsch", "English"}));
        QCOMPARE(language->currentText(), QString("English"));

        // AU1 lists both of its pictures, and every list ends in "Browse for more...".
        auto *au1 = child<QComboBox>(*d, "cboBG0");
        QStringList au1Items;
        for (int i = 0; i < au1->count(); ++i)
            au1Items << au1->itemText(i);
        QCOMPARE(au1Items.size(), 3);
        QVERIFY(au1Items.contains(m_app->file("backgrounds/AU1.png")));
        QVERIFY(au1Items.contains(m_app->file("backgrounds/AU1_night.jpg")));
        QCOMPARE(au1Items.last(), QString("Browse for more..."));
        QCOMPARE(child<QComboBox>(*d, "cboBG2")->count(), 2); // AU34.png only
        QCOMPARE(au1->currentText(), options().AU1);

        auto *type = child<QComboBox>(*d, "cboSaveType");
        QCOMPARE((QStringList{type->itemText(0), type->itemText(1), type->itemText(2), type->itemText(3)}),
                 (QStringList{"jpg", "png", "gif", "bmp"}));
        QCOMPARE(type->currentText(), QString("jpg"));
        QCOMPARE(child<QSpinBox>(*d, "udbPercent")->value(), 100);
        QCOMPARE(child<QSpinBox>(*d, "udbQuality")->value(), 90);
    }

    // Every field changed, saved, and read back from the file by GetOptions.
    void roundTripThroughConfig()
    {
        auto d = dialog();
        QSignalSpy saved(d.get(), &frmOptions::optionsSaved);
        child<QComboBox>(*d, "cboLanguage")->setEditText("Deutsch");
        child<QComboBox>(*d, "cboBG1")->setEditText("/pics/skid pad.png");
        child<QRadioButton>(*d, "optOpenFolder1")->setChecked(true);
        child<QLineEdit>(*d, "txtOpenFolder")->setText("/maps/open");
        child<QLineEdit>(*d, "txtSaveFolder")->setText("/maps/save");
        child<QSpinBox>(*d, "udbPercent")->setValue(250);
        child<QSpinBox>(*d, "udbQuality")->setValue(70);
        child<QComboBox>(*d, "cboSaveType")->setCurrentIndex(2);
        child<QPushButton>(*d, "cmdSave")->click();
        QCOMPARE(saved.count(), 1);
        QCOMPARE(d->result(), int(QDialog::Accepted));
        // The language is reloaded at once.
        QCOMPARE(Lang(180), QString("Sprache"));

        const QByteArray cfg = ReadAll(ConfigPath());
        QVERIFY(cfg.contains("RecentFile1 /l/AU1_a.lyt\r\nRecentFile3 /l/BL3_c.lyt\r\n"));
        QVERIFY(!cfg.contains("RecentFile2"));
        // The banner's last word is text 50 of the language saved with.
        QVERIFY(cfg.contains(" Options\r\n"));

        options() = Options::defaults();
        GetOptions();
        const Options &o = options();
        QCOMPARE(o.Language, m_app->file("lang") + QDir::separator() + "Deutsch.lng");
        QCOMPARE(o.AU1, m_app->file("backgrounds") + QDir::separator() + "AU1.png");
        QCOMPARE(o.AU2, QString("/pics/skid pad.png"));
        QCOMPARE(o.OpenFolder, QString("/maps/open"));
        QCOMPARE(o.RememberOpenFolder, false);
        QCOMPARE(o.SaveFolder, QString("/maps/save"));
        QCOMPARE(o.RememberSaveFolder, true);
        QCOMPARE(o.SavePercent, 250);
        QCOMPARE(o.SaveQuality, 70);
        QCOMPARE(o.SaveType, QString("gif"));
    }

    void cancelChangesNothing()
    {
        auto d = dialog();
        QSignalSpy saved(d.get(), &frmOptions::optionsSaved);
        child<QSpinBox>(*d, "udbPercent")->setValue(300);
        child<QPushButton>(*d, "cmdCancel")->click();
        QCOMPARE(saved.count(), 0);
        QCOMPARE(options().SavePercent, 100);
        QVERIFY(!QFile::exists(ConfigPath()));
    }

    void browseForBackground_data()
    {
        QTest::addColumn<QString>("answer");
        QTest::addColumn<QString>("shown"); // empty: the first entry
        QTest::newRow("chosen") << "/elsewhere/my AU1.png" << "/elsewhere/my AU1.png";
        QTest::newRow("cancelled") << "" << "";
    }
    void browseForBackground()
    {
        QFETCH(QString, answer);
        QFETCH(QString, shown);
        auto d = dialog();
        auto *au1 = child<QComboBox>(*d, "cboBG0");
        if (!answer.isEmpty())
            m_dialogs->openAnswers << answer;
        au1->setCurrentIndex(au1->count() - 1);
        emit au1->activated(au1->count() - 1);
        QCOMPARE(m_dialogs->openRequests.size(), 1);
        QCOMPARE(m_dialogs->openRequests[0].title, QString("Select a new background image"));
        QCOMPARE(m_dialogs->openRequests[0].filter, QString("All files (*.*)|*.*"));
        QCOMPARE(m_dialogs->openRequests[0].initialDir, AppPath());
        QCOMPARE(au1->currentText(), shown.isEmpty() ? au1->itemText(0) : shown);
        // Choosing an ordinary entry asks nothing.
        emit au1->activated(0);
        QCOMPARE(m_dialogs->openRequests.size(), 1);
    }

    void folderOptions()
    {
        options().RememberSaveFolder = false;
        auto d = dialog();
        auto *browseOpen = child<QPushButton>(*d, "cmdBrowse0");
        auto *browseSave = child<QPushButton>(*d, "cmdBrowse1");
        QVERIFY(!browseOpen->isEnabled());
        QVERIFY(browseSave->isEnabled());
        child<QRadioButton>(*d, "optOpenFolder1")->setChecked(true);
        QVERIFY(browseOpen->isEnabled());
        child<QRadioButton>(*d, "optSaveFolder0")->setChecked(true);
        QVERIFY(!browseSave->isEnabled());

        m_dialogs->folderAnswers << "/chosen/folder";
        browseOpen->click();
        QCOMPARE(m_dialogs->folderRequests, QStringList{"Choose a folder"});
        QCOMPARE(child<QLineEdit>(*d, "txtOpenFolder")->text(), QString("/chosen/folder"));
        browseOpen->click(); // cancelled: the folder stays
        QCOMPARE(child<QLineEdit>(*d, "txtOpenFolder")->text(), QString("/chosen/folder"));
    }

    // Each state gives its caption and action; pressing acts and shows the new state.
    void associationButton_data()
    {
        QTest::addColumn<int>("state");
        QTest::addColumn<QString>("caption");
        QTest::addColumn<QString>("tag");
        QTest::addColumn<QStringList>("calls");
        QTest::addColumn<QString>("captionAfter");
        QTest::newRow("associated") << int(AssociationState::Associated) << "Unassociate .lyt file" << "delete"
                                    << QStringList{"remove"} << "Associate .lyt files with Varno";
        QTest::newRow("not associated") << int(AssociationState::NotAssociated) << "Associate .lyt files with Varno"
                                        << "delete->create" << QStringList{"remove", "create"}
                                        << "Unassociate .lyt file";
        QTest::newRow("another program") << int(AssociationState::OtherProgram)
                                         << ".lyt file associated with another program!" << "regedit"
                                         << QStringList{"by hand"} << ".lyt file associated with another program!";
    }
    void associationButton()
    {
        QFETCH(int, state);
        QFETCH(QString, caption);
        QFETCH(QString, tag);
        QFETCH(QStringList, calls);
        QFETCH(QString, captionAfter);
        auto d = dialog(AssociationState(state));
        auto *button = child<QPushButton>(*d, "cmdAssociation");
        QCOMPARE(button->text(), caption);
        QCOMPARE(d->associationTag(), tag);
        button->click();
        QCOMPARE(m_log, calls);
        QCOMPARE(button->text(), captionAfter);
        // Cancel does not undo it.
        child<QPushButton>(*d, "cmdCancel")->click();
        QCOMPARE(m_log, calls);
    }
};

QTEST_MAIN(TestOptions)
#include "tst_options.moc"
