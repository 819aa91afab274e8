#include "base/local_name.h"

#include "base/byte_text.h"

#include <algorithm>
#include <array>

namespace {

/// What the system's own limit of 260 units leaves for a folder, in which a file with a short name must fit.
constexpr qsizetype LongPathLength = 248;

constexpr QStringView Prefix = u"\\\\?\\";
constexpr QStringView NetworkPrefix = u"\\\\?\\UNC\\";

bool IsDevice(const QString& name)
{
    static const std::array<QString, 7> devices{"con", "prn", "aux", "nul", "conin$", "conout$", "clock$"};
    const QString stem = name.section(u'.', 0, 0).trimmed().toLower();
    if (std::find(devices.begin(), devices.end(), stem) != devices.end()) return true;
    // The raised digits count too.
    const bool numbered = stem.size() == 4 && (stem.startsWith(u"com") || stem.startsWith(u"lpt"));
    return numbered && QStringView(u"0123456789\u00B9\u00B2\u00B3").contains(stem.back());
}

}  // namespace

bool IsWindowsFileName(std::string_view name)
{
    const auto refused = [](char byte) {
        return static_cast<unsigned char>(byte) < 0x20 ||
               std::string_view("<>:\"/\\|?*").find(byte) != std::string_view::npos;
    };
    if (name.empty() || name.ends_with('.') || name.ends_with(' ')) return false;
    if (std::any_of(name.begin(), name.end(), refused)) return false;
    return !IsDevice(BytesToText({name.data(), static_cast<qsizetype>(name.size())}));
}

bool IsFileNameHere([[maybe_unused]] std::string_view name)
{
#ifdef _WIN32
    return IsWindowsFileName(name);
#else
    return true;
#endif
}

QString LongForm(const QString& path)
{
    if (path.size() < LongPathLength || path.startsWith(Prefix)) return path;
    QString native = path;
    native.replace(u'/', u'\\');
    if (native.startsWith(u"\\\\")) return NetworkPrefix.toString() + native.mid(2);
    const bool absolute = native[0].isLetter() && native[1] == u':' && native[2] == u'\\';
    return absolute ? Prefix.toString() + native : path;
}

QString ShortForm(const QString& path)
{
    if (path.startsWith(NetworkPrefix)) return QStringLiteral("\\\\") + path.mid(NetworkPrefix.size());
    return path.startsWith(Prefix) ? path.mid(Prefix.size()) : path;
}

std::filesystem::path LocalPath(const std::filesystem::path& folder, std::string_view name)
{
    const QString text = BytesToText({name.data(), static_cast<qsizetype>(name.size())});
    return FilePath(PathText(folder / FilePath(text)));
}

std::string PathBytes(const std::filesystem::path& path)
{
    return TextToBytes(PathText(path)).toStdString();
}
