// What this device remembers between visits. Nothing here is needed: a browser may refuse to keep it.
import { type Follow, now, type State, type Target, type Theme, update } from "./store";

const kKey = "navrel";
const kRecents = 12;
export const kNarrowestNavigator = 260;
export const kWidestNavigator = 520;

type Kept = Pick<State, "follow" | "theme" | "navigatorWidth" | "recents">;

function read(): Partial<Record<keyof Kept, unknown>> {
  try {
    return (JSON.parse(localStorage.getItem(kKey) ?? "{}") ?? {}) as Record<keyof Kept, unknown>;
  } catch {
    return {};
  }
}

function write(): void {
  const { follow, theme, navigatorWidth, recents } = now();
  try {
    localStorage.setItem(kKey, JSON.stringify({ follow, theme, navigatorWidth, recents } satisfies Kept));
  } catch {
    // Private windows may keep nothing.
  }
}

const oneOf = <Value extends string>(value: unknown, values: readonly Value[], otherwise: Value): Value =>
  values.includes(value as Value) ? (value as Value) : otherwise;

function isTarget(value: unknown): value is Target {
  const target = value as Partial<Target> | null;
  return typeof target?.name === "string" && typeof target.kind === "string" && typeof target.file?.id === "string";
}

export function restoreSettings(): void {
  const kept = read();
  const theme = oneOf<Theme>(kept.theme, ["auto", "light", "dark"], "auto");
  update({
    theme,
    follow: oneOf<Follow>(kept.follow, ["off", "highlight", "scroll"], "scroll"),
    recents: Array.isArray(kept.recents) ? kept.recents.filter(isTarget).slice(0, kRecents) : [],
  });
  applyTheme();
  kDarkSystem.addEventListener("change", applyTheme);
  setNavigatorWidth(typeof kept.navigatorWidth === "number" ? kept.navigatorWidth : now().navigatorWidth);
}

const kDarkSystem = matchMedia("(prefers-color-scheme: dark)");

/** The style sheet has each theme once: which one the system has is asked here, rather than there as well. */
function applyTheme(): void {
  const { theme } = now();
  document.documentElement.dataset["theme"] = theme !== "auto" ? theme : kDarkSystem.matches ? "dark" : "light";
}

export function setTheme(theme: Theme): void {
  update({ theme });
  applyTheme();
  write();
}

export function setFollow(follow: Follow): void {
  update({ follow });
  write();
}

export function setNavigatorWidth(width: number): void {
  const navigatorWidth = Math.round(Math.min(Math.max(width, kNarrowestNavigator), kWidestNavigator));
  document.documentElement.style.setProperty("--navigator", `${navigatorWidth}px`);
  update({ navigatorWidth });
}

/** At the end of a drag, and not at each of its steps. */
export function keepNavigatorWidth(): void {
  write();
}

export function addRecent(target: Target): void {
  const isSame = (other: Target) => other.file.id === target.file.id && other.name === target.name && other.kind === target.kind;
  update({ recents: [target, ...now().recents.filter((other) => !isSame(other))].slice(0, kRecents) });
  write();
}
