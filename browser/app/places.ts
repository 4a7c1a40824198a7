// Going from place to place, in step with the browser's history.
import { kTabs, now, type Place, type Tab, update } from "./store";

const isPlace = (value: unknown): value is Place => kTabs.includes((value as Place | null)?.tab as Tab);

/** Where each tab was left: a second tap on it leads to its first page. */
const left = new Map<Tab, Place>();

export function startHistory(): void {
  const kept: unknown = history.state;
  if (isPlace(kept)) update({ place: kept });
  else history.replaceState(now().place, "");
  addEventListener("popstate", (event) => {
    if (isPlace(event.state)) update({ place: event.state });
  });
}

export function go(place: Place): void {
  left.set(now().place.tab, now().place);
  update({ place });
  // The browser takes as long for its history as for drawing the place: that comes first.
  setTimeout(() => history.pushState(place, ""));
}

export function goToTab(tab: Tab): void {
  const { place } = now();
  if (place.tab !== tab) return go(left.get(tab) ?? { tab });
  if (place.group !== undefined || place.page !== undefined || place.look !== undefined) go({ tab });
}

export function closeLook(): void {
  const { look: _, ...rest } = now().place;
  go(rest);
}
