#pragma once

#include "inet/ftp/failure.h"
#include "platform/local_file.h"

#include <filesystem>
#include <memory>
#include <string>

namespace Ftp {

/// Where received data goes. Failures are thrown as Failure of the kind LocalFile. Transfer thread only.
class Sink {
public:
    virtual ~Sink() = default;

    /// Called once, when the server has agreed to send, before anything is written.
    virtual void Open() = 0;
    virtual void Write(const char* bytes, std::size_t size) = 0;

    /// The data is whole. Without this nothing of it stays.
    virtual void Keep() = 0;

    /// The file behind it, for those who move the bytes past Write; -1 when there is none.
    virtual int Descriptor() const { return -1; }
};

/// Keeps the data in memory, up to a limit.
class MemorySink final : public Sink {
public:
    explicit MemorySink(std::size_t limit) : Limit(limit) {}

    void Open() override { Bytes.clear(); }

    void Write(const char* bytes, std::size_t size) override;

    void Keep() override {}

    std::string Bytes;

private:
    std::size_t Limit;
};

/// Writes a file beside its target and puts it in the target's place when it is whole.
class FileSink final : public Sink {
public:
    explicit FileSink(std::filesystem::path target) : Target(std::move(target)) {}

    void Open() override;
    void Write(const char* bytes, std::size_t size) override;
    void Keep() override;

    int Descriptor() const override { return Part ? Part->Descriptor() : -1; }

private:
    std::filesystem::path Target;
    std::unique_ptr<PartFile> Part;
};

/// The failure of a local file, by the system's error number.
Failure LocalFailure(const std::filesystem::path& path, int error);

}  // namespace Ftp
