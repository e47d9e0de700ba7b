#include "program/run_program.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>
#include <sstream>
#include <stdexcept>

namespace program_test {

pid_t start(const std::string& executable, const Words& arguments, int out, int err,
            const std::string& folder) {
    std::vector<char*> pointers = {const_cast<char*>(executable.c_str())};
    for (const std::string& argument : arguments)
        pointers.push_back(const_cast<char*>(argument.c_str()));
    pointers.push_back(nullptr);
    const pid_t child = fork();
    if (child < 0) throw std::runtime_error("fork failed");
    if (child > 0) return child;
    if (dup2(out, STDOUT_FILENO) < 0 || dup2(err, STDERR_FILENO) < 0) _exit(126);
    if (!folder.empty() && chdir(folder.c_str()) != 0) _exit(126);
    execv(executable.c_str(), pointers.data());
    _exit(127);
}

int end_of(pid_t child) {
    int state = 0;
    waitpid(child, &state, 0);
    return WIFEXITED(state) ? WEXITSTATUS(state) : -WTERMSIG(state);
}

Answer run(const std::string& executable, const Words& arguments, const std::string& folder) {
    const Folder outputs;
    const std::string out = outputs / "out", err = outputs / "err";
    const int out_file = open(out.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    const int err_file = open(err.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    const int status = end_of(start(executable, arguments, out_file, err_file, folder));
    close(out_file);
    close(err_file);
    return {status, read_file(out), read_file(err)};
}

Answer nequar(const Words& arguments) {
    return run(NEQUAR_PROGRAM, arguments);
}

std::string output_of(const Words& arguments) {
    const Answer answer = nequar(arguments);
    EXPECT_EQ(answer.status, 0) << answer.err;
    return answer.out;
}

Answer expect_failure(const Words& arguments, int status, const std::string& part) {
    const Answer answer = nequar(arguments);
    EXPECT_EQ(answer.status, status) << part;
    EXPECT_EQ(answer.err.rfind("nequar: ", 0), 0U) << answer.err;
    EXPECT_TRUE(contains(answer.err, part)) << answer.err << part;
    return answer;
}

std::string read_file(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

void write_file(const std::string& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

Folder::Folder() {
    std::string name = (std::filesystem::temp_directory_path() / "nequar_test.XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no folder for temporary files");
    path_ = name;
}

Folder::~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::string Folder::file(const std::string& name, const std::string& text) const {
    write_file(*this / name, text);
    return *this / name;
}

Words Folder::names() const {
    Words names;
    for (const auto& entry : std::filesystem::directory_iterator(path_))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

double number_after(const std::string& output, const std::string& name) {
    std::istringstream lines(output);
    for (std::string line; std::getline(lines, line);)
        if (double value = 0;
            line.rfind(name + " ", 0) == 0 && std::istringstream(line.substr(name.size())) >> value)
            return value;
    return std::numeric_limits<double>::quiet_NaN();
}

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

Words joined(Words words, const Words& more) {
    words.insert(words.end(), more.begin(), more.end());
    return words;
}

std::vector<double> values_of(const std::string& path) {
    std::ifstream file(path);
    std::string line;
    while (std::getline(file, line) && line[0] == '%') {
    }
    std::vector<double> values;
    for (double value = 0; file >> value;) values.push_back(value);
    return values;
}

void expect_values(const std::string& path, const std::vector<double>& expected, double bound) {
    const std::vector<double> found = values_of(path);
    ASSERT_EQ(found.size(), expected.size()) << path;
    for (std::size_t i = 0; i < found.size(); ++i)
        EXPECT_LT(std::fabs(found[i] - expected[i]), bound) << path << ", element " << i;
}

}  // namespace program_test
