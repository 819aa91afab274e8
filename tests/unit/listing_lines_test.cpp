#include "remote/listing_lines.h"

#include <QStringList>
#include <QTest>

class ListingLinesTest : public QObject {
    Q_OBJECT

private slots:
    void RepliesAreCut_data();
    void RepliesAreCut();
};

void ListingLinesTest::RepliesAreCut_data()
{
    QTest::addColumn<QString>("reply");
    QTest::addColumn<QStringList>("lines");

    QTest::newRow("two lines") << "a\r\nb\r\n" << QStringList{"a", "b"};
    QTest::newRow("an unterminated last line is dropped") << "a\r\nb" << QStringList{"a"};
    QTest::newRow("a longer unterminated line is dropped") << "a\r\nbcd" << QStringList{"a"};
    QTest::newRow("an empty line stays") << "a\r\n\r\nb\r\n" << QStringList{"a", "", "b"};
    QTest::newRow("an additional CR stays") << "a\r\r\nb\r\n" << QStringList{"a\r", "b"};
    QTest::newRow("a lone LF separates nothing") << "a\nb\r\n" << QStringList{"a\nb"};
    QTest::newRow("a lone CR separates nothing") << "a\rb\r\n" << QStringList{"a\rb"};
    QTest::newRow("a single CR behind the last line is dropped") << "a\r\n\r" << QStringList{"a"};
    QTest::newRow("nothing is trimmed") << "  a  \r\n\t\r\n" << QStringList{"  a  ", "\t"};
    QTest::newRow("nothing") << "" << QStringList();
    QTest::newRow("no line end at all") << "abc" << QStringList();
    QTest::newRow("LF only") << "a\nb\n" << QStringList();
    QTest::newRow("a line end alone") << "\r\n" << QStringList{""};
}

void ListingLinesTest::RepliesAreCut()
{
    QFETCH(QString, reply);
    QFETCH(QStringList, lines);
    ListingLines cut(reply);
    QStringList got;
    while (const std::optional<QString> line = cut.Next()) got += *line;
    QCOMPARE(got, lines);
    QVERIFY(!cut.Next());
}

QTEST_GUILESS_MAIN(ListingLinesTest)
#include "listing_lines_test.moc"
