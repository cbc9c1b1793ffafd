#include "gallery.h"

#include "page.h"

#include "cli/command_options.h"
#include "cli/guide/text.h"
#include "cli/host.h"
#include "cli/module_file.h"
#include "cli/standard_output.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sys/wait.h>

namespace kzb::cli {

namespace {

constexpr int64_t width_shown = 400; // for which the notes' examples are made

std::string shell_quoted(const std::string &text) {
    std::string quoted = "'";
    for (const char letter : text) letter == '\'' ? quoted.append("'\\''") : quoted.append(1, letter);
    return quoted.append("'");
}

// A shell in the gallery's folder in which `kzb` is this program with its module.
class Workshop {
public:
    Workshop(const std::string &folder, const std::string &module)
        : start_("cd " + shell_quoted(folder) + " && kzb() { " +
                 shell_quoted(std::filesystem::read_symlink("/proc/self/exe")) + " --quiet --module " +
                 shell_quoted(std::filesystem::absolute(module)) + " \"$@\"; } && ") {}

    // Throws a Failure of Exit::operation with what the command said.
    void run(const std::string &command) const {
        std::FILE *said = popen((start_ + command + " 2>&1 </dev/null").c_str(), "r");
        if (said == nullptr) fail(Exit::operation, "no shell can be started for: " + command);
        std::string text;
        for (int letter = std::fgetc(said); letter != EOF; letter = std::fgetc(said)) text += static_cast<char>(letter);
        if (pclose(said) != 0) fail(Exit::operation, command + ": " + text);
    }

private:
    std::string start_;
};

// The words after "-o" and before the first ':'.
std::string output_of(std::string_view command) {
    const size_t begin = command.rfind(" -o ") + 4;
    return std::string(command.substr(begin, command.find(' ', begin) - begin));
}
std::string input_of(std::string_view command) {
    const size_t begin = command.find("kzb ") + 4;
    return std::string(command.substr(begin, command.find(' ', begin) - begin));
}

Value read_host_picture(const std::string &path) {
    kzb_error error = {};
    Value picture = Value::picture(kzb_picture_read(path.c_str(), nullptr, &error));
    if (picture.is_nil()) fail(Exit::input, error.message);
    return picture;
}

// photo.png: photo.jpg with an alpha that fades to nothing at the edges.
void write_faded(const std::string &folder) {
    const Value picture = read_host_picture(folder + "/photo.jpg");
    const GWorld &world = *kzb_picture_world(picture.as_picture());
    const Value mask =
        Value::picture(kzb_picture_new(static_cast<int32_t>(world.width), static_cast<int32_t>(world.height), 8));
    if (mask.is_nil()) fail(Exit::operation, "out of memory");
    const GWorld &alpha = *kzb_picture_world(mask.as_picture());
    const double margin = 0.15 * static_cast<double>(std::min(world.width, world.height));
    for (kzb_word y = 0; y < alpha.height; ++y)
        for (kzb_word x = 0; x < alpha.width; ++x) {
            const kzb_word edge = std::min(std::min(x, alpha.width - 1 - x), std::min(y, alpha.height - 1 - y));
            const double level = std::min(1.0, static_cast<double>(edge) / margin);
            static_cast<uint8_t *>(alpha.base_address)[y * alpha.row_bytes + x] = static_cast<uint8_t>(level * 255);
        }
    kzb_picture_set_mask(picture.as_picture(), mask.as_picture());
    kzb_error error = {};
    if (!kzb_picture_write(picture.as_picture(), (folder + "/photo.png").c_str(), nullptr, &error))
        fail(Exit::output, error.message);
}

// photo.jpg: the picture as wide as the examples expect.
void write_small(const std::string &input, const Workshop &workshop) {
    const Value picture = read_host_picture(input);
    const double shape =
        static_cast<double>(property(picture, "Height")) / static_cast<double>(property(picture, "Width"));
    const int64_t height = std::clamp<int64_t>(std::lround(static_cast<double>(width_shown) * shape), 160, 1200);
    workshop.run("kzb " + shell_quoted(std::filesystem::absolute(input)) + " : CopyPicture : Scale ScaleMitchell " +
                 std::to_string(width_shown) + " " + std::to_string(height) + " -o photo.jpg --quality 92");
}

std::vector<Room> furnished_rooms(const Catalogue &catalogue) {
    std::vector<Room> rooms;
    for (const Family &family : families()) {
        Room room = {&family, {}};
        for (const MethodNote &note : family.methods) {
            if (catalogue.method(note.name) == nullptr) continue;
            room.exhibits.push_back({&note, input_of(note.example), output_of(note.example)});
        }
        rooms.push_back(std::move(room));
    }
    return rooms;
}

} // namespace

Exit run_gallery(const Words &words) {
    std::string input, folder;
    CommandOptions options("gallery",
                           "kzb gallery makes a page, DIR/index.html, that shows what every method makes of a "
                           "picture.");
    options.take("INPUT", input, "The picture");
    options.option("-o,--output", folder, "DIR", "Where the page and its pictures go; made if it is not there");
    if (!options.parse(words)) return Exit::done;
    if (input.empty() || folder.empty()) fail(Exit::usage, "use kzb gallery INPUT -o DIR");

    const LoadedModule loaded = load_module(options.module);
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error) fail(Exit::output, folder + ": " + error.message() + "; name another DIR");
    const Workshop workshop(folder, loaded.path);
    write_small(input, workshop);
    write_faded(folder);
    const std::vector<Room> rooms = furnished_rooms(loaded.catalogue);
    for (const Room &room : rooms)
        for (const Exhibit &exhibit : room.exhibits) workshop.run(exhibit.note->example);

    const std::string page = folder + "/index.html";
    std::ofstream file(page, std::ios::binary);
    file << gallery_page(std::filesystem::path(input).filename(), rooms);
    if (!file.flush()) fail(Exit::output, page + ": the page cannot be written");
    print(page + "\n");
    return Exit::done;
}

} // namespace kzb::cli
