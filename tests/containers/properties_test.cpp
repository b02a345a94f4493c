// Properties of opaque arrays through their class information.
#include <core/create.h>
#include <ox.hpp>
#include <support/array_text.h>
#include <support/expect.h>
#include <support/host.h>

using namespace ox::test;

namespace {

using Properties = HostTest;

struct Gauge : xxInfo {
    bool readable = true, writable = true;
    oxArray *value = nullptr;
    std::string last;

    bool has_get_property() const override { return readable; }
    bool has_set_property() const override { return writable; }
    oxArray *get_property(const oxArray *, kwSize i, const char *name) override {
        last = name + std::to_string(i);
        return value;
    }
    void set_property(oxArray *, kwSize i, const char *name, const oxArray *v) override {
        last = name + std::to_string(i) + '=' + text(v);
    }
};

TEST_F(Properties, ReadAndWrittenThroughTheClass) {
    Gauge info;
    const Contexts inner; // its arrays go before the information does
    oxArray *a = ox::hand_over(ox::make_header(oxOPAQUE_CLASS, 1, 1)), *v = arr("1 2");
    a->set_opaque_info(&info);
    EXPECT_EQ(oxGetProperty(a, 3, "level"), nullptr);
    info.value = oxCreateSharedDataCopy(v);
    EXPECT_EQ(oxGetPropertyShared(a, 4, "level"), info.value);
    EXPECT_TRUE(oxIsSharedArray(info.value));
    const oxArray *own = oxGetProperty(a, 5, "level");
    EXPECT_EQ(info.last, "level5");
    EXPECT_FALSE(oxIsSharedArray(own));
    EXPECT_EQ(text(own), text(v));
    oxSetProperty(a, 6, "level", v);
    EXPECT_EQ(info.last, "level6=double 1x2: 1 2");
    oxSetPropertyShared(a, 7, "level", v);
    EXPECT_EQ(info.last, "level7=double 1x2: 1 2");
}

TEST_F(Properties, AnythingElseIsRefused) {
    Gauge info;
    const Contexts inner;
    info.readable = info.writable = false;
    oxArray *closed = ox::hand_over(ox::make_header(oxOPAQUE_CLASS, 1, 1));
    oxArray *bare = ox::hand_over(ox::make_header(oxOPAQUE_CLASS, 1, 1));
    closed->set_opaque_info(&info);
    for (oxArray *a : {closed, bare, arr("struct 1x1 level: {1}"), arr("1")}) {
        const char *get = "oxGetProperty works on public properties.";
        const char *set = "oxSetProperty works on public properties.";
        EXPECT_RAISES("VELTRO:invalidInput", get, oxGetProperty(a, 0, "level"));
        EXPECT_RAISES("VELTRO:invalidInput", get, oxGetPropertyShared(a, 0, "level"));
        EXPECT_RAISES("VELTRO:invalidInput", set, oxSetProperty(a, 0, "level", a));
        EXPECT_RAISES("VELTRO:invalidInput", set, oxSetPropertyShared(a, 0, "level", a));
    }
}

} // namespace
