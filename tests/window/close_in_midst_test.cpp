#include "platform/short_path.h"
#include "shell/sole_input.h"
#include "support/window_fixture.h"

#include <QComboBox>
#include <QDir>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QMessageBox>
#include <functional>

/// The window is closed while something is going on. Each time everything must have been left within a second, with
/// the settings on the disk.
class CloseInMidstTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void OfAConnect();
    void OfAListing();
    void OfAHangUpThatWaits();
    void OfAFolderChangeThatWaits();
    void OfStackedWaits();
    void OfAReceive();
    void OfAnOpenQuestion();
    void OfAnOpenQuestionAboveAWait();
    void OfAnOpenMenuOrList();

private:
    void Connect();
    void CloseWhen(std::function<bool()> condition);
    void CloseWhenBusy();
    void Stored();

    std::unique_ptr<WindowFixture> Program;
    QElapsedTimer SinceClose;
};

void CloseInMidstTest::init()
{
    Program = std::make_unique<WindowFixture>();
    SinceClose.invalidate();
}

void CloseInMidstTest::cleanup()
{
    Program->Window.reset();
    QVERIFY2(SinceClose.isValid(), "the window has not been closed");
    // A second is meant; what hangs waits for minutes, and a busy machine is not a fault.
    QVERIFY2(SinceClose.elapsed() < 20'000, qPrintable(QString::number(SinceClose.elapsed())));
    Stored();
    Program.reset();
}

void CloseInMidstTest::Connect()
{
    Program->Control<QComboBox>("txtURL").setEditText("ftp://files.example");
    Program->Click("cmdConnect");
}

/// Closes the window in the first pass of the event loop that finds this so.
void CloseInMidstTest::CloseWhen(std::function<bool()> condition)
{
    auto* look = new QTimer(Program->Window.get());
    QObject::connect(look, &QTimer::timeout, look, [this, look, condition] {
        if (!condition()) return;
        look->stop();
        SinceClose.start();
        QVERIFY(Program->Window->close());
        QCOMPARE(Program->Quits, 1);
    });
    look->start(0);
}

void CloseInMidstTest::CloseWhenBusy()
{
    CloseWhen([this] { return Program->Inet1().StillExecuting(); });
}

void CloseInMidstTest::Stored()
{
    QCOMPARE(Program->Setting("SaveURL"), QString("ftp://files.example"));
    QCOMPARE(Program->Setting("SaveDrive"), ShortPath(QDir::toNativeSeparators(Program->LocalFolder())));
}

void CloseInMidstTest::OfAConnect()
{
    Program->Open();
    Program->Inet1().Hold();
    Connect();
    CloseWhenBusy();
    QTRY_VERIFY(!Program->Window->isVisible());
}

void CloseInMidstTest::OfAListing()
{
    Program->Open();
    QString reply;
    for (int line = 0; line < 200000; ++line) reply += QString("file %1\r\n").arg(line);
    Program->Inet1().Replies["DIR"] = reply;
    // The reply has been taken, and its lines are being looked at.
    CloseWhen([this] { return Program->Inet1().ChunksTaken > 0; });
    Connect();
    QTRY_VERIFY(!Program->Window->isVisible());
}

void CloseInMidstTest::OfAHangUpThatWaits()
{
    Program->Open();
    Program->Inet1().Hold();
    Connect();
    CloseWhen([this] { return Program->Values->Transfer.Closing; });
    Program->Click("Command1");
    QVERIFY(!Program->Window->isVisible());
}

void CloseInMidstTest::OfAFolderChangeThatWaits()
{
    Program->Open();
    Connect();
    QTRY_VERIFY(!Program->Inet1().StillExecuting());
    Program->Inet1().Hold();
    CloseWhenBusy();
    Program->Click("Command4");
    QVERIFY(!Program->Window->isVisible());
    QCOMPARE(Program->Inet1().Operations().last(), QString("CDUP"));
}

void CloseInMidstTest::OfStackedWaits()
{
    Program->Open();
    Program->Inet1().Hold();
    Connect();
    QTimer::singleShot(0, Program->Window.get(), [this] {
        CloseWhen([this] { return Program->Values->Transfer.Closing; });
        Program->Click("Command1");
    });
    Program->Click("Command4");
    QVERIFY(!Program->Window->isVisible());
    QCOMPARE(Program->Inet1().Operations(), (QStringList{"CLOSE", "DIR"}));
}

void CloseInMidstTest::OfAReceive()
{
    Program->Open();
    Program->Choose("mnuUNIX");
    Program->Inet1().Replies["LS"] = "a\r\nb\r\n";
    Connect();
    QTRY_COMPARE(Program->Control<QAbstractItemView>("lstRemoteFiles").model()->rowCount(), 2);
    Program->Control<QAbstractItemView>("lstRemoteFiles").selectAll();
    Program->Inet1().Hold();
    CloseWhenBusy();
    Program->Click("Image2");
    QVERIFY(!Program->Window->isVisible());
    QCOMPARE(Program->Inet1().Operations().last(), QString("GET \"a\" \"a\""));
}

void CloseInMidstTest::OfAnOpenQuestion()
{
    Program->UseMessageBoxes = true;
    Program->Open();
    Program->Choose("mnuUNIX");
    Program->Inet1().Replies["LS"] = "a\r\n";
    Connect();
    QTRY_COMPARE(Program->Control<QAbstractItemView>("lstRemoteFiles").model()->rowCount(), 1);
    QFile file(Program->LocalFolder() + "/a");
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();
    Program->Click("Check2");
    // Enters the folder again, so that the local list knows the file.
    auto& filter = Program->Control<QComboBox>("Combo2");
    filter.setEditText("*.*");
    QTest::keyClick(filter.lineEdit(), Qt::Key_Return);
    QTRY_COMPARE(Program->Control<QAbstractItemView>("List1").model()->rowCount(), 1);
    Program->Control<QAbstractItemView>("lstRemoteFiles").selectAll();
    CloseWhen([this] { return Program->Window->findChild<QMessageBox*>() != nullptr; });
    Program->Click("Image2");
    QVERIFY(!Program->Window->isVisible());
    QCOMPARE(Program->Inet1().Operations().filter("GET"), QStringList());
}

void CloseInMidstTest::OfAnOpenQuestionAboveAWait()
{
    Program->Open();
    Program->Inet1().Hold();
    Connect();
    SoleInput input;
    MessageBoxAsker asker(*Program->Window, input);
    Answer answer = Answer::Yes;
    QTimer::singleShot(0, Program->Window.get(), [&] {
        CloseWhen([this] { return Program->Window->findChild<QMessageBox*>() != nullptr; });
        answer = asker.Ask({"Overwrite?", "Tolvane", Question::QuestionMark, Question::YesNo, true});
    });
    Program->Click("Command1");
    QVERIFY(!Program->Window->isVisible());
    QCOMPARE(answer, Answer::No);
}

void CloseInMidstTest::OfAnOpenMenuOrList()
{
    Program->Open();
    Connect();
    auto& access = Program->Control<QComboBox>("Combo1");
    access.showPopup();
    CloseWhen([] { return QApplication::activePopupWidget() != nullptr; });
    QTRY_VERIFY(!Program->Window->isVisible());
    QVERIFY(QApplication::activePopupWidget() == nullptr);
}

QTEST_MAIN(CloseInMidstTest)
#include "close_in_midst_test.moc"
