#pragma once

#include <array>
#include <cstddef>

namespace navrel {

/// The transitions of a state machine: a row for each state and a column for each event, both in
/// the order of their enumerators, which must count from 0. Each cell is the state after the event.
template <typename State, std::size_t States, std::size_t Events>
using TransitionTable = std::array<std::array<State, Events>, States>;

/// The state after an event. Every event has a state after it in every state.
template <typename Event, typename State, std::size_t States, std::size_t Events>
constexpr State stateAfter(const TransitionTable<State, States, Events>& table, State state,
                           Event event) {
    return table[static_cast<std::size_t>(state)][static_cast<std::size_t>(event)];
}

} // namespace navrel
