// Identity of arrays, and the comparison behind switch statements.
#include <core/array.h>
#include <core/class_table.h>
#include <errors/raise.h>
#include <ox/compare.h>

namespace ox {
namespace {

constinit oxIdentityTest identity_tests[class_count] = {};

} // namespace
} // namespace ox

using namespace ox;

extern "C" {

bool oxIsIdentical(const oxArray *a, const oxArray *b) {
    if (a == b) return true;
    if (!a || !b || a->class_code != b->class_code) return false;
    const oxIdentityTest test = identity_tests[class_index(a->class_code)];
    return test && test(a, b);
}

oxIdentityTest oxRegisterIdentityTest(oxClassID id, oxIdentityTest test) {
    const oxIdentityTest previous = identity_tests[class_index(id)];
    identity_tests[class_index(id)] = test;
    return previous;
}

void oxValidateSwitchExpression(const oxArray *e) {
    const bool scalar = e->get_number_of_elements() == 1;
    if (oxIsChar(e) || (scalar && (oxIsNumeric(e) || oxIsLogical(e)))) return;
    oxErrMsgIdAndTxt("VELTRO:badSwitchExpression",
                     "SWITCH expression must be a scalar or string constant.");
}

bool oxSwitchCompare(const oxArray *switch_value, const oxArray *case_value) {
    if (oxIsNumeric(case_value) || oxIsChar(case_value) || oxIsLogical(case_value))
        return oxAreMatricesEqualNanOptional(case_value, switch_value, 1) != 0;
    // Deliberate: the w behind the class name is part of the message.
    if (!oxIsCell(case_value))
        oxErrMsgIdAndTxt("VELTRO:badCaseExpression", "CASE expressions cannot be of class %sw.",
                         oxGetClassName(case_value));
    const kwSize n = case_value->get_number_of_elements();
    for (kwSize k = 0; k < n; ++k)
        if (oxAreMatricesEqualNanOptional(case_value->cell.slots[k], switch_value, 1)) return true;
    return false;
}

} // extern "C"
