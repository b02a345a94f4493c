// Arrays from and to text, so that a case of a test is one line.
//
//   "double 2x2: 1 2; 3 4"            rows by ';', further pages by '|'
//   "1 2; 3 4"                        class double and dimensions are what the rows say
//   "single 1x2: 1+2i NaN-Inf*i"      complex as soon as one element has an imaginary part
//   "int8 0x3", "logical 1x3: 1 0 1"
//   "char 2x2: 'ab'; 'c\''"           ASCII; \' \\ and \uXXXX for units
//   "sparse double 3x2: (0,0)=1 (2,1)=5", "sparse double 3x2 nzmax 8: ..."
//   "cell 1x2: {1} {}"                an array each, {} for an empty slot
//   "struct 1x2 a,b: {1} {2} {3} {4}" the fields of one element together
//   "object Point 1x1 px: {1}"         a struct with a class name
// and with the class layer of fake_layer.h installed
//   "opaque 1x2: 5 6"                 a number in each payload
//   "lazy 2x3: 7"                     indexing-opaque; one payload that copies share
//   "function_handle 1x1: 9"          a number in each handle
#pragma once
#include <core/array.h>

#include <string>
#include <string_view>
#include <vector>

namespace ox::test {

// Makes the array with the library's creators, none of "null"; a malformed text throws
// std::invalid_argument.
oxArray *arr(std::string_view text);

// Writes an array so that arr() would make its like; "null" for none. Numbers are the shortest that
// read back equal.
std::string text(const oxArray *a);

using Dims = std::vector<kwSize>;
kwSize element_count(const Dims &dims);

// --- For further kinds of arrays ------------------------------------------------------------

// Reads a text from the front.
class Scanner {
public:
    explicit Scanner(std::string_view text) : rest_(text) {}
    char peek();         // after blanks; 0 at the end
    char next();         // exactly the next char
    bool accept(char c); // skips blanks first
    void expect(bool holds) const;
    std::string token(); // up to a blank or one of :;|{}(),=
    Dims dims();

private:
    std::string_view rest_;
};

// One kind of array that is written with a word of its own.
struct TextForm {
    std::string_view word;
    bool (*is)(const oxArray *a);
    // Reads what follows the word: dimensions, then ':' and the body.
    oxArray *(*make)(Scanner &in);
    // Appends what follows the word.
    void (*print)(const oxArray *a, std::string &out);
};
extern const TextForm sparse_form, cell_form, struct_form;
extern const TextForm object_form, opaque_form, lazy_form, handle_form; // of the fake layer

oxArray *read_array(Scanner &in); // one array, as arr()
void print_dims(const oxArray *a, std::string &out);
// One number, real or complex, of arrays that hold numbers.
void store_number(oxArray *a, kwSize k, const std::string &number);
void print_number(const oxArray *a, kwSize k, std::string &out);

} // namespace ox::test
