# Sourced by ./run and ./test: installs what is missing on a Debian machine and builds a preset.

PACKAGES="g++ cmake ninja-build ccache pkg-config
    qtbase5-dev libqt5svg5-dev qtmultimedia5-dev libqt5multimedia5-plugins
    qttools5-dev qttools5-dev-tools qttranslations5-l10n
    libspdlog-dev libcli11-dev libtomlplusplus-dev libcpp-httplib-dev libsqlitecpp-dev libsqlite3-dev libsodium-dev libzip-dev libopenexr-dev zlib1g-dev libssl-dev
    povray povray-includes
    xvfb xauth fonts-dejavu-core fonts-inter fonts-wqy-microhei"

# For ./test only, where it runs as root: a Slurm cluster of two nodes on this machine. See tests/cluster.
CLUSTER_PACKAGES="munge slurmctld slurmd slurm-client"

# For ./test only: the checks of scripts/lint.sh and of the packages.
LINT_PACKAGES="git clang-format clang-tidy clazy dpkg-dev file desktop-file-utils appstream"

say() { printf '%s\n' "$*" >&2; }

# install_packages PACKAGE...
install_packages() {
    missing=""
    for package in "$@"; do
        dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q '^install ok installed' || missing="$missing $package"
    done
    [ -z "$missing" ] && return 0

    if [ "$(id -u)" = 0 ]; then
        as_root=""
    elif sudo -n true 2>/dev/null || { command -v sudo >/dev/null && [ -t 0 ]; }; then
        as_root="sudo"
    else
        say "Some packages are missing. Please type this, then start again:"
        say "  su -c 'apt-get update && apt-get install -y --no-install-recommends$missing'"
        exit 1
    fi
    say "Installing:$missing"
    # Try first without an update: the lists may be recent enough.
    export DEBIAN_FRONTEND=noninteractive
    # shellcheck disable=SC2086
    $as_root apt-get install -y --no-install-recommends $missing >/dev/null 2>&1 || {
        $as_root apt-get update >/dev/null
        $as_root apt-get install -y --no-install-recommends $missing >/dev/null
    }
}

# install_cluster_packages: Debian starts the services of packages when it installs them and whenever the machine starts;
# the tests start their own, so none of these must run. A machine that has Slurm already is left as it is.
install_cluster_packages() {
    [ "$(id -u)" = 0 ] || return 0
    for program in munged slurmctld slurmd sbatch; do
        command -v $program >/dev/null || missing_program=$program
    done
    [ -n "${missing_program:-}" ] || return 0
    services="munge slurmctld slurmd"
    # Packages ask this script what they may start.
    policy=/usr/sbin/policy-rc.d
    [ -e $policy ] || { printf '#!/bin/sh\nexit 101\n' >$policy && chmod 755 $policy && own_policy=1; }
    # shellcheck disable=SC2086
    (install_packages $CLUSTER_PACKAGES) || say "Slurm cannot be installed; the tests with a cluster are skipped."
    [ -z "${own_policy:-}" ] || rm -f $policy
    # shellcheck disable=SC2086
    systemctl disable $services >/dev/null 2>&1 || true
    for service in $services; do update-rc.d "$service" disable >/dev/null 2>&1 || true; done
}

# Configures once and builds what has changed.
build_preset() {
    [ -f "build/$1/build.ninja" ] || cmake --preset "$1" -Wno-dev >&2
    cmake --build --preset "$1" ${2:+--target $2} >&2
}
