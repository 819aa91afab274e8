#include "local/folder_lines.h"

#include <QDir>
#include <QTest>

class FolderLinesTest : public QObject {
    Q_OBJECT

private slots:
    void TheWayDownComesFirstThenTheSubFolders();
    void TheRootStandsAlone();
    void ASeparatorAtTheEndMakesNoLine();
    void NamesThatAreNoTextStayTrue();
};

namespace {

QStringList Drawn(const std::vector<FolderLine>& lines)
{
    QStringList drawn;
    for (const FolderLine& line : lines)
        drawn += QString(line.Depth * 2, u' ') + (line.Open ? "[" : "") + line.Name + (line.Open ? "]" : "") + " = " +
                 line.Path;
    return drawn;
}

/// As this system writes paths.
QString Native(const QString& path)
{
    return QDir::toNativeSeparators(path);
}

QStringList Native(QStringList lines)
{
    for (QString& line : lines) line = Native(line);
    return lines;
}

}  // namespace

void FolderLinesTest::TheWayDownComesFirstThenTheSubFolders()
{
    const QStringList wanted{
        "[/] = /",
        "  [home] = /home",
        "    [ann] = /home/ann",
        "      music = /home/ann/music",
        "      web pages = /home/ann/web pages",
    };
    QCOMPARE(Drawn(FolderLines(Native("/home/ann"), {"music", "web pages"})), Native(wanted));
}

void FolderLinesTest::TheRootStandsAlone()
{
    const QStringList wanted{"[/] = /", "  bin = /bin", "  etc = /etc"};
    QCOMPARE(Drawn(FolderLines(Native("/"), {"bin", "etc"})), Native(wanted));
}

void FolderLinesTest::ASeparatorAtTheEndMakesNoLine()
{
    QCOMPARE(Drawn(FolderLines(Native("/home/"), {})), Native(QStringList{"[/] = /", "  [home] = /home"}));
}

void FolderLinesTest::NamesThatAreNoTextStayTrue()
{
    const QString odd = QString("a") + QChar(0xDCE9);
    const auto lines = FolderLines(Native("/" + odd), {odd});
    QCOMPARE(lines[1].Name, odd);
    QCOMPARE(lines[2].Path, Native("/" + odd + "/" + odd));
}

QTEST_GUILESS_MAIN(FolderLinesTest)
#include "folder_lines_test.moc"
