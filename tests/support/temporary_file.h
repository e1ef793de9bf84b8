// Owns files that exist for the length of a test.
#pragma once

#include <cstdlib>
#include <string>
#include <unistd.h>

namespace tarn::test {

/// A file with the given contents in the temporary directory, removed at the end.
class TemporaryFile {
  public:
    explicit TemporaryFile(const std::string& contents) {
        const int descriptor = mkstemp(name.data());
        for (std::size_t done = 0; done < contents.size();) {
            const ssize_t written = write(descriptor, contents.data() + done, contents.size() - done);
            if (written <= 0) {
                std::abort();
            }
            done += static_cast<std::size_t>(written);
        }
        close(descriptor);
    }
    ~TemporaryFile() { unlink(name.c_str()); }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const char* path() const { return name.c_str(); }

  private:
    std::string name = "/tmp/tarn-test-XXXXXX";
};

}  // namespace tarn::test
