#include "codemap/SourceOutline.h"
#include "codemap/swift/SwiftRecogniser.h"

namespace navrel {

Outline outlineOfSwift(std::string_view text) {
    OutlineBuilder builder(Language::swift, text.size());
    SwiftRecogniser recogniser(text, builder);
    recogniser.run();
    if (recogniser.isBalanced()) {
        return builder.finish(recogniser.lines());
    }
    // One brace too few would make all that follows part of the declaration that lacks it.
    OutlineBuilder secondBuilder(Language::swift, text.size());
    SwiftRecogniser second(text, secondBuilder);
    second.trustIndentation();
    second.run();
    return secondBuilder.finish(second.lines());
}

} // namespace navrel
