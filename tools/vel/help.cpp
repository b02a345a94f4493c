// The help texts, made from the table of words and the options of their parsers.
#include "help.h"

#include "command.h"

#include <algorithm>

namespace vel {
namespace {

class ExamplesFirst : public CLI::Formatter {
public:
    std::string make_description(const CLI::App *app) const override {
        const auto &words = commands();
        const auto word = std::find_if(words.begin(), words.end(), [&](const Command &c) {
            return app->get_parent() && app->get_name() == c.name;
        });
        std::string text;
        if (word != words.end()) {
            for (const char *example : word->examples) text += std::string("  ") + example + '\n';
            text += '\n';
        }
        return text + CLI::Formatter::make_description(app);
    }
};

} // namespace

void prepare_help(CLI::App &app) { app.formatter(std::make_shared<ExamplesFirst>()); }

} // namespace vel
