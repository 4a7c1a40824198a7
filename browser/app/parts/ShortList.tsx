// A page of a few rows, all of them in the document. The arrows move in it (keyboard.ts), and it takes the focus as a
// windowed list does.
import type { ComponentChildren } from "preact";
import { useLayoutEffect, useRef } from "preact/hooks";
import { isFocusFree } from "../focus";

/** Which button of a page had the focus last. */
const cursors = new Map<string, number>();

interface Properties {
  /** The focus comes back to where it was by this. */
  memory: string;
  children: ComponentChildren;
}

export function ShortList({ memory, children }: Properties) {
  const box = useRef<HTMLDivElement>(null);
  const buttons = () => [...box.current!.querySelectorAll("button")];
  useLayoutEffect(() => {
    if (isFocusFree()) buttons()[cursors.get(memory) ?? 0]?.focus();
  }, []);
  return (
    <div class="scroller page" ref={box} onFocusIn={(event) => cursors.set(memory, buttons().indexOf(event.target as HTMLButtonElement))} data-list>
      {children}
    </div>
  );
}
