#include "inet/ftp/operation.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace Ftp {
namespace {

constexpr char Quote = '"';

struct TwoNames {
    std::string First;
    std::optional<std::string> Second;
};

bool IsQuoted(std::string_view text)
{
    return text.size() > 2 && text.front() == Quote && text.back() == Quote;
}

std::string WithoutQuotes(std::string_view text)
{
    return std::string(text.substr(1, text.size() - 2));
}

bool HoldsQuote(std::string_view text)
{
    return text.find(Quote) != std::string_view::npos;
}

/// The half, when the text is twice the same with a blank between.
std::optional<std::string_view> EqualHalf(std::string_view text)
{
    const std::size_t middle = text.size() / 2;
    if (text.size() < 3 || text.size() % 2 == 0 || text[middle] != ' ') return std::nullopt;
    const std::string_view half = text.substr(0, middle);
    return half == text.substr(middle + 1) ? std::optional(half) : std::nullopt;
}

/// "a" "b" with quotes at both ends: there must be one place alone to part it, or none for a single name.
std::optional<TwoNames> FromQuotes(std::string_view text)
{
    constexpr std::string_view Border = "\" \"";
    std::optional<std::size_t> border;
    for (std::size_t at = text.find(Border, 1); at != std::string_view::npos; at = text.find(Border, at + 1)) {
        if (border) return std::nullopt;
        border = at;
    }
    if (!border) return TwoNames{WithoutQuotes(text), std::nullopt};
    const std::string_view first = text.substr(0, *border + 1);
    const std::string_view second = text.substr(*border + 2);
    if (!IsQuoted(first) || !IsQuoted(second)) return std::nullopt;
    return TwoNames{WithoutQuotes(first), WithoutQuotes(second)};
}

/// "a" b, and "a" with nothing behind its blank: a bare name holds no quote, so the last quote closes the first name.
std::optional<TwoNames> FromQuotedAndBare(std::string_view text)
{
    const std::size_t last = text.rfind(Quote);
    const std::string_view first = text.substr(0, last + 1);
    const std::string_view rest = text.substr(last + 1);
    if (!IsQuoted(first) || rest.front() != ' ' || first.find("\" \"", 1) != std::string_view::npos) {
        return std::nullopt;
    }
    TwoNames names{WithoutQuotes(first), std::nullopt};
    if (rest.size() > 1) names.Second = std::string(rest.substr(1));
    return names;
}

/// a b with one blank alone, a, or a and a quoted name.
std::optional<TwoNames> FromBare(std::string_view text)
{
    const std::size_t blank = text.find(' ');
    if (blank == std::string_view::npos) return TwoNames{std::string(text), std::nullopt};
    const std::string_view first = text.substr(0, blank);
    const std::string_view second = text.substr(blank + 1);
    if (first.empty()) return std::nullopt;
    if (second.empty()) return TwoNames{std::string(first), std::nullopt};
    if (second.front() == Quote) {
        if (!IsQuoted(second) || HoldsQuote(first) || HoldsQuote(WithoutQuotes(second))) return std::nullopt;
        return TwoNames{std::string(first), WithoutQuotes(second)};
    }
    if (second.find(' ') != std::string_view::npos) return std::nullopt;
    return TwoNames{std::string(first), std::string(second)};
}

/// The two names of GET and PUT; the second is absent when it is missing or the same.
std::optional<TwoNames> NamePair(std::string_view text)
{
    if (text.empty()) return std::nullopt;
    if (const auto half = EqualHalf(text)) {
        if (half->front() != Quote) return TwoNames{std::string(*half), std::nullopt};
        if (IsQuoted(*half)) return TwoNames{WithoutQuotes(*half), std::nullopt};
        return std::nullopt;
    }
    if (text.front() != Quote) return FromBare(text);
    return IsQuoted(text) ? FromQuotes(text) : FromQuotedAndBare(text);
}

/// The whole rest, outer quotes removed. An opening quote alone leaves in doubt what was meant.
std::optional<std::string> OneName(std::string_view text)
{
    if (IsQuoted(text)) return WithoutQuotes(text);
    if (text.empty() || text.front() == Quote) return std::nullopt;
    return std::string(text);
}

template <typename Command>
std::optional<Operation> WithName(std::string_view rest)
{
    auto name = OneName(rest);
    if (!name) return std::nullopt;
    return Command{std::move(*name)};
}

template <typename Command>
std::optional<Operation> Bare(std::string_view rest)
{
    if (rest.find_first_not_of(' ') != std::string_view::npos) return std::nullopt;
    return Command{};
}

std::optional<Operation> ChangeFolderTo(std::string_view rest)
{
    if (rest.empty()) return std::nullopt;
    return ChangeFolder{std::string(rest)};
}

std::optional<Operation> ReceiveOf(std::string_view rest)
{
    auto names = NamePair(rest);
    if (!names) return std::nullopt;
    Receive receive{names->First, names->First, false};
    if (names->Second) {
        receive.Local = std::move(*names->Second);
        receive.LocalGiven = receive.Local != receive.Remote;
    }
    return receive;
}

std::optional<Operation> SendOf(std::string_view rest)
{
    auto names = NamePair(rest);
    if (!names) return std::nullopt;
    return Send{names->First, names->Second.value_or(names->First)};
}

std::optional<Operation> RenameOf(std::string_view rest)
{
    std::optional<TwoNames> names;
    if (IsQuoted(rest)) {
        names = FromQuotes(rest);
    } else if (!rest.empty()) {
        names = rest.front() == Quote ? FromQuotedAndBare(rest) : FromBare(rest);
    }
    if (!names || !names->Second) return std::nullopt;
    return Rename{std::move(names->First), std::move(*names->Second)};
}

using Reader = std::optional<Operation> (*)(std::string_view rest);

struct Verb {
    std::string_view Name;
    Reader Read;
};

constexpr Verb Verbs[] = {
    {"DIR", Bare<ListFull>},
    {"LS", Bare<ListNames>},
    {"CD", ChangeFolderTo},
    {"CDUP", Bare<FolderUp>},
    {"GET", ReceiveOf},
    {"PUT", SendOf},
    {"DELETE", WithName<Delete>},
    {"RENAME", RenameOf},
    {"MKDIR", WithName<MakeFolder>},
    {"RMDIR", WithName<RemoveFolder>},
    {"SIZE", WithName<Size>},
    {"PWD", Bare<WorkingFolder>},
    {"QUIT", Bare<Close>},
    {"CLOSE", Bare<Close>},
};

bool SameWord(std::string_view word, std::string_view verb)
{
    return std::equal(word.begin(), word.end(), verb.begin(), verb.end(), [](char given, char upper) {
        return (given >= 'a' && given <= 'z' ? static_cast<char>(given - 'a' + 'A') : given) == upper;
    });
}

}  // namespace

std::optional<Operation> ParseOperation(std::string_view text)
{
    const std::size_t blank = text.find(' ');
    const std::string_view word = text.substr(0, blank);
    const std::string_view rest = blank == std::string_view::npos ? std::string_view() : text.substr(blank + 1);
    for (const Verb& verb : Verbs) {
        if (SameWord(word, verb.Name)) return verb.Read(rest);
    }
    return std::nullopt;
}

std::string NamesSent(const Operation& operation)
{
    return std::visit(
        [](const auto& one) -> std::string {
            if constexpr (requires { one.Remote; })
                return one.Remote;
            else if constexpr (requires { one.From; })
                return one.From + one.To;
            else if constexpr (requires { one.Name; })
                return one.Name;
            else
                return {};
        },
        operation);
}

}  // namespace Ftp
