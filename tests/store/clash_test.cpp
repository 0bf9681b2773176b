// Who has a name already.
#include "fixture.h"

#include "store/tracking.h"

namespace store_test {
namespace {

struct Clash : Store {
    Clash() {
        gvga_messages[275] = "%1";
        add_pu(pu("PU1", "", NAP_DLUR_ATTACHED));
    }
    void add_pooled(const std::string& name, NB_BYTE nau, const std::string& pool) {
        LU03_ENTRY e = lu03(name, "PU1", nau);
        put(e.def_data.pool_name, pool);
        add_lu03(e);
    }
    void add_extra_data(const std::string& lu, const std::string& name) {
        auto e = entry<EXTRA_DATA_ENTRY>();
        van_ascii_to_ebcdic(e.data.name, lu.c_str(), 8);
        van_ascii_to_ebcdic(e.data.second_half, name.c_str(), sizeof e.data.second_half);
        ASSERT_TRUE(vga_insert_lu03_extra_data(vga_init_extra_data(&e), node));
    }
    bool xd_free(const std::string& name, const vga_lu03* lu = nullptr) {
        char text[14];
        put(text, name);
        return vga_check_lu_xd_name_clash(text, lu, node, &messages.window);
    }
    Messages messages;
};

TEST_F(Clash, ALuNameIsSoughtOnTheNodeThenAmongPoolsThenInTheDomain) {
    add_lu03(lu03("LU03", "PU1", 2));
    add_lu62(lu62("DEP62", "DEP62", 3, "PU1"));
    add_pooled("POOLED", 4, "POOL");
    add_pooled("POOLED2", 5, "BOTH");
    add_down_lu(down_lu("DOWN", 1), add_down_pu(pu("DSPU")));
    add_lu62(lu62("IND62", "IND62"));
    add_lu62(lu62("BOTH", "BOTH"));
    vga_node* first = node;
    vga_node* second = node = add_node("NODE2");
    add_pu(pu("PU1", "", NAP_DLUR_ATTACHED));
    add_lu03(lu03("REMOTE", "PU1", 2));
    add_lu03(lu03("POOL", "PU1", 3));
    add_lu62(lu62("REM62", "REM62"));
    struct Case {
        const char* name;
        VGA_LU_NAME_CLASH on_first, on_second, anywhere;
    };
    const Case cases[] = {
        {"LU03", VGA_CLASH_DEPENDENT_LU, VGA_CLASH_OTHER_LU03, VGA_CLASH_DEPENDENT_LU},
        {"DEP62", VGA_CLASH_DEPENDENT_LU, VGA_CLASH_NONE, VGA_CLASH_DEPENDENT_LU},
        {"DOWN", VGA_CLASH_DOWN_LU, VGA_CLASH_NONE, VGA_CLASH_DOWN_LU},
        {"IND62", VGA_CLASH_LU62, VGA_CLASH_NONE, VGA_CLASH_LU62},
        {"BOTH", VGA_CLASH_LU62, VGA_CLASH_POOL, VGA_CLASH_LU62},
        {"POOL", VGA_CLASH_POOL, VGA_CLASH_DEPENDENT_LU, VGA_CLASH_DEPENDENT_LU},
        {"REMOTE", VGA_CLASH_OTHER_LU03, VGA_CLASH_DEPENDENT_LU, VGA_CLASH_DEPENDENT_LU},
        {"REM62", VGA_CLASH_NONE, VGA_CLASH_LU62, VGA_CLASH_LU62},
        {"NOBODY", VGA_CLASH_NONE, VGA_CLASH_NONE, VGA_CLASH_NONE},
        {"", VGA_CLASH_NONE, VGA_CLASH_NONE, VGA_CLASH_NONE},
    };
    for (const Case& c : cases) {
        NB_NAME8E name;
        put(name, c.name);
        void* found;
        EXPECT_EQ(vga_check_lu_name_clash(name, first, &found), c.on_first) << c.name;
        EXPECT_EQ(found != nullptr, c.on_first != VGA_CLASH_NONE) << c.name;
        EXPECT_EQ(vga_check_lu_name_clash(name, second, &found), c.on_second) << c.name;
        EXPECT_EQ(vga_check_lu_name_clash(name, nullptr, &found), c.anywhere) << c.name;
    }
    node = first;
}

TEST_F(Clash, OnlyKnownPartnersHaveAName) {
    const auto name_of = [](const std::string& text) {
        std::array<NB_BYTE, FQ_NAME_LENGTH> name;
        van_ascii_to_ebcdic(name.data(), text.c_str(), name.size());
        return name;
    };
    vga_rem_sys* system = add_rem_sys("NET.EN");
    const auto add_partner = [&](const std::string& name, NB_USHORT type, bool located) {
        const DIRECTORY_ENTRY e = directory(name, type, NOF_DIRECTORY_DEFINED, "NET.EN");
        return vga_insert_vga_rem_plu(vga_init_vga_rem_plu(e.resource_name, type, located, false,
                                                           nullptr, located ? &e : nullptr),
                                      system);
    };
    vga_rem_plu* both_lu = add_partner("NET.BOTH", NAP_LU_RESOURCE, true);
    vga_rem_plu* both_wild = add_partner("NET.BOTH", NAP_WILDCARD_LU_RESOURCE, true);
    vga_rem_plu* wild = add_partner("NET.WILD", NAP_WILDCARD_LU_RESOURCE, true);
    add_partner("NET.SESS", NAP_LU_RESOURCE, false); // known by its sessions only
    const PLU_DEF_ENTRY definition = plu_def("NET.DEFD", "DEFD");
    vga_rem_plu* defined = vga_add_plu_definition(node, &definition);
    struct Case {
        const char* name;
        bool by_type;
        NB_USHORT type;
        vga_rem_plu* found;
    };
    const Case cases[] = {
        {"NET.BOTH", false, 0, both_lu}, {"NET.BOTH", true, NAP_WILDCARD_LU_RESOURCE, both_wild},
        {"NET.WILD", false, 0, wild},    {"NET.WILD", true, NAP_LU_RESOURCE, nullptr},
        {"NET.SESS", false, 0, nullptr}, {"NET.DEFD", false, 0, defined},
        {"NET.NONE", false, 0, nullptr},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(vga_check_fq_name_plu_clash(name_of(c.name).data(), node, c.by_type, c.type),
                  c.found)
            << c.name;
    }
    vga_lu62* lu = add_lu62(lu62("LU", "LU"));
    EXPECT_EQ(vga_check_fq_name_local_clash(name_of("NET.LU").data(), node), lu);
    EXPECT_EQ(vga_check_fq_name_local_clash(name_of("NETX.LU").data(), node), nullptr);
    EXPECT_EQ(vga_check_fq_name_local_clash(name_of("LU").data(), node), nullptr);
}

TEST_F(Clash, NamesAtTheHostAreSoughtAmongExtraDataAndLusWithoutAny) {
    vga_lu03* named = add_lu03(lu03("LU1", "PU1", 2));
    add_lu03(lu03("PLAIN", "PU1", 3));
    add_lu62(lu62("DEP62", "DEP62", 4, "PU1"));
    add_extra_data("LU1", "HOSTNAME0001");
    EXPECT_TRUE(xd_free(""));
    EXPECT_TRUE(xd_free("HOSTNAME0002"));
    EXPECT_TRUE(xd_free("LU1")) << "it goes by another name";
    EXPECT_TRUE(xd_free("DEP62"));
    EXPECT_TRUE(xd_free("HOSTNAME0001", named)) << "its own";
    EXPECT_EQ(messages.shown(), 0);
    EXPECT_FALSE(xd_free("HOSTNAME0001"));
    EXPECT_FALSE(xd_free("PLAIN", named));
    EXPECT_EQ(messages.shown(), 2);
}

TEST_F(Clash, ARangeHasItsNumbersInThreeDecimalOrTwoHexadecimalDigits) {
    add_lu03(lu03("AB003", "PU1", 2));
    add_lu03(lu03("AB0C", "PU1", 3));
    add_lu03(lu03("LU1", "PU1", 4));
    add_extra_data("LU1", "LONGBASE123200"); // 11 characters and a number
    struct Case {
        const char* base;
        NB_LONG first, last;
        bool decimal, free;
    };
    const Case cases[] = {
        {"AB", 1, 3, true, false},
        {"AB", 1, 2, true, true},
        {"AB  ", 3, 3, true, false},
        {"AB", 1, 11, false, true},
        {"AB", 1, 12, false, false},
        {"LONGBASE123", 1, 199, true, true},
        {"LONGBASE123", 1, 200, true, false},
        {"", 1, 255, true, true},
        {"AB", 3, 2, true, true},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(
            vga_check_lu_range_xd_clash(c.base, c.first, c.last, node, &messages.window, c.decimal),
            c.free)
            << c.base << ' ' << c.first << '-' << c.last;
        EXPECT_EQ(messages.shown(), c.free ? 0 : 1);
    }
}

TEST_F(Clash, AnAccessListIsUsedByProgramsAndLocalLus) {
    char tp_list[14], lu_list[14], unused[14];
    put(tp_list, "TPLIST");
    put(lu_list, "LULIST");
    put(unused, "OTHER");
    auto tp = entry(&TP_DEF_ENTRY::tp_name, "TP");
    put(tp.def.access_list_name, "TPLIST");
    vga_insert_vga_tp_def(vga_init_vga_tp_def(node, &tp), node);
    LU62_ENTRY lu = lu62("LU", "LU");
    put(lu.def.access_list_name, "LULIST");
    add_lu62(lu);
    EXPECT_FALSE(vga_access_list_unused(node, tp_list));
    EXPECT_FALSE(vga_access_list_unused(node, lu_list));
    EXPECT_TRUE(vga_access_list_unused(node, unused));
}

} // namespace
} // namespace store_test
