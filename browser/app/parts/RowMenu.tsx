// What else can be done with a row: at the bottom of a phone, in the middle of a tablet.
import { useLayoutEffect, useRef } from "preact/hooks";
import { closeMenu, copyPlace, lookAt, open, place, reveal, showFile } from "../actions";
import { fileLook, lookOf } from "../model/kinds";
import { moveFocus } from "../focus";
import { now, type Target, useStore } from "../store";
import { Badge } from "./Badge";

export function RowMenu() {
  const target = useStore((state) => state.menu);
  return target ? <Menu target={target} /> : null;
}

function Menu({ target }: { target: Target }) {
  const dialog = useRef<HTMLDialogElement>(null);
  const counterparts = useStore((state) => state.outlines.get(target.file.id)?.value?.counterparts) ?? [];
  // At once: a Tab that comes before would lead away from the row.
  useLayoutEffect(() => dialog.current!.showModal(), []);

  const entry = (text: string, action: () => void) => (
    <li>
      <button
        type="button"
        onClick={() => {
          dialog.current?.close();
          action();
        }}
      >
        {text}
      </button>
    </li>
  );
  const onBackdrop = (event: Event) => {
    if (event.target === dialog.current) dialog.current?.close();
  };
  const onKeyDown = (event: KeyboardEvent) => {
    if (event.key === "ArrowDown" || event.key === "ArrowUp") event.preventDefault();
    if (event.key === "ArrowDown") moveFocus(dialog.current!, 1);
    if (event.key === "ArrowUp") moveFocus(dialog.current!, -1);
  };
  return (
    <dialog class="menu" ref={dialog} onClose={closeMenu} onClick={onBackdrop} onKeyDown={onKeyDown} aria-labelledby="menu-title">
      <p class="menu-title" id="menu-title">
        <Badge look={target.kind === "file" ? fileLook(now().tree.node(target.file.id)?.language) : lookOf(target.kind)} /> {target.name}
      </p>
      <p class="menu-below">{target.detail ?? target.file.path}</p>
      <ul role="list">
        {entry(`Open ${place(target)}`, () => open(target))}
        {entry("Look at the code here", () => lookAt(target))}
        {target.kind === "file" && entry("Show the outline", () => showFile(target.file.id))}
        {counterparts.map((file) => entry(`Counterpart: ${file.name}`, () => open({ kind: "file", name: file.name, file })))}
        {entry("Reveal in Files", () => reveal(target.file.id))}
        {entry(`Copy ${place(target)}`, () => void copyPlace(target))}
        {entry("Cancel", () => {})}
      </ul>
    </dialog>
  );
}
