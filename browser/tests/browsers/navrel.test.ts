// The whole way: a real browser, a real Navrel, a real Neovim.
import assert from "node:assert/strict";
import { after, before, test } from "node:test";
import { appendFileSync, readFileSync, writeFileSync } from "node:fs";
import type * as Shape from "../../app/wire/shapes";
import { type Device, until, type View } from "../drivers/driver";
import { useEngine, withView } from "../drivers/engine";
import { Line } from "../navrel/line";
import { Navrel, navrelProgram } from "../navrel/navrel";
import { Neovim } from "../navrel/neovim";
import { faultsOf } from "../schema";
import { Hand, type World } from "./hand";

const program = navrelProgram();
if (program === undefined) console.error("There is no Navrel built: the journeys with one are left out");

const skip = program === undefined;
let navrel: Navrel;
let neovim: Neovim;
/** What was started, from the last to the first. */
const toEnd: (() => Promise<unknown>)[] = [];
/** Why there is nothing to make a journey with. */
let failure: Error | undefined;

if (!skip) {
  useEngine();
  before(async () => {
    try {
      navrel = await Navrel.prepare(program);
      toEnd.unshift(() => navrel.remove());
      neovim = await Neovim.start(navrel.runtimeFolder, navrel.environment);
      toEnd.unshift(() => neovim.stop());
      await navrel.start();
    } catch (error) {
      failure = error as Error;
    }
  });
  after(async () => {
    for (const end of toEnd) await end();
  });
}

/** Once, and not by each journey. */
test("Navrel and Neovim start", { skip }, () => {
  if (failure) throw failure;
});

function journey(name: string, device: Device, body: (hand: Hand, view: View) => Promise<void>, world: () => World = () => navrel): void {
  test(name, { skip }, async (context) => {
    if (failure) return context.skip("Navrel or Neovim did not start");
    await withView(device, "light", async (view) => {
      const hand = new Hand(view, device);
      await hand.pair(world());
      await body(hand, view);
    });
  });
}

const editorHas = async (hand: Hand, place: string) => {
  await hand.sees(`${place} is open`);
  await neovim.isAt(place);
};

journey("a tap on a symbol moves Neovim to its line", "phone", async (hand) => {
  await hand.goToFile("Model", "TideTable.swift");
  await hand.row("next(after:)");
  await editorHas(hand, "TideTable.swift:14");
  await hand.row("load(_:)");
  await editorHas(hand, "TideTable.swift:21");
  await hand.button("Back");
  await neovim.isAt("TideTable.swift:14");
});

journey("six digits pair as a link does", "phone", async (_, first) => {
  await withView("phone", "dark", async (view) => {
    const hand = new Hand(view, "phone");
    await view.go(navrel.url);
    await hand.sees("Pair this device");
    await view.type("#code", (await navrel.offer()).code);
    await hand.sees("Products");
  });
  assert.ok((await first.run(() => document.body.innerText)).includes("Tidewatch"));
});

journey("the page follows Neovim", "tablet", async (hand) => {
  await neovim.goTo(navrel.path("Tidewatch/Views/TideView.m"), 12);
  await hand.isLit("Outline of TideView.m", "-setTide:animated:");
  await neovim.goTo(navrel.path("Tidewatch/Views/TideView.m"), 21);
  await hand.isLit("Outline of TideView.m", "-drawRect:");
});

journey("the search leads from its field to Neovim's line", "tablet", async (hand, view) => {
  await view.press("/");
  await until("the search field", () => view.run(() => document.activeElement?.id === "search"));
  await view.type("#search", "distance(to");
  await until("the method", async () => (await hand.names("Found"))[0] === "distance(to:)");
  await view.press("Enter");
  await editorHas(hand, "Station.swift:11");
});

journey("a look, a counterpart and the notes", "phone", async (hand, view) => {
  await hand.goToFile("Views", "TideView.m");
  await hand.more("-drawRect:");
  await hand.button("Look at the code");
  await hand.sees("UIRectFill(rect);");
  await view.tap(".up");
  await view.tap("[aria-label='Counterpart: TideView.h']");
  await until("the header's outline", () => view.run(() => document.querySelector("[aria-label='Outline of TideView.h']") !== null));
  await hand.tab("Notes");
  await hand.row("Next tide");
  await editorHas(hand, "TideTable.swift:13");
});

journey("a saved file changes the outline that is shown", "phone", async (hand) => {
  await hand.goToFile("Model", "Station.swift");
  const path = navrel.path("Tidewatch/Model/Station.swift");
  const before = readFileSync(path, "utf8");
  appendFileSync(path, "\nfunc writtenJustNow() {}\n");
  await hand.sees("writtenJustNow()");
  writeFileSync(path, before);
  await hand.seesNoMore("writtenJustNow()");
});

journey("a switched file type is switched in Navrel", "phone", async (hand) => {
  const isSwiftAllowed = async () => (await navrel.asOwner<Shape.FileTypes>("GET", "/api/filetypes")).items.find(({ extension }) => extension === "swift")?.allowed;
  await hand.tab("More");
  await hand.row("File types");
  const before = await isSwiftAllowed();
  assert.notEqual(before, undefined);
  await hand.row(".swift");
  await until("the switch", async () => (await isSwiftAllowed()) === !before);
  await until("the other message", async () => (await hand.text()).includes(".swift files are"));
  await hand.row(".swift");
  await until("the switch back", async () => (await isSwiftAllowed()) === before);
});

journey("Navrel ends and starts again: the page comes back by itself", "phone", async (hand) => {
  await hand.goToFile("Model", "TideTable.swift");
  await navrel.stop();
  await hand.sees("Navrel is away.");
  await hand.row("load(_:)");
  await hand.sees("nothing was opened");
  await navrel.start();
  await hand.seesNoMore("Navrel is away.");
  await hand.row("next(after:)");
  await editorHas(hand, "TideTable.swift:14");
});

let line: Line;
const throughALine: World = {
  link: async () => {
    line = await Line.to(navrel.port);
    toEnd.unshift(() => line.close());
    return (await navrel.link()).replace(`:${navrel.port}/`, `:${line.port}/`);
  },
};

journey(
  "a device that slept shows at once what it missed, without a reload",
  "phone",
  async (hand, view) => {
    await neovim.goTo(navrel.path("Tidewatch/Views/TideView.m"), 12);
    await hand.tab("Outline");
    await hand.isLit("Outline of TideView.m", "-setTide:animated:");
    await view.run(() => void (document.body.dataset["slept"] = "yes"));
    line.cut();
    await neovim.goTo(navrel.path("Tidewatch/Views/TideView.m"), 21);
    await until("Navrel to see it", async () => (await navrel.asOwner<Shape.State>("GET", "/api/state")).editor.active?.line === 21);
    assert.equal(await hand.lit("Outline of TideView.m"), "-setTide:animated:");
    line.mend();
    await view.run(() => void document.dispatchEvent(new Event("visibilitychange")));
    await hand.isLit("Outline of TideView.m", "-drawRect:");
    assert.equal(await view.run(() => document.body.dataset["slept"]), "yes");
  },
  () => throughALine,
);

journey("a device that is forgotten is shown out at once, and the other stays", "phone", async (hand) => {
  await withView("tablet", "dark", async (other) => {
    const second = new Hand(other, "tablet");
    await second.pair(navrel);
    const newest = (await navrel.devices()).map(({ number }) => number).sort((a, b) => b - a)[0];
    await navrel.asOwner("DELETE", `/api/devices/${newest}`);
    await second.sees("Pair this device");
    assert.ok(!(await second.text()).includes("Tidewatch"));
  });
  await hand.tab("Notes");
  await hand.sees("reuse the cells");
});

journey("a device that may only look is told so", "phone", async (hand) => {
  const newest = (await navrel.devices()).map(({ number }) => number).sort((a, b) => b - a)[0];
  await navrel.asOwner("PATCH", `/api/devices/${newest}`, { readOnly: true });
  await hand.goToFile("Model", "TideTable.swift");
  await hand.row("next(after:)");
  await hand.sees("may look, not open");
});

test("what Navrel says has the shapes that the page expects", { skip }, async (context) => {
  if (failure) return context.skip("Navrel or Neovim did not start");
  const checked: string[] = [];
  const check = async (shape: string, path: string) => {
    const answer = await navrel.asOwner("GET", path);
    assert.deepEqual(faultsOf(shape, answer), [], path);
    checked.push(path);
  };
  const tree = await navrel.asOwner<Shape.Tree>("GET", "/api/tree");
  const files: Shape.Node[] = [];
  const gather = (node: Shape.Node) => {
    if (node.kind === "file") files.push(node);
    node.children?.forEach(gather);
  };
  gather(tree.root!);
  for (const [shape, path] of [["state", "state"], ["tree", "tree"], ["types", "types"], ["notes", "notes"], ["fileTypes", "filetypes"], ["changes", "changes"], ["search", "search?q=tide"], ["devices", "devices"]]) {
    await check(shape!, `/api/${path}`);
  }
  for (const { id, missing } of files) if (!missing) await check("outline", `/api/files/${id}/outline`);
  const source = files.find(({ name }) => name === "Station.swift")!;
  await check("source", `/api/files/${source.id}/source?from=2&to=4`);
  assert.deepEqual(faultsOf("pairing", await navrel.offer()), []);
  assert.ok(checked.length > 15);
});
