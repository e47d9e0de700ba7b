#include "files/csv_reader.h"

#include <limits>
#include <string_view>

#include "errors.h"
#include "files/line_reader.h"
#include "files/text.h"

namespace program {
namespace {

std::string_view trimmed(std::string_view field) {
    const std::string_view blanks = " \t\v\f";
    const std::size_t first = field.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    field = field.substr(first, field.find_last_not_of(blanks) - first + 1);
    if (field.size() >= 2 && field.front() == '"' && field.back() == '"')
        field = field.substr(1, field.size() - 2);
    return field;
}

char separator_of(std::string_view line) {
    for (const char separator : {',', ';', '\t'})
        if (line.find(separator) != std::string_view::npos) return separator;
    return ',';
}

void split(std::string_view line, char separator, std::vector<std::string_view>& fields) {
    fields.clear();
    for (;;) {
        const std::size_t end = line.find(separator);
        fields.push_back(trimmed(line.substr(0, end)));
        if (end == std::string_view::npos) return;
        line.remove_prefix(end + 1);
    }
}

template <class Real>
bool all_numbers(const std::vector<std::string_view>& fields) {
    Real ignored;
    for (const std::string_view field : fields)
        if (parse_real(field, ignored) == NumberStatus::not_a_number) return false;
    return true;
}

}  // namespace

template <class Real>
Table<Real> read_csv(const std::string& path) {
    LineReader reader(path);
    Table<Real> table;
    table.path = path;
    std::string_view line;
    std::vector<std::string_view> fields;
    char separator = 0;
    while (reader.next(line)) {
        if (reader.line_number() == 1 && line.substr(0, 3) == "\xEF\xBB\xBF") line.remove_prefix(3);
        if (trimmed(line).empty() || line[0] == '#') continue;
        const bool is_first = separator == 0;
        if (is_first) separator = separator_of(line);
        split(line, separator, fields);
        if (is_first) {
            table.width = static_cast<int>(fields.size());
            if (!all_numbers<Real>(fields)) {
                table.names.assign(fields.begin(), fields.end());
                continue;
            }
        }
        if (fields.size() != static_cast<std::size_t>(table.width))
            reader.fail("this line has " + std::to_string(fields.size()) +
                        " fields, the lines before have " + std::to_string(table.width));
        for (std::size_t k = 0; k < fields.size(); ++k) {
            Real value = 0;
            const NumberStatus status = parse_real(fields[k], value);
            if (status != NumberStatus::good)
                reader.fail("field " + std::to_string(k + 1) + ", " + quoted(fields[k]) + ", is " +
                            (status == NumberStatus::not_a_number ? "not a number"
                             : status == NumberStatus::not_finite ? "not a finite number"
                                                                  : "beyond the range"));
            table.values.push_back(value);
        }
        if (table.height == std::numeric_limits<int>::max())
            reader.fail("there are too many lines");
        ++table.height;
    }
    if (table.height == 0) reader.fail("the file holds no line of numbers");
    return table;
}

template Table<double> read_csv(const std::string&);
template Table<float> read_csv(const std::string&);

}  // namespace program
