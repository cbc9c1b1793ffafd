// The commands that help to find one's way. Each takes the words after its name, prints to stdout and gives the exit
// code; each throws a Failure, of Exit::usage for words that make no sense.
#pragma once

#include "cli/commands.h"

namespace kzb::cli::guide {

// `kzb list [WORD]` and `kzb help [METHOD]`.
Exit run_list(const Words &words);
Exit run_help(const Words &words);

// `kzb info [--json]`: what kzb works with.
Exit run_info(const Words &words);

// `kzb reference`, `kzb manual` and `kzb completion SHELL`: a page in Markdown, one for man, and a shell's script.
Exit run_reference(const Words &words);
Exit run_manual(const Words &words);
Exit run_completion(const Words &words);

} // namespace kzb::cli::guide
