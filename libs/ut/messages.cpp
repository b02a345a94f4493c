// The message catalogue, and ut_error, which raises from it.
#include "ut.hpp"
#include "ut/internal.h"

#include <cfenv>
#include <cstdarg>

namespace {

constexpr utMessage built_in[] = {
    {UT_MSG_SPARSE_64BIT_OBSOLETE, "matrix", "ERR_SPARSE_64BIT_OBSOLETE",
     "64-bit vex files using sparse matrices must be rebuilt with the \"-largeArrayDims\" option: "
     "%s cannot serve them. See the release notes for more details."},
    {UT_MSG_FUNCTION_OBSOLETE, "matrix", "ERR_FUNCTION_OBSOLETE",
     "The function %s is obsolete. A vex file or Dravon S-function that calls it must call %s "
     "instead.%s"},
    {UT_MSG_OXCREATEFULL_OBSOLETE, "matrix", "ERR_OXCREATEFULL_OBSOLETE",
     " A Fortran Dravon S-function that does not call OXCREATEFULL is to be recompiled in the "
     "current release."},
    {UT_MSG_NON_SCALAR_FUNCTION_HANDLES, "matrix", "ERR_NON_SCALAR_FUNCTION_HANDLES",
     "Nonscalar arrays of function handles are not allowed; use cell arrays instead."},
    {UT_MSG_LOCATED, "matrix", "ERR_LOCATED", "Error in \"%s\" (file \"%s\", line %d)\n(%s)"},
};

constexpr utMessage unknown = {0, "unknown", "UnknownMessage",
                               "An error without a catalogue text occurred."};

struct Table {
    const utMessage *rows; // owned by whoever registered them
    std::size_t count;
};

constinit ut::GrowingArray<Table> added_tables{};
constinit utErrorRaiser raiser = nullptr;
constinit const char *last_file = "";
constinit int last_line = 0;

const utMessage *find_in(const utMessage *rows, std::size_t count, int32_t code) {
    for (std::size_t k = 0; k < count; ++k)
        if (rows[k].code == code) return &rows[k];
    return nullptr;
}

const utMessage &find(int32_t code) {
    if (const utMessage *row = find_in(built_in, sizeof built_in / sizeof *built_in, code))
        return *row;
    for (const Table &table : added_tables)
        if (const utMessage *row = find_in(table.rows, table.count, code)) return *row;
    return unknown;
}

} // namespace

bool ut_mem_add_primary_message_table(const utMessage *rows, size_t count) {
    return added_tables.append({rows, count});
}

const char *ut_get_message(int32_t code) { return find(code).text; }

const char *ut_get_message_component(int32_t code) { return find(code).component; }

const char *ut_get_message_mnemonic(int32_t code) { return find(code).mnemonic; }

utErrorRaiser utSetErrorRaiser(utErrorRaiser replacement) {
    utErrorRaiser previous = raiser;
    raiser = replacement;
    return previous;
}

void ut_error(int32_t code, const char *file, int line, ...) {
    static char identifier[2048];
    static char message[8192];
    const utMessage &row = find(code);
    last_file = file ? file : "";
    last_line = line;
    utSNprintf(identifier, sizeof identifier, "%s%s:%s", "VELTRO:", row.component, row.mnemonic);
    va_list arguments;
    va_start(arguments, line);
    utVSNprintf(message, sizeof message, row.text, arguments);
    va_end(arguments);
    if (raiser) raiser(identifier, message);
    throw ut::simple_exception(identifier, message); // also where a raiser returns
}

void utGetLastErrorPlace(const char **file, int *line) {
    if (file) *file = last_file;
    if (line) *line = last_line;
}

void utResetFPU() {
    std::fesetenv(FE_DFL_ENV);
    std::feclearexcept(FE_ALL_EXCEPT); // the default environment need not cover every unit's flags
}
