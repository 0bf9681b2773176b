#include "tool/fixture.h"

#include "kit/live_store.h"
#include "ui/windows/node_window.h"

// Another operator gives an LU another PU or address, or makes a dependent one of an independent
// one, while it is selected.
namespace {

class LuMoves : public tool::Tool {
protected:
    // Selects a row, in view of the operator.
    void select(vga_viewer_root& root, vga_viewer& row, const char* name) {
        vga_viewer_set_view(&row, &root);
        ASSERT_TRUE(console.wait_idle());
        ASSERT_TRUE(console.click_row(root, name));
        ASSERT_EQ(vga_viewer_get_selection(&root), row.data);
    }
    void* selected() {
        return vga_nodew_get_selection(node->gui_data.node_window, nullptr, nullptr, nullptr);
    }
    vga_lu62* local_lu(const char* name) { return find_ebcdic<vga_lu62>(node->lu62_tree, name); }
    vga_pu* pu(const char* name) { return find_ebcdic<vga_pu>(node->local_pu_tree, name); }
};

TEST_F(LuMoves, TheSelectionStaysInItsPane) {
    vga_lu62* lu = local_lu("CLAIMS");
    vga_pu* other = pu("PUHOSTB");
    ASSERT_TRUE(lu != nullptr && other != nullptr);
    const NB_HANDLE handle = lu->handle;
    ASSERT_EQ(lu->act_sess_count, 3);
    vga_expand_viewer(&node->links_root, &other->ls_entry->viewer);

    select(node->lus_root, lu->viewer, "CLAIMS");
    service.control("define local_lu CLAIMS dependent=true pu=PUHOSTA nau=77");
    ASSERT_TRUE(comes_true([&] { return lu->parent_pu != nullptr; }));
    EXPECT_EQ(node->lus_root.select_count, 1);
    EXPECT_EQ(selected(), local_lu("FXRATES")); // the next one
    EXPECT_EQ(lu->act_sess_count, 3);

    select(node->links_root, lu->viewer, "CLAIMS");
    service.control("define local_lu CLAIMS nau=78");
    ASSERT_TRUE(comes_true([&] { return lu->vcb.def.nau_address == 78; }));
    EXPECT_EQ(selected(), lu);
    service.control("define local_lu CLAIMS pu=PUHOSTB");
    ASSERT_TRUE(comes_true([&] { return lu->parent_pu == other; }));
    EXPECT_EQ(selected(), lu);
    EXPECT_EQ(node->links_root.select_count, 1);

    service.control("define local_lu CLAIMS dependent=false nau=0");
    ASSERT_TRUE(comes_true([&] { return lu->parent_pu == nullptr; }));
    EXPECT_NE(selected(), lu);
    EXPECT_EQ(nba_validate_handle(handle), lu);

    select(node->lus_root, lu->viewer, "CLAIMS");
    service.control("delete local_lu CLAIMS");
    ASSERT_TRUE(comes_true([&] { return nba_validate_handle(handle) == nullptr; }));
    EXPECT_EQ(selected(), local_lu("FXRATES"));
    service.control("delete rje STMT"); // the console does not list them
    const kit::STORE_DUMP fresh = kit::LIVE_STORE::fresh(service.socket());
    EXPECT_EQ(kit::difference(fresh.text, kit::dump_store().text), "");
}

// An LU of type 0 to 3 is a new record below another PU.
TEST_F(LuMoves, TheSelectionGoesToTheNewRecord) {
    auto* other = find_ebcdic<vga_pu>(node->local_pu_tree, "PUHOSTB");
    auto* old = find_ebcdic<vga_lu03>(find_ebcdic<vga_pu>(node->local_pu_tree, "PUHOSTA")->lu_tree,
                                      "CORE03");
    ASSERT_TRUE(other != nullptr && old != nullptr);
    vga_expand_viewer(&node->links_root, &other->ls_entry->viewer);
    const NB_HANDLE handle = old->handle;
    select(node->links_root, old->viewer, "CORE03");
    service.control("define lu_0_to_3 CORE03 pu=PUHOSTB nau=77");
    ASSERT_TRUE(comes_true([&] { return nba_validate_handle(handle) == nullptr; }));
    const auto* lu = find_ebcdic<vga_lu03>(other->lu_tree, "CORE03");
    EXPECT_EQ(selected(), lu);
    service.control("define lu_0_to_3 CORE03 nau=79");
    ASSERT_TRUE(comes_true([&] { return lu->vcb.def_data.nau_address == 79; }));
    EXPECT_EQ(selected(), lu);
}

} // namespace
