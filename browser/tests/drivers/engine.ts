// The engine that this run is about.
import { after, before } from "node:test";
import { ChromiumDriver } from "./chromium";
import type { Colours, Device, Driver, View } from "./driver";
import { FirefoxDriver } from "./firefox";
import { WebKitDriver } from "./webkit";

export const engine = process.env["NAVREL_BROWSER_ENGINE"] ?? "chromium";

function start(): Promise<Driver> {
  switch (engine) {
    case "chromium":
      return ChromiumDriver.start();
    case "webkit":
      return WebKitDriver.start();
    case "firefox":
      return FirefoxDriver.start();
    default:
      throw new Error(`No driver for ${engine}`);
  }
}

let driver: Driver | undefined;

/** Starts the engine for the tests of a file, and ends it after them. */
export function useEngine(): void {
  before(async () => void (driver = await start()));
  after(() => driver?.close());
}

/** A device of its own for one test. The page must have nothing to complain about. */
export async function withView(device: Device, colours: Colours, test: (view: View) => Promise<void>): Promise<void> {
  const view = await driver!.open(device, colours);
  try {
    await test(view);
    const complaints = await view.complaints();
    if (complaints.length > 0) throw new Error(complaints.join("\n"));
  } finally {
    await view.close();
  }
}
