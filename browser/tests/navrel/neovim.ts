// A Neovim without a screen, and what it shows.
import { type ChildProcess, execFile, spawn } from "node:child_process";
import { join } from "node:path";
import { promisify } from "node:util";
import { Hopeless, until } from "../drivers/driver";
import { end } from "../drivers/processes";

const run = promisify(execFile);

export class Neovim {
  private constructor(
    private readonly process: ChildProcess,
    private readonly socket: string,
  ) {}

  /** In a folder that Navrel looks for editors in. */
  static async start(folder: string, environment: NodeJS.ProcessEnv): Promise<Neovim> {
    const socket = join(folder, "nvim.test.0");
    const process = spawn("nvim", ["--headless", "--clean", "-n", "--listen", socket], { stdio: "ignore", env: environment });
    const neovim = new Neovim(process, socket);
    let problem = "";
    process.once("error", (error) => (problem = error.message));
    process.once("exit", (code, signal) => (problem = `It ended with ${signal ?? code}`));
    await until("Neovim", async () => {
      if (problem !== "") throw new Hopeless(`Neovim does not run. ${problem}`);
      return (await neovim.evaluate("1")) === "1";
    });
    return neovim;
  }

  private async evaluate(expression: string): Promise<string> {
    // Older ones answer on standard error.
    const { stdout, stderr } = await run("nvim", ["--headless", "--server", this.socket, "--remote-expr", expression]);
    return (stdout + stderr).trim();
  }

  /** The file's name and the cursor's line. */
  place(): Promise<string> {
    return this.evaluate("expand('%:t') . ':' . line('.')");
  }

  async isAt(place: string): Promise<void> {
    let last = "";
    await until(`Neovim at ${place}`, async () => (last = await this.place()) === place).catch((error: unknown) => {
      throw new Error(`${(error as Error).message}; it is at ${last}`);
    });
  }

  async goTo(path: string, line: number): Promise<void> {
    await this.evaluate(`execute('edit +${line} ${path}')`);
  }

  async stop(): Promise<void> {
    await end(this.process, "SIGKILL");
  }
}
