#include "base/formats.h"

#include <QLocale>
#include <QTest>

class FormatsTest : public QObject {
    Q_OBJECT

private slots:

    void initTestCase() { QCOMPARE(QLocale::system().name(), QString("en_US")); }

    void ThousandsAreSeparated_data();
    void ThousandsAreSeparated();
    void TheGeneralFormHasDateAndTimeToTheSecond();
    void TheTimeOfDayNamesNoZone();
    void AStampFollowsEightBlanks();
};

void FormatsTest::ThousandsAreSeparated_data()
{
    QTest::addColumn<qint64>("number");
    QTest::addColumn<QString>("text");
    QTest::newRow("nothing") << qint64(0) << "0";
    QTest::newRow("three digits") << qint64(999) << "999";
    QTest::newRow("four digits") << qint64(1000) << "1,000";
    QTest::newRow("beyond 32 bits") << qint64(5368709120) << "5,368,709,120";
    QTest::newRow("negative") << qint64(-1234) << "-1,234";
}

void FormatsTest::ThousandsAreSeparated()
{
    QFETCH(qint64, number);
    QFETCH(QString, text);
    QCOMPARE(Thousands(number), text);
}

void FormatsTest::TheGeneralFormHasDateAndTimeToTheSecond()
{
#ifdef Q_OS_WIN
    const QString wanted = "3/9/2024 5:05:08 PM";
#else
    const QString wanted = "3/9/24 5:05:08 PM";
#endif
    QCOMPARE(GeneralDateTime(QDateTime(QDate(2024, 3, 9), QTime(17, 5, 8))), wanted);
}

void FormatsTest::TheTimeOfDayNamesNoZone()
{
    QCOMPARE(TimeOfDay(QDateTime(QDate(2024, 3, 9), QTime(7, 5, 8), Qt::UTC)), QString("7:05:08 AM"));
}

void FormatsTest::AStampFollowsEightBlanks()
{
    QCOMPARE(Stamped("Connected!", "12:00:01"), QString("Connected!        12:00:01"));
    QCOMPARE(Stamped("", "12:00:01"), QString("        12:00:01"));
}

int main(int count, char** words)
{
    qputenv("LC_ALL", "en_US.UTF-8");
    QCoreApplication program(count, words);
    FormatsTest test;
    return QTest::qExec(&test, count, words);
}

#include "formats_test.moc"
