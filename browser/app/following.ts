// The outline keeps to the editor, except while the user is busy with it.
import { showOutline } from "./loading";
import { now, update } from "./store";
import type { Shape } from "./wire/wire";

/** A list that was touched is left alone for this long. */
export const kLeftAloneMilliseconds = 10_000;

let touchedAt = -Infinity;
let waiting: ReturnType<typeof setTimeout> | undefined;

/** The user scrolls or taps in a list. */
export function touched(): void {
  touchedAt = Date.now();
  if (waiting === undefined) return;
  clearTimeout(waiting);
  catchUpLater();
}

export function isLeftAlone(): boolean {
  return Date.now() - touchedAt < kLeftAloneMilliseconds;
}

function catchUpLater(): void {
  waiting = setTimeout(() => {
    waiting = undefined;
    follow();
  }, touchedAt + kLeftAloneMilliseconds - Date.now());
}

export function activeChanged(active: Shape.Events["active"]): void {
  update({ active, stepLine: 0 });
  follow();
}

/** Shows the active file's outline, as far as the user wants that now. */
export function follow(): void {
  const { active, follow: mode, outlineFile } = now();
  if (!active.file || (mode === "off" && outlineFile !== undefined)) return;
  if (active.file.id === outlineFile) return;
  if (!isLeftAlone()) return showOutline(active.file.id);
  clearTimeout(waiting);
  catchUpLater();
}
