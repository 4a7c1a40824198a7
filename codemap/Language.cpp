#include "codemap/Language.h"

#include "codemap/Characters.h"

#include <algorithm>
#include <array>

namespace navrel {

namespace {

struct Extension {
    std::string_view text;
    Language language;
};

constexpr std::array kExtensions = {
    Extension{"swift", Language::swift},     Extension{"swiftinterface", Language::swift},
    Extension{"m", Language::objectiveC},    Extension{"c", Language::c},
    Extension{"mm", Language::objectiveCpp}, Extension{"cpp", Language::cpp},
    Extension{"cc", Language::cpp},          Extension{"cxx", Language::cpp},
    Extension{"c++", Language::cpp},         Extension{"hpp", Language::cppHeader},
    Extension{"hh", Language::cppHeader},    Extension{"hxx", Language::cppHeader},
    Extension{"h++", Language::cppHeader},   Extension{"ipp", Language::cppHeader},
    Extension{"tpp", Language::cppHeader},   Extension{"inl", Language::cppHeader},
    Extension{"h", Language::header},        Extension{"pch", Language::header},
};

} // namespace

Language languageOfExtension(std::string_view extension) {
    // By C++ compilers' convention; the others have no meaning of their own in capitals.
    if (extension == "C" || extension == "H") {
        return extension == "C" ? Language::cpp : Language::header;
    }
    if (extension == "M") {
        return Language::objectiveCpp;
    }
    const auto isSame = [extension](const Extension& known) {
        return std::equal(known.text.begin(), known.text.end(), extension.begin(), extension.end(),
                          [](char a, char b) { return a == lowerCase(b); });
    };
    const auto found = std::find_if(kExtensions.begin(), kExtensions.end(), isSame);
    return found == kExtensions.end() ? Language::none : found->language;
}

std::string_view nameOf(Language language) {
    switch (language) {
    case Language::none:
        return "";
    case Language::swift:
        return "swift";
    case Language::objectiveC:
        return "objc";
    case Language::c:
        return "c";
    case Language::cpp:
    case Language::cppHeader:
        return "cpp";
    case Language::objectiveCpp:
        return "objcpp";
    case Language::header:
        return "header";
    }
    return "";
}

} // namespace navrel
