// The saved form of function handles, through the class layer.
#include <containers/object_layer.h>
#include <core/create.h>
#include <core/destroy.h>
#include <errors/warn.h>
#include <ox/serialize.h>
#include <ox/structs.h>

using namespace ox;

extern "C" {

oxArray *oxFunctionHandleToSavedStruct(const oxArray *handle) {
    const ox_object_layer &layer = object_layer();
    if (!layer.fh_to_struct || !layer.fh_build_saved) raise_layer_missing("function_handle");
    oxArray *described = layer.fh_to_struct(handle);
    if (!described) return nullptr;
    if (oxGetFieldNumber(described, "workspaces") >= 0) {
        oxDestroyArray(described);
        oxWarningMsgIdAndTxt("VELTRO:saveNestedFunctionHandle",
                             "Variable contains a function handle to a nested function");
        return nullptr;
    }
    oxArray *saved = layer.fh_build_saved(described, "\\", "@");
    if (saved != described) oxDestroyArray(described);
    return saved;
}

oxArray *oxSavedStructToFunctionHandle(const oxArray *saved) {
    const ox_object_layer &layer = object_layer();
    if (!layer.fh_from_saved) return nullptr;
    if (!saved) return hand_over(make_full(1, 1, oxFUNCTION_CLASS, false));
    return layer.fh_from_saved(saved);
}

} // extern "C"
