// A store that is built from a scripted node.
#pragma once

#include "scripted_node.h"

namespace store_test {

inline int nodes_built;
inline int system_built;

struct Build : Store {
    Build() {
        vga_do_free_node_res(node, true, nullptr); // the build lists its own
        node = nullptr;
        gvga_store_hooks.node_built = [](vga_node*) { ++nodes_built; };
        gvga_store_hooks.system_built = [] { ++system_built; };
        gvga_store_hooks.start_shutdown = [] {
            VGA_FATAL(VGA_EXIT_ORDERLY, 0);
            return true;
        };
        gvga_querybuf_size = 4096;
        gvga_read_only = 0;
        gvga_supported[VGA_SUPPORT_CPIC] = 1;
        gvga_supported[VGA_SUPPORT_RJE] = 1;
        gvga_supported[VGA_SUPPORT_DIRECTORY] = 1;
        script.has(NAP_QUERY_NODE_ALL, node_all("alpha"));
    }
    ~Build() override { gvga_read_only = 0; }
    void build() {
        nodes_built = system_built = 0;
        vga_start_build_system();
        script.run();
        node = ntl_avl_first<vga_node>(gvga_system->node_tree);
    }
    void expect_built() {
        EXPECT_EQ(gvga_exit_code, 0) << std::hex << gvga_exit_subcode;
        EXPECT_EQ(gvga_system->build_flags, 0u);
        EXPECT_EQ(system_built, 1);
    }
    // Takes back what a build has come to, so that the next one finds nothing.
    void start_over() {
        while (auto* listed = ntl_avl_first<vga_node>(gvga_system->node_tree)) {
            vga_do_free_node_res(listed, true, nullptr);
        }
        vga_free_system_resources(false, nullptr);
        vga_free_verb_queues();
        script.forget();
        gvga_system->config_file_handle = 0;
        gvga_system->build_flags = vga_flag(VGA_SYSTEM_FLAG_COUNT) - 1;
        gvga_system->built = 0;
        gvga_exit_code = 0;
    }
    void all_capabilities() { script.node.capabilities = {{1, 1}, {1, 1}, 1, 1, 0, 1, 1, 1, 1}; }

    ScriptedNode script;
};

} // namespace store_test
