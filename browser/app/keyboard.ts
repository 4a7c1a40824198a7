// The keys that work wherever the focus is, except in a field of text or a menu.
import { back, step } from "./actions";
import { focusLater, moveFocus } from "./focus";
import { closeLook, goToTab } from "./places";
import { kTabs, now } from "./store";

function isTyping(target: EventTarget | null): boolean {
  return target instanceof HTMLInputElement || target instanceof HTMLTextAreaElement;
}

function focusList(): void {
  const lists = [...document.querySelectorAll("[data-list]")];
  const list = now().isWide && now().place.tab === "outline" ? lists.at(-1) : lists[0];
  (list?.querySelector("[tabindex='0'], button") as HTMLElement | null)?.focus();
}

/** In a list of a few rows, which has no keys of its own. */
function moveInList(event: KeyboardEvent): boolean {
  const list = (event.target as Element).closest("[data-list]");
  return list !== null && !event.defaultPrevented && moveFocus(list, event.key === "ArrowDown" ? 1 : -1);
}

function goUp(): void {
  if (now().place.look) closeLook();
  else document.querySelector<HTMLElement>(".navigator .up, .pane .up")?.click();
}

function onKeyDown(event: KeyboardEvent): void {
  if (event.altKey || event.ctrlKey || event.metaKey || isTyping(event.target) || document.querySelector("dialog[open]")) return;
  const tab = kTabs[Number(event.key) - 1];
  if (tab) goToTab(tab);
  else if (event.key === "/") {
    goToTab("search");
    focusLater(() => document.getElementById("search"));
  } else if (event.key === "[") step(-1);
  else if (event.key === "]") step(1);
  else if (event.key === "b") back();
  else if (event.key === "Escape") goUp();
  else if (event.key.startsWith("Arrow") && document.activeElement === document.body) focusList();
  else if (event.key !== "ArrowDown" && event.key !== "ArrowUp") return;
  else if (!moveInList(event)) return;
  event.preventDefault();
}

export function listenToKeys(): void {
  document.addEventListener("keydown", onKeyDown);
}
