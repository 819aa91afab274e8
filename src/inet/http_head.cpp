#include "inet/http_head.h"

#include <boost/beast/core/string.hpp>

namespace {

bool IsSameName(const std::string& left, std::string_view right)
{
    return boost::beast::iequals(left, {right.data(), right.size()});
}

}  // namespace

std::vector<std::string> HttpHead::All(std::string_view name) const
{
    std::vector<std::string> values;
    for (const auto& [one, value] : Fields)
        if (IsSameName(one, name)) values.push_back(value);
    return values;
}

std::string HttpHead::First(std::string_view name) const
{
    const std::vector<std::string> values = All(name);
    return values.empty() ? std::string() : values.front();
}
