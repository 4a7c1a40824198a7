#pragma once

#include "support/core/TransitionTable.h"

#include <QtGlobal>

namespace navrel {

/// The stages of a stream of the USB daemon's keeper.
enum class KeptStreamStage : quint8 {
    awaitingRequest,  ///< the program has not asked for anything yet
    awaitingReply,    ///< the daemon owes the reply to a request other than "Listen"
    relaying,         ///< the daemon has replied: the bytes of both sides are passed on
    refused,          ///< the daemon ended before it replied: the program got "connection refused"
    listening,        ///< a "Listen" request, with a connection to the daemon
    waitingForDaemon, ///< a "Listen" request, without one
    ended,            ///< to be released
};

/// The events of such a stream.
enum class KeptStreamEvent : quint8 {
    listenRequested, ///< the program asked for "Listen"
    otherRequested,  ///< the program asked for something else
    replied,         ///< the reply to the request has arrived
    daemonReached,   ///< there is a connection to the daemon
    daemonGone,      ///< there is none any more, or none could be made
    over,            ///< nothing more can pass
};

namespace detail {

using enum KeptStreamStage;

// clang-format off
inline constexpr TransitionTable<KeptStreamStage, 7, 6> kKeptStreamTransitions = {{
    // listenRequested   otherRequested    replied           daemonReached     daemonGone        over
    {{waitingForDaemon,  awaitingReply,    awaitingRequest,  awaitingRequest,  awaitingRequest,  ended}},
    {{awaitingReply,     awaitingReply,    relaying,         awaitingReply,    refused,          ended}},
    {{relaying,          relaying,         relaying,         relaying,         relaying,         ended}},
    {{refused,           refused,          refused,          refused,          refused,          ended}},
    {{listening,         listening,        listening,        listening,        waitingForDaemon, ended}},
    {{waitingForDaemon,  waitingForDaemon, waitingForDaemon, listening,        waitingForDaemon, ended}},
    {{ended,             ended,            ended,            ended,            ended,            ended}},
}};
// clang-format on

} // namespace detail

/// The stage after an event. Every event may occur in every stage.
constexpr KeptStreamStage nextKeptStreamStage(KeptStreamStage stage, KeptStreamEvent event) {
    return stateAfter(detail::kKeptStreamTransitions, stage, event);
}

} // namespace navrel
