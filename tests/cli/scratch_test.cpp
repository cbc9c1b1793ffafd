// Pictures in files: the same results, nothing left behind however a run ends; and what a terminal shows.

#include "cli/command.h"

#include "fixtures/host.h"

#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <pty.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <thread>

namespace kzb::test {

namespace {

namespace fs = std::filesystem;

class Scratch : public CommandTest {
protected:
    void SetUp() override {
        CommandTest::SetUp();
        fs::create_directory(path("scratch"));
        fs::create_directory(path("out"));
    }

    bool is_empty(const std::string &folder) const { return fs::is_empty(path(folder)); }

    // Whether a file is being written in out/: one that is whole has another name.
    bool holds_unfinished() const {
        std::error_code error;
        for (const auto &entry : fs::directory_iterator(path("out"), error))
            if (entry.path().filename().string().starts_with(".kzb-")) return true;
        return false;
    }

    // Starts a run that takes long, in a process group of its own.
    pid_t start(const std::vector<std::string> &words) const {
        std::vector<char *> arguments = {const_cast<char *>(KZB_COMMAND)};
        for (const std::string &word : words) arguments.push_back(const_cast<char *>(word.c_str()));
        arguments.push_back(nullptr);
        const pid_t process = fork();
        if (process == 0) {
            setpgid(0, 0);
            // Whoever runs the tests in the background may have had them ignored.
            for (const int ends : {SIGINT, SIGTERM, SIGHUP}) signal(ends, SIG_DFL);
            const int nowhere = open("/dev/null", O_WRONLY);
            dup2(nowhere, 2);
            if (chdir(path("").c_str()) == 0) execv(KZB_COMMAND, arguments.data());
            _exit(127);
        }
        return process;
    }

    // Waits until a condition holds, at most ten seconds.
    template <class Condition> static bool wait_until(const Condition &condition) {
        for (int i = 0; i < 1000; ++i) {
            if (condition()) return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return false;
    }

    // Whether the process has a file without a name in the folder open.
    bool holds_nameless_file(pid_t process) const {
        std::error_code error;
        for (const auto &entry : fs::directory_iterator("/proc/" + std::to_string(process) + "/fd", error)) {
            const std::string target = fs::read_symlink(entry.path(), error).string();
            if (target.starts_with(path("scratch/")) && target.ends_with(" (deleted)")) return true;
        }
        return false;
    }
};

const std::vector<std::string> long_step = {":", "ScaleFast", "6000", "4000", ":", "OilFilter", "40", "60"};

TEST_F(Scratch, GivesTheSameBytesAsMemory) {
    const std::vector<std::vector<std::string>> chains = {
        {},
        {":", "Rotate90", ":", "BoxBlurFilter", "2", "2"},
        {":", "Rotate", "33", "255", "0", "0", "255", "0"},
        {":", "Scale", "ScaleLanczos3", "40", "30", ":", "GammaFilter", "2", "1"},
        {":", "=p", ":", "Invert", ":", "=q", ":", "@p", ":", "UnsharpFilter", "@q", "0.3", "1"},
        {":", "RedChannel", ":", "Invert", ":", "ClipImage", "1", "1", "4", "3"},
        {":", "DitherFilter", "DitherOrdered4x4Matrix", "2", ":", "Rotate270", ":", "HMirror"},
    };
    for (const char *input : {"plain.png", "alpha.png"}) {
        for (std::vector<std::string> chain : chains) {
            const Pixels expected = result(input, chain);
            chain.insert(chain.end(), {"--scratch", "scratch"});
            EXPECT_EQ(result(input, chain), expected) << testing::PrintToString(chain);
            EXPECT_TRUE(is_empty("scratch"));
        }
    }
}

TEST_F(Scratch, KeepsPicturesOutOfMemory) {
    // Two pictures of 120 million bytes, of which a block of 64 million of each is mapped at a time.
    const auto most_memory = [&](const std::vector<std::string> &more) {
        std::vector<std::string> words = {"plain.png", ":", "ScaleFast", "8000", "5000", ":",  "Rotate90", ":",
                                          "ClipImage", "0", "0",         "40",   "30",   "-o", "out.png"};
        words.insert(words.end(), more.begin(), more.end());
        int status = 0;
        rusage used = {};
        wait4(start(words), &status, 0, &used);
        EXPECT_EQ(status, 0);
        return used.ru_maxrss; // kilobytes
    };
    const auto in_memory = most_memory({}), in_files = most_memory({"--scratch", "scratch"});
    EXPECT_LT(in_files + 60'000, in_memory);
    EXPECT_TRUE(is_empty("scratch"));
}

TEST_F(Scratch, IsOfferedWhenMemoryDoesNotDo) {
    const Outcome outcome = run({"plain.png", ":", "ScaleFast", "30000", "30000", "-o", "out.png"});
    EXPECT_EQ(outcome.exit, 1);
    EXPECT_NE(outcome.err.find("could not be made in memory; --scratch DIR keeps pictures in files"), std::string::npos)
        << outcome.err;
}

TEST_F(Scratch, IsLeftEmptyByAFailure) {
    EXPECT_EQ(run({"plain.png", ":", "Rotate90", ":", "AlphaChannel", "--scratch", "scratch", "-o", "out.png"}).exit,
              1);
    EXPECT_EQ(run({"plain.png", ":", "Rotate90", "--scratch", "scratch", "-o", "/proc/out.png"}).exit, 4);
    EXPECT_TRUE(is_empty("scratch"));
}

TEST_F(Scratch, IsLeftEmptyWhateverEndsTheProcess) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGKILL}) {
        std::vector<std::string> words = {"plain.png", "--scratch", "scratch", "-o", "out/out.png"};
        words.insert(words.end(), long_step.begin(), long_step.end());
        const pid_t process = start(words);
        EXPECT_TRUE(wait_until([&] { return holds_nameless_file(process); }));
        kill(process, signal);
        int status = 0;
        waitpid(process, &status, 0);
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal) << status;
        EXPECT_TRUE(is_empty("scratch") && is_empty("out")) << signal;
    }
}

TEST_F(Scratch, HalfWrittenOutputsGoWhenInterrupted) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        const pid_t process = start({"plain.png", ":", "ScaleFast", "6000", "4000", "-o", "out/out.png"});
        EXPECT_TRUE(wait_until([&] { return holds_unfinished(); }));
        kill(process, signal);
        int status = 0;
        waitpid(process, &status, 0);
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal) << status;
        EXPECT_FALSE(holds_unfinished()) << signal;
    }
}

TEST_F(Scratch, WorkersEndWithTheirParentAndCleanUp) {
    for (const int signal : {SIGINT, SIGTERM}) {
        const pid_t process = start({"plain.png", "alpha.png", ":", "ScaleFast", "6000", "4000", "-o", "out/{stem}.png",
                                     "-j", "2", "--scratch", "scratch"});
        EXPECT_TRUE(wait_until([&] { return holds_unfinished(); }));
        kill(process, signal);
        int status = 0;
        waitpid(process, &status, 0);
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal) << status;
        EXPECT_TRUE(!holds_unfinished() && is_empty("scratch"));
        // No process of the group is left.
        EXPECT_TRUE(wait_until([&] { return kill(-process, 0) != 0; }));
    }
}

TEST_F(Scratch, AWorkerThatDiesFailsItsInputOnly) {
    write_file("again.png", read_file("plain.png"));
    std::vector<std::string> words = {"plain.png", "alpha.png", "again.png", "-o", "out/{stem}.png", "-j", "2", "-k"};
    words.insert(words.end(), {":", "ScaleFast", "1000", "700", ":", "OilFilter", "40", "20"});
    const pid_t process = start(words);
    const auto children = [&] {
        std::vector<pid_t> found;
        FILE *list = std::fopen(
            ("/proc/" + std::to_string(process) + "/task/" + std::to_string(process) + "/children").c_str(), "r");
        for (int child = 0; list && std::fscanf(list, "%d", &child) == 1;) found.push_back(child);
        if (list) std::fclose(list);
        return found;
    };
    ASSERT_TRUE(wait_until([&] { return children().size() == 2; }));
    kill(children()[0], SIGKILL);
    int status = 0;
    waitpid(process, &status, 0);
    EXPECT_EQ(WEXITSTATUS(status), 1);
    EXPECT_EQ(std::distance(fs::directory_iterator(path("out")), {}), 2);
}

TEST_F(Scratch, ThatCannotBeUsedIsTold) {
    const Outcome missing = run({"plain.png", "--scratch", "none", "-o", "out.png"});
    EXPECT_EQ(missing.exit, 2);
    EXPECT_NE(missing.err.find("--scratch none: No such file or directory; name a folder"), std::string::npos)
        << missing.err;
    const Outcome file = run({"plain.png", "--scratch", "alpha.png", "-o", "out.png"});
    EXPECT_EQ(file.exit, 2);
    EXPECT_NE(file.err.find("--scratch alpha.png"), std::string::npos) << file.err;
}

TEST_F(Scratch, WithoutRoomIsToldByTheStep) {
    // Files may not grow beyond four megabytes.
    rlimit before = {};
    getrlimit(RLIMIT_FSIZE, &before);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit small = {4u << 20, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
    const Outcome step = run({"plain.png", ":", "ScaleFast", "2000", "2000", "--scratch", "scratch", "-o", "out.png"});
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(step.exit, 1) << step.err;
    for (const char *part : {"step 1, ScaleFast 2000 2000", "2000 x 2000 pixels find no room in", "(--scratch)"})
        EXPECT_NE(step.err.find(part), std::string::npos) << step.err;
    EXPECT_TRUE(is_empty("scratch"));
}

// What a run writes to a terminal as stderr.
std::string shown_on_terminal(const std::string &folder, std::vector<std::string> words) {
    int terminal = -1;
    const pid_t process = forkpty(&terminal, nullptr, nullptr, nullptr);
    if (process == 0) {
        std::vector<char *> arguments = {const_cast<char *>(KZB_COMMAND)};
        for (std::string &word : words) arguments.push_back(word.data());
        arguments.push_back(nullptr);
        if (chdir(folder.c_str()) == 0) execv(KZB_COMMAND, arguments.data());
        _exit(127);
    }
    std::string shown;
    char buffer[4096];
    for (ssize_t got; (got = read(terminal, buffer, sizeof buffer)) > 0;)
        shown.append(buffer, static_cast<size_t>(got));
    close(terminal);
    int status = 0;
    waitpid(process, &status, 0);
    EXPECT_EQ(status, 0) << shown;
    return shown;
}

TEST_F(Scratch, ProgressIsShownOnATerminalOnly) {
    // The first step yields at its start only, the second with its rows.
    std::vector<std::string> words = {"plain.png",     "-o", "out.png", ":",     "ScaleFast",     "1500", "1000", ":",
                                      "BoxBlurFilter", "9",  ":",       "Scale", "ScaleLanczos8", "3000", "2000"};
    const std::string shown = shown_on_terminal(path(""), words);
    for (const char *part : {"[############", "step 2 of 3, BoxBlurFilter 9", "step 3 of 3, Scale"})
        EXPECT_NE(shown.find(part), std::string::npos) << part << shown;
    EXPECT_TRUE(shown.ends_with("\r\x1B[K")) << "the line is left on the terminal";
    EXPECT_EQ(run(words).err, "");
    words.push_back("--quiet");
    EXPECT_EQ(shown_on_terminal(path(""), words), "");
    // Large enough for a bar on any machine.
    const std::string many = shown_on_terminal(path(""), {"plain.png", "alpha.png", "-j", "2", "-o", "out/{stem}.png",
                                                          ":", "Scale", "ScaleLanczos8", "6000", "4000"});
    EXPECT_NE(many.find(" of 2 pictures"), std::string::npos) << many;
}

} // namespace

} // namespace kzb::test
