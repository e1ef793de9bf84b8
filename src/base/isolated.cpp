// Running code on untrusted input in a separate process.
#include "base/isolated.h"

#include "base/file.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <new>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tarn {
namespace {

constexpr rlim_t seconds = 10;
constexpr rlim_t moreMemory = rlim_t{1} << 30;  // bytes, beyond what the process has already mapped

#if defined(__SANITIZE_ADDRESS__)
constexpr bool memoryIsBounded = false;  // the sanitizer maps terabytes
#else
constexpr bool memoryIsBounded = true;
#endif

rlim_t mappedMemory() {
    const FilePtr file(std::fopen("/proc/self/statm", "re"));
    unsigned long pages = 0;
    if (file != nullptr && std::fscanf(file.get(), "%lu", &pages) != 1) {
        pages = 0;
    }
    return rlim_t{pages} * static_cast<rlim_t>(sysconf(_SC_PAGESIZE));
}

void bound(int resource, rlim_t most) {
    const rlimit limit{most, most};
    setrlimit(static_cast<__rlimit_resource>(resource), &limit);
}

[[noreturn]] void runChild(const std::function<std::vector<u8>()>& work, int output) {
    bound(RLIMIT_CORE, 0);
    bound(RLIMIT_CPU, seconds);
    if (memoryIsBounded) {
        bound(RLIMIT_AS, mappedMemory() + moreMemory);
    }
    std::set_new_handler([] { _exit(EXIT_FAILURE); });
    const std::vector<u8> bytes = work();
    for (std::size_t done = 0; done < bytes.size();) {
        const ssize_t count = write(output, bytes.data() + done, bytes.size() - done);
        if (count < 0 && errno != EINTR) {
            _exit(EXIT_FAILURE);
        }
        done += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    _exit(EXIT_SUCCESS);
}

std::vector<u8> readAll(int input) {
    std::vector<u8> bytes;
    std::array<u8, 1 << 16> block;
    for (;;) {
        const ssize_t count = read(input, block.data(), block.size());
        if (count > 0) {
            bytes.insert(bytes.end(), block.data(), block.data() + count);
        } else if (count == 0 || errno != EINTR) {
            return bytes;
        }
    }
}

}  // namespace

std::optional<std::vector<u8>> runIsolated(const std::function<std::vector<u8>()>& work) {
    int ends[2];
    if (pipe(ends) != 0) {
        return std::nullopt;
    }
    const pid_t child = fork();
    if (child == 0) {
        close(ends[0]);
        runChild(work, ends[1]);
    }
    close(ends[1]);
    std::optional<std::vector<u8>> bytes;
    if (child > 0) {
        bytes = readAll(ends[0]);
        int status = 0;
        while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
        }
        if (!WIFEXITED(status) || WEXITSTATUS(status) != EXIT_SUCCESS) {
            bytes.reset();
        }
    }
    close(ends[0]);
    return bytes;
}

}  // namespace tarn
