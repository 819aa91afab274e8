#include "support/test_files.h"

#include "base/byte_text.h"

#include <QFile>
#include <QRandomGenerator>
#include <QtTest>
#include <cstdio>
#include <cstring>
#include <filesystem>
#ifdef Q_OS_WIN
#include <windows.h>
#endif

namespace {

/// The toolkit's own files know no name that is not UTF-8.
std::FILE* OpenByteTrue(const QString& path, const char* mode)
{
#ifdef Q_OS_WIN
    return _wfopen(FilePath(path).c_str(), QString::fromLatin1(mode).toStdWString().c_str());
#else
    return std::fopen(FilePath(path).c_str(), mode);
#endif
}

}  // namespace

QByteArray Pattern(qint64 size, quint32 seed)
{
    QByteArray bytes(size, Qt::Uninitialized);
    QRandomGenerator random(seed);
    qint64 at = 0;
    for (; at + 4 <= size; at += 4) {
        const quint32 value = random.generate();
        memcpy(bytes.data() + at, &value, 4);
    }
    for (; at < size; ++at) bytes[at] = static_cast<char>(random.generate());
    return bytes;
}

void Write(const QString& path, const QByteArray& bytes)
{
    QFile file;
    file.setFileName(path);
    std::FILE* handle = OpenByteTrue(path, "wb");
    QVERIFY2(handle != nullptr, qPrintable(path));
    QVERIFY(file.open(handle, QIODevice::WriteOnly, QFileDevice::AutoCloseHandle));
    QCOMPARE(file.write(bytes), bytes.size());
}

QByteArray Read(const QString& path)
{
    QFile file;
    std::FILE* handle = OpenByteTrue(path, "rb");
    if (handle == nullptr || !file.open(handle, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle)) return "(none)";
    return file.readAll();
}

bool Exists(const QString& path)
{
#ifdef Q_OS_WIN
    return GetFileAttributesW(FilePath(path).c_str()) != INVALID_FILE_ATTRIBUTES;
#else
    return std::filesystem::exists(FilePath(path));
#endif
}

void MakeSparse(const QString& path, qint64 size)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(file.resize(size));
}
