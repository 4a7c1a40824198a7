// The connection to Navrel: made again whenever it is gone, since Navrel may be started later.

import * as net from "node:net";
import { type Outgoing, type Request, requestIn } from "./wire";

const retryMilliseconds = 3000;
/** Longer lines come from no Navrel. */
const longestLine = 64 * 1024;

export interface Events {
  /** The connection is there: say hello. */
  connected(): void;
  requested(request: Request): void;
}

export class Connection {
  private socket: net.Socket | undefined;
  private retry: NodeJS.Timeout | undefined;
  private received = "";
  private isEnded = false;

  constructor(
    private readonly path: string,
    private readonly events: Events,
  ) {}

  /** Connects, unless that is done or under way. */
  connect(): void {
    if (this.socket !== undefined || this.isEnded) {
      return;
    }
    clearTimeout(this.retry);
    const socket = net.connect(this.path);
    this.socket = socket;
    this.received = "";
    socket.setEncoding("utf8");
    socket.on("connect", () => this.events.connected());
    socket.on("data", (text: string) => this.hear(text));
    socket.on("error", () => undefined); // "close" follows
    socket.on("close", () => {
      this.socket = undefined;
      if (!this.isEnded) {
        this.retry = setTimeout(() => this.connect(), retryMilliseconds);
      }
    });
  }

  send(message: Outgoing): void {
    if (this.socket !== undefined && !this.socket.connecting) {
      this.socket.write(`${JSON.stringify(message)}\n`);
    }
  }

  dispose(): void {
    this.isEnded = true;
    clearTimeout(this.retry);
    this.socket?.destroy();
  }

  private hear(text: string): void {
    const lines = (this.received + text).split("\n");
    this.received = lines.pop() ?? "";
    if (this.received.length > longestLine) {
      this.socket?.destroy();
      return;
    }
    for (const line of lines) {
      const request = requestIn(line);
      if (request !== undefined) {
        this.events.requested(request);
      }
    }
  }
}
