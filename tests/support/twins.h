// Tests that run for both twins.
//
//     TWINS(Suite);
// declares a suite without a fixture; one with members is a template <class Real> class Suite :
// public testing::Test.
//
//     TWIN_TEST(Suite, Name) {}
// is a test with `Real` double and once more with float, Suite/double.Name and Suite/float.Name.
#pragma once

#include <gtest/gtest.h>

#include <string>

namespace nequar::test {

template <class Fixture, class Test>
bool register_twin(const char* suite, const char* real, const char* name, const char* file,
                   int line) {
    ::testing::RegisterTest((std::string(suite) + '/' + real).c_str(), name, nullptr, nullptr, file,
                            line, []() -> Fixture* { return new Test; });
    return true;
}

}  // namespace nequar::test

#define TWINS(Suite)      \
    template <class Real> \
    class Suite : public ::testing::Test {}

#define TWIN_TEST(Suite, Name)                                                                     \
    template <class Real>                                                                          \
    class Suite##_##Name : public Suite<Real> {                                                    \
    public:                                                                                        \
        using TestFixture = Suite<Real>;                                                           \
        void TestBody() override;                                                                  \
    };                                                                                             \
    [[maybe_unused]] const bool Suite##_##Name##_registered[] = {                                  \
        ::nequar::test::register_twin<Suite<double>, Suite##_##Name<double>>(                      \
            #Suite, "double", #Name, __FILE__, __LINE__),                                          \
        ::nequar::test::register_twin<Suite<float>, Suite##_##Name<float>>(#Suite, "float", #Name, \
                                                                           __FILE__, __LINE__)};   \
    template <class Real>                                                                          \
    void Suite##_##Name<Real>::TestBody()
