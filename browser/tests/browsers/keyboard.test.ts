// The page without a finger or a mouse: what Tab and the arrows reach on each screen, and a way through all of them.
import assert from "node:assert/strict";
import { test } from "node:test";
import { type Device, type Key, until, type View } from "../drivers/driver";
import { useEngine, withView } from "../drivers/engine";
import { kCode, MockServer } from "../mock/server";
import { Hand } from "./hand";
import { kAssets, kScreens, withScreen } from "./screens";

useEngine();

/** More than any screen has: whoever presses Tab so often goes in circles. */
const kMostStops = 60;

/** In the page: what has the focus, and what is wrong with how it shows that. */
function stop(): { name: string; faults: string[] } {
  const at = document.activeElement!;
  if (at === document.body) return { name: "", faults: [] };
  const { outlineStyle, outlineWidth } = getComputedStyle(at);
  const { left, top, width, height } = at.getBoundingClientRect();
  const seen = document.elementFromPoint(left + Math.min(width, innerWidth - left) / 2, top + Math.min(height, innerHeight - top) / 2);
  const faults = [];
  // WebKit shows it in the window that is in front only; without a window manager there is none.
  if (document.hasFocus() && (outlineStyle === "none" || parseFloat(outlineWidth) < 2)) faults.push("shows no focus");
  if (!seen || !(at.contains(seen) || seen.contains(at))) faults.push("is hidden while it has the focus");
  return { name: at.getAttribute("data-stop") ?? `${at.tagName} that nobody counted`, faults };
}

/** In the page: names all that Tab should stop at. */
function stops(): string[] {
  const around = document.querySelector("dialog[open]") ?? document;
  const isReached = (each: Element) => each.getAttribute("tabindex") !== "-1" && !each.matches(":disabled") && each.getClientRects().length > 0;
  return [...around.querySelectorAll("button, input, a, [tabindex]")].filter(isReached).map((each, index) => {
    const name = `${index}: ${each.tagName} ${each.getAttribute("aria-label") ?? each.textContent}`;
    each.setAttribute("data-stop", name);
    return name;
  });
}

/** In the page: lists and tabs in which no row or tab is a stop, so that arrows have no place to begin. */
function unreached(): string[] {
  const groups = [...document.querySelectorAll("[role=list], [role=tablist]")].filter((group) => group.querySelector("button"));
  return groups.filter((group) => !group.querySelector("button:not([tabindex='-1'])")).map((group) => `no row of ${group.getAttribute("aria-label")} is reached`);
}

/** In the page: whether the row that a tap brought the focus to is a stop by now, which the next drawing makes it. */
const isDrawn = () => document.activeElement?.getAttribute("tabindex") !== "-1";

async function faultsOf(view: View): Promise<string[]> {
  await until("the row that was tapped to be a stop", () => view.run(isDrawn));
  const expected = new Set(await view.run(stops));
  const faults = new Set(await view.run(unreached));
  for (let presses = 0; presses < kMostStops && expected.size > 0; presses++) {
    await view.press("Tab");
    const { name, faults: found } = await view.run(stop);
    expected.delete(name);
    for (const fault of found) faults.add(`${name} ${fault}`);
  }
  return [...faults, ...[...expected].map((name) => `${name} is not reached`)];
}

for (const device of ["phone", "tablet"] as const satisfies readonly Device[]) {
  test(`Tab reaches all of every screen of a ${device}, and shows where it is`, () =>
    withView(device, "light", async (view) => {
      const hand = new Hand(view, device);
      const faults: string[] = [];
      for (const screen of kScreens) {
        await withScreen(screen, hand, async () => void faults.push(...(await faultsOf(view)).map((fault) => `${screen.name}: ${fault}`)));
      }
      assert.deepEqual(faults, []);
    }));
}

const focused = (view: View) =>
  view.run(() => {
    const at = document.activeElement;
    return at === null || at === document.body ? "" : (at.getAttribute("aria-label") ?? at.textContent);
  });

class Keys {
  constructor(
    private readonly view: View,
    private readonly hand: Hand,
  ) {}

  async press(...keys: Key[]): Promise<void> {
    for (const key of keys) await this.view.press(key);
  }

  async isAt(name: string): Promise<void> {
    await until(`the focus at ${name}`, async () => (await focused(this.view)).includes(name)).catch(async (error: unknown) => {
      throw new Error(`${(error as Error).message}. It is at ${await focused(this.view)}`);
    });
  }

  /** Presses a key until the focus is at what has that name. */
  async go(key: Key, name: string): Promise<void> {
    for (let presses = 0; presses < kMostStops; presses++) {
      if ((await focused(this.view)).includes(name)) return;
      await this.view.press(key);
    }
    throw new Error(`${key} does not lead to ${name}. There is:\n${await this.hand.text()}`);
  }
}

test("from pairing to every screen and back by keys alone", async () => {
  const server = new MockServer(kAssets);
  server.active = { file: null };
  await server.start();
  try {
    await withView("phone", "light", async (view) => {
      const hand = new Hand(view, "phone");
      const keys = new Keys(view, hand);
      await view.go(server.url);
      await hand.sees("Pair this device");
      await view.type("#code", kCode);
      await hand.sees("Products");

      // Down into a group and up again: to the row where the way down began.
      await keys.isAt("Tidewatch");
      await keys.press("Enter");
      await hand.sees("Resources");
      await keys.go("ArrowDown", "Views");
      await keys.press("Enter");
      await hand.sees("TideListController.m");
      await keys.press("Escape");
      await hand.sees("Resources");
      await keys.isAt("Views");
      await keys.press("Enter");
      await keys.go("ArrowDown", "TideView.m");
      await keys.press("Enter");

      // A row's menu, through its entries, and away from it.
      await keys.go("ArrowDown", "-drawRect:");
      await keys.press("Tab");
      await keys.isAt("More about -drawRect:");
      await keys.press("Enter");
      await keys.go("ArrowDown", "Cancel");
      await keys.go("ArrowUp", "Open TideView.m:20");
      await keys.press("Escape");
      await until("the menu to go", () => view.run(() => document.querySelector("dialog") === null));
      await keys.isAt("More about -drawRect:");
      await keys.press("Enter");
      await until("the menu", () => view.run(() => document.querySelector("dialog[open]") !== null));
      await keys.go("Tab", "Look at the code");
      await keys.press("Enter");
      await hand.sees("UIRectFill(rect);");
      await keys.isAt("Open line 20");
      await keys.press("ArrowDown", "Enter");
      await hand.sees("TideView.m:21 is open");
      await keys.press("Escape");
      await until("the outline", () => view.run(() => document.querySelector("[aria-label='Outline of TideView.m']") !== null));
      // Backwards: beyond the last part, Firefox goes on to its own buttons.
      await keys.go("Shift+Tab", "Counterpart");
      await keys.press("Enter");
      await until("the header's outline", () => view.run(() => document.querySelector("[aria-label='Outline of TideView.h']") !== null));
      await keys.press("b");
      await until("the way back", async () => server.backs === 1);

      // Search, notes, and the pages of More.
      await keys.press("/");
      await until("the search field", () => view.run(() => document.activeElement?.id === "search"));
      await view.type("#search", "tide");
      await hand.sees("Tide.m");
      await keys.go("Tab", "Types");
      await keys.press("Enter");
      await until("types only", async () => (await hand.names("Found")).every((name) => !name.includes(".")));
      await keys.press("4");
      await hand.sees("reuse the cells");
      await keys.go("ArrowDown", "reuse the cells");
      await keys.press("Enter");
      await hand.sees("is open in Neovim");
      await keys.press("5");
      for (const [page, text] of [["Types", "TideListController"], ["Changes", "checksum.c"], ["File types", ".swift"], ["Keyboard", "Open in the editor"]] as const) {
        await keys.go("ArrowDown", page);
        await keys.press("Enter");
        await hand.sees(text);
        if (page === "File types") {
          await keys.go("ArrowDown", ".swift");
          await keys.press(" ");
          await hand.sees(".swift files are left out");
        }
        await keys.press("Escape");
        await keys.isAt(page);
      }
      await keys.go("Tab", "Dark");
      await keys.press("Enter");
      await until("the dark theme", () => view.run(() => document.documentElement.dataset["theme"] === "dark"));
    });
  } finally {
    await server.stop();
  }
});
