// What taps and keys do.
import { loadList, loadOutline, showOutline } from "./loading";
import { say, sayProblem, sayWhatIsAmiss } from "./messages";
import { neighbour, outlineRows, type StopKind } from "./model/outlineRows";
import { atOutline, go } from "./places";
import { addRecent } from "./settings";
import { forget, now, type Target, update } from "./store";
import { type Shape, wire } from "./wire/wire";

type Opened = Shape.Events["opened"];

/** What was asked of the editor and has no outcome yet; and outcomes that were faster than the answer. */
const asked = new Map<number, string>();
const early = new Map<number, Opened>();
const kKeptRequests = 32;

function keep<Value>(map: Map<number, Value>, request: number, value: Value): void {
  map.set(request, value);
  for (const oldest of map.keys()) {
    if (map.size <= kKeptRequests) break;
    map.delete(oldest);
  }
}

export function place(target: Target): string {
  return target.line === undefined ? target.file.name : `${target.file.name}:${target.line}`;
}

/** Asks the editor for something. Never later than now: the user may have gone elsewhere by then. */
async function ask(what: string, request: () => Promise<Shape.Open>): Promise<void> {
  if (now().connection !== "open") return say("Navrel is not connected, so nothing was opened.", "bad");
  try {
    const { request: number } = await request();
    const outcome = early.get(number);
    early.delete(number);
    if (outcome) sayOutcome(what, outcome);
    else keep(asked, number, what);
  } catch (error) {
    sayProblem(error);
  }
}

export function open(target: Target): void {
  const { id: file } = target.file;
  addRecent(target);
  if (file === now().outlineFile && target.line) update({ stepLine: target.line });
  say(`Opening ${place(target)}`);
  void ask(place(target), () => wire.open(target.line ? { file, line: target.line } : { file }));
}

export function back(): void {
  void ask("The place before", () => wire.back());
}

export function opened(outcome: Opened): void {
  const what = asked.get(outcome.request);
  asked.delete(outcome.request);
  if (what === undefined) keep(early, outcome.request, outcome);
  else sayOutcome(what, outcome);
}

function sayOutcome(what: string, { outcome, editor, reason, hint }: Opened): void {
  if (outcome === "opened") return say(`${what} is open${editor ? ` in ${editor}` : ""}`, "good");
  sayWhatIsAmiss({ text: reason ?? `${what} was not opened.`, hint });
}

/** Shows a file's outline: beside the navigator where there is room, else in place of it. */
export function showFile(id: string): void {
  showOutline(id);
  const { look, ...here } = now().place;
  if (!now().isWide) go({ tab: "outline" });
  else if (look) go(here);
  atOutline();
}

export function lookAt(target: Target): void {
  const look = { file: target.file.id, name: target.file.name, line: target.line ?? 1 };
  const { place: here, isWide } = now();
  go(isWide ? { ...here, look } : { tab: "outline", look });
}

export function reveal(file: string): void {
  const node = now().tree.node(file);
  if (!node) return say("That file is not in the project any more.", "bad");
  update({ revealed: file });
  go(node.parent === undefined ? { tab: "files" } : { tab: "files", group: node.parent });
}

export async function copyPlace(target: Target): Promise<void> {
  const text = target.line === undefined ? target.file.path : `${target.file.path}:${target.line}`;
  const isCopied = await copyText(text);
  say(isCopied ? `Copied ${text}` : `This browser does not let the page copy. It is ${text}`, isCopied ? "good" : "bad");
}

/** The clipboard proper is there in a secure context only. */
async function copyText(text: string): Promise<boolean> {
  try {
    await navigator.clipboard.writeText(text);
    return true;
  } catch {
    return copySelected(text);
  }
}

function copySelected(text: string): boolean {
  const field = document.createElement("textarea");
  field.value = text;
  field.className = "hidden";
  document.body.append(field);
  field.select();
  try {
    // Deprecated, and all that there is over plain HTTP.
    // eslint-disable-next-line @typescript-eslint/no-deprecated
    return document.execCommand("copy");
  } catch {
    return false;
  } finally {
    field.remove();
  }
}

export function openMenu(target: Target): void {
  update({ menu: target });
  // Its counterparts stand there.
  if (!now().outlines.has(target.file.id)) void loadOutline(target.file.id);
}

export function closeMenu(): void {
  forget("menu");
}

const kNothingFurther: Record<StopKind, string> = { symbol: "symbol", heading: "mark", note: "note" };

/** Opens the next (or the previous) symbol, mark or note of the file whose outline is shown. */
export function step(direction: 1 | -1, kind: StopKind = now().stop): void {
  const { outlineFile, outlines, active, stepLine } = now();
  const outline = outlineFile === undefined ? undefined : outlines.get(outlineFile)?.value;
  if (!outline) return;
  const editorLine = active.file?.id === outline.id ? active.file.line : undefined;
  const rows = outlineRows(outline);
  const row = rows[neighbour(rows, kind, stepLine || editorLine || 0, direction)];
  if (!row) return say(`There is no ${kNothingFurther[kind]} ${direction > 0 ? "below" : "above"}.`);
  const name = row.type === "symbol" ? row.symbol.name : row.type === "heading" ? row.heading.text : row.note.text;
  const rowKind = row.type === "symbol" ? row.symbol.kind : row.type === "heading" ? "mark" : row.note.kind;
  const { id, path } = outline;
  open({ kind: rowKind, name, file: { id, name: outline.name, path }, line: row.line });
}

/** Shown at once; Navrel tells all pages when it is done. */
export async function switchFileType(extension: string, allowed: boolean): Promise<void> {
  if (now().connection !== "open") return say("Navrel is not connected, so nothing was switched.", "bad");
  const { fileTypes } = now();
  const items = fileTypes.value?.items.map((item) => (item.extension === extension ? { extension, allowed } : item));
  if (items) update({ fileTypes: { value: { items } } });
  try {
    await wire.switchFileTypes({ items: [{ extension, allowed }] });
    const files = extension === "" ? "Files without an extension" : `.${extension} files`;
    say(`${files} are ${allowed ? "shown" : "left out"}`, "good");
  } catch (error) {
    sayProblem(error);
    await loadList("fileTypes");
  }
}
