#include "cli/command.h"

#include "fixtures/host.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

extern char **environ;

namespace kzb::test {

namespace {

std::string contents(const std::string &path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

uint8_t *pixel_of(KZBPicture picture, int32_t x, int32_t y) {
    const GWorld *world = kzb_picture_world(picture);
    return static_cast<uint8_t *>(world->base_address) + y * world->row_bytes + x * 4;
}

Value picture_value(KZBPicture picture) {
    return Value::adopt(reinterpret_cast<KZBObject>(picture));
}

} // namespace

Outcome run_command(const std::string &folder, const std::vector<std::string> &words) {
    const std::string out = scratch_path(), err = scratch_path();
    std::vector<char *> arguments = {const_cast<char *>(KZB_COMMAND)};
    for (const std::string &word : words) arguments.push_back(const_cast<char *>(word.c_str()));
    arguments.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addchdir_np(&actions, folder.c_str());
    posix_spawn_file_actions_addopen(&actions, 1, out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    posix_spawn_file_actions_addopen(&actions, 2, err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    pid_t process = 0;
    const int failed = posix_spawn(&process, KZB_COMMAND, &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (failed != 0) throw std::runtime_error(KZB_COMMAND " could not be started");
    int status = 0;
    waitpid(process, &status, 0);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status), contents(out), contents(err)};
}

Pixels make_pixels(int32_t width, int32_t height, bool has_alpha, const PixelRule &rule) {
    Pixels pixels = {width, height, has_alpha, {}};
    for (int32_t y = 0; y < height; ++y)
        for (int32_t x = 0; x < width; ++x) {
            pixels.all.push_back(rule(x, y));
            if (!has_alpha) pixels.all.back()[3] = 255;
        }
    return pixels;
}

void write_pixels(const Pixels &pixels, const std::string &path) {
    const Value picture = picture_value(kzb_picture_new(pixels.width, pixels.height, 32));
    const Value mask = picture_value(kzb_picture_new(pixels.width, pixels.height, 32));
    const auto to = reinterpret_cast<KZBPicture>(picture.object());
    const auto alpha_to = reinterpret_cast<KZBPicture>(mask.object());
    for (int32_t y = 0; y < pixels.height; ++y)
        for (int32_t x = 0; x < pixels.width; ++x) {
            const Pixel pixel = pixels.at(x, y);
            std::copy_n(pixel.begin(), 3, pixel_of(to, x, y) + 1);
            std::fill_n(pixel_of(alpha_to, x, y) + 1, 3, pixel[3]);
        }
    if (pixels.has_alpha) kzb_picture_set_mask(to, alpha_to);
    kzb_error error = {};
    if (!kzb_picture_write(to, path.c_str(), nullptr, &error)) throw std::runtime_error(error.message);
}

Pixels read_pixels(const std::string &path) {
    kzb_error error = {};
    const Value picture = picture_value(kzb_picture_read(path.c_str(), nullptr, &error));
    if (picture.is_nil()) throw std::runtime_error(error.message);
    const auto from = reinterpret_cast<KZBPicture>(picture.object());
    const Value mask = picture_value(kzb_picture_mask(from));
    const GWorld *world = kzb_picture_world(from);
    return make_pixels(static_cast<int32_t>(world->width), static_cast<int32_t>(world->height), !mask.is_nil(),
                       [&](int32_t x, int32_t y) {
                           const uint8_t *colours = pixel_of(from, x, y);
                           Pixel pixel = {colours[1], colours[2], colours[3], 255};
                           if (!mask.is_nil())
                               pixel[3] = pixel_of(reinterpret_cast<KZBPicture>(mask.object()), x, y)[1];
                           return pixel;
                       });
}

Pixels plain_sample() {
    return make_pixels(sample_width, sample_height, false, [](int32_t x, int32_t y) {
        return Pixel{static_cast<uint8_t>(20 + 30 * x), static_cast<uint8_t>(10 + 50 * y),
                     static_cast<uint8_t>(7 * x + 40 * y), 255};
    });
}

Pixels alpha_sample() {
    return make_pixels(sample_width, sample_height, true, [](int32_t x, int32_t y) {
        Pixel pixel = plain_sample().at(x, y);
        pixel[3] = static_cast<uint8_t>(x == 0 ? 0 : 255 - 6 * (x + y));
        return pixel;
    });
}

void CommandTest::SetUp() {
    folder_ = scratch_path();
    mkdir(folder_.c_str(), 0700);
    write_pixels(plain_sample(), path("plain.png"));
    write_pixels(alpha_sample(), path("alpha.png"));
}

Pixels CommandTest::result(const std::string &input, const std::vector<std::string> &words) const {
    std::vector<std::string> line = {input};
    line.insert(line.end(), words.begin(), words.end());
    line.insert(line.end(), {"-o", "out.png"});
    const Outcome outcome = run(line);
    EXPECT_EQ(outcome.exit, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "");
    return outcome.exit == 0 ? read_pixels(path("out.png")) : Pixels();
}

void CommandTest::write_file(const std::string &name, const std::string &bytes) const {
    std::ofstream(path(name), std::ios::binary) << bytes;
}

std::string CommandTest::read_file(const std::string &name) const {
    return contents(path(name));
}

std::vector<std::string> CommandTest::files() const {
    std::vector<std::string> names;
    for (const auto &entry : std::filesystem::directory_iterator(folder_)) names.push_back(entry.path().filename());
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace kzb::test
