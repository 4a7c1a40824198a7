#include "companion/terminal/EditedLines.h"

#include "companion/terminal/TerminalText.h"

#include <QByteArray>
#include <QDir>
#include <QFileInfo>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <histedit.h>
#include <sys/stat.h>
#include <utility>

namespace navrel {

namespace {

constexpr int kHistoryLines = 1000;
/// More candidates than that are only counted.
constexpr qsizetype kMostShown = 100;
constexpr mode_t kOwnFolder = 0700;
constexpr mode_t kOwnFile = 0600;

/// While a line is typed, Ctrl-C gives it up and no more: the call that reads returns.
class InterruptedReads {
public:
    InterruptedReads() {
        struct sigaction action = {};
        action.sa_handler = [](int) {};
        ::sigaction(SIGINT, &action, &former_);
    }
    ~InterruptedReads() { ::sigaction(SIGINT, &former_, nullptr); }
    InterruptedReads(const InterruptedReads&) = delete;
    InterruptedReads& operator=(const InterruptedReads&) = delete;

private:
    struct sigaction former_ = {};
};

void makeFolderOf(const std::string& file) {
    const QString folder = QFileInfo(QString::fromStdString(file)).path();
    QDir().mkpath(QFileInfo(folder).path());
    ::mkdir(QFile::encodeName(folder).constData(), kOwnFolder);
}

} // namespace

std::string historyPath() {
    const char* const state = std::getenv("XDG_STATE_HOME");
    const char* const home = std::getenv("HOME");
    if (state != nullptr && *state == '/') {
        return std::string(state) + "/navrel/companion-history";
    }
    return home == nullptr || *home != '/'
               ? std::string()
               : std::string(home) + "/.local/state/navrel/companion-history";
}

struct EditedLines::Library {
    explicit Library(Settings itsSettings)
        : settings(std::move(itsSettings)), prompt(settings.prompt.toLocal8Bit()),
          editor(::el_init("navrel-companion", stdin, stdout, stderr)), history(::history_init()) {}
    ~Library() {
        ::history_end(history);
        ::el_end(editor);
    }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    void setUp();
    void readHistory();
    void remember(const QString& line);
    unsigned char complete();
    void list(const QStringList& candidates) const;

    static Library& of(EditLine* editor) {
        void* library = nullptr;
        ::el_get(editor, EL_CLIENTDATA, &library);
        return *static_cast<Library*>(library);
    }

    const Settings settings;
    QByteArray prompt;
    EditLine* const editor;
    History* const history;
};

void EditedLines::Library::setUp() {
    using Prompt = char* (*)(EditLine*);
    using Key = unsigned char (*)(EditLine*, int);
    const Prompt showPrompt = [](EditLine* its) { return of(its).prompt.data(); };
    const Key completeLine = [](EditLine* its, int) { return of(its).complete(); };
    ::el_set(editor, EL_CLIENTDATA, this);
    ::el_set(editor, EL_PROMPT, showPrompt);
    ::el_set(editor, EL_EDITOR, "emacs");
    ::el_set(editor, EL_HIST, &::history, history);
    ::el_set(editor, EL_ADDFN, "complete", "Complete the line", completeLine);
    ::el_set(editor, EL_BIND, "^I", "complete", nullptr);
    ::el_set(editor, EL_BIND, "^R", "em-inc-search-prev", nullptr);
}

void EditedLines::Library::readHistory() {
    HistEvent event = {};
    ::history(history, &event, H_SETSIZE, kHistoryLines);
    ::history(history, &event, H_SETUNIQUE, 1);
    if (!settings.historyFile.empty()) {
        ::history(history, &event, H_LOAD, settings.historyFile.c_str());
    }
}

/// A line that begins with a blank is not remembered, as in shells.
void EditedLines::Library::remember(const QString& line) {
    if (line.trimmed().isEmpty() || line.startsWith(u' ')) {
        return;
    }
    HistEvent event = {};
    ::history(history, &event, H_ENTER, line.toLocal8Bit().constData());
    if (settings.historyFile.empty()) {
        return;
    }
    makeFolderOf(settings.historyFile);
    const mode_t former = ::umask(static_cast<mode_t>(~kOwnFile) & 0777);
    ::history(history, &event, H_SAVE, settings.historyFile.c_str());
    ::umask(former);
}

unsigned char EditedLines::Library::complete() {
    const LineInfo* const info = ::el_line(editor);
    const QString line =
        QString::fromLocal8Bit(info->buffer, static_cast<qsizetype>(info->cursor - info->buffer));
    const Completion completion = completionOf(line, settings.words);
    if (completion.candidates.isEmpty()) {
        return CC_REFRESH_BEEP;
    }
    const QString common = completion.common();
    const QString typed = line.sliced(completion.begin);
    if (completion.candidates.size() > 1 && common.size() <= typed.size()) {
        list(completion.candidates);
        return CC_REDISPLAY;
    }
    const bool isFinal = completion.candidates.size() == 1;
    ::el_deletestr(editor, static_cast<int>(typed.toUcs4().size()));
    ::el_insertstr(editor, (isFinal ? common + u' ' : common).toLocal8Bit().constData());
    return CC_REFRESH;
}

void EditedLines::Library::list(const QStringList& candidates) const {
    std::fputc('\n', stdout);
    for (const QString& candidate : candidates.first(std::min(candidates.size(), kMostShown))) {
        std::fprintf(stdout, "  %s\n", TerminalText::harmless(candidate).toLocal8Bit().constData());
    }
    if (candidates.size() > kMostShown) {
        std::fprintf(stdout, "  and %lld more\n",
                     static_cast<long long>(candidates.size() - kMostShown));
    }
}

EditedLines::EditedLines(Settings settings)
    : library_(std::make_unique<Library>(std::move(settings))) {
    library_->setUp();
    library_->readHistory();
}

EditedLines::~EditedLines() = default;

std::optional<QString> EditedLines::next() {
    const InterruptedReads interrupted;
    int count = 0;
    errno = 0;
    const char* const bytes = ::el_gets(library_->editor, &count);
    if (bytes == nullptr && errno == EINTR) {
        ::el_reset(library_->editor);
        std::fputs("^C\n", stdout);
        return QString();
    }
    if (bytes == nullptr || count <= 0) {
        std::fputc('\n', stdout);
        return std::nullopt;
    }
    QString line = QString::fromLocal8Bit(bytes, count);
    line.truncate(line.endsWith(u'\n') ? line.size() - 1 : line.size());
    library_->remember(line);
    return line;
}

} // namespace navrel
