// Each screen and state of the page, and how to come to it: for what is checked on all of them.
import { kTicket, MockServer } from "../mock/server";
import type { Device } from "../drivers/driver";
import type { Hand } from "./hand";

export const kAssets = "build/app/packed";

export interface Screen {
  name: string;
  /** Whether Navrel knows this device before. */
  isPaired: boolean;
  prepare?(server: MockServer): void;
  reach(hand: Hand, server: MockServer): Promise<void>;
  devices?: readonly Device[];
}

const noProject = (server: MockServer, state: "none" | "loading" | "unreadable") => {
  server.root = undefined;
  server.active = { file: null };
  const project = state === "none" ? { state } : state === "loading" ? { state, name: "Tidewatch" } : { state, name: "Tidewatch", reason: "A brace is missing.", line: 812 };
  server.state = { ...server.state, project };
};

/** As generated code has them: without a blank, and far longer than any line. */
const kLongName = "AbstractTideStationObservationControllerDelegateFactoryProviderForRegionsWithoutAnyTidesAtAll";

/** Gives the file that Neovim shows, its first symbol and its groups names of that length. */
function lengthen(server: MockServer): void {
  const name = `${kLongName}.m`;
  const path = `Tidewatch/${kLongName}/${name}`;
  const { id } = server.active.file!;
  const outline = server.outlines.get(id)!;
  const items = outline.items.map((item, index) => (index === 0 ? { ...item, name: kLongName } : item));
  server.outlines.set(id, { ...outline, name, path, items });
  server.active = { file: { ...server.active.file!, name, path } };
  server.root = { ...server.root!, name: kLongName, children: [{ id: "00000000000000aa", name: kLongName, kind: "group", children: [] }, ...server.root!.children!] };
}

export const kScreens: readonly Screen[] = [
  { name: "pairing", isPaired: false, reach: (hand) => hand.sees("Pair this device") },
  {
    name: "pairing-expired",
    isPaired: false,
    reach: async (hand, server) => {
      await hand.view.go(`${server.url}#p=${"B".repeat(22)}`);
      await hand.sees("too old");
    },
  },
  { name: "no-project", isPaired: true, prepare: (server) => noProject(server, "none"), reach: (hand) => hand.sees("No project is open.") },
  {
    name: "no-files",
    isPaired: true,
    prepare: (server) => {
      server.active = { file: null };
      server.root = { ...server.root!, children: [] };
    },
    reach: (hand) => hand.sees("This project shows no files."),
  },
  { name: "loading", isPaired: true, prepare: (server) => noProject(server, "loading"), reach: (hand) => hand.sees("Reading Tidewatch…") },
  { name: "unreadable", isPaired: true, prepare: (server) => noProject(server, "unreadable"), reach: (hand) => hand.sees("cannot be read") },
  {
    name: "no-editor",
    isPaired: true,
    prepare: (server) => {
      server.active = { file: null };
      server.state = { ...server.state, editor: { state: "none" } };
    },
    reach: (hand) => hand.sees("No editor is running."),
  },
  { name: "files", isPaired: true, reach: (hand) => hand.sees("Products") },
  {
    name: "group",
    isPaired: true,
    reach: async (hand) => {
      await hand.row("Tidewatch");
      await hand.row("Views");
      await hand.sees("TideListController.m");
    },
  },
  {
    name: "outline",
    isPaired: true,
    reach: async (hand, server) => {
      await hand.goToFile("Views", "TideView.m");
      server.emit("active", { file: { ...server.active.file!, line: 12 } });
      await hand.isLit("Outline of TideView.m", "-setTide:animated:");
    },
  },
  {
    name: "opened",
    isPaired: true,
    reach: async (hand) => {
      await hand.goToFile("Model", "TideTable.swift");
      await hand.row("next(after:)");
      await hand.sees("TideTable.swift:14 is open in Neovim");
    },
  },
  {
    name: "refused",
    isPaired: true,
    prepare: (server) => void (server.outcome = { outcome: "refused", reason: "TideTable.swift is not on disk any more." }),
    reach: async (hand) => {
      await hand.goToFile("Model", "TideTable.swift");
      await hand.row("next(after:)");
      await hand.sees("is not on disk");
    },
  },
  {
    name: "menu",
    isPaired: true,
    reach: async (hand) => {
      await hand.goToFile("Views", "TideView.m");
      await hand.more("-drawRect:");
    },
  },
  {
    name: "code",
    isPaired: true,
    reach: async (hand) => {
      await hand.goToFile("Views", "TideView.m");
      await hand.more("-drawRect:");
      await hand.button("Look at the code");
      await hand.sees("UIRectFill");
    },
  },
  {
    name: "search",
    isPaired: true,
    reach: async (hand) => {
      await hand.tab("Search");
      await hand.view.type("#search", "tide");
      await hand.sees("Tide.m");
    },
  },
  {
    name: "nothing-found",
    isPaired: true,
    reach: async (hand) => {
      await hand.tab("Search");
      await hand.view.type("#search", "qqq");
      await hand.sees("Nothing is called");
    },
  },
  {
    name: "opened-lately",
    isPaired: true,
    reach: async (hand) => {
      await hand.goToFile("Model", "TideTable.swift");
      await hand.row("next(after:)");
      await hand.sees("is open in Neovim");
      await hand.tab("Search");
      await hand.sees("Opened lately");
    },
  },
  {
    name: "no-file",
    isPaired: true,
    prepare: (server) => void (server.active = { file: null }),
    reach: async (hand) => (await hand.tab("Outline"), hand.sees("No file is shown.")),
  },
  { name: "long-names-files", isPaired: true, prepare: lengthen, reach: (hand) => hand.sees(kLongName) },
  { name: "long-names-outline", isPaired: true, prepare: lengthen, reach: async (hand) => (await hand.tab("Outline"), hand.sees(`${kLongName}.m`)) },
  {
    name: "looking-only",
    isPaired: true,
    prepare: (server) => void (server.state = { ...server.state, browsers: { ...server.state.browsers, readOnly: true } }),
    reach: async (hand) => (await hand.tab("More"), hand.sees("may look, not open")),
  },
  { name: "notes", isPaired: true, reach: async (hand) => (await hand.tab("Notes"), hand.sees("reuse the cells")) },
  { name: "more", isPaired: true, reach: async (hand) => (await hand.tab("More"), hand.sees("up to date")) },
  ...(
    [
      ["types", "Types", "TideListController"],
      ["changes", "Changes", "checksum.c"],
      ["file-types", "File types", ".swift"],
      ["keyboard", "Keyboard", "Open in the editor"],
    ] as const
  ).map(
    ([name, row, text]): Screen => ({
      name,
      isPaired: true,
      reach: async (hand) => {
        await hand.tab("More");
        await hand.row(row);
        await hand.sees(text);
      },
    }),
  ),
  {
    name: "away",
    isPaired: true,
    reach: async (hand, server) => {
      await hand.goToFile("Views", "TideView.m");
      await server.stop();
      await hand.sees("Navrel is away.");
    },
  },
];

/** Runs a screen's way with a server of its own. */
export async function withScreen(screen: Screen, hand: Hand, look: (server: MockServer) => Promise<void>): Promise<void> {
  const server = new MockServer(kAssets);
  screen.prepare?.(server);
  await server.start();
  try {
    await hand.view.go(screen.isPaired ? `${server.url}#p=${kTicket}` : server.url);
    await screen.reach(hand, server);
    await look(server);
  } finally {
    await server.stop();
  }
}

