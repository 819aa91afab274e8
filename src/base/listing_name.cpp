#include "base/listing_name.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

namespace {

using Name = std::optional<std::string>;

/// A column: a run without blanks. Where it ends in the line matters as much as its text.
struct Column {
    std::string_view Text;
    std::size_t End = 0;
};

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool IsNumber(std::string_view text)
{
    return !text.empty() && std::all_of(text.begin(), text.end(), IsDigit);
}

bool HoldsControl(std::string_view text)
{
    return std::any_of(text.begin(), text.end(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7f; });
}

/// The text has the pattern's length; '9' stands for a digit, everything else for itself.
bool Fits(std::string_view text, std::string_view pattern)
{
    return std::equal(text.begin(), text.end(), pattern.begin(), pattern.end(),
                      [](char c, char wanted) { return wanted == '9' ? IsDigit(c) : c == wanted; });
}

/// The first columns of a line: more than stand in front of any name.
std::vector<Column> Columns(std::string_view line)
{
    constexpr std::size_t Most = 20;
    std::vector<Column> columns;
    std::size_t at = line.find_first_not_of(' ');
    while (at != std::string_view::npos && columns.size() < Most) {
        const std::size_t end = std::min(line.find(' ', at), line.size());
        columns.push_back({line.substr(at, end - at), end});
        at = line.find_first_not_of(' ', end);
    }
    return columns;
}

/// An entry's name is one component; what holds a slash is a path, and nobody knows relative to what.
Name Checked(std::string_view name)
{
    if (name.empty() || HoldsControl(name) || name.find('/') != std::string_view::npos) return std::nullopt;
    return std::string(name);
}

/// What stands behind the column that ends there and one blank.
std::string_view Behind(std::string_view line, std::size_t end)
{
    return end < line.size() ? line.substr(end + 1) : std::string_view();
}

// The long form of Unix systems.

bool IsPermissions(std::string_view text)
{
    constexpr std::size_t Length = 10;
    if (text.size() < Length || text.size() > Length + 1) return false;
    if (text.size() > Length && std::string_view("+.@").find(text.back()) == std::string_view::npos) return false;
    return std::string_view("-dlbcpsD").find(text.front()) != std::string_view::npos &&
           text.substr(1, Length - 1).find_first_not_of("rwxsStTlL-") == std::string_view::npos;
}

bool IsMonth(std::string_view text)
{
    constexpr std::array<std::string_view, 12> Months = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                         "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    return std::find(Months.begin(), Months.end(), text) != Months.end();
}

bool IsDay(std::string_view text)
{
    if (!Fits(text, "9") && !Fits(text, "99")) return false;
    const int day = text.size() == 1 ? text[0] - '0' : (text[0] - '0') * 10 + (text[1] - '0');
    return day >= 1 && day <= 31;
}

bool IsTime(std::string_view text)
{
    return Fits(text, "9:99") || Fits(text, "99:99");
}

bool IsTimeOrYear(std::string_view text)
{
    return IsTime(text) || (Fits(text, "9999") && (text[0] == '1' || text[0] == '2'));
}

bool IsFullTime(std::string_view text)
{
    constexpr std::size_t Whole = 9;  // "10:22:33."
    return text.size() > Whole && Fits(text.substr(0, Whole), "99:99:99.") && IsNumber(text.substr(Whole));
}

bool IsZone(std::string_view text)
{
    return Fits(text, "+9999") || Fits(text, "-9999");
}

/// How many columns the date takes that begins there; 0 when none does.
std::size_t DateLength(const std::vector<Column>& columns, std::size_t at)
{
    const auto text = [&](std::size_t i) {
        return at + i < columns.size() ? columns[at + i].Text : std::string_view();
    };
    if (IsMonth(text(0)) && IsDay(text(1)) && IsTimeOrYear(text(2))) return 3;
    if (!Fits(text(0), "9999-99-99")) return 0;
    if (IsTime(text(1))) return 2;
    return IsFullTime(text(1)) && IsZone(text(2)) ? 3 : 0;
}

/// How many columns the size takes that ends in front of there, device numbers ("8, 0") included; 0 when none does.
std::size_t SizeLength(const std::vector<Column>& columns, std::size_t end, bool isDevice)
{
    const std::string_view last = columns[end - 1].Text;
    if (isDevice) {
        const std::string_view before = columns[end - 2].Text;
        if (IsNumber(last) && before.ends_with(',') && IsNumber(before.substr(0, before.size() - 1))) return 2;
        const std::size_t comma = last.find(',');
        if (comma != std::string_view::npos) {
            return IsNumber(last.substr(0, comma)) && IsNumber(last.substr(comma + 1)) ? 1 : 0;
        }
    }
    return IsNumber(last) ? 1 : 0;
}

/// The name of a link: there must be one arrow at most, as nobody could say which of several is the real one.
Name LinkName(std::string_view text)
{
    constexpr std::string_view Arrow = " -> ";
    const std::size_t arrow = text.find(Arrow);
    if (arrow == std::string_view::npos) return Checked(text);
    const bool isTargetEmpty = arrow + Arrow.size() == text.size();
    if (isTargetEmpty || text.find(Arrow, arrow + 1) != std::string_view::npos || HoldsControl(text)) {
        return std::nullopt;
    }
    return Checked(text.substr(0, arrow));
}

/// The first date in the line is the entry's, since only the link count, owner and group stand before its size.
Name UnixName(std::string_view line)
{
    const std::vector<Column> columns = Columns(line);
    if (columns.empty() || !line.starts_with(columns.front().Text) || !IsPermissions(columns.front().Text)) {
        return std::nullopt;
    }
    const char kind = line.front();
    for (std::size_t at = 2; at < columns.size(); ++at) {
        const std::size_t length = DateLength(columns, at);
        if (length == 0) continue;
        const std::size_t size = SizeLength(columns, at, kind == 'b' || kind == 'c');
        // Between permissions and size there is one column at least.
        if (size == 0 || at - size < 2) return std::nullopt;
        const std::string_view name = Behind(line, columns[at + length - 1].End);
        return kind == 'l' ? LinkName(name) : Checked(name);
    }
    return std::nullopt;
}

// The form of DOS.

bool IsDosDate(std::string_view text)
{
    return Fits(text, "99-99-99") || Fits(text, "99-99-9999") || Fits(text, "9999-99-99") || Fits(text, "99/99/99") ||
           Fits(text, "99/99/9999");
}

bool IsHalfDay(std::string_view text)
{
    return text == "AM" || text == "PM" || text == "am" || text == "pm";
}

bool IsDosTime(std::string_view text)
{
    return IsTime(text) ||
           (text.size() > 2 && IsTime(text.substr(0, text.size() - 2)) && IsHalfDay(text.substr(text.size() - 2)));
}

/// Ten blanks stand between the folder mark and the name; fewer are another server's padding.
std::string_view BehindFolderMark(std::string_view line, std::size_t end)
{
    constexpr std::size_t Padding = 10;
    const std::size_t name = line.find_first_not_of(' ', end);
    if (name == std::string_view::npos || name > end + Padding) return {};
    return line.substr(name);
}

Name DosName(std::string_view line)
{
    const std::vector<Column> columns = Columns(line);
    if (columns.size() < 4 || line.front() == ' ' || !IsDosDate(columns[0].Text) || !IsDosTime(columns[1].Text)) {
        return std::nullopt;
    }
    const std::size_t at = IsTime(columns[1].Text) && IsHalfDay(columns[2].Text) ? 3 : 2;
    const Column& size = columns[at];
    const bool isFolder = size.Text == "<DIR>";
    if (!isFolder && !IsNumber(size.Text)) return std::nullopt;
    const std::string_view name = isFolder ? BehindFolderMark(line, size.End) : Behind(line, size.End);
    if (name.find('\\') != std::string_view::npos) return std::nullopt;
    return Checked(name);
}

// Easily parsed LIST format.

Name EplfName(std::string_view line)
{
    const std::size_t tab = line.find('\t');
    if (!line.starts_with('+') || tab == std::string_view::npos) return std::nullopt;
    const std::string_view facts = line.substr(1, tab - 1);
    if (HoldsControl(facts) || (!facts.empty() && facts.back() != ',')) return std::nullopt;
    return Checked(line.substr(tab + 1));
}

}  // namespace

std::optional<std::string> NameInListingLine(std::string_view line)
{
    if (line.ends_with('\r')) line.remove_suffix(1);
    if (line.empty()) return std::nullopt;
    if (line.front() == '+') return EplfName(line);
    return IsDigit(line.front()) ? DosName(line) : UnixName(line);
}
