#include "shell/settings_store.h"

#include "base/byte_text.h"
#include "base/conversions.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

// The store keeps passwords. It takes over the permissions of the file that it replaces with each save.
void KeepToOneself(const QString& file)
{
    constexpr auto OwnerOnly = QFile::ReadOwner | QFile::WriteOwner;
    QDir().mkpath(QFileInfo(file).path());
    if (QFile made(file); made.open(QIODevice::WriteOnly | QIODevice::NewOnly)) made.close();
    QFile::setPermissions(file, OwnerOnly);
}

}  // namespace

SettingsStore::SettingsStore() : Store("Tolvane", "Tolvane")
{
    Store.setFallbacksEnabled(false);
#ifndef Q_OS_WIN
    KeepToOneself(Store.fileName());
#endif
    Store.beginGroup("Settings");
}

SettingsStore::SettingsStore(const QString& file) : Store(file, QSettings::IniFormat)
{
    KeepToOneself(file);
    Store.beginGroup("Settings");
}

QString SettingsStore::Read(const QString& key, const QString& absent) const
{
    const QVariant value = Store.value(key, absent);
    switch (value.typeId()) {
    case QMetaType::QByteArray:
        return BytesToText(value.toByteArray());
    case QMetaType::QStringList:  // a comma in a line that was edited by hand
        return value.toStringList().join(u',');
    default:
        return value.toString();
    }
}

bool SettingsStore::ReadBoolean(const QString& key, bool absent) const
{
    return ToBoolean(Read(key, BooleanText(absent)));
}

bool SettingsStore::Has(const QString& key) const
{
    return Store.contains(key);
}

// The store's own text form would lose the bytes of a name that are no UTF-8.
void SettingsStore::Write(const QString& key, const QString& value)
{
    const QByteArray bytes = TextToBytes(value);
    if (QString::fromUtf8(bytes) == value)
        Store.setValue(key, value);
    else
        Store.setValue(key, bytes);
}

void SettingsStore::WriteBoolean(const QString& key, bool value)
{
    Write(key, BooleanText(value));
}

void SettingsStore::Save()
{
    Store.sync();
}
