// A store with one node, filled record by record from entries that the tests write down.
#pragma once

#include <gtest/gtest.h>

#include "common/names.h"
#include "shell/globals.h"
#include "shell/messages.h"
#include "store/store.h"
#include "ui/windows/node_window_internal.h"

#include <cstdlib>
#include <cstring>
#include <string>

// A name in a field of its own, local or EBCDIC, padded with blanks.
template <std::size_t N> void put(char (&field)[N], const char* text) {
    std::memset(field, ' ', N);
    std::memcpy(field, text, std::strlen(text));
}
template <std::size_t N> void put(NB_BYTE (&field)[N], const char* text) {
    van_ascii_to_ebcdic(field, text, N);
}

class StoreTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        setenv("NLSPATH", TESSALY_BUILD_DIR "/data/nls/msg/C/%N", 1);
        ASSERT_TRUE(vga_load_messages());
    }
    static void TearDownTestSuite() {
        vga_free_messages();
        v0_close_message_catalog(&gvga_catalog);
    }

    void SetUp() override {
        ASSERT_NE(nba_hm_initialise(), 0);
        vga_init_verb_queues();
        gvga_exit_code = 0;
        gvga_system = vga_init_vga_system();
        ASSERT_NE(gvga_system, nullptr);
        NODE_ALL_ENTRY entry{};
        entry.length = sizeof entry;
        put(entry.node_name, "alpha");
        node = vga_insert_vga_node(vga_init_vga_node(&entry));
        node->node_state = VGA_NODE_STATE_ACTIVE;
        asserts = nba_assert_count();
    }
    void TearDown() override {
        vga_destroy_data_structures();
        gvga_system = nullptr;
        EXPECT_EQ(gvga_exit_code, 0);
    }

    // New invariants broken since the last call.
    std::size_t broken() {
        const std::size_t before = asserts;
        asserts = nba_assert_count();
        return asserts - before;
    }

    vga_port* add_port(const char* name, NB_BYTE dlc_type = NAP_DLC_ETHERNET,
                       NB_BYTE state = NOF_STATE_ACTIVE) {
        struct {
            DLC_ENTRY fixed;
            DLC_SPECIFIC specific;
        } dlc{};
        dlc.fixed.length = sizeof dlc;
        put(dlc.fixed.dlc_name, name);
        dlc.fixed.def.dlc_type = dlc_type;
        dlc.fixed.specific_length = sizeof dlc.specific;
        vga_dlc* parent = vga_insert_vga_dlc(vga_init_vga_dlc(node, &dlc.fixed), node);
        PORT_ENTRY port{};
        port.length = sizeof port;
        put(port.port_name, name);
        port.state = state;
        port.dlc_type = dlc_type;
        put(port.def.dlc_name, name);
        std::strcpy(port.def.description, "a port");
        return vga_insert_vga_port(vga_init_vga_port(parent, &port), parent);
    }

    // fill changes the entry before the record is made from it.
    template <typename Fill> vga_ls* add_ls(vga_port* port, const char* name, Fill fill) {
        struct {
            LS_ENTRY fixed;
            NB_BYTE specific[44];
        } ls{};
        ls.fixed.length = sizeof ls;
        put(ls.fixed.ls_name, name);
        std::memcpy(ls.fixed.def.port_name, port->vcb->port_name, sizeof(NB_NAME8L));
        std::strcpy(ls.fixed.def.description, "a link station");
        ls.fixed.def.specific_length = sizeof ls.specific;
        fill(ls.fixed, ls.specific);
        return vga_insert_vga_ls(vga_init_vga_ls(port, &ls.fixed), port);
    }

    // Of a DLUR PU (no link station) or of the link station named.
    vga_pu* add_pu(const char* name, const char* ls_name = nullptr) {
        PU_ENTRY pu{};
        pu.length = sizeof pu;
        put(pu.pu_name, name);
        std::strcpy(pu.description, "a PU");
        pu.host_attachment = ls_name != nullptr ? NAP_DIRECT_ATTACHED : NAP_DLUR_ATTACHED;
        if (ls_name != nullptr) {
            put(pu.ls_name, ls_name);
        }
        return vga_insert_vga_local_pu(vga_init_vga_local_pu(node, &pu), node);
    }

    vga_lu03* add_lu03(vga_pu* pu, const char* name, NB_BYTE nau) {
        LU03_ENTRY lu{};
        lu.length = sizeof lu;
        put(lu.lu_name, name);
        lu.def_data.nau_address = nau;
        std::memcpy(lu.def_data.pu_name, pu->vcb.pu_name, sizeof(NB_NAME8E));
        std::strcpy(lu.def_data.description, "an LU");
        return vga_insert_vga_lu03(vga_init_vga_lu03(pu, &lu), pu);
    }

    vga_lu62* add_lu62(const char* name, const char* alias, const char* pu_name = nullptr,
                       NB_BYTE nau = 0) {
        LU62_ENTRY lu{};
        lu.length = sizeof lu;
        put(lu.lu_name, name);
        put(lu.def.lu_alias, alias);
        std::strcpy(lu.def.description, "an LU 6.2");
        if (pu_name != nullptr) {
            put(lu.def.pu_name, pu_name);
            lu.def.nau_address = nau;
        }
        return vga_insert_vga_lu62(vga_init_vga_lu62(node, &lu), node);
    }

    vga_mode* add_mode(vga_lu62* lu, const char* plu_name, const char* mode_name) {
        PLU_ENTRY plu{};
        plu.length = sizeof plu;
        put(plu.plu_name, plu_name);
        vga_plu* partner = vga_insert_vga_plu(vga_init_vga_plu(lu, &plu), lu);
        MODE_ENTRY mode{};
        mode.length = sizeof mode;
        put(mode.mode_name, mode_name);
        put(mode.plu_name, plu_name);
        return vga_insert_vga_mode(vga_init_vga_mode(partner, &mode), partner);
    }

    vga_rem_sys* add_rem_sys(const char* name, bool defined) {
        NB_FQNAME cp_name;
        put(cp_name, name);
        DIRECTORY_ENTRY entry{};
        entry.length = sizeof entry;
        std::strcpy(entry.description, "a remote node");
        return vga_insert_vga_rem_sys(
            vga_init_vga_rem_sys(node, cp_name, defined, defined ? &entry : nullptr), node);
    }

    vga_rem_plu* add_rem_plu(vga_rem_sys* rem_sys, const char* name, NB_USHORT type, bool located) {
        NB_FQNAME plu_name;
        put(plu_name, name);
        DIRECTORY_ENTRY entry{};
        entry.length = sizeof entry;
        std::strcpy(entry.description, "a partner");
        return vga_insert_vga_rem_plu(vga_init_vga_rem_plu(plu_name, type, located, false, nullptr,
                                                           located ? &entry : nullptr),
                                      rem_sys);
    }

    vga_node* node = nullptr;
    std::size_t asserts = 0;
};

inline constexpr auto AS_IS = [](LS_ENTRY&, NB_BYTE*) {};
