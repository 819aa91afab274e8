#include "support/conversation.h"
#include "support/outcome_checks.h"

#include <QtTest>

/// A listing line given as a name: sent as it is, and when the server refuses it, once more as the name inside it.
class ListingLineHelpTest : public QObject {
    Q_OBJECT

private slots:
    void ARefusedLineIsTriedByItsName_data();
    void ARefusedLineIsTriedByItsName();
    void AReceiveTakesTheNameForBothHalves();
    void AReceiveKeepsALocalNameOfItsOwn();
    void LaterLinesGoByNameAtOnce();
    void AReceivedLineIsRememberedToo();
    void AllFormsOfLinesAreUnderstood();
    void ALinkGoesByItsOwnName();
    void WhenTheNameIsRefusedTooTheFirstRefusalCounts();
    void OnlyLinesOfTheLastListingAreHelped();
    void OnlyARefusalForGoodIsHelped();
    void ALineInDoubtIsNotGuessed();
    void TheHelpCanBeSwitchedOff();
    void AServerThatTakesLinesIsLeftAlone();
    void ANewNameIsNeverALine();
    void ANameInALineLandsInTheFolderOnly();
    void ANewSessionStartsWithTheLineAgain();
};

namespace {

const std::string Folder = "drwxr-xr-x   2 ftp      ftp          4096 Jan 10  2024 a folder";
const std::string File = "-rw-r--r--   1 ftp      ftp            12 Jan 10 12:34 read me.txt";
const std::string Link = "lrwxrwxrwx   1 ftp      ftp             7 Jan 10 12:34 newest -> a folder";
const std::string Dos = "01-10-24  12:34PM       <DIR>          from dos";
const std::string Easy = "+i8388621.48594,m825718503,r,s280,\teasy.txt";
const std::string Doubtful = "what is this line about";
const std::string Escape = "-rw-r--r--   1 ftp      ftp            12 Jan 10 12:34 ../evil";

const std::string Listed = LogIn + R"(
    C: EPSV
    S: 229 here (|||4001|)
    -- listen 4001
    C: LIST
    -- accept
    S: 150
    D: )" + Folder + "\\r\\n" +
                           File + "\\r\\n" + Link + "\\r\\n" + Dos + "\\r\\n" + Easy + "\\r\\n" + Doubtful + "\\r\\n" +
                           Escape + R"(\r\n
    -- end
    S: 226
)";

std::string Passive(int port)
{
    return "C: EPSV\nS: 229 here (|||" + std::to_string(port) + "|)\n-- listen " + std::to_string(port) + "\n";
}

}  // namespace

void ListingLineHelpTest::ARefusedLineIsTriedByItsName_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("command");
    QTest::newRow("CD") << "CD %1"
                        << "CWD ";
    QTest::newRow("DELETE") << "DELETE \"%1\""
                            << "DELE ";
    QTest::newRow("RMDIR") << "RMDIR \"%1\""
                           << "RMD ";
    QTest::newRow("SIZE") << "SIZE \"%1\""
                          << "SIZE ";
    QTest::newRow("RENAME") << "RENAME \"%1\" \"other\""
                            << "RNFR ";
}

void ListingLineHelpTest::ARefusedLineIsTriedByItsName()
{
    QFETCH(QString, operation);
    QFETCH(QString, command);
    std::string script = Listed;
    if (command == "SIZE ") script += "C: TYPE I\nS: 200\n";
    script += "C: " + command.toStdString() + Folder + "\nS: 550 no such thing\n";
    script += "C: " + command.toStdString() + "a folder\n";
    script += command == "RNFR " ? "S: 350 go on\nC: RNTO other\nS: 250 done\n" : "S: 213 12\n";
    Conversation talk(script);
    QVERIFY_GOOD(talk.Do("DIR"));
    QVERIFY_GOOD(talk.Do(operation.arg(QString::fromStdString(Folder)).toStdString()));
    QCOMPARE(talk.Remarks.size(), 1U);
    QVERIFY2(talk.Remarks.front().find("a folder") != std::string::npos, talk.Remarks.front().c_str());
    QVERIFY(talk.Remarks.front().find('\n') == std::string::npos);
    QVERIFY_FOLLOWED(talk);
}

void ListingLineHelpTest::AReceiveTakesTheNameForBothHalves()
{
    Conversation talk(Listed + "C: TYPE I\nS: 200\n" + Passive(4002) + "C: RETR " + File + "\nS: 550 no\n" +
                      Passive(4003) + "C: RETR read me.txt\n-- accept\nS: 150\nD: hello\n-- end\nS: 226");
    QVERIFY_GOOD(talk.Do("DIR"));
    QVERIFY_GOOD(talk.Do("GET \"" + File + "\" \"" + File + "\""));
    QCOMPARE(talk.LocalFiles(), QStringList{"read me.txt"});
    QCOMPARE(talk.LocalFile("read me.txt"), QByteArray("hello"));
    QVERIFY_FOLLOWED(talk);
}

void ListingLineHelpTest::AReceiveKeepsALocalNameOfItsOwn()
{
    Conversation talk(Listed + "C: TYPE I\nS: 200\n" + Passive(4002) + "C: RETR " + File + "\nS: 550 no\n" +
                      Passive(4003) + "C: RETR read me.txt\n-- accept\nS: 150\nD: hello\n-- end\nS: 226");
    QVERIFY_GOOD(talk.Do("DIR"));
    QVERIFY_GOOD(talk.Do("GET \"" + File + "\" mine"));
    QCOMPARE(talk.LocalFiles(), QStringList{"mine"});
    QVERIFY_FOLLOWED(talk);
}

void ListingLineHelpTest::LaterLinesGoByNameAtOnce()
{
    Conversation talk(Listed + "C: DELE " + File +
                      "\nS: 550 no\nC: DELE read me.txt\nS: 250\nC: CWD a folder\nS: 250\n" + "C: TYPE I\nS: 200\n" +
                      Passive(4002) + "C: RETR read me.txt\n-- accept\nS: 150\nD: hello\n-- end\nS: 226");
    QVERIFY_GOOD(talk.Do("DIR"));
    QVERIFY_GOOD(talk.Do("DELETE \"" + File + "\""));
    QVERIFY_GOOD(talk.Do("CD " + Folder));
    QVERIFY_GOOD(talk.Do("GET \"" + File + "\" \"" + File + "\""));
    QCOMPARE(talk.LocalFiles(), QStringList{"read me.txt"});
    QCOMPARE(talk.Remarks.size(), 1U);
    QVERIFY_FOLLOWED(talk);
}

void ListingLineHelpTest::AReceivedLineIsRememberedToo()
{
    Conversation talk(Listed + "C: TYPE I\nS: 200\n" + Passive(4002) + "C: RETR " + File + "\nS: 550 no\n" +
                      Passive(4003) + "C: RETR read me.txt\n-- accept\nS: 150\nD: hello\n-- end\nS: 226\n" +
                      "C: DELE read me.txt\nS: 250");
    QVERIFY_GOOD(talk.Do("DIR"));
    QVERIFY_GOOD(talk.Do("GET \"" + File + "\" \"" + File + "\""));
    QVERIFY_GOOD(talk.Do("DELETE \"" + File + "\""));
    QVERIFY_FOLLOWED(talk);
}

void ListingLineHelpTest::AllFormsOfLinesAreUnderstood()
{
    Conversation talk(Listed + "C: DELE easy.txt\nS: 250\nC: CWD " + Dos + "\nS: 550 no\nC: CWD from dos\nS: 250");
    QVERIFY_GOOD(talk.Do("DIR"));
    // A line with a tab in it can never be sent; the name can.
    QVERIFY_GOOD(talk.Do("DELETE \"" + Easy + "\""));
    QVERIFY_GOOD(talk.Do("CD " + Dos));
    QVERIFY_FOLLOWED(talk);
}

void ListingLineHelpTest::ALinkGoesByItsOwnName()
{
    Conversation talk(Listed + "C: CWD " + Link + "\nS: 550 no\nC: CWD newest\nS: 250");
    QVERIFY_GOOD(talk.Do("DIR"));
    QVERIFY_GOOD(talk.Do("CD " + Link));
    QVERIFY_FOLLOWED(talk);
}

void ListingLineHelpTest::WhenTheNameIsRefusedTooTheFirstRefusalCounts()
{
    Conversation talk(Listed + "C: DELE " + File + "\nS: 553 the first\nC: DELE read me.txt\nS: 550 the second\n" +
                      "C: DELE " + File + "\nS: 553 the first\nC: DELE read me.txt\nS: 250");
    QVERIFY_GOOD(talk.Do("DIR"));
    const Ftp::Outcome got = talk.Do("DELETE \"" + File + "\"");
    QCOMPARE_FAILED(got, 553);
    QCOMPARE(got.Text, std::string("the first"));
    QVERIFY_GOOD(talk.Do("DELETE \"" + File + "\""));
    QVERIFY_FOLLOWED(talk);
}

void ListingLineHelpTest::OnlyLinesOfTheLastListingAreHelped()
{
    const std::string other = "-rw-r--r--   1 ftp      ftp            12 Jan 10 12:34 never listed";
    Conversation talk(Listed + "C: DELE " + other + "\nS: 550 no\nC: DELE read me.txt\nS: 550 no\n" + Passive(4002) +
                      "C: LIST\n-- accept\nS: 150\nD: " + other + "\\r\\n\n-- end\nS: 226\nC: DELE " + File +
                      "\nS: 550 no\nC: DELE " + other + "\nS: 550 no\nC: DELE never listed\nS: 250");
    QVERIFY_GOOD(talk.Do("DIR"));
    QCOMPARE_FAILED(talk.Do("DELETE \"" + other + "\""), 550);
    QCOMPARE_FAILED(talk.Do("DELETE \"read me.txt\""), 550);
    QVERIFY_GOOD(talk.Do("DIR"));
    QCOMPARE_FAILED(talk.Do("DELETE \"" + File + "\""), 550);
    QVERIFY_GOOD(talk.Do("DELETE \"" + other + "\""));
    QVERIFY_FOLLOWED(talk);
}

void ListingLineHelpTest::OnlyARefusalForGoodIsHelped()
{
    Conversation talk(Listed + "C: DELE " + File + "\nS: 450 busy\nC: CDUP\nS: 250");
    QVERIFY_GOOD(talk.Do("DIR"));
    QCOMPARE_FAILED(talk.Do("DELETE \"" + File + "\""), 450);
    QVERIFY_GOOD(talk.Do("CDUP"));
    QVERIFY_FOLLOWED(talk);
}

void ListingLineHelpTest::ALineInDoubtIsNotGuessed()
{
    Conversation talk(Listed + "C: DELE " + Doubtful + "\nS: 550 no\nC: CDUP\nS: 250");
    QVERIFY_GOOD(talk.Do("DIR"));
    QCOMPARE_FAILED(talk.Do("DELETE \"" + Doubtful + "\""), 550);
    QVERIFY_GOOD(talk.Do("CDUP"));
    QVERIFY(talk.Remarks.empty());
    QVERIFY_FOLLOWED(talk);
}

void ListingLineHelpTest::TheHelpCanBeSwitchedOff()
{
    Conversation talk(Listed + "C: DELE " + File + "\nS: 550 no\nC: CDUP\nS: 250");
    talk.How.ListingLineHelp = false;
    QVERIFY_GOOD(talk.Do("DIR"));
    QCOMPARE_FAILED(talk.Do("DELETE \"" + File + "\""), 550);
    QVERIFY_GOOD(talk.Do("CDUP"));
    QVERIFY(talk.Remarks.empty());
    QVERIFY_FOLLOWED(talk);
}

void ListingLineHelpTest::AServerThatTakesLinesIsLeftAlone()
{
    Conversation talk(Listed + "C: DELE " + File + "\nS: 250\nC: CWD " + Folder + "\nS: 250");
    QVERIFY_GOOD(talk.Do("DIR"));
    QVERIFY_GOOD(talk.Do("DELETE \"" + File + "\""));
    QVERIFY_GOOD(talk.Do("CD " + Folder));
    QVERIFY(talk.Remarks.empty());
    QVERIFY_FOLLOWED(talk);
}

void ListingLineHelpTest::ANewNameIsNeverALine()
{
    Conversation talk(Listed + "C: RNFR read me.txt\nS: 350\nC: RNTO " + Folder + "\nS: 553 no\nC: MKD " + Folder +
                      "\nS: 550 no\nC: CDUP\nS: 250");
    QVERIFY_GOOD(talk.Do("DIR"));
    QCOMPARE_FAILED(talk.Do("RENAME \"read me.txt\" \"" + Folder + "\""), 553);
    QCOMPARE_FAILED(talk.Do("MKDIR \"" + Folder + "\""), 550);
    QVERIFY_GOOD(talk.Do("CDUP"));
    QVERIFY_FOLLOWED(talk);
}

void ListingLineHelpTest::ANameInALineLandsInTheFolderOnly()
{
    Conversation talk(Listed + "C: TYPE I\nS: 200\n" + Passive(4002) + "C: RETR " + Escape + "\nS: 550 no\n" +
                      Passive(4003) + "C: *\n-- accept\nS: 150\nD: hello\n-- end\nS: 226");
    QVERIFY_GOOD(talk.Do("DIR"));
    const Ftp::Outcome got = talk.Do("GET \"" + Escape + "\" \"" + Escape + "\"");
    QVERIFY(!got.Good);
    QVERIFY(talk.LocalFiles().isEmpty());
}

void ListingLineHelpTest::ANewSessionStartsWithTheLineAgain()
{
    Conversation talk(Listed + "C: DELE " + File +
                      "\nS: 550 no\nC: DELE read me.txt\nS: 250\nC: QUIT\nS: 221\n-- gone\n" + Listed + "C: DELE " +
                      File + "\nS: 250");
    QVERIFY_GOOD(talk.Do("DIR"));
    QVERIFY_GOOD(talk.Do("DELETE \"" + File + "\""));
    QVERIFY_GOOD(talk.Do("CLOSE"));
    QVERIFY_GOOD(talk.Do("DIR"));
    QVERIFY_GOOD(talk.Do("DELETE \"" + File + "\""));
    QVERIFY_FOLLOWED(talk);
}

QTEST_GUILESS_MAIN(ListingLineHelpTest)
#include "listing_line_help_test.moc"
