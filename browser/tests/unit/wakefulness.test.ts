// The screen is kept on only where the device lets the page do that, and again after each return to it.
import assert from "node:assert/strict";
import { afterEach, beforeEach, test } from "node:test";
import { now, update } from "../../app/store";
import { canStayAwake, stayAwake, stayAwakeAgain } from "../../app/wakefulness";

const kGlobals = ["navigator", "document", "isSecureContext", "setTimeout"] as const;
const real = kGlobals.map((name) => [name, Object.getOwnPropertyDescriptor(globalThis, name)] as const);

function put(name: (typeof kGlobals)[number], value: unknown): void {
  Object.defineProperty(globalThis, name, { value, configurable: true, writable: true });
}

let asked: string[] = [];
let isRefused = false;

beforeEach(() => {
  asked = [];
  isRefused = false;
  update({ isAwake: false });
  put("isSecureContext", true);
  put("setTimeout", () => undefined); // what the page says stays
  put("document", Object.assign(new EventTarget(), { visibilityState: "visible" }));
  put("navigator", {
    wakeLock: {
      request: async (what: string) => {
        if (isRefused) throw new DOMException("The battery is low.", "NotAllowedError");
        asked.push(what);
        return { release: async () => void asked.push("release") };
      },
    },
  });
});
afterEach(() => {
  for (const [name, property] of real) {
    if (property) Object.defineProperty(globalThis, name, property);
    else Reflect.deleteProperty(globalThis, name);
  }
});

test("a page that came by an insecure way, or to a browser without locks, does not offer it", () => {
  assert.equal(canStayAwake(), true);
  put("isSecureContext", false);
  assert.equal(canStayAwake(), false);
  put("isSecureContext", true);
  put("navigator", {});
  assert.equal(canStayAwake(), false);
});

test("the screen stays on until the user says otherwise", async () => {
  await stayAwake(true);
  assert.equal(now().isAwake, true);
  await stayAwake(false);
  assert.equal(now().isAwake, false);
  assert.deepEqual(asked, ["screen", "release"]);
});

test("a device that refuses it is believed", async () => {
  isRefused = true;
  await stayAwake(true);
  assert.equal(now().isAwake, false);
  assert.match(now().message?.text ?? "", /does not let the page keep the screen on/);
});

test("a page that is seen again takes the lock again, but only one that had it", async () => {
  stayAwakeAgain();
  document.dispatchEvent(new Event("visibilitychange"));
  assert.deepEqual(asked, []);
  await stayAwake(true);
  document.dispatchEvent(new Event("visibilitychange"));
  assert.deepEqual(asked, ["screen", "screen"]);
});
