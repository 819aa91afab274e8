#include "support/panel_driver.h"

#include <QElapsedTimer>

class RemotePanelTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void AReplyIsShownLineByLine_data();
    void AReplyIsShownLineByLine();
    void AnEmptyReplyEmptiesThePanel();
    void TheSelectionIsLostWithANewListing();
    void ABatchOfLinesKeepsTheOrderOfTheReply();
    void ManyLinesAppearWithoutFreezingTheWindow();
    void AListingOvertakenByANewerLeavesThePanelToIt();
    void ADropAsTheListingArrivesDoesNotTakeItsReply();

    void ADoubleClickEntersTheFolderAndAsksForItsListing();
    void WithTheUnixOptionTheNamesAreAskedFor();
    void AParentMarkerMovesUp_data();
    void AParentMarkerMovesUp();
    void TwoDotsWithoutASlashAreAFolderName();
    void ALineGoesBackAsTheBytesItCameAs();
    void ADoubleClickOnNoLineDoesNothing();
    void TheOldLinesStayUntilTheListingArrives();
    void ARefusedFolderIsFollowedByTheListingAllTheSame();
    void ASecondDoubleClickDuringAWaitIsDoneFirst();
    void AHangUpDuringAMoveIsNotUndone();
    void TheButtonMovesOneFolderUp();
    void TheButtonAsksForNamesWithTheUnixOption();
    void ColumnsOfFullLinesStandBelowEachOther();
    void TheUnixEntryIsSavedAndChangesOnlyLaterListings();

private:
    std::unique_ptr<PanelDriver> Driver;
};

void RemotePanelTest::init()
{
    Driver = std::make_unique<PanelDriver>();
    Driver->Open();
}

void RemotePanelTest::cleanup()
{
    Driver.reset();
}

void RemotePanelTest::AReplyIsShownLineByLine_data()
{
    QTest::addColumn<QString>("reply");
    QTest::addColumn<QStringList>("entries");
    QTest::addColumn<QString>("count");

    QTest::newRow("two lines count one") << "a\r\nb\r\n" << QStringList{"a", "b"} << "1";
    QTest::newRow("three lines count two") << "a\r\nb\r\nc\r\n" << QStringList{"a", "b", "c"} << "2";
    QTest::newRow("an unterminated last line is lost") << "a\r\nb" << QStringList{"a"} << "0";
    QTest::newRow("an empty line is an entry") << "a\r\n\r\nb\r\n" << QStringList{"a", "", "b"} << "2";
    QTest::newRow("an additional CR stays in the entry") << "a\r\r\nb\r\n" << QStringList{"a\r", "b"} << "1";
    QTest::newRow("one line counts none") << "a\r\n" << QStringList{"a"} << "0";
    QTest::newRow("no reply") << "" << QStringList() << "0";
    QTest::newRow("no line end in the reply") << "abc" << QStringList() << "0";
    QTest::newRow("a single character at the end") << "a\r\nb\r\nc" << QStringList{"a", "b"} << "1";
    QTest::newRow("blanks stay") << "  a  \r\nb\r\n" << QStringList{"  a  ", "b"} << "1";
}

void RemotePanelTest::AReplyIsShownLineByLine()
{
    QFETCH(QString, reply);
    QFETCH(QStringList, entries);
    QFETCH(QString, count);
    Driver->Inet1().Replies["DIR"] = reply;
    Driver->Click("cmdConnect");
    Driver->WaitUntilIdle();
    QCOMPARE(PanelDriver::Entries(Driver->Remote()), entries);
    QCOMPARE(Driver->RemoteCount(), count);
}

void RemotePanelTest::AnEmptyReplyEmptiesThePanel()
{
    Driver->Connect({"a", "b"});
    Driver->SetListing({});
    Driver->Click("Command4");
    Driver->WaitUntilIdle();
    QCOMPARE(Driver->Remote().Count(), 0);
    QCOMPARE(Driver->RemoteCount(), QString("0"));
}

void RemotePanelTest::TheSelectionIsLostWithANewListing()
{
    Driver->Connect({"a", "b"});
    PanelDriver::LeftClick(Driver->Remote(), 1);
    QVERIFY(Driver->Remote().IsSelected(1));
    Driver->Click("Command4");
    Driver->WaitUntilIdle();
    QCOMPARE(Driver->Remote().Count(), 2);
    QVERIFY(!Driver->Remote().IsSelected(1));
}

void RemotePanelTest::ABatchOfLinesKeepsTheOrderOfTheReply()
{
    const QStringList lines{"zebra", "Apple", "10", "9"};
    Driver->Connect(lines);
    QCOMPARE(PanelDriver::Entries(Driver->Remote()), lines);
}

namespace {

QStringList ManyLines(int count)
{
    QStringList lines;
    for (int number = 0; number < count; ++number)
        lines += QString("-rw-r--r--   1 ftp      ftp      %1 Mar 09 17:05 file-%1.txt").arg(number, 8);
    return lines;
}

}  // namespace

// The pauses depend on the machine, so they are printed; that the work is done in many slices does not.
void RemotePanelTest::ManyLinesAppearWithoutFreezingTheWindow()
{
    const QStringList lines = ManyLines(200'000);
    Driver->SetListing(lines);
    int passes = 0;
    qint64 longest = 0;
    QElapsedTimer sincePass;
    QTimer pulse;
    connect(&pulse, &QTimer::timeout, this, [&] {
        ++passes;
        longest = qMax(longest, sincePass.restart());
    });
    Driver->Click("cmdConnect");
    QElapsedTimer whole;
    connect(&Driver->Inet1(), &Inet::StateChanged, this, [&](int state) {
        if (state != Inet::ResponseReceived) return;
        whole.start();
        sincePass.start();
        passes = 0;
        pulse.start(0);
    });
    QTRY_COMPARE_WITH_TIMEOUT(Driver->Remote().Count(), static_cast<int>(lines.size()), 60'000);
    QCoreApplication::processEvents();
    qInfo("200,000 lines: %lld ms in %d passes of the event loop, the longest %lld ms", whole.elapsed(), passes,
          longest);
    QVERIFY2(passes > 5, qPrintable(QString::number(passes)));
    QCOMPARE(Driver->RemoteCount(), QString("199999"));
    QCOMPARE(Driver->Remote().Entry(199'999), lines.last());
}

void RemotePanelTest::AListingOvertakenByANewerLeavesThePanelToIt()
{
    Driver->Connect({"old"});
    QString many = ManyLines(200'000).join("\r\n") + "\r\n";
    int listings = 0;
    Driver->Inet1().Respond = [&](const QString& operation) {
        if (operation != "DIR") return RecordingInet::Outcome{};
        ++listings;
        if (listings > 1) return RecordingInet::Outcome{"new\r\n", 0, {}};
        QTimer::singleShot(0, this, [&] { Driver->Click("Command4"); });
        return RecordingInet::Outcome{many, 0, {}};
    };
    bool halfFilled = false;
    connect(Driver->Remote().model(), &QAbstractItemModel::rowsInserted, this,
            [&] { halfFilled = halfFilled || Driver->Remote().Count() > 1; });
    connect(Driver->Remote().model(), &QAbstractItemModel::modelReset, this,
            [&] { halfFilled = halfFilled || Driver->Remote().Count() > 1; });
    Driver->Click("Command4");
    QTRY_COMPARE(listings, 2);
    Driver->WaitUntilIdle();
    QCOMPARE(PanelDriver::Entries(Driver->Remote()), QStringList{"new"});
    QVERIFY(!halfFilled);
    QCOMPARE(Driver->Operations(), (QStringList{"CDUP", "DIR", "CDUP", "DIR"}));
}

void RemotePanelTest::ADropAsTheListingArrivesDoesNotTakeItsReply()
{
    Driver->Connect({"a"});
    PanelDriver::LeftClick(Driver->Remote(), 0);
    Driver->Inet1().Respond = [&](const QString& operation) {
        if (operation != "DIR") return RecordingInet::Outcome{};
        QTimer::singleShot(0, this, [&] { PanelDriver::RightDrag(Driver->Remote(), Driver->Files()); });
        return RecordingInet::Outcome{"new\r\n", 0, {}};
    };
    Driver->Click("Command4");
    Driver->WaitUntilIdle();
    QCoreApplication::processEvents();
    QCOMPARE(PanelDriver::Entries(Driver->Remote()), QStringList{"new"});
}

void RemotePanelTest::ADoubleClickEntersTheFolderAndAsksForItsListing()
{
    Driver->Connect({"pub", "incoming"});
    PanelDriver::DoubleClick(Driver->Remote(), 0);
    QCOMPARE(Driver->Status(), QString("Changing Directories..."));
    QVERIFY(Driver->Log().last().startsWith("Changing Directories...        "));
    QCOMPARE(Driver->Inet1().Lines, (QStringList{"Execute ftp://host | CD pub", "Execute ftp://host | DIR  | pub"}));
    Driver->SetListing({"deeper"});
    Driver->WaitUntilIdle();
    QCOMPARE(PanelDriver::Entries(Driver->Remote()), QStringList{"deeper"});
}

void RemotePanelTest::WithTheUnixOptionTheNamesAreAskedFor()
{
    Driver->Connect({"pub"});
    Driver->Choose("mnuUNIX");
    PanelDriver::DoubleClick(Driver->Remote(), 0);
    QCOMPARE(Driver->Inet1().Lines, (QStringList{"Execute ftp://host | CD pub", "Execute ftp://host | LS  | pub"}));
}

void RemotePanelTest::AParentMarkerMovesUp_data()
{
    QTest::addColumn<QString>("marker");
    QTest::newRow("slash") << "../";
    QTest::newRow("backslash") << "..\\";
}

void RemotePanelTest::AParentMarkerMovesUp()
{
    QFETCH(QString, marker);
    Driver->Connect({marker});
    PanelDriver::DoubleClick(Driver->Remote(), 0);
    QCOMPARE(Driver->Inet1().Lines, (QStringList{"Execute ftp://host | CDUP", "Execute ftp://host | DIR"}));
}

void RemotePanelTest::TwoDotsWithoutASlashAreAFolderName()
{
    Driver->Connect({".."});
    PanelDriver::DoubleClick(Driver->Remote(), 0);
    QCOMPARE(Driver->Operations(), (QStringList{"CD ..", "DIR "}));
}

void RemotePanelTest::ALineGoesBackAsTheBytesItCameAs()
{
    const QString line = QString("caf") + QChar(0xDCE9) + "\t  x ";
    Driver->Connect({line});
    PanelDriver::DoubleClick(Driver->Remote(), 0);
    QCOMPARE(Driver->Operations().value(0), "CD " + line);
}

void RemotePanelTest::ADoubleClickOnNoLineDoesNothing()
{
    Driver->Connect({});
    QTest::mouseDClick(Driver->Remote().viewport(), Qt::LeftButton, Qt::NoModifier, QPoint(20, 20));
    QCOMPARE(Driver->Operations(), QStringList());
}

void RemotePanelTest::TheOldLinesStayUntilTheListingArrives()
{
    Driver->Connect({"pub", "incoming"});
    Driver->SetListing({"deeper"});
    QStringList atListing;
    Driver->During("DIR ", [&] { atListing = PanelDriver::Entries(Driver->Remote()); });
    PanelDriver::DoubleClick(Driver->Remote(), 0);
    Driver->WaitUntilIdle();
    QCOMPARE(atListing, (QStringList{"pub", "incoming"}));
    QCOMPARE(PanelDriver::Entries(Driver->Remote()), QStringList{"deeper"});
}

void RemotePanelTest::ARefusedFolderIsFollowedByTheListingAllTheSame()
{
    Driver->Connect({"file.txt"});
    Driver->Inet1().FailNext(550, "Not a folder");
    PanelDriver::DoubleClick(Driver->Remote(), 0);
    Driver->WaitUntilIdle();
    QCOMPARE(Driver->Operations(), (QStringList{"CD file.txt", "DIR "}));
    QVERIFY(Driver->Log().filter("Error! 550: Not a folder").size() == 1);
}

void RemotePanelTest::ASecondDoubleClickDuringAWaitIsDoneFirst()
{
    Driver->Connect({"a", "b"});
    Driver->During("CD a", [&] { PanelDriver::DoubleClick(Driver->Remote(), 1); });
    PanelDriver::DoubleClick(Driver->Remote(), 0);
    Driver->WaitUntilIdle();
    QCOMPARE(Driver->Inet1().Lines, (QStringList{"Execute ftp://host | CD a", "Execute ftp://host | CD b",
                                                 "Execute ftp://host | DIR  | b", "Execute ftp://host | DIR  | a"}));
}

void RemotePanelTest::AHangUpDuringAMoveIsNotUndone()
{
    Driver->Connect({"a"});
    Driver->During("CD a", [&] { Driver->Click("Command1"); });
    PanelDriver::DoubleClick(Driver->Remote(), 0);
    Driver->WaitUntilIdle();
    QCOMPARE(Driver->Operations(), (QStringList{"CD a", "CLOSE"}));
    QVERIFY(QGuiApplication::overrideCursor() == nullptr);
}

void RemotePanelTest::TheButtonMovesOneFolderUp()
{
    Driver->Connect({"a"});
    Driver->Files().setFocus();
    Driver->Click("Command4");
    QCOMPARE(Driver->Status(), QString("Changing Folders..."));
    QVERIFY(Driver->Remote().hasFocus());
    QCOMPARE(Driver->Inet1().Lines, (QStringList{"Execute ftp://host | CDUP", "Execute ftp://host | DIR"}));
}

void RemotePanelTest::TheButtonAsksForNamesWithTheUnixOption()
{
    Driver->Connect({"a"});
    Driver->Choose("mnuUNIX");
    Driver->Click("Command4");
    QCOMPARE(Driver->Operations(), (QStringList{"CDUP", "LS"}));
}

void RemotePanelTest::ColumnsOfFullLinesStandBelowEachOther()
{
    Driver->Open();
    const QFont before = Driver->Remote().font();
    const auto widthOf = [&](const QString& text) { return Driver->Remote().fontMetrics().horizontalAdvance(text); };
    Driver->Connect({"-rw-r--r--   1 ftp      ftp          1024 Mar 09 17:05 a.txt"});
    QCOMPARE(widthOf("iiiiii"), widthOf("WWWWWW"));
    Driver->Choose("mnuUNIX");
    QCOMPARE(widthOf("iiiiii"), widthOf("WWWWWW"));
    Driver->SetListing({"a.txt"});
    Driver->Click("Command4");
    QTRY_COMPARE(PanelDriver::Entries(Driver->Remote()), QStringList{"a.txt"});
    QCOMPARE(Driver->Remote().font(), before);
}

void RemotePanelTest::TheUnixEntryIsSavedAndChangesOnlyLaterListings()
{
    Driver->Connect({"a"});
    QVERIFY(!Driver->Entry("mnuUNIX").isChecked());
    Driver->Choose("mnuUNIX");
    QVERIFY(Driver->Entry("mnuUNIX").isChecked());
    Driver->Settings->Save();
    QCOMPARE(Driver->Setting("UNIX"), QString("True"));
    QCOMPARE(Driver->Operations(), QStringList());
    Driver->Choose("mnuUNIX");
    QVERIFY(!Driver->Entry("mnuUNIX").isChecked());
    Driver->Settings->Save();
    QCOMPARE(Driver->Setting("UNIX"), QString("False"));
}

QTEST_MAIN(RemotePanelTest)
#include "remote_panel_test.moc"
