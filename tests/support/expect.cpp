// Expectations about raises and warnings: catching and comparing.
#include <errors/warn.h>
#include <support/expect.h>

#include <ut.h>
#include <ut.hpp>

#include <cctype>
#include <cstring>
#include <ostream>

namespace ox::test {

using testing::AssertionFailure;
using testing::AssertionResult;
using testing::AssertionSuccess;

namespace {

std::string quoted(const std::string &id, const std::string &message) {
    return '<' + id + "> \"" + message + '"';
}

AssertionResult recorded(const char *id) {
    if (!oxGetErrorMode()) return AssertionSuccess();
    const char *last;
    oxGetLastErrIdAndMsg(&last, nullptr);
    if (!std::strcmp(last, id)) return AssertionSuccess();
    return AssertionFailure() << "the last error recorded is <" << last << ">, not <" << id << '>';
}

} // namespace

AssertionResult raises(const char *id, const char *message, const std::function<void()> &call) {
    const std::string expected = quoted(id, message ? message : "...");
    try {
        call();
    } catch (const ut::simple_exception &e) {
        const std::string raised = quoted(e.identifier(), message ? e.message() : "...");
        if (raised == expected) return recorded(id);
        return AssertionFailure() << "raised " << quoted(e.identifier(), e.message())
                                  << "\nexpected " << expected;
    }
    return AssertionFailure() << "nothing raised, expected " << expected;
}

AssertionResult raises_entry(oxErrorMessage number, const std::function<void()> &call) {
    std::string id = oxGetErrorMessageEnumName(number) + 1;
    for (char &c : id) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    id.insert(0, "VELTRO:");
    return raises(id.c_str(), oxGetErrorTableEntry(number), call);
}

std::ostream &operator<<(std::ostream &out, const Warning &w) {
    return out << quoted(w.id, w.text);
}

std::vector<Warning> WarningRecorder::shown;

namespace {

void on_warning(const char *text) {
    constexpr std::size_t lead = sizeof "Warning: " - 1;
    const bool led = !std::strncmp(text, "Warning: ", lead);
    WarningRecorder::shown.push_back({"", led ? text + lead : std::string("unled: ") + text});
}

// The identifier is known only once the handler is through.
void after_warning() {
    if (utWarnCtx *context = utGetWarningManagerContext())
        WarningRecorder::shown.back().id = utGetLastPrintedWarningId(context);
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
    AssertionResult result = AssertionFailure();
    result << "warnings shown:";
    for (const Warning &w : recorder.shown) result << "\n  " << w;
    result << "\nexpected:";
    for (const Warning &w : expected) result << "\n  " << w;
    return result;
}

} // namespace ox::test
