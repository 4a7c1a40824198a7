// A device that is turned, and a window that gets another size: what the user looks at stays.
import assert from "node:assert/strict";
import { test } from "node:test";
import { type Device, type Size, until, type View } from "../drivers/driver";
import { useEngine, withView } from "../drivers/engine";
import { idOf } from "../mock/sample";
import { kTicket, MockServer } from "../mock/server";
import { Hand } from "./hand";
import { kAssets } from "./screens";

useEngine();

const kUpright: Size = { width: 744, height: 900 };
const kAcross: Size = { width: 1133, height: 700 };

class Turner extends Hand {
  async turn(size: Size): Promise<void> {
    await this.view.turn(size);
    const hasTwo = size.width >= 840;
    await until("the panes", () => this.view.run((wanted: boolean) => (document.querySelector(".navigator") !== null) === wanted, hasTwo));
  }

  async isOn(tab: string): Promise<void> {
    await until(`the tab ${tab}`, async () => (await this.chosenTab()) === tab);
  }

  chosenTab(): Promise<string | null | undefined> {
    return this.view.run(() => document.querySelector("[role=tab][aria-selected=true]")?.textContent);
  }

  /** What a list shows at its top. */
  topRow(list: string): Promise<string | undefined> {
    return this.view.run((name: string) => {
      const box = document.querySelector(`[aria-label="${name}"]`)!.closest("[data-list]")!;
      const edge = box.getBoundingClientRect().top + 1;
      const row = [...box.querySelectorAll("[data-row]")].find((each) => each.getBoundingClientRect().bottom > edge);
      return row?.textContent ?? undefined;
    }, list);
  }

  async scrollTo(list: string, top: number): Promise<void> {
    await this.view.run(
      (name: string, to: number) => {
        document.querySelector(`[aria-label="${name}"]`)!.closest("[data-list]")!.scrollTop = to;
      },
      list,
      top,
    );
  }
}

const kNarrowest: Size = { width: 320, height: 568 };

function turning(name: string, device: Device, from: Size, body: (hand: Turner, view: View, server: MockServer) => Promise<void>, prepare: (server: MockServer) => void = () => {}): void {
  test(name, async () => {
    const server = new MockServer(kAssets);
    prepare(server);
    await server.start();
    try {
      await withView(device, "light", async (view) => {
        const hand = new Turner(view, device);
        await hand.pair({ link: async () => `${server.url}#p=${kTicket}` });
        await hand.turn(from);
        await body(hand, view, server);
      });
    } finally {
      await server.stop();
    }
  });
}

turning("the outline of the file that was tapped stays", "tablet", kAcross, async (hand, view) => {
  await hand.goToFile("Views", "TideView.m");
  await hand.turn(kUpright);
  await hand.isOn("Outline");
  await hand.sees("-drawRect:");
  // And back, with the files beside it where they were.
  await hand.turn(kAcross);
  await hand.sees("-drawRect:");
  assert.ok((await hand.names("Files in Views")).includes("TideView.m"));
  await hand.turn(kUpright);
  await hand.isOn("Outline");
  await view.run(() => history.back());
  await until("the files", async () => (await hand.names("Files in Views")).length === 4);
});

turning("a group that was gone to after the outline stays", "tablet", kAcross, async (hand) => {
  await hand.goToFile("Views", "TideView.m");
  await hand.button("‹");
  await hand.sees("Application support");
  await hand.turn(kUpright);
  await hand.isOn("Files");
  await hand.sees("Application support");
  await hand.turn(kAcross);
  assert.ok((await hand.names("Files in Tidewatch")).includes("Model"));
  await hand.sees("-drawRect:");
});

turning("files beside an outline that came upright stay where they were", "tablet", kUpright, async (hand) => {
  await hand.goToFile("Views", "TideView.m");
  await hand.isOn("Outline");
  await hand.turn(kAcross);
  await hand.sees("-drawRect:");
  assert.ok((await hand.names("Files in Views")).includes("TideView.m"));
  await hand.button("‹");
  await hand.sees("Application support");
  await hand.turn(kUpright);
  await hand.isOn("Files");
});

turning("a search goes on, with the keys in its field", "tablet", kUpright, async (hand, view) => {
  await hand.tab("Search");
  await view.type("#search", "tide");
  await hand.sees("Tide.h");
  for (const size of [kAcross, kUpright]) {
    await hand.turn(size);
    await hand.isOn("Search");
    await hand.sees("Tide.h");
    await until("the field", () => view.run(() => document.activeElement?.id === "search" && (document.activeElement as HTMLInputElement).value === "tide"));
  }
});

turning(
  "code stays at the line that was scrolled to",
  "tablet",
  kAcross,
  async (hand) => {
    await hand.goToFile("Views", "TideView.m");
    await hand.more("-drawRect:");
    await hand.button("Look at the code here");
    await hand.sees("// line 30 of the file");
    const list = "Code of TideView.m";
    await hand.scrollTo(list, 600);
    const top = await until("a line that was scrolled to", async () => {
      const row = await hand.topRow(list);
      return row !== undefined && !row.startsWith("1//") && row;
    });
    for (const size of [kUpright, kAcross, kUpright]) {
      await hand.turn(size);
      await until(`${top} at the top`, async () => (await hand.topRow(list)) === top);
    }
    await hand.isOn("Outline");
  },
  (server) => void server.sources.set(idOf("Tidewatch/Views/TideView.m"), Array.from({ length: 300 }, (_, index) => `// line ${index + 1} of the file`)),
);

/** How much of a list is in sight. */
function heightOf(view: View, list: string): Promise<number> {
  return view.run((name: string) => document.querySelector(`[aria-label="${name}"]`)!.closest("[data-list]")!.clientHeight, list);
}

const kRow = 40;
const kLow: readonly Size[] = [
  { width: 500, height: 320 }, // a keyboard below an upright phone
  { width: 844, height: 190 }, // one below a phone on its side
];

turning("a keyboard on the screen leaves room for what is found", "phone", kUpright, async (hand, view) => {
  await hand.tab("Search");
  await view.type("#search", "tide");
  await hand.sees("Tide.h");
  for (const size of kLow) {
    await hand.turn(size);
    await until(`a row of ${size.width} by ${size.height}`, async () => (await heightOf(view, "Found")) >= kRow);
  }
});

turning("a low page leaves room for the outline", "phone", kUpright, async (hand, view) => {
  await hand.goToFile("Views", "TideListController.m");
  await hand.turn({ width: 500, height: 195 });
  await until("a row", async () => (await heightOf(view, "Outline of TideListController.m")) >= kRow);
});

turning("on the narrowest phone the steps and Back share a line, and Back is never broken", "phone", kUpright, async (hand, view) => {
  await hand.tab("Outline");
  await hand.turn(kNarrowest);
  const tops = () => view.run(() => [...document.querySelectorAll(".steps > *")].map((each) => Math.round(each.getBoundingClientRect().top + each.getBoundingClientRect().height / 2)));
  assert.equal(new Set(await tops()).size, 1, String(await tops()));
  await view.run(() => void (document.documentElement.style.fontSize = "200%"));
  const lines = await view.run(() => {
    const text = document.createRange();
    text.selectNodeContents(document.querySelector(".steps .back")!);
    return new Set([...text.getClientRects()].map(({ bottom }) => Math.round(bottom / 10))).size;
  });
  assert.equal(lines, 1);
});
