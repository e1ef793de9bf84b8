// The command line of tarn-headless.
#include "shell/headless_options.h"

#include <charconv>
#include <cstdio>
#include <getopt.h>
#include <limits>
#include <string_view>

namespace tarn {
namespace {

enum Option {
    steps = 256,
    frames,
    picture,
    snapshot,
    dumpVram,
    registers,
    exitStatus,
    trace,
    profile,
    coverage,
    gdb,
    completeCpu,
    saveState,
    loadState,
    history,
    lastWrite,
    quiet,
    help,
    version
};

constexpr option longOptions[] = {
    {"steps", required_argument, nullptr, steps},
    {"frames", required_argument, nullptr, frames},
    {"picture", required_argument, nullptr, picture},
    {"snapshot", required_argument, nullptr, snapshot},
    {"dump-vram", required_argument, nullptr, dumpVram},
    {"registers", no_argument, nullptr, registers},
    {"exit-status", no_argument, nullptr, exitStatus},
    {"trace", required_argument, nullptr, trace},
    {"profile", required_argument, nullptr, profile},
    {"coverage", required_argument, nullptr, coverage},
    {"gdb", required_argument, nullptr, gdb},
    {"complete-cpu", no_argument, nullptr, completeCpu},
    {"save-state", required_argument, nullptr, saveState},
    {"load-state", required_argument, nullptr, loadState},
    {"history", required_argument, nullptr, history},
    {"last-write", required_argument, nullptr, lastWrite},
    {"quiet", no_argument, nullptr, quiet},
    {"help", no_argument, nullptr, help},
    {"version", no_argument, nullptr, version},
    {},
};

/// A whole decimal number that the type holds; a complaint and nothing for any other text.
template <class Number>
std::optional<Number> parseNumber(const char* name, std::string_view text) {
    Number value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) {
        std::fprintf(stderr, "tarn-headless: --%s takes a whole number from 0 to %llu, not '%s'\n", name,
                     u64{std::numeric_limits<Number>::max()}, text.data());
        return std::nullopt;
    }
    return value;
}

/// ADDRESS[:BYTES]: a hexadecimal address, with or without 0x, and a decimal length.
std::optional<WatchedBytes> parseWatchedBytes(std::string_view text) {
    const std::string_view whole = text;
    WatchedBytes watched;
    text.remove_prefix(text.starts_with("0x") ? 2 : 0);
    const char* const last = text.data() + text.size();
    auto [end, error] = std::from_chars(text.data(), last, watched.address, 16);
    if (error == std::errc() && end != last && *end == ':') {
        const auto length = std::from_chars(end + 1, last, watched.bytes);
        end = length.ptr;
        error = length.ec;
    }
    if (error != std::errc() || end != last || watched.bytes == 0 || watched.bytes > 0x10000) {
        std::fprintf(stderr, "tarn-headless: --last-write takes an address and 1 to 65536 bytes, not '%s'\n",
                     whole.data());
        return std::nullopt;
    }
    return watched;
}

}  // namespace

const char* const headlessUsage =
    "Usage: tarn-headless [OPTION]...\n"
    "Runs the program that ./tarn.ini names, without a window, until a limit is reached, the CPU pauses,\n"
    "or SIGINT or SIGTERM comes. Everything asked for is written at the end, whatever ended the run.\n"
    "\n"
    "  --steps N           stop after N driver steps\n"
    "  --frames N          stop after N vertical blanks\n"
    "  --picture FILE.bmp  write the emulated display as a BMP file\n"
    "  --snapshot PREFIX   write the GS memory as PREFIXsnapNNN.bmp, the first free number\n"
    "  --dump-vram FILE    write the raw 4 MB of GS memory\n"
    "  --registers         print the integer and the floating-point registers\n"
    "  --exit-status       end with the result that the program gives to Exit, 0 to 255\n"
    "  --trace FILE        trace every instruction into FILE\n"
    "  --profile FILE      count every instruction, and write the profile in callgrind's format\n"
    "  --coverage FILE     write which lines and functions ran, in lcov's format\n"
    "  --gdb PORT          wait for a GDB on this port of the loopback interface (0: any free one) and run\n"
    "                      the machine as it says\n"
    "  --complete-cpu      run on the complete processor, whatever tarn.ini says\n"
    "  --save-state FILE   write the machine, to go on from with --load-state\n"
    "  --load-state FILE   start from a machine that was saved from the same program\n"
    "  --history N         when the CPU pauses, print the last N steps and what each changed\n"
    "  --last-write ADDRESS[:BYTES]\n"
    "                      at the end, report the last store to an address (hexadecimal)\n"
    "  --quiet             show no progress line on a terminal\n"
    "  --help              print this help and exit\n"
    "  --version           print the version and exit\n"
    "\n"
    "Exit status: 0 when a limit was reached or a signal came, 1 when start-up failed or an output was "
    "lost,\n"
    "2 for unusable arguments, 3 when the CPU paused.\n";

std::optional<HeadlessOptions> parseHeadlessOptions(int count, char** arguments) {
    HeadlessOptions options;
    bool usable = true;
    optind = 0;  // start afresh, however often this is called
    for (int code = 0; (code = getopt_long(count, arguments, "", longOptions, nullptr)) != -1;) {
        switch (code) {
        case steps:
            options.steps = parseNumber<u64>("steps", optarg);
            usable = usable && options.steps.has_value();
            break;
        case frames:
            options.frames = parseNumber<u64>("frames", optarg);
            usable = usable && options.frames.has_value();
            break;
        case picture:
            options.picture = optarg;
            break;
        case snapshot:
            options.snapshot = optarg;
            break;
        case dumpVram:
            options.vramDump = optarg;
            break;
        case registers:
            options.registers = true;
            break;
        case exitStatus:
            options.exitStatus = true;
            break;
        case trace:
            options.trace = optarg;
            break;
        case profile:
            options.profile = optarg;
            break;
        case coverage:
            options.coverage = optarg;
            break;
        case gdb:
            options.gdbPort = parseNumber<u16>("gdb", optarg);
            usable = usable && options.gdbPort.has_value();
            break;
        case completeCpu:
            options.completeCpu = true;
            break;
        case saveState:
            options.saveState = optarg;
            break;
        case loadState:
            options.loadState = optarg;
            break;
        case history:
            options.history = parseNumber<u32>("history", optarg);
            usable = usable && options.history.has_value();
            break;
        case lastWrite:
            options.lastWrite = parseWatchedBytes(optarg);
            usable = usable && options.lastWrite.has_value();
            break;
        case quiet:
            options.quiet = true;
            break;
        case help:
            options.help = true;
            break;
        case version:
            options.version = true;
            break;
        default:
            usable = false;
            break;
        }
    }
    if (optind < count) {
        std::fprintf(stderr, "tarn-headless: unexpected argument '%s'\n", arguments[optind]);
        usable = false;
    }
    if (options.gdbPort && (options.profile || options.coverage)) {
        std::fprintf(stderr, "tarn-headless: --profile and --coverage do not count what --gdb runs\n");
        usable = false;
    }
    if (!usable) {
        std::fprintf(stderr, "Try 'tarn-headless --help'.\n");
        return std::nullopt;
    }
    return options;
}

}  // namespace tarn
