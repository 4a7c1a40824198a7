// What a user does with the page, against a server that plays Navrel and can fall into any state.
import assert from "node:assert/strict";
import { test } from "node:test";
import type * as Shape from "../../app/wire/shapes";
import { type Device, until, type View } from "../drivers/driver";
import { useEngine, withView } from "../drivers/engine";
import { idOf } from "../mock/sample";
import { kCode, kTicket, MockServer } from "../mock/server";
import { Hand } from "./hand";
import { kAssets } from "./screens";

useEngine();

interface Table {
  hand: Hand;
  view: View;
  server: MockServer;
}

/** A paired device before the files of the sample. */
function journey(name: string, device: Device, body: (table: Table) => Promise<void>, prepare: (server: MockServer) => void = () => {}): void {
  test(name, async () => {
    const server = new MockServer(kAssets);
    prepare(server);
    await server.start();
    try {
      await withView(device, "light", async (view) => {
        const hand = new Hand(view, device);
        await hand.pair({ link: async () => `${server.url}#p=${kTicket}` });
        await body({ hand, view, server });
      });
    } finally {
      await server.stop();
    }
  });
}

const kView = idOf("Tidewatch/Views/TideView.m");
const kTable = idOf("Tidewatch/Model/TideTable.swift");

journey("a link pairs, and its ticket leaves the address", "phone", async ({ view }) => {
  assert.equal(await view.run(() => location.hash), "");
  assert.ok(!(await view.run(() => location.href)).includes(kTicket));
});

test("six digits pair, and wrong ones say so", async () => {
  const server = new MockServer(kAssets);
  await server.start();
  try {
    await withView("phone", "light", async (view) => {
      const hand = new Hand(view, "phone");
      await view.go(server.url);
      await hand.sees("Pair this device");
      await view.type("#code", "999999");
      await hand.sees("That is not the code.");
      await view.type("#code", kCode);
      await hand.sees("Products");
    });
  } finally {
    await server.stop();
  }
});

journey("a tap on a symbol opens its line", "phone", async ({ hand, view, server }) => {
  await hand.goToFile("Model", "TideTable.swift");
  await hand.row("next(after:)");
  await hand.sees("TideTable.swift:14 is open in Neovim");
  assert.deepEqual(server.opened, [{ file: kTable, line: 14 }]);
  const spoken = await view.run(() => [...document.querySelectorAll("[aria-live], [role=status], [role=alert]")].map((each) => `${each.getAttribute("aria-live")}: ${each.textContent}`));
  assert.deepEqual(spoken, ["polite: TideTable.swift:14 is open in Neovim"]);
});

journey("those who hear the page hear five tabs and a search", "tablet", async ({ view }) => {
  const tabs = await view.run(() => [...document.querySelectorAll("[role=tablist] [role=tab]")].map((each) => each.textContent));
  assert.deepEqual(tabs, ["Files", "Outline", "Search", "Notes", "More"]);
  const fields = await view.run(() => [...document.querySelectorAll("input")].map((each) => `${each.type}: ${each.getAttribute("aria-label")}`));
  assert.deepEqual(fields, ["search: Search"]);
});

journey("the menu of a file that was not looked at has its counterpart, too", "phone", async ({ hand, view, server }) => {
  await hand.row("Tidewatch");
  await hand.row("Model");
  server.outlines.set(kTable, { ...server.outlines.get(kTable)!, counterparts: [{ id: kView, name: "TideView.m", path: "Tidewatch/Views/TideView.m" }] });
  await hand.more("TideTable.swift");
  await hand.button("Counterpart: TideView.m");
  await hand.sees("TideView.m is open in Neovim");
  assert.deepEqual(server.opened, [{ file: kView }]);
  await until("the menu to go", () => view.run(() => document.querySelector("dialog") === null));
});

journey("the browser's own Back leads up", "phone", async ({ hand, view }) => {
  const steps = await view.run(() => history.length);
  await hand.row("Tidewatch");
  await hand.row("Model");
  await hand.sees("Station.swift");
  // A place is drawn before it is in the history.
  await until("both steps in the history", async () => (await view.run(() => history.length)) === steps + 2);
  await view.run(() => history.back());
  await hand.sees("Application support");
  await view.run(() => history.back());
  await hand.sees("Products");
});

journey("a tablet shows the outline beside the files", "tablet", async ({ hand, view }) => {
  await hand.goToFile("Views", "TideView.m");
  assert.deepEqual(await hand.names("Files in Views"), ["TideListController.h", "TideListController.m", "TideView.h", "TideView.m"]);
  assert.ok((await hand.names("Outline of TideView.m")).includes("-drawRect:"));
  const before = await view.run(() => document.querySelector(".navigator")!.getBoundingClientRect().width);
  await view.run(() => (document.querySelector("[role=separator]") as HTMLElement).focus());
  await view.run(() => void document.activeElement!.dispatchEvent(new KeyboardEvent("keydown", { key: "ArrowRight", bubbles: true })));
  await until("a wider navigator", async () => (await view.run(() => document.querySelector(".navigator")!.getBoundingClientRect().width)) === before + 20);
});

journey("the divider is dragged, and stays there", "tablet", async ({ view }) => {
  const width = () => view.run(() => Math.round(document.querySelector(".navigator")!.getBoundingClientRect().width));
  const before = await width();
  await view.run(() => {
    const divider = document.querySelector("[role=separator]") as HTMLElement;
    divider.setPointerCapture = () => {}; // there is no such pointer
    const { x } = divider.getBoundingClientRect();
    for (const [type, moved] of [["pointerdown", 0], ["pointermove", 30], ["pointerup", 30], ["pointermove", 90]] as const) {
      divider.dispatchEvent(new PointerEvent(type, { bubbles: true, pointerId: 1, clientX: x + moved }));
    }
  });
  await until("a wider navigator", async () => (await width()) === before + 30);
  await view.run(() => {
    document.documentElement.dataset["before"] = "reload";
    location.reload();
  });
  await until("the same width again", async () => (await view.run(() => document.documentElement.dataset["before"] === undefined)) && (await width()) === before + 30);
});

journey("from the keyboard to the editor's line", "tablet", async ({ hand, view, server }) => {
  await view.press("/");
  await until("the search field", () => view.run(() => document.activeElement?.id === "search"));
  await view.type("#search", "next");
  await hand.sees("TideTable · TideTable.swift:14");
  await view.press("ArrowDown");
  await until("the second hit", () => view.run(() => document.querySelector(".selected")?.id === "hit-1"));
  await view.press("ArrowUp");
  await view.press("Enter");
  await hand.sees("TideTable.swift:14 is open");
  assert.deepEqual(server.opened, [{ file: kTable, line: 14 }]);
  await view.press("Escape");
  await hand.sees("Opened lately");
});

journey("chips narrow the search", "phone", async ({ hand, view }) => {
  await hand.tab("Search");
  await view.type("#search", "tide");
  await hand.sees("Tide.h");
  await hand.button("Types");
  await until("types only", async () => (await hand.names("Found")).every((name) => !name.includes(".")));
  assert.ok((await hand.names("Found")).includes("TideTable"));
});

journey("keys lead through screens, lists and symbols", "tablet", async ({ hand, view, server }) => {
  await hand.goToFile("Views", "TideView.m");
  await view.press("4");
  await hand.sees("reuse the cells");
  await view.press("1");
  await until("the files", () => view.run(() => document.querySelector("#tab-files")?.getAttribute("aria-selected") === "true"));
  for (const [key, line] of [["[", 11], ["[", 7], ["]", 11]] as const) {
    const steps = server.opened.length + 1;
    await view.press(key);
    await until("a step", async () => server.opened.length === steps);
    assert.equal(server.opened.at(-1)?.line, line);
  }
  await view.press("b");
  await until("the way back", async () => server.backs === 1);
});

journey("arrows move through a list", "phone", async ({ hand, view }) => {
  await hand.row("Tidewatch");
  await hand.sees("Resources");
  await view.press("ArrowDown");
  await view.press("ArrowDown");
  await until("the second row", () => view.run(() => document.activeElement?.textContent.includes("Views") === true));
  await view.press("Enter");
  await hand.sees("TideListController.m");
});

journey("a look at the code leaves the editor alone", "phone", async ({ hand, server }) => {
  await hand.goToFile("Views", "TideView.m");
  await hand.more("-drawRect:");
  await hand.button("Look at the code");
  await hand.sees("[[UIColor colorWithWhite:0.9 alpha:1] setFill];");
  assert.deepEqual(server.opened, []);
  await hand.button("Open line 20");
  await hand.sees("TideView.m:20 is open");
});

journey("the code that is looked at is that of the file as it was saved last", "phone", async ({ hand, server }) => {
  server.sources.set(kView, ["// as it was", "int tide;"]);
  await hand.goToFile("Views", "TideView.m");
  await hand.more("-drawRect:");
  await hand.button("Look at the code");
  await hand.sees("// as it was");
  server.sources.set(kView, ["// as it is now", "int tide;", "int wave;"]);
  server.change([kTable]);
  server.change([kView]);
  await hand.sees("// as it is now");
  await hand.sees("int wave;");
  await hand.sees("Lines 1 to 3 of 3");
});

journey("a tablet marks the file that is shown beside its list", "tablet", async ({ hand, view }) => {
  await hand.goToFile("Views", "TideView.m");
  await hand.row("TideView.h");
  await until("the mark", () =>
    view.run(() => [...document.querySelectorAll('[aria-label="Files in Views"] [aria-current=true]')].map((each) => each.querySelector(".row-name")!.textContent).join() === "TideView.h"),
  );
});

const kOverride = "\u202E";

/** Gives a file and what it declares names that turn what stands behind them. */
function deceive(server: MockServer): void {
  const name = `View${kOverride}m.txt`;
  const reference = { id: kView, name, path: `Tidewatch/Views/${name}` };
  const rename = (node: Shape.Node): Shape.Node => ({
    ...node,
    ...(node.kind === "group" ? { name: `${kOverride}${node.name}` } : node.id === kView ? { name } : {}),
    children: (node.children ?? []).map(rename),
  });
  server.root = rename(server.root!);
  const outline = server.outlines.get(kView)!;
  server.outlines.set(kView, { ...outline, ...reference, items: [{ kind: "class", name: `Tide${kOverride}View`, line: 3, endLine: 9, inherits: [`UI${kOverride}View`] }] });
  server.sources.set(kView, [`int a; ${kOverride}// b`]);
  server.notes = [{ kind: "todo", text: `later${kOverride}!`, line: 1, file: reference }];
  server.outcome = { outcome: "refused", reason: `${name} is not on disk any more.` };
  server.active = { file: null };
}

journey(
  "names that turn the writing direction are shown for what they are",
  "tablet",
  async ({ hand, view }) => {
    const looks = async (shown: string) => {
      await hand.sees(shown);
      assert.ok(!(await view.run(() => document.documentElement.outerHTML)).includes(kOverride), shown);
    };
    await hand.row("Tidewatch");
    await looks("‹U+202E›Views");
    await hand.row("Views");
    await hand.row("View‹U+202E›m.txt");
    await looks(": UI‹U+202E›View");
    await hand.more("Tide‹U+202E›View");
    await looks("Open View‹U+202E›m.txt:3");
    await hand.button("Open View");
    await looks("View‹U+202E›m.txt is not on disk");
    await hand.more("Tide‹U+202E›View");
    await hand.button("Look at the code");
    await looks("int a; ‹U+202E›// b");
    await hand.tab("Notes");
    await looks("later‹U+202E›!");
  },
  deceive,
);

/** Says what a finger does on a row; a driver without touch has only a mouse. */
function pressAsFinger(view: View, kind: "pointerdown" | "pointerup"): Promise<void> {
  return view.run((type: string) => {
    const row = [...document.querySelectorAll(".row-main")].find((each) => each.textContent.includes("-drawRect:"))!;
    row.dispatchEvent(new PointerEvent(type, { bubbles: true, isPrimary: true, pointerType: "touch" }));
    if (type === "pointerup") (row as HTMLElement).click();
  }, kind);
}

journey("a long press offers what ⋯ does, and opens nothing", "phone", async ({ hand, view, server }) => {
  await hand.goToFile("Views", "TideView.m");
  await pressAsFinger(view, "pointerdown");
  await until("the menu", () => view.run(() => document.querySelector("dialog[open]") !== null));
  await pressAsFinger(view, "pointerup");
  await hand.sees("Look at the code here");
  await hand.sees("Counterpart: TideView.h");
  await hand.sees("Reveal in Files");
  assert.deepEqual(server.opened, []);
  await view.run(() => {
    const writeText = async (text: string) => void (document.body.dataset["copied"] = text);
    Object.defineProperty(navigator, "clipboard", { value: { writeText }, configurable: true });
  });
  await hand.button("Copy TideView.m:20");
  await hand.sees("Copied Tidewatch/Views/TideView.m:20");
  assert.equal(await view.run(() => document.body.dataset["copied"]), "Tidewatch/Views/TideView.m:20");
});

journey("two big buttons step through symbols, marks and notes", "phone", async ({ hand, view, server }) => {
  const kList = idOf("Tidewatch/Views/TideListController.m");
  await hand.goToFile("Views", "TideListController.m");
  const step = async (button: string, line: number) => {
    const steps = server.opened.length + 1;
    await view.tap(`[aria-label="${button}"]`);
    await until(button, async () => server.opened.length === steps);
    assert.deepEqual(server.opened.at(-1), { file: kList, line });
  };
  await step("Next symbol", 5);
  await step("Next symbol", 6);
  await view.tap(".steps [aria-pressed]", "Mark");
  await step("Next mark", 11);
  await step("Next mark", 23);
  await view.tap(".steps [aria-pressed]", "Note");
  await step("Next note", 31);
  await step("Previous note", 18);
  const sizes = await view.run(() => [...document.querySelectorAll(".steps .big")].map((each) => Math.round(Math.min(each.getBoundingClientRect().width, each.getBoundingClientRect().height))));
  assert.ok(sizes.every((size) => size >= 48), String(sizes));
});

journey("rows have room for a finger", "phone", async ({ hand, view }) => {
  const lowRows = () =>
    view.run(() => {
      const least = matchMedia("(pointer: fine)").matches ? 40 : 48;
      return [...document.querySelectorAll(".row")].filter((each) => each.getBoundingClientRect().height < least).map((each) => each.textContent);
    });
  assert.deepEqual(await lowRows(), []);
  await hand.goToFile("Views", "TideListController.m");
  await hand.sees("Table view");
  assert.deepEqual(await lowRows(), []);
});

journey("counterparts and places are a tap away", "phone", async ({ hand, view }) => {
  await hand.goToFile("Views", "TideView.m");
  await view.tap("[aria-label='Counterpart: TideView.h']");
  await until("the header's outline", () => view.run(() => document.querySelector("[aria-label='Outline of TideView.h']") !== null));
  await hand.more("TideView");
  await hand.button("Reveal in Files");
  await hand.isLit("Files in Views", "TideView.h");
});

journey("notes open where they stand", "phone", async ({ hand, server }) => {
  await hand.tab("Notes");
  await hand.row("Drawing the water");
  await hand.sees("TideView.m:19 is open");
  assert.deepEqual(server.opened, [{ file: kView, line: 19 }]);
});

journey("file types are switched", "phone", async ({ hand, view, server }) => {
  await hand.tab("More");
  await hand.row("File types");
  await hand.row(".swift");
  await hand.sees(".swift files are left out");
  assert.deepEqual(server.fileTypes.items.find(({ extension }) => extension === "swift"), { extension: "swift", allowed: false });
  await until("the switch", () => view.run(() => [...document.querySelectorAll("[role=switch]")].find((each) => each.textContent.includes(".swift"))?.getAttribute("aria-checked") === "false"));
});

journey("the outline follows the editor", "phone", async ({ hand, server }) => {
  await hand.tab("Outline");
  await hand.isLit("Outline of TideView.m", "-setTide:animated:");
  server.emit("active", { file: { ...server.active.file!, line: 21 } });
  await hand.isLit("Outline of TideView.m", "-drawRect:");
  server.emit("active", { file: { id: kTable, name: "TideTable.swift", path: "Tidewatch/Model/TideTable.swift", line: 22 } });
  await hand.isLit("Outline of TideTable.swift", "load(_:)");
});

journey("without following, nothing is lit", "phone", async ({ hand, server }) => {
  await hand.tab("More");
  await hand.button("Off");
  await hand.tab("Outline");
  server.emit("active", { file: { ...server.active.file!, line: 21 } });
  const outline = server.outlines.get(kView)!;
  server.outlines.set(kView, { ...outline, items: [{ kind: "function", name: "written just now", line: 3, endLine: 3 }, ...outline.items] });
  server.change([kView]);
  await hand.sees("written just now");
  assert.equal(await hand.lit("Outline of TideView.m"), undefined);
  await hand.tab("More");
  await hand.button("Highlight");
  await hand.tab("Outline");
  await hand.isLit("Outline of TideView.m", "-drawRect:");
});

journey("a changed file changes its outline", "phone", async ({ hand, server }) => {
  await hand.goToFile("Views", "TideView.m");
  const outline = server.outlines.get(kView)!;
  server.outlines.set(kView, { ...outline, items: [{ kind: "function", name: "written just now", line: 3, endLine: 3 }, ...outline.items] });
  server.change([kView]);
  await hand.sees("written just now");
});

const outlinesRead = (view: View) => view.run(() => performance.getEntriesByType("resource").filter((each) => each.name.endsWith("/outline")).length);

journey("a row that changes under a finger is opened as it was when the finger came down", "phone", async ({ hand, view, server }) => {
  await hand.goToFile("Model", "TideTable.swift");
  const before = await outlinesRead(view);
  await view.hold(".row-main", "next(after:)", async () => {
    const outline = server.outlines.get(kTable)!;
    const lower = outline.items.map((item) => ({ ...item, line: item.line + 40, endLine: item.endLine + 40, children: [] }));
    server.outlines.set(kTable, { ...outline, items: [{ kind: "function", name: "written just now", line: 3, endLine: 3 }, ...lower], headings: [] });
    server.change([kTable]);
    await until("the new outline to arrive", async () => (await outlinesRead(view)) > before);
    await view.run(() => new Promise<void>((done) => requestAnimationFrame(() => requestAnimationFrame(() => done()))));
  });
  await hand.sees("TideTable.swift:14 is open");
  assert.deepEqual(server.opened, [{ file: kTable, line: 14 }]);
  await hand.sees("written just now");
});

journey("a changed tree changes the files", "phone", async ({ hand, server }) => {
  const { root } = server;
  server.root = { ...root!, children: [...root!.children!, { id: idOf("new"), name: "Fresh group", kind: "group", children: [] }] };
  server.change([], true);
  await hand.sees("Fresh group");
});

journey("after a loss the page comes back, and no tap was kept for later", "phone", async ({ hand, view, server }) => {
  await hand.goToFile("Model", "TideTable.swift");
  await server.stop();
  await hand.sees("Navrel is away. Last up to date");
  const filter = () => view.run(() => getComputedStyle(document.querySelector(".panes")!).filter);
  await until("the page without its colours", async () => (await filter()).startsWith("grayscale(1)"));
  await hand.row("load(_:)");
  await hand.sees("nothing was opened");
  await server.start();
  await hand.seesNoMore("Navrel is away.");
  await until("its colours again", async () => (await filter()) === "none");
  await hand.row("next(after:)");
  await hand.sees("TideTable.swift:14 is open");
  assert.deepEqual(server.opened, [{ file: kTable, line: 14 }]);
});

journey("a list that failed while Navrel was away comes with it", "phone", async ({ hand, server }) => {
  await server.stop();
  await hand.sees("Navrel is away.");
  await hand.tab("Notes");
  await hand.sees("Navrel does not answer.");
  await server.start();
  await hand.sees("reuse the cells");
});

journey("each way of waking opens a new stream", "phone", async ({ view, server }) => {
  const wakes: Record<string, () => void> = {
    online: () => void dispatchEvent(new Event("online")),
    visibilitychange: () => void document.dispatchEvent(new Event("visibilitychange")),
    pageshow: () => void dispatchEvent(new PageTransitionEvent("pageshow", { persisted: true })),
  };
  for (const [event, wake] of Object.entries(wakes)) {
    const before = server.streams;
    await view.run(wake);
    await until(`a new stream after ${event}`, async () => server.streams === before + 1);
  }
});

journey("a device that is forgotten shows nothing more", "phone", async ({ hand, server }) => {
  await hand.goToFile("Views", "TideView.m");
  server.forgetDevices();
  await hand.sees("Pair this device");
  assert.ok(!(await hand.text()).includes("TideView"));
});

journey("the theme stays where the user put it", "phone", async ({ hand, view }) => {
  await hand.tab("More");
  await hand.button("Dark");
  await until("the dark theme", () => view.run(() => document.documentElement.dataset["theme"] === "dark"));
  await view.run(() => {
    document.documentElement.dataset["before"] = "reload";
    location.reload();
  });
  await until("the page again", () => view.run(() => document.readyState === "complete" && document.documentElement.dataset["before"] === undefined));
  await until("the dark theme again", () => view.run(() => document.documentElement.dataset["theme"] === "dark" && getComputedStyle(document.body).backgroundColor === "rgb(22, 24, 29)"));
});

const kMany = 20_000;
journey(
  "twenty thousand rows are a few dozen elements",
  "phone",
  async ({ hand, view }) => {
    await hand.row("Many");
    await hand.sees("File 1.swift");
    const drawn = () => view.run(() => document.querySelectorAll(".row").length);
    assert.ok((await drawn()) < 60, String(await drawn()));
    await view.run(() => void (document.querySelector(".scroller")!.scrollTop = 1e9));
    await hand.sees("File 20000.swift");
    assert.ok((await drawn()) < 60, String(await drawn()));
    assert.equal(await view.run(() => document.querySelector(".row:last-child")?.getAttribute("aria-setsize")), String(kMany));
  },
  (server) => {
    server.active = { file: null };
    const children = Array.from({ length: kMany }, (_, index) => ({ id: idOf(`many ${index}`), name: `File ${index + 1}.swift`, kind: "file" as const, path: `Many/File ${index + 1}.swift` }));
    server.root = { ...server.root!, children: [{ id: idOf("many"), name: "Many", kind: "group", children }] };
  },
);

test("two devices see the same change at once", async () => {
  const server = new MockServer(kAssets);
  await server.start();
  try {
    await withView("phone", "light", (first) =>
      withView("tablet", "dark", async (second) => {
        const hands = [new Hand(first, "phone"), new Hand(second, "tablet")];
        for (const hand of hands) {
          await hand.pair({ link: async () => `${server.url}#p=${kTicket}` });
          await hand.tab("Notes");
          await hand.sees("reuse the cells");
        }
        server.notes = [{ kind: "todo", text: "written just now", line: 1, file: { id: kView, name: "TideView.m", path: "Tidewatch/Views/TideView.m" } }];
        server.change([kView]);
        for (const hand of hands) await hand.sees("written just now");
      }),
    );
  } finally {
    await server.stop();
  }
});
