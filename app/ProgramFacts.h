#pragma once

#include <QString>

namespace navrel {

/// What is the case with the program and everything around it, before anybody puts it into words.
/// Plain values; a fact that is not known keeps its default. Texts may come from elsewhere: they
/// are shown as plain text, never as markup.
struct ProgramFacts {
    struct Project {
        enum class State { none, unreadable, loading, loaded };
        State state = State::none;
        QString name;
        bool isChosenByEditor = true; ///< Navrel looks for the editor's project by itself
        QString reason;               ///< why it is unreadable: one sentence
        qint64 line = 0;              ///< where it stops being readable, from 1; 0 where unknown
        qint64 files = 0;             ///< found so far, while it is loading
        bool operator==(const Project&) const = default;
    };

    /// The companion app on a device, or in the simulator.
    struct Device {
        enum class State {
            noDaemon, ///< nothing on this machine talks to devices on USB
            absent,
            silent, ///< a device is attached, and nothing listens on its port
            connected,
            refused, ///< a program of another user listens in the simulator's place
        };
        State state = State::absent;
        bool isSimulator = false; ///< where connected: a program of this machine
        QString since;            ///< where connected: the time of day, "14:02"; may be empty
        QString user;             ///< where refused: whose program it is; empty where unknown
        bool operator==(const Device&) const = default;
    };

    struct Editor {
        enum class State {
            notAsked, ///< nobody follows it, and it does not choose the project
            none,
            follows,
            silent,  ///< one is there, and has not answered for a while
            stopped, ///< its process is suspended
        };
        State state = State::notAsked;
        QString name; ///< "Neovim"; empty where unknown
        bool operator==(const Editor&) const = default;
    };

    struct Browsers {
        enum class Reach { nobody, machine, network };
        Reach reach = Reach::nobody;
        QString address; ///< the likeliest; empty while nothing is listened on
        QString problem; ///< one sentence; empty where nothing is amiss
        bool isPlain = false;
        int paired = 0;
        int connected = 0;
        bool operator==(const Browsers&) const = default;
    };

    /// What the project's sources declare.
    struct CodeMap {
        enum class State { none, reading, ready };
        State state = State::none;
        qint64 files = 0;
        qint64 symbols = 0;
        bool isWatched = true; ///< the system reports what changes on disk
        bool operator==(const CodeMap&) const = default;
    };

    struct Update {
        enum class State { off, unreachable, current, other };
        State state = State::off;
        QString version; ///< the other one
        bool operator==(const Update&) const = default;
    };

    Project project;
    Device device;
    Editor editor;
    Browsers browsers;
    CodeMap codeMap;
    Update update;

    bool operator==(const ProgramFacts&) const = default;
};

} // namespace navrel
