#include "base/listing_name.h"

#include <QByteArray>
#include <QTest>

class ListingNameTest : public QObject {
    Q_OBJECT

private slots:
    void ALineGivesItsName_data();
    void ALineGivesItsName();
    void ALineInDoubtGivesNone_data();
    void ALineInDoubtGivesNone();
    void ACarriageReturnAtTheEndIsDropped();
    void ALongLineIsNoTrouble();
};

void ListingNameTest::ALineGivesItsName_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QByteArray>("name");
    const auto row = [](const QByteArray& line, const QByteArray& name) {
        QTest::newRow(line.constData()) << line << name;
    };
    // Long forms of Unix servers.
    row("drwxr-xr-x   2 root     root         4096 May  1 10:22 pub", "pub");
    row("-rw-r--r--   1 ftp      ftp          1234 Jan 31  2023 readme.txt", "readme.txt");
    row("-rw-r--r--    1 0        0               0 Nov 20 23:59 empty", "empty");
    row("-rw-rw-r--    1 1000     1000     10737418240 Feb 29  2024 big.iso", "big.iso");
    row("-rw-r--r-- 1 u g 5 Jan  1 10:00 two words.txt", "two words.txt");
    row("-rw-r--r-- 1 u g 5 Jan  1 10:00 two  blanks", "two  blanks");
    row("-rw-r--r-- 1 u g 5 Jan  1 10:00  lead", " lead");
    row("-rw-r--r-- 1 u g 5 Jan  1 10:00   lead", "  lead");
    row("-rw-r--r-- 1 u g 5 Jan  1 10:00 trail ", "trail ");
    row("-rw-r--r-- 1 u g 5 Jan  1 10:00  ", " ");
    row("-rw-r--r-- 1 u g 5 Jan  1  2024 a", "a");
    row("-rw-r--r-- 1 u g 5 Jan 1 2024 a", "a");
    row("-rw-r--r-- 1 u g 5 Jan 01 9:05 a", "a");
    row("-rw-r--r-- 1 owner 5 Jan  1 10:00 nogroup.txt", "nogroup.txt");
    row("-r--r--r--   1 1391972  1392298 Nov 22  1995 MegaPhone.sit", "MegaPhone.sit");
    row("drwxrwxr-x               folder        2 May 10  1996 network", "network");
    row("-rw-r--r-- 1 Domain Admins Domain Users 42 Jan  1 10:00 a.doc", "a.doc");
    row("-rw-r--r--+ 1 u g 5 Jan  1 10:00 acl", "acl");
    row("-rw-r--r--. 1 u g 5 Jan  1 10:00 selinux", "selinux");
    row("drwx------@ 5 u staff 160 Sep 14 08:01 Library", "Library");
    row("drwxrwxrwt 10 root root 300 Dec 24 18:00 tmp", "tmp");
    row("-rwsr-Sr-T 1 root root 300 Dec 24 18:00 odd bits", "odd bits");
    row("brw-rw---- 1 root disk 8, 0 Jan  1 10:00 sda", "sda");
    row("brw-rw---- 1 root disk 8,   1 Jan  1 10:00 sda1", "sda1");
    row("crw-rw-rw- 1 root root 1,3 Jan  1 10:00 null", "null");
    row("crw------- 1 root wheel 0 Jan  1  1970 console", "console");
    row("prw-r--r-- 1 u g 0 Jan  1 10:00 fifo", "fifo");
    row("srwxr-xr-x 1 u g 0 Jan  1 10:00 socket", "socket");
    row("lrwxrwxrwx 1 root root 7 Jan  1 10:00 bin -> usr/bin", "bin");
    row("lrwxrwxrwx 1 root root 7 Jan  1 10:00 a b -> c d", "a b");
    row("lrwxrwxrwx 1 root root 7 Jan  1 10:00 hidden", "hidden");
    row("lrwxrwxrwx 1 root root 7 Jan  1 10:00 a->b -> c", "a->b");
    row("-rw-r--r-- 1 u g 5 Jan  1 10:00 a -> b", "a -> b");
    row("-rw-r--r-- 1 u g 5 2024-05-01 10:22 iso.txt", "iso.txt");
    row("drwxr-xr-x 2 u g 4096 2024-05-01 10:22 iso folder", "iso folder");
    row("-rw-r--r-- 1 u g 5 2024-05-01 10:22:33.000000000 +0200 full", "full");
    row("drwxr-xr-x 2 u g 4096 Jan  1 10:00 .", ".");
    row("drwxr-xr-x 2 u g 4096 Jan  1 10:00 ..", "..");
    row("-rw-r--r-- 1 u g 5 Jan  1 10:00 .hidden", ".hidden");
    row("-rw-r--r-- 1 u g 5 Jan  1 10:00 -rw", "-rw");
    row("-rw-r--r-- 1 u g 5 Jan  1 10:00 10:22", "10:22");
    row("-rw-r--r-- 1 u g 5 Jan  1 10:00 2024 report", "2024 report");
    row("-rw-r--r-- 1 u g 5 Jan  1 10:00 copy 7 Feb  2 11:11 of", "copy 7 Feb  2 11:11 of");
    row("-rw-r--r-- 1 u g 5 Jan  1 10:00 say \"hi\"", "say \"hi\"");
    row("-rw-r--r-- 1 u g 5 Jan  1 10:00 back\\slash", "back\\slash");
    row("-rw-r--r-- 1 u g 5 Jan  1 10:00 \xe4\xff", "\xe4\xff");
    row("-rw-r--r-- 1 u g 5 Jan  1 10:00 b\xc3\xbcro", "b\xc3\xbcro");
    row("-rw-r--r-- 1 u may 5 Jan  1 10:00 a", "a");
    row("---------- 1 owner group         1803128 Jul 10 10:18 ls-lR.Z", "ls-lR.Z");
    row("d--------- 1 owner group               0 May  9 19:45 Softlib", "Softlib");
    row("----rwxr-x   1 noone    nogroup      322 Aug 19  1996 message.ftp", "message.ftp");
    // DOS and its followers.
    row("05-01-24  10:22AM       <DIR>          inetpub", "inetpub");
    row("05-01-24  10:22PM                 1234 readme.txt", "readme.txt");
    row("05-01-2024  10:22PM                 1234 read me.txt", "read me.txt");
    row("05-01-24  10:22                      0 empty", "empty");
    row("2024-05-01  10:22       <DIR>          iso", "iso");
    row("05/01/2024  10:22 AM    <DIR>          slashes", "slashes");
    row("05/01/2024  10:22 PM          99999999 big.zip", "big.zip");
    row("02-05-97  12:10PM                  982 HTTP.log", "HTTP.log");
    row("04-27-00  09:09PM       <DIR>          licensed programs", "licensed programs");
    row("04-14-00  03:47PM                  589  lead", " lead");
    row("05-01-24  10:22AM  <DIR>  name", "name");
    row("05-01-24  10:22AM       <DIR>          ..", "..");
    row("05-01-24  10:22AM                  5 a -> b", "a -> b");
    // Easily parsed LIST format.
    row("+i8388621.29609,m824255902,/,\tdev", "dev");
    row("+i8388621.44468,m839956783,r,s10376,\tRFCEPLF", "RFCEPLF");
    row("+/,\ttwo words", "two words");
    row("+r,\t lead", " lead");
    row("+\tplain", "plain");
}

void ListingNameTest::ALineGivesItsName()
{
    QFETCH(QByteArray, line);
    QFETCH(QByteArray, name);
    const auto found = NameInListingLine(line.toStdString());
    QVERIFY(found);
    QCOMPARE(QByteArray::fromStdString(*found), name);
}

void ListingNameTest::ALineInDoubtGivesNone_data()
{
    QTest::addColumn<QByteArray>("line");
    const auto row = [](const QByteArray& line) {
        QTest::newRow(("<" + line.left(100).toPercentEncoding(" ->/:,") + ">").constData()) << line;
    };
    row("");
    row("\r");
    row(" ");
    row("total 12");
    row("total 0");
    row("readme.txt");
    row("pub");
    row("..");
    row("../");
    row("my -rw-r--r-- 1 u g 5 Jan  1 10:00 a");
    row(" -rw-r--r-- 1 u g 5 Jan  1 10:00 a");
    row("123456 -rw-r--r-- 1 u g 5 Jan  1 10:00 inode");
    row("8 -rw-r--r-- 1 u g 5 Jan  1 10:00 blocks");
    row("-rw-r--r-- 1 u g 5 Jan  1 10:00");
    row("-rw-r--r-- 1 u g 5 Jan  1 10:00 ");
    row("-rw-r--r-- 1 u g 5 Jan  1 10:22:33 2024 seconds");
    row("-rw-r--r-- 1 u g 5 Jan  1");
    row("-rw-r--r-- 1 u g 5 Jan 32 10:00 a");
    row("-rw-r--r-- 1 u g 5 Jan  0 10:00 a");
    row("-rw-r--r-- 1 u g 5 Foo  1 10:00 a");
    row("-rw-r--r-- 1 u g 5 Jan  1 99999 a");
    row("-rw-r--r-- 1 u g 4.0K Jan  1 10:00 human");
    row("-rw-r--r-- 1 u g Jan  1 10:00 no size");
    row("-rw-r--r-- 1 u g Jan  1 10:00 my 5 Jan  2 11:11 name");
    row("-rw-r--r-- 5 Jan  1 10:00 a");
    row("-rw-r--r-- Jan  1 10:00 a");
    row("-rw-r--r-- 1 May 12 2024 Jan  3 10:00 owner like a month");
    row("-rw-r--r-- 1 u g 5 2024-05-01 a");
    row("-rw-r--r-- 1 u g 5 2024-05-01 10:22:33 a");
    row("-rw-r--r-- 1 u g 5 Jan  1 10:00 a/b");
    row("-rw-r--r-- 1 u g 5 Jan  1 10:00 ../evil");
    row("-rw-r--r-- 1 u g 5 Jan  1 10:00 x\nDELE victim");
    row("-rw-r--r-- 1 u g 5 Jan  1 10:00 x\r\r");
    row("-rw-r--r-- 1 u g 5 Jan  1 10:00 \x1b[2J");
    row(QByteArray("-rw-r--r-- 1 u g 5 Jan  1 10:00 a\0b", 35));
    row("-rw-r--r--\t1\tu\tg\t5\tJan\t1\t10:00\ta");
    row("-rw-r--r-- 1 u g 5 Jan  1 10:00\ta");
    row("xrw-r--r-- 1 u g 5 Jan  1 10:00 a");
    row("-rw-r--r 1 u g 5 Jan  1 10:00 a");
    row("-rw-r--r--++ 1 u g 5 Jan  1 10:00 a");
    row("-rw-r--q-- 1 u g 5 Jan  1 10:00 a");
    row("-rw-r--r--1 u g 5 Jan  1 10:00 a");
    row("crw-rw-rw- 1 root root 1,x Jan  1 10:00 null");
    row("lrwxrwxrwx 1 u g 5 Jan  1 10:00 a -> b -> c");
    row("lrwxrwxrwx 1 u g 5 Jan  1 10:00 a -> -> c");
    row("lrwxrwxrwx 1 u g 5 Jan  1 10:00  -> c");
    row("lrwxrwxrwx 1 u g 5 Jan  1 10:00 a -> ");
    row("d [R----F--] supervisor            512       Jan 16 18:53    login");
    row("READ.ME;1          5/9       12-JAN-2024 10:22:33  [SYSTEM]  (RWED,RWED,RE,)");
    row("PUB.DIR;1            1 19-NOV-2007 21:41 [FTP] (RWE,RWE,RE,RE)");
    row("Directory DISK$USER:[ANONYMOUS]");
    row("05-01-24  10:22AM       <DIR>");
    row("05-01-24  10:22AM       <DIR>          ");
    row("05-01-24  10:22AM       <DIR>           eleven");
    row("05-01-24  10:22AM       <JUNCTION>     name [C:\\x]");
    row("05-01-24  10:22AM                1,234 commas.txt");
    row("05-01-24  10:22AM                 1234 ..\\evil");
    row("05-01-24  10:22AM                 1234 a/b");
    row("05-01-24  10:22XM                 1234 a");
    row("05-01-24                 1234 a");
    row("5-1-24  10:22AM                 1234 a");
    row(" 05-01-24  10:22AM                 1234 a");
    row("10:22AM 05-01-24 1234 a");
    row("+i8388621.29609,m824255902,/,dev");
    row("+i8388621.29609,m824255902,/\tdev");
    row("+i8388621.29609,m824255902,/,\t");
    row("+/,\t../evil");
    row("+/,\ta\tb");
    row("type=file;size=5; a");
    row("<html>");
    row("ls: cannot access 'x': No such file or directory");
    row("550 No such file");
}

void ListingNameTest::ALineInDoubtGivesNone()
{
    QFETCH(QByteArray, line);
    const auto found = NameInListingLine(line.toStdString());
    QVERIFY2(!found, found ? found->c_str() : "");
}

void ListingNameTest::ACarriageReturnAtTheEndIsDropped()
{
    QCOMPARE(NameInListingLine("-rw-r--r-- 1 u g 5 Jan  1 10:00 a b\r"), std::optional<std::string>("a b"));
    QCOMPARE(NameInListingLine("05-01-24  10:22AM       <DIR>          c\r"), std::optional<std::string>("c"));
    QCOMPARE(NameInListingLine("+/,\td\r"), std::optional<std::string>("d"));
}

void ListingNameTest::ALongLineIsNoTrouble()
{
    const std::string name(1'000'000, 'x');
    QCOMPARE(NameInListingLine("-rw-r--r-- 1 u g 5 Jan  1 10:00 " + name), std::optional<std::string>(name));
    std::string words = "-rw-r--r-- 1 u g 5";
    for (int i = 0; i < 300'000; ++i) words += " y";
    QVERIFY(!NameInListingLine(words));
}

QTEST_GUILESS_MAIN(ListingNameTest)
#include "listing_name_test.moc"
