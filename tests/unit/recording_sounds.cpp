// A sound library that makes no sound. It has the entries of the system's one, and remembers what it was asked to play.
#include <cstdarg>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <mutex>
#include <string>

namespace {

std::mutex Guard;
std::string Played;
#ifndef _WIN32
int Contexts = 0;
#endif

}  // namespace

extern "C" {

#ifdef _WIN32

int __stdcall sndPlaySoundW(const wchar_t* path, unsigned)
{
    const std::lock_guard lock(Guard);
    const std::u8string text = std::filesystem::path(path).generic_u8string();
    Played.append(text.begin(), text.end());
    Played += '\n';
    return 1;
}

#else

int ca_context_create(void** context)
{
    static int sound = 0;
    const std::lock_guard lock(Guard);
    ++Contexts;
    *context = &sound;
    return 0;
}

int ca_context_destroy(void*)
{
    const std::lock_guard lock(Guard);
    --Contexts;
    return 0;
}

int ca_context_play(void*, std::uint32_t number, ...)
{
    std::va_list values;
    va_start(values, number);
    const std::lock_guard lock(Guard);
    while (const char* key = va_arg(values, const char*)) {
        const char* value = va_arg(values, const char*);
        if (std::strcmp(key, "media.filename") == 0) Played += std::string(value) + '\n';
    }
    va_end(values);
    return 0;
}

int OpenContexts()
{
    const std::lock_guard lock(Guard);
    return Contexts;
}

#endif

void TakePlayed(char* into, std::size_t size)
{
    const std::lock_guard lock(Guard);
    std::strncpy(into, Played.c_str(), size - 1);
    into[size - 1] = '\0';
}
}
