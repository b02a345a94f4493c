// Sparse arrays, cells and structs from and to text.
#include <containers/field_table.h>
#include <core/array_list.h>
#include <core/class_table.h>
#include <ox.h>
#include <sparse/storage/csc.h>
#include <support/array_text.h>

namespace ox::test {
namespace {

// --- Sparse: class dims [nzmax n]: (row,column)=value in storage order, zero-based ---------------

struct Entry {
    kwSize row, col;
    std::string value;
};

oxArray *make_sparse_of(Scanner &in) {
    const int id = oxClassIDFromClassName(in.token().c_str());
    const Dims dims = in.dims();
    const kwSize m = dims[0], n = dims[1],
                 nzmax = in.token() == "nzmax" ? std::stoull(in.token()) : 0;
    std::vector<Entry> entries;
    bool complex = false;
    for (in.accept(':'); in.accept('(');) {
        Entry &e = entries.emplace_back();
        e.row = std::stoull(in.token());
        in.expect(in.accept(','));
        e.col = std::stoull(in.token());
        in.expect(in.accept(')') && in.accept('='));
        e.value = in.token();
        complex = complex || e.value.ends_with('i');
    }
    oxArray *a = make_sparse(m, n, nzmax ? nzmax : entries.size(), id, complex);
    in.expect(a != nullptr);
    for (kwSize k = 0; k < entries.size(); ++k) {
        a->num.ir[k] = entries[k].row;
        ++a->num.jc[entries[k].col + 1];
        store_number(a, k, entries[k].value);
    }
    for (kwSize j = 0; j < n; ++j) a->num.jc[j + 1] += a->num.jc[j];
    in.expect(!broken_csc_rule(m, n, a->num.nzmax, a->num.jc, a->num.ir));
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

template<int id> oxArray *make_container(Scanner &in) {
    const Dims dims = in.dims();
    std::vector<std::string> names;
    for (std::string name; !(name = in.token()).empty(); in.accept(',')) names.push_back(name);
    std::vector<const char *> pointers;
    for (const std::string &name : names) pointers.push_back(name.c_str());
    const bool cell = id == oxCELL_CLASS;
    oxArray *a = cell ? oxCreateCellArray(dims.size(), dims.data())
                      : oxCreateStructArray(dims.size(), dims.data(),
                                            static_cast<int>(names.size()), pointers.data());
    const kwSize slots = element_count(dims) * (cell ? 1 : names.size());
    in.accept(':');
    for (kwSize k = 0; k < slots && in.accept('{'); ++k) {
        if (in.accept('}')) continue;
        a->cell.slots[k] = contained(read_array(in));
        in.expect(in.accept('}'));
    }
    return a;
}

void print_container(const oxArray *a, std::string &out) {
    print_dims(a, out);
    const int n = oxIsCell(a) ? 0 : field_count(a);
    for (int k = 0; k < n; ++k) out += (k ? "," : " ") + std::string(a->record.names->names[k]);
    const kwSize slots = a->get_number_of_elements() * static_cast<kwSize>(oxIsCell(a) ? 1 : n);
    if (slots && !a->cell.slots) return void(out += ", no data");
    for (kwSize k = 0; k < slots; ++k) {
        out += k == 0 ? ": {" : " {";
        if (a->cell.slots[k]) out += text(a->cell.slots[k]);
        out += '}';
    }
}

oxArray *make_object(Scanner &in) {
    const std::string class_name = in.token();
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
