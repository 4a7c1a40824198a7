// The life of the event stream: one is open while the page is looked at, and is opened again after each
// loss. What is known stays on the page meanwhile.
import type { AnyEvent, Stream, StreamObserver } from "./eventStream";
import type { WireError } from "./wire";

/**
 *             wake         onOpen    away      unpaired   timer
 * idle        connecting   –         –         –          –
 * connecting  connecting   open      lost      unpaired   –
 * open        connecting   –         lost      unpaired   –
 * lost        connecting   –         –         –          connecting
 * unpaired    connecting   –         –         –          –
 */
export type ConnectionState = "idle" | "connecting" | "open" | "lost" | "unpaired";

/** The first pause is too short to be seen, the last one kind to a battery. */
const kFirstPause = 500;
const kLongestPause = 8_000;

export interface Surroundings {
  openStream(observer: StreamObserver): Stream;
  /** Calls `action` later; the answer calls it off. */
  after(milliseconds: number, action: () => void): () => void;
  onState(state: ConnectionState): void;
  onEvent(event: AnyEvent): void;
}

export class Connection {
  private state: ConnectionState = "idle";
  private stream: Stream | undefined;
  private callOff: (() => void) | undefined;
  private pause = kFirstPause;

  constructor(private readonly surroundings: Surroundings) {}

  /**
   * Opens a new stream at once, in place of the one there may be: after a sleep that one may be dead
   * without knowing it. For the start, and whenever the page is looked at again or the network is back.
   */
  wake(): void {
    this.pause = kFirstPause;
    this.connect();
  }

  private connect(): void {
    this.stream?.close();
    this.callOff?.();
    this.enter("connecting");
    this.stream = this.surroundings.openStream({
      onOpen: () => {
        this.pause = kFirstPause;
        this.enter("open");
      },
      onEvent: (event) => this.surroundings.onEvent(event),
      onEnd: (error) => this.end(error),
    });
  }

  private end(error: WireError): void {
    this.stream = undefined;
    if (error.failure === "unpaired") return this.enter("unpaired");
    this.enter("lost");
    this.callOff = this.surroundings.after(this.pause, () => this.connect());
    this.pause = Math.min(this.pause * 2, kLongestPause);
  }

  private enter(state: ConnectionState): void {
    if (this.state === state) return;
    this.state = state;
    this.surroundings.onState(state);
  }
}
