// An outline as the rows of a list: symbols, the headings between them and the notes beside them, in the
// order of the source.
import type { Shape } from "../wire/wire";

interface Place {
  key: string;
  line: number;
  depth: number;
}
export type SymbolRow = Place & { type: "symbol"; symbol: Shape.Symbol };
export type HeadingRow = Place & { type: "heading"; heading: Shape.Heading };
export type NoteRow = Place & { type: "note"; note: Shape.Note };
export type OutlineRow = SymbolRow | HeadingRow | NoteRow;

function symbolRows(symbols: readonly Shape.Symbol[], depth: number, rows: SymbolRow[]): SymbolRow[] {
  for (const symbol of symbols) {
    rows.push({ type: "symbol", key: `s${rows.length}`, line: symbol.line, depth, symbol });
    symbolRows(symbol.children ?? [], depth + 1, rows);
  }
  return rows;
}

export function outlineRows(outline: Shape.Outline): OutlineRow[] {
  const symbols = symbolRows(outline.items, 0, []);
  const beside: OutlineRow[] = [
    ...outline.headings.map((heading): HeadingRow => ({ type: "heading", key: `h${heading.line}`, line: heading.line, depth: 0, heading })),
    ...outline.notes.map((note): NoteRow => ({ type: "note", key: `n${note.line}`, line: note.line, depth: 0, note })),
  ].sort((a, b) => a.line - b.line);

  const rows: OutlineRow[] = [];
  const around: SymbolRow[] = []; // the symbols that hold the line, outermost first
  const add = (row: OutlineRow) => {
    while (around.length > 0 && around[around.length - 1]!.symbol.endLine < row.line) around.pop();
    if (row.type === "symbol") rows.push(row);
    else rows.push({ ...row, key: `${row.key}.${rows.length}`, depth: row.type === "note" ? around.length : 0 });
  };
  let next = 0;
  for (const symbol of symbols) {
    while (next < beside.length && beside[next]!.line <= symbol.line) add(beside[next++]!);
    add(symbol);
    around.length = Math.min(around.length, symbol.depth);
    around.push(symbol);
  }
  while (next < beside.length) add(beside[next++]!);
  return rows;
}

/**
 * The row of the innermost symbol that holds a line, the first one of several; where none does, of the last one before
 * it at file level; -1 before all of them. Navrel itself goes by the same rule.
 */
export function rowAtLine(rows: readonly OutlineRow[], line: number): number {
  let found = -1;
  let innermost = -1; // the depth of the symbol that holds the line
  for (const [index, row] of rows.entries()) {
    if (row.type !== "symbol") continue;
    if (row.line > line || row.depth <= innermost) break;
    if (row.symbol.endLine >= line) {
      found = index;
      innermost = row.depth;
    } else if (row.depth === 0) {
      found = index;
    }
  }
  return found;
}

export type StopKind = "symbol" | "heading" | "note";

/** The next row of a kind below a line (or above it): -1 where there is none. */
export function neighbour(rows: readonly OutlineRow[], kind: StopKind, line: number, direction: 1 | -1): number {
  const fits = (row: OutlineRow) => row.type === kind && (row.type !== "heading" || row.heading.text !== "");
  let found = -1;
  for (let index = 0; index < rows.length; index++) {
    const row = rows[index]!;
    if (!fits(row)) continue;
    if (direction > 0 && row.line > line) return index;
    if (direction < 0 && row.line < line) found = index;
  }
  return found;
}
