#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace navrel {

/// Something that happened in a watched folder.
struct FolderEvent {
    enum class Kind : std::uint8_t {
        content,  ///< a file's content or its rights
        names,    ///< a name came, went, or means something else
        isGone,   ///< the folder itself was deleted, renamed or unmounted
        overflow, ///< events were lost: anything may have happened anywhere
    };
    Kind kind{};
    std::string folder; ///< as it was given to `add`
    std::string name;   ///< of what changed, for `content` and `names`
};

/// Has the system say what happens in folders. One thread, but for `wake`.
class FolderWatch {
public:
    virtual ~FolderWatch() = default;

    /// Watches a folder. False where that cannot be, because the system's limit is used up or the
    /// system has nothing like it; a folder that is not there counts as watched.
    virtual bool add(const std::string& folder) = 0;
    virtual void remove(const std::string& folder) = 0;

    /// Waits until something happens or `wake` is called, for at most so long, and gives what
    /// happened so far.
    virtual std::vector<FolderEvent> wait(std::chrono::milliseconds timeout) = 0;

    /// Ends a `wait`, also one that begins later. Any thread.
    virtual void wake() = 0;
};

/// The system's own; one that watches nothing where the system has none.
std::unique_ptr<FolderWatch> makeFolderWatch();
/// One that watches nothing: every `add` is false.
std::unique_ptr<FolderWatch> makeBlindFolderWatch();

} // namespace navrel
