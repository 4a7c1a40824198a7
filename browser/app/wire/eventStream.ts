// GET /api/events. By `fetch` rather than `EventSource`, which hides the status of a refusal and the
// heartbeat, and so could tell neither a forgotten device nor a dead network.
import { EventText } from "./eventText";
import { errorOf, type Shape, WireError } from "./wire";

export type EventName = keyof Shape.Events;
export type EventOf<Name extends EventName> = Shape.Events[Name];
export type AnyEvent = { [Name in EventName]: { name: Name; data: EventOf<Name> } }[EventName];

export interface StreamObserver {
  /** The server has answered. */
  onOpen(): void;
  onEvent(event: AnyEvent): void;
  /** The stream has ended. Called once, and not after `close`. */
  onEnd(error: WireError): void;
}

export interface Stream {
  /** Ends the stream. No observer is called afterwards. */
  close(): void;
}

/** Two heartbeats of 15 seconds, and something for the network. */
const kSilenceMilliseconds = 35_000;
/** A server in reach answers at once. A kept connection that died in the device's sleep never does: the next try is by another one. */
const kAnswerMilliseconds = 5_000;

const kNames: Record<EventName, true> = {
  hello: true,
  revision: true,
  active: true,
  opened: true,
  state: true,
  resync: true,
};

/** Nothing for an event of a later version, or for what is not JSON. */
export function parseEvent(name: string, data: string): AnyEvent | undefined {
  if (!Object.prototype.hasOwnProperty.call(kNames, name)) return undefined;
  try {
    return { name, data: JSON.parse(data) as unknown } as AnyEvent;
  } catch {
    return undefined;
  }
}

export function openEventStream(observer: StreamObserver): Stream {
  const controller = new AbortController();
  let silence: ReturnType<typeof setTimeout>;
  const listen = (milliseconds = kSilenceMilliseconds) => {
    clearTimeout(silence);
    silence = setTimeout(() => controller.abort(), milliseconds);
  };
  let closed = false;

  const read = async () => {
    listen(kAnswerMilliseconds);
    const response = await fetch("/api/events", {
      headers: { Accept: "text/event-stream" },
      cache: "no-store",
      signal: controller.signal,
    });
    if (!response.ok) throw await errorOf(response);
    if (closed) return;
    listen();
    observer.onOpen();
    const reader = response.body!.getReader();
    const text = new TextDecoder();
    const events = new EventText();
    for (;;) {
      const { done, value } = await reader.read();
      if (done) return;
      listen();
      for (const { name, data } of events.take(text.decode(value, { stream: true }))) {
        const event = parseEvent(name, data);
        if (event && !controller.signal.aborted) observer.onEvent(event);
      }
    }
  };

  const end = (error: unknown) => {
    clearTimeout(silence);
    if (closed) return;
    closed = true;
    controller.abort();
    observer.onEnd(error instanceof WireError ? error : new WireError("away", "Navrel does not answer."));
  };
  read().then(end, end);

  return {
    close() {
      closed = true;
      clearTimeout(silence);
      controller.abort();
    },
  };
}
