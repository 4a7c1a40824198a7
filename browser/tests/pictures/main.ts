// `npm run pictures`: every screen and state as a picture, on a phone and a tablet, light and dark; and of these the ones in
// docs/images. Look at each before it is committed.
import { execFileSync } from "node:child_process";
import { copyFileSync, mkdirSync } from "node:fs";
import { ChromiumDriver } from "../drivers/chromium";
import type { Colours, Device } from "../drivers/driver";
import { Hand } from "../browsers/hand";
import { kScreens, withScreen } from "../browsers/screens";

/** How many screens are side by side in the overview, and how wide each is there. */
const kOverview: Record<Device, { columns: number; width: number }> = { phone: { columns: 8, width: 224 }, tablet: { columns: 5, width: 400 } };

const out = process.argv[2] ?? "build/pictures";
const docs = process.argv[3] ?? `${out}/docs`;
for (const folder of [out, docs]) mkdirSync(folder, { recursive: true });

function fileOf(device: Device, colours: Colours, name: string): string {
  const number = String(kScreens.findIndex((screen) => screen.name === name) + 1).padStart(2, "0");
  return `${out}/${device}-${colours}-${number}-${name}.png`;
}

/** ImageMagick's montage: pictures side by side. */
function join(pictures: readonly string[], columns: number, width: number, into: string): void {
  execFileSync("montage", [...pictures, "-resize", `${width}x`, "-tile", `${columns}x`, "-geometry", "+3+3", "-background", "#8b909c", "-strip", `PNG24:${into}`]);
}

const driver = await ChromiumDriver.start();
for (const device of ["phone", "tablet"] as const) {
  for (const colours of ["light", "dark"] as const) {
    const view = await driver.open(device, colours);
    const hand = new Hand(view, device);
    for (const screen of kScreens) {
      await withScreen(screen, hand, async () => {
        await view.run(() => Promise.all(document.getAnimations().map((animation) => animation.finished.catch(() => undefined))).then(() => undefined));
        await view.picture(fileOf(device, colours, screen.name));
      });
    }
    await view.close();
    const { columns, width } = kOverview[device];
    join(kScreens.map(({ name }) => fileOf(device, colours, name)), columns, width, `${docs}/browser-screens-${device}-${colours}.png`);
    if (device === "tablet") copyFileSync(fileOf(device, colours, "opened"), `${docs}/browser-tablet-${colours}.png`);
  }
}
join(["outline", "search", "notes"].map((name) => fileOf("phone", "light", name)), 3, 390, `${docs}/browser-phone.png`);
await driver.close();
