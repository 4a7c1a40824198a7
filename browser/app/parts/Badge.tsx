// A kind as a letter in its colour. The word beside it is for those who hear the page.
import type { Look } from "../model/kinds";

export function Badge({ look }: { look: Look }) {
  return (
    <span class={`badge ${look.colour}`}>
      <span aria-hidden="true">{look.letter}</span>
      <span class="hidden">{look.word} </span>
    </span>
  );
}
