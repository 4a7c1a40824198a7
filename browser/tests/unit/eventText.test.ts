import assert from "node:assert/strict";
import { test } from "node:test";
import { EventText } from "../../app/wire/eventText";
import { parseEvent } from "../../app/wire/eventStream";

test("events are whole however they are cut", () => {
  const text = "event: revision\ndata: {\"a\":1}\n\n: heartbeat\n\nevent: state\ndata: 1\ndata: 2\n\n";
  for (const size of [1, 2, 7, text.length]) {
    const events = new EventText();
    const taken = [];
    for (let at = 0; at < text.length; at += size) taken.push(...events.take(text.slice(at, at + size)));
    assert.deepEqual(taken, [
      { name: "revision", data: "{\"a\":1}" },
      { name: "state", data: "1\n2" },
    ]);
  }
});

test("lines may end as they do in HTTP", () => {
  assert.deepEqual(new EventText().take("event: x\r\ndata: 1\r\n\r\n"), [{ name: "x", data: "1" }]);
});

test("an event without an end is given up", () => {
  const events = new EventText();
  assert.throws(() => {
    for (let piece = 0; piece < 200; piece++) events.take("x".repeat(10_000));
  });
});

test("what a later version sends, and what is broken, is left out", () => {
  assert.equal(parseEvent("fromTheFuture", "{}"), undefined);
  assert.equal(parseEvent("toString", "{}"), undefined);
  assert.equal(parseEvent("hello", "{"), undefined);
  assert.deepEqual(parseEvent("resync", "{}"), { name: "resync", data: {} });
});
