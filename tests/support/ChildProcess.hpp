#pragma once

// Runs part of a test in a forked child process: for faults a test must not
// cause in its own process (a file size limit, a kill mid-write) and for
// permission checks that must bind also when the tests run as the
// superuser, who ignores permission bits. POSIX only: elsewhere the
// header declares nothing, and the tests that use it are left out.

#if !defined(_WIN32)

#include <csignal>
#include <cstdint>
#include <exception>
#include <functional>
#include <grp.h>
#include <optional>
#include <string>
#include <sys/resource.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

namespace testing_support {

struct ChildSetup {
    // Runs as user and group 65534 ("nobody") when started as the
    // superuser; unchanged otherwise.
    bool unprivileged = false;
    // Lowers the soft limit on the size of the files the child writes, with
    // SIGXFSZ ignored: a write past it fails with EFBIG instead of killing
    // the child.
    std::optional<std::uintmax_t> fileSizeLimit;
};

inline ChildSetup unprivileged() { return {true, std::nullopt}; }
inline ChildSetup fileSizeLimit(std::uintmax_t bytes) { return {false, bytes}; }

// Starts body in a child process, set up as asked, that ends with status 0
// when body returns, 1 when it throws and 2 when the setup fails; the
// caller waits for it (or kills it). The child never runs the caller's
// destructors or exit handlers.
inline pid_t startChild(const ChildSetup& setup, const std::function<void()>& body) {
    const pid_t pid = fork();
    if (pid != 0) return pid;
    if (setup.unprivileged && geteuid() == 0 &&
        (setgroups(0, nullptr) != 0 || setgid(65534) != 0 || setuid(65534) != 0))
        _exit(2);
    rlimit previous{};
    if (setup.fileSizeLimit) {
        std::signal(SIGXFSZ, SIG_IGN);
        if (getrlimit(RLIMIT_FSIZE, &previous) != 0) _exit(2);
        rlimit limited = previous;
        limited.rlim_cur = static_cast<rlim_t>(*setup.fileSizeLimit);
        if (setrlimit(RLIMIT_FSIZE, &limited) != 0) _exit(2);
    }
    int status = 0;
    try {
        body();
    } catch (...) {
        status = 1;
    }
    if (setup.fileSizeLimit) setrlimit(RLIMIT_FSIZE, &previous);
    _exit(status);
}

// How a child ended: "exit N" or "signal N"; "" when it could not be awaited.
inline std::string waitForChild(pid_t pid) {
    int status = 0;
    if (pid < 0 || waitpid(pid, &status, 0) != pid) return "";
    return WIFEXITED(status) ? "exit " + std::to_string(WEXITSTATUS(status))
                             : "signal " + std::to_string(WTERMSIG(status));
}

// Runs body in a child set up as asked and returns the text it returned
// ("child threw: " and what() when it threw); when the child dies instead,
// "child failed: " and how it ended.
inline std::string runInChild(const ChildSetup& setup, const std::function<std::string()>& body) {
    int channel[2];
    if (pipe(channel) != 0) return "child failed: no pipe";
    const pid_t pid = startChild(setup, [&] {
        close(channel[0]);
        std::string text;
        try {
            text = body();
        } catch (const std::exception& e) {
            text = std::string("child threw: ") + e.what();
        }
        for (std::size_t done = 0; done < text.size();) {
            const ssize_t n = write(channel[1], text.data() + done, text.size() - done);
            if (n <= 0) std::terminate();
            done += static_cast<std::size_t>(n);
        }
    });
    close(channel[1]);
    std::string text;
    char buffer[4096];
    for (ssize_t n; (n = read(channel[0], buffer, sizeof buffer)) > 0;)
        text.append(buffer, static_cast<std::size_t>(n));
    close(channel[0]);
    const std::string ended = waitForChild(pid);
    return ended == "exit 0" ? text : "child failed: " + ended;
}

} // namespace testing_support

#endif
