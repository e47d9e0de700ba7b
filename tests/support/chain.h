// The chain of records that a failing call leaves on an object.
#pragma once

#include <initializer_list>
#include <string>

namespace nequar::test {

// "Class::record" lines, innermost first, as gft_Get_Failure_Trace() hands them out.
template <class Object>
std::string chain(const Object& object, std::initializer_list<std::string> records) {
    std::string text;
    for (const std::string& record : records) {
        if (!text.empty()) text += '\n';
        text += object.gcn_Get_Class_Name().c_str();
        text += "::" + record;
    }
    return text;
}

}  // namespace nequar::test
