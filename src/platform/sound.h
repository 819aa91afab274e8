#pragma once

#include <QString>
#include <memory>

/// Plays sound files. Playing goes on beside the program, which never waits for it; a missing library, sound device
/// or file means silence and is no error. User-interface thread.
class SoundPlayer {
public:
    /// `library` stands in for the system's sound library, which is looked for when the first sound is played.
    explicit SoundPlayer(const QString& library = {});
    ~SoundPlayer();
    SoundPlayer(const SoundPlayer&) = delete;
    SoundPlayer& operator=(const SoundPlayer&) = delete;

    /// Begins to play a WAV file; the one before is not cut off.
    void Play(const QString& path);

private:
    class Player;

    std::shared_ptr<Player> Own;
};
