"""The files of a project as its rules say, found without the program: an independent reading.

A file is (names from the root down, shown path, whether it is missing, targets)."""

import os
import posixpath
import re
import xml.etree.ElementTree as ElementTree

import property_list

# Folders that are shown as one thing.
_BUNDLES = {
    "app", "appex", "bundle", "framework", "kext", "nib", "playground", "scnassets", "xcassets", "xcdatamodel",
    "xcdatamodeld", "xcframework", "xcodeproj", "xctest", "xcworkspace", "xpc",
}
_PACKAGE_FOLDERS = ("Plugins", "Source", "Sources", "Tests", "src", "srcs")
_FOLDER_TYPES = ("", "folder", "text", "wrapper")


def _extension(path):
    return os.path.splitext(path)[1][1:]


def _is_folder(path):
    return os.path.isdir(path) and _extension(path) not in _BUNDLES


def _join(base, path):
    return posixpath.normpath(posixpath.join(base, path or "."))


def _key(path):
    status = os.stat(path)
    return status.st_dev, status.st_ino


class Tree:
    def __init__(self, bundle):
        self.top = os.path.dirname(bundle)
        self.files = []
        self.opened = set()
        self.packages = set()
        if bundle.endswith(".xcworkspace"):
            self._workspace(bundle)
        else:
            self._project([], bundle)

    def shown(self, path):
        inside = path.startswith(self.top + "/")
        return path[len(self.top) + 1 :] if inside else "/".join(path.split("/")[-2:])

    def add(self, names, path, targets=()):
        self.files.append(("/".join(names), self.shown(path), not os.path.exists(path), tuple(targets)))

    def walk(self, names, folder, targets_of, before="", outer=()):
        outer = outer + (_key(folder),)
        for entry in sorted(os.listdir(folder), key=lambda name: (name.lower(), name)):
            path = f"{folder}/{entry}"
            if entry.startswith("."):
                continue
            if _is_folder(path):
                if _key(path) not in outer:
                    self.walk(names + [entry], path, targets_of, f"{before}{entry}/", outer)
            elif os.path.isfile(path) or os.path.isdir(path):
                self.add(names + [entry], path, targets_of(before + entry))

    def package(self, names, folder):
        if folder in self.packages or not os.path.isdir(folder):
            return
        self.packages.add(folder)
        with open(f"{folder}/Package.swift", encoding="utf-8") as file:
            paths = [_join(folder, path) for path in re.findall(r'\bpath:\s*"([^"]+)"', file.read())]
        self.add(names + ["Package.swift"], f"{folder}/Package.swift")
        parts = {path[len(folder) + 1 :] for path in paths if path.startswith(folder + "/") and os.path.isdir(path)}
        parts |= {part for part in _PACKAGE_FOLDERS if os.path.isdir(f"{folder}/{part}")}
        for part in sorted(parts):
            if not any(part.startswith(other + "/") for other in parts):
                self.walk(names + [part], f"{folder}/{part}", lambda _: ())

    def _project(self, names, bundle):
        if bundle not in self.opened and os.path.isfile(f"{bundle}/project.pbxproj"):
            self.opened.add(bundle)
            _Project(self, names, bundle).visit_all()

    def _workspace(self, bundle):
        root = ElementTree.parse(f"{bundle}/contents.xcworkspacedata").getroot()
        self._workspace_items(root, [], self.top)

    def _workspace_items(self, element, names, folder):
        for item in element:
            kind, _, place = item.get("location", "").partition(":")
            path = _join(folder if kind == "group" else self.top, place)
            name = item.get("name") or os.path.basename(path)
            if item.tag == "Group":
                self._workspace_items(item, names + [name], path)
            else:
                self.visit_path(names, path, name)

    def visit_path(self, names, path, name):
        """What a reference leads to; false where it is a file."""
        if _extension(path) == "xcodeproj":
            self._project(names + [os.path.basename(path)[: -len(".xcodeproj")]], path)
        elif _is_folder(path) and os.path.isfile(f"{path}/Package.swift"):
            self.package(names + [name], path)
        elif not os.path.isdir(path):
            self.add(names + [name], path)


class _Project:
    def __init__(self, tree, names, bundle):
        self.tree = tree
        self.names = names
        with open(f"{bundle}/project.pbxproj", encoding="utf-8") as file:
            content = property_list.parse(file.read())
        self.objects = content["objects"]
        self.project = self.objects[content["rootObject"]]
        self.root = _join(os.path.dirname(bundle), self.project.get("projectDirPath"))
        self.seen = {self.project["mainGroup"]}
        self.targets_of_file = {}
        self.targets_of_folder = {}
        self.target_of_phase = {}
        self._read_targets()

    def _read_targets(self):
        for identifier in self.project.get("targets", []):
            target = self.objects.get(identifier, {})
            for group in target.get("fileSystemSynchronizedGroups", []):
                self.targets_of_folder.setdefault(group, []).append(identifier)
            for phase in target.get("buildPhases", []):
                self.target_of_phase[phase] = identifier
                for build_file in self.objects.get(phase, {}).get("files", []):
                    file = self.objects.get(build_file, {}).get("fileRef")
                    names = self.targets_of_file.setdefault(file, [])
                    if target["name"] not in names:
                        names.append(target["name"])

    def visit_all(self):
        main = self.objects[self.project["mainGroup"]]
        base = self._place(main, self.root)
        for child in main["children"]:
            self._visit(child, self.names, base, ())
        for reference in self.project.get("projectReferences", []):
            self._visit(reference["ProjectRef"], self.names, self.root, ())
        for identifier in self.project.get("packageReferences", []):
            package = self.objects[identifier]
            if package["isa"] == "XCLocalSwiftPackageReference":
                folder = _join(self.root, package["relativePath"])
                self.tree.package(self.names + [os.path.basename(folder)], folder)

    def _place(self, entry, base):
        source_tree = entry.get("sourceTree", "<group>")
        path = entry.get("path", "")
        if source_tree == "<group>":
            return None if base is None else _join(base, path)
        if source_tree == "SOURCE_ROOT":
            return _join(self.root, path)
        return posixpath.normpath(path) if source_tree == "<absolute>" else None

    def _visit(self, identifier, names, base, inherited):
        if identifier not in self.objects or identifier in self.seen:
            return
        self.seen.add(identifier)
        entry = self.objects[identifier]
        name = entry.get("name") or entry.get("path", "").rstrip("/").split("/")[-1]
        place = self._place(entry, base)
        if entry["isa"] == "PBXFileSystemSynchronizedRootGroup":
            if os.path.isdir(place):
                self.tree.walk(names + [name], place, lambda path: self._targets_in(identifier, path))
        elif "children" in entry:
            is_one = entry["isa"] in ("PBXVariantGroup", "XCVersionGroup")
            below = self.targets_of_file.get(identifier, ()) if is_one else inherited
            for child in entry["children"]:
                self._visit(child, names + [name], place, below)
        else:
            self._visit_file(entry, names, name, place, self.targets_of_file.get(identifier) or inherited)

    def _visit_file(self, entry, names, name, place, targets):
        if place is None:
            path = "/".join(entry.get("path", "").split("/")[-2:])
            self.tree.files.append(("/".join(names + [name]), path, True, tuple(targets)))
        elif _extension(place) == "xcodeproj" or (_is_folder(place) and os.path.isfile(f"{place}/Package.swift")):
            self.tree.visit_path(names, place, name)
        elif _is_folder(place) and entry.get("lastKnownFileType", "") in _FOLDER_TYPES:
            self.tree.walk(names + [name], place, lambda _: targets)
        else:
            self.tree.add(names + [name], place, targets)

    def _targets_in(self, group, path):
        own = self.targets_of_folder.get(group, [])
        targets = list(own)
        for identifier in self.objects[group].get("exceptions", []):
            exception = self.objects[identifier]
            if "buildPhase" in exception:
                continue
            members = exception.get("membershipExceptions", [])
            if any(path == member or path.startswith(member + "/") for member in members):
                if exception["target"] in own:
                    targets.remove(exception["target"])
                else:
                    targets.append(exception["target"])
        for identifier in self.objects[group].get("exceptions", []):
            exception = self.objects[identifier]
            owner = self.target_of_phase.get(exception.get("buildPhase"))
            members = exception.get("membershipExceptions", [])
            is_member = any(path == member or path.startswith(member + "/") for member in members)
            if owner and is_member and owner not in targets:
                targets.append(owner)
        return [self.objects[target]["name"] for target in targets]
