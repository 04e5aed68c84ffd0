# shellcheck shell=bash
# Helpers shared by the install checks; source it from a check script.
# In a cross build the test environment names how to reach the target:
#   ZUVO_EMULATOR      command that runs a target program (qemu-user)
#   ZUVO_TARGET_FLAGS  compiler and linker flags for the target's sysroot
#   ZUVO_CMAKE_ARGS    toolchain arguments for configuring an outside project
#   ZUVO_PKG_CONFIG_LIBDIR  the sysroot's pkg-config directories
# Natively all four are empty.

# run_target PROGRAM ARGS...: runs a program built for the target.
run_target() {
    # shellcheck disable=SC2086
    ${ZUVO_EMULATOR:-} "$@"
}

# install_into BUILD_DIR PREFIX: installs a build into a scratch prefix.
install_into() {
    cmake --install "$1" --prefix "$2" >"$2.install.log" || { cat "$2.install.log"; exit 1; }
}

# is_static PREFIX: the prefix holds the static libraries and no shared one.
is_static() {
    [ -n "$(find "$1" -name 'libZuvoClientLib.a')" ] &&
        [ -z "$(find "$1" -name 'libZuvoClientLib.so*')" ]
}

# check_device_output FILE: FILE is what examples/device printed.
check_device_output() {
    grep -q '^	<zuvo:ping/>$' "$1" || { echo "no ping document"; cat "$1"; exit 1; }
    grep -q '^registration code K7Q2MX, retry every 5 s for 900 s; server time 1700000100$' "$1" ||
        { echo "pre-registration not read"; cat "$1"; exit 1; }
}
