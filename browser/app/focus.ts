// Where the keys go on when the screen that they were used on is gone.

let usesKeys = false;

export function watchForKeys(): void {
  document.addEventListener("keydown", () => (usesKeys = true), true);
  document.addEventListener("pointerdown", () => (usesKeys = false), true);
}

/** Whether a new list is to take the focus: only from a user of keys, and only where nothing has it. */
export function isFocusFree(): boolean {
  return usesKeys && (document.activeElement === null || document.activeElement === document.body);
}

/** Whether the focus is to move along within a part of the page. */
export function isFocusIn(part: Element): boolean {
  return isFocusFree() || (usesKeys && part.contains(document.activeElement));
}

/** Moves the focus between the buttons of a part; false where it is on none of them. */
export function moveFocus(part: Element, by: 1 | -1): boolean {
  const buttons = [...part.querySelectorAll("button")];
  const at = buttons.indexOf(document.activeElement as HTMLButtonElement);
  buttons[at + by]?.focus();
  return at >= 0;
}

/** After it is drawn: it may be on a screen that is not there yet. */
export function focusLater(find: () => Element | null): void {
  setTimeout(() => (find() as HTMLElement | null)?.focus());
}
