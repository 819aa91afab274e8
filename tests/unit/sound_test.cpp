#include "platform/places.h"
#include "platform/sound.h"

#include <QDir>
#include <QFile>
#include <QLibrary>
#include <QTemporaryDir>
#include <QTest>
#include <QtEndian>
#include <array>

class SoundTest : public QObject {
    Q_OBJECT

private slots:
    void FilesArePlayedInTurnByTheSoundLibrary();
    void AMissingLibraryIsSilence();
    void ALibraryWithoutTheEntriesIsSilence();
    void AMissingFileIsSilence();
    void TheAlarmIsAShortSoundOfPlainSamples();
    void TheAlarmInTheProgramsFolderComesFirst();
};

namespace {

/// The stand-in for the sound library, as loaded into this program.
class Recording {
public:
    Recording() : Library(RECORDING_SOUNDS)
    {
        Take = reinterpret_cast<void (*)(char*, std::size_t)>(Library.resolve("TakePlayed"));
#ifndef Q_OS_WIN
        Contexts = reinterpret_cast<int (*)()>(Library.resolve("OpenContexts"));
#endif
    }

    QByteArray Played() const
    {
        std::array<char, 4096> text{};
        Take(text.data(), text.size());
        return text.data();
    }

    QLibrary Library;
    void (*Take)(char*, std::size_t) = nullptr;
#ifndef Q_OS_WIN
    int (*Contexts)() = nullptr;
#endif
};

}  // namespace

void SoundTest::FilesArePlayedInTurnByTheSoundLibrary()
{
    const Recording recording;
    QVERIFY(recording.Take != nullptr);
#ifdef Q_OS_WIN
    // There the system would play a sound of its own for a missing file, so it is looked for.
    const QTemporaryDir folder;
    const QString one = folder.filePath("one.wav");
    const QString two = folder.filePath(QString::fromUtf16(u"gr\u00FC two.wav"));
    QVERIFY(QFile::copy(ALARM_FILE, one) && QFile::copy(ALARM_FILE, two));
    SoundPlayer player(RECORDING_SOUNDS);
    player.Play(one);
    player.Play(two);
    player.Play(folder.filePath("missing.wav"));
    QTRY_COMPARE(recording.Played(), (one + '\n' + two + '\n').toUtf8());
#else
    QVERIFY(recording.Contexts != nullptr);
    {
        SoundPlayer player(RECORDING_SOUNDS);
        player.Play("/one.wav");
        player.Play("/a folder/gr" + QString(QChar(0xDCFC)) + ".wav");
        QTRY_COMPARE(recording.Played(), QByteArray("/one.wav\n/a folder/gr\xFC.wav\n"));
        QCOMPARE(recording.Contexts(), 1);
    }
    QTRY_COMPARE(recording.Contexts(), 0);
#endif
}

void SoundTest::AMissingLibraryIsSilence()
{
    SoundPlayer player("libno-such-sounds");
    player.Play(ALARM_FILE);
    player.Play(ALARM_FILE);
}

void SoundTest::ALibraryWithoutTheEntriesIsSilence()
{
#ifdef Q_OS_WIN
    SoundPlayer player("kernel32.dll");
#else
    SoundPlayer player("libc.so.6");
#endif
    player.Play(ALARM_FILE);
}

void SoundTest::AMissingFileIsSilence()
{
    SoundPlayer player;
    player.Play("/nowhere/Alarm.WAV");
}

void SoundTest::TheAlarmIsAShortSoundOfPlainSamples()
{
    QFile file(ALARM_FILE);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    QVERIFY(bytes.size() < 200 * 1024);
    const auto number = [&](qsizetype at, int size) {
        const char* from = bytes.constData() + at;
        return size == 2 ? qFromLittleEndian<quint16>(from) : qFromLittleEndian<quint32>(from);
    };
    QCOMPARE(bytes.left(4), QByteArray("RIFF"));
    QCOMPARE(bytes.mid(8, 8), QByteArray("WAVEfmt "));
    QCOMPARE(number(4, 4), static_cast<quint32>(bytes.size() - 8));
    QCOMPARE(number(20, 2), 1U);   // PCM
    QCOMPARE(number(34, 2), 16U);  // bits
    QCOMPARE(bytes.mid(36, 4), QByteArray("data"));
    const quint32 length = number(40, 4);
    QCOMPARE(length, static_cast<quint32>(bytes.size() - 44));
    const double seconds = static_cast<double>(length) / number(28, 4);
    QVERIFY(seconds > 0.5 && seconds < 4);
    int loudest = 0;
    for (qsizetype at = 44; at < bytes.size(); at += 2)
        loudest = qMax(loudest, qAbs(qFromLittleEndian<qint16>(bytes.constData() + at)));
    QVERIFY(loudest > 16'000);
}

void SoundTest::TheAlarmInTheProgramsFolderComesFirst()
{
    const QTemporaryDir folder;
    const QString own = folder.filePath("Alarm.WAV");
    const QString beside = QCoreApplication::applicationDirPath() + "/Alarm.WAV";
    QFile::remove(beside);
    const auto shipped = [&] { return QDir::fromNativeSeparators(ShippedFile(folder.path(), "Alarm.WAV")); };
    QCOMPARE(shipped(), own);
    QVERIFY(QFile::copy(ALARM_FILE, beside));
    QCOMPARE(shipped(), beside);
    QVERIFY(QFile::copy(ALARM_FILE, own));
    QCOMPARE(shipped(), own);
    QVERIFY(QFile::remove(beside));
}

QTEST_GUILESS_MAIN(SoundTest)
#include "sound_test.moc"
