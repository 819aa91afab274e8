#include "base/run_time_error.h"
#include "platform/text_editor.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

/// The editor in these tests is a shell script that writes down its process number and its words.
class TextEditorTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void TheUsersEditorGetsTheFile();
    void WithoutAPathItStartsAlone();
    void AnOddNameArrivesAsItIs();
    void TheDesktopsProgramForTextIsTakenElse();
    void AUsualEditorIsFoundElse();
    void WithoutAnyEditorThereIsAnError();

private:
    void MakeEditor(const QString& name) const;
    void MakeFile(const QString& name, const QByteArray& text) const;

    QByteArray Written() const
    {
        QFile file(Folder->filePath("words"));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    std::unique_ptr<QTemporaryDir> Folder;
    QByteArray Path;
};

// Nothing of this computer's own desktop and editors counts.
void TextEditorTest::init()
{
    Folder = std::make_unique<QTemporaryDir>();
    Path = qgetenv("PATH");
    QVERIFY(QDir(Folder->path()).mkpath("data/applications"));
    QVERIFY(QDir(Folder->path()).mkpath("config"));
    qputenv("PATH", Folder->path().toUtf8());
    qputenv("XDG_DATA_HOME", Folder->filePath("data").toUtf8());
    qputenv("XDG_DATA_DIRS", Folder->filePath("data").toUtf8());
    qputenv("XDG_CONFIG_HOME", Folder->filePath("config").toUtf8());
    qputenv("XDG_CONFIG_DIRS", Folder->filePath("config").toUtf8());
    qunsetenv("TOLVANE_EDITOR");
}

void TextEditorTest::cleanup()
{
    qputenv("PATH", Path);
    Folder.reset();
}

void TextEditorTest::MakeFile(const QString& name, const QByteArray& text) const
{
    QFile file(Folder->filePath(name));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(text), text.size());
}

void TextEditorTest::MakeEditor(const QString& name) const
{
    MakeFile(name, "#!/bin/sh\n{ echo $$; for word; do echo \"[$word]\"; done; } > '" + Folder->path().toUtf8() +
                       "/words.part'\n/bin/mv '" + Folder->path().toUtf8() + "/words.part' '" +
                       Folder->path().toUtf8() + "/words'\n");
    QVERIFY(QFile::setPermissions(Folder->filePath(name),
                                  QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner | QFile::ExeUser));
}

void TextEditorTest::TheUsersEditorGetsTheFile()
{
    MakeEditor("my editor");
    qputenv("TOLVANE_EDITOR", "\"my editor\" --new-window");
    const qint64 number = OpenTextEditor("/a folder/b.txt");
    QTRY_COMPARE(Written(), QByteArray::number(number) + "\n[--new-window]\n[/a folder/b.txt]\n");
}

void TextEditorTest::WithoutAPathItStartsAlone()
{
    MakeEditor("editor");
    qputenv("TOLVANE_EDITOR", "editor");
    const qint64 number = OpenTextEditor({});
    QTRY_COMPARE(Written(), QByteArray::number(number) + "\n");
}

void TextEditorTest::AnOddNameArrivesAsItIs()
{
    MakeEditor("editor");
    qputenv("TOLVANE_EDITOR", "editor");
    const qint64 number = OpenTextEditor("/x/%f $(id) \"q\" caf" + QString(QChar(0xDCE9)));
    QTRY_COMPARE(Written(), QByteArray::number(number) + "\n[/x/%f $(id) \"q\" caf\xE9]\n");
}

void TextEditorTest::TheDesktopsProgramForTextIsTakenElse()
{
    MakeEditor("chosen");
    MakeEditor("gedit");
    MakeFile("config/mimeapps.list",
             "[Added Associations]\ntext/plain=other.desktop;\n[Default Applications]\ntext/plain=mine.desktop;\n");
    MakeFile("data/applications/mine.desktop",
             "[Desktop Entry]\nName=Mine\nExec=chosen --file %U --end %i\n[Desktop Action new]\nExec=gedit\n");
    const qint64 number = OpenTextEditor("/b.txt");
    QTRY_COMPARE(Written(), QByteArray::number(number) + "\n[--file]\n[/b.txt]\n[--end]\n");
}

void TextEditorTest::AUsualEditorIsFoundElse()
{
    MakeEditor("mousepad");
    MakeFile("data/applications/mimeinfo.cache", "[MIME Cache]\ntext/plain=inTerminal.desktop;gone.desktop;\n");
    MakeFile("data/applications/inTerminal.desktop", "[Desktop Entry]\nExec=mousepad --wrong\nTerminal=true\n");
    MakeFile("data/applications/gone.desktop", "[Desktop Entry]\nExec=gone %f\n");
    const qint64 number = OpenTextEditor("/b.txt");
    QTRY_COMPARE(Written(), QByteArray::number(number) + "\n[/b.txt]\n");
}

void TextEditorTest::WithoutAnyEditorThereIsAnError()
{
    QVERIFY_EXCEPTION_THROWN(OpenTextEditor("/b.txt"), RuntimeError);
}

QTEST_GUILESS_MAIN(TextEditorTest)
#include "text_editor_test.moc"
