// The engine that this run is about.
import { after, before } from "node:test";
import { ChromiumDriver } from "./chromium";
import { type Colours, type Device, type Driver, kDeadlineMilliseconds, type View, within } from "./driver";
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

/** Several attempts at it. */
const kOpeningMilliseconds = 4 * kDeadlineMilliseconds;
/** The longest journey takes a minute where every processor is busy. */
const kJourneyMilliseconds = 300_000;

let driver: Driver | undefined;

/** Starts the engine for the tests of a file, and ends it after them. */
export function useEngine(): void {
  before(async () => void (driver = await within(kDeadlineMilliseconds, `Starting ${engine}`, start())));
  after(() => driver && within(kDeadlineMilliseconds, `Ending ${engine}`, driver.close()));
}

/** A device of its own for one test. The page must have nothing to complain about. */
export async function withView(device: Device, colours: Colours, test: (view: View) => Promise<void>): Promise<void> {
  const view = await within(kOpeningMilliseconds, "Opening a page", driver!.open(device, colours));
  const journey = async () => {
    await test(view);
    const complaints = await view.complaints();
    if (complaints.length > 0) throw new Error(complaints.join("\n"));
  };
  try {
    await within(kJourneyMilliseconds, "The journey", journey());
  } finally {
    await within(2 * kDeadlineMilliseconds, "Closing the page", view.close());
  }
}
