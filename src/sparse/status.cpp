// What the status codes of the sparse kernels raise.
#include <errors/raise.h>
#include <ox/sparse.h>

extern "C" void oxHandleSparseSubscriptError(spStatus status) {
    switch (static_cast<int>(status)) {
    case spZeroIndex:
    case spBadIndex:
        oxErrMsgIdAndTxt("VELTRO:badsubscript", "Subscript indices must either be real positive "
                                                "integers or logicals.");
    case spDimMismatch:
        oxErrMsg(FSUBSASSIGNDIMMISMATCH);
    case spOutOfBounds:
        oxErrMsgIdAndTxt("VELTRO:badsubscript", "Index exceeds matrix dimensions.");
    case spTooLarge:
        oxErrMsg(FPMAXSIZE);
    default:
        return;
    }
}
