#include "platform/text_editor.h"

#include "base/byte_text.h"
#include "base/run_time_error.h"
#include "platform/detached_thread.h"

#include <QByteArrayList>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QStringList>
#include <array>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr std::array UsualEditors{
    "gnome-text-editor", "gedit", "kate",    "kwrite", "mousepad", "xed",  "pluma", "lxqt-edit",
    "featherpad",        "geany", "leafpad", "nedit",  "emacs",    "gvim", "xedit", "textedit"};

/// The value of a key in a section of a desktop file; the first one counts.
QString ValueOf(const QString& file, const QString& section, const QString& key)
{
    QFile text(file);
    if (!text.open(QIODevice::ReadOnly)) return {};
    QString current;
    while (!text.atEnd()) {
        const QString line = QString::fromUtf8(text.readLine()).trimmed();
        if (line.startsWith(u'[')) current = line;
        if (current == u'[' + section + u']' && line.section(u'=', 0, 0).trimmed() == key)
            return line.section(u'=', 1).trimmed();
    }
    return {};
}

/// The desktop's own entries for plain text files, the user's choice first.
QStringList EntriesForText()
{
    QStringList entries;
    const auto add = [&](QStandardPaths::StandardLocation place, const QString& name, const QString& section) {
        for (const QString& file : QStandardPaths::locateAll(place, name))
            entries += ValueOf(file, section, "text/plain").split(u';', Qt::SkipEmptyParts);
    };
    add(QStandardPaths::GenericConfigLocation, "mimeapps.list", "Default Applications");
    add(QStandardPaths::ApplicationsLocation, "mimeapps.list", "Default Applications");
    add(QStandardPaths::ApplicationsLocation, "defaults.list", "Default Applications");
    add(QStandardPaths::ApplicationsLocation, "mimeinfo.cache", "MIME Cache");
    return entries;
}

/// The words of the entry's command; nothing when it wants a terminal or takes no files.
QStringList CommandOf(const QString& entry)
{
    const QString section = QStringLiteral("Desktop Entry");
    const QString file = QStandardPaths::locate(QStandardPaths::ApplicationsLocation, entry.trimmed());
    if (file.isEmpty() || ValueOf(file, section, "Terminal") == u"true") return {};
    return QProcess::splitCommand(ValueOf(file, section, "Exec"));
}

/// The command with the file in the place of its mark, or at its end; without marks for what is not known.
QStringList Filled(const QStringList& command, const QString& path)
{
    QStringList words;
    bool placed = path.isEmpty();
    for (const QString& word : command) {
        const bool takesFile = word == u"%f" || word == u"%F" || word == u"%u" || word == u"%U";
        if (takesFile && !placed) {
            words += path;
            placed = true;
        } else if (!takesFile && !(word.size() == 2 && word.startsWith(u'%'))) {
            words += word;
        }
    }
    if (!placed) words += path;
    return words;
}

QList<QStringList> Commands()
{
    QList<QStringList> commands;
    commands += QProcess::splitCommand(qEnvironmentVariable("TOLVANE_EDITOR"));
    for (const QString& entry : EntriesForText()) commands += CommandOf(entry);
    for (const char* editor : UsualEditors) commands += QStringList{editor};
    return commands;
}

/// Starts a program that outlives this one, with its words as the bytes they are and none of our open connections.
/// 0 when it cannot be started.
pid_t Start(const QStringList& words)
{
    QByteArrayList bytes;
    for (const QString& word : words) bytes += TextToBytes(word);
    std::vector<char*> arguments;
    for (QByteArray& word : bytes) arguments.push_back(word.data());
    arguments.push_back(nullptr);

    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
    pid_t process = 0;
    const int failure = posix_spawnp(&process, arguments.front(), &actions, &attributes, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
    if (failure != 0) return 0;
    // Somebody must take notice of its end, or its number is never free again.
    RunDetached([process] { waitpid(process, nullptr, 0); });
    return process;
}

}  // namespace

qint64 OpenTextEditor(const QString& path)
{
    for (const QStringList& command : Commands()) {
        if (command.isEmpty() || QStandardPaths::findExecutable(command.first()).isEmpty()) continue;
        if (const pid_t process = Start(Filled(command, path)); process > 0) return process;
    }
    throw RuntimeError("File not found");
}
