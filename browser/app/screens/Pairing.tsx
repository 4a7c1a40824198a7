// What a device sees that is not paired: how to become so.
import { useRef } from "preact/hooks";
import { useStore } from "../store";
import { pair, wake } from "../sync";

const kDigits = 6;

export function Pairing() {
  const { busy, problem } = useStore((state) => state.pairing);
  const field = useRef<HTMLInputElement>(null);
  const send = async () => {
    const code = field.current!.value.replace(/\D/g, "");
    if (code.length === kDigits && !busy) {
      if (await pair({ code })) wake();
    } else field.current!.focus();
  };
  const onInput = () => {
    const digits = field.current!.value.replace(/\D/g, "").slice(0, kDigits);
    field.current!.value = digits;
    if (digits.length === kDigits) void send();
  };
  const onSubmit = (event: Event) => {
    event.preventDefault();
    void send();
  };
  return (
    <main class="pairing">
      <h1>Pair this device</h1>
      <p>
        On the computer, choose <strong>Phone or Tablet…</strong> from Navrel’s menu (or run <code>navrel-companion pair</code>). Scan the code that it shows with the camera, or
        type its six digits here.
      </p>
      <form onSubmit={onSubmit}>
        <label for="code">Six digits</label>
        <input id="code" ref={field} class="digits" inputMode="numeric" pattern="[0-9]*" autocomplete="one-time-code" maxLength={kDigits + 1} onInput={onInput} aria-describedby="pairing-problem" />
        <button type="submit" class="wide-button" disabled={busy}>
          {busy ? "Pairing…" : "Pair"}
        </button>
      </form>
      <div id="pairing-problem" role="alert">
        {problem && (
          <p class="notice error">
            <strong>{problem.text}</strong> {problem.hint}
          </p>
        )}
      </div>
    </main>
  );
}
