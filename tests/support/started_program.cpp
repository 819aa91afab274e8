#include "support/started_program.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#ifdef Q_OS_WIN
#include <windows.h>
#else
#include <csignal>
#include <linux/securebits.h>
#include <sys/prctl.h>
#endif

namespace {

// Milliseconds. A second is meant; a busy machine is not a fault.
constexpr int Patience = 30'000;

#ifdef Q_OS_WIN

// In the program this key takes the place of the user's own.
QString KeyName()
{
    return QStringLiteral("Software\\Tolvane test %1").arg(QCoreApplication::applicationPid());
}

QString KeyOf(const char* name)
{
    return "HKEY_CURRENT_USER\\" + KeyName() + "\\Software\\" + name;
}

#endif

}  // namespace

StartedProgram::StartedProgram()
    : Executable(QDir::cleanPath(QCoreApplication::applicationDirPath() + "/../bin/" + TOLVANE_PROGRAM))
{
    QDir(Folder.path()).mkdir("home");
    QDir(Folder.path()).mkdir("data");
    Environment.insert("TOLVANE_HOME", Home());
    Environment.insert("QT_QPA_PLATFORM", "offscreen");
    Environment.insert("QT_QPA_GENERIC_PLUGINS", "typist");
    const QString others = Environment.value("QT_PLUGIN_PATH");
    const QString plugins = QCoreApplication::applicationDirPath() + "/plugins";
    Environment.insert("QT_PLUGIN_PATH", others.isEmpty() ? plugins : plugins + QDir::listSeparator() + others);
    Process.setWorkingDirectory(Home());
    LeadAway();
    Store("FLanguage", "1");
}

void StartedProgram::PutInto(const QString& folder)
{
    const QString copy = folder + u'/' + QFileInfo(Executable).fileName();
    if (!QFile::copy(Executable, copy)) qFatal("the program cannot be copied");
    Executable = copy;
    Environment.remove("TOLVANE_HOME");
}

void StartedProgram::Start(const QString& steps)
{
    Environment.insert("TOLVANE_TYPIST", steps);
    Process.setProcessEnvironment(Environment);
    Process.start(Executable, QStringList());
}

bool StartedProgram::HasEnded()
{
    if (Process.state() != QProcess::NotRunning && !Process.waitForFinished(Patience)) return false;
    return Process.exitStatus() == QProcess::NormalExit && Process.exitCode() == 0;
}

QString StartedProgram::Setting(const QString& key) const
{
    return Settings().value("Settings/" + key, "(absent)").toString();
}

void StartedProgram::Store(const QString& key, const QString& value)
{
    Settings().setValue("Settings/" + key, value);
}

void StartedProgram::Remove(const QString& key)
{
    Settings().remove("Settings/" + key);
}

#ifdef Q_OS_WIN

StartedProgram::~StartedProgram()
{
    RegDeleteTreeW(HKEY_CURRENT_USER, KeyName().toStdWString().c_str());
}

// The typist leads the program to another key, in which the user's folders are others too.
void StartedProgram::LeadAway()
{
    Environment.insert("TOLVANE_TYPIST_KEY", KeyName());
    QSettings(KeyOf("Microsoft\\Windows\\CurrentVersion\\Explorer\\User Shell Folders"), QSettings::NativeFormat)
        .setValue("Local AppData", QDir::toNativeSeparators(Folder.path() + "/data"));
}

// Rights are no help: under Wine nothing is forbidden to an administrator. So the typist takes the name under which the
// program tries whether it can write.
void StartedProgram::LockFolder()
{
    Environment.insert("TOLVANE_TYPIST_LOCKS", "1");
}

QSettings StartedProgram::Settings() const
{
    return {KeyOf("Tolvane\\Tolvane"), QSettings::NativeFormat};
}

#else

StartedProgram::~StartedProgram()
{
    if (Locked)
        QFile::setPermissions(QFileInfo(Executable).path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

void StartedProgram::LeadAway()
{
    Environment.insert("XDG_CONFIG_HOME", Home());
    Environment.insert("XDG_DATA_HOME", Folder.path() + "/data");
    Process.setChildProcessModifier([this] {
        // Whoever runs the tests in the background may have these ignored.
        for (const int request : {SIGTERM, SIGINT, SIGHUP}) signal(request, SIG_DFL);
        // Permissions are to count for an administrator too; nobody else may do this, or has to.
        if (Locked) prctl(PR_SET_SECUREBITS, SECBIT_NOROOT, 0, 0, 0);
    });
}

void StartedProgram::LockFolder()
{
    Locked = QFile::setPermissions(QFileInfo(Executable).path(), QFile::ReadOwner | QFile::ExeOwner);
}

QSettings StartedProgram::Settings() const
{
    return {Home() + "/Tolvane/Tolvane.conf", QSettings::IniFormat};
}

#endif
