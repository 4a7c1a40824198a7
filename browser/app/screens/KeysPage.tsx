// The keys that keyboard.ts and the lists know.
import { Header } from "../parts/Header";
import { kUpToMore } from "./MoreScreen";

const kKeys: readonly [string, string][] = [
  ["/", "Search"],
  ["↓ ↑", "Go through the list"],
  ["Tab", "Go on to ⋯, and to the next part of the page"],
  ["Enter", "Open in the editor"],
  ["Esc", "Empty the field, leave it, go up"],
  ["[ ]", "Previous and next symbol, mark or note"],
  ["B", "Take the editor back"],
  ["1 – 5", "Files, Outline, Search, Notes, More"],
];

export function KeysPage() {
  return (
    <>
      <Header title="Keyboard" up={kUpToMore} />
      <div class="scroller page" tabIndex={0} role="region" aria-label="Keys">
        <dl class="facts keys">
          {kKeys.map(([key, what]) => (
            <div key={key}>
              <dt>
                <kbd>{key}</kbd>
              </dt>
              <dd>{what}</dd>
            </div>
          ))}
        </dl>
      </div>
    </>
  );
}
