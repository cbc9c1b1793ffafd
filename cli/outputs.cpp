#include "outputs.h"

#include "failure.h"
#include "runtime/names.h"

#include <filesystem>
#include <map>

namespace kzb::cli {

namespace {

namespace fs = std::filesystem;

struct Place {
    const char *name;
    std::string value;
};

std::vector<Place> places_for(const std::string &input, size_t number) {
    const fs::path path = input == "-" ? "stdin" : fs::path(input);
    std::string extension = path.extension().string();
    if (extension.starts_with('.')) extension.erase(0, 1);
    return {{"stem", path.stem().string()},
            {"name", path.filename().string()},
            {"ext", extension},
            {"n", std::to_string(number)}};
}

const std::string &value_of(const std::string &name, const std::vector<Place> &places, const std::string &pattern) {
    Suggestion suggestion(name);
    for (const Place &place : places) {
        if (place.name == name) return place.value;
        suggestion.consider(place.name);
    }
    fail(Exit::usage, pattern + ": {" + name + "} stands for nothing" + suggestion.hint() +
                          "; there are {stem}, {name}, {ext} and {n}, and {{ is a brace");
}

std::string filled_in(const std::string &pattern, const std::vector<Place> &places) {
    std::string result;
    for (size_t i = 0; i < pattern.size(); ++i) {
        const char c = pattern[i];
        const bool doubled = i + 1 < pattern.size() && pattern[i + 1] == c;
        if ((c == '{' || c == '}') && doubled) {
            result += c;
            ++i;
        } else if (c == '{') {
            const size_t end = pattern.find('}', i);
            if (end == pattern.npos) fail(Exit::usage, pattern + ": a '{' lacks its '}'; {{ is a brace");
            result += value_of(pattern.substr(i + 1, end - i - 1), places, pattern);
            i = end;
        } else {
            result += c;
        }
    }
    return result;
}

bool is_stream(const std::string &path) {
    return path == "-" || path.ends_with(":-");
}

// The same for all ways of writing one path.
std::string identity(const std::string &path) {
    std::error_code error;
    const fs::path absolute = fs::weakly_canonical(path, error);
    return error ? path : absolute.string();
}

void check_output(const std::string &output) {
    kzb_error error = {};
    std::error_code ignored;
    if (!is_stream(output) && fs::is_directory(output, ignored))
        fail(Exit::usage, output + ": this is a folder; name a file in it, for many inputs as " +
                              (fs::path(output) / "{stem}.png").string());
    if (!kzb_image_kind_of(output.c_str(), nullptr, &error)) fail(Exit::usage, error.message);
    if (is_stream(output)) return;
    const fs::path folder = fs::path(output).parent_path();
    if (!folder.empty() && !fs::exists(folder, ignored))
        fail(Exit::output, output + ": the folder " + folder.string() + " does not exist; make it first");
}

} // namespace

std::vector<Work> plan_outputs(const std::vector<std::string> &inputs, const std::string &output) {
    std::vector<Work> all;
    std::map<std::string, std::string> writers, readers;
    for (const std::string &input : inputs)
        if (!is_stream(input)) readers.emplace(identity(input), input);
    for (const std::string &input : inputs) {
        Work work = {input, filled_in(output, places_for(input, all.size() + 1))};
        check_output(work.output);
        const auto [other, first] = writers.emplace(is_stream(work.output) ? "-" : identity(work.output), input);
        if (!first)
            fail(Exit::usage, other->second + " and " + input + " would both be written to " + work.output +
                                  "; give each its own name, as in -o 'out/{stem}.png' or 'out/{n}-{stem}.png'");
        all.push_back(std::move(work));
    }
    for (const Work &work : all) {
        if (is_stream(work.output)) continue;
        const auto reader = readers.find(identity(work.output));
        if (reader != readers.end() && identity(work.input) != reader->first)
            fail(Exit::usage, "the result of " + work.input + " would be written over " + reader->second +
                                  ", which is an input too; give it another name");
    }
    return all;
}

} // namespace kzb::cli
