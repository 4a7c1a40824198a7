#include "support/files/HarmlessFile.h"

#include <cstdlib>
#include <memory>
#include <string_view>
#include <strings.h>
#include <sys/stat.h>

namespace navrel {

namespace {

constexpr std::string_view kMenuEntry = ".desktop";

bool isMenuEntry(std::string_view path) {
    return path.size() >= kMenuEntry.size() &&
           ::strncasecmp(path.data() + path.size() - kMenuEntry.size(), kMenuEntry.data(),
                         kMenuEntry.size()) == 0;
}

struct Free {
    void operator()(char* memory) const { std::free(memory); }
};

} // namespace

bool isHarmlessToOpen(const std::string& path) {
    const std::unique_ptr<char, Free> real(::realpath(path.c_str(), nullptr));
    struct stat status = {};
    if (real == nullptr || ::stat(real.get(), &status) != 0) {
        return false;
    }
    return S_ISREG(status.st_mode) && (status.st_mode & (S_IXUSR | S_IXGRP | S_IXOTH)) == 0 &&
           !isMenuEntry(path) && !isMenuEntry(real.get());
}

} // namespace navrel
