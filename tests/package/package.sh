#!/usr/bin/env bash
# One step of the package's tests: package.sh STEP ARGUMENTS. The steps are the functions below.
set -euo pipefail

warnings="-Wall -Wextra -Wpedantic -Wshadow -Woverloaded-virtual -Werror"

# install BUILD PREFIX: a fresh prefix with what the build folder installs.
install() {
    rm -rf "$2"
    cmake --install "$1" --prefix "$2" >/dev/null
}

# headers PREFIX WORK: each installed header compiles, and links, with the flags that pkg-config gives.
headers() {
    local file
    mkdir -p "$2"
    PKG_CONFIG_PATH=$(find "$1" -name pkgconfig -type d)
    export PKG_CONFIG_PATH
    {
        find "$1/include/Kelvar" -name '*.h' -printf '#include "%P"\n' | sort
        echo 'int main() { return OruScene(QString(), QString(), QString()).mode(); }'
    } >"$2/headers.cpp"
    # shellcheck disable=SC2086,SC2046 # lists of flags
    g++ -std=c++17 -fPIC $warnings -o "$2/headers" "$2/headers.cpp" \
        $(pkg-config --cflags --libs kelvar-ui-graphics-scene)
}

# readme README PREFIX WORK: the page of code compiles where there is a window with a size.
readme() {
    mkdir -p "$3"
    PKG_CONFIG_PATH=$(find "$2" -name pkgconfig -type d)
    export PKG_CONFIG_PATH
    {
        echo 'extern struct Window { void update(); void swapBuffers(); } window;'
        echo 'extern int width, height;'
        sed -n '/^## A page of code/,/^```$/p' "$1" | sed '1,/^```cpp$/d; /^```$/d'
        echo 'View view;'
    } >"$3/readme.cpp"
    # shellcheck disable=SC2086,SC2046 # lists of flags
    g++ -std=c++17 -fPIC ${warnings/-Wshadow/} -fsyntax-only "$3/readme.cpp" $(pkg-config --cflags kelvar-ui-graphics-scene)
}

# consume PREFIX SOURCE BUILD: a project that knows no more than the prefix configures and builds.
consume() {
    rm -rf "$3"
    cmake -S "$2" -B "$3" -G Ninja -DCMAKE_PREFIX_PATH="$1" -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS="$warnings"
    cmake --build "$3"
}

# picture CHECK PROGRAM FILE ACTIONS COLOUR...: what the program shows after the actions.
picture() {
    local actions
    IFS=';' read -r -a actions <<<"$4"
    "$2" --out "$3" ${actions[@]+"${actions[@]}"}
    "$1" "$3" 960x720 "${@:5}"
}

# debian BUILD LINTIAN: both packages are made and lintian has no errors for them.
debian() {
    rm -f "$1"/package/*.deb
    (cd "$1" && cpack >/dev/null)
    "$2" --fail-on error --allow-root "$1"/package/*.deb
    [ "$(ls "$1"/package/*.deb | wc -l)" -eq 2 ]
}

"$@"
