// The manual page and the completion, from the table of words and the options of their parsers.
#include "manual.h"

#include "command.h"

namespace vel {
namespace {

// Backslashes, and dots and quotes at the start of a line, mean something to roff.
std::string roff(const std::string &text) {
    std::string out;
    for (const char c : text) {
        if ((c == '.' || c == '\'') && (out.empty() || out.back() == '\n')) out += "\\&";
        out += c == '\\' ? "\\e" : c == '-' ? "\\-" : std::string(1, c);
    }
    return out;
}

void word_section(std::string &out, const Command &c, const CLI::App &word) {
    out += ".SH \"vel " + std::string(c.name) + "\"\n" + roff(c.summary) + ".\n.nf\n";
    for (const char *example : c.examples) out += "  " + roff(example) + '\n';
    out += ".fi\n";
    for (const CLI::Option *o : word.get_options())
        out +=
            ".TP\n.B " + roff(o->get_name(true, true)) + '\n' + roff(o->get_description()) + '\n';
    if (!word.get_footer().empty()) out += ".PP\n.nf\n" + roff(word.get_footer()) + "\n.fi\n";
}

} // namespace

std::string manual_page(const CLI::App &app) {
    std::string out = ".TH VEL 1\n.SH NAME\nvel \\- " + roff(app.get_description()) + '\n';
    for (const Command &c : commands()) word_section(out, c, *app.get_subcommand(c.name));
    return out +
           ".SH \"EXIT STATUS\"\n0: good. 1: the data are wrong, or differ. 2: the command line "
           "is wrong. 3: a file cannot be read or written.\n";
}

std::string bash_completion(const CLI::App &app) {
    std::string words, cases;
    for (const Command &c : commands()) {
        words += std::string(words.empty() ? "" : " ") + c.name;
        cases += std::string("        ") + c.name + ") options=\"";
        for (const CLI::Option *o : app.get_subcommand(c.name)->get_options())
            for (const std::string &name : o->get_lnames()) cases += "--" + name + ' ';
        cases += "\" ;;\n";
    }
    return "_vel() {\n    local word=${COMP_WORDS[COMP_CWORD]} options=\n"
           "    if [ \"$COMP_CWORD\" = 1 ]; then\n"
           "        COMPREPLY=($(compgen -W \"" +
           words +
           "\" -- \"$word\"))\n        return\n    fi\n"
           "    case ${COMP_WORDS[1]} in\n" +
           cases +
           "    esac\n"
           "    COMPREPLY=($(compgen -W \"$options\" -- \"$word\") $(compgen -f -- \"$word\"))\n}\n"
           "complete -o filenames -F _vel vel\n";
}

} // namespace vel
