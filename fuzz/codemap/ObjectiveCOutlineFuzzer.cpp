#include "codemap/SourceOutline.h"
#include "fuzz/codemap/OutlineInvariants.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const navrel::Outline outline = navrel::outlineOfCFamily(navrel::Language::objectiveC, text);
    navrel::OutlineInvariants(outline, text).check();
    return 0;
}
