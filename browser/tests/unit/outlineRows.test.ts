import assert from "node:assert/strict";
import { test } from "node:test";
import { neighbour, outlineRows, rowAtLine } from "../../app/model/outlineRows";
import type * as Shape from "../../app/wire/shapes";
import { idOf, sampleOutlines } from "../mock/sample";

const rows = outlineRows(sampleOutlines.get(idOf("Tidewatch/Views/TideListController.m"))!);
const nameOf = (index: number) => {
  const row = rows[index]!;
  return row.type === "symbol" ? row.symbol.name : row.type === "heading" ? row.heading.text : row.note.text;
};

test("symbols, marks and notes stand in the order of the source", () => {
  assert.deepEqual(
    rows.map((row, index) => `${row.depth} ${row.line} ${nameOf(index)}`),
    [
      "0 5 TideListController",
      "1 6 tides",
      "0 9 TideListController",
      "0 11 View",
      "1 13 -viewDidLoad",
      "1 18 Reloading the list",
      "1 19 -reload",
      "0 23 Table view",
      "1 25 -tableView:numberOfRowsInSection:",
      "1 29 -tableView:cellForRowAtIndexPath:",
      "2 31 reuse the cells",
    ],
  );
});

test("each row has a key of its own", () => {
  assert.equal(new Set(rows.map((row) => row.key)).size, rows.length);
});

test("the innermost symbol around a line is lit", () => {
  assert.equal(nameOf(rowAtLine(rows, 14)), "-viewDidLoad");
  assert.equal(nameOf(rowAtLine(rows, 18)), "TideListController");
  assert.equal(rowAtLine(rows, 1), -1);
});

test("outside all symbols the last one at file level is lit, and of two in a line the first", () => {
  const symbol = (name: string, line: number, endLine: number, children: Shape.Symbol[] = []): Shape.Symbol => ({ kind: "class", name, line, endLine, children });
  const items = [symbol("Tide", 2, 5, [symbol("height", 3, 3), symbol("time", 3, 3)]), symbol("Wave", 8, 9)];
  const sample = sampleOutlines.get(idOf("Tidewatch/Views/TideListController.m"))!;
  const few = outlineRows({ ...sample, items, headings: [], notes: [] });
  const lit = [1, 2, 3, 4, 7, 8, 10].map((line) => {
    const row = few[rowAtLine(few, line)];
    return row?.type === "symbol" ? row.symbol.name : "";
  });
  assert.deepEqual(lit, ["", "Tide", "height", "Tide", "Tide", "Wave", "Wave"]);
});

test("steps lead to the next of a kind, and end at the last", () => {
  assert.equal(nameOf(neighbour(rows, "symbol", 13, 1)), "-reload");
  assert.equal(nameOf(neighbour(rows, "symbol", 13, -1)), "TideListController");
  assert.equal(nameOf(neighbour(rows, "heading", 11, 1)), "Table view");
  assert.equal(nameOf(neighbour(rows, "note", 25, -1)), "Reloading the list");
  assert.equal(neighbour(rows, "note", 31, 1), -1);
  assert.equal(neighbour(rows, "heading", 11, -1), -1);
});
