// Serialised arrays, and what the class layer adds: subsystem data, objects, handles.
#include <support/stream_bytes.h>
#include <support/suite.h>

#include <ut.h>

#include <cstring>

namespace {

class Serialize : public HostTest {
protected:
    void TearDown() override {
        ox_register_object_layer(nullptr);
        HostTest::TearDown();
    }
};

oxArray *deserialized(const Bytes &b, const char **tag = nullptr) {
    return oxDeserializeWithTag(b.data(), b.size(), tag);
}

TEST_F(Serialize, VectorsCarryArrayAndTag) {
    const std::string longest(70, 'n');
    const std::pair<const char *, const char *> tags[] = {{nullptr, nullptr},
                                                          {"", nullptr},
                                                          {"name", "name"},
                                                          {longest.c_str(), longest.c_str() + 7}};
    oxArray *a = arr("struct 1x1 a: {char 1x2: 'hi'}");
    for (const auto &[given, back] : tags) {
        for (const uint16_t options : std::initializer_list<uint16_t>{0, 8, 16, 32, 56}) {
            const oxArray *v = oxSerializeWithTagEx(a, given, options);
            EXPECT_TRUE(oxGetClassID(v) == oxUINT8_CLASS && oxGetM(v) == 1 && oxIsTemp(v));
            const Bytes bytes = bytes_of(v), before = bytes;
            EXPECT_EQ(bytes.size() % 8, 0u);
            EXPECT_EQ(bytes[4], options & oiWIDE ? 1 : 0);
            const char *tag = "left alone";
            EXPECT_EQ(text(deserialized(bytes, &tag)), text(a));
            EXPECT_EQ(tag, back ? ut_symtab_add(back) : nullptr) << "interned";
            EXPECT_EQ(bytes, before);
        }
    }
    EXPECT_EQ(bytes_of(oxSerializeEx(arr("double 0x0"), oiCOMPRESS)),
              bytes_of(oxSerialize(arr("double 0x0"))));
}

TEST_F(Serialize, SecondElementIsSubsystemData) {
    const Bytes one = bytes_of(oxSerialize(arr("double 1x1: 1"))), item = cut(one, 8);
    const auto with = [&](const Bytes &tail) { return joined(one, tail); };
    for (const Bytes &tail : {Bytes(), item, joined(item, item)}) // what follows is not read
        EXPECT_NE(deserialized(with(tail)), nullptr);
    const struct {
        const char *what;
        Bytes bytes;
    } refused[] = {
        {"half a second element", with(cut(item, 0, 24))},
        {"a second one that is no array", with(hex("02000100 07000000"))},
        {"an empty second one", with(hex("0e000000 00000000"))},
        {"a byte too many", with({0})},
        {"an end behind the bytes", patched(one, 12, {static_cast<unsigned char>(one[12] + 8)})},
        {"no array", hex("0001494f00000000 02000100 07000000")},
        {"an empty array element", hex("0001494f00000000 0e000000 00000000")},
        {"a prefix", hex("0001494f00000000")},
        {"a prefix of version 0", with(hex("0000000000000000"))},
        {"nothing", {}},
    };
    for (const auto &c : refused) {
        const char *tag = "left alone";
        EXPECT_EQ(deserialized(c.bytes, &tag), nullptr) << c.what;
        EXPECT_STREQ(tag, "left alone");
    }
    EXPECT_EQ(oxDeserialize(nullptr, 100), nullptr);
}

// --- A class layer ---------------------------------------------------------------------------

oxArray *&payload_of(const oxArray *a) { return *static_cast<oxArray **>(a->get_opaque_giblet()); }

// Objects hold one array, which is also what they save.
struct Thing : xxInfo {
    const char *name = "thing";
    bool can_load = true;
    const char *subclass_name(const oxArray *) const override { return name; }
    const char *shared = nullptr; // what all things together keep with the stream
    std::string found;
    oxArray *save(const oxArray *a, oiStreamRec_tag *s) override {
        if (shared && !s->subsystem) oiSetSubsystemData(s, arr(shared));
        return payload_of(a) ? oxDuplicateArray(payload_of(a)) : nullptr;
    }
    bool load(oxArray *a, const oxArray *contents, oiStreamRec_tag *s) override {
        if (const oxArray *kept = s ? oiGetSubsystemData(s) : nullptr)
            found = text(oxDeserialize(oxGetData(kept), oxGetNumberOfElements(kept)));
        if (can_load) payload_of(a) = oxCreateSharedCopyNotOnArrayList(contents);
        return can_load;
    }
    void release(oxArray *a) override {
        if (a->get_opaque_giblet()) oxDestroyArray(payload_of(a));
    }
};
Thing thing, unknown;
std::string asked_for;

oxArray *opaque_of(Thing *info, const oxArray *payload) {
    static constexpr kwSize scalar[2] = {1, 1};
    oxArray *a = oxCreateOpaqueArray(2, scalar, info);
    if (payload) info->load(a, payload, nullptr);
    return a;
}

oxArray *make_thing(const char *name, kwSize, const kwSize *) {
    asked_for = name;
    return std::strcmp(name, "absent") == 0 ? nullptr : opaque_of(&thing, nullptr);
}
oxArray *make_unknown(const char *name, const oxArray *contents) {
    asked_for += std::string(", unknown ") + name;
    return opaque_of(&unknown, contents);
}

TEST_F(Serialize, OpaqueArraysByClassName) {
    ox_object_layer layer{};
    layer.create_class_array = make_thing;
    layer.create_unknown = make_unknown;
    ox_register_object_layer(&layer);
    const struct {
        const char *written, *made, *asked;
        bool known;
    } cases[] = {
        {"thing", "thing", "thing", true},
        {"handle", "handle", "handle.handle", true},
        {"handle", "handle.handle", "handle.handle", true},
        {"thing", "other", "thing, unknown thing", false},
        {"absent", "thing", "absent, unknown absent", false},
    };
    for (const auto &c : cases) {
        thing.name = c.written;
        oxArray *inside = oxCreateCellMatrix(1, 2);
        oxSetCell(inside, 1, opaque_of(&thing, arr("double 1x2: 1 2")));
        const Bytes bytes = bytes_of(oxSerialize(inside));
        thing.name = c.made;
        const oxArray *back = deserialized(bytes);
        ASSERT_NE(back, nullptr) << c.asked;
        EXPECT_EQ(asked_for, c.asked);
        EXPECT_EQ(oxGetCell(back, 1)->get_opaque_info(), c.known ? &thing : &unknown);
        EXPECT_EQ(text(payload_of(oxGetCell(back, 1))), "double 1x2: 1 2");
    }
    // A class number that nobody knows has a stand-in as well.
    Bytes bytes = bytes_of(oxSerialize(arr("double 1x1: 1")));
    bytes[24] = 77;
    const oxArray *back = deserialized(bytes);
    EXPECT_TRUE(back && back->get_opaque_info() == &unknown);

    thing.name = "thing";
    const Bytes good = bytes_of(oxSerialize(opaque_of(&thing, arr("double 1x2: 1 2"))));
    thing.shared = "struct 1x1 all: {double 1x1: 7}";
    EXPECT_NE(deserialized(bytes_of(oxSerialize(opaque_of(&thing, arr("double 1x1: 1"))))),
              nullptr);
    EXPECT_EQ(thing.found, thing.shared) << "written behind the array, there before it is loaded";
    thing.can_load = false;
    EXPECT_EQ(deserialized(good), nullptr);
    thing.can_load = true;
    ox_register_object_layer(nullptr);
    EXPECT_EQ(deserialized(good), nullptr);
    EXPECT_EQ(deserialized(bytes), nullptr);
    EXPECT_RAISES("VELTRO:Serialize", "Error during serialization of it",
                  oxSerializeWithTag(opaque_of(&thing, nullptr), "it"));
    EXPECT_RAISES("VELTRO:Serialize", "Error during serialization of ",
                  oxSerialize(opaque_of(nullptr, nullptr)));
}

TEST_F(Serialize, SubsystemDataOfAStream) {
    TestStream s({Carrier::buffer, false, oiWIDE});
    EXPECT_EQ(oiGetSubsystemData(s.get()), nullptr);
    oxArray *number = arr("double 1x1: 3");
    oiSetSubsystemData(s.get(), number);
    EXPECT_EQ(oiGetSubsystemData(s.get()), number);
    oxDestroyArray(number);
    oiSetSubsystemData(s.get(), arr("struct 1x1 a: {double 1x1: 5}"));
    const oxArray *v = oiGetSubsystemData(s.get());
    ASSERT_EQ(oxGetClassID(v), oxUINT8_CLASS);
    EXPECT_EQ(bytes_of(v)[4], 1) << "with the stream's options";
    EXPECT_EQ(text(deserialized(bytes_of(v))), "struct 1x1 a: {double 1x1: 5}");
    EXPECT_EQ(oiGetSubsystemData(s.get()), v);
}

TEST_F(Serialize, FunctionHandlesThroughTheLayer) {
    const oxArray *handle = oxCreateNumericMatrix(1, 1, oxFUNCTION_CLASS, oxREAL);
    EXPECT_RAISES("VELTRO:objectLayerMissing", nullptr, oxFunctionHandleToSavedStruct(handle));
    EXPECT_EQ(oxSavedStructToFunctionHandle(nullptr), nullptr);
    ox_object_layer layer{};
    layer.fh_to_struct = [](const oxArray *h) {
        return arr(oxGetM(h) == 1 ? "struct 1x1 function: {char 1x1: 'f'}"
                                  : "struct 1x1 function,workspaces: {char 1x1: 'f'} {}");
    };
    layer.fh_build_saved = [](const oxArray *saved, const char *separator, const char *marker) {
        oxArray *s = oxDuplicateArray(saved);
        oxAddField(s, separator[0] == '\\' && marker[0] == '@' ? "good" : "bad");
        return s;
    };
    layer.fh_from_saved = [](const oxArray *) { return arr("double 1x1: 8"); };
    ox_register_object_layer(&layer);
    EXPECT_EQ(text(oxFunctionHandleToSavedStruct(handle)),
              "struct 1x1 function,good: {char 1x1: 'f'} {}");
    const oxArray *nested = oxCreateNumericMatrix(2, 1, oxFUNCTION_CLASS, oxREAL);
    const oxArray *saved = handle;
    EXPECT_WARNS("VELTRO:saveNestedFunctionHandle",
                 "Variable contains a function handle to a nested function",
                 saved = oxFunctionHandleToSavedStruct(nested));
    EXPECT_EQ(saved, nullptr);
    const oxArray *empty = oxSavedStructToFunctionHandle(nullptr);
    EXPECT_TRUE(oxIsFunctionHandle(empty) && oxGetNumberOfElements(empty) == 1);
    EXPECT_EQ(text(oxSavedStructToFunctionHandle(handle)), "double 1x1: 8");
}

} // namespace
