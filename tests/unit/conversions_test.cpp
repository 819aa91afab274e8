#include "base/conversions.h"
#include "base/run_time_error.h"

#include <QTest>
#include <functional>

class ConversionsTest : public QObject {
    Q_OBJECT

private slots:
    void BooleansAreReadInAnyCaseAndAsNumbers_data();
    void BooleansAreReadInAnyCaseAndAsNumbers();
    void OtherTextsAreNoBooleans_data();
    void OtherTextsAreNoBooleans();
    void BooleansAreWrittenAsWords();
    void WholeNumbersAreRounded_data();
    void WholeNumbersAreRounded();
    void NumbersOutOfRangeOverflow();
    void OtherTextsAreNoNumbers();
    void PortsHaveSixteenBits();
    void TheLeadingNumberEndsAtTheFirstOtherCharacter_data();
    void TheLeadingNumberEndsAtTheFirstOtherCharacter();
    void OnlyBlanksAreTrimmed();
};

namespace {

QString ErrorOf(const std::function<void()>& step)
{
    ErrorRecord errors;
    return errors.Attempt(step) ? QString("none") : errors.Description();
}

}  // namespace

void ConversionsTest::BooleansAreReadInAnyCaseAndAsNumbers_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("value");
    QTest::newRow("True") << "True" << true;
    QTest::newRow("FALSE") << "FALSE" << false;
    QTest::newRow("blanks around") << "  true " << true;
    QTest::newRow("-1") << "-1" << true;
    QTest::newRow("0") << "0" << false;
    QTest::newRow("0.5") << "0.5" << true;
}

void ConversionsTest::BooleansAreReadInAnyCaseAndAsNumbers()
{
    QFETCH(QString, text);
    QFETCH(bool, value);
    QCOMPARE(ToBoolean(text), value);
}

void ConversionsTest::OtherTextsAreNoBooleans_data()
{
    QTest::addColumn<QString>("text");
    for (const char* text : {"yes", "", "Tru", "on", "1x"}) QTest::newRow(text) << text;
}

void ConversionsTest::OtherTextsAreNoBooleans()
{
    QFETCH(QString, text);
    QCOMPARE(ErrorOf([&] { ToBoolean(text); }), QString("Type mismatch"));
}

void ConversionsTest::BooleansAreWrittenAsWords()
{
    QCOMPARE(BooleanText(true), QString("True"));
    QCOMPARE(BooleanText(false), QString("False"));
}

void ConversionsTest::WholeNumbersAreRounded_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("value");
    QTest::newRow("plain") << "21" << 21;
    QTest::newRow("blanks around") << " 21 " << 21;
    QTest::newRow("half to even, down") << "2.5" << 2;
    QTest::newRow("half to even, up") << "3.5" << 4;
    QTest::newRow("negative") << "-7" << -7;
    QTest::newRow("exponent") << "1e3" << 1000;
}

void ConversionsTest::WholeNumbersAreRounded()
{
    QFETCH(QString, text);
    QFETCH(int, value);
    QCOMPARE(int(ToInteger16(text)), value);
    QCOMPARE(int(ToInteger32(text)), value);
}

void ConversionsTest::NumbersOutOfRangeOverflow()
{
    QCOMPARE(int(ToInteger16("32767")), 32767);
    QCOMPARE(int(ToInteger16("-32768")), -32768);
    QCOMPARE(ErrorOf([] { ToInteger16("32768"); }), QString("Overflow"));
    QCOMPARE(ErrorOf([] { ToInteger16("-32769"); }), QString("Overflow"));
    QCOMPARE(ToInteger32("2147483647"), 2147483647);
    QCOMPARE(ErrorOf([] { ToInteger32("2147483648"); }), QString("Overflow"));
}

void ConversionsTest::OtherTextsAreNoNumbers()
{
    for (const char* text : {"abc", "", "21x", "inf", "nan", "0x15", "--1"})
        QCOMPARE(ErrorOf([&] { ToInteger32(text); }), QString("Type mismatch"));
}

void ConversionsTest::PortsHaveSixteenBits()
{
    QCOMPARE(ToPort("0"), 0);
    QCOMPARE(ToPort("65535"), 65535);
    QCOMPARE(ErrorOf([] { ToPort("65536"); }), QString("Overflow"));
    QCOMPARE(ErrorOf([] { ToPort("-1"); }), QString("Overflow"));
    QCOMPARE(ErrorOf([] { ToPort("abc"); }), QString("Type mismatch"));
}

void ConversionsTest::TheLeadingNumberEndsAtTheFirstOtherCharacter_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("value");
    QTest::newRow("empty") << "" << 0.0;
    QTest::newRow("text") << "Set Default Port" << 0.0;
    QTest::newRow("number") << "63" << 63.0;
    QTest::newRow("number and text") << "63 bytes" << 63.0;
    QTest::newRow("blanks inside") << " 1 2 3x4" << 123.0;
    QTest::newRow("two points") << "1.5.2" << 1.5;
    QTest::newRow("sign") << "-4-2" << -4.0;
}

void ConversionsTest::TheLeadingNumberEndsAtTheFirstOtherCharacter()
{
    QFETCH(QString, text);
    QFETCH(double, value);
    QCOMPARE(LeadingNumber(text), value);
}

void ConversionsTest::OnlyBlanksAreTrimmed()
{
    QCOMPARE(Trimmed("  a b  "), QString("a b"));
    QCOMPARE(Trimmed("\ta\n"), QString("\ta\n"));
    QCOMPARE(Trimmed("   "), QString(""));
    QCOMPARE(Trimmed(""), QString(""));
}

QTEST_GUILESS_MAIN(ConversionsTest)
#include "conversions_test.moc"
