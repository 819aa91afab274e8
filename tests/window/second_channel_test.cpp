#include "controls/list_box.h"
#include "inet/inet.h"
#include "session/commands.h"
#include "session/transfer_state.h"
#include "session/waits.h"
#include "shell/activity_log.h"
#include "shell/busy_pointer.h"
#include "shell/options.h"
#include "shell/status_line.h"
#include "support/recording_inet.h"
#include "support/scripted_asker.h"
#include "transfer/name_options.h"
#include "transfer/receiver.h"

#include <QCheckBox>
#include <QGuiApplication>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

/// Receiving a list of names on the second channel.
class SecondChannelTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void NamesAreReceivedOneAfterAnotherUnquoted();
    void ASingleNameNeedsNoSeparator();
    void AnEmptyListDoesNothing();
    void EmptyNamesArePassedOver();
    void N4ANameWithABarIsNeverAskedFor();
    void TheNameOptionsApply();
    void NothingIsAskedAboutDuplicates();
    void EscapeCancelsBetweenFiles();
    void TheLocalListIsRefreshedOnceAtTheEnd();

private:
    struct Parts;
    std::unique_ptr<Parts> Bench;
};

struct SecondChannelTest::Parts {
    Parts() : Inet2() { Inet2.SetURL("ftp://second"); }

    QStringList Receive(const QString& names)
    {
        Inet2.Forget();
        Returned = Receiving.GetFiles2(names);
        return Inet2.Lines;
    }

    QTemporaryDir Folder;
    SettingsStore Settings{Folder.filePath("settings.ini")};
    RecordingInet Inet1;
    RecordingInet Inet2;
    ScriptedAsker Asker;
    TransferState State;
    Options Chosen;
    Waits Pause;
    ErrorRecord Errors;
    BusyPointer Pointer;
    Commands Session{Inet1, State, Chosen, Pause};
    QListView List2;
    QPushButton Command22;
    QPushButton Command23;
    QPushButton Command25;
    ListBox lstRemoteFiles;
    ListBox List1;
    QCheckBox Check1;
    QCheckBox Check2;
    QLabel sbFTP;
    QAction mnuNT;
    QAction mnuConvertLower;
    QAction mnuAlarm;
    StatusLine Status{sbFTP};
    ActivityLog Log{{List2, Command22, Command23, Command25, List1}, Folder.path(), Pointer, [] {}};
    NameOptions Names{{mnuNT, mnuConvertLower, mnuAlarm, Check2}, Chosen, Settings};
    TransferTools Tools{Inet1, Session, State, Pause,  Chosen, Names, Status,
                        Log,   Pointer, Asker, Errors, [] {},  [] {}, [] {}};
    int Refreshed = 0;
    Receiver Receiving{{lstRemoteFiles, List1, Check1}, Tools, Inet2, {[this] { ++Refreshed; }, [] {}}};
    int Returned = -1;
};

void SecondChannelTest::init()
{
    Bench = std::make_unique<Parts>();
}

void SecondChannelTest::cleanup()
{
    Bench.reset();
}

void SecondChannelTest::NamesAreReceivedOneAfterAnotherUnquoted()
{
    const QStringList wanted{"Execute ftp://second | GET a.txt a.txt", "Execute ftp://second | GET my file my file"};
    QCOMPARE(Bench->Receive("a.txt|my file"), wanted);
    QCOMPARE(Bench->Returned, 0);
    QVERIFY(!Bench->Inet2.StillExecuting());
    QCOMPARE(Bench->Inet1.Lines, QStringList());
    QCOMPARE(Bench->State.OperationKind, static_cast<int>(ReceiveKind));
    QVERIFY(!Bench->Check1.isEnabled());
    QCOMPARE(Bench->sbFTP.text(), QString("Refreshing Folder"));
    QVERIFY(QGuiApplication::overrideCursor() == nullptr);
}

void SecondChannelTest::ASingleNameNeedsNoSeparator()
{
    QCOMPARE(Bench->Receive("a"), QStringList{"Execute ftp://second | GET a a"});
}

void SecondChannelTest::AnEmptyListDoesNothing()
{
    Bench->sbFTP.setText("before");
    QCOMPARE(Bench->Receive({}), QStringList());
    QCOMPARE(Bench->sbFTP.text(), QString("before"));
    QCOMPARE(Bench->Refreshed, 0);
}

void SecondChannelTest::EmptyNamesArePassedOver()
{
    const QStringList wanted{"Execute ftp://second | GET a a", "Execute ftp://second | GET b b"};
    QCOMPARE(Bench->Receive("|a||b|"), wanted);
}

// The bar is what parts the names, so none can hold one.
void SecondChannelTest::N4ANameWithABarIsNeverAskedFor()
{
    for (const char* names : {"a|b", "|cmd", "cmd|", "a||b", "a| |b", "|"}) {
        const QStringList lines = Bench->Receive(names);
        for (const QString& line : lines) QVERIFY2(!line.section(" | ", 1).contains(u'|'), qPrintable(line));
        QVERIFY(!Bench->Inet2.StillExecuting());
    }
    QCOMPARE(Bench->Receive("a|b").size(), 2);
}

void SecondChannelTest::TheNameOptionsApply()
{
    Bench->Chosen.LowerCaseNames = true;
    QCOMPARE(Bench->Receive("README"), QStringList{"Execute ftp://second | GET readme readme"});
    Bench->Chosen.ShortNames = true;
    QCOMPARE(Bench->Receive("no such file"), QStringList{"Execute ftp://second | GET  "});
}

void SecondChannelTest::NothingIsAskedAboutDuplicates()
{
    Bench->Check2.setChecked(true);
    Bench->List1.SetEntries({"a"});
    QCOMPARE(Bench->Receive("a").size(), 1);
    QVERIFY(Bench->Asker.Questions.empty());
}

void SecondChannelTest::EscapeCancelsBetweenFiles()
{
    connect(&Bench->Inet2, &Inet::StateChanged, this, [this](int state) {
        if (state == Inet::Requesting) Bench->Chosen.EscapePressed = true;
    });
    QCOMPARE(Bench->Receive("a|b|c").size(), 1);
    QCOMPARE(Bench->sbFTP.text(), QString("Canceled by user"));
    QVERIFY(!Bench->Chosen.EscapePressed);
}

void SecondChannelTest::TheLocalListIsRefreshedOnceAtTheEnd()
{
    Bench->Receive("a|b");
    QCOMPARE(Bench->Refreshed, 1);
}

QTEST_MAIN(SecondChannelTest)
#include "second_channel_test.moc"
