// What somebody wrote down beside the code: shortcut comments, things to do, warnings.
import { useEffect, useMemo, useState } from "preact/hooks";
import { open } from "../actions";
import { loadList } from "../loading";
import { Choice } from "../parts/Choice";
import { Empty } from "../parts/Empty";
import { Header } from "../parts/Header";
import { Row } from "../parts/Row";
import { type RowPlace, WindowedList } from "../parts/WindowedList";
import { lookOf } from "../model/kinds";
import { counted } from "../model/words";
import { useStore } from "../store";
import type { Shape } from "../wire/wire";
import { NoProject } from "./NoProject";

type Filter = "all" | "shortcut" | "todo" | "warning";
const kFilters: readonly { value: Filter; text: string }[] = [
  { value: "all", text: "All" },
  { value: "shortcut", text: "Shortcuts" },
  { value: "todo", text: "To do" },
  { value: "warning", text: "Warnings" },
];
const kWarnings: readonly Shape.NoteKind[] = ["warning", "error"];

function passes(filter: Filter, { kind }: Shape.Note): boolean {
  if (filter === "all") return true;
  if (filter === "shortcut") return kind === "shortcut";
  const isWarning = kWarnings.includes(kind);
  return filter === "warning" ? isWarning : !isWarning && kind !== "shortcut";
}

export function NotesScreen() {
  const { value, problem } = useStore((state) => state.notes);
  const hasProject = useStore((state) => state.tree.rootID !== undefined);
  const [filter, setFilter] = useState<Filter>("all");
  useEffect(() => void loadList("notes"), []);
  const rows = useMemo(() => (value?.items ?? []).filter((note) => passes(filter, note)), [value, filter]);
  if (!hasProject) return <NoProject title="Notes" />;
  return (
    <>
      <Header title="Notes" below={value && counted(rows.length, "note")} />
      <div class="chips">
        <Choice name="Kinds" values={kFilters} chosen={filter} onChoose={(value) => setFilter(value)} />
      </div>
      {problem ? <Empty title={problem.text}>{problem.hint}</Empty> : !value ? <Empty title="Reading the notes…" /> : rows.length === 0 ? <NoNotes /> : <List rows={rows} />}
    </>
  );
}

function NoNotes() {
  return <Empty title="There are no notes.">Comments such as // TODO: or // FIXME: and shortcut comments appear here.</Empty>;
}

function List({ rows }: { rows: readonly Shape.Note[] }) {
  const draw = (note: Shape.Note, place: RowPlace) => {
    const target = { kind: note.kind, name: note.text, file: note.file, line: note.line };
    return (
      <Row place={place} look={lookOf(note.kind)} name={note.text} below={`${note.file.name}:${note.line}`} target={target} onTap={() => open(target)} />
    );
  };
  return <WindowedList name="Notes" memory="notes" rows={rows} keyOf={({ file, line, kind }) => `${file.id} ${line} ${kind}`} draw={draw} />;
}
