#include "dialogs/picture_file.h"

#include "base/byte_text.h"

#include <QImageReader>
#include <algorithm>
#include <filesystem>

#ifdef Q_OS_WIN
#include <fcntl.h>
#include <io.h>
#include <windows.h>
#else
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace {

constexpr qint64 MaxCost = qint64{224} << 20;

LoadedPicture Refused(PictureFault fault)
{
    LoadedPicture picture;
    picture.Fault = fault;
    return picture;
}

LoadedPicture Sized(const QSize& size, const QSize& room, qreal ratio)
{
    LoadedPicture picture;
    picture.Shown = FitInto(size, room);
    picture.Pixels = (QSizeF(picture.Shown) * ratio).toSize().boundedTo(size);
    return picture;
}

}  // namespace

QSize FitInto(const QSize& picture, const QSize& room)
{
    if (picture.width() <= room.width() && picture.height() <= room.height()) return picture;
    return picture.scaled(room, Qt::KeepAspectRatio).expandedTo({1, 1});
}

#ifdef Q_OS_WIN

// By a descriptor, as a film begins anew from a device without a name only, and so that the file can be erased
// meanwhile.
bool OpenPicture(QFile& file, const QString& name)
{
    constexpr DWORD EveryOtherUse = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const HANDLE handle =
        CreateFileW(FilePath(name).c_str(), GENERIC_READ, EveryOtherUse, nullptr, OPEN_EXISTING, 0, nullptr);
    if (handle == INVALID_HANDLE_VALUE) return false;
    const bool onDisk = GetFileType(handle) == FILE_TYPE_DISK;
    const int descriptor =
        onDisk ? _open_osfhandle(reinterpret_cast<intptr_t>(handle), _O_RDONLY | _O_BINARY | _O_NOINHERIT) : -1;
    if (descriptor < 0) {
        CloseHandle(handle);
        return false;
    }
    if (file.open(descriptor, QIODevice::ReadOnly, QFile::AutoCloseHandle)) return true;
    _close(descriptor);
    return false;
}

#else

// A pipe or a device is never waited for.
bool OpenPicture(QFile& file, const QString& name)
{
    const int handle = open(FilePath(name).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (handle < 0) return false;
    struct stat found = {};
    if (fstat(handle, &found) == 0 && S_ISREG(found.st_mode) &&
        file.open(handle, QIODevice::ReadOnly, QFile::AutoCloseHandle))
        return true;
    close(handle);
    return false;
}

#endif

LoadedPicture LoadPicture(const QString& name, const QSize& room, qreal ratio)
{
    QFile file;
    if (!OpenPicture(file, name)) return Refused(PictureFault::Unreadable);
    const PictureFacts facts = ReadPictureFacts(file);
    if (facts.Fault != PictureFault::None) return Refused(facts.Fault);

    file.seek(0);
    QImageReader reader(&file, facts.Format);
    reader.setAutoTransform(true);
    const bool turned = reader.transformation().testFlag(QImageIOHandler::TransformationRotate90);
    LoadedPicture picture = Sized(turned ? facts.Size.transposed() : facts.Size, room, ratio);
    if (DecodingCost(facts, picture.Pixels) > MaxCost) return Refused(PictureFault::TooLarge);
    if (facts.Frames > 1) {
        picture.Moving = true;
        return picture;
    }
    if (facts.Index > 0) reader.jumpToImage(facts.Index);
    const QSize pixels = turned ? picture.Pixels.transposed() : picture.Pixels;
    if (pixels != facts.Size) reader.setScaledSize(pixels);
    picture.Still = reader.read();
    return picture.Still.isNull() ? Refused(PictureFault::NoPicture) : picture;
}
