// What the page says: in the line that is shown for some seconds, and to those who hear the page.
import { forget, now, type Problem, type Tone, update } from "./store";
import { WireError } from "./wire/wire";

const kShownMilliseconds = 4_000;
const kShownMillisecondsOfBadNews = 8_000;

let number = 0;

export function say(text: string, tone: Tone = "plain"): void {
  const mine = ++number;
  update({ message: { text, tone, number: mine } });
  const end = () => {
    if (now().message?.number === mine) forget("message");
  };
  setTimeout(end, tone === "bad" ? kShownMillisecondsOfBadNews : kShownMilliseconds);
}

export function problemOf(error: unknown): Problem {
  if (error instanceof WireError) return { text: error.message, hint: error.hint };
  return { text: error instanceof Error ? error.message : String(error) };
}

export function sayProblem(error: unknown): void {
  sayWhatIsAmiss(problemOf(error));
}

export function sayWhatIsAmiss({ text, hint }: Problem): void {
  say(hint ? `${text} ${hint}` : text, "bad");
}
