// A list of any length, of which only the rows in sight (and some around them) are in the document. Rows are
// as high as their text makes them: names wrap rather than being cut off, at any text size.
import type { ComponentChildren } from "preact";
import { useEffect, useLayoutEffect, useMemo, useReducer, useRef } from "preact/hooks";
import { isFocusFree, isFocusIn } from "../focus";
import { isLeftAlone, touched } from "../following";
import { Heights } from "../model/heights";

const kRowsAround = 6;
/** What a row of one line takes at the usual text size; others are measured when they come into sight. */
const kUsualHeight = matchMedia("(pointer: fine)").matches ? 40 : 48;

export interface RowPlace {
  index: number;
  count: number;
  /** Whether the Tab key stops here; arrows move it. */
  isCursor: boolean;
}

interface Properties<Row> {
  name: string;
  /** Where the list was scrolled to is remembered by this. */
  memory: string;
  rows: readonly Row[];
  keyOf: (row: Row) => string;
  draw: (row: Row, place: RowPlace) => ComponentChildren;
  /** The rows whose text stays at the top while those after it are scrolled through, ascending. */
  headings?: readonly number[];
  drawHeading?: (row: Row) => ComponentChildren;
  /** Scrolled into sight whenever it becomes another one: unless the user is busy with the list. */
  follow?: number | undefined;
  /** The same, but whatever the user does. */
  show?: number | undefined;
}

/** Where a list was left: at another width its rows have other heights, and the one at the top counts. */
const leftAt = new Map<string, { top: number; row: number; width: number }>();
/** The lists that are shown, and those of the drawing before: one of these that is new has moved to another pane. */
const shownLists = new Map<string, number>();

function countShown(memory: string, by: 1 | -1): void {
  const count = (shownLists.get(memory) ?? 0) + by;
  if (count > 0) shownLists.set(memory, count);
  else shownLists.delete(memory);
}

/** The row that the keys were at, so that the way up leads to where the way down began. */
const cursors = new Map<string, number>();
/** How high most rows of a list are. A right guess spares it being drawn twice for each row that comes into sight. */
const guesses = new Map<string, number>();
/** Of the last list that was shown: the next one has much the same. */
let lastHeight = innerHeight;

export function WindowedList<Row>(properties: Properties<Row>) {
  const { name, memory, rows, keyOf, draw, headings = [], drawHeading, follow, show } = properties;
  const scroller = useRef<HTMLDivElement>(null);
  const list = useRef<HTMLUListElement>(null);
  const [rewrapped, wrapAgain] = useReducer<number, void>((count) => count + 1, 0);
  const [, drawAgain] = useReducer<number, void>((count) => count + 1, 0);
  const heights = useMemo(() => new Heights(rows.length, guesses.get(memory) ?? kUsualHeight), [rows, rewrapped]);
  const width = useRef(0);
  // A tap shows what is in sight; the rows around it come when that has been painted.
  const around = useRef(0);
  const cursor = useRef(cursors.get(memory) ?? 0);
  const focusCursor = useRef(false);
  const wanted = useRef<{ row: number; isFar: boolean } | undefined>(undefined);
  /** The row at the top while the heights were others. */
  const anchor = useRef<number | undefined>(undefined);
  const isFirst = useRef(true);
  /** It was in another pane just now, and stays as it was. */
  const hasMoved = useRef(false);

  const top = scroller.current?.scrollTop ?? leftAt.get(memory)?.top ?? 0;
  const height = scroller.current?.clientHeight || lastHeight;
  const first = Math.max(0, heights.rowAt(top) - around.current);
  const end = Math.min(rows.length, heights.rowAt(top + height) + 1 + around.current);
  const known = useRef(heights);
  known.current = heights;
  const current = Math.min(Math.max(cursor.current, first), Math.max(end - 1, 0));

  /** Just into sight; or, where it is far away, with what stands around it. */
  const scrollToRow = (row: number, isFar: boolean) => {
    wanted.current = { row, isFar };
    const box = scroller.current!;
    const above = headings.length > 0 ? kUsualHeight : 0;
    const rowTop = heights.top(row);
    const rowEnd = heights.top(row + 1);
    const isAbove = rowTop < box.scrollTop + above;
    const gap = isAbove ? box.scrollTop + above - rowTop : rowEnd - box.scrollTop - box.clientHeight;
    if (gap <= 0) return;
    if (isFar || gap > box.clientHeight / 4) box.scrollTop = rowTop - box.clientHeight / 3;
    else box.scrollTop = isAbove ? rowTop - above : rowEnd - box.clientHeight;
  };

  // Rows that came into sight are measured before they are painted, and what stands above stays in place.
  useLayoutEffect(() => {
    const box = scroller.current!;
    const drawn = [...list.current!.children].map((child) => child.getBoundingClientRect().height);
    let isOther = false;
    if (isFirst.current) {
      const guess = middleOf(drawn) ?? kUsualHeight;
      guesses.set(memory, guess);
      isOther = heights.guessAgain(guess);
      const left = leftAt.get(memory);
      box.scrollTop = left?.top ?? 0;
      if (left && left.width !== box.clientWidth) anchor.current = left.row;
      hasMoved.current = shownLists.has(memory);
      width.current = box.clientWidth;
      lastHeight = box.clientHeight || lastHeight;
      isFirst.current = false;
      focusCursor.current = isFocusFree();
    }
    const wasAnchored = anchor.current !== undefined;
    if (anchor.current !== undefined) box.scrollTop = heights.top(anchor.current);
    anchor.current = undefined;
    const firstInSight = heights.rowAt(box.scrollTop);
    let moved = 0;
    drawn.forEach((height, place) => {
      const row = first + place;
      const difference = heights.measure(row, height);
      if (difference !== 0) isOther = true;
      if (row < firstInSight) moved += difference;
    });
    if (isOther && moved !== 0) box.scrollTop += moved;
    if (isOther && wanted.current) scrollToRow(wanted.current.row, wanted.current.isFar);
    if (isOther || wasAnchored) drawAgain();
    else wanted.current = undefined;
    if (focusCursor.current) {
      focusCursor.current = false;
      const row = list.current!.children[Math.max(cursor.current, first) - first] ?? list.current!.lastElementChild;
      (row?.querySelector("[tabindex='0']") as HTMLElement | null)?.focus({ preventScroll: true });
    }
  });

  useEffect(() => {
    if (follow !== undefined && follow >= 0 && !isLeftAlone() && !hasMoved.current) scrollToRow(follow, true);
  }, [follow, rows]);
  useEffect(() => {
    if (show !== undefined && show >= 0 && !hasMoved.current) {
      cursor.current = show;
      focusCursor.current = isFocusIn(list.current!);
      scrollToRow(show, false);
      drawAgain();
    }
  }, [show, rows]);
  useEffect(() => {
    hasMoved.current = false;
    around.current = kRowsAround;
    drawAgain();
    const observer = new ResizeObserver(() => {
      const wasAsWide = scroller.current?.clientWidth === width.current;
      width.current = scroller.current?.clientWidth ?? 0;
      if (wasAsWide) return drawAgain();
      anchor.current = known.current.rowAt(scroller.current?.scrollTop ?? 0);
      wrapAgain();
    });
    observer.observe(scroller.current!);
    return () => observer.disconnect();
  }, []);
  useEffect(() => {
    countShown(memory, 1);
    return () => void setTimeout(() => countShown(memory, -1));
  }, [memory]);

  const onScroll = () => {
    const box = scroller.current!;
    leftAt.set(memory, { top: box.scrollTop, row: heights.rowAt(box.scrollTop), width: box.clientWidth });
    drawAgain();
  };

  const onKeyDown = (event: KeyboardEvent) => {
    const page = Math.max(1, Math.floor(height / kUsualHeight) - 1);
    const steps: Record<string, number> = { ArrowDown: 1, ArrowUp: -1, PageDown: page, PageUp: -page, Home: -rows.length, End: rows.length };
    const by = steps[event.key];
    if (by === undefined || event.altKey || event.ctrlKey || event.metaKey) return;
    event.preventDefault();
    touched();
    cursor.current = Math.min(Math.max(current + by, 0), rows.length - 1);
    focusCursor.current = true;
    scrollToRow(cursor.current, false);
    drawAgain();
  };
  const onFocus = (event: FocusEvent) => {
    const row = (event.target as Element).closest<HTMLElement>("[data-row]");
    if (!row) return;
    const isOther = cursor.current !== Number(row.dataset["row"]);
    cursor.current = Number(row.dataset["row"]);
    cursors.set(memory, cursor.current);
    if (isOther) drawAgain();
  };

  const heading = headings.filter((row) => heights.top(row) < top + 1).at(-1);
  return (
    <div class="scroller" ref={scroller} onScroll={onScroll} onPointerDown={touched} onWheel={touched} onTouchMove={touched} onKeyDown={onKeyDown} onFocusIn={onFocus} data-list>
      {heading !== undefined && drawHeading && (
        <div class="sticky" aria-hidden="true">
          <div class="sticky-text">{drawHeading(rows[heading]!)}</div>
        </div>
      )}
      <ul
        class="list"
        role="list"
        aria-label={name}
        ref={list}
        style={{ paddingTop: `${heights.top(first)}px`, paddingBottom: `${heights.total - heights.top(end)}px` }}
      >
        {rows.slice(first, end).map((row, place) => {
          const index = first + place;
          return <Drawn key={keyOf(row)} row={row} index={index} count={rows.length} isCursor={index === current} draw={draw} />;
        })}
      </ul>
    </div>
  );
}

function middleOf(values: readonly number[]): number | undefined {
  return [...values].sort((a, b) => a - b)[values.length >> 1];
}

interface DrawnProperties<Row> extends RowPlace {
  row: Row;
  draw: (row: Row, place: RowPlace) => ComponentChildren;
}

/** Stays as it was while the list is only scrolled: the list's owner draws with another function when it is drawn again. */
function Drawn<Row>({ row, index, count, isCursor, draw }: DrawnProperties<Row>) {
  return useMemo(() => <>{draw(row, { index, count, isCursor })}</>, [row, index, count, isCursor, draw]);
}
