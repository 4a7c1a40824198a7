// What a Navrel would say of the sample project: enough of it to try each screen without one.
import type * as Shape from "../../app/wire/shapes";

const kProject = "Tidewatch";

/** Identifiers look like the real ones, and can be read in a failing test. */
export function idOf(name: string): string {
  let hash = 0xcbf29ce484222325n;
  for (const character of name) hash = ((hash ^ BigInt(character.codePointAt(0)!)) * 0x100000001b3n) & 0xffffffffffffffffn;
  return hash.toString(16).padStart(16, "0");
}

const kLanguages: Record<string, Shape.Language> = { swift: "swift", m: "objc", c: "c", h: "header" };

function file(folder: string, name: string): Shape.Node {
  const extension = name.split(".").pop()!;
  const path = `${kProject}/${folder}/${name}`;
  const language = kLanguages[extension];
  return { id: idOf(path), name, kind: "file", path, extension, targets: [kProject], ...(language ? { language } : {}) };
}

function group(name: string, path: string | undefined, children: Shape.Node[]): Shape.Node {
  return { id: idOf(`group ${name} ${path}`), name, kind: "group", children, ...(path === undefined ? {} : { path }) };
}

export const sampleTree: Shape.Node = {
  id: idOf("project"),
  name: kProject,
  kind: "project",
  path: "",
  children: [
    group(kProject, kProject, [
      group("Model", `${kProject}/Model`, ["Tide.h", "Tide.m", "Station.swift", "TideTable.swift"].map((name) => file("Model", name))),
      group("Views", `${kProject}/Views`, ["TideListController.h", "TideListController.m", "TideView.h", "TideView.m"].map((name) => file("Views", name))),
      group("Application support", `${kProject}/Support`, ["AppDelegate.h", "AppDelegate.m", "checksum.h", "checksum.c", "main.m"].map((name) => file("Support", name))),
      group("Resources", undefined, [{ ...file("", "Info.plist"), path: `${kProject}/Info.plist`, id: idOf(`${kProject}/Info.plist`) }]),
    ]),
    group("Products", undefined, [{ id: idOf("Tidewatch.app"), name: "Tidewatch.app", kind: "file", extension: "app", missing: true }]),
  ],
};

export function reference(path: string, line?: number): Shape.FileReference {
  return { id: idOf(path), name: path.split("/").pop()!, path, ...(line === undefined ? {} : { line }) };
}

const kTideView = "Tidewatch/Views/TideView.m";
const kList = "Tidewatch/Views/TideListController.m";
const kTable = "Tidewatch/Model/TideTable.swift";

function symbol(kind: Shape.SymbolKind, name: string, line: number, endLine: number, more: Partial<Shape.Symbol> = {}): Shape.Symbol {
  return { kind, name, line, endLine, ...more };
}

function note(kind: Shape.NoteKind, text: string, path: string, line: number): Shape.Note {
  return { kind, text, line, file: reference(path) };
}

export const sampleNotes: Shape.Note[] = [
  note("shortcut", "Next tide", kTable, 13),
  note("warning", "the server's answer is taken as it is", kTable, 20),
  note("shortcut", "Reloading the list", kList, 18),
  note("warning", "reuse the cells", kList, 31),
  note("shortcut", "Drawing the water", kTideView, 19),
];

function outline(path: string, language: Shape.Language, lines: number, items: Shape.Symbol[], more: Partial<Shape.Outline> = {}): Shape.Outline {
  const { id, name } = reference(path);
  const notes = sampleNotes.filter((each) => each.file.id === id);
  return { id, name, path, language, revision: 1, counterparts: [], items, headings: [], notes, lines, ...more };
}

const outlines: Shape.Outline[] = [
  outline(
    kTideView,
    "objc",
    25,
    [
      symbol("implementation", "TideView", 5, 25, {
        children: [
          symbol("method", "-setTide:", 7, 9, { signature: "- (void)setTide:(Tide *)tide" }),
          symbol("method", "-setTide:animated:", 11, 15, { signature: "- (void)setTide:(Tide *)tide animated:(BOOL)animated" }),
          symbol("method", "-drawRect:", 20, 23, { signature: "- (void)drawRect:(CGRect)rect" }),
        ],
      }),
    ],
    { headings: [{ line: 17, text: "Drawing", separator: true }], counterparts: [reference("Tidewatch/Views/TideView.h")] },
  ),
  outline(
    "Tidewatch/Views/TideView.h",
    "header",
    12,
    [symbol("class", "TideView", 5, 12, { inherits: ["UIView"], children: [symbol("property", "tide", 7, 7), symbol("method", "-setTide:animated:", 10, 10)] })],
    { counterparts: [reference(kTideView)] },
  ),
  outline(
    kTable,
    "swift",
    24,
    [
      symbol("class", "TideTable", 3, 24, {
        signature: "class TideTable",
        children: [
          symbol("property", "station", 4, 4, { signature: "var station: Station" }),
          symbol("property", "tides", 5, 5, { signature: "private var tides: [Tide]", access: "private" }),
          symbol("init", "init(station:)", 7, 9, { signature: "init(station: Station)" }),
          symbol("method", "next(after:)", 14, 16, { signature: "func next(after date: Date) -> Tide?" }),
          symbol("method", "load(_:)", 21, 23, { signature: "func load(_ answer: [Tide])" }),
        ],
      }),
    ],
    {
      headings: [
        { line: 11, text: "Reading", separator: true },
        { line: 18, text: "Loading", separator: true },
      ],
    },
  ),
  outline(
    kList,
    "objc",
    35,
    [
      symbol("extension", "TideListController", 5, 7, { children: [symbol("property", "tides", 6, 6)] }),
      symbol("implementation", "TideListController", 9, 35, {
        children: [
          symbol("method", "-viewDidLoad", 13, 16),
          symbol("method", "-reload", 19, 21),
          symbol("method", "-tableView:numberOfRowsInSection:", 25, 27),
          symbol("method", "-tableView:cellForRowAtIndexPath:", 29, 33),
        ],
      }),
    ],
    {
      headings: [
        { line: 11, text: "View", separator: true },
        { line: 23, text: "Table view", separator: true },
      ],
      counterparts: [reference("Tidewatch/Views/TideListController.h")],
    },
  ),
];
export const sampleOutlines = new Map(outlines.map((each) => [each.id, each]));

export const sampleTypes: Shape.Types["items"] = [
  { name: "NSObject", known: false },
  { name: "UIView", known: false },
  { name: "UITableViewController", known: false },
  { name: "Tide", kind: "class", inherits: ["NSObject", "NSCopying"], file: reference("Tidewatch/Model/Tide.h"), line: 5, known: true },
  { name: "TideView", kind: "class", inherits: ["UIView"], file: reference("Tidewatch/Views/TideView.h"), line: 5, known: true },
  { name: "TideListController", kind: "class", inherits: ["UITableViewController"], file: reference("Tidewatch/Views/TideListController.h"), line: 3, known: true },
  { name: "TideTable", kind: "class", file: reference(kTable), line: 3, known: true },
  { name: "Station", kind: "struct", file: reference("Tidewatch/Model/Station.swift"), line: 4, known: true },
];

export const sampleChanges: Shape.Changes = {
  state: "ok",
  base: "main",
  mergeBase: "3f2a1c0d",
  files: [
    { file: reference(kTable), status: "modified", symbols: [{ name: "next(after:)", line: 14 }, { name: "load(_:)", line: 21 }] },
    { file: reference("Tidewatch/Support/checksum.c"), status: "added", symbols: [] },
    { file: reference("Tidewatch/Support/Reachability.m"), status: "deleted", symbols: [] },
  ],
};

export const sampleState: Shape.State = {
  program: "Navrel",
  version: "0.2.0",
  revision: 1,
  project: { name: kProject, state: "loaded", files: 15, symbols: 62 },
  editor: { name: "Neovim", state: "follows", active: reference(kTideView, 12) },
  device: { state: "absent" },
  browsers: { mode: "machine", addresses: ["http://127.0.0.1:2346"], devices: 1 },
  messages: [],
  sentences: [
    { part: "Project", level: "good", text: `${kProject} is loaded: 15 files.` },
    { part: "Device", level: "idle", text: "No device is attached.", hint: "Plug one in." },
    { part: "Editor", level: "good", text: "Neovim answers." },
  ],
};

/** Everything with a name, for the search. */
export function sampleHits(): Shape.Search["items"] {
  const hits: Shape.Search["items"] = [];
  const files = (node: Shape.Node): void => {
    if (node.kind === "file" && node.path) hits.push({ kind: "file", name: node.name, file: reference(node.path), positions: [] });
    (node.children ?? []).forEach(files);
  };
  files(sampleTree);
  for (const { path, items, headings } of outlines) {
    const symbols = (all: readonly Shape.Symbol[], container?: string): void => {
      for (const { kind, name, line, children } of all) {
        hits.push({ kind, name, file: reference(path), line, positions: [], ...(container ? { container } : {}) });
        symbols(children ?? [], name);
      }
    };
    symbols(items);
    for (const { line, text } of headings) hits.push({ kind: "mark", name: text, file: reference(path), line, positions: [] });
  }
  for (const { text, line, file } of sampleNotes) hits.push({ kind: "note", name: text, file, line, positions: [] });
  return hits;
}
