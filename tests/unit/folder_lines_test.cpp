#include "local/folder_lines.h"

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
    QCOMPARE(Drawn(FolderLines("/home/ann", {"music", "web pages"})), wanted);
}

void FolderLinesTest::TheRootStandsAlone()
{
    const QStringList wanted{"[/] = /", "  bin = /bin", "  etc = /etc"};
    QCOMPARE(Drawn(FolderLines("/", {"bin", "etc"})), wanted);
}

void FolderLinesTest::ASeparatorAtTheEndMakesNoLine()
{
    QCOMPARE(Drawn(FolderLines("/home/", {})), (QStringList{"[/] = /", "  [home] = /home"}));
}

void FolderLinesTest::NamesThatAreNoTextStayTrue()
{
    const QString odd = QString("a") + QChar(0xDCE9);
    const auto lines = FolderLines("/" + odd, {odd});
    QCOMPARE(lines[1].Name, odd);
    QCOMPARE(lines[2].Path, "/" + odd + "/" + odd);
}

QTEST_GUILESS_MAIN(FolderLinesTest)
#include "folder_lines_test.moc"
