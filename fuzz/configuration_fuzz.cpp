// tarn.ini bytes through both readers of the configuration. The first byte of an input chooses: the file as
// it is, or lines put together from known keys and the input's text.
#include "base/configuration_source.h"
#include "gs/display.h"
#include "shell/configuration_check.h"
#include "support.h"

namespace tarn {
namespace {

// clang-format off
constexpr const char* pieces[] = {
    "[General]\n", "[Video]\n", "Elf=", "Debug_op = ", "Debug_dma=", "Debug_syscall =", "Debug_GS=",
    "Width=", "Height=", "Bpp = ", "Stretch=", "Steps_per_poll=", "Complete_cpu=", "Frame_rate=", "Blend=",
    "[General:Debug_op]\n", "[Video:Width]\n", "; comment\n", "# comment\n", "\\\n", "\"", "'", "=", "[",
    "]", "\n", "0x7FFFFFFF\n", "-1\n", "4294967296\n", "99999999999999999999\n", "012\n", "[]\n", "=\n",
    "[General", "\r\n", "\t"};
// clang-format on

std::string buildFile(fuzz::Input& input) {
    std::string text;
    while (!input.empty() && text.size() < 0x1000) {
        const u8 choice = input.take<u8>();
        if (choice < std::size(pieces)) {
            text += pieces[choice];
        } else if (choice < 0x80) {
            text += static_cast<char>(input.take<u8>());
        } else {
            text.append(std::size_t{input.take<u8>()} * 8, static_cast<char>(choice - 0x80));
        }
    }
    return text;
}

/// The path of the file is fixed, so the process works in a folder of its own, where it is this one.
struct Workplace {
    explicit Workplace(const fuzz::MemoryFile& file) {
        fuzz::require(mkdtemp(folder) != nullptr && chdir(folder) == 0 &&
                          symlink(file.path(), configurationPath) == 0,
                      "the configuration can be put in place");
    }
    ~Workplace() {
        unlink(configurationPath);
        rmdir(folder);
    }
    char folder[sizeof "/tmp/tarn-fuzz-XXXXXX"] = "/tmp/tarn-fuzz-XXXXXX";
};

}  // namespace
}  // namespace tarn

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    using namespace tarn;
    static const fuzz::MemoryFile file;
    static const Workplace workplace(file);
    fuzz::Input input({data, size});
    if (input.take<u8>() < 64) {
        file.assign(input.remaining());
    } else {
        const std::string text = buildFile(input);
        file.assign({reinterpret_cast<const u8*>(text.data()), text.size()});
    }
    Settings = {};
    GsHost.conf = {};
    const bool loaded = TarnLoadConfig() == 1;
    fuzz::require(std::memchr(Settings.ElfToExecute, 0, sizeof Settings.ElfToExecute) != nullptr,
                  "the path has an end");
    const std::string first = Settings.ElfToExecute;
    LoadConfig();
    fuzz::require(first == Settings.ElfToExecute, "both readers agree");
    fuzz::require(!loaded || static_cast<u16>(GsHost.conf.width) == Settings.koGUI_MainScreenW,
                  "both readers see one width");
    return 0;
}
