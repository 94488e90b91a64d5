#!/bin/sh
# Unpacks the archive of a build, moves it, and uses it as users, integrators and packagers do.
#   check_package.sh <archive | client | host | debian | service> <build folder> <source folder> <work folder>
set -eu
what=$1 build=$2 source=$3 work=$4
prefix="$work/moved here"
export HOME="$work/home" QT_QPA_PLATFORM=offscreen
unset DISPLAY WAYLAND_DISPLAY XDG_DATA_HOME XDG_CONFIG_HOME LD_LIBRARY_PATH

fail() {
    echo "$*" >&2
    exit 1
}

# wait_for <description> <command>…
wait_for() {
    description=$1
    shift
    for _ in $(seq 600); do
        "$@" && return
        sleep 0.1
    done
    fail "waited in vain for $description"
}

pack() {
    cpack --config "$build/CPackConfig.cmake" -G "$1" -B "$work/packages" >"$work/cpack.log" 2>&1 || fail "$(cat "$work/cpack.log")"
}

archive() {
    rm -rf "$work"
    mkdir -p "$HOME"
    pack TGZ
    tar -xzf "$work/packages"/*.tar.gz -C "$work"
    mv "$work"/quillstar-* "$prefix"
    for file in $(grep -rlI "$build\|$source\|$work" "$prefix" || true); do
        fail "$file names a folder of the build"
    done
    for program in quillstar quillstar-farmd; do
        manual="$prefix/share/man/man1/$program.1.gz"
        env -u QT_QPA_PLATFORM "$prefix/bin/$program" --help >"$work/help" || fail "$program has no help without a display"
        grep -q "^Usage: $program " "$work/help" || fail "the help of $program calls it otherwise"
        for option in $(grep -o -- ' --[a-z-]*' "$work/help"); do
            zcat "$manual" | sed 's/\\//g' | grep -q -- "$option\b" || fail "$manual lacks $option"
        done
    done
    if command -v desktop-file-validate >/dev/null; then
        desktop-file-validate "$prefix"/share/applications/*.desktop
    fi
    if command -v appstreamcli >/dev/null; then
        appstreamcli validate --no-net "$prefix"/share/metainfo/*.xml
    fi
}

# The client starts the installed farm and signs in; its main window keeps its files in the user's home.
client() {
    data="$HOME/.local/share/quillstar"
    "$prefix/bin/quillstar" &
    client=$!
    trap 'kill $client' EXIT
    wait_for "the farm's data" [ -f "$data/farm/farm.sqlite" ]
    wait_for "the sign-in" grep -qs lastname "$HOME/.config/quillstar/quillstar.ini"
    kill "$client"
    trap - EXIT
    wait "$client" || fail "the client ended with status $?"
    [ -e "$data/program/data" ] || fail "the client has not run in its user's folder"
    [ ! -e "$prefix/lib/quillstar/data" ] || fail "the client has written to the installation"
}

# The example as an integrator gets it, and a form that lacks a widget.
host() {
    example="$prefix/share/quillstar/minimal_host"
    host="$work/host"
    cmake -G Ninja -S "$example" -B "$host" -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_CXX_COMPILER_LAUNCHER="${CCACHE:-}"
    cmake --build "$host"
    said=$("$host/minimal_host" --once)
    [ "$said" = "shown: 1 job" ] || fail "the example said: $said"

    form="$prefix/share/quillstar/forms/com.vtr.search.ui"
    sed -i 's/name="lneJobId"/name="lneOther"/' "$form"
    ! cmake "$host" >"$work/form.log" 2>&1 || fail "a form without lneJobId was accepted"
    grep -q "QLineEdit lneJobId" "$work/form.log" || fail "the missing lneJobId was not named"
}

debian() {
    pack DEB
    # Package, a file that it contains, packages that it depends on.
    while read -r package file depends; do
        deb=$(echo "$work/packages/${package}_"*.deb)
        dpkg-deb --fsys-tarfile "$deb" | tar -t >"$work/contents"
        for path in "$file" "share/doc/$package/copyright"; do
            grep -q "/usr/$path$" "$work/contents" || fail "$deb lacks $path"
        done
        for other in $depends; do
            dpkg-deb -f "$deb" Depends | grep -q "\b$other\b" || fail "$deb does not depend on $other"
        done
    done <<EOF
quillstar lib/quillstar/libcom_vtr_qsclient.so libqt5widgets5 libqt5svg5
quillstar-farm lib/systemd/system/quillstar-farmd.service libqt5core5a povray
quillstar-dev lib/cmake/QuillStarClient/QuillStarClientConfig.cmake quillstar qtbase5-dev
EOF
}

# copy_package_closure <root> <package>…: makes a root of these packages, all that they depend on and Debian's essential
# packages, by copying their files from this machine.
copy_package_closure() {
    root=$1
    shift
    # A package may depend on what another one provides.
    wanted=$(for name in "$@"; do
        dpkg-query -s "$name" >/dev/null 2>&1 && echo "$name" || dpkg-query -Wf '${Package} ${Provides}\n' \
            | awk -v name="$name" '{ for (i = 2; i <= NF; i++) if ($i == name || $i == name ",") print $1 }'
    done)
    # shellcheck disable=SC2086
    all=$(apt-cache depends --recurse --installed --no-recommends --no-suggests --no-conflicts --no-breaks --no-replaces \
        --no-enhances $wanted $(dpkg-query -Wf '${Essential} ${Package}\n' | sed -n 's/^yes //p') | grep '^[a-z0-9]' | sort -u)
    all=$(dpkg-query -Wf '${db:Status-Status} ${Package}\n' $all 2>/dev/null | sed -n 's/^installed //p' | sort -u)
    mkdir -p "$root/usr/bin" "$root/usr/sbin" "$root/usr/lib" "$root/usr/lib64" "$root/var/lib/dpkg/info" "$root/var/log" \
        "$root/tmp" "$root/dev" "$root/proc" "$root/run" "$root/etc"
    chmod 1777 "$root/tmp"
    for folder in bin sbin lib lib64; do
        ln -s "usr/$folder" "$root/$folder"
    done
    # Everything but folders, under the names that they have where /bin is a link.
    dpkg-query -L $all | sed -E 's#^/(bin|sbin|lib|lib64)/#/usr/\1/#' | sort -u | while read -r file; do
        [ -d "$file" ] && [ ! -L "$file" ] || [ ! -e "$file" ] || echo "$file"
    done | tar -C / --no-recursion -cf - -T - 2>/dev/null | tar -C "$root" -xf -
    cp -a /etc/alternatives "$root/etc/"
    cp /usr/share/base-passwd/passwd.master "$root/etc/passwd"
    cp /usr/share/base-passwd/group.master "$root/etc/group"
    dpkg-query -s $all >"$root/var/lib/dpkg/status"
    cp /var/lib/dpkg/info/*.list "$root/var/lib/dpkg/info/"
}

# The farm's package in a root where nothing is installed but what it depends on. It renders there as the service's
# user.
service() {
    sed "s#=quillstar-farmd#=$work/bin/quillstar-farmd#" "$source/packaging/quillstar-farmd.service" >"$work/quillstar-farmd.service"
    ln -sfn "$prefix/bin" "$work/bin"
    if command -v systemd-analyze >/dev/null; then
        systemd-analyze verify --man=no "$work/quillstar-farmd.service" || fail "systemd finds fault with the service"
    fi
    isolated="unshare --mount --pid --fork --kill-child"
    if [ "$(id -u)" != 0 ] || ! $isolated true 2>/dev/null || ! command -v apt-cache >/dev/null; then
        echo "skipped: only root can install a package in a root of its own, on Debian and where namespaces are allowed"
        exit 77
    fi
    pack DEB
    root="$work/root"
    rm -rf "$root"
    deb=$(echo "$work/packages"/quillstar-farm_*.deb)
    depends=$(dpkg-deb -f "$deb" Depends | tr ',' '\n' | sed 's/[(|].*//')
    copy_package_closure "$root" $depends
    cp "$deb" "$root/farm.deb"
    cat >"$root/trial" <<'EOF'
set -eu
ldconfig
dpkg --install /farm.deb
grep -q '^data = "/var/lib/quillstar"$' /etc/quillstar/farm.toml
install -d -o quillstar -g quillstar -m 700 /var/lib/quillstar
as_farm="setpriv --reuid quillstar --regid quillstar --clear-groups --no-new-privs"
$as_farm quillstar-farmd --config /etc/quillstar/farm.toml --port 0 >/tmp/said &
while ! grep -q listening /tmp/said; do kill -0 $!; sleep 0.1; done
echo "a long password" | $as_farm quillstar-farmd --config /etc/quillstar/farm.toml account add ann
$as_farm quillstar-farmd --config /etc/quillstar/farm.toml check
kill $!
wait $!
# The demo's jobs need renderer and scenes.
$as_farm quillstar-farmd --data /var/lib/quillstar/demo >/tmp/said &
until ls /var/lib/quillstar/demo/jobs/*/frame_*.png >/dev/null 2>&1; do kill -0 $!; sleep 0.1; done
kill $!
wait $!
dpkg --purge quillstar-farm
[ ! -e /etc/quillstar ] && [ -e /var/lib/quillstar/farm.sqlite ]
EOF
    # The mounts are seen by the trial alone, and end with it.
    timeout 200 $isolated sh -c 'mount --bind /dev "$1/dev" && mount -t proc proc "$1/proc" && exec chroot "$1" /bin/sh /trial' \
        sh "$root" >"$work/trial.log" 2>&1 && result=0 || result=$?
    [ $result = 0 ] || fail "the package's trial ended with $result: $(cat "$work/trial.log")"
}

$what
