#!/bin/bash
# Builds the documents' site out of docs/, the examples and the public headers: build/site/index.html.
#
#   ./docs.sh             builds it; a link that leads nowhere and an operation without documentation are errors
#   ./docs.sh --check     also looks at it in a browser: on a phone's width, in the dark; leaves pictures of it in
#                         build/site-pictures
#   ./docs.sh --self-test tries the checks on small headers and sites, right ones and wrong ones
#
# For Debian 12. Packages that are missing are installed with apt-get (as root or through sudo).
set -uo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
cd "$root" || exit 1
. scripts/steps.sh
. scripts/packages.sh

packages=("${packages_docs[@]}")
case "${1-}" in
'' | --self-test) ;;
--check) packages+=("${packages_docs_check[@]}") ;;
*)
    sed -n '2,/^set/s/^# \{0,1\}//p' "$0"
    exit 2
    ;;
esac
install_packages "${packages[@]}" || exit 1
if [ "${1-}" = --self-test ]; then
    scripts/check-site --self-test && docs/site/self_test.py
    exit
fi

say "Building the site"
docs/site/draw.py --check || exit 1
docs/site/pages.py . build/site-pages || exit 1
rm -rf build/site
# What these three declare is the system's and the compiler's.
headers=$(sed -n '/^set(public_headers/,/^)/{/[()]/d;/win32_api\|win32_types\|export\.h/d;s|^ *|quarn/|p}' quarn/CMakeLists.txt)
{
    cat docs/site/Doxyfile
    echo "OUTPUT_DIRECTORY = build"
    echo "PROJECT_NUMBER = $(sed -n 's/^project(QuarnUtil VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)"
    # shellcheck disable=SC2086
    echo "INPUT = build/site-pages" $headers
} >build/site-pages/Doxyfile
quietly docs doxygen build/site-pages/Doxyfile || exit 1
cp build/site-pages/html/* build/site/
docs/site/mend.py build/site && scripts/check-site build/site build/site-pages/documents || exit 1
if [ "${1-}" = --check ]; then
    say "Looking at the site in a browser"
    scripts/check-site-browser --self-test &&
        scripts/check-site-browser build/site build/site-pictures || exit 1
fi
say "The site is build/site/index.html"
