#include "local/file_pattern.h"

#include <QTest>

class FilePatternTest : public QObject {
    Q_OBJECT

private slots:
    void NamesMatch_data();
    void NamesMatch();
    void APatternOfManyStarsIsDecidedQuickly();
};

void FilePatternTest::NamesMatch_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("matches");

    QTest::newRow("everything, with a dot") << "*.*"
                                            << "a.txt" << true;
    QTest::newRow("everything, without a dot") << "*.*"
                                               << "Makefile" << true;
    QTest::newRow("everything, dot in front") << "*.*"
                                              << ".htaccess" << true;
    QTest::newRow("everything among others") << "*.gif;*.*"
                                             << "Makefile" << true;
    QTest::newRow("nothing typed") << ""
                                   << "a.txt" << true;
    QTest::newRow("only separators") << " ; ;"
                                     << "a.txt" << true;
    QTest::newRow("gif ending") << "*.gif*"
                                << "x.gif" << true;
    QTest::newRow("gif with more behind") << "*.gif*"
                                          << "x.gifs" << true;
    QTest::newRow("no gif") << "*.gif*"
                            << "x.png" << false;
    QTest::newRow("first of two is exact") << "*.gif;*.jpg*"
                                           << "x.gifs" << false;
    QTest::newRow("second of two is open") << "*.gif;*.jpg*"
                                           << "x.jpgs" << true;
    QTest::newRow("case of the name") << "*.html;*.htm*"
                                      << "INDEX.HTM" << true;
    QTest::newRow("case of the pattern") << "*.TXT"
                                         << "notes.txt" << true;
    QTest::newRow("case beyond ASCII") << QString::fromUtf8("*.ÄÖ") << QString::fromUtf8("x.äö") << true;
    QTest::newRow("blanks around the parts") << " *.gif ; *.png "
                                             << "x.png" << true;
    QTest::newRow("one character") << "a?c"
                                   << "abc" << true;
    QTest::newRow("one character is not none") << "a?c"
                                               << "ac" << false;
    QTest::newRow("one character of two units") << "a?c" << QString::fromUtf8("a📁c") << true;
    QTest::newRow("undecodable byte") << "a*.txt" << QString("a") + QChar(0xDCFF) + ".txt" << true;
    QTest::newRow("a star gives back") << "*ab*abc"
                                       << "xabababc" << true;
    QTest::newRow("a whole name") << "readme"
                                  << "readme.txt" << false;
    QTest::newRow("other wildcard signs are plain") << "a[b].txt"
                                                    << "a[b].txt" << true;
}

void FilePatternTest::NamesMatch()
{
    QFETCH(QString, pattern);
    QFETCH(QString, name);
    QFETCH(bool, matches);
    QCOMPARE(FilePattern(pattern).Matches(name), matches);
    QCOMPARE(FilePattern(pattern).Text(), pattern);
}

// A matcher that tries every division among the stars would need more steps than there are atoms.
void FilePatternTest::APatternOfManyStarsIsDecidedQuickly()
{
    QVERIFY(!FilePattern(QString("*a").repeated(100) + "b").Matches(QString(250, u'a')));
}

QTEST_GUILESS_MAIN(FilePatternTest)
#include "file_pattern_test.moc"
