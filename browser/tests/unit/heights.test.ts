import assert from "node:assert/strict";
import { test } from "node:test";
import { Heights } from "../../app/model/heights";

test("rows are taken for as high as guessed until they are measured", () => {
  const heights = new Heights(10, 50);
  assert.equal(heights.total, 500);
  assert.equal(heights.measure(2, 80), 30);
  assert.equal(heights.measure(2, 80), 0);
  assert.equal(heights.top(2), 100);
  assert.equal(heights.top(3), 180);
  assert.equal(heights.total, 530);
});

test("the row at a distance from the top is found", () => {
  const heights = new Heights(10, 50);
  heights.measure(0, 100);
  assert.equal(heights.rowAt(-5), 0);
  assert.equal(heights.rowAt(99), 0);
  assert.equal(heights.rowAt(100), 1);
  assert.equal(heights.rowAt(1e6), 9);
});

test("an empty list has no height", () => {
  const heights = new Heights(0, 50);
  assert.equal(heights.total, 0);
  assert.equal(heights.rowAt(10), 0);
});

test("a better guess holds for all rows that were not measured", () => {
  const heights = new Heights(20_000, 48);
  assert.equal(heights.total, 20_000 * 48);
  assert.equal(heights.guessAgain(40), true);
  assert.equal(heights.guessAgain(40), false);
  assert.equal(heights.measure(1, 40), 0);
  assert.equal(heights.measure(2, 64), 24);
  assert.equal(heights.top(3), 144);
  assert.equal(heights.total, 20_000 * 40 + 24);
});
