#!/bin/sh
# The component layer and what uses it compile against the platform's own headers on a system that has
# them, and those have the sizes and offsets that ours declare elsewhere. Nothing is linked.
#
# Usage: windows_check.sh ROOT-OF-THE-PROJECT FOLDER, which is created. Exit code 0 when all compiles, otherwise 1.

own=$(realpath -m "$2")
cd "$1/src" || exit 1
compiler=x86_64-w64-mingw32-g++-posix
mkdir -p "$own" || exit 1
ln -sfn /usr/include/nlohmann "$own/nlohmann"
failed=0

# check NAME [ARGUMENT...]: compiles a file, or standard input with "-x c++ -".
check() {
    name=$1
    shift
    ccache "$compiler" -std=c++20 -Wall -Wextra -Werror -c -o "$own/object" -I. -isystem "$own" "$@" && return
    echo "FAILED: $name does not compile with $compiler" >&2
    failed=1
}

# All files together, because most of the time is spent on their headers.
for file in platform/component/*/*.cpp platform/runtime/Object.cpp platform/oxplatform.cpp library/Exports_windows.cpp \
    library/ClassTable.cpp people/cPatient.cpp; do
    case $file in *_posix.cpp) continue ;; esac
    echo "#include \"$file\""
done >"$own/all.new"
cmp -s "$own/all.new" "$own/all.cpp" || cp "$own/all.new" "$own/all.cpp"
check "the component layer" "$own/all.cpp"

check "the comparison of sizes and offsets" -x c++ - <<'UNIT'
#include "platform/component/binary/ComponentModel.h"

#include <cstddef>

static_assert(sizeof(LONG) == 4 && sizeof(ULONG) == 4 && sizeof(HRESULT) == 4 && sizeof(DISPID) == 4);
static_assert(sizeof(OLECHAR) == 2 && sizeof(VARIANT_BOOL) == 2 && sizeof(VARTYPE) == 2);
static_assert(sizeof(GUID) == 16 && offsetof(GUID, Data4) == 8);
static_assert(sizeof(VARIANT) == 24 && offsetof(VARIANT, vt) == 0 && offsetof(VARIANT, llVal) == 8);
static_assert(offsetof(VARIANT, pRecInfo) == 16 && offsetof(VARIANT, decVal) == 0);
static_assert(sizeof(DECIMAL) == 16 && offsetof(DECIMAL, scale) == 2 && offsetof(DECIMAL, sign) == 3);
static_assert(offsetof(DECIMAL, Hi32) == 4 && offsetof(DECIMAL, Lo64) == 8);
static_assert(sizeof(DISPPARAMS) == 24 && offsetof(DISPPARAMS, cArgs) == 16);
static_assert(offsetof(DISPPARAMS, cNamedArgs) == 20);
static_assert(sizeof(EXCEPINFO) == 64 && offsetof(EXCEPINFO, bstrSource) == 8);
static_assert(offsetof(EXCEPINFO, dwHelpContext) == 32 && offsetof(EXCEPINFO, scode) == 56);
static_assert(sizeof(SAFEARRAY) == 32 && offsetof(SAFEARRAY, pvData) == 16);
static_assert(offsetof(SAFEARRAY, rgsabound) == 24 && offsetof(SAFEARRAYBOUND, lLbound) == 4);
UNIT

exit $failed
