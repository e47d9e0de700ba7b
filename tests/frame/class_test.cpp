#include "nequar_algebra/frame/class.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>

#include "nequar_algebra/frame/message.h"

namespace {

// A class with methods that fail in every way that a class of the library does.
class Probe : public CNqClass {
public:
    explicit Probe(const char* name = "Probe") { set_class_name(name); }

    void reports() { report("1", "reports_By_pme"); }
    bool fails() { return fail("singular", "fails_By_zsm"); }
    void saves() {
        set_error_detail("saved");
        zsm_Save_Message("saves_Message");
    }
    // A method that calls another one of the same object.
    bool outer() {
        const CallScope scope(this);
        return fails() || fail("2", "outer_Calls_fails");
    }
    // A method that calls a member object.
    bool around(Probe& inner) {
        if (inner.outer()) return true;
        adopt_failure_of(inner);
        return fail("3", "around_Calls_inner");
    }
};

TEST(Class, RecordsNameDetailAndMethod) {
    Probe probe;
    probe.reports();
    EXPECT_EQ(probe.ged_Get_Error_Detail(), "1");
    EXPECT_EQ(probe.grm_Get_Recorded_Message(), "Probe::reports_By_pme: 1");
    EXPECT_FALSE(probe.fails());
    EXPECT_EQ(probe.grm_Get_Recorded_Message(), "Probe::fails_By_zsm: singular");
    EXPECT_EQ(Nq_Last_Message(), "Probe::fails_By_zsm: singular");
    probe.saves();
    EXPECT_EQ(Nq_Last_Message(), "Probe::saves_Message: saved");

    probe.cr_Clear_Record();
    EXPECT_EQ(probe.grm_Get_Recorded_Message(), "");
    EXPECT_EQ(probe.gft_Get_Failure_Trace(), "");
    EXPECT_EQ(probe.ged_Get_Error_Detail(), "saved");
}

TEST(Class, ChainsTheRecordsOfOneCallInnermostFirst) {
    const std::string inner = "Probe::fails_By_zsm: singular\nProbe::outer_Calls_fails: 2";
    Probe probe, user("User");
    probe.reports();
    EXPECT_FALSE(probe.outer());
    EXPECT_EQ(probe.gft_Get_Failure_Trace(), inner.c_str());
    EXPECT_EQ(probe.grm_Get_Recorded_Message(), "Probe::outer_Calls_fails: 2");
    user.reports();
    for (int again = 0; again < 2; ++again) {
        EXPECT_FALSE(user.around(probe));
        EXPECT_EQ(user.gft_Get_Failure_Trace(), (inner + "\nUser::around_Calls_inner: 3").c_str());
    }
    // The next call starts a chain of its own.
    user.reports();
    EXPECT_EQ(user.gft_Get_Failure_Trace(), "User::reports_By_pme: 1");
}

TEST(Class, CopiesNameDetailAndFlagButNotTheRecord) {
    Probe source("Source");
    source.fails();
    source.zet_s(true);
    Probe copies[] = {source, Probe(), Probe()};
    copies[1] = source;
    copies[2].cp_Copy(&source);
    for (const Probe& p : copies) {
        EXPECT_EQ(p.gcn_Get_Class_Name(), "Source");
        EXPECT_EQ(p.ged_Get_Error_Detail(), "singular");
        EXPECT_TRUE(p.get_Get_Error_Trace_mode());
        EXPECT_EQ(p.grm_Get_Recorded_Message(), "");
    }
    EXPECT_EQ(source.grm_Get_Recorded_Message(), "Source::fails_By_zsm: singular");
}

TEST(Class, HandsOnTheTraceFlagWhileWhichRecordsArePrinted) {
    Probe owner, one, others[5];
    const auto flags = [&others] {
        std::string text;
        for (const Probe& p : others) text += p.get_Get_Error_Trace_mode() ? '1' : '0';
        return text;
    };
    testing::internal::CaptureStderr();
    one.reports();
    owner.zet_s(true);
    owner.zet_x(&one);
    one.outer();
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Probe::fails_By_zsm: singular\nProbe::outer_Calls_fails: 2\n");
    owner.zet_x(others, others + 1, others + 2, others + 3, others + 4);
    EXPECT_EQ(flags(), "11111");
    owner.zet_s(false);
    owner.zet_x(others, others + 2, others + 3);
    EXPECT_EQ(flags(), "01001");
}

TEST(Message, TheLastMessageIsWholeUnderConcurrentUse) {
    // Long enough for a message to be read while it is half written.
    const std::string as(20000, 'a'), bs(20000, 'b'), rest = "::fails_By_zsm: singular";
    Probe(as.c_str()).fails();
    std::atomic<bool> all_read = false;
    std::thread writer([&] {
        do {
            for (const std::string* name : {&as, &bs}) Probe(name->c_str()).fails();
        } while (!all_read);
    });
    int torn = 0;
    for (int i = 0; i < 2000; ++i) {
        const std::string message = Nq_Last_Message().c_str();
        torn += message != as + rest && message != bs + rest;
    }
    all_read = true;
    writer.join();
    EXPECT_EQ(torn, 0);
    testing::internal::CaptureStderr();
    EXPECT_TRUE(Nq_Print_Message());
    EXPECT_EQ(testing::internal::GetCapturedStderr(), bs + rest + '\n');
}

}  // namespace
