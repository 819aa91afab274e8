#pragma once

#include <QSettings>
#include <QString>

/// The per-user settings of application "Tolvane", section "Settings": string values under string keys.
/// The registry on Windows, an ini file in the user's configuration folder elsewhere. User-interface thread.
class SettingsStore {
public:
    /// The user's own store.
    SettingsStore();
    /// A store in a file of its own.
    explicit SettingsStore(const QString& file);

    /// The value of a key, or `absent` when the key is not there.
    QString Read(const QString& key, const QString& absent) const;

    /// Reads a Boolean; throws RuntimeError "Type mismatch" when the value cannot be converted.
    bool ReadBoolean(const QString& key, bool absent) const;

    bool Has(const QString& key) const;
    void Write(const QString& key, const QString& value);
    void WriteBoolean(const QString& key, bool value);

    /// Brings everything written so far to the disk, in one step: a crash leaves the old file or the new one.
    void Save();

private:
    QSettings Store;
};
