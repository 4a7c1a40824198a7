#include "bench/codemap/SourceTexts.h"

#include <array>
#include <random>

namespace navrel::bench {

namespace {

constexpr unsigned kSeed = 20240607;

/// Writes one source after another. A method has some ten statements, a type some fifteen members,
/// and a file about 10 kB.
class SwiftWriter {
public:
    std::string file(const std::string& name) {
        text_ =
            "//\n//  " + name + ".swift\n//  Tidewatch\n//\n\nimport Foundation\nimport UIKit\n";
        type("final class " + name + ": " + word(true) + ", " + word(true));
        type("struct " + word(true) + ": Codable");
        text_ += "\nenum " + word(true) + ": String, CaseIterable {\n";
        for (unsigned count = 2 + choice(6); count > 0; --count) {
            text_ += "    case " + word() + " = \"" + word() + "\"\n";
        }
        text_ += "}\n";
        type("extension " + name);
        return std::move(text_);
    }

private:
    void type(const std::string& head) {
        text_ += "\n/// " + sentence() + "\n" + head + " {\n";
        for (unsigned count = 2 + choice(6); count > 0; --count) {
            property();
        }
        text_ += "\n    // MARK: - " + word(true) + "\n";
        for (unsigned count = 3 + choice(8); count > 0; --count) {
            method();
        }
        text_ += "}\n";
    }

    void property() {
        switch (choice(4)) {
        case 0:
            text_ += "    private let " + word() + ": " + word(true) + "\n";
            break;
        case 1:
            text_ += "    @Published private(set) var " + word() + " = " + word(true) + "()\n";
            break;
        case 2:
            text_ += "    var " + word() + ": [" + word(true) + "]? = nil {\n        didSet {\n";
            text_ += "            " + word() + "()\n        }\n    }\n";
            break;
        default:
            text_ += "    var " + word() + ": Bool {\n        return " + word() + " == ." + word() +
                     "\n    }\n";
        }
    }

    void method() {
        text_ += "\n    /// " + sentence() + "\n    /// - Parameter " + word() + ": " + sentence() +
                 "\n    func " + word() + "(" + word() + " " + word() + ": " + word(true) + ", " +
                 word() + ": Int = 0) throws -> " + word(true) + "? {\n";
        for (unsigned count = 4 + choice(14); count > 0; --count) {
            statement();
        }
        text_ += "        return nil\n    }\n";
    }

    void statement() {
        switch (choice(7)) {
        case 0:
            text_ += "        // " + sentence() + "\n";
            break;
        case 1:
            text_ += "        guard let " + word() + " = " + word() + "?." + word() +
                     " else { return nil }\n";
            break;
        case 2:
            text_ += "        if " + word() + " != nil, " + word() + ".isEmpty {\n            " +
                     word() + "." + word() + " = " + word() + "[0]\n        }\n";
            break;
        case 3:
            text_ += "        print(\"" + sentence() + " \\(" + word() + "." + word() + ")\")\n";
            break;
        case 4:
            text_ += "        let " + word() + " = " + word() + "." + word() + "(" + word() + ": " +
                     word() + ", " + word() + ": 12)\n";
            break;
        case 5:
            text_ += "        " + word() + ".forEach { [weak self] " + word() +
                     " in\n            self?." + word() + "(" + word() + ")\n        }\n\n";
            break;
        default:
            text_ += "        " + word() + " = " + word() + " * 2 + " + word() + " / 3\n";
        }
    }

    std::string sentence() {
        std::string text = word();
        for (unsigned count = 4 + choice(8); count > 0; --count) {
            text += " " + word();
        }
        return text;
    }

    std::string word(bool isType = false) {
        static constexpr std::array kWords = {
            "session", "view", "tableController", "index",     "name",        "harbour",
            "current", "path", "stationKey",      "updateAll", "size",        "didChange",
            "buffer",  "tide", "lastModified",    "theme",     "preferences", "window"};
        std::string text = kWords[choice(kWords.size())];
        text[0] = isType ? static_cast<char>(text[0] - 'a' + 'A') : text[0];
        return text;
    }

    unsigned choice(std::size_t count) { return static_cast<unsigned>(random_() % count); }

    std::mt19937 random_{kSeed};
    std::string text_;
};

} // namespace

SourceTexts swiftTexts() {
    SourceTexts made;
    SwiftWriter writer;
    for (int number = 0; made.size < kTextsSize; ++number) {
        made.add(Language::swift, writer.file("Source" + std::to_string(number)));
    }
    return made;
}

} // namespace navrel::bench
