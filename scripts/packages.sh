# Sourced by the scripts at the root: installs what packages.txt lists and this machine lacks.
# Works as root and as a user with sudo; asks for nothing when everything is there.

install_packages() {
    missing=""
    for package in $(grep -v '^#' packages.txt); do
        dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' \
            || missing="$missing $package"
    done
    [ -n "$missing" ] || return 0
    as_root=""
    [ "$(id -u)" -eq 0 ] || as_root="sudo"
    echo "installing:$missing"
    $as_root apt-get update -qq
    # shellcheck disable=SC2086 # the list is meant to be split
    $as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends $missing >/dev/null
}
