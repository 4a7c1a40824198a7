// Keeps the screen on while the page is looked at. Only where the page came by a secure way.
import { say } from "./messages";
import { now, update } from "./store";

let lock: WakeLockSentinel | undefined;

export function canStayAwake(): boolean {
  return isSecureContext && "wakeLock" in navigator;
}

export async function stayAwake(isWanted: boolean): Promise<void> {
  update({ isAwake: isWanted });
  if (!isWanted) {
    await lock?.release();
    lock = undefined;
    return;
  }
  try {
    lock = await navigator.wakeLock.request("screen");
  } catch {
    update({ isAwake: false });
    say("This device does not let the page keep the screen on.", "bad");
  }
}

/** The system takes the lock away whenever the page is hidden. */
export function stayAwakeAgain(): void {
  document.addEventListener("visibilitychange", () => {
    if (document.visibilityState === "visible" && now().isAwake) void stayAwake(true);
  });
}
