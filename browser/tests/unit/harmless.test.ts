import assert from "node:assert/strict";
import { test } from "node:test";
import { harmless } from "../../app/harmless";

const kTexts: readonly [text: string, drawn: string][] = [
  ["TideView.m", "TideView.m"],
  ["Gezeiten – 潮汐 – مد", "Gezeiten – 潮汐 – مد"],
  ["photo\u202Egpj.m", "photo‹U+202E›gpj.m"],
  ["\u2066a\u2069", "‹U+2066›a‹U+2069›"],
  ["Tide\u200BView", "Tide‹U+200B›View"],
  ["a\u200Db", "a‹U+200D›b"],
  ["by 👩\u200D💻 and 👨🏽\u200D🔧", "by 👩\u200D💻 and 👨🏽\u200D🔧"],
  ["half a pair \uD83D", "half a pair ‹U+D83D›"],
  ["\u{E0041}", "‹U+E0041›"],
  ["bell\u0007", "bell‹U+0007›"],
  ["\tif (a)\n", "\tif (a)\n"],
];

test("what deceives is drawn as its number, and nothing else is", () => {
  for (const [text, drawn] of kTexts) assert.equal(harmless(text), drawn);
});
