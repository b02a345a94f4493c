// Sparse arrays, cells and structs from and to text.
#include <containers/field_table.h>
#include <core/array_list.h>
#include <core/class_table.h>
#include <core/create.h>
#include <core/imaginary.h>
#include <ox.h>
#include <sparse/storage/csc.h>
#include <support/array_text.h>

#include <stdexcept>

namespace ox::test {
namespace {

// --- Sparse: class dims [nzmax n]: (row,column)=value in storage order, zero-based ---------------

struct Entry {
    kwSize row, col;
    NumberText value;
};

std::vector<Entry> read_entries(Scanner &in) {
    std::vector<Entry> entries;
    while (in.accept('(')) {
        Entry e{};
        e.row = in.size();
        in.expect(',');
        e.col = in.size();
        in.expect(')');
        in.expect('=');
        e.value = read_number(in);
        entries.push_back(e);
    }
    return entries;
}

oxArray *make_sparse_of(Scanner &in) {
    const int id = oxClassIDFromClassName(std::string(in.word()).c_str());
    const Dims dims = read_dims(in);
    kwSize nzmax = 0;
    if (in.word() == "nzmax") nzmax = in.size();
    const std::vector<Entry> entries = in.accept(':') ? read_entries(in) : std::vector<Entry>();
    bool complex = false;
    for (const Entry &e : entries) complex = complex || !e.value.im.empty();
    const kwSize n = dims[1], nnz = entries.size();
    oxArray *a = make_sparse(dims[0], n, nzmax ? nzmax : nnz, id, complex);
    if (!a) throw std::invalid_argument("no sparse array of this class");
    for (kwSize k = 0; k < nnz; ++k) {
        a->num.ir[k] = entries[k].row;
        ++a->num.jc[entries[k].col + 1];
        store_number(a, k, entries[k].value);
    }
    for (kwSize j = 0; j < n; ++j) a->num.jc[j + 1] += a->num.jc[j];
    if (broken_csc_rule(dims[0], n, a->num.nzmax, a->num.jc, a->num.ir))
        in.fail("entries are not in storage order");
    return hand_over(a);
}

void print_sparse(const oxArray *a, std::string &out) {
    out += ' ';
    out += class_info(a->class_code).name;
    print_dims(a, out);
    if (!a->num.pdata) return void(out += ", no data");
    for (kwSize j = 0; j < cols(a); ++j) {
        for (kwIndex k = a->num.jc[j]; k < a->num.jc[j + 1]; ++k) {
            out += k == 0 ? ": (" : " (";
            out += std::to_string(a->num.ir[k]) + ',' + std::to_string(j) + ")=";
            print_number(a, k, out);
        }
    }
}

// --- Cells and structs: slots in the order of memory ---------------------------------------------

std::vector<std::string> read_names(Scanner &in) {
    std::vector<std::string> names;
    if (!in.peek() || in.peek() == ':' || in.peek() == '}') return names;
    do names.emplace_back(in.word());
    while (in.accept(','));
    return names;
}

template<int id> oxArray *make_container(Scanner &in) {
    const Dims dims = read_dims(in);
    std::vector<std::string> names;
    if (id == oxSTRUCT_CLASS) names = read_names(in);
    std::vector<const char *> pointers;
    for (const std::string &name : names) pointers.push_back(name.c_str());
    const kwSize slots = element_count(dims) * (id == oxSTRUCT_CLASS ? names.size() : 1);
    oxArray *a = make_header(id, dims[0], dims[1]);
    store_dimensions(a, dims.size(), dims.data());
    a->cell.slots = static_cast<oxArray **>(oxCallocEx(slots, sizeof(oxArray *)));
    hand_over(a);
    for (kwSize k = 0; k < slots && (k || in.accept(':')); ++k)
        if (oxArray *element = read_in_braces(in)) a->cell.slots[k] = contained(element);
    if (slots == 0) in.accept(':');
    if (!names.empty())
        a->record.names = make_field_table(static_cast<int32_t>(names.size()), pointers.data());
    return a;
}

void print_container(const oxArray *a, std::string &out) {
    print_dims(a, out);
    const int32_t n = oxIsCell(a) ? 0 : field_count(a);
    for (int32_t k = 0; k < n; ++k) out += (k ? "," : " ") + std::string(a->record.names->names[k]);
    const kwSize slots = a->get_number_of_elements() * static_cast<kwSize>(oxIsCell(a) ? 1 : n);
    if (slots && !a->cell.slots) return void(out += ", no data");
    for (kwSize k = 0; k < slots; ++k) {
        out += k == 0 ? ": " : " ";
        print_in_braces(a->cell.slots[k], out);
    }
}

oxArray *make_object(Scanner &in) {
    const std::string class_name(in.word());
    oxArray *a = make_container<oxSTRUCT_CLASS>(in);
    oxSetClassName(a, class_name.c_str());
    return a;
}

void print_object(const oxArray *a, std::string &out) {
    out += ' ';
    out += oxGetClassName(a);
    print_container(a, out);
}

} // namespace

const TextForm object_form = {"object", oxIsObject, make_object, print_object};
const TextForm sparse_form = {"sparse", is_sparse, make_sparse_of, print_sparse};
const TextForm cell_form = {"cell", oxIsCell, make_container<oxCELL_CLASS>, print_container};
const TextForm struct_form = {"struct", oxIsStructClass, make_container<oxSTRUCT_CLASS>,
                              print_container};

} // namespace ox::test
