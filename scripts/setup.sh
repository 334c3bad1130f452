# Shared by ./run and ./test: installs the packages that are missing, and nothing else.
# Source it, then call need_packages GROUP...

need_packages() {
    local list missing="" group package
    list="$(dirname "${BASH_SOURCE[0]}")/packages.txt"
    for group in "$@"; do
        while read -r package enough; do
            [ -n "$enough" ] && command -v "$enough" >/dev/null 2>&1 && continue
            if [ "$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null)" != installed ]; then
                missing="$missing $package"
            fi
        done < <(awk -v g="$group" '$1 == g { print $2, $3 }' "$list")
    done
    [ -z "$missing" ] && return 0

    if ! command -v apt-get >/dev/null 2>&1; then
        echo "These Debian packages are needed, and apt-get is not here to install them:$missing" >&2
        return 1
    fi
    local as_root=""
    if [ "$(id -u)" -ne 0 ]; then
        if command -v sudo >/dev/null 2>&1 && sudo -n true 2>/dev/null; then
            as_root="sudo"
        else
            echo "These packages are missing, and installing them needs the right to do so:" >&2
            echo "    apt-get install$missing" >&2
            return 1
        fi
    fi
    echo "Installing missing packages:$missing"
    # shellcheck disable=SC2086
    if ! $as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends $missing >/dev/null 2>&1; then
        $as_root apt-get update -qq &&
        $as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends $missing >/dev/null
    fi
}
