import assert from "node:assert/strict";
import { test } from "node:test";
import { hierarchy } from "../../app/model/hierarchy";
import { kLooks, kSearchChips } from "../../app/model/kinds";
import { age, counted, deviceLabel } from "../../app/model/words";
import { schema } from "../schema";

const type = (name: string, ...inherits: string[]) => ({ name, inherits, known: true });
const drawn = (items: ReturnType<typeof type>[]) => hierarchy(items).map(({ item, depth }) => `${depth} ${item.name}`);

test("types stand below what they inherit from", () => {
  assert.deepEqual(drawn([type("C", "B"), type("A"), type("B", "Unknown", "A"), type("D")]), ["0 A", "1 B", "2 C", "0 D"]);
});

test("types that inherit in a circle are shown once each", () => {
  assert.deepEqual(drawn([type("A", "B"), type("B", "A"), type("C", "C")]), ["0 C", "0 A", "1 B"]);
});

test("every kind that Navrel knows has a look, and every symbol a chip", () => {
  const { symbolKind, noteKind, nodeKind } = schema.definitions;
  const kinds = [...symbolKind.enum, ...noteKind.enum, ...nodeKind.enum];
  assert.deepEqual(kinds.filter((kind) => !(kind in kLooks)), []);
  const searched = Object.values(kSearchChips).flat() as string[];
  assert.deepEqual(symbolKind.enum.filter((kind) => !searched.includes(kind)), []);
});

test("ages and counts are words", () => {
  assert.deepEqual([0, 40_000, 300_000, 7_300_000].map(age), ["just now", "40 s ago", "5 min ago", "2 h ago"]);
  assert.equal(counted(1, "note"), "1 note");
  assert.equal(counted(20_000, "entry", "entries"), "20,000 entries");
});

test("a device says what it is", () => {
  const kMac = "Mozilla/5.0 (Macintosh; Intel Mac OS X 10_15_7) AppleWebKit/605.1.15 (KHTML, like Gecko) Version/17.4 Safari/605.1.15";
  const kPhone = "Mozilla/5.0 (iPhone; CPU iPhone OS 17_4 like Mac OS X) AppleWebKit/605.1.15 (KHTML, like Gecko) Version/17.4 Mobile/15E148 Safari/604.1";
  const kAndroid = "Mozilla/5.0 (Linux; Android 10; K) AppleWebKit/537.36 (KHTML, like Gecko) Chrome/124.0.0.0 Mobile Safari/537.36";
  assert.equal(deviceLabel(kMac, 5), "iPad, Safari");
  assert.equal(deviceLabel(kMac, 0), "Mac, Safari");
  assert.equal(deviceLabel(kPhone, 5), "iPhone, Safari");
  assert.equal(deviceLabel(kAndroid, 5), "Android phone, Chrome");
  assert.equal(deviceLabel("", 0), "Device");
});
