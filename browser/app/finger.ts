// What is under a finger stays there until it is lifted. A row that is drawn again between the touch and the click
// would lose the tap, or give it to what stands in its place by then.
import { options } from "preact";

/** Longer than a slow tap. After that the page is drawn even if no browser said that the finger was lifted. */
const kLongestPressMilliseconds = 2_000;
/** Browsers that wait for a second tap send the click so late at most. */
const kLatestClickMilliseconds = 400;

let isHeld = false;
let draw: (() => void) | undefined;
let timer: ReturnType<typeof setTimeout> | undefined;

function releaseIn(milliseconds: number): void {
  clearTimeout(timer);
  timer = setTimeout(release, milliseconds);
}

/** Draws what has changed meanwhile. Must be called before something is shown that belongs to the press itself. */
export function release(): void {
  clearTimeout(timer);
  isHeld = false;
  const waiting = draw;
  draw = undefined;
  waiting?.();
}

function onPress({ isPrimary, target }: PointerEvent): void {
  if (!isPrimary || !(target instanceof Element) || !target.closest("button")) return;
  isHeld = true;
  releaseIn(kLongestPressMilliseconds);
}

/** The button is yet to hear of it, and may change what is shown: both are drawn at once. */
function onClick(): void {
  if (!isHeld) return;
  isHeld = false;
  releaseIn(0);
}

export function holdStillUnderFingers(): void {
  options.debounceRendering = (process) => {
    if (isHeld) draw = process;
    else queueMicrotask(process);
  };
  document.addEventListener("pointerdown", onPress, true);
  document.addEventListener("pointerup", () => isHeld && releaseIn(kLatestClickMilliseconds), true);
  document.addEventListener("pointercancel", release, true);
  document.addEventListener("click", onClick, true);
  // Rows come into sight.
  document.addEventListener("wheel", release, { capture: true, passive: true });
}
