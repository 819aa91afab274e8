#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>

/// Files of this machine as a transfer needs them. Failures are thrown as std::system_error with the system's number
/// (see error_text.h). One thread at a time.

/// A file that is being read.
class SourceFile {
public:
    explicit SourceFile(const std::filesystem::path& path);
    ~SourceFile();
    SourceFile(const SourceFile&) = delete;
    SourceFile& operator=(const SourceFile&) = delete;

    /// Up to `size` further bytes; 0 at the end.
    std::size_t Read(char* buffer, std::size_t size);

    /// Bytes, when it was opened.
    std::uint64_t Size() const { return Bytes; }

    int Descriptor() const { return File; }

private:
    int File;
    std::uint64_t Bytes = 0;
};

/// A file that is being written beside its target, under a hidden name, and takes the target's place only when it is
/// whole. While it lives and has not taken that place, going away removes it and leaves the target as it was.
class PartFile {
public:
    /// Makes the file in the target's folder. Fails when the target is a folder.
    explicit PartFile(std::filesystem::path target);
    ~PartFile();
    PartFile(const PartFile&) = delete;
    PartFile& operator=(const PartFile&) = delete;

    void Write(const char* bytes, std::size_t size);

    /// Puts the file in its target's place in one step, with the permissions of the file that was there.
    void TakePlace();

    int Descriptor() const { return File; }

private:
    std::filesystem::path Target;
    std::filesystem::path Part;
    int File = -1;
};
