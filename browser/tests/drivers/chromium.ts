// Debian's Chromium, without a window.
import { type Browser, chromium, type Page } from "playwright-core";
import { type Colours, complaintsOfPage, type Device, type Driver, kDeadlineMilliseconds, kSizes, type Key, listenForComplaints, middleOf, type Size, type View } from "./driver";

const kProgram = process.env["NAVREL_CHROMIUM"] ?? "/usr/bin/chromium";

class ChromiumView implements View {
  constructor(private readonly page: Page) {}

  async go(url: string): Promise<void> {
    // A new fragment alone would not load the page again.
    await this.page.goto("about:blank");
    await this.page.goto(url);
  }

  run<Answer, Arguments extends unknown[]>(body: (...args: Arguments) => Answer | Promise<Answer>, ...args: Arguments): Promise<Answer> {
    const call = `(${body.toString()})(...${JSON.stringify(args)})`;
    return this.page.evaluate<Answer>(call);
  }

  async script(source: string): Promise<void> {
    await this.page.evaluate(`${source}; undefined`);
  }

  async tap(selector: string, text?: string): Promise<void> {
    const options = text === undefined ? {} : { hasText: text };
    await this.page.locator(selector, options).first().tap();
  }

  async hold(selector: string, text: string, meanwhile: () => Promise<void>): Promise<void> {
    await this.page.locator(selector, { hasText: text }).first().scrollIntoViewIfNeeded();
    const { x, y } = (await this.run(middleOf, selector, text))!;
    const session = await this.page.context().newCDPSession(this.page);
    await session.send("Input.dispatchTouchEvent", { type: "touchStart", touchPoints: [{ x, y }] });
    await meanwhile();
    await session.send("Input.dispatchTouchEvent", { type: "touchEnd", touchPoints: [] });
    await session.detach();
  }

  async type(selector: string, text: string): Promise<void> {
    await this.page.locator(selector).fill("");
    await this.page.locator(selector).pressSequentially(text);
  }

  async press(key: Key): Promise<void> {
    await this.page.keyboard.press(key);
  }

  async turn(size: Size): Promise<void> {
    await this.page.setViewportSize(size);
  }

  async picture(path: string): Promise<void> {
    await this.page.screenshot({ path });
  }

  complaints(): Promise<string[]> {
    return this.run(complaintsOfPage);
  }

  async close(): Promise<void> {
    await this.page.context().close();
  }
}

export class ChromiumDriver implements Driver {
  private constructor(readonly browser: Browser) {}

  static async start(): Promise<ChromiumDriver> {
    return new ChromiumDriver(await chromium.launch({ executablePath: kProgram, args: ["--no-sandbox", "--disable-dev-shm-usage"] }));
  }

  async open(device: Device, colours: Colours): Promise<View> {
    const context = await this.browser.newContext({
      viewport: kSizes[device],
      colorScheme: colours,
      hasTouch: true,
      isMobile: device === "phone",
      ignoreHTTPSErrors: true,
    });
    context.setDefaultTimeout(kDeadlineMilliseconds);
    await context.addInitScript(listenForComplaints);
    return new ChromiumView(await context.newPage());
  }

  async close(): Promise<void> {
    await this.browser.close();
  }
}
