// Runs a built program as a user would, and keeps what it says.
#pragma once

#include <gtest/gtest.h>
#include <sys/types.h>

#include <string>
#include <vector>

namespace program_test {

using Words = std::vector<std::string>;

struct Answer {
    int status = -1;  // exit status, or -signal
    std::string out, err;
};

// Runs an executable with arguments, in a folder (empty: the current one).
Answer run(const std::string& executable, const Words& arguments, const std::string& folder = "");

// Starts an executable with these files for its standard output and error, without waiting.
pid_t start(const std::string& executable, const Words& arguments, int out, int err,
            const std::string& folder = "");
// Waits for its end: the exit status, or -signal.
int end_of(pid_t child);

// Runs nequar.
Answer nequar(const Words& arguments);
// What it says where it has to succeed.
std::string output_of(const Words& arguments);
// That it ends with this status and a message that holds `part`.
Answer expect_failure(const Words& arguments, int status, const std::string& part);

std::string read_file(const std::string& path);  // empty when there is none
void write_file(const std::string& path, const std::string& text);

// A folder of this test's own, removed at its end.
class Folder {
public:
    Folder();
    ~Folder();
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    const std::string& path() const { return path_; }
    // Writes a file here and gives its path.
    std::string file(const std::string& name, const std::string& text) const;
    std::string operator/(const std::string& name) const { return path_ + "/" + name; }
    Words names() const;  // of the files here, sorted

private:
    std::string path_;
};

class InFolder : public testing::Test {
protected:
    Folder folder;
};

// The number that follows a line's name in the output of a command; NaN when there is none.
double number_after(const std::string& output, const std::string& name);

bool contains(const std::string& text, const std::string& part);

// The words of both.
Words joined(Words words, const Words& more);

// The values of an array file, without any check; for files that nequar wrote.
std::vector<double> values_of(const std::string& path);

// That such a file holds as many values as expected, each within the bound.
void expect_values(const std::string& path, const std::vector<double>& expected, double bound);

// Runs a command in both precisions; check(output, what rounding may do to values near 1).
template <class Check>
void in_both_precisions(const Words& command, double bound_of_double, const Check& check) {
    for (const bool in_float : {false, true}) {
        SCOPED_TRACE(command[0] + (in_float ? " in float" : ""));
        check(output_of(in_float ? joined(command, {"--float"}) : command),
              in_float ? 1e-5 : bound_of_double);
    }
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
