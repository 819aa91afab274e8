#pragma once

#include <QProcess>
#include <QSettings>
#include <QString>
#include <QTemporaryDir>

/// The finished executable in a process of its own, with settings and folders of its own, worked from within by the
/// typist. It does not ask for the language, as if it had been started before. User-interface thread.
class StartedProgram {
public:
    StartedProgram();
    ~StartedProgram();
    StartedProgram(const StartedProgram&) = delete;
    StartedProgram& operator=(const StartedProgram&) = delete;

    /// From now on a copy in this folder is started, which is not told that Home is to be the program's folder.
    void PutInto(const QString& folder);

    /// What is started from there can make no file beside itself.
    void LockFolder();

    void Start(const QString& steps = {});

    /// Whether it has ended as it should, within a time that does for a busy machine.
    bool HasEnded();

    QString Setting(const QString& key) const;
    void Store(const QString& key, const QString& value);
    void Remove(const QString& key);

    /// The current folder at the start, and the program's folder unless it was put elsewhere.
    QString Home() const { return Folder.path() + "/home"; }

    /// What the program uses where it cannot write beside itself.
    QString UserFolder() const { return Folder.path() + "/data/Tolvane"; }

    QProcess Process;

private:
    QSettings Settings() const;
    void LeadAway();

    QTemporaryDir Folder;
    QString Executable;
    QProcessEnvironment Environment = QProcessEnvironment::systemEnvironment();
    bool Locked = false;
};
