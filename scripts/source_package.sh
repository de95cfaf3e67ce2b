# How a source package of the distribution is fetched, without privileges and without a change of the system.
# Sourced by the scripts.

# fetch_source NAME VERSION WORK: unpacks the package into WORK/source. The source entries that apt-get needs
# are given for this one call, in a folder of their own.
fetch_source() {
    local name=$1 version=$2 work=$3 apt=$3/apt file
    mkdir -p "$apt"/{parts,lists/partial,cache/archives/partial}
    # The machine's own entries, asking for sources instead of packages.
    for file in /etc/apt/sources.list /etc/apt/sources.list.d/*.list; do
        [ ! -f "$file" ] || sed -n 's/^deb\([[:blank:]]\)/deb-src\1/p' "$file" >"$apt/parts/${file##*/}.list"
    done
    for file in /etc/apt/sources.list.d/*.sources; do
        [ ! -f "$file" ] || sed 's/^Types:.*/Types: deb-src/' "$file" >"$apt/parts/${file##*/}"
    done
    local options=(-q -o Dir::Etc::SourceList=/dev/null -o Dir::Etc::SourceParts="$apt/parts"
        -o Dir::State::Lists="$apt/lists" -o Dir::Cache="$apt/cache" -o APT::Sandbox::User=)
    # An archive without sources is no failure as long as another has the package.
    apt-get "${options[@]}" update || true
    (cd "$work" && apt-get "${options[@]}" source --download-only "$name=$version") &&
        dpkg-source --extract "$work/${name}"_*.dsc "$work/source"
}
