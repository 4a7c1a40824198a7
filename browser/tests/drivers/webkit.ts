// WebKitGTK's small browser, driven over WebDriver on an X server of its own: the nearest that Debian has to
// the browser of an iPhone.
import { type ChildProcess, spawn } from "node:child_process";
import { existsSync, readdirSync, writeFileSync } from "node:fs";
import type { Readable } from "node:stream";
import { type Colours, complaintsOfPage, type Device, type Driver, kDeadlineMilliseconds, kSizes, type Key, listenForComplaints, middleOf, type Size, until, type View } from "./driver";
import { freePort } from "./ports";
import { end } from "./processes";

const kLibraries = "/usr/lib";
/** Its buttons keep the window from becoming as narrow as a phone's. */
const kNarrowestWindow = 480;
const kAttempts = 3;
const kElement = "element-6066-11e4-a52e-4f735466cecf";
const kShift = "\uE008";
const kKeys: Partial<Record<Key, string>> = { Tab: "\uE004", Enter: "\uE007", Escape: "\uE00C", ArrowDown: "\uE015", ArrowUp: "\uE013" };

function findBrowser(): string {
  for (const architecture of readdirSync(kLibraries)) {
    for (const version of ["webkit2gtk-4.1", "webkit2gtk-4.0", "webkitgtk-6.0"]) {
      const path = `${kLibraries}/${architecture}/${version}/MiniBrowser`;
      if (existsSync(path)) return path;
    }
  }
  throw new Error("There is no MiniBrowser: install webkit2gtk-driver");
}

/** An X server on a display of its own choice. */
async function startDisplay(): Promise<{ process: ChildProcess; name: string }> {
  const process = spawn("Xvfb", ["-displayfd", "3", "-screen", "0", "1280x1024x24", "-nolisten", "tcp"], { stdio: ["ignore", "ignore", "ignore", "pipe"] });
  const output = process.stdio[3] as Readable;
  const name = await new Promise<string>((done, fail) => {
    output.once("data", (text) => done(`:${String(text).trim()}`));
    process.once("exit", () => fail(new Error("Xvfb ended at once")));
  });
  return { process, name };
}

class WebDriver {
  constructor(private readonly root: string) {}

  async ask<Answer>(method: "GET" | "POST" | "DELETE", path: string, body?: unknown): Promise<Answer> {
    const signal = AbortSignal.timeout(kDeadlineMilliseconds);
    const response = await fetch(this.root + path, { method, signal, ...(method === "POST" ? { body: JSON.stringify(body ?? {}) } : {}) });
    const { value } = (await response.json()) as { value: Answer & { error?: string; message?: string } };
    if (!response.ok) throw new Error(`${value.error}: ${value.message}`);
    return value;
  }
}

class WebKitView implements View {
  constructor(
    private readonly driver: WebDriver,
    private readonly program: ChildProcess,
    private readonly session: string,
    private readonly device: Device,
  ) {}

  async go(url: string): Promise<void> {
    await this.post("url", { url: "about:blank" });
    // Before the page is there: one that becomes narrower under a tap has two panes when that begins and one when it ends.
    await this.turn(kSizes[this.device]);
    await this.post("url", { url });
    await this.run(listenForComplaints);
  }

  run<Answer, Arguments extends unknown[]>(body: (...args: Arguments) => Answer | Promise<Answer>, ...args: Arguments): Promise<Answer> {
    return this.post("execute/sync", { script: `return (${body.toString()})(...arguments)`, args });
  }

  async script(source: string): Promise<void> {
    await this.post("execute/sync", { script: source, args: [] });
  }

  async tap(selector: string, text?: string): Promise<void> {
    const find = (wanted: string, held: string | null) => {
      const page = window as unknown as { isTapped?: boolean };
      const found = [...document.querySelectorAll(wanted)].find((each) => held === null || each.textContent.includes(held));
      found?.scrollIntoView({ block: "nearest" });
      page.isTapped = false;
      found?.addEventListener("click", () => (page.isTapped = true), { capture: true, once: true });
      return found;
    };
    // On a busy machine the element may move between the driver's look at it and its click, which then meets nothing.
    const hasMissed = () => (window as unknown as { isTapped?: boolean }).isTapped === false;
    await until(`${selector} ${text ?? ""}`, async () => {
      const element = await this.run<Record<string, string> | null, never[]>(find as never, selector as never, (text ?? null) as never);
      if (!element) throw new Error("it is not there");
      await this.post(`element/${element[kElement]}/click`, {});
      if (await this.run(hasMissed)) throw new Error("the tap missed it");
      return true;
    });
  }

  async hold(selector: string, text: string, meanwhile: () => Promise<void>): Promise<void> {
    const { x, y } = await until(text, async () => (await this.run(middleOf, selector, text)) ?? undefined);
    const mouse = { type: "pointer", id: "mouse", parameters: { pointerType: "mouse" } };
    const move = { type: "pointerMove", duration: 0, x, y };
    await this.post("actions", { actions: [{ ...mouse, actions: [move, { type: "pointerDown", button: 0 }] }] });
    await meanwhile();
    await this.post("actions", { actions: [{ ...mouse, actions: [{ type: "pointerUp", button: 0 }] }] });
  }

  async type(selector: string, text: string): Promise<void> {
    const element = await this.post<Record<string, string>>("element", { using: "css selector", value: selector });
    await this.post(`element/${element[kElement]}/clear`, {});
    await this.post(`element/${element[kElement]}/value`, { text });
  }

  async press(key: Key): Promise<void> {
    const values = key === "Shift+Tab" ? [kShift, kKeys.Tab] : [kKeys[key] ?? key];
    const downs = values.map((value) => ({ type: "keyDown", value }));
    const ups = values.map((value) => ({ type: "keyUp", value })).reverse();
    await this.post("actions", { actions: [{ type: "key", id: "keys", actions: [...downs, ...ups] }] });
  }

  /** Windows have edges: the page itself gets the device's size. */
  async turn({ width, height }: Size): Promise<void> {
    const inner = await this.run(() => [innerWidth, innerHeight] as const);
    const outer = await this.driver.ask<{ width: number; height: number }>("GET", `/session/${this.session}/window/rect`);
    await this.post("window/rect", { x: 0, y: 0, width: outer.width + width - inner[0], height: outer.height + height - inner[1] });
    const least = Math.max(width, kNarrowestWindow);
    await until("the window's size", () => this.run((wanted: number) => innerWidth <= wanted && innerWidth > wanted - 100, least));
  }

  async picture(path: string): Promise<void> {
    writeFileSync(path, Buffer.from(await this.driver.ask<string>("GET", `/session/${this.session}/screenshot`), "base64"));
  }

  complaints(): Promise<string[]> {
    return this.run(complaintsOfPage);
  }

  async close(): Promise<void> {
    await this.driver.ask("DELETE", `/session/${this.session}`).catch(() => undefined);
    await end(this.program);
  }

  private post<Answer>(command: string, body: unknown): Promise<Answer> {
    return this.driver.ask<Answer>("POST", `/session/${this.session}/${command}`, body);
  }
}

async function session(driver: WebDriver): Promise<string> {
  await until("WebKitWebDriver", () => driver.ask<{ ready: boolean }>("GET", "/status").then(({ ready }) => ready));
  const options = { binary: findBrowser(), args: ["--automation"] };
  const capabilities = { alwaysMatch: { acceptInsecureCerts: true, "webkitgtk:browserOptions": options } };
  const { sessionId } = await driver.ask<{ sessionId: string }>("POST", "/session", { capabilities });
  return sessionId;
}

export class WebKitDriver implements Driver {
  private constructor(private readonly display: { process: ChildProcess; name: string }) {}

  static async start(): Promise<WebKitDriver> {
    return new WebKitDriver(await startDisplay());
  }

  /** Now and then the driver waits for ever for the browser that it starts: another one is started in its place. */
  async open(device: Device, colours: Colours): Promise<View> {
    for (let attempt = 1; ; attempt += 1) {
      const port = await freePort();
      const program = this.start(port, colours);
      const driver = new WebDriver(`http://127.0.0.1:${port}`);
      try {
        return new WebKitView(driver, program, await session(driver), device);
      } catch (error) {
        await end(program);
        if (attempt === kAttempts) throw error;
        console.error(`WebKitWebDriver started no browser (${String(error)})`);
      }
    }
  }

  private start(port: number, colours: Colours): ChildProcess {
    return spawn("WebKitWebDriver", [`--port=${port}`], {
      stdio: "ignore",
      env: {
        ...process.env,
        DISPLAY: this.display.name,
        GDK_BACKEND: "x11",
        GTK_THEME: colours === "dark" ? "Adwaita:dark" : "Adwaita",
        LIBGL_ALWAYS_SOFTWARE: "1",
        NO_AT_BRIDGE: "1",
      },
    });
  }

  async close(): Promise<void> {
    await end(this.display.process);
  }
}
