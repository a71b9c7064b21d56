// SPDX-License-Identifier: MIT
#include "veltra/platform/symbol_names.h"

#include "veltra/base/testing/prelude.h"
#include "veltra/platform/testing/cancelled_thread.h"
#include "veltra/platform/testing/child_process.h"

#include <dlfcn.h>

// A name of C that would read as a type of C++.
extern "C" [[gnu::noinline]] void Pc() {
    asm volatile("");
}

namespace veltra {
namespace {

[[gnu::noinline]] void here() {
    asm volatile("");
}

std::uintptr_t addressOf(void (*function)()) {
    return reinterpret_cast<std::uintptr_t>(function);
}

std::string_view view(const std::array<char, 512>& text) {
    return text.data();
}

// First: nothing was prepared, which a child must not do by itself.
TEST(SymbolNames, ReadsNothingInAForkedChildThatWasNotPrepared) {
    EXPECT_TRUE(testing::holdsInChild([] {
        prepareSymbolNames();
        return symbolNameOf(addressOf(here)).line == 0;
    }));
}

#ifdef VELTRA_BACKTRACE
bool isNamed(const SymbolName& name, std::string_view function, std::string_view file) {
    return view(name.function) == function && view(name.file).ends_with(file) && name.line > 5 &&
           !view(name.object).empty();
}

TEST(SymbolNames, TellFunctionFileAndLineAlsoInAPreparedChildAndOnOtherThreads) {
    const auto isKnown = [] {
        return isNamed(symbolNameOf(addressOf(here)), "veltra::(anonymous namespace)::here()",
                       "symbol_names_test.cpp");
    };
    EXPECT_TRUE(isKnown());
    EXPECT_TRUE(testing::holdsInChild(isKnown));
    bool isKnownThere = false;
    std::thread([&] { isKnownThere = isKnown(); }).join();
    EXPECT_TRUE(isKnownThere);
    EXPECT_EQ(view(symbolNameOf(addressOf(Pc)).function), "Pc");
}

TEST(SymbolNames, AreReadByAThreadThatIsToBeCancelled) {
    EXPECT_TRUE(testing::isCancelledOnlyAfter([] {
        prepareSymbolNames();
        symbolNameOf(addressOf(here));
    }));
}

TEST(SymbolNames, KnowModulesThatAreLoadedLater) {
    SymbolName name = symbolNameOf(addressOf(here));
    for (int time = 0; time < 10; ++time) {  // the tables are read eight times at most
        void* const module = ::dlopen(VELTRA_NAMED_MODULE, RTLD_NOW);
        ASSERT_NE(module, nullptr) << ::dlerror();
        auto* const address =
            reinterpret_cast<std::uintptr_t (*)()>(::dlsym(module, "hiddenAddress"));
        name = symbolNameOf(address());
        EXPECT_TRUE(time > 0 ||
                    isNamed(name, "(anonymous namespace)::hidden()", "named_module.cpp"));
        EXPECT_TRUE(view(name.object).ends_with("named_module.so")) << name.object.data();
        EXPECT_GT(symbolNameOf(addressOf(here)).line, 5);
        ::dlclose(module);
    }
    EXPECT_EQ(name.line, 0);
}
#endif

TEST(SymbolNames, KnowWhatIsExportedAndNothingOfWhatIsNoCode) {
    const auto* exported = ::dlsym(RTLD_DEFAULT, "getenv");
    const SymbolName name = symbolNameOf(reinterpret_cast<std::uintptr_t>(exported));
    EXPECT_NE(view(name.function).find("getenv"), std::string_view::npos);
    EXPECT_NE(view(name.object).find("lib"), std::string_view::npos);
    for (const std::uintptr_t address : {std::uintptr_t{0}, std::uintptr_t{1}, UINTPTR_MAX}) {
        const SymbolName none = symbolNameOf(address);
        EXPECT_TRUE(view(none.function).empty() && view(none.file).empty() &&
                    view(none.object).empty() && none.line == 0);
    }
}

}  // namespace
}  // namespace veltra
