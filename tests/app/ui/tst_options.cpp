// The options dialog: what Save writes to Varno.cfg and reads back, and the association
// button over a fake backend.

#include "app/ui/frmOptions.h"
#include "base/ConfigFile.h"
#include "base/Language.h"
#include "base/Settings.h"
#include "support/TestSupport.h"

#include <QtTest>
#include <QtWidgets>

using namespace Qt::StringLiterals;

namespace {

// Records what the dialog asks of the association.
class FakeAssociation : public FileAssociation {
public:
    explicit FakeAssociation(AssociationState s, QStringList *log) : m_state(s), m_log(log) {}
    AssociationState state() const override { return m_state; }
    void remove() override { *m_log << "remove"; }
    void create() override { *m_log << "create"; }
    void resolveByHand() override { *m_log << "by hand"; }

private:
    const AssociationState m_state;
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

    // Cancel changes nothing; fields changed, saved, and read back from the file by
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
        child<QSpinBox>(*d, "udbPercent")->setValue(250);
        child<QComboBox>(*d, "cboSaveType")->setCurrentIndex(2);
        child<QPushButton>(*d, "cmdSave")->click();
        QVERIFY(saved.count() == 1 && d->result() == QDialog::Accepted);
        // The language is reloaded at once.
        QCOMPARE(Lang(180), QString("Sprache"));

        options() = Options::defaults();
        GetOptions();
        const Options &o = options();
        QCOMPARE((QStringList{o.Language, o.AU1, o.AU2, o.SaveType}),
                 (QStringList{m_app->file("lang") + QDir::separator() + "Deutsch.lng",
                              m_app->file("backgrounds") + QDir::separator() + "AU1.png", "/pics/skid pad.png",
                              "gif"}));
        QCOMPARE((QList<int>{o.RememberOpenFolder, o.RememberSaveFolder, o.SavePercent}),
                 (QList<int>{false, true, 250}));
    }

    // Each state gives its caption and action.
    void associationButton_data()
    {
        QTest::addColumn<int>("state");
        QTest::addColumn<QString>("caption");
        QTest::addColumn<QStringList>("calls");
        const QString associate = "Associate .lyt files with Varno", unassociate = "Unassociate .lyt file",
                      other = ".lyt file associated with another program!";
        QTest::newRow("associated") << int(AssociationState::Associated) << unassociate << QStringList{"remove"};
        QTest::newRow("not associated") << int(AssociationState::NotAssociated) << associate
                                        << QStringList{"remove", "create"};
        QTest::newRow("another program") << int(AssociationState::OtherProgram) << other
                                         << QStringList{"by hand"};
    }
    void associationButton()
    {
        QFETCH(int, state);
        QFETCH(QString, caption);
        QFETCH(QStringList, calls);
        auto d = dialog(AssociationState(state));
        auto *button = child<QPushButton>(*d, "cmdAssociation");
        QCOMPARE(button->text(), caption);
        button->click();
        QCOMPARE(m_log, calls);
        // Cancel does not undo it.
        child<QPushButton>(*d, "cmdCancel")->click();
        QCOMPARE(m_log, calls);
    }
};

QTEST_MAIN(TestOptions)
#include "tst_options.moc"
