// kzb: pictures through a chain of the module's methods, and the commands around it.
#include "chain_command.h"
#include "commands.h"
#include "host.h"
#include "standard_output.h"
#include "terminal.h"

#include <algorithm>
#include <new>

namespace {

using namespace kzb::cli;

Exit run(int argc, const char *const *argv) {
    const std::vector<std::string> words(argv + std::min(argc, 1), argv + argc);
    if (const Command *command = command_asked_for(words)) return run_command(*command, words);
    const CommandLine line = parse_command_line(argc, argv);
    if (line.text.empty()) return run_chain(line);
    print(line.text);
    return Exit::done;
}

} // namespace

int main(int argc, char **argv) {
    try {
        return static_cast<int>(run(argc, argv));
    } catch (const Failure &failure) {
        print_line(failure.message);
        return static_cast<int>(failure.exit);
    } catch (const CallFailure &failure) {
        print_line(failure.error.message);
    } catch (const std::bad_alloc &) {
        print_line("out of memory");
    }
    return static_cast<int>(Exit::operation);
}
