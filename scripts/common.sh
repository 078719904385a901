# shellcheck shell=bash
# SPDX-License-Identifier: MIT
# What the other scripts share; they source it. Needs bash.

# quietly TEXT COMMAND...: says what happens and runs the command with its output hidden. Every 20 s
# it says that the command still runs; a failure shows the output. The command's status is returned.
quietly() {
  local text=$1 status=0 log beat started=$SECONDS
  shift
  log=$(mktemp)
  echo "$text ..."
  # No process of the beat keeps the caller's output open, and it ends with this script.
  while sleep 20 >/dev/null 2>&1 && kill -0 $$ 2>/dev/null; do
    echo "  ... still running after $((SECONDS - started)) s"
  done &
  beat=$!
  "$@" >"$log" 2>&1 || status=$?
  kill "$beat"
  wait "$beat" 2>/dev/null || true
  if [ "$status" -ne 0 ]; then cat "$log" >&2; fi
  rm -f "$log"
  return "$status"
}

processors() { getconf _NPROCESSORS_ONLN; }

# configure DIRECTORY OPTION...: configures a build. One that exists keeps its generator, which may
# be another one than ours.
configure() {
  local directory=$1
  shift
  if [ -f "$directory/CMakeCache.txt" ]; then
    cmake -S . -B "$directory" "$@"
  else
    cmake -S . -B "$directory" -G Ninja "$@"
  fi
}

# succeeded STATUS FILE: whether a run of zvisp with this exit status and this output succeeded. The
# word alone proves nothing: a path or a plug-in may print it as well.
succeeded() {
  [ "$1" -eq 0 ] && cmp -s <(tail -c 16 "$2") <(printf '\033[32mSuccess\n\033[m')
}

# clean_root DIRECTORY LOG [PACKAGE...]: makes a minimal system of this machine's release, from the
# mirror that this machine uses, with the packages added. Needs debootstrap and the rights of root.
clean_root() {
  local directory=$1 log=$2 release mirror included
  shift 2
  # shellcheck source=/dev/null
  release=$(. /etc/os-release && echo "$VERSION_CODENAME")
  # shellcheck disable=SC2016  # the word is apt's to expand
  mirror=$(apt-get indextargets --format '$(REPO_URI)' "Release: $release" \
    "Identifier: Packages" | head -n 1)
  included=$(IFS=,; echo "$*")
  debootstrap --variant=minbase ${included:+--include="$included"} "$release" "$directory" \
    "$mirror" >"$log" 2>&1 || { tail -n 20 "$log" >&2; return 1; }
  # A process finds its own place under /proc.
  mount -t proc proc "$directory/proc"
}

# remove_root DIRECTORY: takes such a system away again; an error leaves its files, never others'.
remove_root() {
  local mounted
  for mounted in proc dev/shm dev/pts; do
    if mountpoint -q "$1/$mounted"; then umount "$1/$mounted"; fi
  done
  rm -rf --one-file-system "$1"
}
