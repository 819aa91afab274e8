#include "platform/sound.h"

#include "base/byte_text.h"
#include "platform/detached_thread.h"

#include <condition_variable>
#include <deque>
#include <filesystem>
#include <mutex>
#include <string>
#include <system_error>
#include <utility>
#include <windows.h>

namespace {

constexpr unsigned PlayFlags = 128;

using PlaySoundEntry = BOOL(WINAPI*)(LPCWSTR, UINT);

// The library stays loaded: it may have threads of its own that end later.
PlaySoundEntry EntryOf(const std::wstring& library)
{
    const HMODULE module = LoadLibraryW(library.c_str());
    if (module == nullptr) return nullptr;
    return reinterpret_cast<PlaySoundEntry>(reinterpret_cast<void*>(GetProcAddress(module, "sndPlaySoundW")));
}

}  // namespace

/// The thread that waits while a sound is played, and the files it is to play.
class SoundPlayer::Player {
public:
    explicit Player(std::wstring library) : Library(std::move(library)) {}

    void Add(std::filesystem::path path)
    {
        const std::lock_guard lock(Guard);
        Paths.push_back(std::move(path));
        Changed.notify_one();
    }

    void End()
    {
        const std::lock_guard lock(Guard);
        Ending = true;
        Changed.notify_one();
    }

    void Run()
    {
        const PlaySoundEntry play = EntryOf(Library);
        std::unique_lock lock(Guard);
        for (;;) {
            Changed.wait(lock, [this] { return Ending || !Paths.empty(); });
            if (Ending) return;
            const std::filesystem::path path = std::move(Paths.front());
            Paths.pop_front();
            lock.unlock();
            // For a missing file the system would play a sound of its own.
            std::error_code failure;
            if (play != nullptr && std::filesystem::is_regular_file(path, failure)) play(path.c_str(), PlayFlags);
            lock.lock();
        }
    }

    bool Started = false;  ///< of the user-interface thread alone

private:
    std::wstring Library;
    std::mutex Guard;
    std::condition_variable Changed;
    std::deque<std::filesystem::path> Paths;
    bool Ending = false;
};

SoundPlayer::SoundPlayer(const QString& library)
    : Own(std::make_shared<Player>(library.isEmpty() ? L"winmm.dll" : library.toStdWString()))
{
}

SoundPlayer::~SoundPlayer()
{
    Own->End();
}

// The thread keeps what it works with, so that a sound that is being played cannot hold up the program's end.
void SoundPlayer::Play(const QString& path)
{
    Own->Add(FilePath(path));
    if (Own->Started) return;
    Own->Started = true;
    RunDetached([player = Own] { player->Run(); });
}
