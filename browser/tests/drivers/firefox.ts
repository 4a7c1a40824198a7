// Debian's Firefox, without a window, over WebDriver BiDi.
import puppeteer, { type Browser, type ElementHandle, type Page } from "puppeteer-core";
import { type Colours, complaintsOfPage, type Device, type Driver, kDeadlineMilliseconds, kSizes, type Key, listenForComplaints, middleOf, type Size, until, type View } from "./driver";

const kProgram = process.env["NAVREL_FIREFOX"] ?? "/usr/bin/firefox-esr";
/** What a page is told of the system's colours. */
const kSchemes: Record<Colours, number> = { dark: 0, light: 1 };

class FirefoxView implements View {
  constructor(private readonly page: Page) {}

  async go(url: string): Promise<void> {
    // A new fragment alone would not load the page again.
    await this.page.goto("about:blank");
    await this.page.goto(url);
  }

  run<Answer, Arguments extends unknown[]>(body: (...args: Arguments) => Answer | Promise<Answer>, ...args: Arguments): Promise<Answer> {
    return this.page.evaluate(`(${body.toString()})(...${JSON.stringify(args)})`) as Promise<Answer>;
  }

  async script(source: string): Promise<void> {
    await this.page.evaluate(`${source}; undefined`);
  }

  async tap(selector: string, text?: string): Promise<void> {
    const find = (wanted: string, held: string | null) => [...document.querySelectorAll(wanted)].find((each) => held === null || each.textContent.includes(held));
    await until(`${selector} ${text ?? ""}`, async () => {
      const element = (await this.page.evaluateHandle(find, selector, text ?? null)).asElement() as ElementHandle | null;
      if (!element) return false;
      await element.click();
      return true;
    });
  }

  async hold(selector: string, text: string, meanwhile: () => Promise<void>): Promise<void> {
    const { x, y } = await until(text, async () => (await this.run(middleOf, selector, text)) ?? undefined);
    await this.page.mouse.move(x, y);
    await this.page.mouse.down();
    await meanwhile();
    await this.page.mouse.up();
  }

  async type(selector: string, text: string): Promise<void> {
    const field = (await this.page.waitForSelector(selector)) as ElementHandle<HTMLInputElement>;
    await field.evaluate((each) => {
      each.value = "";
      each.dispatchEvent(new Event("input", { bubbles: true }));
    });
    await field.type(text);
  }

  async press(key: Key): Promise<void> {
    if (key !== "Shift+Tab") return this.page.keyboard.press(key);
    await this.page.keyboard.down("Shift");
    await this.page.keyboard.press("Tab");
    await this.page.keyboard.up("Shift");
  }

  async turn(size: Size): Promise<void> {
    await this.page.setViewport(size);
  }

  async picture(path: string): Promise<void> {
    await this.page.screenshot({ path });
  }

  complaints(): Promise<string[]> {
    return this.run(complaintsOfPage);
  }

  async close(): Promise<void> {
    await this.page.browserContext().close();
  }
}

export class FirefoxDriver implements Driver {
  private readonly browsers = new Map<Colours, Promise<Browser>>();

  static start(): Promise<FirefoxDriver> {
    return Promise.resolve(new FirefoxDriver());
  }

  async open(device: Device, colours: Colours): Promise<View> {
    const context = await (await this.browserWith(colours)).createBrowserContext();
    const page = await context.newPage();
    page.setDefaultTimeout(kDeadlineMilliseconds);
    await page.setViewport(kSizes[device]);
    await page.evaluateOnNewDocument(listenForComplaints);
    return new FirefoxView(page);
  }

  async close(): Promise<void> {
    for (const browser of this.browsers.values()) await (await browser).close();
  }

  /** The colours are a preference of the whole browser. */
  private browserWith(colours: Colours): Promise<Browser> {
    const running = this.browsers.get(colours);
    if (running) return running;
    const browser = puppeteer.launch({
      browser: "firefox",
      executablePath: kProgram,
      acceptInsecureCerts: true,
      timeout: kDeadlineMilliseconds,
      extraPrefsFirefox: { "layout.css.prefers-color-scheme.content-override": kSchemes[colours] },
    });
    this.browsers.set(colours, browser);
    return browser;
  }
}
