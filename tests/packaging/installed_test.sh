#!/bin/bash
# Installs the packages in a bare Debian system, uses them, upgrades them and removes them again.
# Changes the system it runs in; made for one that is thrown away afterwards. Run as root there: the
# packages come from the network, while the programs run there is none but loopback.
#
# Usage: installed_test.sh FOLDER [HOST], where FOLDER holds the two packages, made for HOST (by
# default aulora.test). Prints a line for each step and fails with the first that does. A picture of
# the window is left in FOLDER as installed.png.
set -euo pipefail

[ $# -ge 1 ] && [ -d "$1" ] || {
    echo "Usage: installed_test.sh FOLDER [HOST]" >&2
    exit 2
}
[ "$(id -u)" -eq 0 ] || {
    echo "installed_test.sh: packages are installed by root" >&2
    exit 2
}
packages=$(cd "$1" && pwd)
host=${2:-aulora.test}
sources=$(cd "$(dirname "$0")/.." && pwd)
name=${host%%:*}
case $host in *:*) port=${host##*:} ;; *) port=443 ;; esac
export DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8

# Others than root read what is here.
work=$(mktemp -d)
chmod 755 "$work"
trap 'rm -rf "$work"' EXIT

ok() {
    printf '  ok  %s\n' "$1"
}

fail() {
    printf 'FAIL  %s\n' "$1"
    exit 1
}

# quietly <command...>: its output shows only if it fails.
quietly() {
    "$@" >"$work/output" 2>&1 || {
        cat "$work/output"
        fail "$*"
    }
}

installed_packages() {
    dpkg-query --show --showformat='${db:Status-Status} ${Package}\n' | sed -n 's/^installed //p' | sort
}

# higher_version <package file>: the same package with a higher version, in the folder of the work.
higher_version() {
    rm -rf "$work/tree"
    dpkg-deb --raw-extract "$1" "$work/tree"
    sed -i 's/^Version: .*/&+1/' "$work/tree/DEBIAN/control"
    dpkg-deb --root-owner-group --build "$work/tree" "$work"
}

install_packages() {
    quietly apt-get update
    quietly apt-get install --yes --no-install-recommends "$packages"/aulora-ia_*.deb \
        "$packages"/aulora-assistant_*.deb
    installed_packages >"$work/brought"
    ok "apt installed both packages with what they depend on, $(wc -l <"$work/brought") in all"
}

install_tools() {
    quietly apt-get install --yes --no-install-recommends at-spi2-core dbus gir1.2-atspi-2.0 \
        imagemagick iproute2 openbox openssl python3 python3-gi python3-pyatspi x11-xkb-utils \
        xdotool xvfb
}

# What was configured nowhere serves nobody.
check_service_waits() {
    [ ! -e /etc/systemd/system/multi-user.target.wants/aulora-assistant.service ] ||
        fail "the assistant was enabled without having been configured"
    getent passwd aulora-assistant >/dev/null || fail "the assistant has no user"
    if command -v systemd-analyze >/dev/null; then
        # systemd of Debian 12 asks the running one for the unit's mounts, and there is none.
        quietly systemd-analyze verify --man=no aulora-assistant.service
        exposure=$(systemd-analyze security --offline=yes --threshold=20 --no-pager \
            aulora-assistant.service | sed -n 's/.*exposure level for .*: \([0-9.]*\) .*/\1/p')
        ok "the service waits for its configuration; systemd rates its exposure as $exposure of 10"
    else
        ok "the service waits for its configuration"
    fi
}

trust_certificate() {
    quietly openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -noenc -days 2 \
        -subj "/CN=$name" -addext "subjectAltName=DNS:$name" -addext extendedKeyUsage=serverAuth \
        -keyout /etc/ssl/private/aulora-assistant.key -out /etc/ssl/certs/aulora-assistant.pem
    chmod 600 /etc/ssl/private/aulora-assistant.key
    cp /etc/ssl/certs/aulora-assistant.pem "/usr/local/share/ca-certificates/$name.crt"
    quietly update-ca-certificates
    echo "127.0.0.1 $name" >>/etc/hosts
    ok "$name is this machine, with a certificate that the system trusts"
}

# The way its unit does.
start_assistant() {
    . /etc/default/aulora-assistant
    local run=/run/aulora-assistant
    install --directory --owner=aulora-assistant --mode=0700 $run /var/lib/aulora-assistant
    install --owner=aulora-assistant --mode=0400 "$CERTIFICATE" $run/certificate.pem
    install --owner=aulora-assistant --mode=0400 "$KEY" $run/key.pem
    setpriv --reuid=aulora-assistant --regid=aulora-assistant --clear-groups \
        --inh-caps=-all,+net_bind_service --ambient-caps=+net_bind_service \
        aulora-local-service --host "$ADDRESS" --port "$port" --cert $run/certificate.pem \
        --key $run/key.pem $OPTIONS >"$work/assistant.log" 2>&1 &
    assistant=$!
    trap 'kill $assistant 2>/dev/null || true' EXIT
    for _ in $(seq 200); do
        ! grep -q Escuchando "$work/assistant.log" || return 0
        kill -0 $assistant 2>/dev/null || break
        sleep 0.1
    done
    cat "$work/assistant.log"
    fail "the assistant did not start"
}

# Runs without a network: what follows needs none.
use_programs() {
    ip link set lo up
    start_assistant
    ok "the assistant listens, as its own user"

    useradd --create-home --shell /bin/bash student
    mkdir "$work/sources" "$work/student"
    cp -R "$sources/e2e" "$sources/packaging" "$work/sources"
    chown student "$work/student"
    setpriv --reuid=student --regid=student --init-groups env -i HOME=/home/student \
        PATH=/usr/bin:/bin PYTHONDONTWRITEBYTECODE=1 \
        python3 "$work/sources/packaging/installed_program.py" "$work/student" &
    student=$!
    until [ -e "$work/student/upgrade" ]; do
        kill -0 $student 2>/dev/null || break
        sleep 0.1
    done
    if [ -e "$work/student/upgrade" ]; then
        quietly dpkg --install "$work"/*.deb
        touch "$work/student/upgraded"
    fi
    wait $student || {
        tail -n 5 "$work/assistant.log"
        fail "the client could not be used"
    }
    cp "$work/student/picture.png" "$packages/installed.png"
    kill -0 $assistant || fail "the assistant ended with the upgrade"
    kill $assistant
    wait $assistant || fail "the assistant did not end well"
}

# Whatever the client had loaded came with it, not with the tools of this test. Left aside is what
# Qt's window plug-in takes where it happens to be: cursors of a theme.
check_dependencies() {
    local file owner count=0
    : >"$work/missing"
    while read -r file; do
        # Debian 12 has /lib as another name of /usr/lib, and packages that say so.
        owner=$(dpkg-query --search "$file" 2>/dev/null ||
            dpkg-query --search "${file#/usr}" 2>/dev/null) || continue
        owner=${owner%%:*}
        count=$((count + 1))
        case $owner in libxcursor1 | libxrender1) continue ;; esac
        grep -qx "$owner" "$work/brought" || echo "$file of $owner" >>"$work/missing"
    done < <(grep -E '\.so(\.|$)' "$work/student/mapped-files")
    [ ! -s "$work/missing" ] || {
        cat "$work/missing"
        fail "the client loaded what nothing had brought"
    }
    [ "$count" -gt 50 ] || fail "the client's libraries were not found"
    ok "the $count libraries that the client loaded came with it"
}

remove_packages() {
    local store=/home/student/.local/share/aulora-ia/preferences.sqlite
    local before
    before=$(sha256sum $store)
    touch /var/lib/aulora-assistant/memory
    quietly apt-get remove --yes aulora-ia aulora-assistant
    [ ! -e /usr/bin/aulora-ia ] && [ ! -e /usr/bin/aulora-local-service ] ||
        fail "a program is still there after its removal"
    [ -e /etc/default/aulora-assistant ] && [ -e /var/lib/aulora-assistant/memory ] ||
        fail "removing the assistant took what only purging takes"
    ok "removed, the assistant left its configuration and its data"
    quietly apt-get purge --yes aulora-assistant
    [ ! -e /etc/default/aulora-assistant ] && [ ! -e /var/lib/aulora-assistant ] ||
        fail "purging the assistant left something of its own"
    ! getent passwd aulora-assistant >/dev/null || fail "purging the assistant left its user"
    ! find / -xdev -path "$work" -prune -o -path "$packages" -prune -o -path "$sources" -prune -o \
        -path /proc -prune -o -name '*aulora-assistant*' ! -path '/etc/ssl/*' \
        ! -path '/run/aulora-assistant*' -print | grep . || fail "purging the assistant left these"
    ok "purged, the assistant left nothing"
    [ "$before" = "$(sha256sum $store)" ] || fail "the student's conversations were touched"
    ok "the student's conversations are as they were"
}

if [ "${3:-}" = without-network ]; then
    work=$4
    trap - EXIT
    use_programs
else
    install_packages
    check_service_waits
    install_tools
    trust_certificate
    for package in "$packages"/aulora-*.deb; do
        quietly higher_version "$package"
    done
    unshare --net bash "$0" "$packages" "$host" without-network "$work"
    check_dependencies
    remove_packages
fi
