#pragma once

#include <optional>
#include <string>
#include <vector>

namespace navrel {

/// What the program says about itself, beside the code map. Plain values, all texts UTF-8, for
/// users to read.
struct ProgramState {
    enum class Editor { none, follows, answersNot };
    enum class Device { absent, attached, connected, noDaemon, refused };

    struct Message {
        enum class Level { info, warning, error };
        Level level = Level::info;
        std::string text; ///< one sentence: what is amiss
        std::string hint; ///< what to do about it; may be empty
        bool operator==(const Message&) const = default;
    };

    /// What one part of the program is up to, in the words that the terminal and the windows use.
    struct Sentence {
        std::string part;  ///< its title: "Project", "Device" …
        std::string level; ///< "good", "idle", "warning" or "error"
        std::string text;
        std::string hint; ///< what to do; may be empty
        bool operator==(const Sentence&) const = default;
    };

    std::string editorName; ///< empty where there is none
    Editor editor = Editor::none;
    Device device = Device::absent;
    std::string deviceReason; ///< one sentence; empty where there is nothing to say
    /// Why no project is chosen: one sentence; empty where one is. A project that cannot be read is
    /// told of by the code map.
    std::string projectReason;
    std::vector<Message> messages;
    std::vector<Sentence> sentences; ///< one for each part

    bool operator==(const ProgramState&) const = default;
};

/// The switch of one file type.
struct FileTypeSwitch {
    std::string extension; ///< without the dot; empty for files without one
    bool allowed = true;
    bool operator==(const FileTypeSwitch&) const = default;
};

} // namespace navrel
