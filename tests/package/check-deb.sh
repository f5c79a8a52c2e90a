#!/usr/bin/env bash
# Builds the .deb from a finished build and checks what an installer gets:
# the files and their owners, the control fields and dependencies, the
# maintainer scripts, the units, the desktop entry, the sample param.ini, and
# the packed programs starting. As root it also installs the package into a
# throwaway root with dpkg and checks the service's user and folder.
#
# usage: check-deb.sh CPACK BUILD_DIR VERSION SAMPLES_DIR
set -euo pipefail

cpack=$1 build=$2 version=$3 samples=$4

work="$(mktemp -d -t kerbano-package.XXXXXX)"
started=()
cleanup() {
    local pid
    for pid in "${started[@]}"; do
        kill "$pid" 2>/dev/null || true
        wait "$pid" 2>/dev/null || true
    done
    rm -rf "$work"
}
trap cleanup EXIT

failures=0
fail() { echo "FAIL: $*" >&2; failures=$((failures + 1)); }
check() { local what=$1; shift; if "$@"; then echo "ok: $what"; else fail "$what"; fi; }


if ! "$cpack" -G DEB --config "$build/CPackConfig.cmake" -B "$work/out" >"$work/cpack.log" 2>&1; then
    cat "$work/cpack.log" >&2
    echo "FAIL: cpack made no package" >&2
    exit 1
fi
debs=("$work/out"/kerbano_*.deb)
[ -f "${debs[0]}" ] || { echo "FAIL: no kerbano_*.deb in $work/out" >&2; exit 1; }
deb=${debs[0]}
arch="$(dpkg --print-architecture)"
check "file name kerbano_${version}_${arch}.deb" [ "$(basename "$deb")" = "kerbano_${version}_${arch}.deb" ]


dpkg-deb -c "$deb" >"$work/contents"
dpkg-deb -x "$deb" "$work/root"
root="$work/root"
has_file() { awk '{print $NF}' "$work/contents" | grep -qxF "./$1"; }
mode_of() { awk -v p="./$1" '$NF == p {print $1}' "$work/contents"; }
field() { dpkg-deb -f "$deb" "$1"; }
# The last assignment of a key wins, as systemd reads it.
value() { grep -E "^$2=" "$1" | tail -n 1 | cut -d= -f2- || true; }
field_is() { local v; v="$(field "$1")"; [ -n "$v" ] && { [ -z "$2" ] || [ "$v" = "$2" ]; }; }
is_off() { case "$1" in "" | no | false | off | 0) return 0 ;; *) return 1 ;; esac; }
while IFS='|' read -r kind file key rest; do
    case "$kind" in
    packs) check "packs /$file" has_file "$file" ;;
    mode) check "/$file is $key" [ "$(mode_of "$file")" = "$key" ] ;;
    value) check "/$file: $key=$rest" [ "$(value "$root/$file" "$key")" = "$rest" ] ;;
    line) check "/$file: a line $key${rest:+|$rest}" grep -qE -- "$key${rest:+|$rest}" "$root/$file" ;;
    field) check "control field $file${key:+ is $key}" field_is "$file" "$key" ;;
    off) check "/$file: $key off" is_off "$(value "$root/$file" "$key")" ;;
    unset) check "/$file: no $key" [ -z "$(value "$root/$file" "$key")" ] ;;
    esac
done < <(grep -v '^#' "$(dirname "$0")/../data/package/expected.txt")
all_root_owned() { ! awk '{print $2}' "$work/contents" | grep -vqx root/root; }
check "every entry belongs to root" all_root_owned


check "Version is $version" [ "$(field Version)" = "$version" ]
check "Architecture is $arch" [ "$(field Architecture)" = "$arch" ]
one_text() { ! grep -q '^ ;' <<<"$(field Description)"; }
check "Description is one text, not a CMake list" one_text

depends="$(field Depends)"
# Each alternative's package name, version and blanks cut away.
depends_on() { tr ',|' '\n' <<<"$depends" | sed 's/^ *//; s/ .*//' | grep -qxF "$1"; }
# Every Qt and curl library the packed programs load names its package; the
# SQLite driver is a plugin that no program names, so it is always wanted.
required=(libqt6sql6-sqlite)
while read -r library; do
    case "$library" in
    libQt6*.so.6)
        module=${library#libQt6}
        module=${module%.so.6}
        required+=("libqt6${module,,}6")
        ;;
    libcurl.so.4) required+=(libcurl4) ;;
    libcurl-gnutls.so.4) required+=(libcurl3-gnutls) ;;
    esac
done < <(objdump -p "$root/usr/bin/kerbano" "$root/usr/bin/kerbano-ecr-sim" | awk '$1 == "NEEDED" {print $2}' | sort -u)
check "the library scan finds QtCore in the packed programs" grep -qx libqt6core6 < <(printf '%s\n' "${required[@]}")
for p in "${required[@]}"; do
    check "depends on $p" depends_on "$p"
done

dpkg-deb -e "$deb" "$work/control"
executable_shell() { [ -x "$1" ] && sh -n "$1"; }
for s in postinst prerm postrm; do
    check "maintainer script $s is executable shell" executable_shell "$work/control/$s"
done


for p in kerbano kerbano-ecr-sim; do
    check "packed $p --version says $version" [ "$("$root/usr/bin/$p" --version)" = "$p $version" ]
done


unit="$root/usr/lib/systemd/system/kerbano.service"

any_device() { case "$1" in "" | auto) return 0 ;; *) return 1 ;; esac; }
check "serial ports stay open (no DevicePolicy)" any_device "$(value "$unit" DevicePolicy)"
families="$(value "$unit" RestrictAddressFamilies)"
# Empty allows all; a list starting with "~" is one of families denied.
family_allowed() {
    [ -z "$families" ] && return 0
    if [ "${families#\~}" != "$families" ]; then ! grep -qw "$1" <<<"$families"; else grep -qw "$1" <<<"$families"; fi
}
for family in AF_INET AF_INET6 AF_NETLINK; do
    check "address family $family allowed" family_allowed "$family"
done
if [ "$(value "$unit" ProtectSystem)" = strict ]; then
    check "its folder stays writable under ProtectSystem=strict" \
        grep -qE '^ReadWritePaths=(.* )?-?/var/lib/kerbano/?( |$)' "$unit"
fi

# A copy whose ExecStart names the unpacked program, since verify wants it to
# exist. A unit with a bad key or value still passes verify, with a warning
# naming the file: any word about it fails the check.
verify_unit() {
    local scope=$1 packed=$2 copy out rc=0
    mkdir -p "$work/units/$scope" "$work/run"
    chmod 700 "$work/run"
    copy="$work/units/$scope/kerbano.service"
    sed "s|/usr/bin/kerbano|$root/usr/bin/kerbano|g" "$packed" >"$copy"
    out="$(XDG_RUNTIME_DIR="$work/run" systemd-analyze "--$scope" verify --man=no "$copy" 2>&1)" || rc=$?
    [ -z "$out" ] || echo "$out"
    [ "$rc" -eq 0 ] && ! grep -q kerbano <<<"$out"
}
if command -v systemd-analyze >/dev/null 2>&1; then
    check "systemd-analyze verify of the system unit" verify_unit system "$unit"
    check "systemd-analyze verify of the user unit" verify_unit user "$root/usr/lib/systemd/user/kerbano.service"
else
    echo "skip: no systemd-analyze to verify the units"
fi


desktop="$root/usr/share/applications/kerbano.desktop"
# Greek letters in UTF-8 lead with byte CE or CF.
check "desktop entry has a Greek comment" env LC_ALL=C grep -q $'^Comment=.*[\xce\xcf]' "$desktop"
icon="$(value "$desktop" Icon)"
check "desktop entry's icon $icon is packed" [ -f "$root/usr/share/icons/hicolor/scalable/apps/$icon.svg" ]
if command -v desktop-file-validate >/dev/null 2>&1; then
    check "desktop-file-validate" desktop-file-validate "$desktop"
fi
svg="$root/usr/share/icons/hicolor/scalable/apps/kerbano.svg"
if command -v xmllint >/dev/null 2>&1; then
    well_formed_svg() { xmllint --noout "$svg" && grep -q '<svg' "$svg"; }
    check "icon is well-formed SVG" well_formed_svg
else
    check "icon is SVG" grep -q '<svg' "$svg"
fi


sample="$root/usr/share/doc/kerbano/examples/param.ini"
crlf_only() {
    local lines crlf
    lines=$(tr -cd '\n' <"$sample" | wc -c)
    crlf=$(grep -c $'\r$' "$sample" || true)
    [ "$lines" -gt 0 ] && [ "$lines" -eq "$crlf" ] && [ "$(tail -c 1 "$sample" | od -An -c | tr -d ' ')" = '\n' ]
}
check "sample param.ini ends every line with CR LF" crlf_only
check "sample param.ini is Windows-1253 text" iconv -f WINDOWS-1253 -t UTF-8 -o /dev/null "$sample"

# The sample as it comes, its port pointed at the packed virtual register:
# the packed kerbano polls print/print.1, prints it and deletes it.
sample_prints() {
    local run="$work/sample-run" port="" candidate i
    mkdir -p "$run/print"
    for _ in $(seq 1 20); do
        candidate=$((20000 + RANDOM % 12000))
        if ! (exec 3<>"/dev/tcp/127.0.0.1/$candidate") 2>/dev/null; then port=$candidate; break; fi
    done
    [ -n "$port" ] || { echo "no free loopback port"; return 1; }
    "$root/usr/bin/kerbano-ecr-sim" --tcp "127.0.0.1:$port" --tape "$run/tape.txt" 2>"$run/sim.log" &
    started+=($!)
    for _ in $(seq 1 50); do
        (exec 3<>"/dev/tcp/127.0.0.1/$port") 2>/dev/null && break
        sleep 0.1
    done
    sed "s/^\[port\] .*\r\$/[port] 127.0.0.1:$port\r/" "$sample" >"$run/param.ini"
    cp "$samples/receipt.txt" "$run/print/print.1"
    (cd "$run" && exec env KERBANO_HOME="$run" "$root/usr/bin/kerbano" --headless >"$run/kerbano.log" 2>&1) &
    started+=($!)
    # Polling runs every 3 s; the receipt takes well under a second after.
    for i in $(seq 1 300); do
        [ -e "$run/print/print.1" ] || break
        sleep 0.1
    done
    if [ -e "$run/print/print.1" ] || ! grep -q 'exitcode = 0' "$run/result.txt" 2>/dev/null; then
        echo "after ${i}00 ms:"
        cat "$run/kerbano.log"
        return 1
    fi
}
check "the sample param.ini drives the packed kerbano to print print/print.1" sample_prints


install_root() {
    local inst="$work/inst"
    mkdir -p "$inst/var/lib/dpkg/info" "$inst/var/lib/dpkg/updates" "$inst/etc"
    : >"$inst/var/lib/dpkg/status"
    # Maintainer scripts run here, outside the root, and keep to $DPKG_ROOT.
    if ! dpkg --root="$inst" --log="$work/dpkg.log" --force-script-chrootless --force-depends \
        -i "$deb" >"$work/dpkg-install.log" 2>&1; then
        cat "$work/dpkg-install.log" >&2
        fail "dpkg -i into a throwaway root"
        return
    fi
    echo "ok: dpkg -i into a throwaway root"
    check "installed kerbano --version says $version" \
        [ "$("$inst/usr/bin/kerbano" --version)" = "kerbano $version" ]
    local entry uid
    entry="$(grep '^kerbano:' "$inst/etc/passwd" || true)"
    check "postinst made the user kerbano" [ -n "$entry" ]
    check "kerbano's home is /var/lib/kerbano" [ "$(cut -d: -f6 <<<"$entry")" = /var/lib/kerbano ]
    check "kerbano is in dialout" grep -qE '^dialout:[^:]*:[0-9]+:(.*,)?kerbano(,|$)' "$inst/etc/group"
    uid="$(cut -d: -f3 <<<"$entry")"
    check "postinst made /var/lib/kerbano for kerbano" \
        [ "$(stat -c '%u %a' "$inst/var/lib/kerbano" 2>/dev/null)" = "$uid 750" ]
    check "postinst made the print folder, group-writable" \
        [ "$(stat -c '%u %a' "$inst/var/lib/kerbano/print" 2>/dev/null)" = "$uid 2770" ]
    if dpkg --root="$inst" --log="$work/dpkg.log" --force-script-chrootless -r kerbano \
        >"$work/dpkg-remove.log" 2>&1; then
        check "dpkg -r takes the program away" [ ! -e "$inst/usr/bin/kerbano" ]
        check "dpkg -r keeps the register's folder" [ -d "$inst/var/lib/kerbano" ]
    else
        cat "$work/dpkg-remove.log" >&2
        fail "dpkg -r from the throwaway root"
    fi
}

if [ "$(id -u)" -eq 0 ] && dpkg --force-help 2>/dev/null | grep -q script-chrootless; then
    install_root
else
    echo "skip: dpkg -i into a throwaway root needs root and dpkg's script-chrootless"
fi

if [ "$failures" -ne 0 ]; then
    echo "$failures package check(s) failed" >&2
    exit 1
fi
echo "package checks passed: $(basename "$deb")"
