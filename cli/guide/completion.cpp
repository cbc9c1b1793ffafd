// Completion in shells, generated from the tables.
#include "guide.h"
#include "text.h"

#include "cli/command_line.h"
#include "cli/command_options.h"
#include "cli/module_file.h"
#include "cli/notes/method_notes.h"
#include "cli/standard_output.h"
#include "runtime/names.h"

#include <algorithm>

namespace kzb::cli::guide {

namespace {

constexpr const char *install_text =
    R"(Completion of methods, their arguments, constants and options. To install it for yourself:

  bash  mkdir -p ~/.local/share/bash-completion/completions
        kzb completion bash > ~/.local/share/bash-completion/completions/kzb
  zsh   mkdir -p ~/.zfunc && kzb completion zsh > ~/.zfunc/_kzb
        and in ~/.zshrc, before compinit:  fpath+=~/.zfunc
  fish  mkdir -p ~/.config/fish/completions
        kzb completion fish > ~/.config/fish/completions/kzb.fish

The Debian package has all three in their places. For this shell alone: source <(kzb completion bash)
)";

// What may follow a method's name: its arguments as "Name=", and the constants that they take.
struct StepWords {
    std::string method;
    std::string sentence;
    std::vector<std::string> arguments;
    std::vector<std::string> constants;
};

void add_once(std::vector<std::string> &words, const std::string &word) {
    if (std::find(words.begin(), words.end(), word) == words.end()) words.push_back(word);
}

StepWords words_of(const Method &method, const Catalogue &catalogue) {
    const MethodNote *note = note_on(method.name);
    StepWords words = {method.name, note != nullptr ? note->sentence : "", {}, {}};
    for (const Form &form : method.forms) {
        if (!form.obstacle().empty()) continue;
        for (size_t i = 0; i < form.declaration.parameter_count; ++i) {
            if (form.giver_of(i) != Giver::user) continue;
            const kzb_parameter &parameter = form.declaration.parameters[i];
            add_once(words.arguments, std::string(parameter.name) + "=");
            const char *kind = constants_for(method.name, parameter.name);
            for (const Constant &constant : catalogue.constants())
                if (kind != nullptr && constant.name.starts_with(kind)) add_once(words.constants, constant.name);
        }
    }
    return words;
}

std::vector<StepWords> all_steps(const Catalogue &catalogue) {
    std::vector<StepWords> all;
    for (const Method &method : catalogue.methods())
        if (can_be_step(method)) all.push_back(words_of(method, catalogue));
    std::sort(all.begin(), all.end(), [](const auto &a, const auto &b) { return a.method < b.method; });
    return all;
}

template <class Entries, class Text> std::string joined(const Entries &entries, const char *between, Text text) {
    std::string joined;
    for (const auto &entry : entries) joined.append(joined.empty() ? "" : between).append(text(entry));
    return joined;
}

std::string joined(const std::vector<std::string> &words) {
    return joined(words, " ", [](const std::string &word) { return word; });
}

std::string command_names() {
    return joined(commands(), " ", [](const Command &command) { return command.name; });
}

std::string method_names(const Catalogue &catalogue) {
    return joined(catalogue.methods(), " ", [](const Method &method) { return method.name; });
}

std::string option_names(bool with_value_only) {
    std::vector<std::string> names;
    for (const OptionFact &fact : option_facts())
        if (!with_value_only || !fact.type.empty()) names.insert(names.end(), fact.names.begin(), fact.names.end());
    return joined(names);
}

// The branches of a shell's `case` that sets `arguments` and `constants` by a method's name in small letters.
std::string method_cases(const Catalogue &catalogue) {
    std::string text;
    for (const StepWords &step : all_steps(catalogue))
        if (!step.arguments.empty())
            text += "        " + lower(step.method) + ") arguments='" + joined(step.arguments) + "' constants='" +
                    joined(step.constants) + "' ;;\n";
    return text;
}

std::string replaced(std::string_view text, std::string_view mark, std::string_view with) {
    std::string result;
    for (size_t place = text.find(mark); place != text.npos; place = text.find(mark)) {
        result.append(text.substr(0, place)).append(with);
        text.remove_prefix(place + mark.size());
    }
    return result.append(text);
}

std::string filled(const char *script, const Catalogue &catalogue) {
    std::string text = replaced(script, "%CASES%", method_cases(catalogue));
    text =
        replaced(text, "%STEPS%", joined(all_steps(catalogue), " ", [](const StepWords &step) { return step.method; }));
    text = replaced(text, "%METHODS%", method_names(catalogue));
    text = replaced(text, "%COMMANDS%", command_names());
    text = replaced(text, "%VALUE_OPTIONS%", replaced(option_names(true), " ", "|"));
    return replaced(text, "%OPTIONS%", option_names(false));
}

constexpr const char *bash_script = R"(# Completion of kzb for bash; made by 'kzb completion bash'.
_kzb() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]} method='' i
    local arguments='' constants='' choices='' kept='' candidate
    COMPREPLY=()
    for ((i = COMP_CWORD - 1; i > 0; --i)); do
        [[ ${COMP_WORDS[i]} == : ]] && break
    done
    ((i > 0 && i + 1 < COMP_CWORD)) && method=${COMP_WORDS[i+1],,}
    case $method in
%CASES%    esac
    # '=' and '@' are words of their own to bash.
    if [[ $word == [=@] ]]; then
        before=$word
        word=''
    fi
    for candidate in ${COMP_LINE:0:COMP_POINT}; do
        [[ $candidate == =?* ]] && kept+=" ${candidate#=}"
    done
    if [[ $before == @(%VALUE_OPTIONS%) ]]; then
        choices=''
    elif [[ $word == -* ]]; then
        choices='%OPTIONS%'
    elif ((i > 0)) && [[ $before == @ ]]; then
        choices=$kept
    elif ((i > 0)) && [[ $before == : ]]; then
        choices='%STEPS%'
    elif [[ -n $method ]]; then
        choices=$constants
        [[ $before == = ]] || choices+=" $arguments"
        for candidate in $kept; do choices+=" @$candidate"; done
    elif ((COMP_CWORD == 2)) && [[ $before == help || $before == list ]]; then
        choices='%METHODS%'
    elif ((COMP_CWORD == 2)) && [[ $before == completion ]]; then
        choices='bash zsh fish'
    elif ((COMP_CWORD == 1)); then
        choices='%COMMANDS%'
    fi
    for candidate in $choices; do
        [[ ${candidate,,} == "${word,,}"* ]] && COMPREPLY+=("$candidate")
    done
    # After "Name=" and the start of a word there is more to write; nothing to choose from means files.
    [[ ${#COMPREPLY[@]} == 1 && ${COMPREPLY[0]} == *= ]] && compopt -o nospace 2>/dev/null
    return 0
}
complete -o default -F _kzb kzb
)";

constexpr const char *zsh_script = R"(#compdef kzb
# Completion of kzb for zsh; made by 'kzb completion zsh'.
_kzb() {
    local word=$words[CURRENT] before=$words[CURRENT-1] method='' arguments='' constants=''
    local -a kept=(${${(M)words[1,CURRENT-1]:#=?*}/#=/@})
    local -i i=CURRENT-1
    while ((i > 1)) && [[ $words[i] != : ]]; do ((--i)); done
    ((i > 1 && i + 1 < CURRENT)) && method=${(L)words[i+1]}
    case $method in
%CASES%    esac
    if [[ $before == (%VALUE_OPTIONS%) ]]; then
        _files
    elif [[ $word == -* ]]; then
        compadd -M 'm:{a-zA-Z}={A-Za-z}' -- ${=:-%OPTIONS%}
    elif ((i > 1)) && [[ $before == : ]]; then
        compadd -M 'm:{a-zA-Z}={A-Za-z}' -- ${=:-%STEPS%} $kept
    elif [[ -n $method ]]; then
        if [[ $word == *=* ]]; then
            compadd -M 'm:{a-zA-Z}={A-Za-z}' -P "${word%%=*}=" -- ${=constants} $kept
        else
            compadd -M 'm:{a-zA-Z}={A-Za-z}' -- ${=constants} $kept
            compadd -M 'm:{a-zA-Z}={A-Za-z}' -S '' -- ${=arguments}
        fi
    elif ((CURRENT == 3)) && [[ $before == (help|list) ]]; then
        compadd -M 'm:{a-zA-Z}={A-Za-z}' -- ${=:-%METHODS%}
    elif ((CURRENT == 3)) && [[ $before == completion ]]; then
        compadd bash zsh fish
    else
        ((CURRENT == 2)) && compadd -- ${=:-%COMMANDS%}
        _files
    fi
}
if [[ $funcstack[1] == _kzb ]]; then _kzb "$@"; else compdef _kzb kzb; fi
)";

constexpr const char *fish_head = R"(# Completion of kzb for fish; made by 'kzb completion fish'.
# The words of the step in which the cursor stands, the ':' first; fails before the first ':'.
function __kzb_step
    set -l words (commandline -opc)
    for i in (seq (count $words) -1 1)
        if test "$words[$i]" = :
            printf '%s\n' $words[$i..-1]
            return 0
        end
    end
    return 1
end
function __kzb_at_method
    set -l step (__kzb_step); and test (count $step) -eq 1
end
function __kzb_in_method
    set -l step (__kzb_step); and test (count $step) -gt 1; and string match -qi -- $argv[1] $step[2]
end
function __kzb_at_word
    set -l words (commandline -opc)
    test (count $words) -eq $argv[1]; and begin
        test (count $argv) -eq 1; or contains -- "$words[2]" $argv[2..-1]
    end
end
function __kzb_kept
    commandline -opc | string replace -rf '^=(.+)' '@$1'
end
complete -c kzb -n __kzb_step -f
complete -c kzb -n __kzb_step -a '(__kzb_kept)' -d 'kept picture'
)";

std::string fish_quoted(const std::string &text) {
    return std::string("'").append(replaced(replaced(text, "\\", "\\\\"), "'", "\\'")).append("'");
}

std::string fish_script(const Catalogue &catalogue) {
    std::string script = fish_head;
    for (const Command &command : commands())
        script += std::string("complete -c kzb -n '__kzb_at_word 1' -a ") + command.name + " -d " +
                  fish_quoted(command.sentence) + "\n";
    script.append("complete -c kzb -n '__kzb_at_word 2 help list' -f -a ").append(fish_quoted(method_names(catalogue)));
    script.append("\ncomplete -c kzb -n '__kzb_at_word 2 completion' -f -a 'bash zsh fish'\n");
    for (const OptionFact &fact : option_facts()) {
        script += "complete -c kzb";
        for (const std::string &name : fact.names)
            script.append(name.starts_with("--") ? " -l " : " -s ").append(name, name.find_first_not_of('-'));
        if (!fact.type.empty()) script += fact.type == "FILE" || fact.type == "DIR" ? " -r -F" : " -x";
        script += " -d " + fish_quoted(fact.sentence) + "\n";
    }
    for (const StepWords &step : all_steps(catalogue)) {
        script +=
            "complete -c kzb -n __kzb_at_method -f -a " + step.method + " -d " + fish_quoted(step.sentence) + "\n";
        std::vector<std::string> words = step.arguments;
        for (const std::string &constant : step.constants) {
            words.push_back(constant);
            for (const std::string &argument : step.arguments)
                if (constants_for(step.method, argument.substr(0, argument.size() - 1)) != nullptr)
                    words.push_back(argument + constant);
        }
        if (!words.empty())
            script +=
                "complete -c kzb -n '__kzb_in_method " + step.method + "' -f -a " + fish_quoted(joined(words)) + "\n";
    }
    return script;
}

} // namespace

Exit run_completion(const Words &words) {
    std::string shell;
    CommandOptions options("completion", "kzb completion prints a script that completes kzb's words in a shell.");
    options.take("SHELL", shell, "bash, zsh or fish; how to install it when not given");
    if (!options.parse(words)) return Exit::done;
    if (shell.empty()) {
        print(install_text);
        return Exit::done;
    }
    Suggestion suggestion(shell);
    for (const char *known : {"bash", "zsh", "fish"}) suggestion.consider(known);
    if (shell != "bash" && shell != "zsh" && shell != "fish")
        fail(Exit::usage, "there is completion for bash, zsh and fish, not for '" + shell + "'" + suggestion.hint());
    const Catalogue catalogue = load_module(options.module).catalogue;
    if (shell == "fish")
        print(fish_script(catalogue));
    else
        print(filled(shell == "bash" ? bash_script : zsh_script, catalogue));
    return Exit::done;
}

} // namespace kzb::cli::guide
