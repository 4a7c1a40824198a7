// What keeps a browser that hangs from hanging the run.
import assert from "node:assert/strict";
import { test } from "node:test";
import { within } from "../drivers/driver";

const never = new Promise<never>(() => undefined);
const kLongEnough = 60_000;

test("what comes in time is passed on, be it an answer or an error", async () => {
  assert.equal(await within(kLongEnough, "it", Promise.resolve(7)), 7);
  await assert.rejects(within(kLongEnough, "it", Promise.reject(new Error("its own"))), /its own/);
});

test("what never comes is an error that says what it was", async () => {
  await assert.rejects(within(10, "The browser", never), /The browser took more than 0.01 s/);
});
