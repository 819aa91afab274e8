#include "base/byte_text.h"
#include "base/run_time_error.h"
#include "shell/settings_store.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

class SettingsStoreTest : public QObject {
    Q_OBJECT

private slots:
    void init();

    void AnAbsentKeyReadsAsItsDefault();
    void EveryTextComesBackAfterARestart_data();
    void EveryTextComesBackAfterARestart();
    void ValuesStandInTheSectionSettings();
    void BooleansAreWords();
    void ABooleanThatCannotBeConvertedIsATypeMismatch();
    void AValueEditedByHandMayHoldCommas();
#ifndef Q_OS_WIN
    void OnlyTheUserMayReadTheFile();
    void TheUsersOwnStoreLiesInTheConfigurationFolder();
#endif

private:
    QString FileName() const
    {
        return Folder->filePath("Tolvane.conf");
    }

    std::unique_ptr<QTemporaryDir> Folder;
};

void SettingsStoreTest::init()
{
    Folder = std::make_unique<QTemporaryDir>();
}

void SettingsStoreTest::AnAbsentKeyReadsAsItsDefault()
{
    const SettingsStore store(FileName());
    QCOMPARE(store.Read("SaveProxy", "Enter proxy address here"), QString("Enter proxy address here"));
    QVERIFY(store.ReadBoolean("DriveSav", true));
    QVERIFY(!store.Has("SaveProxy"));
}

void SettingsStoreTest::EveryTextComesBackAfterARestart_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << "";
    QTest::newRow("marker") << " $ ";
    QTest::newRow("quotes and commas") << "a, \"b\"; c=d";
    QTest::newRow("percent and backslash") << "100%\\n%20";
    QTest::newRow("at sign") << "@ByteArray(x)";
    QTest::newRow("blanks around") << "  secret  ";
    QTest::newRow("other alphabets") << QString::fromUtf8("пароль 密码 📁");
    QTest::newRow("bytes that are no UTF-8") << BytesToText("/home/caf\xE9/\xFF");
    QTest::newRow("line breaks") << "a\r\nb";
}

void SettingsStoreTest::EveryTextComesBackAfterARestart()
{
    QFETCH(QString, text);
    {
        SettingsStore store(FileName());
        store.Write("SavePass", text);
        QCOMPARE(store.Read("SavePass", "absent"), text);
        store.Save();
    }
    QCOMPARE(SettingsStore(FileName()).Read("SavePass", "absent"), text);
}

void SettingsStoreTest::ValuesStandInTheSectionSettings()
{
    SettingsStore store(FileName());
    store.Write("Timeout", "45");
    store.Save();
    QFile file(FileName());
    QVERIFY(file.open(QIODevice::ReadOnly | QIODevice::Text));
    QCOMPARE(file.readAll(), QByteArray("[Settings]\nTimeout=45\n"));
}

void SettingsStoreTest::BooleansAreWords()
{
    SettingsStore store(FileName());
    store.WriteBoolean("NT", true);
    QCOMPARE(store.Read("NT", ""), QString("True"));
    store.WriteBoolean("NT", false);
    QCOMPARE(store.Read("NT", ""), QString("False"));
    QVERIFY(!store.ReadBoolean("NT", true));
}

void SettingsStoreTest::ABooleanThatCannotBeConvertedIsATypeMismatch()
{
    SettingsStore store(FileName());
    store.Write("NT", "yes");
    ErrorRecord errors;
    QVERIFY(!errors.Attempt([&] { store.ReadBoolean("NT", false); }));
    QCOMPARE(errors.Description(), QString("Type mismatch"));
}

void SettingsStoreTest::AValueEditedByHandMayHoldCommas()
{
    QFile file(FileName());
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("[Settings]\nSavePass=a,b\n");
    file.close();
    QCOMPARE(SettingsStore(FileName()).Read("SavePass", ""), QString("a,b"));
}

#ifndef Q_OS_WIN
// Passwords are in it.
void SettingsStoreTest::OnlyTheUserMayReadTheFile()
{
    SettingsStore store(FileName());
    store.Write("SavePass", "secret");
    store.Save();
    constexpr auto Others = QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
    QCOMPARE(QFileInfo(FileName()).permissions() & Others, QFile::Permissions());
}

void SettingsStoreTest::TheUsersOwnStoreLiesInTheConfigurationFolder()
{
    SettingsStore store;
    store.Write("NT", "True");
    store.Save();
    QVERIFY(QFile::exists(qEnvironmentVariable("XDG_CONFIG_HOME") + "/Tolvane/Tolvane.conf"));
}
#endif

int main(int count, char** words)
{
    const QTemporaryDir configuration;
    qputenv("XDG_CONFIG_HOME", configuration.path().toUtf8());
    QCoreApplication program(count, words);
    SettingsStoreTest test;
    return QTest::qExec(&test, count, words);
}

#include "settings_store_test.moc"
