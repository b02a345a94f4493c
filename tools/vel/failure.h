// How the tool fails: a sentence for stderr and an exit status.
#pragma once
#include <stdexcept>
#include <string>

namespace vel {

enum class Exit { good = 0, data = 1, usage = 2, io = 3 };

class Failure : public std::runtime_error {
public:
    Failure(Exit status, const std::string &sentence)
        : std::runtime_error(sentence), status_(status) {}
    Exit status() const { return status_; }

private:
    Exit status_;
};

} // namespace vel
