// Opening and closing the files of the program and the BIOS.
#include "loader/input_files.h"

#include "base/diagnostics.h"

#include <cerrno>
#include <cstring>

namespace tarn {
namespace {

/// The length of a file in bytes. Leaves its position at the start.
long lengthOf(std::FILE* file) {
    std::fseek(file, 0, SEEK_END);
    const long length = std::ftell(file);
    std::rewind(file);
    return length;
}

double kilobytes(long length) { return static_cast<double>(length) / 1024; }

}  // namespace

u8 ElfOpenFile(const char* path) {
    Loader.ElfFile = openInputFile(path);
    if (Loader.ElfFile == nullptr) {
        PrintfToEmuOutput("File:Error opening :%s: %s", path, std::strerror(errno));
        return 0;
    }
    const long length = lengthOf(Loader.ElfFile.get());
    Loader.ElfFileSize = static_cast<s32>(length);
    PrintfToEmuOutput("File:Opening Elf : %s ( size : %5.3f Ko)", path, kilobytes(length));
    return 1;
}

u8 BiosOpenFile(const char* path) {
    Loader.BiosFile = openInputFile(path);
    if (Loader.BiosFile == nullptr) {
        PrintfToEmuOutput("File:Error opening %s", path);
        return 0;
    }
    PrintfToEmuOutput("File:Opening BIOS : %s ( size : %5.3f Ko)", path,
                      kilobytes(lengthOf(Loader.BiosFile.get())));
    return 1;
}

void ElfCloseFile() {
    if (Loader.ElfFile != nullptr) {
        PrintToEmuOutput("File:Close Elf File");
        Loader.ElfFile.reset();
    }
}

void BiosCloseFile() {
    if (Loader.BiosFile != nullptr) {
        PrintToEmuOutput("File:Close Bios File");
        Loader.BiosFile.reset();
    }
}

}  // namespace tarn
