// Runs a built program as a user would, and keeps what it says.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace program_test {

using Words = std::vector<std::string>;

// The words of both.
inline Words joined(Words words, const Words& more) {
    words.insert(words.end(), more.begin(), more.end());
    return words;
}

inline bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

// Empty when there is none.
inline std::string read_file(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// A folder of this test's own, removed at its end.
class Folder {
public:
    Folder() {
        if (mkdtemp(path_.data()) == nullptr) throw std::runtime_error("no temporary folder");
    }
    ~Folder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    const std::string& path() const { return path_; }
    std::string operator/(const std::string& name) const { return path_ + "/" + name; }
    // Writes a file here and gives its path.
    std::string file(const std::string& name, const std::string& text) const {
        std::ofstream(*this / name, std::ios::binary) << text;
        return *this / name;
    }
    Words names() const {  // of the files here, sorted
        Words names;
        for (const auto& entry : std::filesystem::directory_iterator(path_))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }

private:
    std::string path_ = std::filesystem::temp_directory_path() / "nequar_test.XXXXXX";
};

class InFolder : public testing::Test {
protected:
    Folder folder;
};

// Starts an executable with these files for its standard output and error, without waiting.
inline pid_t start(const std::string& executable, const Words& arguments, int out, int err) {
    std::vector<char*> pointers = {const_cast<char*>(executable.c_str())};
    for (const std::string& argument : arguments)
        pointers.push_back(const_cast<char*>(argument.c_str()));
    pointers.push_back(nullptr);
    const pid_t child = fork();
    if (child < 0) throw std::runtime_error("fork failed");
    if (child > 0) return child;
    if (dup2(out, STDOUT_FILENO) < 0 || dup2(err, STDERR_FILENO) < 0) _exit(126);
    execv(executable.c_str(), pointers.data());
    _exit(127);
}

// Waits for its end: the exit status, or -signal.
inline int end_of(pid_t child) {
    int state = 0;
    waitpid(child, &state, 0);
    return WIFEXITED(state) ? WEXITSTATUS(state) : -WTERMSIG(state);
}

struct Answer {
    int status;
    std::string out, err;
};

inline Answer run(const std::string& executable, const Words& arguments) {
    const Folder outputs;
    const std::string out = outputs / "out", err = outputs / "err";
    const int out_file = open(out.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    const int err_file = open(err.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    const int status = end_of(start(executable, arguments, out_file, err_file));
    close(out_file);
    close(err_file);
    return {status, read_file(out), read_file(err)};
}

// What nequar says where it has to succeed.
inline std::string output_of(const Words& arguments) {
    const Answer answer = run(NEQUAR_PROGRAM, arguments);
    EXPECT_EQ(answer.status, 0) << answer.err;
    return answer.out;
}

// That nequar ends with this status and a message that holds `part`.
inline Answer expect_failure(const Words& arguments, int status, const std::string& part) {
    Answer answer = run(NEQUAR_PROGRAM, arguments);
    EXPECT_EQ(answer.status, status) << part;
    EXPECT_EQ(answer.err.rfind("nequar: ", 0), 0U) << answer.err;
    EXPECT_TRUE(contains(answer.err, part)) << answer.err << part;
    return answer;
}

// Runs a command in both precisions; check(output, what rounding may do to values near 1).
template <class Check>
void in_both_precisions(const Words& command, double bound_of_double, const Check& check) {
    for (const bool in_float : {false, true}) {
        SCOPED_TRACE(command[0] + (in_float ? " in float" : ""));
        check(output_of(in_float ? joined(command, {"--float"}) : command),
              in_float ? 1e-5 : bound_of_double);
    }
}

// The number that follows a line's name in the output of a command; NaN when there is none.
inline double number_after(const std::string& output, const std::string& name) {
    std::istringstream lines(output);
    for (std::string line; std::getline(lines, line);)
        if (double value = 0;
            line.rfind(name + " ", 0) == 0 && std::istringstream(line.substr(name.size())) >> value)
            return value;
    return std::numeric_limits<double>::quiet_NaN();
}

// The values of an array file, without any check; for files that nequar wrote.
inline std::vector<double> values_of(const std::string& path) {
    std::ifstream file(path);
    std::string line;
    while (std::getline(file, line) && line[0] == '%') {
    }
    return {std::istream_iterator<double>(file), {}};
}

// That such a file holds as many values as expected, each within the bound.
inline void expect_values(const std::string& path, const std::vector<double>& expected,
                          double bound) {
    const std::vector<double> found = values_of(path);
    ASSERT_EQ(found.size(), expected.size()) << path;
    for (std::size_t i = 0; i < found.size(); ++i)
        EXPECT_LT(std::fabs(found[i] - expected[i]), bound) << path << ", element " << i;
}

// The banners of Matrix Market files.
inline const std::string kMatrix = "%%MatrixMarket matrix ";
inline const std::string kReal = kMatrix + "coordinate real general\n";
inline const std::string kRealSymmetric = kMatrix + "coordinate real symmetric\n";
inline const std::string kArray = kMatrix + "array real general\n";
inline const std::string kSymmetric = kMatrix + "array real symmetric\n";

// An array file with value(0), value(1), ... down its columns.
template <class Value>
std::string array_of(int height, int width, const Value& value) {
    std::string text = kArray + std::to_string(height) + " " + std::to_string(width) + "\n";
    for (int k = 0; k < height * width; ++k) text += std::to_string(value(k)) + "\n";
    return text;
}

}  // namespace program_test
