# SPDX-License-Identifier: Apache-2.0
# Sourced by the scripts that configure a build: the arguments they share.
#
#   kiv_configure_args 2   # fills the array kiv_args for an -O2 build
#   cmake -S . -B build "${kiv_args[@]}" ...
#
# RelWithDebInfo with line tables only (-g1): full debug information (-g)
# made the test sources compile about a third slower, while stack traces,
# sanitizer reports and backtraces need only the lines. Build by hand (or
# with CMAKE_BUILD_TYPE=Debug) for a debugger session with variables.
# ccache is used when it is installed. Warnings are errors in every build
# the project's scripts make (KIV_WERROR); a packager's build leaves them
# warnings.
kiv_configure_args() {
    local flags="-O$1 -g1 -DNDEBUG"
    kiv_args=(-DCMAKE_BUILD_TYPE=RelWithDebInfo -DKIV_WERROR=ON
              "-DCMAKE_CXX_FLAGS_RELWITHDEBINFO=$flags"
              "-DCMAKE_C_FLAGS_RELWITHDEBINFO=$flags")
    if command -v ccache >/dev/null; then
        kiv_args+=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache -DCMAKE_C_COMPILER_LAUNCHER=ccache)
    fi
}
