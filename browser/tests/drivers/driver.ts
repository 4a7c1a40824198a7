// One browser under test, whichever it is: as little as the journeys need.

export type Device = "phone" | "tablet";
export type Colours = "light" | "dark";

export interface Size {
  width: number;
  height: number;
}

export const kSizes: Record<Device, Size> = {
  phone: { width: 390, height: 844 },
  tablet: { width: 1180, height: 820 },
};

/** A page in a profile of its own, as on a device of its own. */
export interface View {
  go(url: string): Promise<void>;
  /** Runs a function in the page: it sees nothing of the test but its arguments. */
  run<Answer, Arguments extends unknown[]>(body: (...args: Arguments) => Answer | Promise<Answer>, ...args: Arguments): Promise<Answer>;
  /** Runs a whole script. */
  script(source: string): Promise<void>;
  /** Taps what a selector finds; with a text, the first element that holds it. Waits until it is there. */
  tap(selector: string, text?: string): Promise<void>;
  /** Puts a finger (a mouse where there is none) on what a selector and a text find, and lifts it afterwards. */
  hold(selector: string, text: string, meanwhile: () => Promise<void>): Promise<void>;
  type(selector: string, text: string): Promise<void>;
  press(key: Key): Promise<void>;
  /** Gives the page another size, as turning the device does, or the keyboard on its screen. */
  turn(size: Size): Promise<void>;
  picture(path: string): Promise<void>;
  /** What the page complained about: errors of scripts, and refusals by its own policy. */
  complaints(): Promise<string[]>;
  close(): Promise<void>;
}

export type Key = "Tab" | "Shift+Tab" | " " | "Enter" | "Escape" | "ArrowDown" | "ArrowUp" | "/" | "]" | "[" | "b" | "1" | "2" | "3" | "4" | "5";

export interface Driver {
  open(device: Device, colours: Colours): Promise<View>;
  close(): Promise<void>;
}

/** On a busy machine everything takes long; nothing takes this long. */
export const kDeadlineMilliseconds = 30_000;
const kPauseMilliseconds = 50;

/** Thrown by what is waited for where waiting longer is of no use. */
export class Hopeless extends Error {}

/** What a promise comes to, or an error when that takes too long: a browser that hangs must not hang the run. */
export async function within<Answer>(milliseconds: number, what: string, promise: Promise<Answer>): Promise<Answer> {
  let timer: NodeJS.Timeout | undefined;
  const late = new Promise<never>((_, fail) => {
    timer = setTimeout(() => fail(new Error(`${what} took more than ${milliseconds / 1000} s`)), milliseconds);
  });
  try {
    return await Promise.race([promise, late]);
  } finally {
    clearTimeout(timer);
  }
}

export async function until<Answer>(what: string, look: () => Promise<Answer | undefined | false>): Promise<Answer> {
  const deadline = Date.now() + kDeadlineMilliseconds;
  let last: Error | undefined;
  for (let left = kDeadlineMilliseconds; left > 0; left = deadline - Date.now()) {
    try {
      const answer = await within(left, "one look", look());
      if (answer !== undefined && answer !== false) return answer;
      last = undefined;
    } catch (error) {
      if (error instanceof Hopeless) throw error;
      last = error as Error;
    }
    await new Promise((done) => setTimeout(done, kPauseMilliseconds));
  }
  throw new Error(`Waited in vain for ${what}${last === undefined ? "" : ` (${String(last)})`}`);
}

/** In the page: the middle of what a selector and a text find. */
export function middleOf(selector: string, text: string): { x: number; y: number } | null {
  const found = [...document.querySelectorAll(selector)].find((each) => each.textContent.includes(text));
  if (!found) return null;
  const { left, top, width, height } = found.getBoundingClientRect();
  return { x: Math.round(left + width / 2), y: Math.round(top + height / 2) };
}

/** In the page, before its own scripts or soon after: keeps what goes wrong. */
export function listenForComplaints(): void {
  const page = window as unknown as { complaints?: string[] };
  if (page.complaints) return;
  const complaints: string[] = (page.complaints = []);
  addEventListener("error", (event) => complaints.push(`error: ${event.message}`));
  addEventListener("unhandledrejection", (event) => complaints.push(`rejection: ${String(event.reason)}`));
  document.addEventListener("securitypolicyviolation", (event) => complaints.push(`policy: ${event.violatedDirective} ${event.sourceFile}`));
}

export function complaintsOfPage(): string[] {
  return (window as unknown as { complaints?: string[] }).complaints ?? [];
}
