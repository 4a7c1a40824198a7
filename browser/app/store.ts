// The one place where the page keeps what it knows. What is shown is a function of it.
import { useLayoutEffect, useReducer, useRef } from "preact/hooks";
import type { SearchChip } from "./model/kinds";
import type { StopKind } from "./model/outlineRows";
import { Tree } from "./model/tree";
import type { ConnectionState } from "./wire/connection";
import type { Shape } from "./wire/wire";

export const kTabs = ["files", "outline", "search", "notes", "more"] as const;
export type Tab = (typeof kTabs)[number];
export type MorePage = "types" | "changes" | "fileTypes" | "keys";

/** What is shown, as the browser's own Back takes it. */
export interface Place {
  tab: Tab;
  /** The group that Files shows; the root without one. */
  group?: string;
  /** The page of More. */
  page?: MorePage;
  /** Code that is looked at in place of the outline. */
  look?: Look;
}
export interface Look {
  file: string;
  name: string;
  line: number;
}

/** What comes from a request. The last value stays while, and after, another one is asked for. */
export interface Loaded<Value> {
  value?: Value;
  problem?: Problem;
}
export interface Problem {
  text: string;
  hint?: string | undefined;
}

/** What can be tapped, opened, looked at and copied. */
export interface Target {
  kind: string;
  name: string;
  detail?: string;
  file: Shape.FileReference;
  line?: number;
}

export type Follow = "off" | "highlight" | "scroll";
export type Theme = "auto" | "light" | "dark";
export type Tone = "plain" | "good" | "bad";

export interface State {
  connection: ConnectionState;
  /** The last answer was that this device is not paired. */
  isUnpaired: boolean;
  /** The last stream ended, and none has begun since. */
  isAway: boolean;
  /** When the page last knew that it is up to date; 0 before the first time. */
  freshAt: number;
  pairing: { busy: boolean; problem?: Problem };

  state?: Shape.State;
  tree: Tree;
  isTreeLoaded: boolean;
  active: Shape.Events["active"];
  outlineFile?: string;
  /** Of the files looked at last, by identifier. */
  outlines: ReadonlyMap<string, Loaded<Shape.Outline>>;
  notes: Loaded<Shape.Notes>;
  types: Loaded<Shape.Types>;
  fileTypes: Loaded<Shape.FileTypes>;
  changes: Loaded<Shape.Changes>;

  place: Place;
  /** How often the file that is looked at has changed, or may have. */
  lookChanges: number;
  isWide: boolean;
  search: { text: string; chip: SearchChip; selected: number; result: Loaded<Shape.Search> };
  stop: StopKind;
  /** The line where the last step or tap in the outline led. */
  stepLine: number;
  /** A row that Files lights up once. */
  revealed?: string;
  menu?: Target;
  message?: { text: string; tone: Tone; number: number };
  isAwake: boolean;

  follow: Follow;
  theme: Theme;
  navigatorWidth: number;
  recents: readonly Target[];
}

export const kInitialState: State = {
  connection: "idle",
  isAway: false,
  isUnpaired: false,
  freshAt: 0,
  pairing: { busy: false },
  tree: Tree.empty,
  isTreeLoaded: false,
  active: { file: null },
  outlines: new Map(),
  notes: {},
  types: {},
  fileTypes: {},
  changes: {},
  place: { tab: "files" },
  lookChanges: 0,
  isWide: false,
  search: { text: "", chip: "all", selected: 0, result: {} },
  stop: "symbol",
  stepLine: 0,
  isAwake: false,
  follow: "scroll",
  theme: "auto",
  navigatorWidth: 340,
  recents: [],
};

let current = kInitialState;
const listeners = new Set<() => void>();

/** What is known now. Not for drawing: `useStore` draws again when it changes. */
export function now(): State {
  return current;
}

export function update(change: Partial<State>): void {
  current = { ...current, ...change };
  for (const listener of [...listeners]) listener();
}

export function forget(key: "menu" | "message" | "revealed" | "state" | "outlineFile"): void {
  const { [key]: _, ...rest } = current;
  current = rest;
  update({});
}

/** A part of the state, for a component that is to be drawn again when that part is another value. */
export function useStore<Part>(select: (state: State) => Part): Part {
  const [, drawAgain] = useReducer<number, void>((count) => count + 1, 0);
  const part = select(current);
  const shown = useRef({ select, part });
  shown.current = { select, part };
  useLayoutEffect(() => {
    const listener = () => {
      if (!Object.is(shown.current.select(current), shown.current.part)) drawAgain();
    };
    listeners.add(listener);
    listener();
    return () => void listeners.delete(listener);
  }, []);
  return part;
}
