// One field for everything that has a name; answers come as one types.
import { open } from "../actions";
import { search } from "../loading";
import { Choice } from "../parts/Choice";
import { Empty } from "../parts/Empty";
import { Row } from "../parts/Row";
import { type RowPlace, WindowedList } from "../parts/WindowedList";
import { fileLook, lookOf, type SearchChip } from "../model/kinds";
import { goToTab } from "../places";
import { now, type Target, update, useStore } from "../store";
import type { Shape } from "../wire/wire";

type Hit = Shape.Search["items"][number];

const kChips: readonly { value: SearchChip; text: string }[] = [
  { value: "all", text: "All" },
  { value: "files", text: "Files" },
  { value: "types", text: "Types" },
  { value: "functions", text: "Functions" },
  { value: "values", text: "Values" },
  { value: "marks", text: "Marks" },
  { value: "notes", text: "Notes" },
];

function targetOf({ kind, name, file, line }: Hit): Target {
  return line === undefined ? { kind, name, file } : { kind, name, file, line };
}

/** What the arrows go through: the hits, or what was opened before while nothing is typed. */
function targets(): Target[] {
  const { search: state, recents } = now();
  return state.text.trim() === "" ? [...recents] : (state.result.value?.items ?? []).map(targetOf);
}

/** Above both panes of a tablet, the field is there before its screen is. Tab passes through it and changes nothing. */
function showHits(): void {
  if (now().place.tab !== "search") goToTab("search");
}

function onKeyDown(event: KeyboardEvent): void {
  const { search: state, place } = now();
  const all = targets();
  const by = event.key === "ArrowDown" ? 1 : event.key === "ArrowUp" ? -1 : 0;
  const chosen = all[state.selected];
  if (by !== 0 && place.tab !== "search") showHits();
  else if (by !== 0) update({ search: { ...state, selected: Math.min(Math.max(state.selected + by, 0), Math.max(all.length - 1, 0)) } });
  else if (event.key === "Enter" && chosen && place.tab === "search") open(chosen);
  else if (event.key === "Escape" && state.text !== "") search({ text: "" });
  else if (event.key === "Escape") (event.target as HTMLElement).blur();
  else return;
  event.preventDefault();
  event.stopPropagation();
}

export function SearchField() {
  const text = useStore((state) => state.search.text);
  const selected = useStore((state) => state.search.selected);
  const isShown = useStore((state) => state.place.tab === "search");
  return (
    <input
      type="search"
      class="search-field"
      id="search"
      aria-label="Search"
      placeholder="Search files, symbols, marks, notes"
      autocomplete="off"
      autocapitalize="off"
      spellcheck={false}
      enterkeyhint="go"
      aria-activedescendant={isShown && targets().length > 0 ? `hit-${selected}` : undefined}
      value={text}
      onInput={(event) => {
        showHits();
        search({ text: (event.target as HTMLInputElement).value });
      }}
      onClick={showHits}
      onKeyDown={onKeyDown}
    />
  );
}

export function SearchScreen() {
  const { text, chip, result, selected } = useStore((state) => state.search);
  const recents = useStore((state) => state.recents);
  const isWide = useStore((state) => state.isWide);
  return (
    <>
      <h1 class="hidden">Search</h1>
      {!isWide && (
        <div class="search-bar">
          <SearchField />
        </div>
      )}
      <div class="chips">
        <Choice name="Kinds" values={kChips} chosen={chip} onChoose={(value) => search({ chip: value })} />
      </div>
      {body()}
    </>
  );

  function body() {
    if (text.trim() === "") {
      if (recents.length === 0) {
        return <Empty title="Find anything by its name.">Parts of a name do: “tv” finds TideView. What you open is listed here the next time.</Empty>;
      }
      return <Recents recents={recents} selected={selected} />;
    }
    if (result.problem) return <Empty title={result.problem.text}>{result.problem.hint}</Empty>;
    if (!result.value) return <Empty title="Searching…" />;
    if (result.value.items.length === 0) {
      return <Empty title={`Nothing is called “${text.trim()}”.`}>{chip === "all" ? "Try fewer letters: parts of a name do." : "Try All: only some kinds are searched now."}</Empty>;
    }
    return <Hits result={result.value} selected={selected} />;
  }
}

function Hits({ result, selected }: { result: Shape.Search; selected: number }) {
  const draw = (hit: Hit, place: RowPlace) => {
    const node = now().tree.node(hit.file.id);
    const target = targetOf(hit);
    return (
      <Row
        place={place}
        id={`hit-${place.index}`}
        look={hit.kind === "file" ? fileLook(node?.language) : lookOf(hit.kind)}
        name={hit.name}
        positions={hit.positions}
        below={whereOf(hit)}
        isSelected={place.index === selected}
        target={target}
        onTap={() => open(target)}
      />
    );
  };
  return (
    <>
      <WindowedList name="Found" memory="search" rows={result.items} keyOf={keyOf} draw={draw} show={selected} />
      {result.truncated && <p class="footnote">There are more: type another letter.</p>}
    </>
  );
}

const keyOf = ({ kind, file, line, name }: Hit) => `${kind} ${file.id} ${line} ${name}`;

function whereOf({ kind, container, file, line }: Hit): string {
  if (kind === "file") return file.path;
  const where = line === undefined ? file.name : `${file.name}:${line}`;
  return container ? `${container} · ${where}` : where;
}

function Recents({ recents, selected }: { recents: readonly Target[]; selected: number }) {
  const draw = (target: Target, place: RowPlace) => (
    <Row
      place={place}
      id={`hit-${place.index}`}
      look={target.kind === "file" ? fileLook(now().tree.node(target.file.id)?.language) : lookOf(target.kind)}
      name={target.name}
      below={target.line === undefined ? target.file.path : `${target.file.name}:${target.line}`}
      isSelected={place.index === selected}
      target={target}
      onTap={() => open(target)}
    />
  );
  return (
    <>
      <h2 class="list-title">Opened lately</h2>
      <WindowedList name="Opened lately" memory="recents" rows={recents} keyOf={({ file, kind, name }) => `${file.id} ${kind} ${name}`} draw={draw} />
    </>
  );
}
