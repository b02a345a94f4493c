// The stdio carrier that cannot seek: a file stream whose seek does nothing.
#include <stream/carrier.h>

using namespace ox;

extern "C" {

static int stay(FILE *, int64_t, int) { return 0; }

oiStreamRec_tag *oiCreateSequentialStream(FILE *f, uint16_t version, uint16_t indicator,
                                          oiReserveFcn reserve, kwSize size, oiFreadFcn fread_fcn,
                                          oiFwriteFcn fwrite_fcn, uint16_t options) {
    return new_file_stream(f, oiSEQUENTIAL, version, indicator, reserve, size,
                           fread_fcn ? fread_fcn : fread, fwrite_fcn ? fwrite_fcn : fwrite, stay,
                           oiFtell64, options);
}

} // extern "C"
