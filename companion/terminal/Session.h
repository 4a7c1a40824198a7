#pragma once

#include "companion/link/OwnerLink.h"
#include "companion/link/WireLink.h"
#include "companion/terminal/Arguments.h"
#include "companion/terminal/CodeSource.h"
#include "companion/terminal/Commands.h"
#include "companion/terminal/Completion.h"
#include "companion/terminal/Output.h"
#include "companion/terminal/TerminalText.h"
#include "companion/terminal/Waiting.h"

#include <QString>

#include <chrono>
#include <memory>

namespace navrel {

/// One run of the companion: finds a Navrel, then runs one command, or those that come from
/// standard input. One thread, which sleeps in the kernel whenever there is nothing to do.
class Session {
public:
    /// `version` is the companion's own.
    Session(Arguments arguments, QString version);

    /// Returns the exit status.
    int run();

private:
    using Seconds = std::chrono::seconds;

    CommandResult runOneCommand();
    template <typename Lines>
    CommandResult runLines(Lines& lines);
    CommandResult runPrompt();
    CommandResult runPlainInput();
    CommandResult printCompletions();

    bool connect(Seconds atMost);
    bool connectToOwner();
    bool listenAsDevice();
    bool waitForConnection(Seconds atMost);
    void waitForProject();
    /// Whether a Navrel is there, waiting for one if need be.
    bool isServed();
    CommandResult refuseWithoutNavrel(Seconds waited);

    void sayWaiting(Wait wait, Seconds passed, Seconds atMost);
    void endWaiting();
    void greet();
    void show(const QString& text) const;
    void complain(const QString& text) const;
    CommandResult follow();
    QString doctor();
    CompletionWords completionWords();
    std::unique_ptr<Commands> makeCommands();

    const Arguments arguments_;
    const QString version_;
    const TerminalTraits traits_;
    const TerminalText text_;
    const OwnerLink owner_;
    WireLink wire_;
    bool isListening_ = false;
    bool isWaitingSaid_ = false;
    std::unique_ptr<CodeSource> source_; ///< null while there is no Navrel
    std::unique_ptr<Commands> commands_;
};

} // namespace navrel
