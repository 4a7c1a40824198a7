// The lines that Navrel and this extension write to each other: docs/editors.md has them all.

/** Where the user is; lines and columns count from 1, columns in characters. */
export interface Active {
  active: string | null;
  line?: number;
  column?: number;
  modified?: boolean;
}

export interface Hello {
  hello: string;
  version: 1;
  pid: number;
  folders: string[];
}

export type Outcome = { opened: number } | { refused: number; reason: string };

export type Outgoing = Hello | Active | Outcome;

/** The column (from 1, in characters) of an offset in a line, which the editor counts in UTF-16 units. */
export function columnAt(text: string, offset: number): number {
  return [...text.slice(0, offset)].length + 1;
}

/** The reverse; the end of the line for a column behind it. */
export function characterAt(text: string, column: number): number {
  return [...text].slice(0, Math.max(column - 1, 0)).join("").length;
}

/** A request to show a file. Without a column the line is selected. */
export interface Open {
  open: string;
  id: number;
  line?: number;
  column?: number;
}

/** A request to go one step back in the editor's own list of places. */
export interface Back {
  back: true;
  id: number;
}

export type Request = Open | Back;

/** The request in a line; undefined for anything else. */
export function requestIn(line: string): Request | undefined {
  let value: unknown;
  try {
    value = JSON.parse(line);
  } catch {
    return undefined;
  }
  if (typeof value !== "object" || value === null) {
    return undefined;
  }
  const { open, back, id, line: number, column } = value as Record<string, unknown>;
  if (typeof id !== "number") {
    return undefined;
  }
  if (back === true) {
    return { back, id };
  }
  if (typeof open !== "string") {
    return undefined;
  }
  return {
    open,
    id,
    ...(typeof number === "number" ? { line: number } : {}),
    ...(typeof column === "number" ? { column } : {}),
  };
}
