// The command line of tarn-headless.
#include "shell/headless_options.h"

#include "shell/configuration_check.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <getopt.h>
#include <iterator>
#include <limits>
#include <string_view>
#include <variant>

namespace tarn {
namespace {

using Options = HeadlessOptions;

template <typename Value>
using Optional = std::optional<Value> Options::*;

/// The member for the value of an option. Its type determines how the value is parsed.
using Target =
    std::variant<bool Options::*, Optional<std::string>, Optional<u16>, Optional<u32>, Optional<u64>,
                 Optional<Options::Place>, Optional<Options::Bytes>, Optional<recording::FrameRange>,
                 std::vector<ConfigurationSource::Assignment> Options::*>;

struct Option {
    const char* name;
    const char* value;  ///< name in --help; null if the option has no value
    Target target;
    const char* help;
    u64 least = 0;  ///< minimum of a number
};

// One row per option, in the order of --help.
constexpr Option optionTable[] = {
    {"steps", "N", &Options::steps, "stop after N driver steps"},
    {"frames", "N", &Options::frames, "stop after N vertical blanks"},
    {"until", "PLACE", &Options::until,
     "stop before the instruction at a symbol or address runs (PLACE:N: the Nth time)"},
    {"picture", "FILE", &Options::picture,
     "write the emulated display, as PNG if the name ends in .png, or as BMP"},
    {"picture-every", "N", &Options::pictureEvery,
     "also write it every N vertical blanks, with their number in the file's name", 1},
    {"snapshot", "PREFIX", &Options::snapshot,
     "write the GS memory as PREFIXsnapNNN.bmp, the first free number, or, if\n"
     "PREFIX ends in .png, as the PNG file of that name"},
    {"dump-vram", "FILE", &Options::vramDump, "write the raw 4 MB of GS memory"},
    {"registers", nullptr, &Options::registers, "print the integer and the floating-point registers"},
    {"trace", "FILE", &Options::trace, "trace every instruction, with all registers"},
    {"trace-changes", "FILE", &Options::traceChanges,
     "trace a line a step: the instruction, and what it changed"},
    {"trace-from", "STEP", &Options::traceFrom, "trace from this driver step on"},
    {"trace-steps", "N", &Options::traceSteps, "trace N driver steps"},
    {"profile", "FILE", &Options::profile,
     "count every instruction, and write the profile in callgrind's format"},
    {"coverage", "FILE", &Options::coverage, "write which lines and functions ran, in lcov's format"},
    {"record", "FILE", &Options::record, "record what reaches the GS, for tarn-gs"},
    {"record-frames", "RANGE", &Options::recordFrames,
     "only these frames, FIRST:LAST; frame N ends with the Nth vertical blank"},
    {"set", "SETTING", &Options::assignments,
     "set a key of the configuration: Section:Key=VALUE; -D for short"},
    {"exit-status", nullptr, &Options::exitStatus,
     "exit with the program's own result, 0 to 255, when it ends by Exit"},
    {"gdb", "PORT", &Options::gdbPort,
     "wait for a GDB on this port of the loopback interface (0: any free one) and run\n"
     "the machine as it says"},
    {"complete-cpu", nullptr, &Options::completeCpu, "run on the complete processor, whatever tarn.ini says"},
    {"save-state", "FILE", &Options::saveState, "write the machine, to go on from with --load-state"},
    {"load-state", "FILE", &Options::loadState, "start from a machine that was saved from the same program"},
    {"history", "N", &Options::history, "when the CPU pauses, print the last N steps and what each changed"},
    {"last-write", "BYTES", &Options::lastWrite,
     "at the end, report the last store to ADDRESS[:COUNT], where ADDRESS is a symbol,\n"
     "SYMBOL+0xN or a hexadecimal number, and COUNT is 4 by default"},
    {"history-size", "MB", &Options::historySize,
     "keep at most so much of the past for these two and --gdb (512 by default)"},
    {"quiet", nullptr, &Options::quiet, "show no progress line on a terminal"},
    {"help", nullptr, &Options::help, "print this help and exit"},
    {"version", nullptr, &Options::version, "print the version and exit"},
};

constexpr int firstCode = 256;  ///< getopt_long's number for the first row

/// Parses a command line, with a message for each error.
class Parser {
  public:
    explicit Parser(Options& result) : options(result) {}

    bool parse(int count, char** arguments) {
        std::array<option, std::size(optionTable) + 1> longOptions{};
        for (std::size_t i = 0; i < std::size(optionTable); ++i) {
            const Option& row = optionTable[i];
            longOptions[i] = {row.name, row.value != nullptr ? required_argument : no_argument, nullptr,
                              firstCode + static_cast<int>(i)};
        }
        optind = 0;  // reset getopt_long: this may be called more than once
        for (int code = 0; (code = getopt_long(count, arguments, "D:", longOptions.data(), nullptr)) != -1;) {
            if (code == '?') {
                usable = false;
            } else if (code == 'D') {
                take("set", options.assignments);
            } else {
                take(static_cast<std::size_t>(code - firstCode));
            }
        }
        for (; optind < count; ++optind) {
            if (options.program) {
                complain("unexpected argument '%s'", arguments[optind]);
            } else {
                options.program = arguments[optind];
            }
        }
        checkTogether();
        return usable;
    }

  private:
    template <typename... Values>
    void complain(const char* format, Values... values) {
        std::fputs("tarn-headless: ", stderr);
        std::fprintf(stderr, format, values...);
        std::fputc('\n', stderr);
        usable = false;
    }

    void complain(const char* text) { complain("%s", text); }

    void take(std::size_t index) {
        const Option& row = optionTable[index];
        const u64 bit = u64{1} << index;
        if ((seen & bit) != 0 && std::string_view(row.name) != "set") {
            complain("--%s is given twice", row.name);
        }
        seen |= bit;
        least = row.least;
        std::visit([&](auto member) { take(row.name, options.*member); }, row.target);
    }

    void take(const char*, bool& flag) { flag = true; }

    void take(const char*, std::optional<std::string>& text) { text = optarg; }

    template <typename Number>
    void take(const char* name, std::optional<Number>& value) {
        value = number<Number>(name, optarg);
    }

    void take(const char* name, std::optional<Options::Place>& place) {
        const std::string_view text = optarg;
        const std::size_t colon = text.rfind(':');
        place = {std::string(text.substr(0, colon))};
        if (colon != std::string_view::npos) {
            least = 1;
            place->count = number<u64>(name, text.substr(colon + 1));
        }
    }

    /// ADDRESS[:COUNT]. The address is resolved later, with the program's symbols.
    void take(const char* name, std::optional<Options::Bytes>& bytes) {
        constexpr u32 most = 0x10000;
        const std::string_view text = optarg;
        const std::size_t colon = std::min(text.find(':'), text.size());
        bytes = Options::Bytes{std::string(text.substr(0, colon))};
        const char* const last = text.data() + text.size();
        std::from_chars_result count{last, std::errc()};
        if (colon < text.size()) {
            count = std::from_chars(text.data() + colon + 1, last, bytes->count);
        }
        if (count.ec != std::errc() || count.ptr != last || bytes->count == 0 || bytes->count > most) {
            complain("--%s takes an address and 1 to %u bytes, not '%s'", name, most, optarg);
        }
    }

    /// FIRST:LAST, or a single frame.
    void take(const char* name, std::optional<recording::FrameRange>& frames) {
        const std::string_view text = optarg;
        const std::size_t colon = std::min(text.find(':'), text.size());
        least = 1;
        frames.emplace().first = number<u64>(name, text.substr(0, colon));
        frames->last = colon < text.size() ? number<u64>(name, text.substr(colon + 1)) : frames->first;
        if (frames->last < frames->first) {
            complain("--%s takes FIRST:LAST, not '%s'", name, optarg);
        }
    }

    void take(const char* name, std::vector<ConfigurationSource::Assignment>& assignments) {
        const std::string_view text = optarg;
        const std::size_t equals = std::min(text.find('='), text.size());
        const std::string key(text.substr(0, equals));
        if (equals == text.size() || key.find(':') == std::string::npos) {
            complain("--%s takes Section:Key=VALUE, not '%s'", name, optarg);
        } else if (const std::string complaint = complaintAboutKey(key); !complaint.empty()) {
            complain("%s", complaint.c_str());
        }
        assignments.push_back({key, std::string(text.substr(std::min(equals + 1, text.size())))});
    }

    /// A whole decimal number from `least` to the largest that the type holds.
    template <typename Number>
    Number number(const char* name, std::string_view text) {
        Number value = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
        if (error != std::errc() || end != text.data() + text.size() || value < least) {
            complain("--%s takes a whole number from %llu to %llu, not '%s'", name, least,
                     u64{std::numeric_limits<Number>::max()}, std::string(text).c_str());
        }
        return value;
    }

    void checkTogether() {
        const std::initializer_list<const std::optional<std::string>*> files = {
            &options.picture,  &options.vramDump,  &options.tracePath(), &options.profile,
            &options.coverage, &options.saveState, &options.record};
        if (std::ranges::count_if(files, [](const auto* file) { return *file == "-"; }) > 1) {
            complain("only one output can go to standard output");
        }
        if (options.pictureEvery && (!options.picture || options.picture == "-")) {
            complain("--picture-every takes the names of its files from --picture FILE");
        }
        if (options.recordFrames && !options.record) {
            complain("--record-frames needs --record FILE");
        }
        if (options.trace && options.traceChanges) {
            complain("--trace and --trace-changes do not go together");
        }
        const bool limitsTrace = options.traceFrom || options.traceSteps;
        if (limitsTrace && !options.tracePath()) {
            complain("--trace-from and --trace-steps need --trace or --trace-changes");
        }
        if (options.gdbPort && (options.until || options.pictureEvery || options.profile ||
                                options.coverage || options.record || limitsTrace)) {
            complain("--until, --picture-every, --profile, --coverage, --record, --trace-from and "
                     "--trace-steps do not work with --gdb");
        }
    }

    Options& options;
    u64 least = 0;  ///< the smallest value of the number being read
    u64 seen = 0;   ///< a bit for each row
    bool usable = true;
};

}  // namespace

void printHeadlessUsage() {
    std::printf(
        "Usage: tarn-headless [OPTION]... [PROGRAM.elf]\n"
        "Runs the program, or the one that ./tarn.ini names, without a window, until a limit is reached, "
        "the\n"
        "CPU pauses, or SIGINT or SIGTERM comes. Everything asked for is written at the end, whatever ended\n"
        "the run. With a PROGRAM, ./tarn.ini is not read, and a BIOS image is not needed.\n\n");
    constexpr std::size_t column = 22;
    for (const Option& row : optionTable) {
        std::string line = std::string("  --") + row.name + (row.value != nullptr ? " " : "") +
                           (row.value != nullptr ? row.value : "");
        line +=
            line.size() < column ? std::string(column - line.size(), ' ') : "\n" + std::string(column, ' ');
        for (const char* letter = row.help; *letter != '\0'; ++letter) {
            line += *letter == '\n' ? "\n" + std::string(column, ' ') : std::string(1, *letter);
        }
        std::printf("%s\n", line.c_str());
    }
    std::printf(
        "\n"
        "A FILE of - is standard output; the diagnostics then go to standard error. A trace is compressed\n"
        "if its FILE ends in .gz or .zst.\n"
        "Exit status: 0 when a limit was reached or a signal came, 1 when start-up failed or an output was "
        "lost,\n"
        "2 for unusable arguments, 3 when the CPU paused.\n");
}

std::optional<HeadlessOptions> parseHeadlessOptions(int count, char** arguments) {
    HeadlessOptions options;
    if (!Parser(options).parse(count, arguments)) {
        std::fprintf(stderr, "Try 'tarn-headless --help'.\n");
        return std::nullopt;
    }
    return options;
}

}  // namespace tarn
