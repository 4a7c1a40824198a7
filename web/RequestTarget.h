#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace navrel {

/// A request's target, taken apart.
struct RequestTarget {
    std::string path; ///< as sent: no route has a character that must be encoded
    std::map<std::string, std::string, std::less<>> parameters; ///< decoded; of several the first

    /// The parameter's value; empty where there is none.
    std::string_view parameter(std::string_view name) const;
    /// The parameter as a number; `otherwise` where there is none, nothing where it is no number.
    std::optional<std::uint64_t> number(std::string_view name, std::uint64_t otherwise) const;
};

/// Nothing for a target that does not begin with a slash, or whose query is no encoded UTF-8.
std::optional<RequestTarget> requestTarget(std::string_view target);

} // namespace navrel
