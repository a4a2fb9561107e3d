# Sourced by the benchmark scripts: reading links out of the pages they fetch.

# The href of the link titled $2 in the page $1.
link_titled() {
  python3 - "$1" "$2" <<'PYTHON'
import re, sys
page = open(sys.argv[1], encoding="utf-8", errors="replace").read()
m = re.search(r'title="' + re.escape(sys.argv[2]) + r'" href=([^ >]+)', page) or \
    re.search(r'href=([^ >]+)[^<]*?title="' + re.escape(sys.argv[2]) + '"', page)
print(m.group(1) if m else "")
PYTHON
}
