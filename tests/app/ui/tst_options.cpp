// The options dialog: what it shows, what Save writes to Varno.cfg and reads back, the
// background and folder choosers, and the association button over a fake backend.

#include "app/ui/frmOptions.h"
#include "base/ConfigFile.h"
#include "base/Language.h"
#include "base/Settings.h"
#include "support/TestSupport.h"

#include <QtTest>
#include <QtWidgets>

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

QStringList items(QComboBox *box)
{
    QStringList out;
    for (int i = 0; i < box->count(); ++i)
        out << box->itemText(i);
    return out;
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

    // What the lists offer and the values the dialog opens with.
    void listsAndValues()
    {
        auto d = dialog();
        QStringList names = items(child<QComboBox>(*d, "cboLanguage"));
        names.sort();
        QCOMPARE(names, (QStringList{"Deutsch", "English"}));
        QCOMPARE(child<QComboBox>(*d, "cboLanguage")->currentText(), QString("English"));
        // AU1 lists both of its pictures, and every list ends in "Browse for more...".
        auto *au1 = child<QComboBox>(*d, "cboBG0");
        const QString night = QDir::toNativeSeparators(m_app->file("backgrounds/AU1_night.jpg"));
        QCOMPARE(items(au1), (QStringList{options().AU1, night, "Browse for more..."}));
        QCOMPARE(au1->currentText(), options().AU1);
        QCOMPARE(child<QComboBox>(*d, "cboSaveType")->currentText(), QString("jpg"));
    }

    // Cancel changes nothing; every field changed, saved, and read back from the file by
    // GetOptions.
    void cancelAndSave()
    {
        auto d = dialog();
        QSignalSpy cancelled(d.get(), &frmOptions::optionsSaved);
        child<QSpinBox>(*d, "udbPercent")->setValue(300);
        child<QPushButton>(*d, "cmdCancel")->click();
        QVERIFY(cancelled.isEmpty() && options().SavePercent == 100 && !QFile::exists(ConfigPath()));

        d = dialog();
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
        QVERIFY(saved.count() == 1 && d->result() == QDialog::Accepted);
        // The language is reloaded at once.
        QCOMPARE(Lang(180), QString("Sprache"));

        const QByteArray cfg = ReadAll(ConfigPath());
        // The banner's last word is text 50 of the language saved with.
        QVERIFY(cfg.contains("RecentFile1 /l/AU1_a.lyt\r\nRecentFile3 /l/BL3_c.lyt\r\n") && !cfg.contains("RecentFile2")
                && cfg.contains(" Options\r\n"));

        options() = Options::defaults();
        GetOptions();
        const Options &o = options();
        QCOMPARE((QStringList{o.Language, o.AU1, o.AU2, o.OpenFolder, o.SaveFolder, o.SaveType}),
                 (QStringList{m_app->file("lang") + QDir::separator() + "Deutsch.lng",
                              m_app->file("backgrounds") + QDir::separator() + "AU1.png", "/pics/skid pad.png",
                              "/maps/open", "/maps/save", "gif"}));
        QCOMPARE((QList<int>{o.RememberOpenFolder, o.RememberSaveFolder, o.SavePercent, o.SaveQuality}),
                 (QList<int>{false, true, 250, 70}));
    }

    // "Browse for more..." asks for a picture in the application folder and shows it, or
    // the first entry when cancelled; an ordinary entry asks nothing. The folder buttons
    // follow their options, and a cancelled folder choice keeps the folder.
    void choosers()
    {
        options().RememberSaveFolder = false;
        auto d = dialog();
        auto *au1 = child<QComboBox>(*d, "cboBG0");
        m_dialogs->openAnswers << "/elsewhere/my AU1.png";
        for (const QString shown : {"/elsewhere/my AU1.png", ""}) {
            au1->setCurrentIndex(au1->count() - 1);
            emit au1->activated(au1->count() - 1);
            QCOMPARE(au1->currentText(), shown.isEmpty() ? au1->itemText(0) : shown);
        }
        emit au1->activated(0);
        QCOMPARE(m_dialogs->openRequests.size(), 2);
        QCOMPARE(m_dialogs->openRequests[1].initialDir, AppPath());

        auto *browseOpen = child<QPushButton>(*d, "cmdBrowse0");
        auto *browseSave = child<QPushButton>(*d, "cmdBrowse1");
        QVERIFY(!browseOpen->isEnabled() && browseSave->isEnabled());
        child<QRadioButton>(*d, "optOpenFolder1")->setChecked(true);
        child<QRadioButton>(*d, "optSaveFolder0")->setChecked(true);
        QVERIFY(browseOpen->isEnabled() && !browseSave->isEnabled());
        m_dialogs->folderAnswers << "/chosen/folder";
        browseOpen->click();
        browseOpen->click(); // cancelled: the folder stays
        QCOMPARE(child<QLineEdit>(*d, "txtOpenFolder")->text(), QString("/chosen/folder"));
        QCOMPARE(m_dialogs->folderRequests.size(), 2);
    }

    // Each state gives its caption and action; pressing acts and shows the new state.
    void associationButton_data()
    {
        QTest::addColumn<int>("state");
        QTest::addColumn<QString>("caption");
        QTest::addColumn<QStringList>("calls");
        QTest::addColumn<QString>("captionAfter");
        const QString associate = "Associate .lyt files with Varno", unassociate = "Unassociate .lyt file",
                      other = ".lyt file associated with another program!";
        QTest::newRow("associated") << int(AssociationState::Associated) << unassociate << QStringList{"remove"}
                                    << associate;
        QTest::newRow("not associated") << int(AssociationState::NotAssociated) << associate
                                        << QStringList{"remove", "create"} << unassociate;
        QTest::newRow("another program") << int(AssociationState::OtherProgram) << other << QStringList{"by hand"}
                                         << other;
    }
    void associationButton()
    {
        QFETCH(int, state);
        QFETCH(QString, caption);
        QFETCH(QStringList, calls);
        QFETCH(QString, captionAfter);
        auto d = dialog(AssociationState(state));
        auto *button = child<QPushButton>(*d, "cmdAssociation");
        QCOMPARE(button->text(), caption);
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
