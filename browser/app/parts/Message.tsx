// The last thing the page said: seen for some seconds, and heard once.
import { useStore } from "../store";

export function Message() {
  const message = useStore((state) => state.message);
  return (
    <div class="message-place" role="status" aria-live="polite">
      {message && (
        <p class={`message ${message.tone}`} key={message.number}>
          {message.text}
        </p>
      )}
    </div>
  );
}
