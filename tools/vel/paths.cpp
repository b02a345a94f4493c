// Paths into cells and structs.
#include "paths.h"

#include "failure.h"
#include "print.h"
#include "text.h"

#include <charconv>

namespace vel {
namespace {

class Follower {
public:
    // Where the path begins is for messages.
    Follower(const oxArray *a, std::string_view path, const std::string &file,
             std::string_view variable)
        : at_(a), path_(path), rest_(path), file_(file), variable_(variable) {}

    const oxArray *follow() {
        size_t element = 0;
        while (!rest_.empty()) {
            if (!at_) fail("the slot is empty");
            switch (rest_[0]) {
            case '{':
                if (!oxIsCell(at_)) fail("expected a cell array, found " + describe(at_));
                at_ = oxGetCell(at_, index('}'));
                break;
            case '(':
                element = index(')');
                if (rest_.empty() || rest_[0] != '.') fail("a field must follow");
                break;
            case '.':
                field(element);
                element = 0;
                break;
            default:
                fail("expected '.', '(' or '{'");
            }
        }
        return at_;
    }

private:
    // A number from 1 to the element count, and the bracket.
    size_t index(char closing) {
        size_t k = 0;
        const auto [end, error] = std::from_chars(rest_.data() + 1, rest_.data() + rest_.size(), k);
        if (error != std::errc() || end == rest_.data() + rest_.size() || *end != closing)
            fail(std::string("expected a number and '") + closing + "'");
        const size_t n = oxGetNumberOfElements(at_);
        if (k < 1 || k > n)
            fail("expected an element from 1 to " + std::to_string(n) + ", found " +
                 std::to_string(k));
        rest_.remove_prefix(static_cast<size_t>(end + 1 - rest_.data()));
        return k - 1;
    }

    void field(size_t element) {
        if (!oxIsStruct(at_)) fail("expected a struct, found " + describe(at_));
        const size_t end = rest_.find_first_of(".({", 1);
        const std::string name(rest_.substr(1, end == rest_.npos ? end : end - 1));
        const int k = oxGetFieldNumber(at_, name.c_str());
        if (k < 0) fail("there is no field '" + name + "'");
        if (element >= oxGetNumberOfElements(at_)) fail("the struct is empty");
        at_ = oxGetFieldByNumber(at_, element, k);
        rest_.remove_prefix(name.size() + 1);
    }

    [[noreturn]] void fail(const std::string &what) const {
        throw Failure(Exit::data, file_ + ": path '" + std::string(variable_) + std::string(path_) +
                                      "', at '" + std::string(rest_) + "': " + what);
    }

    const oxArray *at_;
    std::string_view path_, rest_;
    const std::string &file_;
    std::string_view variable_;
};

} // namespace

std::string step_label(const oxArray *container, size_t i, size_t field) {
    const std::string index = std::to_string(i + 1);
    if (oxIsCell(container)) return "{" + index + "}";
    const std::string name = printable(oxGetFieldNameByNumber(container, static_cast<int>(field)));
    return (oxGetNumberOfElements(container) > 1 ? "(" + index + ")." : ".") + name;
}

const oxArray *follow(const oxArray *a, std::string_view path, const std::string &file,
                      std::string_view variable) {
    return Follower(a, path, file, variable).follow();
}

} // namespace vel
