#include "controls/message_label.h"
#include "support/window_fixture.h"

#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <cmath>

/// The maker's messages and the protocol menu.
class MessagesTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void TheMenuFetchesTheFile();
    void AMarkedLineIsYellowOnceAndDarkRedAfterwards();
    void AnEmptyFileStopsOnTheThirdTick();
    void BothColoursReadWell();
    void AFetchThatFailsEndsItselfAndLoadsNothing();
    void AFileThatIsTooLargeCountsAsAFailure();
    void AFolderThatCannotBeWrittenToCountsAsAFailure();
    void TicksDuringAFetchAreIgnored();
    void TheOldCopyIsGoneAfterAFailure();
    void AFetchFromTheMenuBeginsAnew();
    void AFetchDuringTheShowReplacesTheLines();
    void LinesArePlainText();
    void LongLinesAreCut();
    void WhatDoesNotFitIsATip();
    void LineEndsOfEveryKindAreTaken();
    void AConnectFetchesWhenAMessageIsDue();
    void AConnectThatFailsFetchesAllTheSame();
    void AConnectBetweenFetchesNothing();
    void TheWindowMayCloseDuringAFetch();

    void FtpIsChosenAtTheStart();
    void TheProtocolMenuSetsChoiceAndPort_data();
    void TheProtocolMenuSetsChoiceAndPort();
    void SecureHttpAfterHttpLeavesThePort();
    void TheChoiceCountsAtTheNextConnect();

private:
    QTimer& Timer(const char* name) const { return Program->Control<QTimer>(name); }

    void Tick(const char* timer) const { QVERIFY(QMetaObject::invokeMethod(&Timer(timer), "timeout")); }

    void Fetch(const QByteArray& file) const;

    QString Shown() const { return Program->Control<QLabel>("lblAds").text(); }

    QColor Colour() const { return Program->Control<QLabel>("lblAds").palette().color(QPalette::WindowText); }

    QString Copy() const { return Program->HomeFolder() + "/msg.txt"; }

    std::unique_ptr<WindowFixture> Program;
};

namespace {

const QColor Yellow(255, 255, 0);
const QColor DarkRed(128, 0, 0);

/// How well a colour can be told from another, 1 to 21, as the guidelines for web content compute it.
double Contrast(const QColor& one, const QColor& other)
{
    const auto light = [](const QColor& colour) {
        const auto linear = [](double part) {
            return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) + 0.0722 * linear(colour.blueF());
    };
    const double brighter = std::max(light(one), light(other));
    const double darker = std::min(light(one), light(other));
    return (brighter + 0.05) / (darker + 0.05);
}

}  // namespace

void MessagesTest::init()
{
    Program = std::make_unique<WindowFixture>();
    Program->Open();
}

void MessagesTest::cleanup()
{
    Program.reset();
}

/// Fetches a message file to the end; the show begins.
void MessagesTest::Fetch(const QByteArray& file) const
{
    Program->Inet3().DownloadBytes = file;
    Program->Choose("mnuMesgUpdate");
    QTRY_VERIFY(Timer("Timer6").isActive() && !Timer("Timer5").isActive());
}

void MessagesTest::TheMenuFetchesTheFile()
{
    Program->Choose("mnuMesgUpdate");
    QVERIFY(Timer("Timer5").isActive());
    QCOMPARE(Program->Inet3().Lines, QStringList());
    Program->Inet3().DownloadBytes = "hello\r\n";
    QTRY_COMPARE(Program->Inet3().Lines, QStringList{"OpenURL https://maker.test/msg.txt"});
    QTRY_VERIFY(Timer("Timer6").isActive());
    QVERIFY(!Timer("Timer5").isActive());
    QVERIFY(QGuiApplication::overrideCursor() == nullptr);
    QFile copy(Copy());
    QVERIFY(copy.open(QIODevice::ReadOnly));
    QCOMPARE(copy.readAll(), QByteArray("hello\r\n"));
    QCOMPARE(Program->Inet1().Lines, QStringList());
}

void MessagesTest::AMarkedLineIsYellowOnceAndDarkRedAfterwards()
{
    Fetch("!Version 3.3 is here\r\nHave a nice day\r\n");
    Tick("Timer6");
    QCOMPARE(Shown(), QString("Version 3.3 is here"));
    QCOMPARE(Colour(), Yellow);
    for (const char* line :
         {"Have a nice day", "Version 3.3 is here", "Have a nice day", "Version 3.3 is here", "Have a nice day"}) {
        Tick("Timer6");
        QCOMPARE(Shown(), QString(line));
        QCOMPARE(Colour(), DarkRed);
    }
    QVERIFY(Timer("Timer6").isActive());
    Tick("Timer6");  // the seventh
    QCOMPARE(Shown(), QString());
    QVERIFY(!Timer("Timer6").isActive());
}

void MessagesTest::AnEmptyFileStopsOnTheThirdTick()
{
    Fetch("");
    for (int tick = 1; tick <= 3; ++tick) {
        QVERIFY(Timer("Timer6").isActive());
        Tick("Timer6");
        QCOMPARE(Shown(), QString());
    }
    QVERIFY(!Timer("Timer6").isActive());
}

void MessagesTest::BothColoursReadWell()
{
    Fetch("!one\ntwo\n");
    for (int line = 0; line < 2; ++line) {
        Tick("Timer6");
        const QPalette palette = Program->Control<QLabel>("lblAds").palette();
        QVERIFY(Contrast(palette.color(QPalette::WindowText), palette.color(QPalette::Window)) > 7);
    }
}

void MessagesTest::AFetchThatFailsEndsItselfAndLoadsNothing()
{
    Program->Inet3().DownloadBytes = "hello\r\n";
    Program->Inet3().FailNext(12007, "The host was not found.");
    Program->Choose("mnuMesgUpdate");
    QTRY_VERIFY(!Program->Inet3().Lines.isEmpty() && !Timer("Timer5").isActive());
    QVERIFY(!Timer("Timer6").isActive());
    QVERIFY(QGuiApplication::overrideCursor() == nullptr);
    QCOMPARE(Shown(), QString());
    QVERIFY(!QFile::exists(Copy()));
    Fetch("hello\r\n");
    Tick("Timer6");
    QCOMPARE(Shown(), QString("hello"));
}

void MessagesTest::AFileThatIsTooLargeCountsAsAFailure()
{
    Program->Inet3().DownloadBytes = QByteArray(100'000, 'x');
    Program->Choose("mnuMesgUpdate");
    QTRY_VERIFY(!Program->Inet3().Lines.isEmpty() && !Timer("Timer5").isActive());
    QVERIFY(!Timer("Timer6").isActive());
    QVERIFY(!QFile::exists(Copy()));
}

void MessagesTest::AFolderThatCannotBeWrittenToCountsAsAFailure()
{
    QVERIFY(QDir(Program->HomeFolder()).mkdir("msg.txt"));
    Program->Inet3().DownloadBytes = "hello\r\n";
    Program->Choose("mnuMesgUpdate");
    QTRY_VERIFY(!Program->Inet3().Lines.isEmpty() && !Timer("Timer5").isActive());
    QVERIFY(!Timer("Timer6").isActive());
    QVERIFY(QGuiApplication::overrideCursor() == nullptr);
}

void MessagesTest::TicksDuringAFetchAreIgnored()
{
    Program->Inet3().Hold();
    Program->Inet3().DownloadBytes = "hello\r\n";
    Program->Choose("mnuMesgUpdate");
    QTRY_COMPARE(Program->Inet3().Lines.size(), 1);
    QCOMPARE(QGuiApplication::overrideCursor()->shape(), Qt::BusyCursor);
    for (int tick = 0; tick < 5; ++tick) Tick("Timer5");
    QCOMPARE(Program->Inet3().Lines.size(), 1);
    QVERIFY(Timer("Timer5").isActive());
    Program->Inet3().Release();
    QTRY_VERIFY(Timer("Timer6").isActive());
    QCOMPARE(Program->Inet3().Lines.size(), 1);
}

void MessagesTest::TheOldCopyIsGoneAfterAFailure()
{
    Fetch("old\r\n");
    QVERIFY(QFile::exists(Copy()));
    Program->Inet3().FailNext(404, "Not Found");
    Program->Choose("mnuMesgUpdate");
    QTRY_VERIFY(!Timer("Timer5").isActive());
    QVERIFY(!QFile::exists(Copy()));
}

void MessagesTest::AFetchFromTheMenuBeginsAnew()
{
    Fetch("one\ntwo\n");
    for (int tick = 0; tick < 7; ++tick) Tick("Timer6");
    QVERIFY(!Timer("Timer6").isActive());
    Fetch("three\n");
    Tick("Timer6");
    QCOMPARE(Shown(), QString("three"));
}

void MessagesTest::AFetchDuringTheShowReplacesTheLines()
{
    Fetch("one\ntwo\n");
    Tick("Timer6");
    Program->Inet3().DownloadBytes = "three\nfour\n";
    Program->Choose("mnuMesgUpdate");
    QTRY_VERIFY(!Timer("Timer5").isActive());
    Tick("Timer6");
    QCOMPARE(Shown(), QString("three"));
}

void MessagesTest::LinesArePlainText()
{
    Fetch("<b>bold</b> &amp; \x1b[31m\n");
    Tick("Timer6");
    QCOMPARE(Shown(), QString("<b>bold</b> &amp; \uFFFD[31m"));
    QCOMPARE(Program->Control<QLabel>("lblAds").textFormat(), Qt::PlainText);
}

void MessagesTest::LongLinesAreCut()
{
    Fetch(QByteArray(5000, 'x') + "\nshort\n");
    Tick("Timer6");
    QCOMPARE(Shown(), QString(200, u'x'));
    Tick("Timer6");
    QCOMPARE(Shown(), QString("short"));
}

void MessagesTest::WhatDoesNotFitIsATip()
{
    Fetch(QByteArray(150, 'w') + "\n");
    const QSize before = Program->Window->size();
    Tick("Timer6");
    QApplication::processEvents();
    QCOMPARE(Program->Window->size(), before);
    const auto& label = Program->Control<MessageLabel>("lblAds");
    QVERIFY(label.Painted().endsWith(u'…'));
    QVERIFY(label.Painted().size() < 150);
}

void MessagesTest::LineEndsOfEveryKindAreTaken()
{
    Fetch("one\r\ntwo\nthree");
    for (const char* line : {"one", "two", "three", "one"}) {
        Tick("Timer6");
        QCOMPARE(Shown(), QString(line));
    }
}

void MessagesTest::AConnectFetchesWhenAMessageIsDue()
{
    Program->Close();
    Program->Store("Message", "4");
    Program->Open();
    QVERIFY(!Timer("Timer5").isActive());
    Program->Inet3().DownloadBytes = "hello\r\n";
    Program->Click("cmdConnect");
    QTRY_VERIFY(Timer("Timer6").isActive());
    QCOMPARE(Program->Inet3().Lines, QStringList{"OpenURL https://maker.test/msg.txt"});
}

void MessagesTest::AConnectThatFailsFetchesAllTheSame()
{
    Program->Close();
    Program->Store("Message", "4");
    Program->Open();
    Program->Control<QLineEdit>("txtPort").setText("abc");
    Program->Click("cmdConnect");
    QCOMPARE(Program->Status(), QString("Type mismatch"));
    QTRY_VERIFY(Timer("Timer6").isActive());
}

void MessagesTest::AConnectBetweenFetchesNothing()
{
    Program->Click("cmdConnect");
    QVERIFY(!Timer("Timer5").isActive());
}

void MessagesTest::TheWindowMayCloseDuringAFetch()
{
    Program->Inet3().Hold();
    Program->Choose("mnuMesgUpdate");
    QTRY_COMPARE(Program->Inet3().Lines.size(), 1);
    Program->Close();
    QVERIFY(!QFile::exists(Copy()));
}

void MessagesTest::FtpIsChosenAtTheStart()
{
    QCOMPARE(Program->Values->Connection.ProtocolChoice, 2);
    for (const char* entry : {"Protocol2_1", "Protocol2_3", "Protocol2_4"})
        QVERIFY2(!Program->Entry(entry).isChecked(), entry);
    QVERIFY(Program->Entry("Protocol2_2").isChecked());
}

void MessagesTest::TheProtocolMenuSetsChoiceAndPort_data()
{
    QTest::addColumn<QString>("entry");
    QTest::addColumn<int>("choice");
    QTest::addColumn<QString>("port");
    QTest::newRow("default") << "Protocol2_1" << 1 << "2121";
    QTest::newRow("FTP") << "Protocol2_2" << 2 << "21";
    QTest::newRow("HTTP") << "Protocol2_3" << 4 << "80";
    QTest::newRow("secure HTTP") << "Protocol2_4" << 5 << "2121";
}

void MessagesTest::TheProtocolMenuSetsChoiceAndPort()
{
    QFETCH(const QString, entry);
    QFETCH(const int, choice);
    QFETCH(const QString, port);
    Program->Control<QLineEdit>("txtPort").setText("2121");
    for (int turn = 0; turn < 2; ++turn) {  // the mark stays when the entry is chosen once more
        Program->Choose(qPrintable(entry));
        QCOMPARE(Program->Values->Connection.ProtocolChoice, choice);
        QCOMPARE(Program->Control<QLineEdit>("txtPort").text(), port);
        for (const char* other : {"Protocol2_1", "Protocol2_2", "Protocol2_3", "Protocol2_4"})
            QCOMPARE(Program->Entry(other).isChecked(), entry == other);
    }
}

void MessagesTest::SecureHttpAfterHttpLeavesThePort()
{
    Program->Choose("Protocol2_3");
    QCOMPARE(Program->Control<QLineEdit>("txtPort").text(), QString("80"));
    Program->Choose("Protocol2_4");
    QCOMPARE(Program->Control<QLineEdit>("txtPort").text(), QString("80"));
}

void MessagesTest::TheChoiceCountsAtTheNextConnect()
{
    Program->Choose("Protocol2_3");
    QVERIFY(Program->Inet1().Lines.isEmpty());
    Program->Click("cmdConnect");
    QVERIFY(Program->Inet1().Lines.contains("Protocol = 4"));
    QVERIFY(Program->Inet1().Lines.contains("RemotePort = 80"));
}

QTEST_MAIN(MessagesTest)
#include "messages_test.moc"
