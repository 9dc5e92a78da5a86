#include "base/Runtime.h"

#include <QtTest>
#include <cmath>

// The integer rules that positions, angles and file bytes depend on. Each row is one
// operation; error 0 means it succeeds with the expected value.
class TestRuntime : public QObject {
    Q_OBJECT
private slots:
    void rules_data()
    {
        QTest::addColumn<QString>("op");
        QTest::addColumn<double>("a");
        QTest::addColumn<double>("b");
        QTest::addColumn<int>("expected");
        QTest::addColumn<int>("error");
        QTest::newRow("int16 tie down to even") << "int16" << 0.5 << 0.0 << 0 << 0;
        QTest::newRow("int16 tie up to even") << "int16" << 1.5 << 0.0 << 2 << 0;
        QTest::newRow("int16 negative tie") << "int16" << -13223.5 << 0.0 << -13224 << 0;
        QTest::newRow("int16 max") << "int16" << 32767.49 << 0.0 << 32767 << 0;
        QTest::newRow("int16 max + 0.5 rounds up") << "int16" << 32767.5 << 0.0 << 0 << 6;
        QTest::newRow("int16 min - 0.5 rounds to even") << "int16" << -32768.5 << 0.0 << -32768 << 0;
        QTest::newRow("int16 nan") << "int16" << std::nan("") << 0.0 << 0 << 6;
        QTest::newRow("byte tie to even") << "byte" << 254.5 << 0.0 << 254 << 0;
        QTest::newRow("byte above") << "byte" << 255.5 << 0.0 << 0 << 6;
        QTest::newRow("byte -0.5 is zero") << "byte" << -0.5 << 0.0 << 0 << 0;
        QTest::newRow("byte negative") << "byte" << -0.6 << 0.0 << 0 << 6;
        QTest::newRow("add to max") << "add" << 32000.0 << 767.0 << 32767 << 0;
        QTest::newRow("add overflows") << "add" << 32000.0 << 768.0 << 0 << 6;
        QTest::newRow("sub overflows") << "sub" << -32000.0 << 769.0 << 0 << 6;
        QTest::newRow("mul overflows") << "mul" << 16384.0 << 2.0 << 0 << 6;
        QTest::newRow("div truncates toward zero") << "div" << -7.0 << 2.0 << -3 << 0;
        QTest::newRow("div min by -1") << "div" << -32768.0 << -1.0 << 0 << 6;
        QTest::newRow("div by zero") << "div" << 1.0 << 0.0 << 0 << 11;
        QTest::newRow("index inside") << "index" << 60.0 << 0.0 << 0 << 0;
        QTest::newRow("index above") << "index" << 61.0 << 0.0 << 0 << 9;
        QTest::newRow("index below") << "index" << -1.0 << 0.0 << 0 << 9;
    }
    void rules()
    {
        QFETCH(QString, op);
        QFETCH(double, a);
        QFETCH(double, b);
        QFETCH(int, expected);
        QFETCH(int, error);
        int got = 0;
        int raised = 0;
        try {
            if (op == u"int16")
                got = rt::toInt16(a);
            else if (op == u"byte")
                got = rt::toByte(a);
            else if (op == u"add")
                got = rt::add16(int(a), int(b));
            else if (op == u"sub")
                got = rt::sub16(int(a), int(b));
            else if (op == u"mul")
                got = rt::mul16(int(a), int(b));
            else if (op == u"div")
                got = rt::idiv16(int(a), int(b));
            else
                rt::checkIndex(int(a), 0, 60);
        } catch (const rt::Error &e) {
            raised = e.number();
        }
        QCOMPARE(raised, error);
        QCOMPARE(got, expected);
    }

    void texts()
    {
        QStringList texts;
        for (int n : {6, 9, 13, 62})
            texts << rt::Error(n).message();
        QCOMPARE(texts, QStringList({"6: Overflow", "9: Subscript out of range", "13: Type mismatch",
                                     "62: Input past end of file"}));
    }
};

QTEST_GUILESS_MAIN(TestRuntime)
#include "tst_runtime.moc"
