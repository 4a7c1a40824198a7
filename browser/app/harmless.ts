// Names and comments may hold characters that turn the writing direction, or show as nothing: a text would read as
// another one, and turn what stands behind it. Here they are drawn as their numbers, wherever a text is drawn.
import { Fragment, options, type VNode } from "preact";

/**
 * Control characters but tabs and line feeds, which only space; what is invisible or changes how others show; halves of
 * surrogate pairs. A joiner within an emoji, which is found first, stays.
 */
const kDeceptive =
  // eslint-disable-next-line no-control-regex, no-misleading-character-class -- each character stands for itself
  /(\p{Extended_Pictographic}(?:\uFE0F|\p{Emoji_Modifier})?\u200D)|[\0-\x08\x0B-\x1F\x7F-\x9F\p{Cf}\p{Cs}\u034F\u115F\u1160\u17B4\u17B5\u2028\u2029\u2060-\u206F\u3164\uFFA0\uFFF0-\uFFFB\u{E0000}-\u{E0FFF}]/gu;
const kPlain = /^[\t\n -~]*$/;

const numberOf = (character: string) => `‹U+${character.codePointAt(0)!.toString(16).toUpperCase().padStart(4, "0")}›`;

/** "a\u202Eb" as "a‹U+202E›b". */
export function harmless(text: string): string {
  if (kPlain.test(text)) return text;
  return text.replace(kDeceptive, (found, withinEmoji: string | undefined) => withinEmoji ?? numberOf(found));
}

function harmlessChild(child: unknown): unknown {
  if (typeof child === "string") return harmless(child);
  return Array.isArray(child) ? child.map(harmlessChild) : child;
}

/** Attributes that are read out. What a field holds is the user's own. */
const kSpoken = ["aria-label", "placeholder", "title"];

/** Has each element is made with harmless texts from now on. For the start of the page. */
export function drawHarmlessly(): void {
  options.vnode = (vnode: VNode) => {
    if (typeof vnode.type === "string" || vnode.type === Fragment) {
      const properties = vnode.props as Record<string, unknown>;
      if ("children" in properties) properties["children"] = harmlessChild(properties["children"]);
      for (const name of kSpoken) {
        if (typeof properties[name] === "string") properties[name] = harmless(properties[name]);
      }
    }
  };
}
