# Sourced by the benchmark scripts: what they read off the server they started.

# The port the server logging to $1 said it serves on, waited for up to $2 seconds. When it
# never says, its log goes to stderr and the caller's command substitution fails.
served_port() {
  local port=
  for _ in $(seq $(($2 * 10))); do
    port=$(sed -n 's|.*serving http://127.0.0.1:\([0-9]*\)/.*|\1|p' "$1")
    [[ -n $port ]] && { echo "$port"; return 0; }
    sleep 0.1
  done
  cat "$1" >&2
  return 1
}

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
