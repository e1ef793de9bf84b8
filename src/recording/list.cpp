// The list of a recording's commands.
#include "recording/list.h"

#include "recording/description.h"
#include "recording/player.h"

namespace tarn::recording {
namespace {

class Lister : public Visitor {
  public:
    Lister(const ListOptions& given, std::FILE* stream) : options(given), output(stream) {}

    bool after(const Command& command) override {
        if (options.frame && command.frame > *options.frame) {
            return false;
        }
        if (isListed(command)) {
            print(command);
        }
        return std::ferror(output) == 0;
    }

  private:
    bool isListed(const Command& command) const {
        if (options.frame && command.frame != *options.frame) {
            return false;
        }
        return options.kinds.empty()
                   ? command.kind != CommandKind::Register && command.kind != CommandKind::Field
                   : options.kinds.contains(command.kind);
    }

    void print(const Command& command) {
        if (options.json) {
            std::fprintf(output, "%s%s", first ? "[\n" : ",\n",
                         describeAsJson(command, options.full).c_str());
        } else {
            std::fprintf(output, "%s\n%s", listLine(command).c_str(),
                         options.full ? fullState(command).c_str() : "");
        }
        first = false;
    }

    const ListOptions& options;
    std::FILE* output;
    bool first = true;
};

}  // namespace

std::string printList(Reader& recording, const ListOptions& options, std::FILE* output) {
    Player player(recording);
    if (!player.error().empty()) {
        return player.error();
    }
    if (!options.json) {
        std::fprintf(output, "%7s  %9s  %-8s  %s\n", "command", "step", "pc", "what  [where in the program]");
    }
    Lister lister(options, output);
    player.play(lister);
    if (options.json) {
        std::fprintf(output, "%s]\n", player.commandCount() == 0 ? "[" : "\n");
    }
    return {};
}

}  // namespace tarn::recording
