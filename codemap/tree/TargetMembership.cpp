#include "codemap/tree/TargetMembership.h"

#include <algorithm>

namespace navrel {

namespace {

void addOnce(std::string_view target, std::vector<std::string_view>& targets) {
    // A target is often added by several phases in a row, and there are few of them.
    if (std::find(targets.begin(), targets.end(), target) == targets.end()) {
        targets.push_back(target);
    }
}

// Takes files from a target that has the group, and gives them to any other.
constexpr std::string_view kTargetExceptions = "PBXFileSystemSynchronizedBuildFileExceptionSet";
// Puts files into one phase: of a target that has them anyway, or of another one, which then has
// them, too.
constexpr std::string_view kPhaseExceptions =
    "PBXFileSystemSynchronizedGroupBuildPhaseMembershipExceptionSet";

} // namespace

TargetMembership::TargetMembership(const XcodeProject& project) : project_(project) {
    for (const Value identifier : project.project()["targets"].elements()) {
        addTarget(identifier.utf8(), project.object(identifier.utf8()));
    }
}

std::vector<std::string> TargetMembership::targetsOf(std::string_view identifier) const {
    const auto found = targets_.find(identifier);
    return found == targets_.end() ? std::vector<std::string>() : namesOf(found->second);
}

std::vector<std::string> TargetMembership::targetsInFolder(std::string_view group,
                                                           std::string_view path) const {
    const Folder& folder = folderOf(group);
    Targets targets = folder.targets;
    for (const Exceptions& exceptions : folder.exceptions) {
        if (!exceptions.hold(path)) {
            continue;
        }
        const auto member =
            std::find(folder.targets.begin(), folder.targets.end(), exceptions.target);
        if (exceptions.isOfPhase || member == folder.targets.end()) {
            addOnce(exceptions.target, targets);
        } else {
            std::erase(targets, exceptions.target);
        }
    }
    return namesOf(targets);
}

bool TargetMembership::Exceptions::hold(std::string_view path) const {
    return std::any_of(paths.begin(), paths.end(), [path](std::string_view exception) {
        return path.starts_with(exception) &&
               (path.size() == exception.size() || path[exception.size()] == '/');
    });
}

void TargetMembership::addTarget(std::string_view identifier, Value target) {
    for (const Value phase : target["buildPhases"].elements()) {
        phaseTargets_.try_emplace(phase.utf8(), identifier);
        addBuildFiles(identifier, project_.object(phase.utf8()));
    }
    for (const Value group : target["fileSystemSynchronizedGroups"].elements()) {
        addOnce(identifier, folderTargets_[group.utf8()]);
    }
}

void TargetMembership::addBuildFiles(std::string_view target, Value phase) {
    for (const Value file : phase["files"].elements()) {
        const std::string_view reference = project_.object(file.utf8())["fileRef"].utf8();
        if (!reference.empty()) {
            addOnce(target, targets_[reference]);
        }
    }
}

const TargetMembership::Folder& TargetMembership::folderOf(std::string_view group) const {
    const auto [found, isNew] = folders_.try_emplace(group);
    Folder& folder = found->second;
    if (!isNew) {
        return folder;
    }
    if (const auto targets = folderTargets_.find(group); targets != folderTargets_.end()) {
        folder.targets = targets->second;
    }
    for (const Value identifier : project_.object(group)["exceptions"].elements()) {
        const Value set = project_.object(identifier.utf8());
        Exceptions exceptions{targetOf(set), set["isa"].utf8() == kPhaseExceptions, {}};
        if (exceptions.target.empty()) {
            continue;
        }
        for (const Value path : set["membershipExceptions"].elements()) {
            if (!path.utf8().empty()) {
                exceptions.paths.push_back(path.utf8());
            }
        }
        folder.exceptions.push_back(std::move(exceptions));
    }
    // What a target leaves out may be in one of its phases all the same.
    std::stable_partition(folder.exceptions.begin(), folder.exceptions.end(),
                          [](const Exceptions& exceptions) { return !exceptions.isOfPhase; });
    return folder;
}

/// Empty for a set of another kind, or of a phase that no target has.
std::string_view TargetMembership::targetOf(Value exceptions) const {
    const std::string_view isa = exceptions["isa"].utf8();
    if (isa == kPhaseExceptions) {
        const auto found = phaseTargets_.find(exceptions["buildPhase"].utf8());
        return found == phaseTargets_.end() ? std::string_view() : found->second;
    }
    return isa == kTargetExceptions ? exceptions["target"].utf8() : std::string_view();
}

std::vector<std::string> TargetMembership::namesOf(const Targets& targets) const {
    std::vector<std::string> names;
    for (const std::string_view target : targets) {
        const std::string_view name = project_.object(target)["name"].utf8();
        if (!name.empty()) {
            names.emplace_back(name);
        }
    }
    return names;
}

} // namespace navrel
