# Which packages of Debian 12 each job needs, and how they are installed. Sourced by the scripts.

# windres, which compiles the resources for both systems, is in binutils-mingw-w64-x86-64.
packages_build=(cmake ninja-build g++ binutils-mingw-w64-x86-64 libcli11-dev libsqlite3-dev libxerces-c-dev zlib1g-dev)
packages_test=(gdb libexpat1-dev libgtest-dev locales mandoc python3 tzdata pkg-config)
# The Xerces-C for Windows comes from a source package, which dpkg-dev unpacks.
packages_windows=(g++-mingw-w64-x86-64-posix libz-mingw-w64-dev dpkg-dev wine wine64)
packages_windows_test=(gdb-mingw-w64 gdb-mingw-w64-target googletest)
# To make the packages and to check them.
packages_package=(adduser dpkg-dev file unzip xz-utils abigail-tools pkg-config zlib1g-dev python3)
# What the library is measured beside.
packages_bench=(libbenchmark-dev libdeflate-dev libisal-dev libabsl-dev libfmt-dev libcereal-dev libboost-dev
    libboost-serialization-dev libpoco-dev qtbase5-dev libpugixml-dev)
packages_check=(clang-14 libclang-rt-14-dev clang-format-14 clang-tidy-14 gcovr python3-clang-14)

packages_docs=(doxygen doxygen-awesome-css graphviz python3)
packages_docs_check=(chromium chromium-driver python3-selenium fonts-dejavu-core)

# install_packages PACKAGE...: installs those that are missing, and says which.
install_packages() {
    local package missing=() sudo=()
    for package; do
        dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q ' installed$' || missing+=("$package")
    done
    [ ${#missing[@]} -gt 0 ] || return 0
    if [ "$(id -u)" != 0 ]; then
        if ! command -v sudo >/dev/null; then
            echo "Missing packages; as root, run: apt-get install ${missing[*]}" >&2
            return 1
        fi
        sudo=(sudo)
    fi
    say "Installing with apt-get: ${missing[*]}"
    local log=$root/build/logs/apt-get.log
    if ! { "${sudo[@]}" apt-get -q update &&
        "${sudo[@]}" env DEBIAN_FRONTEND=noninteractive \
            apt-get -q install -y --no-install-recommends "${missing[@]}"; } </dev/null >"$log" 2>&1; then
        tail -n 20 "$log" >&2
        echo "apt-get failed; its whole output is in $log" >&2
        return 1
    fi
}
