// SPDX-License-Identifier: MIT
// Runs a part of a test in a forked child: what must not end, stop or change the test program.
#pragma once

#include <cstddef>
#include <cstdio>
#include <string>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#ifdef __SANITIZE_ADDRESS__
// As in the sanitizer's header, which comes with some compilers only.
extern "C" int __sanitizer_install_malloc_and_free_hooks(  // NOLINT(bugprone-reserved-identifier)
    void (*onTake)(const volatile void*, std::size_t), void (*onGive)(const volatile void*));
#endif

namespace veltra::testing {

// A child that runs `body`, which an alarm ends when it hangs. Where `body` needs memory, the child
// is forked before the test starts threads, or has a heap whose lock survives the fork.
class Child {
public:
    template <typename Body>
    explicit Child(Body body) {
        const bool isAlone = !hasThreads();
        m_id = ::fork();
        if (m_id != 0) return;
        ::alarm(60);
        if (!isAlone) forbidSanitizersHeap();
        ::_exit(body() ? 0 : 1);
    }

    // Waits for its end. Whether `body` returned true there.
    bool holds() const noexcept {
        int status = -1;
        ::waitpid(m_id, &status, 0);
        return status == 0;
    }

private:
#ifdef __SANITIZE_ADDRESS__
    // The address sanitizer does not hold its heap's locks across a fork: a child that takes memory
    // from it hangs now and then if other threads did so at that moment. Here it fails every time.
    static void forbidSanitizersHeap() noexcept {
        static const auto fail = [] {
            constexpr char kText[] = "forked beside threads, and uses the sanitizer's heap\n";
            ::_exit(::write(STDERR_FILENO, kText, sizeof kText - 1) > 0 ? 2 : 3);
        };
        __sanitizer_install_malloc_and_free_hooks([](const volatile void*, std::size_t) { fail(); },
                                                  [](const volatile void*) { fail(); });
    }
    // One that was joined may still be about to go.
    static bool hasThreads() noexcept {
        struct stat tasks {};  // two links, and one for each thread
        for (int patience = 50; patience > 0; --patience) {
            if (::stat("/proc/self/task", &tasks) != 0 || tasks.st_nlink <= 3) return false;
            ::usleep(1000);
        }
        return true;
    }
#else
    static void forbidSanitizersHeap() noexcept {}
    static bool hasThreads() noexcept {
        return false;
    }
#endif

    pid_t m_id = -1;
};

template <typename Body>
bool holdsInChild(Body body) {
    return Child(body).holds();
}

// What a command of the shell writes, when it ends as it should.
inline std::string outputOf(const std::string& command) {
    std::FILE* const output = ::popen(command.c_str(), "r");
    std::string text;
    for (int read = 0; (read = std::getc(output)) != EOF;)
        text += static_cast<char>(read);
    return ::pclose(output) == 0 ? text : "failed";
}

}  // namespace veltra::testing
