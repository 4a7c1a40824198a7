// Server-sent events as they arrive: pieces of text in, whole events out.

export interface ServerEvent {
  name: string;
  data: string;
}

/** One event is a state at most: a stream without a line's end is cut off here, and starts again. */
const kMaximumPending = 1_000_000;

export class EventText {
  private pending = "";

  /** The events that end in this piece. Throws where one grows without end. */
  take(piece: string): ServerEvent[] {
    this.pending = (this.pending + piece).replace(/\r\n/g, "\n");
    const blocks = this.pending.split("\n\n");
    this.pending = blocks.pop() ?? "";
    if (this.pending.length > kMaximumPending) throw new Error("An event without an end");
    return blocks.map(eventOf).filter((event) => event !== undefined);
  }
}

/** Nothing for a block of comments, which is how the server's heartbeat looks. */
function eventOf(block: string): ServerEvent | undefined {
  let name = "message";
  const data: string[] = [];
  for (const line of block.split("\n")) {
    const [, field, value = ""] = /^([a-z]+)(?:: ?(.*))?$/.exec(line) ?? [];
    if (field === "event") name = value;
    if (field === "data") data.push(value);
  }
  return data.length > 0 ? { name, data: data.join("\n") } : undefined;
}
