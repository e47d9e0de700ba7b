// Runs a built program as a user would, and keeps what it says.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace program_test {

struct Answer {
    int status = -1;  // exit status, or -signal
    std::string out, err;
};

// Runs an executable with arguments, in a folder (empty: the current one).
Answer run(const std::string& executable, const std::vector<std::string>& arguments,
           const std::string& folder = "");

// Starts an executable with these files for its standard output and error, without waiting.
pid_t start(const std::string& executable, const std::vector<std::string>& arguments, int out,
            int err, const std::string& folder = "");
// Waits for its end: the exit status, or -signal.
int end_of(pid_t child);

// Runs nequar.
Answer nequar(const std::vector<std::string>& arguments);

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
    std::vector<std::string> names() const;  // of the files here, sorted

private:
    std::string path_;
};

// The number that follows a line's name in the output of a command; NaN when there is none.
double number_after(const std::string& output, const std::string& name);

bool contains(const std::string& text, const std::string& part);

// The values of an array file, without any check; for files that nequar wrote.
std::vector<double> values_of(const std::string& path);

// As many values as expected, each within the bound.
void expect_values(const std::vector<double>& found, const std::vector<double>& expected,
                   double bound);

// The banners of Matrix Market files.
inline const std::string kMatrix = "%%MatrixMarket matrix ";
inline const std::string kReal = kMatrix + "coordinate real general\n";
inline const std::string kRealSymmetric = kMatrix + "coordinate real symmetric\n";
inline const std::string kArray = kMatrix + "array real general\n";
inline const std::string kSymmetric = kMatrix + "array real symmetric\n";

}  // namespace program_test
