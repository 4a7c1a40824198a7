// The five tabs: in thumb reach on a phone, above the navigator on a tablet.
import { goToTab } from "../places";
import { kTabs, type Tab, useStore } from "../store";

export const kTabNames: Record<Tab, string> = {
  files: "Files",
  outline: "Outline",
  search: "Search",
  notes: "Notes",
  more: "More",
};

const kDrawings: Record<Tab, string> = {
  files: "M3 6h7l2 2h9v11H3z",
  outline: "M4 6h16M8 12h12M8 18h12",
  search: "M10.5 4a6.5 6.5 0 1 0 0 13 6.5 6.5 0 0 0 0-13zM15.5 15.5L21 21",
  notes: "M5 4h14v16l-7-4-7 4z",
  more: "M5 12h.01M12 12h.01M19 12h.01",
};

export function TabBar() {
  const tab = useStore((state) => state.place.tab);
  const choose = (event: KeyboardEvent) => {
    const by = event.key === "ArrowRight" ? 1 : event.key === "ArrowLeft" ? -1 : 0;
    if (by === 0) return;
    const next = kTabs[(kTabs.indexOf(tab) + by + kTabs.length) % kTabs.length]!;
    goToTab(next);
    document.getElementById(`tab-${next}`)?.focus();
  };
  return (
    <div class="tabs" role="tablist" aria-label="Screens" onKeyDown={choose}>
      {kTabs.map((each) => (
        <button
          type="button"
          role="tab"
          key={each}
          id={`tab-${each}`}
          aria-selected={each === tab}
          aria-controls="screen"
          tabIndex={each === tab ? 0 : -1}
          onClick={() => goToTab(each)}
        >
          <svg viewBox="0 0 24 24" aria-hidden="true">
            <path d={kDrawings[each]} />
          </svg>
          <span>{kTabNames[each]}</span>
        </button>
      ))}
    </div>
  );
}
