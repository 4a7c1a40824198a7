// In place of everything that a project would have.
import { Empty } from "../parts/Empty";
import { Header } from "../parts/Header";
import { useStore } from "../store";

export function NoProject({ title }: { title: string }) {
  const project = useStore((state) => state.state?.project);
  const isTreeLoaded = useStore((state) => state.isTreeLoaded);
  return (
    <>
      <Header title={title} />
      {explanation()}
    </>
  );

  function explanation() {
    if (!project || (project.state === "loaded" && !isTreeLoaded)) return <Empty title="Asking Navrel…" />;
    switch (project.state) {
      case "loading":
        return <Empty title={`Reading ${project.name ?? "the project"}…`}>It appears here as soon as it is read.</Empty>;
      case "unreadable":
        return (
          <Empty title={`${project.name ?? "The project"} cannot be read.`}>
            <p>
              {project.reason ?? "Its project file is damaged."}
              {project.line !== undefined && ` See line ${project.line} of project.pbxproj.`}
            </p>
            <p>Repair the file, or undo the last change to it: it is read again by itself.</p>
          </Empty>
        );
      default:
        return (
          <Empty title="No project is open.">
            <p>Choose one from Navrel’s menu on the computer, or open a file of one in your editor.</p>
          </Empty>
        );
    }
  }
}
