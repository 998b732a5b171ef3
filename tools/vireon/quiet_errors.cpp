#include "tools/vireon/quiet_errors.h"

#include <cstdio>

#include <fcntl.h>
#include <unistd.h>

namespace vireon::tool {

QuietErrors::QuietErrors() {
    std::fflush(stderr);
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (nowhere < 0) {
        return;
    }
    saved_ = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    if (saved_ >= 0) {
        dup2(nowhere, STDERR_FILENO);
    }
    close(nowhere);
}

QuietErrors::~QuietErrors() {
    if (saved_ >= 0) {
        std::fflush(stderr);
        dup2(saved_, STDERR_FILENO);
        close(saved_);
    }
}

}  // namespace vireon::tool
