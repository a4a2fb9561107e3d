#!/usr/bin/env python3
"""Fails when a source file includes a header of a higher layer.

The layers, lowest first, are the folders listed under "## Layers" in docs/architecture.md
(lines of the form "N. `folder/` ..."). A file may include headers of its own folder and of
any lower layer. Folders that are not layers (tests/, bench/, tools/) are not checked; a
layer's file that includes one of them fails too.

Usage: scripts/check_layers.py [SOURCE_DIR]
"""
import pathlib
import re
import sys

root = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else pathlib.Path(__file__).parent.parent)
doc = (root / "docs" / "architecture.md").read_text(encoding="utf-8")
section = doc.split("## Layers", 1)
if len(section) != 2:
    sys.exit("docs/architecture.md has no '## Layers' section")
layers = re.findall(r"^\d+\. `([a-z_]+)/`", section[1].split("\n## ", 1)[0], re.MULTILINE)
if len(layers) < 2:
    sys.exit("docs/architecture.md lists no layers under '## Layers'")
rank = {name: position for position, name in enumerate(layers)}

include = re.compile(r'^\s*#\s*include\s+"([a-z_]+)/[^"]+"', re.MULTILINE)
problems = []
for layer in layers:
    folder = root / layer
    if not folder.is_dir():
        problems.append(f"{layer}/: listed as a layer but not a folder")
        continue
    for source in sorted(folder.rglob("*")):
        if source.suffix not in (".h", ".cc"):
            continue
        for match in include.finditer(source.read_text(encoding="utf-8")):
            target = match.group(1)
            if target not in rank:
                problems.append(f"{source.relative_to(root)}: includes {target}/, which is no layer")
            elif rank[target] > rank[layer]:
                problems.append(
                    f"{source.relative_to(root)}: {layer}/ (layer {rank[layer] + 1}) includes "
                    f"{target}/ (layer {rank[target] + 1}), a higher layer")

for problem in problems:
    print(problem)
print(f"{len(layers)} layers, {len(problems)} includes pointing up")
sys.exit(1 if problems else 0)
