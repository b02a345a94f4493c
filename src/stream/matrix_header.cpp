// Reading an array element's header alone.
#include <stream/items.h>

using namespace ox;

extern "C" {

int32_t oiGetMatrixHeader(oiStreamRec_tag *s, oiItem_tag *item, kwSize offset, int mode) {
    return get_item_at(s, item, offset, mode == 0 ? Want::array_header : Want::array);
}

int32_t oiGetMatrixHeaderAtCurrentOffset(oiStreamRec_tag *s, oiItem_tag *item, int mode) {
    return oiGetMatrixHeader(s, item, oiCURRENT_OFFSET, mode);
}

} // extern "C"
