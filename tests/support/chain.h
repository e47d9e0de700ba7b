// The chain of records that a failing call leaves on an object.
#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

namespace nequar::test {

// The records, innermost first, without the name of the object's class.
template <class Object>
std::string records_of(const Object& object) {
    std::string text = object.gft_Get_Failure_Trace().c_str();
    const std::string name = std::string(object.gcn_Get_Class_Name().c_str()) + "::";
    for (std::size_t at = 0; (at = text.find(name, at)) != std::string::npos;)
        text.erase(at, name.size());
    return text;
}

inline ::testing::AssertionResult has_failed(bool done, const std::string& left,
                                             const std::string& expected) {
    if (!done && left == expected) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "done: " << done << ", \"" << left << "\" is left";
}

// Whether a call that answered `done` failed, and left this detail (these records) on the object.
template <class Object>
::testing::AssertionResult fails_with(const Object& object, const std::string& detail, bool done) {
    return has_failed(done, object.ged_Get_Error_Detail().c_str(), detail);
}
template <class Object>
::testing::AssertionResult fails_as(const Object& object, const std::string& records, bool done) {
    return has_failed(done, records_of(object), records);
}
template <class Object>
::testing::AssertionResult fails_as(const Object& object,
                                    std::initializer_list<std::string> records, bool done) {
    std::string joined;
    for (const std::string& record : records) joined += (joined.empty() ? "" : "\n") + record;
    return fails_as(object, joined, done);
}

}  // namespace nequar::test
