#include "base/Runtime.h"

#include <QtTest>
#include <cmath>

// The integer rules that positions, angles and file bytes depend on. Each row is one
// operation; an empty error means it succeeds with the expected value.
class TestRuntime : public QObject {
    Q_OBJECT
private slots:
    void rules_data()
    {
        QTest::addColumn<QString>("op");
        QTest::addColumn<double>("a");
        QTest::addColumn<double>("b");
        QTest::addColumn<int>("expected");
        QTest::addColumn<QString>("error");
        QTest::newRow("int16 tie down to even") << "int16" << 0.5 << 0.0 << 0 << "";
        QTest::newRow("int16 max + 0.5 rounds up") << "int16" << 32767.5 << 0.0 << 0 << "6: Overflow";
        QTest::newRow("int16 min - 0.5 rounds to even") << "int16" << -32768.5 << 0.0 << -32768 << "";
        QTest::newRow("int16 nan") << "int16" << std::nan("") << 0.0 << 0 << "6: Overflow";
        QTest::newRow("byte above") << "byte" << 255.5 << 0.0 << 0 << "6: Overflow";
        QTest::newRow("byte -0.5 is zero") << "byte" << -0.5 << 0.0 << 0 << "";
        QTest::newRow("byte negative") << "byte" << -0.6 << 0.0 << 0 << "6: Overflow";
        QTest::newRow("add to max") << "add" << 32000.0 << 767.0 << 32767 << "";
        QTest::newRow("add overflows") << "add" << 32000.0 << 768.0 << 0 << "6: Overflow";
        QTest::newRow("sub overflows") << "sub" << -32000.0 << 769.0 << 0 << "6: Overflow";
        QTest::newRow("mul overflows") << "mul" << 16384.0 << 2.0 << 0 << "6: Overflow";
        QTest::newRow("div min by -1") << "div" << -32768.0 << -1.0 << 0 << "6: Overflow";
        QTest::newRow("div by zero") << "div" << 1.0 << 0.0 << 0 << "11: Division by zero";
        QTest::newRow("index inside") << "index" << 60.0 << 0.0 << 0 << "";
        QTest::newRow("index above") << "index" << 61.0 << 0.0 << 0 << "9: Subscript out of range";
        QTest::newRow("type mismatch") << "raise" << 13.0 << 0.0 << 0 << "13: Type mismatch";
    }
    void rules()
    {
        QFETCH(QString, op);
        QFETCH(double, a);
        QFETCH(double, b);
        QFETCH(int, expected);
        QFETCH(QString, error);
        int got = 0;
        QString raised = "";
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
            else if (op == u"index")
                rt::checkIndex(int(a), 0, 60);
            else
                rt::raise(int(a));
        } catch (const rt::Error &e) {
            raised = e.message();
        }
        QCOMPARE(raised, error);
        QCOMPARE(got, expected);
    }
};

QTEST_GUILESS_MAIN(TestRuntime)
#include "tst_runtime.moc"
