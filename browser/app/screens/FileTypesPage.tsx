// Which kinds of files Navrel shows: here and on every other device.
import { useEffect } from "preact/hooks";
import { switchFileType } from "../actions";
import { loadList } from "../loading";
import { Empty } from "../parts/Empty";
import { Header } from "../parts/Header";
import { ShortList } from "../parts/ShortList";
import { useStore } from "../store";
import { kUpToMore } from "./MoreScreen";

export function FileTypesPage() {
  const { value, problem } = useStore((state) => state.fileTypes);
  useEffect(() => void loadList("fileTypes"), []);
  return (
    <>
      <Header title="File types" below="What is switched off is left out on every device." up={kUpToMore} />
      {problem ? (
        <Empty title={problem.text}>{problem.hint}</Empty>
      ) : !value ? (
        <Empty title="Reading the file types…" />
      ) : value.items.length === 0 ? (
        <Empty title="This project has no file types yet." />
      ) : (
        <ShortList memory="file types">
          <ul class="list" role="list" aria-label="File types">
            {value.items.map(({ extension, allowed }) => (
              <li class="row" key={extension}>
                <button type="button" role="switch" aria-checked={allowed} class="row-main plain" onClick={() => void switchFileType(extension, !allowed)}>
                  <span class="row-text row-name">{extension === "" ? "without an extension" : `.${extension}`}</span>
                  <span class="switch" aria-hidden="true">
                    {allowed ? "On" : "Off"}
                  </span>
                </button>
              </li>
            ))}
          </ul>
        </ShortList>
      )}
    </>
  );
}
