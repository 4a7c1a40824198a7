// Requests meet a server at its bounds, and networks that fail for a moment.
import assert from "node:assert/strict";
import { afterEach, beforeEach, test } from "node:test";
import { wire, WireError } from "../../app/wire/wire";

const kAnswerMilliseconds = 8_000;
const real = { fetch, setTimeout };
let answers: (() => Response)[] = [];
let asked: string[] = [];
let pauses: number[] = [];

const refused = (status: number) => () => new Response(JSON.stringify({ error: "No." }), { status });
const state = () => new Response(JSON.stringify({ program: "Navrel" }));
const noNetwork = () => {
  throw new TypeError("network");
};

beforeEach(() => {
  [answers, asked, pauses] = [[], [], []];
  Object.assign(globalThis, {
    fetch: async (path: string) => {
      asked.push(path);
      return answers.shift()!();
    },
    setTimeout: (action: () => void, milliseconds: number) => {
      if (milliseconds >= kAnswerMilliseconds) return undefined; // no answer takes that long here
      pauses.push(milliseconds);
      setImmediate(action);
      return undefined;
    },
  });
});
afterEach(() => void Object.assign(globalThis, real));

test("what only reads is asked for again where the network fails or the server is busy", async () => {
  answers = [noNetwork, refused(429), state];
  assert.deepEqual(await wire.state(), { program: "Navrel" });
  assert.equal(asked.length, 3);
  assert.ok(pauses[0]! < pauses[1]!);
});

test("a network that stays away is given up", async () => {
  answers = [noNetwork, noNetwork, noNetwork, noNetwork, state];
  await assert.rejects(wire.state(), (error: WireError) => error.failure === "away");
  assert.equal(asked.length, 4);
});

test("an answer that says no is an answer", async () => {
  for (const [status, failure] of [
    [404, "refused"],
    [401, "unpaired"],
  ] as const) {
    answers = [refused(status), state];
    await assert.rejects(wire.state(), (error: WireError) => error.failure === failure && error.message === "No.");
  }
  assert.equal(asked.length, 2);
});

test("a tap is never made twice", async () => {
  answers = [noNetwork, state];
  await assert.rejects(wire.open({ file: "0000000000000001", line: 3 }), (error: WireError) => error.failure === "away");
  answers = [refused(429), state];
  await assert.rejects(wire.back(), (error: WireError) => error.status === 429);
  assert.equal(asked.length, 2);
});
