// One row of a list: what it is, its name, where it is; a tap does what the row is for, ⋯ or a long press
// shows what else can be done.
import type { ComponentChildren } from "preact";
import { useRef } from "preact/hooks";
import { openMenu } from "../actions";
import { release } from "../finger";
import { touched } from "../following";
import type { Look } from "../model/kinds";
import type { Target } from "../store";
import { Badge } from "./Badge";
import type { RowPlace } from "./WindowedList";

const kLongPressMilliseconds = 500;
const kDeepest = 8;

interface Properties {
  place: RowPlace;
  look: Look;
  name: string;
  /** Which characters of the name were searched for. */
  positions?: readonly number[];
  beside?: string | undefined;
  below?: string | undefined;
  end?: ComponentChildren;
  depth?: number;
  /** The editor is there. */
  isLit?: boolean;
  /** What it stands for is shown beside the list. */
  isShown?: boolean;
  isDim?: boolean;
  isSelected?: boolean;
  id?: string;
  /** What ⋯ is about; none where there is nothing more to do. */
  target?: Target | undefined;
  onTap?: (() => void) | undefined;
}

export function Row(properties: Properties) {
  const { place, look, name, positions, beside, below, end, depth = 0, target, onTap } = properties;
  const press = useLongPress(target);
  const tabIndex = place.isCursor ? 0 : -1;
  const classes = ["row", properties.isLit && "lit", properties.isShown && "shown", properties.isDim && "dim", properties.isSelected && "selected"];
  const tap = () => {
    if (press.wasLong()) return;
    touched();
    onTap?.();
  };
  return (
    <li
      class={classes.filter(Boolean).join(" ")}
      aria-setsize={place.count}
      aria-posinset={place.index + 1}
      aria-current={properties.isLit ? "location" : properties.isShown || undefined}
      data-row={place.index}
      id={properties.id}
    >
      <button type="button" class={`row-main depth-${Math.min(depth, kDeepest)}`} tabIndex={tabIndex} onClick={tap} aria-disabled={!onTap || undefined} {...press.handlers}>
        <Badge look={look} />
        <span class="row-text">
          <span class="row-name">
            <Marked text={name} positions={positions} />
            {beside && <span class="row-beside"> {beside}</span>}
          </span>
          {below && <span class="row-below">{below}</span>}
        </span>
        {end !== undefined && <span class="row-end">{end}</span>}
      </button>
      {target && (
        <button type="button" class="row-more" tabIndex={tabIndex} aria-label={`More about ${name}`} onClick={() => openMenu(target)}>
          <span aria-hidden="true">⋯</span>
        </button>
      )}
    </li>
  );
}

/** A name with the characters that were searched for in bold. */
function Marked({ text, positions }: { text: string; positions?: readonly number[] | undefined }) {
  if (!positions || positions.length === 0) return <Breakable text={text} />;
  const isHit = new Set(positions);
  const pieces: { text: string; isHit: boolean }[] = [];
  for (let index = 0; index < text.length; index++) {
    const last = pieces[pieces.length - 1];
    if (last && last.isHit === isHit.has(index)) last.text += text[index]!;
    else pieces.push({ text: text[index]!, isHit: isHit.has(index) });
  }
  return <>{pieces.map((piece) => (piece.isHit ? <b>{piece.text}</b> : piece.text))}</>;
}

/** A name that is longer than this may not fit into a line. */
const kLongName = 24;

/** Selectors break behind their colons, and long names before their capitals, rather than anywhere. */
function Breakable({ text }: { text: string }) {
  const pieces = text.match(text.length > kLongName ? /[A-Z]+[^A-Z:]*:?|[^A-Z:]+:?|:/g : /[^:]+:?|:/g) ?? [];
  if (pieces.length < 2) return <>{text}</>;
  return (
    <>
      {pieces.map((piece, index) => (
        <>
          {index > 0 && <wbr />}
          {piece}
        </>
      ))}
    </>
  );
}

function useLongPress(target: Target | undefined) {
  const timer = useRef<ReturnType<typeof setTimeout>>(undefined);
  const isLong = useRef(false);
  const show = () => {
    isLong.current = true;
    release();
    if (target) openMenu(target);
  };
  // A busy page learns late that the finger was lifted in time: that comes first.
  const showSoon = () => (timer.current = setTimeout(show));
  const end = () => clearTimeout(timer.current);
  const handlers = target && {
    onPointerDown: (event: PointerEvent) => {
      isLong.current = false;
      clearTimeout(timer.current);
      if (event.pointerType === "touch") timer.current = setTimeout(showSoon, kLongPressMilliseconds);
    },
    onPointerUp: end,
    onPointerCancel: end,
    onPointerLeave: end,
    onContextMenu: (event: Event) => {
      event.preventDefault();
      end();
      if (!isLong.current) show();
    },
  };
  return {
    handlers: handlers ?? {},
    /** Whether the click that comes now ends a long press; asked once. */
    wasLong: () => {
      const was = isLong.current;
      isLong.current = false;
      return was;
    },
  };
}
