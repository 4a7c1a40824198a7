// The outline keeps to the editor, but not under the user's hand. Time is the test's.
import assert from "node:assert/strict";
import { afterEach, beforeEach, test } from "node:test";
import { activeChanged, follow, isLeftAlone, kLeftAloneMilliseconds, touched } from "../../app/following";
import { kInitialState, now, update } from "../../app/store";

const kFirst = "0000000000000001";
const kSecond = "0000000000000002";
const fileOf = (id: string) => ({ file: { id, name: `${id}.swift`, path: `${id}.swift`, line: 3 } });

const real = { now: Date.now, setTimeout, clearTimeout, fetch };
let time = 1_000_000;
let timers: { at: number; action: () => void }[] = [];

/** Lets time pass, and what was to be done within it happen. */
function pass(milliseconds: number): void {
  time += milliseconds;
  const due = timers.filter(({ at }) => at <= time);
  timers = timers.filter(({ at }) => at > time);
  for (const { action } of due) action();
}

beforeEach(() => {
  timers = [];
  Date.now = () => time;
  Object.assign(globalThis, {
    setTimeout: (action: () => void, milliseconds = 0) => {
      const timer = { at: time + milliseconds, action };
      timers.push(timer);
      return timer;
    },
    clearTimeout: (timer: unknown) => void (timers = timers.filter((each) => each !== timer)),
    fetch: () => new Promise(() => undefined), // no outline comes: what is asked for is what counts
  });
  const { outlineFile: _, ...fresh } = { ...kInitialState, outlineFile: "" };
  update({ ...fresh, outlines: new Map() });
});
afterEach(() => {
  // The next test's hand has touched nothing.
  pass(kLeftAloneMilliseconds);
  Date.now = real.now;
  Object.assign(globalThis, { setTimeout: real.setTimeout, clearTimeout: real.clearTimeout, fetch: real.fetch });
});

test("another file in the editor is shown at once", () => {
  activeChanged(fileOf(kFirst));
  assert.equal(now().outlineFile, kFirst);
  activeChanged(fileOf(kSecond));
  assert.equal(now().outlineFile, kSecond);
});

test("a list that was touched is left alone for ten seconds, and then catches up", () => {
  activeChanged(fileOf(kFirst));
  touched();
  activeChanged(fileOf(kSecond));
  assert.equal(now().outlineFile, kFirst);
  assert.equal(now().active.file?.id, kSecond);
  pass(kLeftAloneMilliseconds - 1);
  assert.equal(now().outlineFile, kFirst);
  pass(1);
  assert.equal(now().outlineFile, kSecond);
});

test("each touch begins the ten seconds again", () => {
  activeChanged(fileOf(kFirst));
  touched();
  activeChanged(fileOf(kSecond));
  pass(6_000);
  touched();
  pass(6_000);
  assert.ok(isLeftAlone());
  assert.equal(now().outlineFile, kFirst);
  pass(4_000);
  assert.equal(now().outlineFile, kSecond);
});

test("what the editor left again meanwhile is not shown", () => {
  activeChanged(fileOf(kFirst));
  touched();
  activeChanged(fileOf(kSecond));
  activeChanged(fileOf(kFirst));
  pass(kLeftAloneMilliseconds);
  assert.equal(now().outlineFile, kFirst);
});

test("without following, only a page that shows nothing takes the editor's file", () => {
  update({ follow: "off" });
  activeChanged(fileOf(kFirst));
  assert.equal(now().outlineFile, kFirst);
  activeChanged(fileOf(kSecond));
  assert.equal(now().outlineFile, kFirst);
  update({ follow: "highlight" });
  follow();
  assert.equal(now().outlineFile, kSecond);
});
