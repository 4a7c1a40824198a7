import assert from "node:assert/strict";
import { test } from "node:test";
import { Connection, type ConnectionState } from "../../app/wire/connection";
import type { StreamObserver } from "../../app/wire/eventStream";
import { WireError } from "../../app/wire/wire";

/** A world whose clock and network the test moves. */
class World {
  readonly states: ConnectionState[] = [];
  readonly pauses: number[] = [];
  streams: { observer: StreamObserver; isClosed: boolean }[] = [];
  private action: (() => void) | undefined;

  readonly connection = new Connection({
    openStream: (observer) => {
      const stream = { observer, isClosed: false };
      this.streams.push(stream);
      return { close: () => void (stream.isClosed = true) };
    },
    after: (milliseconds, action) => {
      this.pauses.push(milliseconds);
      this.action = action;
      return () => void (this.action = undefined);
    },
    onState: (state) => this.states.push(state),
    onEvent: () => {},
  });

  get last(): StreamObserver {
    return this.streams[this.streams.length - 1]!.observer;
  }

  lose(failure: "away" | "unpaired" | "refused" = "away"): void {
    this.last.onEnd(new WireError(failure, "gone"));
  }

  passPause(): boolean {
    const { action } = this;
    this.action = undefined;
    action?.();
    return action !== undefined;
  }
}

test("pauses grow from half a second to eight, and begin again after an answer", () => {
  const world = new World();
  world.connection.wake();
  for (let attempt = 0; attempt < 6; attempt++) {
    world.lose();
    assert.ok(world.passPause());
  }
  assert.deepEqual(world.pauses, [500, 1000, 2000, 4000, 8000, 8000]);
  world.last.onOpen();
  world.lose();
  assert.equal(world.pauses[world.pauses.length - 1], 500);
});

test("waking opens a new stream at once and closes the old one", () => {
  const world = new World();
  world.connection.wake();
  world.last.onOpen();
  world.connection.wake();
  assert.equal(world.streams.length, 2);
  assert.equal(world.streams[0]!.isClosed, true);
  assert.deepEqual(world.states, ["connecting", "open", "connecting"]);
});

test("waking calls a pause off", () => {
  const world = new World();
  world.connection.wake();
  world.lose();
  world.connection.wake();
  assert.equal(world.passPause(), false);
  assert.equal(world.streams.length, 2);
});

test("a device that is not paired does not knock again", () => {
  const world = new World();
  world.connection.wake();
  world.lose("unpaired");
  assert.deepEqual(world.states, ["connecting", "unpaired"]);
  assert.equal(world.passPause(), false);
});

test("a refusal for being busy is tried again", () => {
  const world = new World();
  world.connection.wake();
  world.lose("refused");
  assert.deepEqual(world.states, ["connecting", "lost"]);
  assert.ok(world.passPause());
});
