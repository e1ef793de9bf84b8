// A working directory of its own for a test.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>

namespace tarn::test {

/// A fresh directory, the working directory as long as the object lives; removed with all in it at the end.
class RunDirectory {
  public:
    RunDirectory() : former(std::filesystem::current_path()) {
        std::string name = "/tmp/tarn-test-XXXXXX";
        if (mkdtemp(name.data()) == nullptr) {
            std::abort();
        }
        directory = name;
        std::filesystem::current_path(directory);
    }
    ~RunDirectory() {
        std::filesystem::current_path(former);
        std::filesystem::remove_all(directory);
    }
    RunDirectory(const RunDirectory&) = delete;
    RunDirectory& operator=(const RunDirectory&) = delete;

    /// Writes a file, its directories too.
    void write(const std::string& path, const std::string& contents) const {
        if (const auto parent = std::filesystem::path(path).parent_path(); !parent.empty()) {
            std::filesystem::create_directories(parent);
        }
        std::ofstream(path, std::ios::binary) << contents;
    }
    static std::string read(const std::string& path) {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

  private:
    std::filesystem::path former;
    std::filesystem::path directory;
};

}  // namespace tarn::test
