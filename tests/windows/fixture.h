// A store whose records have descriptions, and the texts of the catalogue.
#pragma once

#include "store/fixture.h"

#include "ui/windows/node_window_internal.h"

#include <cstdlib>
#include <utility>

using store_test::put;

class WindowStore : public store_test::Store {
protected:
    WindowStore() {
        setenv("NLSPATH", TESSALY_BUILD_DIR "/data/nls/msg/C/%N", 1);
        EXPECT_TRUE(vga_load_messages());
        node->node_state = VGA_NODE_STATE_ACTIVE;
    }
    ~WindowStore() override {
        vga_free_messages();
        v0_close_message_catalog(&gvga_catalog);
    }

    // New invariants broken since the last call.
    std::size_t broken() {
        const std::size_t before = std::exchange(asserts, nba_assert_count());
        return asserts - before;
    }

    using Store::add_ls;
    vga_port* add_port(const char* name) {
        vga_port* port = Store::add_port(name);
        port->vcb->state = NOF_STATE_ACTIVE;
        std::strcpy(port->vcb->def.description, "a port");
        return port;
    }
    // With specific data behind its entry.
    vga_ls* add_ls(const char* name, const char* port_name) {
        struct {
            LS_ENTRY fixed;
            NB_BYTE specific[44];
        } ls{store_test::ls(name, port_name), {}};
        ls.fixed.length = sizeof ls;
        ls.fixed.def.specific_length = sizeof ls.specific;
        std::strcpy(ls.fixed.def.description, "a link station");
        return Store::add_ls(ls.fixed);
    }
    vga_pu* add_dlur_pu(const char* name) {
        auto pu = store_test::pu(name, "", NAP_DLUR_ATTACHED);
        std::strcpy(pu.description, "a PU");
        return Store::add_pu(pu);
    }
    vga_lu03* add_lu03(const char* name, const char* pu_name) {
        auto lu = store_test::lu03(name, pu_name, 2);
        std::strcpy(lu.def_data.description, "an LU");
        return Store::add_lu03(lu);
    }
    // Dependent with an address.
    vga_lu62* add_lu62(const char* name, const char* alias, NB_BYTE nau = 0,
                       const char* pu_name = "") {
        auto lu = store_test::lu62(name, alias, nau, pu_name);
        std::strcpy(lu.def.description, "an LU 6.2");
        return Store::add_lu62(lu);
    }
    vga_mode* add_mode(vga_lu62* lu, const char* partner, const char* name) {
        const auto plu = store_test::entry(&PLU_ENTRY::plu_name, partner);
        vga_plu* owner = vga_insert_vga_plu(vga_init_vga_plu(lu, &plu), lu);
        const MODE_ENTRY mode = store_test::mode(name, partner, 0);
        return vga_insert_vga_mode(vga_init_vga_mode(owner, &mode), owner);
    }
    vga_rem_sys* add_rem_sys(const char* name, bool defined) {
        auto entry = store_test::entry(&DIRECTORY_ENTRY::resource_name, name);
        std::strcpy(entry.description, "a remote node");
        return vga_insert_vga_rem_sys(
            vga_init_vga_rem_sys(node, entry.resource_name, defined, defined ? &entry : nullptr),
            node);
    }
    vga_rem_plu* add_rem_plu(vga_rem_sys* owner, const char* name, NB_USHORT type, bool located) {
        auto entry = store_test::entry(&DIRECTORY_ENTRY::resource_name, name);
        std::strcpy(entry.description, "a partner");
        return vga_insert_vga_rem_plu(vga_init_vga_rem_plu(entry.resource_name, type, located,
                                                           false, nullptr,
                                                           located ? &entry : nullptr),
                                      owner);
    }
};
