#include "core/Runtime.h"

#include <QtTest>

// The integer rules that positions, angles and file bytes depend on.
class TestRuntime : public QObject {
    Q_OBJECT
private slots:
    void toInt16_data()
    {
        QTest::addColumn<double>("value");
        QTest::addColumn<int>("expected"); // or -1 with overflow set
        QTest::addColumn<bool>("overflow");
        QTest::newRow("tie down to even") << 0.5 << 0 << false;
        QTest::newRow("tie up to even") << 1.5 << 2 << false;
        QTest::newRow("tie 2.5") << 2.5 << 2 << false;
        QTest::newRow("negative tie") << -13223.5 << -13224 << false;
        QTest::newRow("negative tie odd") << -0.5 << 0 << false;
        QTest::newRow("below tie") << 2.4999 << 2 << false;
        QTest::newRow("max") << 32767.0 << 32767 << false;
        QTest::newRow("max + 0.49") << 32767.49 << 32767 << false;
        QTest::newRow("max + 0.5 rounds to even 32768") << 32767.5 << 0 << true;
        QTest::newRow("min") << -32768.0 << -32768 << false;
        QTest::newRow("min - 0.5 rounds to even -32768") << -32768.5 << -32768 << false;
        QTest::newRow("min - 0.51") << -32768.51 << 0 << true;
        QTest::newRow("huge") << 1e12 << 0 << true;
        QTest::newRow("nan") << std::nan("") << 0 << true;
    }
    void toInt16()
    {
        QFETCH(double, value);
        QFETCH(int, expected);
        QFETCH(bool, overflow);
        if (overflow) {
            try {
                rt::toInt16(value);
                QFAIL("no overflow raised");
            } catch (const rt::Error &e) {
                QCOMPARE(e.number(), 6);
                QCOMPARE(e.message(), QStringLiteral("6: Overflow"));
            }
        } else {
            QCOMPARE(int(rt::toInt16(value)), expected);
        }
    }

    void toByte_data()
    {
        QTest::addColumn<double>("value");
        QTest::addColumn<int>("expected");
        QTest::newRow("0") << 0.0 << 0;
        QTest::newRow("254.5 to even") << 254.5 << 254;
        QTest::newRow("255") << 255.0 << 255;
        QTest::newRow("255.5 overflows") << 255.5 << -1;
        QTest::newRow("-0.5 to zero") << -0.5 << 0;
        QTest::newRow("-0.6 overflows") << -0.6 << -1;
    }
    void toByte()
    {
        QFETCH(double, value);
        QFETCH(int, expected);
        bool raised = false;
        int got = -1;
        try {
            got = rt::toByte(value);
        } catch (const rt::Error &e) {
            raised = e.number() == rt::Overflow;
        }
        QCOMPARE(raised, expected < 0);
        if (expected >= 0)
            QCOMPARE(got, expected);
    }

    void arithmetic_data()
    {
        QTest::addColumn<QString>("op");
        QTest::addColumn<int>("a");
        QTest::addColumn<int>("b");
        QTest::addColumn<int>("expected");
        QTest::addColumn<int>("error");
        QTest::newRow("add fits") << "add" << 32000 << 767 << 32767 << 0;
        QTest::newRow("add overflows") << "add" << 32000 << 768 << 0 << 6;
        QTest::newRow("sub to min") << "sub" << -32000 << 768 << -32768 << 0;
        QTest::newRow("sub overflows") << "sub" << -32000 << 769 << 0 << 6;
        QTest::newRow("mul fits") << "mul" << 181 << 181 << 32761 << 0;
        QTest::newRow("mul overflows") << "mul" << 16384 << 2 << 0 << 6;
        QTest::newRow("div truncates toward zero") << "div" << -7 << 2 << -3 << 0;
        QTest::newRow("div min by -1 overflows") << "div" << -32768 << -1 << 0 << 6;
        QTest::newRow("div by zero") << "div" << 1 << 0 << 0 << 11;
    }
    void arithmetic()
    {
        QFETCH(QString, op);
        QFETCH(int, a);
        QFETCH(int, b);
        QFETCH(int, expected);
        QFETCH(int, error);
        int got = 0;
        int raised = 0;
        try {
            if (op == QLatin1String("add"))
                got = rt::add16(a, b);
            else if (op == QLatin1String("sub"))
                got = rt::sub16(a, b);
            else if (op == QLatin1String("mul"))
                got = rt::mul16(a, b);
            else
                got = rt::idiv16(a, b);
        } catch (const rt::Error &e) {
            raised = e.number();
        }
        QCOMPARE(raised, error);
        if (!error)
            QCOMPARE(got, expected);
    }

    void checkIndex()
    {
        rt::checkIndex(0, 0, 60);
        rt::checkIndex(60, 0, 60);
        for (long long bad : {-1LL, 61LL}) {
            try {
                rt::checkIndex(bad, 0, 60);
                QFAIL("no error for a bad index");
            } catch (const rt::Error &e) {
                QCOMPARE(e.message(), QStringLiteral("9: Subscript out of range"));
            }
        }
    }
};

QTEST_GUILESS_MAIN(TestRuntime)
#include "tst_runtime.moc"
