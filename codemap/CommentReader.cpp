#include "codemap/CommentReader.h"

#include "codemap/Characters.h"
#include "codemap/LineCounter.h"
#include "codemap/OutlineBuilder.h"

#include <array>
#include <cstddef>

namespace navrel {

namespace {

constexpr std::string_view kHeadingWord = "mark";
constexpr std::string_view kShortcutWord = "navrel";

struct NoteWord {
    std::string_view capitals;
    NoteKind kind;
    bool needsColon; ///< an ordinary word, which in capitals alone says nothing
};

constexpr std::array kNoteWords = {
    NoteWord{"TODO", NoteKind::todo, false},      NoteWord{"FIXME", NoteKind::fixme, false},
    NoteWord{"HACK", NoteKind::hack, false},      NoteWord{"XXX", NoteKind::xxx, false},
    NoteWord{"WARNING", NoteKind::warning, true},
};

bool isWordCharacter(char character) {
    return (character >= '0' && character <= '9') || character == '_' ||
           (lowerCase(character) >= 'a' && lowerCase(character) <= 'z') ||
           static_cast<unsigned char>(character) >= 0x80;
}

bool beginsInAnyCase(std::string_view text, std::string_view word) {
    if (text.size() < word.size()) {
        return false;
    }
    for (std::size_t i = 0; i < word.size(); ++i) {
        if (lowerCase(text[i]) != lowerCase(word[i])) {
            return false;
        }
    }
    return true;
}

bool isIn(std::string_view characters, char character) {
    for (const char one : characters) {
        if (one == character) {
            return true;
        }
    }
    return false;
}

std::string_view withoutLeading(std::string_view text, std::string_view characters) {
    while (!text.empty() && isIn(characters, text.front())) {
        text.remove_prefix(1);
    }
    return text;
}

std::string_view withoutLeadingBlanks(std::string_view text) {
    while (!text.empty() && isWhiteSpace(text.front())) {
        text.remove_prefix(1);
    }
    return text;
}

std::string_view withoutTrailingBlanks(std::string_view text) {
    while (!text.empty() && isWhiteSpace(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

/// Without the signs that begin a comment, or a line within one, and the blanks behind.
std::string_view withoutSigns(std::string_view line) {
    line = withoutLeadingBlanks(line);
    if (line.starts_with("//") || line.starts_with("/*")) {
        line.remove_prefix(2);
        line = withoutLeading(line, line.starts_with('/') ? "/" : "*!<");
    } else {
        line = withoutLeading(line, "*");
    }
    return withoutLeadingBlanks(line);
}

/// The text behind a word at the beginning of `text`, where "(…)" may be between the word and its
/// colon.
std::string_view withoutAuthor(std::string_view text) {
    if (!text.starts_with('(')) {
        return text;
    }
    const std::size_t end = text.find(')');
    return end == std::string_view::npos ? text : text.substr(end + 1);
}

/// What one line of a comment says.
class CommentLine {
public:
    CommentLine(std::string_view text, std::size_t offset, LineCounter& lines,
                OutlineBuilder& builder)
        : text_(withoutTrailingBlanks(text)), offset_(offset), lines_(lines), builder_(builder) {}

    void read() {
        if (readBeginning()) {
            return;
        }
        for (std::size_t colon = text_.find(':'); colon != std::string_view::npos;
             colon = text_.find(':', colon + 1)) {
            if (readShortcutAt(colon) || readNoteAt(colon)) {
                return;
            }
        }
    }

private:
    bool readBeginning() {
        const std::string_view said = withoutSigns(text_);
        if (said.empty()) {
            return false;
        }
        switch (lowerCase(said.front())) {
        case 'm':
            return readHeading(said);
        case 't':
        case 'f':
        case 'h':
        case 'x':
        case 'w':
            return readNote(said);
        default:
            return false;
        }
    }

    bool readHeading(std::string_view said) {
        if (!beginsInAnyCase(said, kHeadingWord)) {
            return false;
        }
        std::string_view text = said.substr(kHeadingWord.size());
        if (!text.starts_with(':')) {
            return false;
        }
        text = withoutLeadingBlanks(text.substr(1));
        const bool separator = text.starts_with('-');
        text = withoutLeading(text, "-");
        text = withoutLeadingBlanks(text);
        if (separator || !text.empty()) {
            builder_.addHeading(number(), text, separator);
        }
        return true;
    }

    bool readNote(std::string_view said) {
        for (const NoteWord& word : kNoteWords) {
            if (beginsInAnyCase(said, word.capitals)) {
                return readNote(said, word);
            }
        }
        return false;
    }

    bool readNote(std::string_view said, const NoteWord& word) {
        const std::string_view behind = said.substr(word.capitals.size());
        const std::string_view text = word.needsColon ? behind : withoutAuthor(behind);
        const bool hasColon = withoutLeadingBlanks(text).starts_with(':');
        const bool isAlone = !word.needsColon && said.starts_with(word.capitals) &&
                             (behind.empty() || !isWordCharacter(behind.front()));
        if (!hasColon && !isAlone) {
            return false;
        }
        addNote(word.kind, text);
        return true;
    }

    /// `text` begins behind the word.
    void addNote(NoteKind kind, std::string_view text) {
        builder_.addNote(kind, number(), withoutLeading(text, " \t:-"));
    }

    bool readShortcutAt(std::size_t colon) {
        const std::string_view before = text_.substr(0, colon);
        if (before.size() < kShortcutWord.size() ||
            !beginsInAnyCase(before.substr(before.size() - kShortcutWord.size()), kShortcutWord)) {
            return false;
        }
        std::string_view signs = before.substr(0, before.size() - kShortcutWord.size());
        signs = signs.substr(0, signs.find_last_not_of(' ') + 1);
        const std::string_view text = withoutLeading(text_.substr(colon + 1), " ");
        if (!signs.ends_with("//") || text.empty()) {
            return false;
        }
        builder_.addNote(NoteKind::shortcut, number(), text);
        return true;
    }

    bool readNoteAt(std::size_t colon) {
        const std::string_view before = text_.substr(0, colon);
        for (const NoteWord& word : kNoteWords) {
            if (!before.ends_with(word.capitals)) {
                continue;
            }
            const std::string_view rest = before.substr(0, before.size() - word.capitals.size());
            if (!rest.empty() && isWordCharacter(rest.back())) {
                return false;
            }
            addNote(word.kind, text_.substr(colon));
            return true;
        }
        return false;
    }

    std::uint32_t number() { return lines_.lineAt(offset_); }

    std::string_view text_;
    std::size_t offset_;
    LineCounter& lines_;
    OutlineBuilder& builder_;
};

} // namespace

void readComment(std::string_view comment, std::size_t offset, LineCounter& lines,
                 OutlineBuilder& builder) {
    if (comment.starts_with("/*") && comment.ends_with("*/") && comment.size() >= 4) {
        comment.remove_suffix(2);
    }
    for (;;) {
        const std::size_t end = comment.find('\n');
        CommentLine(comment.substr(0, end), offset, lines, builder).read();
        if (end == std::string_view::npos) {
            return;
        }
        comment.remove_prefix(end + 1);
        offset += end + 1;
    }
}

} // namespace navrel
