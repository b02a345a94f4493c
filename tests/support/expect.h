// Expectations about raises and warnings.
#pragma once
#include <ox.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace ox::test {

// Whether the call raises exactly this identifier and message (null: any message) and, unless the
// error mode is 0, records it as the last error.
testing::AssertionResult raises(const char *id, const char *message,
                                const std::function<void()> &call);
std::string entry_id(oxErrorMessage number);
testing::AssertionResult raises_entry(oxErrorMessage number, const std::function<void()> &call);

// The identifier, and the text as shown without "Warning: ".
using Warning = std::pair<std::string, std::string>;

// Catches the warnings shown during its life instead of printing them.
class WarningRecorder {
public:
    WarningRecorder();
    ~WarningRecorder();
    WarningRecorder &operator=(WarningRecorder &&) = delete;
    static std::vector<Warning> shown; // by the innermost recorder

private:
    std::vector<Warning> outer_;
    oxWarningHandler handler_;
    void (*after_)();
};

// Whether the call shows exactly these warnings, in order.
testing::AssertionResult warns(const std::vector<Warning> &expected,
                               const std::function<void()> &call);

} // namespace ox::test

#define EXPECT_RAISES(id, message, ...)                                                            \
    EXPECT_TRUE(::ox::test::raises(id, message, [&] { static_cast<void>(__VA_ARGS__); }))
// An entry of the error table by number.
#define EXPECT_RAISES_ENTRY(number, ...)                                                           \
    EXPECT_TRUE(::ox::test::raises_entry(number, [&] { static_cast<void>(__VA_ARGS__); }))
#define EXPECT_WARNS(id, message, ...)                                                             \
    EXPECT_TRUE(::ox::test::warns({{id, message}}, [&] { static_cast<void>(__VA_ARGS__); }))
#define EXPECT_NO_WARNING(...)                                                                     \
    EXPECT_TRUE(::ox::test::warns({}, [&] { static_cast<void>(__VA_ARGS__); }))
