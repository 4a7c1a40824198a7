// What stands between the user and a tap that works: no Navrel, no editor. It is below the lists, so that its coming
// and going moves no row away from under a finger.
import { useEffect, useReducer } from "preact/hooks";
import { age } from "../model/words";
import { useStore } from "../store";
import { wake } from "../sync";

const kAgeStepMilliseconds = 5_000;

export function Banner() {
  const isAway = useStore((all) => all.isAway);
  const state = useStore((all) => all.state);
  if (isAway) return <Away />;
  const editor = state?.editor;
  if (!editor || editor.state === "follows") return null;
  if (editor.state === "answersNot") {
    return <Strip text={`${editor.name ?? "The editor"} does not answer.`} hint="Files open there once it does." />;
  }
  return <Strip text="No editor is running." hint="Start one on the computer: a tap then opens files in it." />;
}

function Away() {
  const freshAt = useStore((state) => state.freshAt);
  const [, drawAgain] = useReducer<number, void>((count) => count + 1, 0);
  useEffect(() => {
    const timer = setInterval(() => drawAgain(), kAgeStepMilliseconds);
    return () => clearInterval(timer);
  }, []);
  return (
    <div class="banner bad">
      <p>
        <strong>Navrel is away.</strong> {freshAt > 0 && `Last up to date ${age(Date.now() - freshAt)}. `}
        Is the computer awake and in the same network?
      </p>
      <button type="button" onClick={wake}>
        Try now
      </button>
    </div>
  );
}

function Strip({ text, hint }: { text: string; hint: string }) {
  return (
    <div class="banner">
      <p>
        <strong>{text}</strong> {hint}
      </p>
    </div>
  );
}
