// What all simple kinds of record have in common, told by one table: order, merging, removal, and
// what happens without memory.
#include "fixture.h"

#include "ui/framework/dialog.h"

#include <map>
#include <random>
#include <type_traits>

namespace store_test {
namespace {

struct Kind {
    const char* name;
    // Makes a record of an entry with a name and a mark in its definition, and inserts it.
    void* (*add)(vga_node*, const std::string& name, char mark);
    char (*mark)(const void* record);
    void (*remove)(void* record);
    NB_HANDLE (*handle)(const void* record);
    vga_viewer* (*row)(void* record);
    vga_dialog** (*dialog)(void* record);
    NTL_AVL_TREE vga_node::*tree;
    vga_viewer_root vga_node::*root;
    vga_viewer vga_node::*title; // the heading of its list, or null
};

template <typename T> T& part(T& vcb) {
    return vcb;
}
template <typename T> T& part(T* vcb) {
    return *vcb;
}

// Field: puts the name into the entry's key. Mark: the byte of the entry that tells one from
// another.
template <auto init, auto insert, auto remove, auto field, auto mark>
constexpr Kind kind_of(const char* name, NTL_AVL_TREE vga_node::*tree,
                       vga_viewer_root vga_node::*root, vga_viewer vga_node::*title = nullptr) {
    using Record = std::remove_pointer_t<decltype(init(nullptr, nullptr))>;
    using Entry = std::remove_cvref_t<decltype(part(std::declval<Record&>().vcb))>;
    return {name,
            [](vga_node* node, const std::string& key, char byte) -> void* {
                Entry e = entry<Entry>();
                field(e, key);
                mark(e) = byte;
                Record* record = init(node, &e);
                return record != nullptr ? insert(record, node) : nullptr;
            },
            [](const void* record) {
                auto* own = static_cast<Record*>(const_cast<void*>(record));
                return static_cast<char>(mark(part(own->vcb)));
            },
            [](void* record) { remove(static_cast<Record*>(record), true); },
            [](const void* record) { return static_cast<const Record*>(record)->handle; },
            [](void* record) { return &static_cast<Record*>(record)->viewer; },
            [](void* record) { return &static_cast<Record*>(record)->gui_data.dialog; },
            tree,
            root,
            title};
}

constexpr auto describe = [](auto& e) -> char& { return e.def.description[0]; };

// Inserts that take further arguments.
vga_userid_password* insert_userid(vga_userid_password* userid, vga_node* node) {
    return vga_insert_vga_userid_password(userid, node);
}
vga_lu_lu_password* init_password(vga_node* node, const LU_LU_PASSWORD_ENTRY* e) {
    return vga_init_vga_lu_lu_password(node->cp_lu, e);
}
vga_lu_lu_password* insert_password(vga_lu_lu_password* password, vga_node* node) {
    return vga_insert_vga_lu_lu_password(password, node->cp_lu);
}

const Kind kinds[] = {
    kind_of<vga_init_vga_tp_def, vga_insert_vga_tp_def, vga_delete_vga_tp_def,
            [](TP_DEF_ENTRY& e, const std::string& name) { put(e.tp_name, name); }, describe>(
        "TP definition", &vga_node::tp_def_tree, &vga_node::tp_root),
    kind_of<vga_init_vga_tp_load_info, vga_insert_vga_tp_load_info, vga_delete_vga_tp_load_info,
            [](TP_LOAD_INFO_ENTRY& e, const std::string& name) { put(e.tp_name, name); },
            [](TP_LOAD_INFO_ENTRY& e) -> char& { return e.def_data.description[0]; }>(
        "TP load information", &vga_node::tp_load_tree, &vga_node::tp_load_root),
    kind_of<vga_init_vga_userid_password, insert_userid, vga_delete_vga_userid_password,
            [](USERID_PASSWORD_ENTRY& e, const std::string& name) { put(e.user_id, name); },
            describe>("user ID", &vga_node::userid_tree, &vga_node::userid_root),
    kind_of<vga_init_vga_security_access_list, vga_insert_vga_security_access_list,
            vga_delete_vga_security_access_list,
            [](SECURITY_ACCESS_LIST_ENTRY& e, const std::string& name) { put(e.list_name, name); },
            describe>("access list", &vga_node::access_list_tree, &vga_node::access_list_root),
    kind_of<init_password, insert_password, vga_delete_vga_lu_lu_password,
            [](LU_LU_PASSWORD_ENTRY& e, const std::string& name) { put(e.key.plu_name, name); },
            describe>("LU-LU password", &vga_node::sl_sec_tree, &vga_node::sl_sec_root,
                      &vga_node::sl_sec_title),
    kind_of<vga_init_vga_tn_assoc, vga_insert_vga_tn_assoc, vga_delete_vga_tn_assoc,
            [](TN3270_ASSOCIATION_ENTRY& e, const std::string& name) {
                put(e.display_lu_name, name);
            },
            describe>("association", &vga_node::tn_assoc_tree, &vga_node::tn_assoc_root,
                      &vga_node::tn_assoc_title),
    kind_of<vga_init_vga_tn_redirect, vga_insert_vga_tn_redirect, vga_delete_vga_tn_redirect,
            [](TN_REDIRECT_ENTRY& e, const std::string& name) {
                std::strcpy(e.key.client_address, name.c_str());
            },
            describe>("redirector", &vga_node::tn_redirect_tree, &vga_node::tn_redirect_root,
                      &vga_node::tn_redirect_title),
    kind_of<vga_init_vga_rtp_conn, vga_insert_vga_rtp_conn, vga_delete_vga_rtp_conn,
            [](RTP_CONNECTION_ENTRY& e, const std::string& name) {
                std::memcpy(e.connection_id, name.c_str(), name.size());
                put(e.rtp_name, "R" + name);
            },
            [](RTP_CONNECTION_ENTRY& e) -> NB_BYTE& { return e.state; }>(
        "RTP connection", &vga_node::rtp_conn_tree, &vga_node::rtp_root, &vga_node::rtp_title),
    kind_of<vga_init_vga_appcip_sess, vga_insert_vga_appcip_sess, vga_delete_vga_appcip_sess,
            [](IPBRIDGE_APPCIP_ENTRY& e, const std::string& name) {
                put(e.session.lu_name, name);
                e.session.session_id = static_cast<NB_ULONG>(name[0]);
            },
            [](IPBRIDGE_APPCIP_ENTRY& e) -> NB_BYTE& { return e.state; }>(
        "APPC-over-IP session", &vga_node::appcip_sess_tree, &vga_node::appcip_root,
        &vga_node::appcip_title),
};

struct Kinds : Store {
    Kinds() { add_lu62(lu62("CP", "CP")); }
    ~Kinds() override { vga_fail_allocation(0); }
};

// The records of a list's rows from the top, with null for its heading.
std::vector<void*> shown(vga_node* node, const Kind& kind) {
    std::vector<void*> out;
    const vga_viewer_root& root = node->*kind.root;
    for (NTL_AVL_NODE* at = root.top_items.first; at != nullptr;) {
        auto* row = static_cast<vga_viewer*>(at->self);
        out.push_back(row->data == node ? nullptr : row->data);
        auto* next = static_cast<vga_viewer*>(ntl_avl_next(at));
        at = next != nullptr ? &next->node : nullptr;
    }
    // The tree of rows runs from the bottom to the top.
    return {out.rbegin(), out.rend()};
}

TEST_F(Kinds, RowsStandInTheOrderOfTheKeysBehindTheHeading) {
    for (const Kind& kind : kinds) {
        SCOPED_TRACE(kind.name);
        void* c = kind.add(node, "C", 'c');
        void* a = kind.add(node, "A", 'a');
        void* d = kind.add(node, "D", 'd');
        void* b = kind.add(node, "B", 'b');
        std::vector<void*> expected{a, b, c, d};
        if (kind.title != nullptr) {
            expected.insert(expected.begin(), nullptr);
        }
        EXPECT_EQ(shown(node, kind), expected);
        EXPECT_EQ(count(node->*kind.tree), 4u);
    }
}

TEST_F(Kinds, ARecordListedAgainTakesTheEntryAndStaysWhatItIs) {
    for (const Kind& kind : kinds) {
        SCOPED_TRACE(kind.name);
        void* record = kind.add(node, "A", 'x');
        kind.add(node, "B", 'x');
        kind.row(record)->selected = 1;
        const NB_HANDLE handle = kind.handle(record);
        const std::size_t handles = nba_handle_count();
        const auto rows_before = shown(node, kind);
        EXPECT_EQ(kind.add(node, "A", 'y'), record);
        EXPECT_EQ(kind.mark(record), 'y');
        EXPECT_EQ(kind.handle(record), handle);
        EXPECT_EQ(nba_handle_count(), handles);
        EXPECT_EQ(kind.row(record)->selected, 1);
        EXPECT_EQ(shown(node, kind), rows_before);
        EXPECT_EQ(count(node->*kind.tree), 2u);
    }
}

TEST_F(Kinds, RemovalTakesHandleRowAndTheDialogsRecord) {
    for (const Kind& kind : kinds) {
        SCOPED_TRACE(kind.name);
        void* gone = kind.add(node, "A", 'x');
        void* kept = kind.add(node, "B", 'x');
        vga_dialog dialog{};
        dialog.parent_item = gone;
        *kind.dialog(gone) = &dialog;
        const NB_HANDLE handle = kind.handle(gone);
        kind.remove(gone);
        EXPECT_EQ(nba_validate_handle(handle), nullptr);
        EXPECT_EQ(nba_validate_handle(kind.handle(kept)), kept);
        EXPECT_EQ(dialog.parent_item, nullptr);
        const auto rows_left = shown(node, kind);
        ASSERT_EQ(rows_left.size(), kind.title != nullptr ? 2u : 1u);
        EXPECT_EQ(rows_left.back(), kept);
        EXPECT_EQ(count(node->*kind.tree), 1u);
    }
}

TEST_F(Kinds, TheEndOfTheNodeDetachesDialogsAndFreesAll) {
    std::vector<vga_dialog> dialogs(std::size(kinds));
    std::vector<NB_HANDLE> handles;
    for (std::size_t i = 0; i < std::size(kinds); ++i) {
        void* record = kinds[i].add(node, "A", 'x');
        kinds[i].add(node, "B", 'x');
        dialogs[i].parent_item = record;
        *kinds[i].dialog(record) = &dialogs[i];
        handles.push_back(kinds[i].handle(record));
    }
    vga_do_free_node_res(node, true, nullptr);
    for (std::size_t i = 0; i < std::size(kinds); ++i) {
        EXPECT_EQ(dialogs[i].parent_item, nullptr) << kinds[i].name;
        EXPECT_EQ(nba_validate_handle(handles[i]), nullptr) << kinds[i].name;
    }
}

TEST_F(Kinds, RandomChangesKeepListAndTreeAlike) {
    std::mt19937 random(7);
    for (const Kind& kind : kinds) {
        SCOPED_TRACE(kind.name);
        std::map<std::string, void*> model;
        for (int step = 0; step < 500; ++step) {
            const std::string name(1, static_cast<char>('A' + random() % 26));
            const auto known = model.find(name);
            if (known != model.end() && random() % 2 == 0) {
                kind.remove(known->second);
                model.erase(known);
            } else {
                void* record = kind.add(node, name, 'x');
                EXPECT_TRUE(known == model.end() || known->second == record);
                model[name] = record;
            }
        }
        std::vector<void*> expected(kind.title != nullptr ? 1 : 0, nullptr);
        for (const auto& [name, record] : model) {
            expected.push_back(record);
        }
        ASSERT_EQ(shown(node, kind), expected);
        ASSERT_EQ(count(node->*kind.tree), model.size());
    }
}

TEST_F(Kinds, WithoutMemoryNothingIsKeptAndTheProgramEnds) {
    for (const Kind& kind : kinds) {
        SCOPED_TRACE(kind.name);
        const std::size_t handles = nba_handle_count();
        const std::size_t in_use = vga_allocations_in_use();
        unsigned long nth = 0;
        void* record = nullptr;
        while (record == nullptr) {
            gvga_exit_code = 0;
            vga_fail_allocation(++nth);
            record = kind.add(node, "A", 'x');
            vga_fail_allocation(0);
            if (record == nullptr) {
                ASSERT_EQ(gvga_exit_code, VGA_EXIT_INTERNAL);
                ASSERT_EQ(vga_allocations_in_use(), in_use);
                ASSERT_EQ(nba_handle_count(), handles);
            }
        }
        EXPECT_GT(nth, 1u);
        gvga_exit_code = 0;
    }
}

} // namespace
} // namespace store_test
