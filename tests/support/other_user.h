#pragma once

#include <csignal>
#include <grp.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

/// Does `work` as an ordinary user in a process of its own, and returns what it returns; -1 if it does not return, 32 s
/// being more than enough. Only root can act as somebody else.
template <typename Work>
int as_user(uid_t user, Work work) {
    pid_t const child = fork();
    if (child == 0) {
        alarm(32);
        bool const other = user != geteuid();
        if (other
            && (setgroups(0, nullptr) != 0 || setresgid(user, user, user) != 0 || setresuid(user, user, user) != 0))
            _exit(255);
        _exit(work());
    }
    int status = 0;
    return waitpid(child, &status, 0) == child && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}
