#pragma once

#include <QString>

#include <boost/json/object.hpp>
#include <cstdint>
#include <string>

namespace navrel {

/// How a command ends, also as the exit status of the program.
enum class CommandResult {
    done = 0,
    notFound = 1, ///< what was named is not there, or Navrel refused
    usage = 2,    ///< the command was not understood
    noNavrel = 3, ///< no Navrel answers
};

/// What Navrel answered: a view in the shapes of protocol/shapes.schema.json, or why there is none.
struct CodeAnswer {
    CommandResult result = CommandResult::done;
    boost::json::object view;
    QString problem; ///< one sentence
    QString hint;    ///< what to do; may be empty

    bool isView() const { return result == CommandResult::done; }
    static CodeAnswer failure(CommandResult result, QString problem, QString hint = {}) {
        return {result, {}, std::move(problem), std::move(hint)};
    }
};

/// Where the commands have from what they show. Calls block until Navrel has answered. One thread.
class CodeSource {
public:
    virtual ~CodeSource() = default;
    CodeSource(const CodeSource&) = delete;
    CodeSource& operator=(const CodeSource&) = delete;

    /// Whether it knows more than a device is served: symbols, notes, changes, and how opening a
    /// file ended.
    virtual bool hasCodeMap() const = 0;

    virtual CodeAnswer project() = 0; ///< {"folder": …} or {"name": …}
    virtual CodeAnswer version() = 0;
    virtual CodeAnswer tree() = 0;
    virtual CodeAnswer outline(const std::string& file) = 0;
    virtual CodeAnswer types() = 0;
    virtual CodeAnswer shortcuts() = 0; ///< as notes
    virtual CodeAnswer fileTypes() = 0;
    virtual CodeAnswer switchFileType(const std::string& extension, bool allowed) = 0;

    /// `path` as the tree has it; line and column 0 for none. A device's request has no column. The
    /// view: {"outcome": "opened" or "asked", "editor": …}.
    virtual CodeAnswer open(const std::string& file, const std::string& path, std::uint32_t line,
                            std::uint32_t column) = 0;

    virtual CodeAnswer search(const std::string& text) { return missing(text); }
    virtual CodeAnswer notes() { return missing({}); }
    virtual CodeAnswer changes() { return missing({}); }
    virtual CodeAnswer back() { return missing({}); }
    virtual CodeAnswer state() { return missing({}); }
    virtual CodeAnswer pairing() { return missing({}); }
    virtual CodeAnswer devices() { return missing({}); }
    virtual CodeAnswer forget(const std::string& device) { return missing(device); }

protected:
    CodeSource() = default;

private:
    /// Of a source without a code map.
    static CodeAnswer missing(const std::string& argument);
};

} // namespace navrel
