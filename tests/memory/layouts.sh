#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Programs that come to the library in odd ways: by a library of a library, behind the C library, by
# dlopen, with another allocator behind it, without position-independent code. Each must run, and
# say the truth about whose allocations are seen.
set -euo pipefail
library=$1 source_dir=$2 cc=$3 cxx=$4
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export XDG_CONFIG_HOME=$work CFLOG_FORCE_STDERR=1 LD_LIBRARY_PATH=$work:$(dirname "$library")
cd "$work"
veltra=("-I$source_dir" "$library")
failures=0
fail() { echo "$1"; failures=$((failures + 1)); }

# What a service that stands on the zone does, seen from C.
cat >use.c <<'C'
#include "veltra/memory/leak_guard.h"
#include "veltra/memory/memory_reserve.h"
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
int use(void) {
    QKMemoryReserveSetOption(kMemoryReserveBlockSize, 1);
    QKMemoryReserveSetOption(kMemoryReserveFinalBlockSize, 1);
    free(QKMemoryReserveEnter(NULL, NULL));
    char* text = strdup("text");
    QKLeakGuard* scope = QKOpenLeakGuardScope();
    text = realloc(text, 100);
    QKCloseLeakGuardScope(scope);
    free(text);
    const int isAvailable = QKMemoryReserveTestAvailableMemory(1000, 10);
    QKMemoryReserveExit();
    puts(isAvailable ? "lived" : "no memory");
    return !isAvailable;
}
C
echo 'int use(void); int main(void) { return use(); }' >main.c
cat >open.c <<'C'
#include <dlfcn.h>
#include <stdio.h>
int main(int count, char** names) {
    void* opened = dlopen(names[count - 1], RTLD_NOW);
    int (*use)(void) = opened ? (int (*)(void))dlsym(opened, "use") : NULL;
    if (use == NULL) return puts(dlerror()), 1;
    return use();
}
C
"$cc" -shared -fPIC use.c "${veltra[@]}" -o libfoo.so
echo 'int use(void); int middle(void) { return use(); }' >middle.c
"$cc" -shared -fPIC middle.c -L. -Wl,--no-as-needed -lfoo -o libmiddle.so
"$cc" main.c -L. -lfoo -Wl,-rpath-link,"$(dirname "$library")" -o by_library
"$cc" main.c use.c "-I$source_dir" -Wl,--no-as-needed -lc "$library" -o behind_libc
"$cc" main.c use.c "${veltra[@]}" -o direct
"$cc" open.c -o opening

mkdir -p enabled
for name in by_library behind_libc direct opening; do
    echo '{"LeakGuardEnabled": true}' >"enabled/$name.json"
done
# program, arguments; whether all is seen
while read -r seen program arguments; do
    for config in "$work" "$work/enabled"; do
        # shellcheck disable=SC2086
        XDG_CONFIG_HOME=$config "./$program" $arguments >out 2>err || fail "$program $arguments: status $?"
        grep -qx lived out || fail "$program $arguments did not end well: $(cat err)"
        notice=$(grep -c 'do not pass through' err || true)
        [ "$notice" = "$((1 - seen))" ] || fail "$program $arguments: $notice notices"
    done
done <<'TABLE'
0 by_library
0 behind_libc
0 opening libmiddle.so
0 opening ./libfoo.so
1 direct
TABLE

# A thread that has a run loop ends after the library was closed.
cat >close.c <<'C'
#include <dlfcn.h>
#include <pthread.h>
#include <stdio.h>
static const char* path;
static void* run(void* unused) {
    void* library = dlopen(path, RTLD_NOW);
    void* (*current)(void) = (void* (*)(void))dlsym(library, "_ZN6veltra7RunLoop7currentEv");
    if (current == NULL || current() == NULL || dlclose(library) != 0) puts("not run");
    return unused;
}
int main(int count, char** names) {
    pthread_t thread;
    path = names[count - 1];
    pthread_create(&thread, NULL, run, NULL);
    pthread_join(thread, NULL);
    puts("lived");
    return 0;
}
C
"$cc" close.c -pthread -o close
[ "$(./close "$library")" = lived ] || fail "a thread that ends after dlclose: status $?"

# Another allocator: before the library all of malloc is its own, behind it only operator new.
cat >other.cpp <<'C'
#include <cstddef>
#include <cstdlib>
extern "C" {
void* __libc_malloc(std::size_t);
void* __libc_calloc(std::size_t, std::size_t);
void* __libc_realloc(void*, std::size_t);
void __libc_free(void*);
void* malloc(std::size_t size) noexcept { return __libc_malloc(size); }
void* calloc(std::size_t count, std::size_t size) noexcept { return __libc_calloc(count, size); }
void* realloc(void* block, std::size_t size) noexcept { return __libc_realloc(block, size); }
void free(void* block) noexcept { __libc_free(block); }
}
void* operator new(std::size_t size) { return __libc_malloc(size); }
void operator delete(void* block) noexcept { __libc_free(block); }
C
"$cxx" -shared -fPIC -Wl,-Bsymbolic other.cpp -o libother.so
cat >origin.cpp <<'C'
#include "veltra/memory/memory_reserve.h"
#include "veltra/platform/allocation_zone.h"
#include <cstdio>
#include <cstdlib>
using namespace veltra;
int main() {
    void* (*volatile taken)(std::size_t) = std::malloc;  // a fixed program has its own jump there
    std::free(taken(1));
    QKMemoryReserveSetOption(kMemoryReserveBlockSize, 1);
    QKMemoryReserveSetOption(kMemoryReserveFinalBlockSize, 1);
    std::free(QKMemoryReserveEnter(nullptr, nullptr));
    QKMemoryReserveExit();
    std::puts(AllocationZone::mallocOrigin());
}
C
for kind in "-fPIE -pie" "-fno-pie -no-pie"; do
    # shellcheck disable=SC2086
    "$cxx" -std=c++20 $kind origin.cpp "${veltra[@]}" -o origin
    ./origin 2>err | grep -q 'libveltra' || fail "$kind: malloc is not the library's"
    LD_PRELOAD=$work/libother.so ./origin 2>err | grep -q 'libother' || fail "$kind: malloc is not the preloaded one"
    grep -q 'malloc is from .*libother.so' err || fail "$kind: not told: $(cat err)"
    # shellcheck disable=SC2086
    "$cxx" -std=c++20 $kind origin.cpp "${veltra[@]}" -Wl,--no-as-needed -L. -lother -o origin
    ./origin 2>err | grep -q 'libveltra' || fail "$kind: malloc before the other allocator is not the library's"
    grep -q "framework's zone: operator new (from .*libother.so)" err || fail "$kind: half told: $(cat err)"
done

# A dynamic linker that allocates while it looks names up, and knows of no calloc but the library's.
cat >looking.cpp <<'C'
#include "veltra/platform/allocation_zone.h"
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <initializer_list>
#include <malloc.h>
extern "C" {
void* __libc_malloc(std::size_t);
void* __libc_calloc(std::size_t, std::size_t);
void* __libc_memalign(std::size_t, std::size_t);
void* __libc_realloc(void*, std::size_t);
void __libc_free(void*);
}
static char *text, *zeros, *aligned, *grown;
static int wrong = -1;
static volatile std::size_t most = SIZE_MAX;
static std::size_t sizeOf(void* block) { return veltra::AllocationZone::process().size.load()(block); }
static void check(bool isRight, int number) { if (!isRight && wrong == 0) wrong = number; }
static char* filled(const char* with) {
    auto* block = static_cast<char*>(std::malloc(std::strlen(with) + 1));
    return block != nullptr ? std::strcpy(block, with) : block;
}
static void allocate() {
    wrong = 0;
    text = filled("text");
    zeros = static_cast<char*>(std::calloc(3, 100));
    aligned = static_cast<char*>(memalign(1024, 1));
    grown = static_cast<char*>(std::realloc(filled("grown"), 1000));
    std::free(filled("free"));
    std::free(&wrong);  // nobody's: left alone
    check(text != nullptr && aligned != nullptr && reinterpret_cast<std::uintptr_t>(aligned) % 1024 == 0, 1);
    check(zeros != nullptr && zeros[0] == 0 && zeros[299] == 0, 2);
    check(grown != nullptr && std::strcmp(grown, "grown") == 0 && sizeOf(grown) == 1000, 3);
    check(std::realloc(nullptr, 10) != nullptr && sizeOf(nullptr) == 0 && sizeOf(&wrong) == 0, 4);
    errno = 0;
    check(std::calloc(most / 2 + 2, 2) == nullptr && errno == ENOMEM, 5);
    check(std::malloc(9000) == nullptr && memalign(16384, 1) == nullptr, 6);
    int large = 0, small = 0;
    while (std::malloc(4096) != nullptr)
        ++large;
    while (std::malloc(100) != nullptr)
        ++small;
    check(large == 1 && small < 10, 7);
}
extern "C" void* dlsym(void* __restrict handle, const char* __restrict name) noexcept {
    if (wrong < 0) allocate();
    const auto is = [name](const char* other) { return std::strcmp(name, other) == 0; };
    if (is("malloc")) return reinterpret_cast<void*>(&__libc_malloc);
    if (is("calloc")) return handle == RTLD_NEXT ? nullptr : reinterpret_cast<void*>(&std::calloc);
    if (is("__libc_calloc")) return reinterpret_cast<void*>(&__libc_calloc);
    if (is("memalign")) return reinterpret_cast<void*>(&__libc_memalign);
    if (is("realloc")) return reinterpret_cast<void*>(&__libc_realloc);
    if (is("free")) return reinterpret_cast<void*>(&__libc_free);
    return is("malloc_usable_size") ? reinterpret_cast<void*>(&malloc_usable_size) : nullptr;
}
int main() {
    check(std::strcmp(text, "text") == 0 && sizeOf(text) == 5 && std::strcmp(grown, "grown") == 0, 8);
    text = static_cast<char*>(std::realloc(text, 100));
    check(std::strcmp(text, "text") == 0 && sizeOf(text) >= 100, 9);
    text = static_cast<char*>(std::realloc(text, 100'000));
    check(std::strcmp(text, "text") == 0 && sizeOf(text) >= 100'000, 10);
    auto* const more = static_cast<char*>(std::calloc(1000, 100));
    check(more != nullptr && more[99'999] == 0, 11);
    for (char* block : {text, zeros, aligned, grown, more})
        std::free(block);
    std::printf("wrong: %d\n", wrong);
}
C
"$cxx" -std=c++20 -fno-builtin looking.cpp "${veltra[@]}" -o looking
told=$(./looking) || fail "a linker that allocates: status $?"
[ "$told" = "wrong: 0" ] || fail "a linker that allocates: $told"
[ "$failures" = 0 ] || exit 1
echo "every layout runs and tells what it sees"
