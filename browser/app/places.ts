// Going from place to place, in step with the browser's history.
import { kTabs, now, type Place, type Tab, update } from "./store";

const isPlace = (value: unknown): value is Place => kTabs.includes((value as Place | null)?.tab as Tab);

/** Where each tab was left: a second tap on it leads to its first page. */
const left = new Map<Tab, Place>();

/** Of two panes, whether the user is at the outline. Where there is room for one, that is the one. */
let isAtOutline = false;

const hasOutline = ({ tab, look }: Place) => tab === "outline" || look !== undefined;

export function atOutline(): void {
  isAtOutline = true;
}

export function atNavigator(): void {
  isAtOutline = false;
}

/** Where a tab is, or was left. */
export function placeOf(tab: Tab): Place {
  const { place } = now();
  return place.tab === tab ? place : (left.get(tab) ?? { tab });
}

/** The page has room for two panes now, or no longer: what the user is at stays in sight. */
export function setWide(isWide: boolean): void {
  const { place, isWide: wasWide } = now();
  update({ isWide });
  if (isWide) isAtOutline = hasOutline(place);
  else if (wasWide && isAtOutline && place.tab !== "outline") go({ tab: "outline", ...(place.look ? { look: place.look } : {}) });
  else if (wasWide && !isAtOutline && place.tab === "outline") go(placeOf("files"));
}

export function startHistory(): void {
  const kept: unknown = history.state;
  if (isPlace(kept)) update({ place: kept });
  else history.replaceState(now().place, "");
  addEventListener("popstate", ({ state }) => {
    if (!isPlace(state)) return;
    isAtOutline = hasOutline(state);
    update({ place: state });
  });
}

export function go(place: Place): void {
  left.set(now().place.tab, now().place);
  isAtOutline = hasOutline(place);
  update({ place });
  // The browser takes as long for its history as for drawing the place: that comes first.
  setTimeout(() => history.pushState(place, ""));
}

export function goToTab(tab: Tab): void {
  const { place } = now();
  if (place.tab !== tab) return go(placeOf(tab));
  if (place.group !== undefined || place.page !== undefined || place.look !== undefined) go({ tab });
}

export function closeLook(): void {
  const { look: _, ...rest } = now().place;
  go(rest);
}
