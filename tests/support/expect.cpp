// Expectations about raises and warnings: catching and comparing.
#include <errors/warn.h>
#include <support/expect.h>

#include <ut.h>
#include <ut.hpp>

#include <cctype>
#include <cstring>

namespace ox::test {

using testing::AssertionFailure;
using testing::AssertionResult;
using testing::AssertionSuccess;

AssertionResult raises(const char *id, const char *message, const std::function<void()> &call) {
    const std::string expected = std::string(id) + ": " + (message ? message : "...");
    std::string raised = "nothing";
    try {
        call();
    } catch (const ut::simple_exception &e) {
        raised = std::string(e.identifier()) + ": " + (message ? e.message() : "...");
        const char *last;
        oxGetLastErrIdAndMsg(&last, nullptr);
        if (oxGetErrorMode() && std::strcmp(last, e.identifier()))
            return AssertionFailure() << "the last error recorded is <" << last << '>';
    }
    if (raised == expected) return AssertionSuccess();
    return AssertionFailure() << "raised " << raised << "\nexpected " << expected;
}

std::string entry_id(oxErrorMessage number) {
    std::string id = oxGetErrorMessageEnumName(number) + 1;
    for (char &c : id) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return "VELTRO:" + id;
}

AssertionResult raises_entry(oxErrorMessage number, const std::function<void()> &call) {
    return raises(entry_id(number).c_str(), oxGetErrorTableEntry(number), call);
}

std::vector<Warning> WarningRecorder::shown;

namespace {

void on_warning(const char *text) {
    const std::string lead = "Warning: ", whole = text;
    WarningRecorder::shown.push_back(
        {"", whole.starts_with(lead) ? whole.substr(lead.size()) : "unled: " + whole});
}

// The identifier is known only once the handler is through.
void after_warning() {
    if (utWarnCtx *context = utGetWarningManagerContext())
        WarningRecorder::shown.back().first = utGetLastPrintedWarningId(context);
}

} // namespace

WarningRecorder::WarningRecorder()
    : outer_(std::exchange(shown, {})), handler_(oxSetWarningMessageHandler(on_warning)),
      after_(set_after_warning_hook(after_warning)) {}

WarningRecorder::~WarningRecorder() {
    oxSetWarningMessageHandler(handler_);
    set_after_warning_hook(after_);
    shown = std::move(outer_);
}

AssertionResult warns(const std::vector<Warning> &expected, const std::function<void()> &call) {
    WarningRecorder recorder;
    call();
    if (recorder.shown == expected) return AssertionSuccess();
    return AssertionFailure() << "warnings shown: " << testing::PrintToString(recorder.shown)
                              << "\nexpected: " << testing::PrintToString(expected);
}

} // namespace ox::test
