#include "platform/text_editor.h"

#include "base/byte_text.h"
#include "base/run_time_error.h"

#include <QProcess>
#include <QStandardPaths>
#include <QStringList>
#include <array>
#include <string>
#include <windows.h>

namespace {

/// The system's Notepad.exe by its full name: files of that name may lie in the current folder, where downloads go.
QString Notepad()
{
    std::array<wchar_t, MAX_PATH> folder{};
    const UINT length = GetSystemDirectoryW(folder.data(), folder.size());
    return QString::fromWCharArray(folder.data(), static_cast<qsizetype>(length)) + QStringLiteral("\\Notepad.exe");
}

/// A word of a command line as CommandLineToArgvW reads it back.
QString Quoted(const QString& word)
{
    QString quoted = word;
    qsizetype backslashes = 0;
    for (qsizetype at = 0; at < quoted.size(); ++at) {
        if (quoted[at] == u'"') {
            quoted.insert(at, QString(backslashes + 1, u'\\'));
            at += backslashes + 1;
        }
        backslashes = quoted[at] == u'\\' ? backslashes + 1 : 0;
    }
    return u'"' + quoted + QString(backslashes, u'\\') + u'"';
}

/// The number of the process; 0 when it cannot be started.
qint64 Start(const QString& program, QStringList words)
{
    words.prepend(program);
    QStringList quoted;
    for (const QString& word : words) quoted += Quoted(word);
    std::wstring line = quoted.join(u' ').toStdWString();
    STARTUPINFOW manner = {};
    manner.cb = sizeof manner;
    manner.dwFlags = STARTF_USESHOWWINDOW;
    manner.wShowWindow = SW_SHOWNORMAL;
    PROCESS_INFORMATION process = {};
    if (CreateProcessW(program.toStdWString().c_str(), line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                       &manner, &process) == 0)
        return 0;
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return process.dwProcessId;
}

}  // namespace

qint64 OpenTextEditor(const QString& path)
{
    const QStringList file = path.isEmpty() ? QStringList() : QStringList(path);
    const QStringList own = QProcess::splitCommand(qEnvironmentVariable("TOLVANE_EDITOR"));
    const QString program = own.isEmpty() ? QString() : QStandardPaths::findExecutable(own.first());
    if (!program.isEmpty()) {
        if (const qint64 process = Start(program, own.mid(1) + file); process != 0) return process;
    }
    if (const qint64 process = Start(Notepad(), file); process != 0) return process;
    throw RuntimeError("File not found");
}
