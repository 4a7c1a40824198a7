#include "codemap/SourceOutline.h"
#include "fuzz/codemap/OutlineInvariants.h"

#include <cstddef>
#include <cstdint>

/// The first byte chooses between a source and a header.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using navrel::Language;
    if (size == 0) {
        return 0;
    }
    const std::string_view text(reinterpret_cast<const char*>(data + 1), size - 1);
    const Language language = data[0] % 2 == 0 ? Language::objectiveCpp : Language::header;
    const navrel::Outline outline = navrel::outlineOfCFamily(language, text);
    navrel::OutlineInvariants(outline, text).check();
    return 0;
}
