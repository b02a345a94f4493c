// The table of words.
#include "command.h"

namespace vel {

const std::vector<Command> &commands() {
    static const std::vector<Command> table = {
        {"call",
         "Run an extension module",
         {"vel call zscore.vex iris.csv", "vel call word_count.vex \"'to be or not to be'\"",
          "vel call pagerank.vex flows.vel:west -o ranks.vel"},
         declare_call},
        {"save",
         "Write arguments as the variables of a VEL file",
         {"vel save flowers.vel iris=iris.csv", "vel save --compress flows.vel west=west0067.mtx",
          "vel save notes.vel n=3 \"title='Flowers'\" 'size=uint8([3 4])'"},
         declare_save},
        {"ls",
         "List the variables of VEL files",
         {"vel ls flowers.vel", "vel ls -r notes.vel", "vel ls --json flowers.vel flows.vel"},
         declare_ls},
        {"show",
         "Show values",
         {"vel show flowers.vel", "vel show flowers.vel iris --rows 1:10 --cols 2:3 --stats",
          "vel show flowers.vel iris --hex"},
         declare_show},
        {"plot",
         "Draw heat maps, patterns of sparse arrays, and trees of sizes",
         {"vel plot flowers.vel iris", "vel plot west0067.mtx -o west.png",
          "vel plot notes.vel --color=truecolor"},
         declare_plot},
        {"convert",
         "Convert files from one format to another",
         {"vel convert iris.csv iris.npy", "vel convert west0067.mtx flows.vel --compress",
          "vel convert flows.vel:west0067 flows.npz"},
         declare_convert},
        {"check",
         "Check every element of VEL files against every rule",
         {"vel check flowers.vel", "vel check --all *.vel",
          "vel check --max-bytes 1000000 mail.vel"},
         declare_check},
        {"diff",
         "Compare values; status 1 when they differ",
         {"vel diff old.vel new.vel", "vel diff old.vel:iris iris.csv --tol 1e-9",
          "vel diff a.csv b.csv --nan-equal"},
         declare_diff},
    };
    return table;
}

} // namespace vel
