"""check-trees.py COMPANION [PROJECT...]: compares the trees that the program shows with an independent reading.

Without projects, with those that synthetic_projects.py writes."""

import json
import os
import subprocess
import sys
import tempfile

import expected_tree
import synthetic_projects


def shown_by(companion, bundle):
    run = subprocess.run([companion, "map", bundle, "--json"], capture_output=True, text=True, check=True)
    files = []

    def visit(node, names):
        if node["kind"] == "workspace" and names:
            return  # the other projects around this one
        if node["kind"] == "file":
            files.append(("/".join(names), node["path"], node.get("missing", False), tuple(node.get("targets", []))))
        for child in node.get("children", []):
            visit(child, names + [child["name"]])

    visit(json.loads(run.stdout)["root"], [])
    return files


def check(companion, bundle):
    expected = expected_tree.Tree(bundle).files
    shown = shown_by(companion, bundle)
    if shown == expected and shown:
        print(f"{len(shown)} files agree: {bundle}")
        return True
    print(f"DIFFERENT: {bundle}")
    for file in sorted(set(expected) - set(shown)):
        print("  not shown:", file)
    for file in sorted(set(shown) - set(expected)):
        print("  not expected:", file)
    return False


def main(companion, *bundles):
    with tempfile.TemporaryDirectory() as folder:
        bundles = bundles or synthetic_projects.write_all(os.path.realpath(folder))
        results = [check(companion, os.path.realpath(bundle)) for bundle in bundles]
    return 0 if all(results) else 1


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
