#pragma once

#include "codemap/CodeMapSnapshot.h"

#include <vector>

namespace navrel {

/// A file has at most so many counterparts: those farther away are left out.
inline constexpr std::size_t kMostCounterparts = 32;

/// The sources among `nodes` that belong to the same unit as a file. Those with the same name come
/// first ("Foo.h" and "Foo.m", also "Foo.swift"), then those that share what stands before a "+"
/// ("Foo+Drawing.m"); both from the nearest folder to the farthest, then by path.
std::vector<NodeID> counterpartsOf(const MapNode& file, const std::vector<MapNodePtr>& nodes);

} // namespace navrel
