#include "base/formats.h"
#include "support/window_fixture.h"

#include <QDir>
#include <QFile>
#include <QListView>
#include <QPushButton>

class LogTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void TheLogIsHiddenAtFirst();
    void ShowingTheLogGivesItTheFocusAndItsButtons();
    void TheNewestLineIsInSight();
    void HidingTheLogMovesTheFocusToTheLocalFiles();
    void SavingWritesEveryLine();
    void SavingTwiceAppendsTwice();
    void SavingAnEmptyLogBeepsAndWritesNothing();
    void AFolderThatCannotBeWrittenIsNoMatter();
    void TheLastLineIsSelectedAfterSaving();
    void ThePointerIsNormalAfterSaving();
    void ClearingAsksNothing();

private:
    QByteArray LogFile() const;

    std::unique_ptr<WindowFixture> Program;
};

void LogTest::init()
{
    Program = std::make_unique<WindowFixture>();
    Program->Open();
}

void LogTest::cleanup()
{
    Program.reset();
}

QByteArray LogTest::LogFile() const
{
    QFile file(Program->HomeFolder() + "/log.txt");
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no file)");
}

void LogTest::TheLogIsHiddenAtFirst()
{
    QVERIFY(!Program->Control<QWidget>("List2").isVisible());
    QVERIFY(!Program->Control<QWidget>("Command23").isVisible());
    QVERIFY(!Program->Control<QWidget>("Command25").isVisible());
    QCOMPARE(Program->Control<QPushButton>("Command22").text(), QString("L"));
}

void LogTest::ShowingTheLogGivesItTheFocusAndItsButtons()
{
    Program->Click("Command22");
    QVERIFY(Program->Control<QWidget>("List2").isVisible());
    QVERIFY(Program->Control<QWidget>("List2").hasFocus());
    QVERIFY(Program->Control<QWidget>("Command23").isVisible());
    QVERIFY(Program->Control<QWidget>("Command25").isVisible());
    QCOMPARE(Program->Control<QPushButton>("Command22").text(), QString("X"));
}

void LogTest::TheNewestLineIsInSight()
{
    for (int number = 0; number < 200; ++number) Program->Inet1().Remark("line " + QString::number(number));
    Program->Click("Command22");
    const auto& log = Program->Control<QAbstractItemView>("List2");
    const QModelIndex last = log.model()->index(log.model()->rowCount() - 1, 0);
    QVERIFY(last.data().toString().contains("line 199"));
    QVERIFY(log.viewport()->rect().contains(log.visualRect(last).center()));
}

void LogTest::HidingTheLogMovesTheFocusToTheLocalFiles()
{
    Program->Click("Command22");
    Program->Click("Command22");
    QVERIFY(!Program->Control<QWidget>("List2").isVisible());
    QVERIFY(Program->Control<QWidget>("List1").hasFocus());
    QVERIFY(!Program->Control<QWidget>("Command23").isVisible());
    QVERIFY(!Program->Control<QWidget>("Command25").isVisible());
    QCOMPARE(Program->Control<QPushButton>("Command22").text(), QString("L"));
}

void LogTest::SavingWritesEveryLine()
{
    Program->Inet1().Report(Inet::HostResolved);
    Program->Click("Command22");
    Program->Click("Command23");
    QCOMPARE(LogFile(), QString("Session started at: " + GeneralDateTime(Program->Now) + "\r\nHost Resolved        " +
                                TimeOfDay(Program->Now) + "\r\n")
                            .toUtf8());
    QCOMPARE(Program->Log().last(), "Saved Log.txt        " + GeneralDateTime(Program->Now));
}

void LogTest::SavingTwiceAppendsTwice()
{
    Program->Click("Command22");
    Program->Click("Command23");
    const QByteArray first = LogFile();
    Program->Click("Command23");
    const QByteArray saved = ("Saved Log.txt        " + GeneralDateTime(Program->Now) + "\r\n").toUtf8();
    QCOMPARE(LogFile(), first + first + saved);
}

void LogTest::SavingAnEmptyLogBeepsAndWritesNothing()
{
    Program->Click("Command22");
    Program->Click("Command25");
    QCOMPARE(Program->Log(), QStringList());
    Program->Click("Command23");
    QCOMPARE(Program->Beeps, 1);
    QCOMPARE(LogFile(), QByteArray("(no file)"));
    QCOMPARE(Program->Log(), QStringList());
}

void LogTest::AFolderThatCannotBeWrittenIsNoMatter()
{
    QVERIFY(QDir(Program->HomeFolder()).mkdir("log.txt"));
    Program->Click("Command22");
    Program->Click("Command23");
    QVERIFY(Program->Log().last().startsWith("Saved Log.txt        "));
    QVERIFY(Program->Questions.Questions.empty());
    QCOMPARE(Program->Beeps, 0);
}

void LogTest::TheLastLineIsSelectedAfterSaving()
{
    for (int line = 0; line < 200; ++line) Program->Inet1().Report(Inet::Requesting);
    Program->Click("Command22");
    Program->Click("Command23");
    const auto& list = Program->Control<QListView>("List2");
    const int last = list.model()->rowCount() - 1;
    QCOMPARE(list.currentIndex().row(), last);
    QVERIFY(list.viewport()->rect().contains(list.visualRect(list.model()->index(last, 0)).center()));
}

void LogTest::ThePointerIsNormalAfterSaving()
{
    Program->Click("Command22");
    Program->Click("Command23");
    QVERIFY(QApplication::overrideCursor() == nullptr);
}

void LogTest::ClearingAsksNothing()
{
    Program->Click("Command22");
    Program->Click("Command25");
    QCOMPARE(Program->Log(), QStringList());
    QVERIFY(Program->Questions.Questions.empty());
    QVERIFY(Program->Control<QWidget>("List2").isVisible());
}

QTEST_MAIN(LogTest)
#include "log_test.moc"
