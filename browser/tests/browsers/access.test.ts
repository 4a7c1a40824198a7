// Every screen and state, on a phone and a tablet, light and dark: nothing that keeps anybody out, nothing cut
// off, and nothing lost where letters are twice as large.
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { createRequire } from "node:module";
import { test } from "node:test";
import type { AxeResults } from "axe-core";
import type { Colours, Device, View } from "../drivers/driver";
import { useEngine, withView } from "../drivers/engine";
import { Hand } from "./hand";
import { kScreens, withScreen } from "./screens";

const axe = readFileSync(createRequire(import.meta.url).resolve("axe-core/axe.min.js"), "utf8");

async function faultsOf(view: View): Promise<string[]> {
  await view.script(`${axe}; window.axe = axe || window.axe`);
  // Messages and menus fade in: half-seen text has half its contrast.
  const results = await view.run(async () => {
    await Promise.all(document.getAnimations().map((animation) => animation.finished.catch(() => undefined)));
    const { axe } = window as unknown as { axe: { run(where: Document, options: object): Promise<AxeResults> } };
    const { violations } = await axe.run(document, { preload: false, resultTypes: ["violations"] });
    return violations.map(({ id, nodes }) => `${id}: ${nodes.map(({ target }) => target.join(" ")).join(", ")}`);
  });
  return results;
}

useEngine();

for (const device of ["phone", "tablet"] as const satisfies readonly Device[]) {
  test(`every screen is for everybody on a ${device}`, () =>
    withView(device, "dark", async (view) => {
      const hand = new Hand(view, device);
      const faults: string[] = [];
      for (const screen of kScreens) {
        await withScreen(screen, hand, async () => {
          const note = (colours: Colours, found: string[]) => faults.push(...found.map((fault) => `${screen.name}, ${colours}: ${fault}`));
          note("dark", await faultsOf(view));
          await view.run(() => void (document.documentElement.dataset["theme"] = "light"));
          note("light", await faultsOf(view));
          await view.run(() => void (document.documentElement.style.fontSize = "200%"));
          note("light", await hand.whatIsTooWide());
        });
      }
      assert.deepEqual(faults, []);
    }));
}
