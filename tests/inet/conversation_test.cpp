#include "support/conversation.h"
#include "support/outcome_checks.h"

#include <QtTest>

/// What goes over the wire for each operation, and what comes of it.
class ConversationTest : public QObject {
    Q_OBJECT

private slots:
    void ListsFullLines();
    void ListsNames();
    void AnEmptyFolderIsAnEmptyReply();
    void ChangesFolders();
    void ReceivesAFile();
    void ReceivesIntoAnotherLocalName();
    void SendsAFile();
    void SendsUnderAnotherName();
    void SendsFromAnotherFolder();
    void SendsAnEmptyFile();
    void DeletesAndMakesAndRemoves();
    void RenameTakesTwoCommands();
    void AsksForASize();
    void AsksForTheFolder();
    void SaysGoodbye();
    void GoodbyeWithoutASessionSaysNothing();
    void TheTypeChangesOnlyWhereItMust();
    void LogsInAnonymously();
    void NeedsNoPassword();
    void EntersThePathOfTheAddress();
    void ARefusedPathIsAnError();
    void AChangeOfTargetTakesANewSession();
    void FetchesAFileOnAConnectionOfItsOwn();
    void TellsTheStatesOfEachCommand();
    void AMissingLocalFileIsNotSent();
    void ARefusalKeepsTheSession();
    void TheReplyThatDecidedIsReported();
};

namespace {

const std::string Listing = R"(
    C: EPSV
    S: 229 here (|||4001|)
    -- listen 4001
    C: LIST
    -- accept
    S: 150 coming
    D: first\r\nsecond\r\n
    -- end
    S: 226 done
)";

}  // namespace

void ConversationTest::ListsFullLines()
{
    Conversation talk(LogIn + Listing);
    const Ftp::Outcome got = talk.Do("DIR");
    QVERIFY_GOOD(got);
    QCOMPARE(got.Reply, std::string("first\r\nsecond\r\n"));
    QVERIFY_FOLLOWED(talk);
}

void ConversationTest::ListsNames()
{
    Conversation talk(LogIn + R"(
        C: EPSV
        S: 229 here (|||4001|)
        -- listen 4001
        C: NLST
        -- accept
        S: 150 coming
        D: a name with blanks\r\n-x\r\n
        -- end
        S: 226 done
    )");
    const Ftp::Outcome got = talk.Do("LS");
    QVERIFY_GOOD(got);
    QCOMPARE(got.Reply, std::string("a name with blanks\r\n-x\r\n"));
    QVERIFY_FOLLOWED(talk);
}

void ConversationTest::AnEmptyFolderIsAnEmptyReply()
{
    Conversation talk(LogIn + R"(
        C: EPSV
        S: 229 here (|||4001|)
        -- listen 4001
        C: LIST
        -- accept
        S: 150 coming
        -- end
        S: 226 done
    )");
    const Ftp::Outcome got = talk.Do("DIR");
    QVERIFY_GOOD(got);
    QVERIFY(got.Reply.empty());
    QVERIFY_FOLLOWED(talk);
}

void ConversationTest::ChangesFolders()
{
    Conversation talk(LogIn + R"(
        C: CWD some folder
        S: 250 there
        C: CWD ..
        S: 250 back
        C: CDUP
        S: 200 up
    )");
    QVERIFY_GOOD(talk.Do("CD some folder"));
    QVERIFY_GOOD(talk.Do("CD .."));
    QVERIFY_GOOD(talk.Do("CDUP"));
    QVERIFY_FOLLOWED(talk);
}

void ConversationTest::ReceivesAFile()
{
    Conversation talk(LogIn + R"(
        C: TYPE I
        S: 200 fine
        C: EPSV
        S: 229 here (|||4001|)
        -- listen 4001
        C: RETR a file
        -- accept
        S: 150 coming (9 bytes)
        D: one\r\n\0two
        -- end
        S: 226 done
    )");
    QVERIFY_GOOD(talk.Do(R"(GET "a file" "a file")"));
    QCOMPARE(talk.LocalFile("a file"), QByteArray("one\r\n\0two", 9));
    QCOMPARE(talk.LocalFiles(), QStringList{"a file"});
    QVERIFY_FOLLOWED(talk);
}

void ConversationTest::ReceivesIntoAnotherLocalName()
{
    Conversation talk(LogIn + R"(
        C: TYPE I
        S: 200 fine
        C: EPSV
        S: 229 here (|||4001|)
        -- listen 4001
        C: RETR far
        -- accept
        S: 150 coming
        D: text
        -- end
        S: 226 done
    )");
    QVERIFY_GOOD(talk.Do(R"(GET "far" near)"));
    QCOMPARE(talk.LocalFile("near"), QByteArray("text"));
    QCOMPARE(talk.LocalFiles(), QStringList{"near"});
    QVERIFY_FOLLOWED(talk);
}

void ConversationTest::SendsAFile()
{
    Conversation talk(LogIn + R"(
        C: TYPE I
        S: 200 fine
        C: EPSV
        S: 229 here (|||4001|)
        -- listen 4001
        C: STOR up
        -- accept
        S: 150 go on
        U: some\r\nbytes\0.
        S: 226 stored
    )");
    talk.MakeLocalFile("up", QByteArray("some\r\nbytes\0.", 13));
    QVERIFY_GOOD(talk.Do(R"(PUT "up" "up")"));
    QVERIFY_FOLLOWED(talk);
}

void ConversationTest::SendsUnderAnotherName()
{
    Conversation talk(LogIn + R"(
        C: TYPE I
        S: 200 fine
        C: EPSV
        S: 229 here (|||4001|)
        -- listen 4001
        C: STOR folder/there
        -- accept
        S: 150 go on
        U: x
        S: 226 stored
    )");
    talk.MakeLocalFile("here", "x");
    QVERIFY_GOOD(talk.Do(R"(PUT "here" "folder/there")"));
    QVERIFY_FOLLOWED(talk);
}

void ConversationTest::SendsFromAnotherFolder()
{
    const QTemporaryDir elsewhere;
    QFile file(elsewhere.filePath("far away.txt"));
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write("x") == 1);
    file.close();
    Conversation talk(LogIn + R"(
        C: TYPE I
        S: 200 fine
        C: EPSV
        S: 229 here (|||4001|)
        -- listen 4001
        C: STOR far away.txt
        -- accept
        S: 150 go on
        U: x
        S: 226 stored
    )");
    QVERIFY_GOOD(talk.Do("PUT \"" + file.fileName().toStdString() + R"(" "far away.txt")"));
    QVERIFY_FOLLOWED(talk);
}

void ConversationTest::SendsAnEmptyFile()
{
    Conversation talk(LogIn + R"(
        C: TYPE I
        S: 200 fine
        C: EPSV
        S: 229 here (|||4001|)
        -- listen 4001
        C: STOR nothing
        -- accept
        S: 150 go on
        U:
        S: 226 stored
    )");
    talk.MakeLocalFile("nothing", "");
    QVERIFY_GOOD(talk.Do("PUT nothing"));
    QVERIFY_FOLLOWED(talk);
}

void ConversationTest::DeletesAndMakesAndRemoves()
{
    Conversation talk(LogIn + R"(
        C: DELE old file
        S: 250 gone
        C: MKD new folder
        S: 257 "/new folder" made
        C: RMD new folder
        S: 250 gone
    )");
    QVERIFY_GOOD(talk.Do(R"(DELETE "old file")"));
    QVERIFY_GOOD(talk.Do(R"(MKDIR "new folder")"));
    QVERIFY_GOOD(talk.Do(R"(RMDIR "new folder")"));
    QVERIFY_FOLLOWED(talk);
}

void ConversationTest::RenameTakesTwoCommands()
{
    Conversation talk(R"(
        S: 220 ready
        C: USER ann
        S: 331 password please
        C: PASS secret
        S: 230-there is mail
        S: 230 welcome
        C: RNFR old.txt
        S: 350 go on
        C: RNTO new.txt
        S: 250 done
    )");
    QVERIFY_GOOD(talk.Do(R"(RENAME "old.txt" "new.txt")"));
    QVERIFY_FOLLOWED(talk);
}

void ConversationTest::AsksForASize()
{
    Conversation talk(LogIn + R"(
        C: TYPE I
        S: 200 fine
        C: SIZE big
        S: 213 5368709120
    )");
    const Ftp::Outcome got = talk.Do(R"(SIZE "big")");
    QVERIFY_GOOD(got);
    QCOMPARE(got.Reply, std::string("5368709120"));
    QVERIFY_FOLLOWED(talk);
}

void ConversationTest::AsksForTheFolder()
{
    Conversation talk(LogIn + R"(
        C: PWD
        S: 257 "/a ""quoted"" folder" is current
    )");
    const Ftp::Outcome got = talk.Do("PWD");
    QVERIFY_GOOD(got);
    QCOMPARE(got.Reply, std::string(R"(/a "quoted" folder)"));
    QVERIFY_FOLLOWED(talk);
}

void ConversationTest::SaysGoodbye()
{
    Conversation talk(LogIn + R"(
        C: PWD
        S: 257 "/"
        C: QUIT
        S: 221 bye
        -- gone
    )");
    QVERIFY_GOOD(talk.Do("PWD"));
    talk.States.clear();
    QVERIFY_GOOD(talk.Do("CLOSE"));
    QCOMPARE(talk.States, (std::vector<int>{9, 10}));
    QVERIFY(!talk.Session->IsConnected());
    QVERIFY_FOLLOWED(talk);
}

void ConversationTest::GoodbyeWithoutASessionSaysNothing()
{
    Conversation talk("S: 220 nobody should come");
    QVERIFY_GOOD(talk.Do("CLOSE"));
    QCOMPARE(talk.Server.StepsDone(), 0U);
}

void ConversationTest::TheTypeChangesOnlyWhereItMust()
{
    const std::string size = "C: SIZE x\nS: 213 1\n";
    Conversation talk(LogIn + Listing + "C: TYPE I\nS: 200 fine\n" + size + size + "C: TYPE A\nS: 200 fine\n" +
                      Listing + Listing);
    QVERIFY_GOOD(talk.Do("DIR"));
    QVERIFY_GOOD(talk.Do("SIZE x"));
    QVERIFY_GOOD(talk.Do("SIZE x"));
    QVERIFY_GOOD(talk.Do("DIR"));
    QVERIFY_GOOD(talk.Do("DIR"));
    QVERIFY_FOLLOWED(talk);
}

void ConversationTest::LogsInAnonymously()
{
    Conversation talk(R"(
        S: 220 ready
        C: USER anonymous
        S: 331 your address as the password
        C: PASS anonymous@example.com
        S: 230 welcome
        C: CDUP
        S: 250 up
    )");
    talk.Where.User.clear();
    talk.Where.Password.clear();
    QVERIFY_GOOD(talk.Do("CDUP"));
    QVERIFY_FOLLOWED(talk);
}

void ConversationTest::NeedsNoPassword()
{
    Conversation talk(R"(
        S: 220 ready
        C: USER ann
        S: 230 that will do
        C: CDUP
        S: 250 up
    )");
    QVERIFY_GOOD(talk.Do("CDUP"));
    QVERIFY_FOLLOWED(talk);
}

void ConversationTest::EntersThePathOfTheAddress()
{
    Conversation talk(LogIn + R"(
        C: CWD pub/some folder
        S: 250 there
        C: PWD
        S: 257 "/pub/some folder"
    )");
    talk.Where.Path = "pub/some folder";
    QVERIFY_GOOD(talk.Do("PWD"));
    QVERIFY_FOLLOWED(talk);
}

void ConversationTest::ARefusedPathIsAnError()
{
    Conversation talk(LogIn + "C: CWD nowhere\nS: 550 no such folder\n-- gone");
    talk.Where.Path = "nowhere";
    const Ftp::Outcome got = talk.Do("DIR");
    QVERIFY(!got.Good);
    QCOMPARE(got.Code, 550);
    QCOMPARE(got.Text, std::string("no such folder"));
    QVERIFY_FOLLOWED(talk);
}

void ConversationTest::AChangeOfTargetTakesANewSession()
{
    Conversation talk(LogIn + R"(
        C: CWD somewhere
        S: 250 there
        -- gone
        S: 220 ready
        C: USER bob
        S: 331 password please
        C: PASS other
        S: 230 welcome
        C: PWD
        S: 257 "/"
    )");
    QVERIFY_GOOD(talk.Do("CD somewhere"));
    talk.Where.User = "bob";
    talk.Where.Password = "other";
    QVERIFY_GOOD(talk.Do("PWD"));
    QVERIFY_FOLLOWED(talk);
}

void ConversationTest::FetchesAFileOnAConnectionOfItsOwn()
{
    Conversation talk(LogIn + R"(
        C: TYPE I
        S: 200 fine
        C: EPSV
        S: 229 here (|||4001|)
        -- listen 4001
        C: RETR pub/message.txt
        -- accept
        S: 150 coming
        D: hello
        -- end
        S: 226 done
    )");
    const Ftp::Outcome got = talk.Fetch("pub/message.txt");
    QVERIFY_GOOD(got);
    QCOMPARE(got.Reply, std::string("hello"));
    QVERIFY_FOLLOWED(talk);
    QCOMPARE(talk.Server.OpenLinks(), 0U);
}

void ConversationTest::TellsTheStatesOfEachCommand()
{
    Conversation talk(LogIn + Listing + Listing);
    QVERIFY_GOOD(talk.Do("DIR"));
    QCOMPARE(talk.States, (std::vector<int>{1, 2, 3, 4, 5, 6, 7, 8}));
    talk.States.clear();
    QVERIFY_GOOD(talk.Do("DIR"));
    QCOMPARE(talk.States, (std::vector<int>{5, 6, 7, 8}));
}

void ConversationTest::AMissingLocalFileIsNotSent()
{
    Conversation talk(LogIn + "C: PWD\nS: 257 \"/\"");
    const Ftp::Outcome got = talk.Do("PUT missing");
    QVERIFY(!got.Good);
    QVERIFY(got.Code >= 12000);
    QVERIFY2(got.Text.find("missing") != std::string::npos, got.Text.c_str());
    QVERIFY_GOOD(talk.Do("PWD"));
    QVERIFY_FOLLOWED(talk);
}

void ConversationTest::ARefusalKeepsTheSession()
{
    Conversation talk(LogIn + R"(
        C: CWD x
        S: 550-no
        S: 550 not that one
        C: DELE y
        S: 450 busy
        C: PWD
        S: 257 "/"
    )");
    const Ftp::Outcome cwd = talk.Do("CD x");
    QCOMPARE(cwd.Code, 550);
    QCOMPARE(cwd.Text, std::string("no\nnot that one"));
    QCOMPARE(talk.Do("DELETE y").Code, 450);
    QVERIFY_GOOD(talk.Do("PWD"));
    QVERIFY_FOLLOWED(talk);
}

void ConversationTest::TheReplyThatDecidedIsReported()
{
    Conversation talk(LogIn + Listing);
    const Ftp::Outcome got = talk.Do("DIR");
    QCOMPARE(got.Code, 226);
    QCOMPARE(got.Text, std::string("done"));
}

QTEST_GUILESS_MAIN(ConversationTest)
#include "conversation_test.moc"
