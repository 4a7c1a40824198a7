// What is not needed every minute: further lists, how the page behaves, what Navrel is doing.
import { Choice } from "../parts/Choice";
import { Header } from "../parts/Header";
import { ShortList } from "../parts/ShortList";
import { age } from "../model/words";
import { go } from "../places";
import { setFollow, setTheme } from "../settings";
import { type Follow, type MorePage, type Theme, useStore } from "../store";
import { canStayAwake, stayAwake } from "../wakefulness";
import { ChangesPage } from "./ChangesPage";
import { FileTypesPage } from "./FileTypesPage";
import { KeysPage } from "./KeysPage";
import { TypesPage } from "./TypesPage";

export function MoreScreen() {
  const page = useStore((state) => state.place.page);
  switch (page) {
    case "types":
      return <TypesPage />;
    case "changes":
      return <ChangesPage />;
    case "fileTypes":
      return <FileTypesPage />;
    case "keys":
      return <KeysPage />;
    default:
      return <Overview />;
  }
}

export const kUpToMore = { name: "More", onTap: () => go({ tab: "more" }) };

const kPages: readonly { page: MorePage; name: string; below: string }[] = [
  { page: "types", name: "Types", below: "What inherits from what" },
  { page: "changes", name: "Changes", below: "What this branch changed" },
  { page: "fileTypes", name: "File types", below: "Which files are shown" },
  { page: "keys", name: "Keyboard", below: "From the keys of a tablet" },
];
const kFollows: readonly { value: Follow; text: string }[] = [
  { value: "off", text: "Off" },
  { value: "highlight", text: "Highlight" },
  { value: "scroll", text: "Scroll too" },
];
const kThemes: readonly { value: Theme; text: string }[] = [
  { value: "auto", text: "Automatic" },
  { value: "light", text: "Light" },
  { value: "dark", text: "Dark" },
];

function Overview() {
  const follow = useStore((state) => state.follow);
  const theme = useStore((state) => state.theme);
  return (
    <>
      <Header title="More" />
      <ShortList memory="more">
        <ul class="list" role="list" aria-label="Further lists">
          {kPages.map(({ page, name, below }) => (
            <li class="row" key={page}>
              <button type="button" class="row-main plain" onClick={() => go({ tab: "more", page })}>
                <span class="row-text">
                  <span class="row-name">{name}</span>
                  <span class="row-below">{below}</span>
                </span>
                <span class="row-end" aria-hidden="true">
                  ›
                </span>
              </button>
            </li>
          ))}
        </ul>
        <h2 class="list-title">Follow the editor</h2>
        <Choice name="Follow the editor" values={kFollows} chosen={follow} onChoose={setFollow} />
        <h2 class="list-title">Colours</h2>
        <Choice name="Colours" values={kThemes} chosen={theme} onChoose={setTheme} />
        <Awake />
        <Status />
      </ShortList>
    </>
  );
}

function Awake() {
  const isAwake = useStore((state) => state.isAwake);
  if (!canStayAwake()) return null;
  return (
    <>
      <h2 class="list-title">Screen</h2>
      <button type="button" class="wide-button" aria-pressed={isAwake} onClick={() => void stayAwake(!isAwake)}>
        {isAwake ? "The screen stays on" : "Keep the screen on"}
      </button>
    </>
  );
}

type Fact = [name: string, value: string, hint?: string | undefined];

function Status() {
  const state = useStore((all) => all.state);
  const connection = useStore((all) => all.connection);
  const freshAt = useStore((all) => all.freshAt);
  if (!state) return null;
  const facts: Fact[] = [
    ["Connection", connection === "open" ? "up to date" : `last up to date ${age(Date.now() - freshAt)}`],
    ...(state.sentences ?? []).map(({ part, text, hint }): Fact => [part, text, hint]),
    ["Navrel", state.version],
  ];
  if (state.browsers.readOnly) facts.unshift(["This device", "may look, not open"]);
  return (
    <>
      <h2 class="list-title">Status</h2>
      {state.messages.map(({ level, text, hint }) => (
        <p class={`notice ${level}`} key={text}>
          <strong>{text}</strong> {hint}
        </p>
      ))}
      <dl class="facts">
        {facts.map(([name, value, hint]) => (
          <div key={name}>
            <dt>{name}</dt>
            <dd>
              {value}
              {hint && <span class="fact-hint"> {hint}</span>}
            </dd>
          </div>
        ))}
      </dl>
    </>
  );
}
