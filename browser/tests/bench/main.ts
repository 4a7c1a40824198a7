// `npm run bench`: what the page weighs, and how soon it shows, answers and follows. In Chromium on a phone's
// screen with its processor slowed to a quarter; beside each time stands what a page of one line takes in the
// same run, as the floor.
import { gzipSync } from "node:zlib";
import { appendFileSync, readdirSync, readFileSync } from "node:fs";
import { join } from "node:path";
import { chromium, type Page } from "playwright-core";
import { kAssets } from "../browsers/screens";
import type * as Shape from "../../app/wire/shapes";
import { idOf } from "../mock/sample";
import { kTicket, MockServer } from "../mock/server";
import { Navrel, navrelProgram } from "../navrel/navrel";
import { Neovim } from "../navrel/neovim";

const kRounds = 9;
const kSlowdown = 4;
const kTaps = 40;
const kFrames = 60;
const kOpens = 40;
/** What a tap does after its picture is over by then, and is no part of the next one's time. */
const kPauseMilliseconds = 150;
/** Browsers tell of no shorter durations. */
const kShortestTold = 16;
const kRows = 20_000;
const kProgram = process.env["NAVREL_CHROMIUM"] ?? "/usr/bin/chromium";

const medianOf = (values: number[]) => values.sort((a, b) => a - b)[values.length >> 1]!;

/** In the form that scripts/bench gathers. */
function report(what: string, value: number, goal: number): void {
  console.log(`RATIO | page: ${what} | ${value.toFixed(1)} | at most ${goal} | ${value <= goal ? "met" : "missed"}`);
}

function reportFloor(what: string, value: number): void {
  console.log(`RATIO | page: ${what} | ${value.toFixed(1)} | |`);
}

/** What a device fetches before it sees anything. */
function weights(): void {
  const names = readdirSync(kAssets);
  const sizeOf = (name: string) => {
    const bytes = readFileSync(join(kAssets, name));
    return bytes[0] === 0x1f ? bytes.length : gzipSync(bytes).length;
  };
  const needed = names.filter((name) => /\.(html|js|css)$/.test(name));
  report("kB, gzipped", needed.reduce((sum, name) => sum + sizeOf(name), 0) / 1000, 40);
  report("kB with manifest and icons, gzipped", names.reduce((sum, name) => sum + sizeOf(name), 0) / 1000, 40);
  report("requests before it shows", needed.length, 3);
}

const many = Array.from({ length: kRows }, (_, index) => ({ id: idOf(`many ${index}`), name: `File ${index + 1}.swift`, kind: "file" as const, path: `Many/File ${index + 1}.swift` }));

/** A paired page; as slow as a phone, unless something else is what is measured. */
async function slowPage(link: string, slowdown = kSlowdown): Promise<{ page: Page; close: () => Promise<void> }> {
  const browser = await chromium.launch({ executablePath: kProgram, args: ["--no-sandbox", "--disable-dev-shm-usage"] });
  const context = await browser.newContext({ viewport: { width: 390, height: 844 }, hasTouch: true, isMobile: true });
  const page = await context.newPage();
  await page.goto(link);
  await page.waitForSelector(".row");
  const session = await context.newCDPSession(page);
  await session.send("Emulation.setCPUThrottlingRate", { rate: slowdown });
  return { page, close: () => browser.close() };
}

/** What the page itself had its thread do, without waiting for others that want the processor: at a quarter of its speed. */
async function work(page: Page, count: number, body: () => Promise<unknown>): Promise<number> {
  const session = await page.context().newCDPSession(page);
  await session.send("Performance.enable", { timeDomain: "threadTicks" });
  const seconds = async () => (await session.send("Performance.getMetrics")).metrics.find(({ name }) => name === "TaskDuration")!.value;
  const before = await seconds();
  await body();
  return (((await seconds()) - before) * 1_000 * kSlowdown) / count;
}

const linkOf = (server: MockServer) => `${server.url}#p=${kTicket}`;

/** The time from the start of a load to the largest paint. */
function largestPaint(): Promise<number> {
  return new Promise((done) => {
    new PerformanceObserver((list) => done(list.getEntries().at(-1)!.startTime)).observe({ type: "largest-contentful-paint", buffered: true });
  });
}

async function paints(page: Page, url: string, ready: string): Promise<number> {
  const times: number[] = [];
  for (let round = 0; round < kRounds; round++) {
    await page.goto(url);
    await page.waitForSelector(ready);
    times.push(await page.evaluate(largestPaint));
  }
  return medianOf(times);
}

/** From a tap to the next picture, for each tap: the longest of what it did. Short ones count for the shortest that is told. */
async function taps(page: Page, tap: (round: number) => Promise<void>): Promise<number[]> {
  await page.evaluate((shortest) => {
    const found = window as unknown as { durations: Map<number, number> };
    found.durations = new Map();
    new PerformanceObserver((list) => {
      for (const entry of list.getEntries() as (PerformanceEntry & { interactionId: number })[]) {
        const { interactionId, duration } = entry;
        if (interactionId > 0) found.durations.set(interactionId, Math.max(duration, found.durations.get(interactionId) ?? 0));
      }
    }).observe({ type: "event", durationThreshold: shortest } as PerformanceObserverInit);
  }, kShortestTold);
  for (let round = 0; round < kTaps; round++) {
    await tap(round);
    await page.waitForTimeout(kPauseMilliseconds);
  }
  const durations = await page.evaluate(() => [...(window as unknown as { durations: Map<number, number> }).durations.values()]);
  return [...durations, ...Array.from({ length: Math.max(0, kTaps - durations.length) }, () => kShortestTold)];
}

const kTabs = ["outline", "search", "notes", "more", "files"];

/**
 * Taps as a finger does. A driver that looks for the element before each tap, and for its change behind it, has the page's
 * thread do more for that than the page does for the tap.
 */
async function fingerOn(page: Page, selectors: readonly string[]): Promise<(round: number) => Promise<void>> {
  const middles = await Promise.all(
    selectors.map(async (selector) => {
      const { x, y, width, height } = (await page.locator(selector).boundingBox())!;
      return { x: x + width / 2, y: y + height / 2 };
    }),
  );
  return (round) => {
    const { x, y } = middles[round % middles.length]!;
    return page.touchscreen.tap(x, y);
  };
}

const fingerOnTabs = (page: Page) => fingerOn(page, kTabs.map((tab) => `#tab-${tab}`));
/** The taps have arrived. */
const lastTabIsChosen = (page: Page) => page.waitForSelector(`#tab-${kTabs[(kTaps - 1) % kTabs.length]}[aria-selected=true]`);

async function measureTaps(page: Page): Promise<void> {
  const ofTabs = await taps(page, await fingerOnTabs(page));
  await lastTabIsChosen(page);
  await page.setContent('<meta name="viewport" content="width=device-width"><button>one</button>');
  await page.evaluate(() => (document.querySelector("button")!.onclick = () => document.body.append(".")));
  const ofButton = await taps(page, await fingerOn(page, ["button"]));
  report("ms for the slowest tap on a tab (INP)", Math.max(...ofTabs), 100);
  reportFloor("ms for the slowest tap on a page of one button", Math.max(...ofButton));
  report("ms for the middle tap on a tab", medianOf(ofTabs), 100);
  reportFloor("ms for the middle tap on a page of one button", medianOf(ofButton));
}

async function measurePage(server: MockServer): Promise<void> {
  const { page, close } = await slowPage(linkOf(server));
  const bare = `${server.url}manifest.webmanifest`; // one short text
  report("ms to the first sight of the files (LCP)", await paints(page, server.url, ".row"), 1000);
  reportFloor("ms to the first sight of one line of text", await paints(page, bare, "pre"));

  await page.goto(server.url);
  await page.waitForSelector(".row");
  await measureTaps(page);
  await close();
}

/** The same without a slower processor, which would be counted as work. */
async function measureWork(server: MockServer): Promise<void> {
  const { page, close } = await slowPage(linkOf(server), 1);
  const tap = await fingerOnTabs(page);
  const tapped = await work(page, kTaps, async () => {
    for (let round = 0; round < kTaps; round++) await tap(round);
    await lastTabIsChosen(page);
  });
  report("ms of work for a tap on a tab", tapped, 100);
  await page.locator(".row-main", { hasText: "Many" }).tap();
  await page.waitForSelector('[aria-label="Files in Many"]');
  report("ms of work for a frame while rows fly by", await work(page, kFrames, () => page.evaluate(flight, [".scroller", kFrames] as [string, number])), 100);
  await close();
}

/** The gaps between frames in which a scroller goes on by nearly a screen: 95 % are shorter. */
function flight([scroller, frames]: [string, number]): Promise<number> {
  return new Promise((done) => {
    const box = document.querySelector(scroller)!;
    const gaps: number[] = [];
    let last = performance.now();
    const step = (now: number) => {
      gaps.push(now - last);
      last = now;
      box.scrollTop += 700;
      if (gaps.length < frames) requestAnimationFrame(step);
      else done(gaps.slice(2).sort((a, b) => a - b)[Math.floor((frames - 2) * 0.95)]!);
    };
    requestAnimationFrame(step);
  });
}

async function measureRows(server: MockServer): Promise<void> {
  const { page, close } = await slowPage(linkOf(server));
  const times: number[] = [];
  for (let round = 0; round < kRounds; round++) {
    times.push(
      await page.evaluate(
        () =>
          new Promise<number>((done) => {
            const start = performance.now();
            const row = [...document.querySelectorAll<HTMLElement>(".row-main")].find((each) => each.textContent.includes("Many"));
            const look = () => (document.querySelector('[aria-label="Files in Many"] .row') ? requestAnimationFrame(() => done(performance.now() - start)) : requestAnimationFrame(look));
            row!.click();
            look();
          }),
      ),
    );
    await page.locator(".up").tap();
    await page.waitForSelector('[aria-label="Files in Tidewatch"]');
  }
  report(`ms to show ${kRows} rows`, medianOf(times), 200);

  await page.locator(".row-main", { hasText: "Many" }).tap();
  await page.waitForSelector('[aria-label="Files in Many"]');
  report("ms between two frames (95 %) while they fly by", await page.evaluate(flight, [".scroller", kFrames] as [string, number]), 100);
  await page.setContent(`<div style="height: 100vh; overflow: auto">${"<p>one line of text</p>".repeat(2_000)}</div>`);
  reportFloor("ms between two frames (95 %) of plain text that flies by", await page.evaluate(flight, ["div", kFrames] as [string, number]));
  await close();
}

/** From the moment that Navrel says so to the moment that it can be read. */
async function measureChange(server: MockServer): Promise<void> {
  const { page, close } = await slowPage(linkOf(server));
  await page.locator("#tab-notes").tap();
  await page.waitForSelector('[aria-label="Notes"]');
  const times: number[] = [];
  for (let round = 0; round < kRounds; round++) {
    const text = `written in round ${round}`;
    server.notes = [{ kind: "todo", text, line: 1, file: { id: idOf("x"), name: "x.swift", path: "x.swift" } }];
    const seen = page.evaluate(
      (wanted) =>
        new Promise<number>((done) => {
          const look = () => (document.body.textContent.includes(wanted) ? done(Date.now()) : requestAnimationFrame(look));
          look();
        }),
      text,
    );
    const start = Date.now();
    server.change([]);
    times.push((await seen) - start);
  }
  report("ms from the event of a change to the sight of it", medianOf(times), 300);
  await close();
}

/** A phone that was asleep: its stream is dead, and it does not know. */
async function measureWake(server: MockServer): Promise<void> {
  const { page, close } = await slowPage(linkOf(server));
  const times: number[] = [];
  for (let round = 0; round < kRounds; round++) {
    await server.stop();
    await page.waitForSelector(".banner.bad");
    await server.start();
    times.push(
      await page.evaluate(
        () =>
          new Promise<number>((done) => {
            const start = performance.now();
            const look = () => (document.querySelector(".stale, .banner.bad") ? requestAnimationFrame(look) : done(performance.now() - start));
            dispatchEvent(new Event("online"));
            requestAnimationFrame(look);
          }),
      ),
    );
  }
  report("ms from unlocking to up to date", medianOf(times), 1000);
  await close();
}

/** The whole way from a saved file to its symbol on the page. */
async function measureSave(navrel: Navrel, page: Page): Promise<void> {
  const path = navrel.path("Tidewatch/Model/Station.swift");
  const times: number[] = [];
  for (let round = 0; round < kRounds; round++) {
    const name = `writtenInRound${round}`;
    const seen = page.evaluate(
      (wanted) =>
        new Promise<number>((done) => {
          const look = () => (document.body.textContent.includes(wanted) ? done(Date.now()) : requestAnimationFrame(look));
          look();
        }),
      name,
    );
    const start = Date.now();
    appendFileSync(path, `\nfunc ${name}() {}\n`);
    times.push((await seen) - start);
  }
  report("ms from a saved file to the sight of it", medianOf(times), 300);
}

/** From a tap to Neovim, and back to the page, which says so: more than the request takes to get there. */
async function measureTap(page: Page): Promise<void> {
  const times: number[] = [];
  for (let round = 0; round < kRounds; round++) {
    times.push(
      await page.evaluate(
        (wanted) =>
          new Promise<number>((done) => {
            const row = [...document.querySelectorAll<HTMLElement>(".row-main")].find((each) => each.textContent.includes(wanted))!;
            const place = document.querySelector(".message-place")!;
            const start = performance.now();
            new MutationObserver((_, observer) => {
              if (!place.textContent.includes("is open in Neovim")) return;
              observer.disconnect();
              done(performance.now() - start);
            }).observe(place, { childList: true, subtree: true, characterData: true });
            row.click();
          }),
        round % 2 === 0 ? "distance(to:)" : "Station",
      ),
    );
  }
  report("ms from a tap to Neovim and back", medianOf(times), 20);
}

/** The same without a browser: from the request to Neovim's answer that it shows the line. */
async function measureOpen(navrel: Navrel): Promise<void> {
  const found = await navrel.asOwner<Shape.Search>("GET", "/api/search?q=Station.swift&kinds=file");
  const { id: file } = found.items[0]!.file;
  let onOpened: () => void = () => undefined;
  const stop = navrel.watch((text) => text.includes("event: opened") && onOpened());
  const times: number[] = [];
  for (let round = 0; round < kOpens; round++) {
    const opened = new Promise<void>((done) => (onOpened = done));
    const start = performance.now();
    await navrel.asOwner("POST", "/api/open", { file, line: 3 + (round % 9) });
    await opened;
    times.push(performance.now() - start);
  }
  stop();
  report("ms from a request to Neovim's answer, without a page", medianOf(times), 20);
}

async function measureNavrel(): Promise<void> {
  const program = navrelProgram();
  if (program === undefined) return console.error("There is no Navrel built: what it takes to save and to tap is left out");
  const navrel = await Navrel.prepare(program);
  const neovim = await Neovim.start(navrel.runtimeFolder, navrel.environment);
  await navrel.start();
  for (const [slowdown, measure] of [[kSlowdown, (page: Page) => measureSave(navrel, page)], [1, measureTap]] as const) {
    const { page, close } = await slowPage(await navrel.link(), slowdown);
    for (const row of ["Tidewatch", "Model", "Station.swift"]) await page.locator(".row-main", { hasText: row }).first().tap();
    await page.waitForSelector('[aria-label="Outline of Station.swift"]');
    await measure(page);
    await close();
  }
  await measureOpen(navrel);
  await neovim.stop();
  await navrel.remove();
}

weights();
const server = new MockServer(kAssets);
server.active = { file: null };
server.root = { ...server.root!, children: [{ id: idOf("many"), name: "Many", kind: "group", children: many }, ...server.root!.children!] };
await server.start();
for (const measure of [measurePage, measureRows, measureWork, measureChange, measureWake]) await measure(server);
await server.stop();
await measureNavrel();
