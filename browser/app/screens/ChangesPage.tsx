// What this branch changed, file by file, and in which symbols.
import { useEffect, useMemo } from "preact/hooks";
import { open } from "../actions";
import { loadList } from "../loading";
import { Empty } from "../parts/Empty";
import { Header } from "../parts/Header";
import { Row } from "../parts/Row";
import { type RowPlace, WindowedList } from "../parts/WindowedList";
import type { Look } from "../model/kinds";
import { useStore } from "../store";
import type { Shape } from "../wire/wire";
import { kUpToMore } from "./MoreScreen";

type ChangedFile = NonNullable<Shape.Changes["files"]>[number];
type ChangeRow = { file: ChangedFile; symbol?: ChangedFile["symbols"][number] };

const kLooks: Record<ChangedFile["status"], Look> = {
  added: { letter: "A", colour: "extension", word: "added" },
  modified: { letter: "M", colour: "data", word: "modified" },
  deleted: { letter: "D", colour: "error", word: "deleted" },
  renamed: { letter: "R", colour: "callable", word: "renamed" },
};
const kChangedSymbol: Look = { letter: "·", colour: "plain", word: "changed" };

export function ChangesPage() {
  const { value, problem } = useStore((state) => state.changes);
  useEffect(() => void loadList("changes"), []);
  const rows = useMemo(() => rowsOf(value?.files ?? []), [value]);
  return (
    <>
      <Header title="Changes" below={value?.base && `since ${value.base}`} up={kUpToMore} />
      {problem ? <Empty title={problem.text}>{problem.hint}</Empty> : <Body value={value} rows={rows} />}
    </>
  );
}

function rowsOf(files: readonly ChangedFile[]): ChangeRow[] {
  return files.flatMap((file) => [{ file }, ...file.symbols.map((symbol) => ({ file, symbol }))]);
}

function Body({ value, rows }: { value: Shape.Changes | undefined; rows: readonly ChangeRow[] }) {
  if (!value) return <Empty title="Comparing with the main branch…" />;
  if (value.state === "noRepository") return <Empty title="This project is in no Git repository.">With one, what the branch changed is listed here.</Empty>;
  if (value.state === "unavailable") return <Empty title="The changes cannot be read.">Is git installed on the computer, and is there a main branch?</Empty>;
  if (rows.length === 0) return <Empty title="Nothing has changed.">This branch is the same as {value.base ?? "the main branch"}.</Empty>;
  return <WindowedList name="Changes" memory="changes" rows={rows} keyOf={keyOf} draw={draw} />;
}

const keyOf = ({ file, symbol }: ChangeRow) => `${file.file.id} ${symbol?.line} ${symbol?.name}`;

function draw({ file, symbol }: ChangeRow, place: RowPlace) {
  const isGone = file.status === "deleted";
  if (symbol) {
    const target = { kind: "function", name: symbol.name, file: file.file, line: symbol.line };
    return <Row place={place} look={kChangedSymbol} name={symbol.name} depth={1} end={symbol.line} target={target} onTap={() => open(target)} />;
  }
  const target = { kind: "file", name: file.file.name, file: file.file };
  return (
    <Row
      place={place}
      look={kLooks[file.status]}
      name={file.file.name}
      below={file.file.path}
      isDim={isGone}
      target={isGone ? undefined : target}
      onTap={isGone ? undefined : () => open(target)}
    />
  );
}
