// The network between the page and Navrel. A test cuts it without a word to either end, as a sleeping device does.
import { type AddressInfo, connect, createServer, type Server, type Socket } from "node:net";
import { kDeadlineMilliseconds, within } from "../drivers/driver";

export class Line {
  private readonly server: Server;
  private readonly sockets = new Set<Socket>();
  private isCut = false;

  private constructor(private readonly far: number) {
    this.server = createServer((near) => this.join(near));
  }

  /** To a port of this machine, from one of its own choice. */
  static async to(port: number): Promise<Line> {
    const line = new Line(port);
    await new Promise<void>((done) => line.server.listen(0, "127.0.0.1", done));
    return line;
  }

  get port(): number {
    return (this.server.address() as AddressInfo).port;
  }

  /** From now on nothing arrives, in either direction, and nobody is told. */
  cut(): void {
    this.isCut = true;
    for (const socket of this.sockets) {
      socket.unpipe();
      socket.pause();
    }
  }

  /** New connections pass again; those of before stay as they are. */
  mend(): void {
    this.isCut = false;
  }

  async close(): Promise<void> {
    const closed = new Promise((done) => this.server.close(done));
    for (const socket of this.sockets) socket.destroy();
    await within(kDeadlineMilliseconds, "Closing the line", closed);
  }

  private join(near: Socket): void {
    this.keep(near);
    if (this.isCut) return void near.pause();
    const far = connect(this.far, "127.0.0.1");
    this.keep(far);
    near.pipe(far).pipe(near);
    near.on("close", () => this.isCut || far.destroy());
    far.on("close", () => this.isCut || near.destroy());
  }

  private keep(socket: Socket): void {
    this.sockets.add(socket);
    socket.on("error", () => undefined);
    socket.on("close", () => this.sockets.delete(socket));
  }
}
