#include "session/download_file.h"

#include "base/byte_text.h"
#include "base/local_name.h"
#include "base/run_time_error.h"
#include "platform/file_facts.h"

#include <QCoreApplication>
#include <algorithm>
#include <fstream>
#include <system_error>
#include <vector>

namespace fs = std::filesystem;

namespace {

constexpr std::size_t PieceSize = std::size_t{1024} * 1024;

[[noreturn]] void Refuse(const std::string& reason)
{
    throw RuntimeError(QString::fromStdString(reason));
}

void ThrowIf(const std::error_code& failure)
{
    if (failure) Refuse(failure.message());
}

std::uint64_t SizeOf(const fs::path& file)
{
    return FactsOf(PathText(file)).Bytes;
}

/// Copies what the old file holds from the length of the new one on.
void AppendTail(const fs::path& file, const fs::path& old, const std::atomic<bool>& stop)
{
    std::ifstream from(old, std::ios::binary);
    if (!from) Refuse(std::generic_category().message(errno));
    from.seekg(static_cast<std::streamoff>(SizeOf(file)));
    std::ofstream to(file, std::ios::binary | std::ios::app);
    std::vector<char> piece(PieceSize);
    while (from && to && !stop) {
        from.read(piece.data(), PieceSize);
        to.write(piece.data(), from.gcount());
    }
    const bool wasRead = from.eof();
    to.close();
    if (stop) Refuse("the program ends");
    if (!to) Refuse(std::generic_category().message(errno));
    if (!wasRead) Refuse("the old file cannot be read");
}

void TakePlace(const fs::path& file, const fs::path& target, const std::atomic<bool>& stop)
{
    std::error_code failure;
    if (const EntryKind old = KindOf(PathText(target)); old != EntryKind::None) {
        if (old != EntryKind::File) Refuse("something else has this name");
        // A file that may not be written to is not replaced either.
        if (!std::ofstream(target, std::ios::binary | std::ios::in)) Refuse(std::generic_category().message(errno));
        if (SizeOf(target) > SizeOf(file)) AppendTail(file, target, stop);
        const fs::file_status status = fs::status(target, failure);
        if (fs::exists(status)) fs::permissions(file, status.permissions(), failure);
    }
    fs::rename(file, target, failure);
    ThrowIf(failure);
}

}  // namespace

bool IsFileName(const QString& name)
{
    const auto unfit = [](QChar sign) { return sign < u' ' || sign == u'\x7F' || sign == u'/'; };
    return !name.isEmpty() && name != u"." && name != u".." && std::none_of(name.begin(), name.end(), unfit) &&
           IsFileNameHere(TextToBytes(name).toStdString());
}

QString HiddenFile(const QString& folder)
{
    static std::atomic<unsigned> number = 0;
    return folder + QString("/.tolvane-%1-%2.download").arg(QCoreApplication::applicationPid()).arg(++number);
}

QString TakeOver(const QString& hidden)
{
    const QString own = HiddenFile(hidden.left(hidden.lastIndexOf(u'/')));
    std::error_code failure;
    fs::rename(FilePath(hidden), FilePath(own), failure);
    return failure ? QString() : own;
}

void Discard(const QString& hidden)
{
    try {
        EraseFile(hidden);
    } catch (const RuntimeError&) {
        // It is not there, or it stays.
    }
}

QString LayOver(const QString& hidden, const QString& target, const std::atomic<bool>& stop)
{
    try {
        TakePlace(FilePath(hidden), FilePath(target), stop);
        return {};
    } catch (const RuntimeError& error) {
        Discard(hidden);
        return "The file " + target + " cannot be written: " + error.Description + '.';
    }
}
