// The class layer: what is asked of it when it is there, and what happens when it is not.
#include <containers/object_layer.h>
#include <core/array_list.h>
#include <support/suite.h>

namespace {

using Layer = HostTest;

constexpr const char *missing = "VELTRO:objectLayerMissing";

TEST_F(Layer, EveryCopyOfAnObjectIsAnnouncedOnce) {
    const WithLayer layer;
    oxArray *a = arr("object Point 1x2 a: {1} {2}");
    const auto skeleton = [](const oxArray *p) { return oxCreateSkeletonCopy(p, 0); };
    const auto onto_header = [](const oxArray *p) {
        oxArray *dst = arr("1");
        oxMoveCopyOntoHeader(dst, const_cast<oxArray *>(p));
        return dst;
    };
    const auto alone_in_brackets = [](const oxArray *p) {
        oxCatContext objects{[](auto...) { return oxOBJECT_CLASS; }, nullptr};
        const auto as_is = [](oxCatContext *, oxClassID, const oxArray *x) { return x; };
        return oxCatenateDispatch(oxCAT_VERTICAL, 1, &p, as_is, &objects);
    };
    for (oxArray *(*copy)(const oxArray *) :
         {oxCreateSharedDataCopy, oxCreateDeepCopy, oxCreateEmptyCopy, +skeleton, +onto_header,
          +alone_in_brackets, oxCreateSharedCopyNotOnArrayList}) {
        layer_calls = {};
        oxArray *c = copy(a);
        EXPECT_EQ(layer_calls.objects_created, 1);
        EXPECT_STREQ(oxGetClassName(c), "Point");
        oxDestroyArray(c);
        EXPECT_EQ(layer_calls.objects_released, 1);
    }
}

TEST_F(Layer, WithoutOneObjectsAndHandlesAreBytesAndTheRestSaysWhatIsMissing) {
    oxArray *handle;
    {
        const WithLayer layer;
        handle = oxCreateFunctionHandle("12");
    }
    const kwSize dims[] = {1, 2};
    oxArray *bare = oxCreateOpaqueArray(2, dims, nullptr);
    EXPECT_EQ(text(oxCreateSharedDataCopy(bare)), "opaque 1x2: -1 -1");
    EXPECT_RAISES(missing,
                  "Arrays of class 'opaque' need the object layer, which is not installed.",
                  oxCreateDeepCopy(bare));
    EXPECT_RAISES(missing, nullptr, oxCreateOpaqueGiblet(nullptr));
    EXPECT_RAISES(missing, nullptr, oxCreateFunctionHandle("12"));
    EXPECT_EQ(text(oxCreateDeepCopy(arr("object Point 1x1 a: {1}"))),
              "object Point 1x1 a: {double 1x1: 1}");
    oxArray *bytes = oxCreateDeepCopy(handle);
    EXPECT_EQ(*data<void *>(bytes), *data<void *>(handle));
    const WithLayer layer; // which then releases one of the two
    *data<void *>(bytes) = nullptr;
    oxDestroyArray(handle);
}

TEST(LayerSweep, EveryFailedAllocation) {
    const WithLayer layer;
    static const kwSize dims[] = {1, 2, 2};
    sweep_everywhere({{}}, [](auto &) { return oxCreateOpaqueArray(3, dims, opaque_class()); });
    sweep_everywhere({{}}, [](auto &) { return oxCreateOpaqueGiblet(lazy_class()); });
    sweep_everywhere({{"lazy 1x2: 3"}}, [](auto &in) { return oxCreateDeepCopy(in[0]); });
}

} // namespace
