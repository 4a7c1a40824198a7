// Which panes there are: one, with the tabs below, or two with the search above both.
import type { JSX } from "preact";
import { back } from "./actions";
import { Banner } from "./parts/Banner";
import { Divider } from "./parts/Divider";
import { Message } from "./parts/Message";
import { RowMenu } from "./parts/RowMenu";
import { TabBar } from "./parts/TabBar";
import { atNavigator, atOutline } from "./places";
import { Files } from "./screens/Files";
import { MoreScreen } from "./screens/MoreScreen";
import { NotesScreen } from "./screens/NotesScreen";
import { OutlineScreen } from "./screens/OutlineScreen";
import { Pairing } from "./screens/Pairing";
import { SearchField, SearchScreen } from "./screens/SearchScreen";
import { type Tab, useStore } from "./store";

const kScreens: Record<Tab, () => JSX.Element> = {
  files: Files,
  outline: OutlineScreen,
  search: SearchScreen,
  notes: NotesScreen,
  more: MoreScreen,
};

export function App() {
  const isUnpaired = useStore((state) => state.isUnpaired);
  const isWide = useStore((state) => state.isWide);
  const isStale = useStore((state) => state.connection !== "open" && state.freshAt > 0);
  if (isUnpaired) return <Pairing />;
  return (
    <main class={isStale ? "app stale" : "app"}>
      {isWide ? <TwoPanes /> : <OnePane />}
      <RowMenu />
      <Message />
    </main>
  );
}

function OnePane() {
  const tab = useStore((state) => state.place.tab);
  const Screen = kScreens[tab];
  return (
    <>
      <div class="panes">
        <div class="pane" role="tabpanel" id="screen" aria-labelledby={`tab-${tab}`}>
          <Screen />
        </div>
      </div>
      <Banner />
      <TabBar />
    </>
  );
}

function TwoPanes() {
  const tab = useStore((state) => state.place.tab);
  // The outline is there anyway: its tab leaves the files beside it.
  const Screen = kScreens[tab === "outline" ? "files" : tab];
  return (
    <>
      <div class="top" onFocusIn={atNavigator}>
        <SearchField />
        <button type="button" class="tool" onClick={back}>
          <span aria-hidden="true">↩ </span>Back
        </button>
      </div>
      <div class="panes">
        <div class="navigator" onPointerDown={atNavigator} onFocusIn={atNavigator}>
          <TabBar />
          <div class="pane" role="tabpanel" id="screen" aria-labelledby={`tab-${tab}`}>
            <Screen />
          </div>
        </div>
        <Divider />
        <section class="pane" aria-label="Outline of the file" onPointerDown={atOutline} onFocusIn={atOutline}>
          <OutlineScreen />
        </section>
      </div>
      <Banner />
    </>
  );
}
