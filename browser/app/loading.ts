// What the page asks for, and where the answers go.
import { problemOf } from "./messages";
import { kSearchChips } from "./model/kinds";
import { Tree } from "./model/tree";
import { type Loaded, now, type State, update } from "./store";
import { type Shape, wire, WireError } from "./wire/wire";

const kOutlinesKept = 24;
const kSearchLimit = 60;
/** As long as it takes to type the next letter without a thought. */
const kTypingMilliseconds = 40;

type ListName = "notes" | "types" | "fileTypes" | "changes";

async function loaded<Value>(before: Loaded<Value>, request: Promise<Value>): Promise<Loaded<Value>> {
  try {
    return { value: await request };
  } catch (error) {
    // The stream's end says that Navrel is away, and the page with it: what is shown stays.
    if (error instanceof WireError && error.failure !== "refused" && before.value) return before;
    return { ...(before.value ? { value: before.value } : {}), problem: problemOf(error) };
  }
}

export async function loadList(name: ListName): Promise<void> {
  const before: Loaded<unknown> = now()[name];
  const answer = await loaded(before, wire[name]() as Promise<unknown>);
  update({ [name]: answer });
}

export async function loadState(): Promise<void> {
  const state = await wire.state().catch(() => undefined);
  if (state) update({ state });
}

let treeRequest: Promise<void> = Promise.resolve();

/** One after the other: changes build on the tree before them. */
export function loadTree(): Promise<void> {
  return (treeRequest = treeRequest.then(bringTree, bringTree));
}

async function bringTree(): Promise<void> {
  const { tree } = now();
  try {
    const answer = await (tree.root ? wire.treeSince(tree.revision) : wire.tree());
    update({ tree: "changed" in answer ? tree.with(answer) : Tree.of(answer), isTreeLoaded: true });
  } catch {
    // The next stream asks again.
  }
}

function keepOutline(id: string, outline: Loaded<Shape.Outline>): void {
  const outlines = new Map(now().outlines);
  outlines.delete(id);
  outlines.set(id, outline);
  for (const oldest of outlines.keys()) {
    if (outlines.size <= kOutlinesKept) break;
    outlines.delete(oldest);
  }
  update({ outlines });
}

export async function loadOutline(id: string): Promise<void> {
  keepOutline(id, await loaded(now().outlines.get(id) ?? {}, wire.outline(id)));
}

/** Shows the outline of a file: what is known of it at once, and what is new when it has come. */
export function showOutline(id: string): void {
  if (now().outlineFile !== id) update({ outlineFile: id, stepLine: 0 });
  void loadOutline(id);
}

/** Outlines that changed are asked for when they are shown the next time, or now. */
export function outlinesChanged(files: readonly string[] | "all"): void {
  const { outlines, outlineFile } = now();
  const isStale = (id: string) => id !== outlineFile && (files === "all" || files.includes(id));
  update({ outlines: new Map([...outlines].filter(([id]) => !isStale(id))) });
  if (outlineFile && (files === "all" || files.includes(outlineFile))) void loadOutline(outlineFile);
}

let searching: AbortController | undefined;
let typing: ReturnType<typeof setTimeout> | undefined;

export function search(change: Partial<Pick<State["search"], "text" | "chip">>): void {
  const { search: before } = now();
  const next = { ...before, ...change, selected: 0 };
  update({ search: next.text.trim() === "" ? { ...next, result: {} } : next });
  searchAgain();
}

export function searchAgain(): void {
  clearTimeout(typing);
  searching?.abort();
  if (now().search.text.trim() === "") return;
  typing = setTimeout(() => void bringSearch(), kTypingMilliseconds);
}

async function bringSearch(): Promise<void> {
  const { text, chip, result: before } = now().search;
  const mine = (searching = new AbortController());
  const request = wire.search({ text: text.trim(), kinds: kSearchChips[chip], limit: kSearchLimit }, mine.signal);
  const result = await loaded(before, request);
  if (!mine.signal.aborted) update({ search: { ...now().search, result } });
}
