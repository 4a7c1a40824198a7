#pragma once

#include <array>
#include <cstddef>

namespace navrel {

/// The transitions of a state machine: a row for each state and a column for each event, both in
/// the order of their enumerators, which count from 0. What stands there is the state after it.
template <typename State, std::size_t States, std::size_t Events>
using TransitionTable = std::array<std::array<State, Events>, States>;

/// The state after an event. Every event may come in every state.
template <typename Event, typename State, std::size_t States, std::size_t Events>
constexpr State stateAfter(const TransitionTable<State, States, Events>& table, State state,
                           Event event) {
    return table[static_cast<std::size_t>(state)][static_cast<std::size_t>(event)];
}

} // namespace navrel
