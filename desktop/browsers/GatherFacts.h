#pragma once

#include "app/ProgramFacts.h"
#include "app/StateSentences.h"
#include "codemap/CodeMapSnapshot.h"
#include "web/BrowserAccess.h"
#include "web/ProgramState.h"

#include <vector>

namespace navrel {

class AppDelegate;
class Editor;
class KZDataManager;

/// The parts of the program that have the facts about it. Nothing is owned.
struct FactSources {
    const AppDelegate& delegate;
    KZDataManager& dataManager;
    Editor& editor;
    const CodeMapSnapshot& snapshot;
    const AccessSettings& settings;
    const AccessStatus& access;
    const std::vector<PairedDevice>& devices;
    bool isEditorFollowed = false; ///< a client listens
    bool isMapWatching = true;     ///< CodeMap::isWatching
    std::size_t filesMapped = 0;   ///< CodeMap::filesMapped
};

/// Collects the facts, as last known: asks no editor or device, and never blocks. Main thread.
ProgramFacts gatherFacts(const FactSources& sources);

/// The facts about browsers. Pure.
ProgramFacts::Browsers browserFacts(const AccessSettings& settings, const AccessStatus& access,
                                    const std::vector<PairedDevice>& devices);

/// The facts and their sentences as the server publishes them. Pure.
ProgramState programStateOf(const ProgramFacts& facts);

} // namespace navrel
