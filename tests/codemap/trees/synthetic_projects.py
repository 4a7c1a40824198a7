"""Fifteen small projects, each about one way in which a project names its files."""

import os


def _group(identifier, children, name="", path="", source_tree="<group>", isa="PBXGroup"):
    text = f"{identifier} = {{isa = {isa}; children = ({', '.join(children)}); "
    text += f'name = "{name}"; ' if name else ""
    text += f'path = "{path}"; ' if path else ""
    return text + f'sourceTree = "{source_tree}"; }};\n'


def _file(identifier, path, source_tree="<group>", name="", kind=""):
    text = f'{identifier} = {{isa = PBXFileReference; path = "{path}"; '
    text += f'name = "{name}"; ' if name else ""
    text += f"lastKnownFileType = {kind}; " if kind else ""
    return text + f'sourceTree = "{source_tree}"; }};\n'


def _synchronized(identifier, path, source_tree="<group>", more=""):
    isa = "PBXFileSystemSynchronizedRootGroup"
    return f'{identifier} = {{isa = {isa}; path = "{path}"; {more} sourceTree = "{source_tree}"; }};\n'


def _exception(identifier, target, members):
    isa = "PBXFileSystemSynchronizedBuildFileExceptionSet"
    return f"{identifier} = {{isa = {isa}; target = {target}; membershipExceptions = ({members}); }};\n"


def _target(identifier, name, files=(), groups=()):
    build_files = [f"{identifier}_{file}" for file in files]
    text = f"{identifier} = {{isa = PBXNativeTarget; name = {name}; buildPhases = ({identifier}_PHASE); "
    text += f"fileSystemSynchronizedGroups = ({', '.join(groups)}); }};\n"
    text += f"{identifier}_PHASE = {{isa = PBXSourcesBuildPhase; files = ({', '.join(build_files)}); }};\n"
    for file, build_file in zip(files, build_files):
        text += f"{build_file} = {{isa = PBXBuildFile; fileRef = {file}; }};\n"
    return text


class _Folder:
    def __init__(self, path):
        self.path = path

    def write(self, *relative, text="// x\n"):
        for each in relative:
            path = f"{self.path}/{each}"
            os.makedirs(os.path.dirname(path), exist_ok=True)
            with open(path, "w", encoding="utf-8") as file:
                file.write(text)

    def project(self, bundle, objects, settings=""):
        head = f"PROJECT = {{isa = PBXProject; mainGroup = MAIN; {settings} }};\n"
        text = f"// !$*UTF8*$!\n{{ objects = {{\n{head}{objects} }}; rootObject = PROJECT; }}\n"
        self.write(f"{bundle}/project.pbxproj", text=text)
        return f"{self.path}/{bundle}"


def _source_root(folder):
    folder.write("src/one.m", "src/three.c", "src/sub/x")
    objects = _group("MAIN", ["A", "B"]) + _group("A", ["F1", "F2"], "Odd", "Nowhere") + _group("B", ["F3"], "", "src")
    objects += _file("F1", "src/one.m", "SOURCE_ROOT") + _file("F2", "two.m") + _file("F3", "sub/../three.c")
    return folder.project("proj/App.xcodeproj", objects, 'projectDirPath = "..";')


def _synchronized_with_exceptions(folder):
    folder.write("App/Info.plist", "App/App.swift", "App/Sub/Left out.swift", "App/Sub/Shared.swift", "App/zeta.swift")
    folder.write("App/.hidden/x.swift", "App/Pics.xcassets/A.imageset/Contents.json", "App/en.lproj/L.strings")
    folder.write("App/Alpha.m", "Tests/T.swift")
    objects = _group("MAIN", ["S", "T"]) + _synchronized("S", "App", more="exceptions = (E1, E2);")
    objects += _synchronized("T", "Tests") + _exception("E1", "T1", 'Info.plist, "Sub/Left out.swift"')
    objects += _exception("E2", "T2", "Sub/Shared.swift")
    objects += _target("T1", "App", (), ["S"]) + _target("T2", "Tests", (), ["T"])
    return folder.project("App.xcodeproj", objects, "targets = (T1, T2);")


def _folder_references(folder):
    folder.write("Assets/js/a.js", "Assets/b.swift", "Assets/.git/x", "Pics.xcassets/x/y")
    objects = _group("MAIN", ["D", "E", "G"]) + _file("D", "Assets", kind="folder")
    objects += _file("E", "Pics.xcassets", kind="folder.assetcatalog") + _file("G", "Gone", kind="folder")
    return folder.project("App.xcodeproj", objects + _target("T1", "App", ["D", "E"]), "targets = (T1);")


def _packages(folder):
    folder.write("Kit/Sources/Kit/a.swift", "Kit/Tests/KitTests/t.swift", "Kit/.build/x.swift", "Kit/README.md")
    folder.write("Packages/Lib/Custom/b.swift", "Packages/Lib/Sources/c.swift", "Far/Sources/Far/f.swift")
    folder.write("Kit/Package.swift", "Far/Package.swift", text='let package = Package(name: "Kit")')
    folder.write("Packages/Lib/Package.swift", text='.target(name: "Lib", path: "Custom"), .package(path: "../Other")')
    objects = _group("MAIN", ["K", "P"]) + _group("P", ["L"], "Packages") + _file("K", "Kit", kind="wrapper")
    objects += _file("L", "Packages/Lib", kind="folder")
    objects += "R1 = {isa = XCLocalSwiftPackageReference; relativePath = Kit; };\n"
    objects += "R2 = {isa = XCLocalSwiftPackageReference; relativePath = Far; };\n"
    objects += 'R3 = {isa = XCRemoteSwiftPackageReference; repositoryURL = "x"; };\n'
    return folder.project("App.xcodeproj", objects, "packageReferences = (R1, R2, R3);")


def _projects_that_name_each_other(folder):
    folder.write("App/a.m", "Lib/b.m")
    library = _group("MAIN", ["SUB", "B"]) + _file("SUB", "../App/App.xcodeproj") + _file("B", "b.m")
    folder.project("Lib/Lib.xcodeproj", library)
    objects = _group("MAIN", ["SUB", "A"]) + _file("SUB", "../Lib/Lib.xcodeproj") + _file("A", "a.m")
    return folder.project("App/App.xcodeproj", objects, "projectReferences = ({ProjectRef = SUB; });")


def _variants_and_versions(folder):
    folder.write("en.lproj/L.strings", "Model.xcdatamodeld/One.xcdatamodel/contents")
    objects = _group("MAIN", ["V", "M"]) + _group("V", ["EN", "DE"], "L.strings", isa="PBXVariantGroup")
    objects += _file("EN", "en.lproj/L.strings", name="en") + _file("DE", "de.lproj/L.strings", name="de")
    objects += _group("M", ["M1"], "", "Model.xcdatamodeld", isa="XCVersionGroup") + _file("M1", "One.xcdatamodel")
    return folder.project("App.xcodeproj", objects + _target("T1", "App", ["V", "M"]), "targets = (T1);")


def _absolute_paths_and_products(folder):
    folder.write("outer.h")
    objects = _group("MAIN", ["A", "S", "P"]) + _file("A", f"{folder.path}/outer.h", "<absolute>")
    objects += _file("S", "System/Library/Frameworks/UIKit.framework", "SDKROOT")
    objects += _group("P", ["X"], "Products") + _file("X", "App.app", "BUILT_PRODUCTS_DIR")
    return folder.project("Deep/App.xcodeproj", objects)


def _groups_in_circles(folder):
    folder.write("f.c")
    objects = _group("MAIN", ["A", "A", "GHOST", "F", "F", "H"]) + _group("A", ["MAIN", "A", "B"], "A")
    objects += _group("B", ["A", "F"], "B") + _file("F", "f.c") + _group("H", ["F2"], "H") + _file("F2", "f.c")
    return folder.project("App.xcodeproj", objects)


def _deep_folders_and_links(folder):
    folder.write("Src/" + "/".join(f"d{depth}" for depth in range(60)) + "/deep.swift")
    os.symlink("..", f"{folder.path}/Src/d0/up")
    os.symlink("nowhere", f"{folder.path}/Src/dangling.swift")
    os.mkfifo(f"{folder.path}/Src/pipe.swift")
    return folder.project("App.xcodeproj", _group("MAIN", ["S"]) + _synchronized("S", "Src"))


def _names_of_all_kinds(folder):
    folder.write("Root/dir with blank/a+b $x.m", "Root/dir with blank/Ünï.swift")
    objects = _group("MAIN", ["A"], "Main", "Root") + _group("A", ["F", "E"], "Grüße 你好 😀", "dir with blank")
    return folder.project("App.xcodeproj", objects + _file("F", "a+b $x.m") + _file("E", "Ünï.swift/"))


def _synchronized_from_the_source_root(folder):
    folder.write("Code/a.swift", "Code/Res/b.json", "Code/Nested/App2.xcodeproj/project.pbxproj")
    objects = _group("MAIN", ["S"]) + _synchronized("S", "Code", "SOURCE_ROOT", "explicitFolders = (Res);")
    return folder.project("ios/build/App.xcodeproj", objects, 'projectDirPath = "../..";')


def _workspace_of_ten(folder):
    places = []
    for number in range(10):
        folder.write(f"p{number}/a{number}.swift")
        folder.project(f"p{number}/P{number}.xcodeproj", _group("MAIN", ["A"]) + _file("A", f"a{number}.swift"))
        kind = "group" if number < 8 else "container"
        places.append(f'<FileRef location = "{kind}:p{number}/P{number}.xcodeproj"/>')
    group = f'<Group location = "container:" name = "More">{"".join(places[5:8])}</Group>'
    places[5:8] = [group, '<FileRef location = "group:Kit"/>', '<FileRef location = "group:README.md"/>']
    folder.write("Kit/Package.swift", "Kit/Sources/z.swift", "README.md")
    text = f'<?xml version="1.0" encoding="UTF-8"?>\n<Workspace version = "1.0">{"".join(places)}</Workspace>\n'
    folder.write("All.xcworkspace/contents.xcworkspacedata", text=text)
    return f"{folder.path}/All.xcworkspace"


def _both_kinds_of_exception_sets(folder):
    folder.write("App/App.swift", "App/Info.plist", "App/Helper/helper.c", "App/Scripts/run.js", "App/Shared/s.swift")
    folder.write("App/Kit/Sources/Kit/k.swift", "App/Kit/Tests/KitTests/t.swift", "App/Shared/Deep/d.swift")
    folder.write("App/Kit/Package.swift", text='let package = Package(name: "Kit")')
    isa = "PBXFileSystemSynchronizedGroupBuildPhaseMembershipExceptionSet"
    sets = "exceptions = (E1, E2, E3, E4); explicitFileTypes = {}; explicitFolders = (Scripts);"
    objects = _group("MAIN", ["S", "W"]) + _synchronized("S", "App", more=sets)
    objects += _exception("E1", "T1", "Info.plist, Helper") + _exception("E2", "T2", "Shared, App.swift")
    objects += f'E3 = {{isa = {isa}; buildPhase = T1_COPY; membershipExceptions = ("Scripts/run.js"); }};\n'
    objects += f'E4 = {{isa = {isa}; buildPhase = T2_PHASE; membershipExceptions = ("Helper/helper.c"); }};\n'
    objects += _synchronized("W", "Not there") + _target("T1", "App", (), ["S"]) + _target("T2", "Widget")
    objects += "T1_COPY = {isa = PBXCopyFilesBuildPhase; files = (); };\n"
    objects += "R1 = {isa = XCLocalSwiftPackageReference; relativePath = App/Kit; };\n"
    return folder.project("App.xcodeproj", objects, "targets = (T1, T2); packageReferences = (R1);")


def _workspace_with_nested_groups(folder):
    folder.write("One/a.swift", "Two/Deep/b.m", "Two/loose.md", "top.c")
    folder.project("One/One.xcodeproj", _group("MAIN", ["A", "V"]) + _file("A", "a.swift")
                   + _file("V", "Lib/Lib.xcodeproj", "LIBRARIES"))
    folder.project("Two/Deep/Two.xcodeproj", _group("MAIN", ["B", "O"]) + _file("B", "b.m")
                   + _file("O", "../../One/One.xcodeproj"))
    inner = '<Group location = "group:Deep" name = "Inner"><FileRef location = "group:Two.xcodeproj"/></Group>'
    group = f'<Group location = "group:Two" name = "Outer">{inner}<FileRef location = "group:loose.md"/></Group>'
    files = f'<FileRef location = "absolute:{folder.path}/top.c"/><FileRef location = "container:One/One.xcodeproj"/>'
    text = f'<?xml version="1.0" encoding="UTF-8"?>\n<Workspace version = "1.0">{group}{files}</Workspace>\n'
    folder.write("All.xcworkspace/contents.xcworkspacedata", text=text)
    return f"{folder.path}/All.xcworkspace"


def _names_with_marks_and_quotes(folder):
    names = ["👩‍👩‍👧 Family.swift", "Cafe\u0301.m", "Café.m", "it's.c", 'say "hi".h', "semi;colon=1.mm", "back\\slash.c"]
    folder.write(*(f"Röt {{1}}/{name}" for name in names), *(f"Sync 🌊/{name}" for name in names))
    escaped = [name.replace("\\", "\\\\").replace('"', '\\"') for name in names]
    objects = _group("MAIN", ["A", "S"]) + _group("A", [f"F{n}" for n in range(len(names))], "", "Röt {1}")
    objects += "".join(_file(f"F{n}", name) for n, name in enumerate(escaped)) + _synchronized("S", "Sync 🌊")
    return folder.project("Ünder 🌊.xcodeproj", objects)


_PROJECTS = [
    _source_root, _synchronized_with_exceptions, _folder_references, _packages, _projects_that_name_each_other,
    _variants_and_versions, _absolute_paths_and_products, _groups_in_circles, _deep_folders_and_links,
    _names_of_all_kinds, _synchronized_from_the_source_root, _workspace_of_ten,
    _both_kinds_of_exception_sets, _workspace_with_nested_groups, _names_with_marks_and_quotes,
]


def write_all(place):
    """Writes all below a folder that exists; returns their bundles."""
    bundles = []
    for write in _PROJECTS:
        folder = _Folder(f"{place}/{write.__name__[1:]}")
        os.makedirs(folder.path)
        bundles.append(write(folder))
    return bundles
