#include "platform/sound.h"

#include "base/byte_text.h"
#include "platform/detached_thread.h"

#include <QByteArray>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <dlfcn.h>
#include <mutex>

namespace {

/// What is used of the sound library, under the names it gives them.
struct SoundLibrary {
    using Context = void;
    using Create = int (*)(Context**);
    using Play = int (*)(Context*, std::uint32_t, ...);
    using Destroy = int (*)(Context*);

    explicit SoundLibrary(const char* name) : Handle(dlopen(name, RTLD_NOW | RTLD_LOCAL))
    {
        if (Handle == nullptr) return;
        CreateContext = reinterpret_cast<Create>(dlsym(Handle, "ca_context_create"));
        PlayFile = reinterpret_cast<Play>(dlsym(Handle, "ca_context_play"));
        DestroyContext = reinterpret_cast<Destroy>(dlsym(Handle, "ca_context_destroy"));
        if (!IsWhole() || CreateContext(&Sounds) != 0) Sounds = nullptr;
    }

    // The library itself stays: it may have threads of its own that end later.
    ~SoundLibrary()
    {
        if (Sounds != nullptr) DestroyContext(Sounds);
    }

    SoundLibrary(const SoundLibrary&) = delete;
    SoundLibrary& operator=(const SoundLibrary&) = delete;

    bool IsWhole() const { return CreateContext != nullptr && PlayFile != nullptr && DestroyContext != nullptr; }

    void Begin(const char* path) const
    {
        if (Sounds == nullptr) return;
        constexpr const char* NoMore = nullptr;
        PlayFile(Sounds, 0, "media.filename", path, "media.role", "event", "event.description", "Alarm", NoMore);
    }

    void* Handle = nullptr;
    Create CreateContext = nullptr;
    Play PlayFile = nullptr;
    Destroy DestroyContext = nullptr;
    Context* Sounds = nullptr;
};

}  // namespace

/// The thread that talks to the sound library, which may wait for a sound server, and the files it is to play.
class SoundPlayer::Player {
public:
    explicit Player(QByteArray library) : Library(std::move(library)) {}

    void Add(QByteArray path)
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
        const SoundLibrary sounds(Library.constData());
        std::unique_lock lock(Guard);
        for (;;) {
            Changed.wait(lock, [this] { return Ending || !Paths.empty(); });
            if (Ending) return;
            const QByteArray path = std::move(Paths.front());
            Paths.pop_front();
            lock.unlock();
            sounds.Begin(path.constData());
            lock.lock();
        }
    }

    bool Started = false;  ///< of the user-interface thread alone

private:
    QByteArray Library;
    std::mutex Guard;
    std::condition_variable Changed;
    std::deque<QByteArray> Paths;
    bool Ending = false;
};

SoundPlayer::SoundPlayer(const QString& library)
    : Own(std::make_shared<Player>(library.isEmpty() ? "libcanberra.so.0" : TextToBytes(library)))
{
}

SoundPlayer::~SoundPlayer()
{
    Own->End();
}

// The thread keeps what it works with, so that a sound server that does not answer cannot hold up the program's end.
void SoundPlayer::Play(const QString& path)
{
    Own->Add(TextToBytes(path));
    if (Own->Started) return;
    Own->Started = true;
    RunDetached([player = Own] { player->Run(); });
}
