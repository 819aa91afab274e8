#include "base/byte_text.h"
#include "inet/ftp/failure.h"
#include "platform/file_facts.h"
#include "support/all_servers_test.h"
#include "support/names_here.h"

#include <QDir>

/// Odd names, and listing lines given as names, on four FTP servers as they are in the world.
class ServerNamesTest : public AllServersTest {
    Q_OBJECT

private slots:

    void OddFileNamesComeAndGo_data() { AllServers(); }

    void OddFileNamesComeAndGo();

    void OddFolderNamesComeAndGo_data() { AllServers(); }

    void OddFolderNamesComeAndGo();

    void AListingLineWorksAsAName_data() { AllServers(); }

    void AListingLineWorksAsAName();

    void WithoutHelpAListingLineIsRefused_data() { AllServers(); }

    void WithoutHelpAListingLineIsRefused();
};

namespace {

const QList<QByteArray> OddNames = NamesHere({
    "two  blanks",
    " blank first",
    "100% sure %41%2F",
    "-dash first",
    "--version",
    "semi;colon & $(more) `x` #1 ~",
    "it's",
    "a \"quoted\" word",
    "\"all quoted\"",
    "brackets [1] {2} star*",
    "back\\slash",
    "Gr\xC3\xBC\xC3\x9F"
    "e.txt",
    "\xE6\x97\xA5\xE6\x9C\xAC.txt",
    "Latin Gr\xFC\xDF"
    "e.txt",
    "two hundred " + QByteArray(220, 'n') + ".txt",
});

/// Pure-FTPd drops the blanks before a name.
bool ChangesName(int kind, const QByteArray& name)
{
    return kind == RealServer::PureFtpd && name.startsWith(' ');
}

bool ForbidsName(int kind, const QByteArray& name)
{
    return kind == RealServer::PureFtpd && name.contains('\\');
}

/// pyftpdlib makes a folder whose name is not UTF-8 and fails over its own answer; ProFTPD takes a star for a pattern.
bool ForbidsFolder(int kind, const QByteArray& name)
{
    return (kind == RealServer::Pyftpdlib && name.contains('\xFC')) ||
           (kind == RealServer::ProFtpd && name.contains('*'));
}

}  // namespace

void ServerNamesTest::OddFileNamesComeAndGo()
{
    QFETCH(int, kind);
    for (const QByteArray& name : OddNames) {
        const QByteArray bytes = "bytes of " + name;
        const QString text = Quoted(name);
        Write(Local(name), bytes);
        if (ChangesName(kind, name)) continue;
        if (ForbidsName(kind, name)) {
            QCOMPARE_REFUSED(Do("PUT " + text + ' ' + text));
            continue;
        }
        QVERIFY_GOOD(Do("PUT " + text + ' ' + text));
        QVERIFY2(Read(Remote(name)) == bytes, name);
        Write(Local(name), "");
        QVERIFY2(!LineWith(Do("DIR").Reply, name).isEmpty(), name);
        QVERIFY_GOOD(Do("GET " + text + ' ' + text));
        QVERIFY2(Read(Local(name)) == bytes, name);
        QCOMPARE(Do("SIZE " + text).Reply, QString::number(bytes.size()));
        QVERIFY_GOOD(Do("RENAME " + text + " \"plain\""));
        QVERIFY2(!Exists(Remote(name)), name);
        QVERIFY_GOOD(Do("RENAME \"plain\" " + text));
        QVERIFY2(Read(Remote(name)) == bytes, name);
        QVERIFY_GOOD(Do("DELETE " + text));
        QVERIFY2(!Exists(Remote(name)), name);
    }
    QCOMPARE(LocalFiles().size(), OddNames.size());
}

void ServerNamesTest::OddFolderNamesComeAndGo()
{
    QFETCH(int, kind);
    const QString top = Do("PWD").Reply;
    for (const QByteArray& name : OddNames) {
        const QString text = Quoted(name);
        if (ChangesName(kind, name)) continue;
        if (ForbidsName(kind, name) || ForbidsFolder(kind, name)) {
            QCOMPARE_REFUSED(Do("MKDIR " + text));
            continue;
        }
        QVERIFY_GOOD(Do("MKDIR " + text));
        QVERIFY2(IsFolder(Remote(name)), name);
        QVERIFY_GOOD(Do("CD " + BytesToText(name)));
        QCOMPARE(Do("PWD").Reply, top + u'/' + BytesToText(name));
        QVERIFY_GOOD(Do("CDUP"));
        QVERIFY_GOOD(Do("RMDIR " + text));
        QVERIFY2(!Exists(Remote(name)), name);
    }
}

void ServerNamesTest::AListingLineWorksAsAName()
{
    QVERIFY(QDir(Shared).mkdir("a folder"));
    Write(Remote("two  words.txt"), "12345");
    const QString listing = Do("DIR").Reply;
    const QString file = LineWith(listing, "two  words.txt");
    const QString folder = LineWith(listing, "a folder");
    QVERIFY(!file.isEmpty() && !folder.isEmpty());
    QSignalSpy remarks(Component.get(), &Inet::Remarked);

    QVERIFY_GOOD(Do("CD " + folder));
    QCOMPARE(remarks.size(), 1);
    QVERIFY(Do("PWD").Reply.endsWith("/a folder"));
    QVERIFY_GOOD(Do("CDUP"));
    QCOMPARE(Do("SIZE \"" + file + '"').Reply, QString("5"));
    QVERIFY_GOOD(Do("GET \"" + file + "\" \"" + file + '"'));
    QCOMPARE(LocalFiles(), QStringList("two  words.txt"));
    QCOMPARE(Read(Local("two  words.txt")), QByteArray("12345"));
    QVERIFY_GOOD(Do("RENAME \"" + file + "\" \"renamed\""));
    QVERIFY(Exists(Remote("renamed")));
    QVERIFY_GOOD(Do("DELETE \"" + LineWith(Do("DIR").Reply, "renamed") + '"'));
    QVERIFY(!Exists(Remote("renamed")));
    QVERIFY_GOOD(Do("RMDIR \"" + folder + '"'));
    QVERIFY(!Exists(Remote("a folder")));
    QCOMPARE(remarks.size(), 1);
}

void ServerNamesTest::WithoutHelpAListingLineIsRefused()
{
    QVERIFY(QDir(Shared).mkdir("folder"));
    Write(Remote("file.txt"), "12345");
    Component->SetListingLineHelp(false);
    const QString listing = Do("DIR").Reply;
    const QString file = LineWith(listing, "file.txt");
    QCOMPARE_REFUSED(Do("CD " + LineWith(listing, "folder")));
    const Visit got = Do("GET \"" + file + "\" \"" + file + '"');
    if (CanBeFileHere(TextToBytes(file)))
        QCOMPARE_REFUSED(got);
    else  // nothing is asked for that has no place here
        QCOMPARE(got.Code, static_cast<int>(Ftp::OperationError));
    QCOMPARE_REFUSED(Do("SIZE \"" + file + '"'));
    QCOMPARE_REFUSED(Do("RENAME \"" + file + "\" \"renamed\""));
    QCOMPARE_REFUSED(Do("DELETE \"" + file + '"'));
    QCOMPARE_REFUSED(Do("RMDIR \"" + LineWith(listing, "folder") + '"'));
    QCOMPARE(LocalFiles(), QStringList());
    QCOMPARE(Do("DIR").Reply, listing);
}

QTEST_GUILESS_MAIN(ServerNamesTest)
#include "server_names_test.moc"
