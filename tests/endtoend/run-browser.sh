#!/usr/bin/env bash
# scripts/run --browser, as a newcomer has it: the link that it prints pairs a client, once, which then reads the sample.
# usage: run-browser.sh SOURCE_FOLDER PROGRAM_FOLDER
set -euo pipefail
source=$1
export NAVREL_BIN=$2

scratch=$(mktemp -d)
run_pid=
clean_up() {
    [ -z "$run_pid" ] || { kill "$run_pid" && wait "$run_pid"; } 2>/dev/null || true
    rm -rf "$scratch"
}
trap clean_up EXIT

fail() {
    printf '%s\n' "$*" >&2
    cat "$scratch/printed" "$scratch/errors" >&2
    exit 1
}

touch "$scratch/printed" "$scratch/errors"
env --unset=XDG_RUNTIME_DIR "$source/scripts/run" --browser </dev/null >"$scratch/printed" 2>"$scratch/errors" &
run_pid=$!
deadline=$((SECONDS + 60))
until grep -q 'Ctrl-C' "$scratch/printed"; do
    kill -0 "$run_pid" 2>/dev/null || fail "It ended by itself"
    [ $SECONDS -lt $deadline ] || fail "It printed no link"
    sleep 0.1
done

url=$(sed -n 's/^Navrel serves //p' "$scratch/printed")
link=$(sed -n 's/^ *\(http.*#p=.*\)$/\1/p' "$scratch/printed")
[[ $url =~ ^http://localhost:[0-9]+/$ ]] || fail "This is no address: $url"
[[ $link =~ ^"$url"#p=[A-Za-z0-9_-]{22}$ ]] || fail "This is no link of it: $link"
grep -qE 'type these digits on the page: [0-9]{6}$' "$scratch/printed" || fail "There are no six digits"

# status METHOD PATH [CURL_OPTION...]: the status of the answer, whose body is in $scratch/body.
status() {
    local method=$1 path=$2
    shift 2
    curl --silent --output "$scratch/body" --write-out '%{http_code}' --cookie "$scratch/cookies" \
        --cookie-jar "$scratch/cookies" --request "$method" "$@" "${url%/}$path"
}
# expect STATUS METHOD PATH [CURL_OPTION...]
expect() {
    local wanted=$1 got
    shift
    got=$(status "$@")
    [ "$got" = "$wanted" ] || fail "$1 $2: $got instead of $wanted"
}
pair=(POST /api/pair --header "Origin: ${url%/}" --header 'X-Navrel: 1' --header 'Content-Type: application/json'
    --data "{\"ticket\":\"${link##*#p=}\",\"label\":\"curl\"}")

expect 200 GET /
grep -q '<title>Navrel</title>' "$scratch/body" || fail "The page is another one"
expect 401 GET /api/tree
expect 204 "${pair[@]}"
expect 200 GET /api/state
until status GET /api/tree >/dev/null && grep -q '"name":"TideTable.swift"' "$scratch/body"; do
    [ $SECONDS -lt $deadline ] || fail "This is not the sample's tree: $(cat "$scratch/body")"
    sleep 0.1
done
expect 403 "${pair[@]}"

# The command for another link, as it is printed, gives one that pairs a second client.
command=$(sed -n '/^A link for another device:$/{n;p;}' "$scratch/printed")
another=$(env --unset=XDG_RUNTIME_DIR bash -c "$command --json") || fail "This gives no link: $command"
ticket=$(sed -nE 's/.*#p=([A-Za-z0-9_-]{22}).*/\1/p' <<<"$another")
rm "$scratch/cookies"
expect 204 "${pair[@]//${link##*#p=}/$ticket}"
expect 200 GET /api/state

# Ctrl-C, as the terminal sends it, ends both.
kill "$run_pid"
wait "$run_pid" || true
run_pid=
curl --silent --output /dev/null "$url" && fail "Navrel still runs"
exit 0
