#include "common/avl.h"

#include "nba/nba.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

struct Item {
    NTL_AVL_NODE node;
    int key;
};

int compare_int(const void* a, const void* b) {
    const int x = *static_cast<const int*>(a);
    const int y = *static_cast<const int*>(b);
    return (x > y) - (x < y);
}

Item* record(const NTL_AVL_NODE* node) {
    return static_cast<Item*>(node->self);
}

// Checks links, heights and order of a subtree; appends its keys and returns its height.
int check_subtree(const NTL_AVL_NODE* node, const NTL_AVL_NODE* parent, std::vector<int>& keys) {
    if (node == nullptr) {
        return 0;
    }
    EXPECT_EQ(node->parent, parent);
    const int left = check_subtree(node->left, node, keys);
    keys.push_back(record(node)->key);
    const int right = check_subtree(node->right, node, keys);
    EXPECT_EQ(node->l_height, left);
    EXPECT_EQ(node->r_height, right);
    EXPECT_LE(std::abs(left - right), 1);
    return std::max(left, right) + 1;
}

void check_tree(const NTL_AVL_TREE& tree, const std::vector<int>& expected) {
    std::vector<int> keys;
    check_subtree(tree.root, nullptr, keys);
    ASSERT_EQ(keys, expected);
    ASSERT_TRUE(!expected.empty() || (!tree.root && !tree.first && !tree.last));
    std::vector<int> walked;
    for (auto* item = ntl_avl_first<Item>(tree); item != nullptr;
         item = static_cast<Item*>(ntl_avl_next(&item->node))) {
        walked.push_back(item->key);
    }
    ASSERT_EQ(walked, expected);
    walked.clear();
    for (auto* item = ntl_avl_last<Item>(tree); item != nullptr;
         item = static_cast<Item*>(ntl_avl_prev(&item->node))) {
        walked.push_back(item->key);
    }
    std::reverse(walked.begin(), walked.end());
    ASSERT_EQ(walked, expected);
}

class Avl : public testing::Test {
protected:
    void SetUp() override { ntl_avl_init_tree(&tree, compare_int); }
    void TearDown() override { EXPECT_EQ(nba_assert_count(), asserts); }

    Item* make(int key) {
        auto& item = items[key] = std::make_unique<Item>();
        item->key = key;
        ntl_avl_init_node(&item->node, item.get(), &item->key);
        return item.get();
    }
    void insert(std::initializer_list<int> keys) {
        for (int key : keys) {
            ASSERT_TRUE(ntl_avl_insert(&tree, &make(key)->node));
        }
    }
    NTL_AVL_TREE tree;
    std::map<int, std::unique_ptr<Item>> items;
    std::size_t asserts = nba_assert_count();
};

// Random insertions and deletions over few and over many keys, against a map.
TEST_F(Avl, BehavesAsAMap) {
    std::mt19937 random(20);
    for (const int range : {8, 60, 400}) {
        std::map<int, Item*> model;
        items.clear();
        ntl_avl_init_tree(&tree, compare_int);
        for (int step = 0; step < 4000; ++step) {
            // Grows and shrinks in turn, so that it becomes full and empty.
            const bool growing = step / 500 % 2 == 0;
            const int key = static_cast<int>(random() % range);
            const auto present = model.find(key);
            if (random() % 4 < (growing ? 3U : 1U)) {
                Item other{{}, key};
                ntl_avl_init_node(&other.node, &other, &other.key);
                if (present != model.end()) {
                    ASSERT_FALSE(ntl_avl_insert(&tree, &other.node));
                    ASSERT_FALSE(AVL_IN_TREE(other.node));
                } else {
                    const auto added = model.emplace(key, make(key)).first;
                    NTL_AVL_NODE* node = &added->second->node;
                    if (added != model.begin() && random() % 2 == 0) {
                        ntl_avl_insert_behind(&tree, node, &std::prev(added)->second->node);
                    } else {
                        ASSERT_TRUE(ntl_avl_insert(&tree, node));
                    }
                }
            } else if (present != model.end()) {
                NTL_AVL_NODE& node = present->second->node;
                ntl_avl_delete(&tree, &node);
                ASSERT_FALSE(AVL_IN_TREE(node));
                ASSERT_TRUE(!node.parent && !node.left && !node.right);
                model.erase(present);
            }
            const auto found = model.find(key);
            const auto next = model.upper_bound(key);
            ASSERT_EQ(ntl_avl_find(&tree, &key), found != model.end() ? found->second : nullptr);
            ASSERT_EQ(ntl_avl_find_next(&tree, &key), next != model.end() ? next->second : nullptr);
            std::vector<int> keys;
            for (const auto& entry : model) {
                keys.push_back(entry.first);
            }
            ASSERT_NO_FATAL_FAILURE(check_tree(tree, keys)) << "step " << step;
        }
    }
}

// A node that is in a tree, or in none, where it should not be, is reported and changes nothing.
TEST_F(Avl, Misuse) {
    insert({1, 2, 3});
    Item* outside = make(4);
    const struct {
        const char* expression;
        std::function<void()> misuse;
    } cases[] = {
        {"!AVL_IN_TREE(*node)", [&] { ntl_avl_insert(&tree, &items.at(2)->node); }},
        {"node_in_tree", [&] { ntl_avl_delete(&tree, &outside->node); }},
        {"AVL_IN_TREE(*node)", [&] { EXPECT_EQ(ntl_avl_next(&outside->node), nullptr); }},
        {"AVL_IN_TREE(*node)", [&] { EXPECT_EQ(ntl_avl_prev(&outside->node), nullptr); }},
    };
    for (const auto& each : cases) {
        each.misuse();
        EXPECT_EQ(nba_assert_count(), ++asserts);
        EXPECT_STREQ(nba_last_assert(), each.expression);
        check_tree(tree, {1, 2, 3});
    }
}

// The key sought or inserted comes first: some comparators are not symmetric.
TEST_F(Avl, ComparatorGetsTheSoughtKeyFirst) {
    static const void* sought;
    tree.compare = [](const void* a, const void* b) {
        EXPECT_EQ(a, sought);
        return compare_int(a, b);
    };
    for (int key : {5, 3, 8, 1, 4, 9}) {
        Item* item = make(key);
        sought = &item->key;
        ntl_avl_insert(&tree, &item->node);
        const int wanted = key;
        sought = &wanted;
        EXPECT_EQ(ntl_avl_find(&tree, sought), item);
        ntl_avl_find_next(&tree, sought);
    }
}

std::string padded(std::string text, std::size_t width, bool ebcdic = true) {
    text.resize(width, ' ');
    if (ebcdic) {
        nba_local_to_ebcdic(text.data(), text.size());
    }
    return text;
}

int sign(int value) {
    return (value > 0) - (value < 0);
}

TEST(AvlCompare, NamesInBothOrders) {
    const struct {
        const char *a, *b;
        int bytes, mib; // order of EBCDIC bytes, and of lengths and local characters
    } cases[] = {
        {"A", "A", 0, 0},         {"AB", "B", -1, 1}, {"Z", "AA", 1, -1},
        {"A1", "AA", 1, -1},      {"A", "B", -1, -1}, {"LONGNAM1", "LONGNAM2", -1, -1},
        {"LONGNAME", "Z", -1, 1},
    };
    const struct {
        NTL_AVL_COMPARE bytes, mib;
        std::size_t width;
    } widths[] = {{ntl_compare_name, ntl_compare_mib_sna_name, 8},
                  {ntl_compare_fq_name, ntl_compare_mib_fq_name, 17},
                  {ntl_compare_tp_name, ntl_compare_mib_tp_name, 64}};
    for (const auto& each : cases) {
        for (const auto& by : widths) {
            const std::string a = padded(each.a, by.width);
            const std::string b = padded(each.b, by.width);
            EXPECT_EQ(by.bytes(a.data(), b.data()), each.bytes) << each.a << " " << each.b;
            EXPECT_EQ(sign(by.mib(a.data(), b.data())), each.mib) << each.a << " " << each.b;
            EXPECT_EQ(sign(by.mib(b.data(), a.data())), -each.mib) << each.a << " " << each.b;
        }
        const std::string a = padded(each.a, 8, false);
        const std::string b = padded(each.b, 8, false);
        EXPECT_EQ(sign(ntl_compare_mib_ascii_sna_name(a.data(), b.data())), each.mib);
    }
    EXPECT_EQ(ntl_compare_mib_sna_name(padded("ABCD", 8).data(), padded("A", 8).data()), 3);
}

TEST(AvlCompare, Numbers) {
    const std::uint8_t bytes[] = {1, 200};
    EXPECT_EQ(ntl_compare_byte(&bytes[0], &bytes[1]), -199);

    const std::uint16_t ids[][2] = {{1, 2}, {60000, 2}, {0, 60000}};
    EXPECT_EQ(ntl_compare_lfsid(ids[0], ids[1]), -59999); // the first value on a tie
    EXPECT_EQ(ntl_compare_lfsid(ids[1], ids[2]), -59998);
    EXPECT_EQ(ntl_compare_lfsid(ids[2], ids[2]), 0);

    EXPECT_EQ(ntl_compare_proc_id("\x01\x02\x03\x04", "\x01\x02\x03\xFF"), -1);
    EXPECT_EQ(ntl_compare_proc_id("\xFF\x02\x03\x04", "\x01\x02\x03\xFF"), 1);
    EXPECT_EQ(ntl_compare_name("\x80\0\0\0\0\0\0", "\x7F\xFF\xFF\xFF\xFF\xFF\xFF"), 1);
}

TEST(AvlCompare, ProcedureCorrelatorsByNameFirst) {
    const auto key = [](char id, const char* name) {
        return std::string(8, id) + padded(name, 17);
    };
    const auto compare = [](const std::string& a, const std::string& b) {
        return sign(ntl_compare_fqpcid(a.data(), b.data()));
    };
    EXPECT_EQ(compare(key('\x01', "NET.B"), key('\x02', "NET.A")), 1);
    EXPECT_EQ(compare(key('\x01', "NET.A"), key('\xF2', "NET.A")), -1);
    EXPECT_EQ(compare(key('\x01', "NET.A"), key('\x01', "NET.A")), 0);
}

} // namespace
