// Opening input files.
#include "base/file.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tarn {

FilePtr openInputFile(const char* path) {
    const int descriptor = open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0) {
        return nullptr;
    }
    struct stat status {};
    int error = 0;
    if (fstat(descriptor, &status) != 0 || lseek(descriptor, 0, SEEK_SET) < 0) {
        error = errno;
    } else if (S_ISDIR(status.st_mode)) {
        error = EISDIR;
    }
    std::FILE* file = error == 0 ? fdopen(descriptor, "rb") : nullptr;
    if (file == nullptr) {
        error = error != 0 ? error : errno;
        close(descriptor);
        errno = error;
    }
    return FilePtr(file);
}

}  // namespace tarn
