// Where the page begins.
import { render } from "preact";
import { App } from "./App";
import { holdStillUnderFingers } from "./finger";
import { focusLater, watchForKeys } from "./focus";
import { drawHarmlessly } from "./harmless";
import { listenToKeys } from "./keyboard";
import { setWide, startHistory } from "./places";
import { restoreSettings } from "./settings";
import { keepConnected, pair } from "./sync";
import { stayAwakeAgain } from "./wakefulness";

/** The ticket of a link to pair with. Taken out of the address at once: it is for one use only. */
function takeTicket(): string | undefined {
  const ticket = /^#p=([A-Za-z0-9_-]{22})$/.exec(location.hash)?.[1];
  if (location.hash !== "") history.replaceState(history.state, "", location.pathname);
  return ticket;
}

/** From here on there is room for the navigator beside the outline. */
const kTwoPanes = matchMedia("(min-width: 840px)");

function measure(): void {
  const isSearching = document.activeElement?.id === "search";
  setWide(kTwoPanes.matches);
  // The field is another one now.
  if (isSearching) focusLater(() => document.getElementById("search"));
}

async function start(): Promise<void> {
  const ticket = takeTicket();
  restoreSettings();
  startHistory();
  measure();
  kTwoPanes.addEventListener("change", measure);
  listenToKeys();
  watchForKeys();
  holdStillUnderFingers();
  stayAwakeAgain();
  drawHarmlessly();
  render(<App />, document.getElementById("app")!);
  if (ticket !== undefined) await pair({ ticket });
  keepConnected();
}

void start();
