// What happens while nequar waits: here for a pipe that nobody writes to.
#include <poll.h>
#include <pty.h>
#include <sys/stat.h>

#include <csignal>

#include "program/run_program.h"

namespace program_test {
namespace {

// What arrives at a descriptor until it holds `part` or five seconds have passed.
std::string read_until(int descriptor, const std::string& part) {
    std::string text;
    for (int i = 0; i < 50 && !contains(text, part); ++i) {
        pollfd waiting{descriptor, POLLIN, 0};
        if (poll(&waiting, 1, 100) <= 0) continue;
        char buffer[256];
        const ssize_t count = read(descriptor, buffer, sizeof buffer);
        if (count <= 0) break;
        text.append(buffer, static_cast<std::size_t>(count));
    }
    return text;
}

class ProgramWaiting : public InFolder {
protected:
    ~ProgramWaiting() override { close(nowhere); }
    std::string make_pipe(const std::string& name) const {
        EXPECT_EQ(mkfifo((folder / name).c_str(), 0600), 0);
        return folder / name;
    }
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
};

TEST_F(ProgramWaiting, ATerminalShowsWhatIsRunningAndForHowLong) {
    int master = -1, terminal = -1;
    if (openpty(&master, &terminal, nullptr, nullptr, nullptr) != 0)
        GTEST_SKIP() << "no pseudo-terminals here";
    const std::string pipe = make_pipe("A.mtx");
    const pid_t child = start(NEQUAR_PROGRAM, {"info", pipe}, nowhere, terminal);
    const std::string shown = read_until(master, " s\x1b[K");
    EXPECT_TRUE(contains(shown, "reading " + pipe + " ... 0.")) << shown;
    folder.file("A.mtx", kArray + "1 1\n1\n");
    EXPECT_EQ(end_of(child), 0);
    const std::string last = read_until(master, "\r\x1b[K");  // the line is cleared
    EXPECT_TRUE(contains(last, "\r\x1b[K")) << last;
    close(master);
    close(terminal);
}

TEST_F(ProgramWaiting, AnInterruptLeavesNoHalfWrittenFile) {
    const std::string a = folder.file("A.mtx", kArray + "1 1\n1\n");
    const std::string x = folder.file("x.mtx", "what stood here\n");
    const std::string pipe = make_pipe("b.mtx");
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        const pid_t child = start(NEQUAR_PROGRAM, {"solve", a, pipe, "-o", x}, nowhere, nowhere);
        for (int i = 0; i < 500 && folder.names().size() < 4; ++i) usleep(10000);
        EXPECT_EQ(folder.names().size(), 4U) << "the temporary file";
        kill(child, signal);
        EXPECT_EQ(end_of(child), -signal);
        EXPECT_EQ(folder.names(), (Words{"A.mtx", "b.mtx", "x.mtx"}));
        EXPECT_EQ(read_file(x), "what stood here\n");
    }
}

}  // namespace
}  // namespace program_test
