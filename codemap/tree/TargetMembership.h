#pragma once

#include "codemap/tree/XcodeProject.h"

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace navrel {

/// Which targets build or copy what. Valid as long as the project is not read again.
class TargetMembership {
public:
    explicit TargetMembership(const XcodeProject& project);

    /// The targets of a file reference or a variant group, in the order of the project.
    std::vector<std::string> targetsOf(std::string_view identifier) const;

    /// The targets of a file in a folder-synchronised group, by its path from there: those that
    /// have the group, without those that except the file, and those that only the exceptions name,
    /// or one of whose build phases they name.
    std::vector<std::string> targetsInFolder(std::string_view group, std::string_view path) const;

private:
    using Value = XcodeProject::Value;
    using Targets = std::vector<std::string_view>; // their identifiers

    struct Exceptions {
        std::string_view target;
        bool isOfPhase = false; ///< names files of one phase instead of the target's as a whole
        std::vector<std::string_view> paths;

        bool hold(std::string_view path) const;
    };
    struct Folder {
        Targets targets;
        std::vector<Exceptions> exceptions;
    };

    void addTarget(std::string_view identifier, Value target);
    void addBuildFiles(std::string_view target, Value phase);
    std::string_view targetOf(Value exceptions) const;
    const Folder& folderOf(std::string_view group) const;
    std::vector<std::string> namesOf(const Targets& targets) const;

    const XcodeProject& project_;
    std::unordered_map<std::string_view, Targets> targets_;
    std::unordered_map<std::string_view, Targets> folderTargets_;
    std::unordered_map<std::string_view, std::string_view> phaseTargets_;
    mutable std::unordered_map<std::string_view, Folder> folders_;
};

} // namespace navrel
