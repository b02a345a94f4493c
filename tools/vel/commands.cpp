// The table of words.
#include "command.h"

namespace vel {

const std::vector<Command> &commands() {
    static const std::vector<Command> table = {
        {"call",
         "Run an extension module",
         {"vel call zscore.vex iris.csv", "vel call word_count.vex \"'to be or not to be'\"",
          "vel call pagerank.vex --nlhs 2 west0067.mtx"},
         declare_call},
    };
    return table;
}

} // namespace vel
