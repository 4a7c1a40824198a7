// How each kind looks: a letter, a colour (of styles/rows.css) and a word for those who hear the page.
import type { Shape } from "../wire/wire";

export type AnyKind = Shape.SymbolKind | Shape.NoteKind | Shape.NodeKind | "mark" | "note";

export interface Look {
  letter: string;
  colour: "type" | "callable" | "data" | "extension" | "note" | "warning" | "error" | "plain";
  word: string;
}

const look = (letter: string, colour: Look["colour"], word: string): Look => ({ letter, colour, word });

export const kLooks: Record<AnyKind, Look> = {
  class: look("C", "type", "class"),
  actor: look("A", "type", "actor"),
  struct: look("S", "type", "struct"),
  union: look("U", "type", "union"),
  enum: look("E", "type", "enum"),
  case: look("c", "data", "case"),
  protocol: look("P", "extension", "protocol"),
  category: look("X", "extension", "category"),
  extension: look("X", "extension", "extension"),
  implementation: look("I", "type", "implementation"),
  method: look("M", "callable", "method"),
  init: look("i", "callable", "initializer"),
  deinit: look("d", "callable", "deinitializer"),
  subscript: look("[]", "callable", "subscript"),
  operator: look("±", "callable", "operator"),
  function: look("ƒ", "callable", "function"),
  property: look("p", "data", "property"),
  field: look("f", "data", "field"),
  variable: look("v", "data", "variable"),
  typealias: look("T", "extension", "type alias"),
  associatedtype: look("T", "extension", "associated type"),
  typedef: look("T", "extension", "typedef"),
  macro: look("#", "plain", "macro"),
  namespace: look("N", "plain", "namespace"),
  shortcut: look("★", "note", "shortcut"),
  todo: look("☐", "note", "to do"),
  fixme: look("!", "warning", "fix me"),
  hack: look("!", "warning", "hack"),
  xxx: look("!", "warning", "XXX"),
  warning: look("▲", "warning", "warning"),
  error: look("✕", "error", "error"),
  note: look("★", "note", "note"),
  mark: look("§", "plain", "mark"),
  group: look("▸", "plain", "group"),
  folder: look("▸", "plain", "folder"),
  variant: look("▸", "plain", "variants"),
  package: look("▸", "plain", "package"),
  project: look("▸", "plain", "project"),
  workspace: look("▸", "plain", "workspace"),
  file: look("·", "plain", "file"),
};

/** A kind of a later version looks plain. */
export function lookOf(kind: string): Look {
  return (kLooks as Record<string, Look>)[kind] ?? look("·", "plain", kind);
}

const kLanguages: Readonly<Record<string, string>> = {
  swift: "Swift",
  objc: "Objective-C",
  c: "C",
  cpp: "C++",
  objcpp: "Objective-C++",
  header: "header",
} satisfies Record<Shape.Language, string>;
export function languageName(language: Shape.Language | undefined): string {
  return language ? (kLanguages[language] ?? language) : "";
}

const kFileLetters: Readonly<Record<string, string>> = {
  swift: "S",
  objc: "m",
  c: "c",
  cpp: "++",
  objcpp: "mm",
  header: "h",
} satisfies Record<Shape.Language, string>;
export function fileLook(language: Shape.Language | undefined): Look {
  const letter = language ? (kFileLetters[language] ?? "·") : "·";
  return look(letter, language === "header" ? "extension" : language ? "data" : "plain", languageName(language) || "file");
}

/** The chips of the search, and the kinds that each asks for. */
export const kSearchChips = {
  all: [],
  files: ["file"],
  types: ["class", "actor", "struct", "union", "enum", "protocol", "category", "extension", "implementation", "typealias", "associatedtype", "typedef", "namespace"],
  functions: ["method", "init", "deinit", "subscript", "operator", "function", "macro"],
  values: ["property", "field", "variable", "case"],
  marks: ["mark"],
  notes: ["note"],
} as const;
export type SearchChip = keyof typeof kSearchChips;
