// The stack of an error as a struct array.
#include <containers/structs.h>
#include <containers/text.h>
#include <core/array_list.h>
#include <core/create.h>
#include <core/destroy.h>

#include <cstring>

namespace ox {
namespace {

// Stores a new value; false without memory.
bool put(oxArray *s, kwSize i, int32_t n, oxArray *value) {
    if (value) *field_slot(s, i, n) = contained(value);
    return value != nullptr;
}

oxArray *make_stack_struct(kwSize n, const char *const *file, const char *const *name,
                           const double *line) {
    static constexpr const char *fields[] = {"file", "name", "line"};
    ArrayGuard s(make_struct(n, 1, 3, fields));
    for (kwSize i = 0; s && i < n; ++i)
        if (!put(s.get(), i, 0, make_string(file[i], std::strlen(file[i]))) ||
            !put(s.get(), i, 1, make_string(name[i], std::strlen(name[i]))) ||
            !put(s.get(), i, 2, make_double_scalar(line[i])))
            return nullptr;
    return s.release();
}

} // namespace
} // namespace ox

extern "C" oxArray *oxCreateStackStruct(kwSize n, const char *const *file, const char *const *name,
                                        const double *line) {
    return ox::hand_over(ox::make_stack_struct(n, file, name, line));
}
