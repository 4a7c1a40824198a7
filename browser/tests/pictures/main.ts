// `npm run pictures`: every screen and state as a picture, on a phone and a tablet, light and dark.
import { mkdirSync } from "node:fs";
import { ChromiumDriver } from "../drivers/chromium";
import { Hand } from "../browsers/hand";
import { kScreens, withScreen } from "../browsers/screens";

const out = process.argv[2] ?? "build/pictures";
mkdirSync(out, { recursive: true });
const driver = await ChromiumDriver.start();
for (const device of ["phone", "tablet"] as const) {
  for (const colours of ["light", "dark"] as const) {
    const view = await driver.open(device, colours);
    const hand = new Hand(view, device);
    for (const [index, screen] of kScreens.entries()) {
      const number = String(index + 1).padStart(2, "0");
      await withScreen(screen, hand, async () => {
        await view.run(() => Promise.all(document.getAnimations().map((animation) => animation.finished.catch(() => undefined))).then(() => undefined));
        await view.picture(`${out}/${device}-${colours}-${number}-${screen.name}.png`);
      });
    }
    await view.close();
  }
}
await driver.close();
