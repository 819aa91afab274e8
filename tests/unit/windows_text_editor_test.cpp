#include "base/run_time_error.h"
#include "platform/text_editor.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <memory>
#include <windows.h>

class WindowsTextEditorTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void TheUsersEditorGetsTheFile_data();
    void TheUsersEditorGetsTheFile();
    void WithoutAPathItStartsAlone();
    void NotepadIsStartedElse();
    void AProgramInTheCurrentFolderIsNeverTaken();

private:
    QByteArray Written() const
    {
        QFile file(Folder->filePath("words"));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    std::unique_ptr<QTemporaryDir> Folder;
};

namespace {

/// The program of a process, in small letters; the process is ended.
QString EndedProgram(qint64 number)
{
    const HANDLE process =
        OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION | PROCESS_TERMINATE, FALSE, static_cast<DWORD>(number));
    std::wstring name(1024, L'\0');
    auto length = static_cast<DWORD>(name.size());
    if (QueryFullProcessImageNameW(process, 0, name.data(), &length) == 0) length = 0;
    TerminateProcess(process, 0);
    CloseHandle(process);
    return QString::fromWCharArray(name.data(), static_cast<qsizetype>(length)).toLower();
}

}  // namespace

void WindowsTextEditorTest::init()
{
    Folder = std::make_unique<QTemporaryDir>();
    qputenv("RECORDED_WORDS", Folder->filePath("words").toUtf8());
    qputenv("TOLVANE_EDITOR", "\"" + QCoreApplication::applicationDirPath().toUtf8() + "/recording_editor.exe\"");
}

void WindowsTextEditorTest::cleanup()
{
    qunsetenv("TOLVANE_EDITOR");
    Folder.reset();
}

void WindowsTextEditorTest::TheUsersEditorGetsTheFile_data()
{
    QTest::addColumn<QString>("path");
    for (const char* path : {"C:\\a folder\\b.txt", "C:\\a\"b\\", "C:\\ends in \\\\", "C:\\%PATH% & more.txt"})
        QTest::newRow(path) << QString(path);
    QTest::newRow("accents") << QString::fromUtf16(u"C:\\caf\u00E9 \u65E5\u672C.txt");
}

void WindowsTextEditorTest::TheUsersEditorGetsTheFile()
{
    QFETCH(QString, path);
    qputenv("TOLVANE_EDITOR", qgetenv("TOLVANE_EDITOR") + " --new-window");
    const qint64 number = OpenTextEditor(path);
    QTRY_COMPARE(Written(), QByteArray::number(number) + "\n[--new-window]\n[" + path.toUtf8() + "]\n");
}

void WindowsTextEditorTest::WithoutAPathItStartsAlone()
{
    const qint64 number = OpenTextEditor({});
    QTRY_COMPARE(Written(), QByteArray::number(number) + "\n");
}

void WindowsTextEditorTest::NotepadIsStartedElse()
{
    qunsetenv("TOLVANE_EDITOR");
    QVERIFY(EndedProgram(OpenTextEditor({})).endsWith("\\system32\\notepad.exe"));
}

void WindowsTextEditorTest::AProgramInTheCurrentFolderIsNeverTaken()
{
    const QString before = QDir::currentPath();
    QVERIFY(
        QFile::copy(QCoreApplication::applicationDirPath() + "/recording_editor.exe", Folder->filePath("Notepad.exe")));
    QVERIFY(QDir::setCurrent(Folder->path()));
    qputenv("TOLVANE_EDITOR", "Notepad.exe");
    const QString program = EndedProgram(OpenTextEditor({}));
    QVERIFY(QDir::setCurrent(before));
    QVERIFY2(!program.startsWith(QDir::toNativeSeparators(Folder->path()).toLower()), qPrintable(program));
}

QTEST_GUILESS_MAIN(WindowsTextEditorTest)
#include "windows_text_editor_test.moc"
