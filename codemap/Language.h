#pragma once

#include <cstdint>
#include <string_view>

namespace navrel {

/// The languages that sources are outlined in. A header may be C, Objective-C or C++: its text
/// decides.
enum class Language : std::uint8_t {
    none,
    swift,
    objectiveC,
    c,
    cpp,
    cppHeader, ///< whose name says so: "hpp"
    objectiveCpp,
    header,
};

/// The language of files with an extension (without the dot, in any letter case): none for what is
/// no source.
Language languageOfExtension(std::string_view extension);

/// As clients see it: "swift", "objc", "c", "cpp", "objcpp" or "header"; empty for none.
std::string_view nameOf(Language language);

} // namespace navrel
