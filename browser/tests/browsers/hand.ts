// What a user does with the page, in the words of the page.
import { type Device, until, type View } from "../drivers/driver";

/** Whatever serves the page: the server that plays Navrel, or Navrel itself. */
export interface World {
  /** A link that pairs, for one use. */
  link(): Promise<string>;
}

export type TabName = "Files" | "Outline" | "Search" | "Notes" | "More";

export class Hand {
  constructor(
    readonly view: View,
    readonly device: Device,
  ) {}

  async pair(world: World): Promise<void> {
    await this.view.go(await world.link());
    await this.sees("Tidewatch");
  }

  /** All that can be read on the page. */
  text(): Promise<string> {
    return this.view.run(() => document.body.innerText);
  }

  async sees(text: string): Promise<void> {
    await this.orSay(until(`“${text}” to be seen`, async () => (await this.text()).includes(text)));
  }

  /** A failure says what there is instead. */
  private async orSay(done: Promise<unknown>): Promise<void> {
    await done.catch(async (error: unknown) => {
      throw new Error(`${(error as Error).message}. There is:\n${await this.text()}`);
    });
  }

  async seesNoMore(text: string): Promise<void> {
    await until(`“${text}” to go`, async () => !(await this.text()).includes(text));
  }

  async tab(name: TabName): Promise<void> {
    await this.orSay(this.view.tap("[role=tab]", name));
    await until(`the tab ${name}`, () => this.view.run((wanted: string) => document.querySelector("[role=tab][aria-selected=true]")?.textContent === wanted, name));
  }

  row(name: string): Promise<void> {
    return this.orSay(this.view.tap(".row-main", name));
  }

  button(name: string): Promise<void> {
    return this.orSay(this.view.tap("button", name));
  }

  async more(name: string): Promise<void> {
    await this.view.tap(`.row-more[aria-label="More about ${name}"]`);
    await until("the menu", () => this.view.run(() => document.querySelector("dialog[open]") !== null));
  }

  /** From the root of the files to the outline of one. */
  async goToFile(group: string, file: string): Promise<void> {
    await this.row("Tidewatch");
    await this.row(group);
    await this.row(file);
    await until(`the outline of ${file}`, () => this.view.run((wanted: string) => document.querySelector(`[aria-label="Outline of ${wanted}"]`) !== null, file));
  }

  /** The names of a list's rows, in their order, as far as they are drawn. */
  names(list: string): Promise<string[]> {
    return this.namesOf(`[aria-label="${list}"] .row-name`);
  }

  async lit(list: string): Promise<string | undefined> {
    return (await this.namesOf(`[aria-label="${list}"] .lit .row-name`))[0];
  }

  /** Without what a wide page has room for beside them. */
  private namesOf(selector: string): Promise<string[]> {
    return this.view.run((wanted: string) => {
      const ownText = (name: Element) => [...name.childNodes].map((part) => (part instanceof Element && part.matches(".row-beside") ? "" : part.textContent)).join("");
      return [...document.querySelectorAll(wanted)].map(ownText);
    }, selector);
  }

  async isLit(list: string, name: string): Promise<void> {
    await until(`${name} to be lit`, async () => (await this.lit(list)) === name);
  }

  /** What reaches beyond the page's edge, or beyond that of a part which cuts it off. */
  whatIsTooWide(): Promise<string[]> {
    return this.view.run(() => {
      const isBeyond = (each: Element) => each.getBoundingClientRect().right > innerWidth + 1;
      const isCutOff = (each: Element) => /hidden|clip/.test(getComputedStyle(each).overflowX) && each.scrollWidth > each.clientWidth + 1;
      return [...document.querySelectorAll("body *")]
        .filter((each) => !each.closest(".hidden") && (isBeyond(each) || isCutOff(each)))
        .map((each) => `${each.tagName}.${each.className} is too wide`);
    });
  }
}
