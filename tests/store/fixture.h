// A store without a display, its entries as short calls, and ways to look at it.
#pragma once

#include <gtest/gtest.h> // before X, whose macros would break it

#include "common/alloc.h"
#include "common/names.h"
#include "shell/globals.h"
#include "shell/graphics.h"
#include "shell/messages.h"
#include "store/remove.h"
#include "store/store.h"
#include "ui/framework/dialog.h"
#include "ui/viewer/viewer_type.h"

#include <array>
#include <cstring>
#include <string>
#include <vector>

namespace store_test {

using Rows = std::vector<std::string>;

template <std::size_t N> void put(char (&field)[N], const std::string& text) {
    std::memset(field, ' ', N);
    std::memcpy(field, text.data(), text.size());
}
template <std::size_t N> void put(NB_BYTE (&field)[N], const std::string& text) {
    van_ascii_to_ebcdic(field, text.c_str(), N);
}
template <std::size_t N> std::string get(const NB_BYTE (&field)[N]) {
    char text[N + 1];
    van_ebcdic_to_ascii(text, field, N);
    return text;
}
template <std::size_t N> std::string get(const char (&field)[N]) {
    std::string text(field, strnlen(field, N));
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}
template <typename T> T entry() {
    T blank{};
    blank.length = sizeof(T);
    return blank;
}
// The same with its name in a field.
template <typename T, typename Field> T entry(Field T::*field, const std::string& name) {
    T named = entry<T>();
    put(named.*field, name);
    return named;
}

DLC_ENTRY dlc(const std::string& name, NB_BYTE type = NAP_DLC_ETHERNET);
PORT_ENTRY port(const std::string& name, const std::string& dlc_name);
LS_ENTRY ls(const std::string& name, const std::string& port_name, const std::string& pu_name = "",
            const std::string& dspu_name = "");
PU_ENTRY pu(const std::string& name, const std::string& ls_name = "",
            NB_BYTE attachment = NAP_DIRECT_ATTACHED);
LU03_ENTRY lu03(const std::string& name, const std::string& pu_name, NB_BYTE nau);
DOWN_LU_ENTRY down_lu(const std::string& name, NB_BYTE nau);
LU62_ENTRY lu62(const std::string& name, const std::string& alias, NB_BYTE nau = 0,
                const std::string& pu_name = "");
MODE_ENTRY mode(const std::string& name, const std::string& partner, NB_USHORT sessions,
                const std::string& cp_name = "");
DIRECTORY_ENTRY directory(const std::string& name, NB_USHORT type, NB_BYTE entry_type,
                          const std::string& parent = "", NB_USHORT parent_type = 0);
PLU_DEF_ENTRY plu_def(const std::string& name, const std::string& alias);
NODE_ALL_ENTRY node_all(const std::string& name);

// The name a row's record has.
std::string row_name(const vga_viewer& row);
// The rows of a list, children behind a blank for each level, whether expanded or not.
Rows rows(vga_viewer_root& root);
// The records in their order; the test fails when order or balance of the tree is broken.
std::vector<void*> records(const NTL_AVL_TREE& tree);
template <typename T> std::vector<T*> all(const NTL_AVL_TREE& tree) {
    std::vector<T*> found;
    for (void* record : records(tree)) {
        found.push_back(static_cast<T*>(record));
    }
    return found;
}
inline std::size_t count(const NTL_AVL_TREE& tree) {
    return records(tree).size();
}
// The record of that name in a tree whose keys are names of a type, or null.
template <typename T, typename Name> T* named(const NTL_AVL_TREE& tree, const std::string& text) {
    Name key;
    put(key, text);
    return static_cast<T*>(ntl_avl_find(&tree, key));
}

// A window whose message boxes wait, as long as it lives.
struct Messages {
    Messages();
    ~Messages();
    int shown(); // since the last call

    vga_dialog window{};
};

// An empty store with one node, NODE1, whose control point is NET.CP with the alias CP.
struct Store : testing::Test {
    Store();
    ~Store() override;

    vga_node* add_node(const std::string& name);
    vga_dlc* add_dlc(const DLC_ENTRY& entry);
    vga_port* add_port(const std::string& name); // with a DLC of that name
    vga_ls* add_ls(const LS_ENTRY& entry);       // with its PU
    vga_pu* add_pu(const PU_ENTRY& entry);
    vga_pu* add_down_pu(const PU_ENTRY& entry);
    vga_down_lu* add_down_lu(const DOWN_LU_ENTRY& entry, vga_pu* owner);
    vga_lu03* add_lu03(const LU03_ENTRY& entry);
    vga_lu62* add_lu62(const LU62_ENTRY& entry);
    vga_rem_sys* add_rem_sys(const std::string& name);
    vga_appcip_sess* add_appcip(const std::string& lu, NB_ULONG id);
    // Hands a page of mode entries over as the answer of a query.
    void list_modes(vga_lu62* lu, std::vector<MODE_ENTRY> entries);

    vga_node* node;
    std::size_t asserts;
};

} // namespace store_test
