// Every input on which a fuzz target (fuzz/) stopped, fed to the same code path in the
// normal build, with what Varno must make of it. New findings are added as rows.

#include "support/DocumentFixture.h"

#include <QtTest>

using namespace Qt::StringLiterals;

class TestFuzzFindings : public QObject {
    Q_OBJECT

    // fuzz_lyt runs on a 250 x 200 background.
    DocumentFixture m_fx{250, 200};

private slots:
    // fuzz_lyt: a layout opened, saved and opened again; what the second opening reads.
    void layoutSavedAndOpened_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("input");
        QTest::addColumn<QString>("reopened");
        // A route checker with heading byte 1 reads as angle -179; saved, its heading byte
        // is its route number 0, which reads as -180.
        QTest::newRow("route checker angle")
            << u"AU1_f.lyt"_s
            << QByteArray::fromBase64("TEZTTFlUAPsMAAEAWvMb2P+AAMBb+0jZ/5gAgKb27db/kQBg4vIq1f8AMoBL9CrV/wA1i7X1KtX/ADSVHvcq1f8AM6CI+CrV/wA2q/H5KtX/ADe1l/ei0f+N/4DE9N4wAAj/AHn53s//CP8B")
            << u"0@4,27 a90 w0; 1@116,20 a0 w12; 2@50,34 a-45 w8; 6@17,45 a15 w0; 7@37,45 a30 w0; 8@57,45 a45 w0; "
               "9@76,45 a60 w0; 10@96,45 a75 w0; 56@63,67 a0 w6; 59@90,78 a-180 w4"_s;
        // A route checker with flags 3 has width 1; it is written as flags 0, which reads
        // as width 0 and becomes the default width 10.
        QTest::newRow("route checker width 1")
            << u"BL3_f.lyt"_s
            << QByteArray::fromBase64("TEZTTFlUAPsMAAEANfUF1v+A/wAygKP29Sj/ADe1pftJxP+NAMBeAT7Z/5gAgDf6zNL/kQBgfvT1zf8AMoCj9vUo/wA3taX7ScT/jf+AWvdyv/8ANIvJ+PXN/wBa93L/gAP/AIH+AQAA+v8B")
            << u"59@231,156 a-180 w10"_s;
    }
    void layoutSavedAndOpened()
    {
        QFETCH(QString, name);
        QFETCH(QByteArray, input);
        QFETCH(QString, reopened);
        ScriptedDialogs dialogs;
        ClearLoggedErrors();
        WriteFile(m_fx.layoutPath(name), input);
        auto doc = m_fx.session(name);
        QVERIFY(doc->LayoutOpen());
        QVERIFY(doc->LayoutSave(false));
        auto back = m_fx.session(name);
        QVERIFY(back->LayoutOpen());
        QCOMPARE(objectsText(back->document()), reopened);
        QCOMPARE(LoggedErrors(), QStringList());
    }
};

QTEST_GUILESS_MAIN(TestFuzzFindings)

#include "tst_fuzzfindings.moc"
