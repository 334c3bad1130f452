#include "handheld/Commands.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Paths.h"
#include "handheld/CommandTable.h"
#include "handheld/Refusal.h"

#include <algorithm>
#include <array>
#include <exception>
#include <ostream>

namespace {

constexpr std::string_view What =
    "handheld stands in for a handheld: it keeps handheld databases in a folder, takes orders, and presses\n"
    "HotSync over the network as a real one does. It is no emulator and runs no handheld program.\n";

const CommandDef* FindCommand(std::string_view name) {
    const std::span<const CommandDef> commands = AllCommands();
    const auto found = std::find_if(commands.begin(), commands.end(),
                                    [&](const CommandDef& one) { return one.Name == name; });
    return found == commands.end() ? nullptr : &*found;
}

void TellUsage(std::ostream& out, const CommandDef& command) {
    out << "  handheld FOLDER " << command.Name << (command.Usage.empty() ? "" : " ") << command.Usage
        << '\n';
}

void TellAll(std::ostream& out) {
    out << What << '\n';
    for (const CommandDef& command : AllCommands()) TellUsage(out, command);
    out << "  handheld help [COMMAND]\n"
           "  handheld --help | --version\n\n"
           "Exit codes: 0 done, 1 not done, 2 the command is not written as it should be, 3 the line was "
           "cut\n"
           "as --cut-after asked.\n";
}

Outcome Help(std::span<const std::string> words, const Surroundings& around) {
    if (words.empty()) {
        TellAll(around.Out);
        return Outcome::Done;
    }
    const CommandDef* const command = FindCommand(words.front());
    if (!command) throw Misuse("there is no command " + words.front());
    TellUsage(around.Out, *command);
    around.Out << '\n' << command->Help;
    return Outcome::Done;
}

Outcome Run(const std::vector<std::string>& arguments, const Surroundings& around) {
    const std::span<const std::string> words(arguments);
    if (words.empty()) throw Misuse("no folder and no command");
    if (words[0] == "help" || words[0] == "--help") return Help(words.subspan(1), around);
    if (words.size() < 2) throw Misuse("no command behind the folder " + words[0]);
    const CommandDef* const command = FindCommand(words[1]);
    if (!command) throw Misuse("there is no command " + words[1]);

    const CommandLine line(words.subspan(2), command->Options, command->LeastOperands, command->MostOperands);
    const std::string folder = AddBackslash(words[0]);
    if (command->Name == NewCommand) MakePath(folder);
    if (!Global.TheDisk->IsFolder(folder)) throw Refusal("there is no folder " + folder);
    const std::shared_ptr<void> lock = around.Lock ? around.Lock(folder) : nullptr;
    return command->Run({folder, line, around});
}

} // namespace

std::span<const CommandDef> AllCommands() {
    static const std::vector<CommandDef> commands = [] {
        std::vector<CommandDef> all;
        for (const std::span<const CommandDef> group :
             {FolderCommands(), TableCommands(), OrderCommands(), HotSyncCommands()}) {
            all.insert(all.end(), group.begin(), group.end());
        }
        return all;
    }();
    return commands;
}

Outcome RunCommand(const std::vector<std::string>& arguments, const Surroundings& around) {
    try {
        return Run(arguments, around);
    } catch (const Misuse& misuse) {
        around.Err << "handheld: " << misuse.what() << "\nhandheld help [COMMAND] tells more.\n";
        return Outcome::Misused;
    } catch (const std::exception& failure) {
        around.Err << "handheld: " << failure.what() << '\n';
        return Outcome::Failed;
    }
}
