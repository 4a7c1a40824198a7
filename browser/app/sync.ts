// Keeps the page up to date: each event leads to what it says has changed, and nothing is polled.
import { opened } from "./actions";
import { activeChanged } from "./following";
import { loadList, loadState, loadTree, outlinesChanged, searchAgain } from "./loading";
import { problemOf } from "./messages";
import { deviceLabel } from "./model/words";
import { forget, kInitialState, now, update } from "./store";
import { Connection } from "./wire/connection";
import { type AnyEvent, openEventStream } from "./wire/eventStream";
import { type Shape, wire } from "./wire/wire";

const connection = new Connection({
  openStream: openEventStream,
  after: (milliseconds, action) => {
    const timer = setTimeout(action, milliseconds);
    return () => clearTimeout(timer);
  },
  onState: (state) => {
    const wasOpen = now().connection === "open";
    const isAway = state === "lost" || (state === "connecting" && now().isAway);
    const freshAt = wasOpen || state === "open" ? Date.now() : now().freshAt;
    const isUnpaired = state === "unpaired" || (state !== "open" && now().isUnpaired);
    update({ connection: state, isAway, isUnpaired, freshAt });
    if (state === "unpaired") forgetProject();
  },
  onEvent: take,
});

export function wake(): void {
  connection.wake();
}

/** For the start, and for each return to a page whose stream may have died in its sleep. */
export function keepConnected(): void {
  document.addEventListener("visibilitychange", () => {
    if (document.visibilityState === "visible") wake();
  });
  addEventListener("pageshow", (event) => {
    if (event.persisted) wake();
  });
  addEventListener("online", wake);
  wake();
}

/** What a device that is no longer paired may not go on showing. */
function forgetProject(): void {
  const { tree, isTreeLoaded, active, outlines, notes, types, fileTypes, changes, search, recents } = kInitialState;
  forget("state");
  forget("outlineFile");
  forget("menu");
  update({ tree, isTreeLoaded, active, outlines, notes, types, fileTypes, changes, search, recents });
}

function take(event: AnyEvent): void {
  switch (event.name) {
    case "hello":
      return begin(event.data);
    case "revision":
      return changed(event.data);
    case "active":
      return activeChanged(event.data);
    case "opened":
      return opened(event.data);
    case "state":
      return update({ state: event.data });
    case "resync":
      return everything();
  }
}

function begin({ active }: Shape.Events["hello"]): void {
  everything();
  activeChanged({ file: active });
}

function everything(): void {
  void loadState();
  void loadTree();
  outlinesChanged("all");
  lookChanged();
  reloadLists();
}

function changed({ files, tree }: Shape.Events["revision"]): void {
  if (tree) void loadTree();
  outlinesChanged(files);
  const { look } = now().place;
  if (look && files.includes(look.file)) lookChanged();
  reloadLists();
}

function lookChanged(): void {
  update({ lookChanges: now().lookChanges + 1 });
}

/** Only lists that were asked for before, and came or failed; what nobody looks at is not fetched. */
function reloadLists(): void {
  for (const name of ["notes", "types", "fileTypes", "changes"] as const) {
    const { value, problem } = now()[name];
    if (value || problem) void loadList(name);
  }
  searchAgain();
}

/** Pairs this device by the ticket of a link or by six digits; whether it now is. */
export async function pair(secret: { ticket: string } | { code: string }): Promise<boolean> {
  update({ pairing: { busy: true } });
  const label = deviceLabel(navigator.userAgent, navigator.maxTouchPoints);
  try {
    await wire.pair({ ...secret, label });
    update({ pairing: { busy: false } });
    return true;
  } catch (error) {
    update({ pairing: { busy: false, problem: problemOf(error) } });
    return false;
  }
}
