// The command line of tarn-gs.
#include "shell/gs_options.h"

#include "recording/command.h"
#include "shell/session.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <getopt.h>
#include <string_view>

namespace tarn {
namespace {

using recording::CommandKind;

enum Option { frame = 256, kind, full, json, at, buffer, help, version };

constexpr option longOptions[] = {
    {"frame", required_argument, nullptr, frame},
    {"kind", required_argument, nullptr, kind},
    {"at", required_argument, nullptr, at},
    {"buffer", required_argument, nullptr, buffer},
    {"full", no_argument, nullptr, full},
    {"json", no_argument, nullptr, json},
    {"help", no_argument, nullptr, help},
    {"version", no_argument, nullptr, version},
    {},
};

constexpr const char* usage =
    "Usage: tarn-gs COMMAND [OPTION]... FILE...\n"
    "Looks into what reached the Graphics Synthesizer, as tarn-headless --record FILE has recorded it.\n"
    "\n"
    "  info FILE           what the recording has in it, and what of it has no effect here\n"
    "  list FILE           the commands, one a line\n"
    "  picture FILE OUT.png\n"
    "                      the frame buffer, depth buffer or texture after a command\n"
    "  pixel FILE X Y      every command that wrote a pixel, or would have but for a reason\n"
    "  diff FILE FILE      the first command after which two recordings differ\n"
    "  report FILE OUT.html\n"
    "                      a page on which a frame can be looked at, command by command\n"
    "  replay FILE         whether replaying gives what the recording ended with\n"
    "\n"
    "  --help              print this help, or that of the command, and exit\n"
    "  --version           print the version and exit\n"
    "\n"
    "Exit status: 0 when all went well, 1 when something differs, 2 for unusable arguments, 3 when a file\n"
    "cannot be read to its end, or not be written.\n";

/// A command, with the names of its arguments and its options.
struct CommandRow {
    const char* name;
    GsCommand command;
    std::size_t arguments;
    std::initializer_list<int> options;
    const char* help;
};

constexpr const char* infoHelp =
    "Usage: tarn-gs info FILE\n"
    "Prints which frames were recorded, counts of transfers, primitives, pixels and register writes, the\n"
    "textures and palettes, and a warning for each thing that the program asks for and that has no effect\n"
    "here, with the first command that does so.\n";

constexpr const char* listHelp =
    "Usage: tarn-gs list [OPTION]... FILE\n"
    "Prints a line for each command: its number, driver step and program counter, what it is, vertices and\n"
    "state, and where in the program it was started.\n"
    "\n"
    "  --frame N           only frame N, which ends with the Nth vertical blank\n"
    "  --kind KINDS        only these, with commas between them: point, line, triangle, sprite, reserved,\n"
    "                      upload, move, register, display, field, blank, or all; without this option,\n"
    "                      all but register and field\n"
    "  --full              also every field of the registers that matter to the command\n"
    "  --json              as a JSON array\n";

constexpr const char* pictureHelp =
    "Usage: tarn-gs picture [OPTION]... FILE OUT.png\n"
    "Writes the frame buffer that the last command, or the one of --at, draws to, as a PNG file.\n"
    "\n"
    "  --at N              after command N\n"
    "  --buffer BUFFER     frame, depth (from the smallest depth, black, to the largest), or texture\n";

constexpr const char* pixelHelp =
    "Usage: tarn-gs pixel [OPTION]... FILE X Y\n"
    "Prints every command that could reach a pixel of the frame buffer, the newest last: what became of the\n"
    "pixel (written, depth test, alpha test, scissor, clipped away, not reached), and its values before and\n"
    "after. The frame buffer is the one that picture shows with the same --at.\n"
    "\n"
    "  --at N              up to command N\n";

constexpr const char* diffHelp =
    "Usage: tarn-gs diff FILE FILE\n"
    "Prints the first command that differs, and the first one after which pixels differ, with these. Exit\n"
    "status: 0 when there is no difference, 1 when there is one.\n";

constexpr const char* replayHelp =
    "Usage: tarn-gs replay FILE\n"
    "Replays the recording. Exit status: 0 when that gives the local memory and the registers that it ended\n"
    "with, 1 when not, 3 when it has no end or is damaged.\n";

constexpr const char* reportHelp =
    "Usage: tarn-gs report [OPTION]... FILE OUT.html\n"
    "Writes a page for a browser about one frame: the picture after each command, the list of commands, the\n"
    "history of every pixel, and how often each is drawn over. It needs no network.\n"
    "\n"
    "  --frame N           frame N, which ends with the Nth vertical blank; without this option, the last "
    "one\n"
    "                      that draws\n";

constexpr CommandRow commands[] = {
    {"info", GsCommand::Info, 1, {}, infoHelp},
    {"list", GsCommand::List, 1, {frame, kind, full, json}, listHelp},
    {"picture", GsCommand::Picture, 2, {at, buffer}, pictureHelp},
    {"pixel", GsCommand::Pixel, 3, {at}, pixelHelp},
    {"diff", GsCommand::Diff, 2, {}, diffHelp},
    {"report", GsCommand::Report, 2, {frame}, reportHelp},
    {"replay", GsCommand::Replay, 1, {}, replayHelp},
};

class Parser {
  public:
    Parser(int argumentCount, char** argumentList) : count(argumentCount), arguments(argumentList) {}

    std::optional<GsOptions> parse(int& status) {
        status = 2;
        optind = 0;
        for (int code = 0; (code = getopt_long(count, arguments, "", longOptions, nullptr)) != -1;) {
            take(code);
        }
        const std::string_view name = optind < count ? arguments[optind++] : "";
        const auto* const row = std::ranges::find(commands, name, &CommandRow::name);
        const bool isCommand = row != std::end(commands);
        if (seen(version) || (seen(help) && (name.empty() || isCommand))) {
            status = 0;
            if (seen(version)) {
                std::printf("tarn-gs %d.%d\n", versionMajor, versionMinor);
            } else {
                std::fputs(isCommand ? row->help : usage, stdout);
            }
            return std::nullopt;
        }
        if (!isCommand) {
            complain(name.empty() ? "a command is missing"
                                  : "there is no command '" + std::string(name) + "'");
        } else {
            options.command = row->command;
            checkAgainst(*row);
        }
        if (!usable) {
            std::fprintf(stderr, "Try 'tarn-gs %s%s--help'.\n", isCommand ? row->name : "",
                         isCommand ? " " : "");
            return std::nullopt;
        }
        status = 0;
        return options;
    }

  private:
    void complain(const std::string& text) {
        std::fprintf(stderr, "tarn-gs: %s\n", text.c_str());
        usable = false;
    }

    bool seen(int code) const { return std::ranges::find(given, code) != given.end(); }

    template <typename Number>
    Number number(const std::string& name, std::string_view text, Number least) {
        Number value = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
        if (error != std::errc() || end != text.data() + text.size() || value < least) {
            complain(name + " is a whole number from " + std::to_string(least) + ", not '" +
                     std::string(text) + "'");
        }
        return value;
    }

    void takeKinds(std::string_view text) {
        while (!text.empty()) {
            const std::string_view name = text.substr(0, text.find(','));
            text.remove_prefix(std::min(name.size() + 1, text.size()));
            const auto& names = recording::commandKindNames;
            const auto found = std::ranges::find(names, name);
            if (found != names.end()) {
                options.list.kinds.insert(static_cast<CommandKind>(found - names.begin()));
            } else if (name == "all") {
                for (std::size_t i = 0; i < names.size(); ++i) {
                    options.list.kinds.insert(static_cast<CommandKind>(i));
                }
            } else {
                complain("there is no kind of command '" + std::string(name) + "'");
            }
        }
    }

    void takeBuffer(std::string_view name) {
        constexpr std::array<std::string_view, 3> names = {"frame", "depth", "texture"};
        const auto* const found = std::ranges::find(names, name);
        if (found == names.end()) {
            complain("there is no buffer '" + std::string(name) + "', only frame, depth and texture");
        }
        options.buffer = static_cast<recording::BufferKind>(found - names.begin());
    }

    void take(int code) {
        given.push_back(code);
        switch (code) {
        case frame:
            options.list.frame = number<u64>("the N of --frame", optarg, 1);
            break;
        case kind:
            takeKinds(optarg);
            break;
        case at:
            options.at = number<u64>("the N of --at", optarg, 1);
            break;
        case buffer:
            takeBuffer(optarg);
            break;
        case full:
            options.list.full = true;
            break;
        case json:
            options.list.json = true;
            break;
        case help:
        case version:
            break;
        default:
            usable = false;
            break;
        }
    }

    void checkAgainst(const CommandRow& row) {
        for (const int code : given) {
            if (code != '?' && std::ranges::find(row.options, code) == row.options.end()) {
                complain(std::string("'") + row.name + "' takes no option --" +
                         std::ranges::find(longOptions, code, &option::val)->name);
            }
        }
        options.arguments.assign(arguments + optind, arguments + count);
        if (options.arguments.size() != row.arguments) {
            complain(std::string("'") + row.name + "' takes " + std::to_string(row.arguments) +
                     (row.arguments == 1 ? " argument, not " : " arguments, not ") +
                     std::to_string(options.arguments.size()));
        } else if (row.command == GsCommand::Pixel) {
            options.pixel = {number<u32>("X", options.arguments[1], 0),
                             number<u32>("Y", options.arguments[2], 0), options.at};
        }
    }

    int count;
    char** arguments;
    GsOptions options;
    std::vector<int> given;
    bool usable = true;
};

}  // namespace

std::optional<GsOptions> parseGsOptions(int count, char** arguments, int& status) {
    return Parser(count, arguments).parse(status);
}

}  // namespace tarn
