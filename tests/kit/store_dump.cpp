#include "kit/store_dump.h"

#include "common/names.h"
#include "shell/globals.h"
#include "shell/messages.h"
#include "store/records.h"
#include "store/tracking.h"
#include "ui/viewer/viewer_internal.h"
#include "ui/viewer/viewer_type.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <sstream>
#include <unordered_map>
#include <utility>

namespace kit {

namespace {

template <std::size_t N> std::string name(const NB_BYTE (&field)[N]) {
    char text[N + 1];
    van_ebcdic_to_ascii(text, field, N);
    return text;
}
template <std::size_t N> std::string name(const char (&field)[N]) {
    std::string text(field, strnlen(field, N));
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}
template <typename... Part> std::string key(const Part&... part) {
    std::ostringstream text;
    std::size_t n = 0;
    ((text << (n++ != 0 ? "/" : "") << part), ...);
    return text.str();
}

// What a node does not tell those who follow it, so that they have it from their last query.
template <typename Entry> void forget_untold(Entry& entry) {
    // Indications of sessions name partner, mode and count, which the records keep beside their
    // entries, and the control point when it is known by then.
    if constexpr (requires { entry.cp_known; }) {
        std::memset(&entry.cp_known, 0, sizeof entry - offsetof(Entry, cp_known));
    }
    // Members are records of their own; the count that came with their owner's entry is that of one
    // block.
    if constexpr (requires { entry.def.num_ports; }) {
        entry.def.num_ports = 0;
    }
    if constexpr (requires { entry.def.num_users; }) {
        entry.def.num_users = 0;
    }
    if constexpr (requires { entry.def.num_sessions; }) {
        entry.def.num_sessions = 0;
    }
    if constexpr (requires { entry.def.num_dslu_templates; }) {
        entry.def.num_dslu_templates = 0;
        entry.def.modify_template = 0;
    }
}
// Of independent LUs no session status is told.
void forget_untold(LU62_ENTRY& entry) {
    if (entry.def.nau_address == 0) {
        entry.session_status = 0;
    }
}

#define NAMED(field) [](auto& one) { return name(one.field); }

struct Dump {
    STORE_DUMP result;
    std::unordered_map<const void*, std::string> known_; // records by address
    std::string owner_;                                  // the record being told
    int depth_ = 0;

    void fault(const std::string& text) { result.faults.push_back(owner_ + ": " + text); }
    void expect(bool holds, const char* what) {
        if (!holds) {
            fault(what);
        }
    }
    void line(const std::string& text) {
        result.text.append(static_cast<std::size_t>(2 * depth_), ' ').append(text) += '\n';
    }
    template <typename Value> void field(const char* what, const Value& value) {
        std::ostringstream text;
        text << "  " << what << '=' << value;
        line(text.str());
    }
    template <typename Entry> void entry(const char* what, Entry data) {
        forget_untold(data);
        bytes(what, &data, sizeof data);
    }

    std::string of(const void* record) const {
        const auto found = known_.find(record);
        return record == nullptr ? "-" : found == known_.end() ? "a stranger" : found->second;
    }

    void bytes(const char* what, const void* data, std::size_t size) {
        static constexpr char digits[] = "0123456789abcdef";
        constexpr std::size_t width = 16;
        const auto* next = static_cast<const NB_BYTE*>(data);
        for (std::size_t at = 0; at < size; at += width) {
            const std::size_t end = std::min(size, at + width);
            if (std::all_of(next + at, next + end, [](NB_BYTE byte) { return byte == 0; })) {
                continue;
            }
            char offset[32];
            std::snprintf(offset, sizeof offset, " +0x%03zx ", at);
            std::string text = std::string("  ") + what + offset;
            for (std::size_t i = at; i < end; ++i) {
                text += digits[next[i] >> 4];
                text += digits[next[i] & 15];
            }
            line(text);
        }
    }

    using NODES = std::vector<const NTL_AVL_NODE*>;
    // Height of a part of a tree; its nodes are appended from the left.
    int walk(const NTL_AVL_NODE* node, const NTL_AVL_NODE* parent, NODES* nodes) {
        if (node == nullptr) {
            return 0;
        }
        const int left = walk(node->left, node, nodes);
        nodes->push_back(node);
        const int right = walk(node->right, node, nodes);
        if (std::abs(left - right) > 1 || node->l_height != left || node->r_height != right ||
            node->parent != parent) {
            fault("a tree is out of balance");
        }
        return std::max(left, right) + 1;
    }

    // The records of a tree in their order; the tree itself is looked at as well.
    template <typename Record> std::vector<Record*> records(const NTL_AVL_TREE& tree) {
        NODES nodes;
        walk(tree.root, nullptr, &nodes);
        expect(tree.first == (nodes.empty() ? nullptr : nodes.front()), "a tree begins elsewhere");
        expect(tree.last == (nodes.empty() ? nullptr : nodes.back()), "a tree ends elsewhere");
        std::vector<Record*> found;
        for (const NTL_AVL_NODE* node : nodes) {
            found.push_back(static_cast<Record*>(node->self));
            if (node != nodes.front()) {
                expect(tree.compare(nodes[found.size() - 2]->key, node->key) < 0,
                       "a tree is out of order");
            }
        }
        return found;
    }

    // Another tree of records that are told elsewhere: their order in it.
    void members(const char* what, const NTL_AVL_TREE& tree) {
        std::string text;
        for (const void* record : records<void>(tree)) {
            text += (text.empty() ? "" : ", ") + of(record);
            expect(known_.contains(record), "a tree has a stranger");
        }
        if (!text.empty()) {
            field(what, text);
        }
    }

    template <typename Entry> void entry_behind(Entry* entry) {
        if constexpr (requires { entry->state; }) {
            // Of DLCs and ports indications say whether they are active, not what else they are.
            const NB_BYTE state = std::exchange(entry->state, entry->state == NOF_STATE_ACTIVE);
            bytes("entry", entry, entry->length);
            entry->state = state;
        } else {
            bytes("entry", entry, entry->length);
        }
    }

    // Tells a record; more tells what it has beside its entry.
    template <typename Record, typename Parent, typename More>
    void record(const std::string& what, Record* one, Parent* parent, More more) {
        const std::string above = std::exchange(owner_, what);
        known_[one] = what;
        line(what);
        expect(nba_validate_handle(one->handle) == one, "its handle does not lead to it");
        expect(result.handles.insert(one->handle).second, "its handle is another's, too");
        if constexpr (requires { one->parent; }) {
            expect(static_cast<const void*>(one->parent) == parent, "it has another parent");
        }
        ++depth_;
        if constexpr (requires { one->vcb.length; }) {
            entry("entry", one->vcb);
        } else if constexpr (requires { one->vcb->length; }) {
            if (one->vcb != nullptr) { // the ports that stand for something else have none
                entry_behind(one->vcb);
            }
        }
        if constexpr (requires { one->check_mark; }) {
            expect(one->check_mark == 0, "it is still marked for a check");
        }
        more();
        --depth_;
        owner_ = above;
    }

    // Tells the records of a tree, each with its kind and name; more gets each.
    template <typename Record, typename Parent, typename Name, typename More>
    void each(const char* kind, const NTL_AVL_TREE& tree, Parent* parent, Name name_of, More more) {
        for (Record* one : records<Record>(tree)) {
            record(key(kind, name_of(*one)), one, parent, [&] { more(one); });
        }
    }
    template <typename Record, typename Parent, typename Name>
    void each(const char* kind, const NTL_AVL_TREE& tree, Parent* parent, Name name_of) {
        each<Record>(kind, tree, parent, name_of, [](Record*) {});
    }

    void node_settings(const vga_node& node) {
        field("state", int{node.node_state});
        field("role", int{node.server_role});
        entry("defaults", node.defaults);
        entry("tn defaults", node.tn_defaults);
        entry("tn ssl", node.tn_ssl_ldap);
        entry("tn slp", node.tn_slp);
        field("truncation", node.trace_truncation);
        field("trace flags", node.trace_flags);
        field("kernel flags", node.trace_kernel_flags);
        field("cs trace", key(node.cs_trace[0], node.cs_trace[1], node.bck_cs_trace));
        field("tn trace", node.tn_server_trace);
        field("all DLCs traced", node.all_dlcs_traced);
        const auto& tracing = node.tracing;
        const NB_LONG counters[] = {tracing.token_ring, tracing.ethernet,    tracing.sdlc,
                                    tracing.fddi,       tracing.frame_relay, tracing.x25,
                                    tracing.chnl,       tracing.ip};
        for (const NB_LONG counter : counters) {
            field("traced", counter);
            expect(counter >= 0, "a tracing counter is below 0");
        }
        if (node.appcip_defaults != nullptr) {
            entry("APPC over IP", *node.appcip_defaults);
        }
        expect(std::all_of(std::begin(node.checks_running), std::end(node.checks_running),
                           [](NB_ULONG running) { return running == 0; }),
               "a check does not end");
        expect(node.build_flags == 0, "its build does not end");
    }

    void connectivity(vga_node& node) {
        each<vga_dspu_template>(
            "dspu template", node.dspu_template_tree, &node, NAMED(vcb.template_name),
            [&](auto* dspu) {
                each<vga_dslu_template>("dslu template", dspu->dslu_tree, dspu, [](auto& range) {
                    return key(int{range.vcb.first_nau}, int{range.vcb.last_nau});
                });
            });
        each<vga_dlc>("dlc", node.dlc_tree, &node, NAMED(vcb->dlc_name),
                      [&](auto* dlc) { field("card", dlc->card_index); });
        for (vga_port* fake : {node.dlur_fake_port, node.primary_line_fake_port}) {
            if (fake != nullptr) {
                record(fake == node.dlur_fake_port ? "DLUR port" : "primary line port", fake,
                       fake->parent, [] {});
                record("DLC of " + of(fake), fake->parent, &node, [] {});
            }
        }
        std::size_t below_dlcs = 0;
        for (auto* port : records<vga_port>(node.port_tree)) {
            below_dlcs += port->parent != nullptr;
            record(key("port", name(port->vcb->port_name)), port, port->parent, [&] {
                field("dlc", of(port->parent));
                field("template", of(port->dspu_template));
            });
        }
        for (auto* dlc : records<vga_dlc>(node.dlc_tree)) {
            owner_ = of(dlc);
            members((of(dlc) + " has").c_str(), dlc->port_tree);
            for (const auto* port : records<vga_port>(dlc->port_tree)) {
                expect(port->parent == dlc, "it has another's port");
                --below_dlcs;
            }
        }
        expect(below_dlcs == 0, "a port is not below its DLC");
        each<vga_cn>("cn", node.cn_tree, &node, NAMED(vcb.cn_name), [&](auto* cn) {
            each<vga_cn_port>("cn port", cn->port_tree, cn, NAMED(vcb.port_name),
                              [&](auto* member) {
                                  field("port", of(member->port));
                                  expect(member->port == nullptr || member->port->cn == cn,
                                         "its port is of another network");
                              });
        });
        for (auto* ls : records<vga_ls>(node.ls_tree)) {
            record(key("ls", name(ls->vcb->ls_name)), ls, ls->parent,
                   [&] { field("port", of(ls->parent)); });
        }
        pus("pu", node, node.local_pu_tree);
        pus("downstream pu", node, node.down_pu_tree);
        for (auto* ls : records<vga_ls>(node.ls_tree)) {
            field((of(ls) + " for").c_str(), of(ls->pu_entry));
        }
        for (auto* port : records<vga_port>(node.port_tree)) {
            field((of(port) + " in").c_str(), of(port->cn));
            members((of(port) + " has").c_str(), port->ls_tree);
        }
        each<vga_primary_line>(
            "primary line", node.primary_line_tree, &node, NAMED(vcb.line_name), [&](auto* line) {
                each<vga_primary_lu0>("primary lu", line->lu0_tree, line, NAMED(vcb.lu_name));
            });
    }

    void pus(const char* kind, vga_node& node, const NTL_AVL_TREE& tree) {
        each<vga_pu>(kind, tree, &node, NAMED(vcb.pu_name), [&](auto* pu) {
            field("ls", of(pu->ls_entry));
            expect(pu->ls_entry == nullptr || pu->ls_entry->pu_entry == pu,
                   "its link station has another PU");
            expect(!pu->pending && !pu->listing, "its LUs are still to be listed");
            if (pu->kind == VGA_PU_DOWNSTREAM) {
                each<vga_down_lu>("downstream lu", pu->lu_tree, pu, NAMED(vcb.dslu_name));
                members("by address", pu->nau_tree);
                return;
            }
            for (auto* dependent : records<vga_deplu>(pu->lu_tree)) {
                if (dependent->lu_type != VGA_DEPLU_TYPE_LU03) {
                    known_[dependent] =
                        key("lu62", name(reinterpret_cast<vga_lu62*>(dependent)->vcb.lu_name));
                    line(of(dependent));
                    continue;
                }
                auto* lu = reinterpret_cast<vga_lu03*>(dependent);
                record(key("lu03", name(lu->vcb.lu_name)), lu, pu, [&] {
                    field("user", lu->user != nullptr ? name(lu->user->vcb.user_name) : "-");
                    if (lu->extra_data != nullptr) {
                        entry("extra data", *lu->extra_data);
                    }
                });
            }
            members("by address", pu->nau_tree);
            expect(records<void>(pu->nau_tree).size() == records<void>(pu->lu_tree).size(),
                   "its trees of LUs differ");
        });
    }

    void lus_62(vga_node& node) {
        each<vga_lu62>("lu62", node.lu62_tree, &node, NAMED(vcb.lu_name), [&](auto* lu) {
            NB_LONG sessions = 0;
            field("pu", of(lu->parent_pu));
            each<vga_plu>("partner", lu->plu_tree, lu, NAMED(vcb.plu_name), [&](auto* plu) {
                const auto mode_name = [&](auto& mode) {
                    return key(name(lu->vcb.lu_name), name(plu->vcb.plu_name),
                               name(mode.vcb.mode_name));
                };
                each<vga_mode>("mode", plu->mode_tree, plu, mode_name, [&](auto* mode) {
                    sessions += mode->act_sess_count;
                    field("sessions", mode->act_sess_count);
                });
            });
            field("sessions", lu->act_sess_count);
            expect(lu->act_sess_count == sessions, "its session count is not that of its modes");
            expect(lu->startup_status == 0 && !lu->listing && lu->checking == 0,
                   "its details are still to be listed");
            each<vga_ls_routing>("route", lu->ls_routing_tree, lu, [](auto& route) {
                return key(name(route.vcb.key.lu_name), name(route.vcb.key.plu_name));
            });
            known_[&lu->ls_r_title] = "routes of " + of(lu);
        });
        members("LUs by alias", node.lu62_alias_tree);
        expect(records<void>(node.lu62_alias_tree).size() == records<void>(node.lu62_tree).size(),
               "an LU has no alias");
        field("cp lu", of(node.cp_lu));
        each<vga_mode_def>("mode definition", node.mode_def_tree, &node, NAMED(vcb.mode_name));
        each<vga_cos>("cos", node.cos_tree, &node, NAMED(vcb.cos_name), [&](auto* cos) {
            each<vga_cos_row>("node row", cos->node_row_tree, cos,
                              [](auto& row) { return key(row.vcb.row); });
            each<vga_cos_row>("tg row", cos->tg_row_tree, cos,
                              [](auto& row) { return key(row.vcb.row); });
        });
        each<vga_lu62_timeout>(
            "timeout", node.lu62_timeout_tree, &node,
            [](auto& one) { return key(int{one.vcb.resource_type}, name(one.vcb.resource_name)); },
            [&](auto* timeout) {
                field("of", timeout->resource == &node ? "the node" : of(timeout->resource));
            });
        for (const auto* lu : records<vga_lu62>(node.lu62_tree)) {
            field((of(lu) + " timeout").c_str(), of(lu->timeout));
        }
        for (const auto* mode : records<vga_mode_def>(node.mode_def_tree)) {
            field((of(mode) + " timeout").c_str(), of(mode->timeout));
        }
        field("timeout", of(node.global_timeout));
    }

    void remote(vga_node& node) {
        for (auto* dir : records<vga_dir>(node.dir_tree)) {
            known_[dir] = key("directory", name(dir->vcb.resource_name), dir->vcb.resource_type);
        }
        for (auto* dir : records<vga_dir>(node.dir_tree)) {
            record(of(dir), dir, &node, [&] {
                field("owner", of(dir->owner));
                members("end nodes", dir->end_node_tree);
                members("LUs", dir->lu_tree);
                expect(dir->parent_tree != nullptr || dir->owner == nullptr, "it is in no tree");
            });
        }
        members("directory", node.dir_server_tree);
        std::vector<vga_rem_sys*> systems = records<vga_rem_sys>(node.rem_sys_tree);
        if (vga_rem_sys* network = node.network_fake_rem_sys;
            network != nullptr && std::ranges::find(systems, network) == systems.end()) {
            systems.push_back(network);
        }
        for (vga_rem_sys* system : systems) {
            const std::string cp = name(system->cp_name);
            record(key("remote system", cp), system, &node, [&] {
                NB_LONG sessions = 0;
                field("defined", system->defined);
                const auto partner = [&](auto& plu) {
                    return key(cp, name(plu.key.plu_name), plu.key.number);
                };
                each<vga_rem_plu>("remote partner", system->remote_plu_tree, system, partner,
                                  [&](auto* plu) { sessions += remote_partner(plu); });
                field("sessions", system->session_count);
                expect(system->session_count == sessions, "its session count is wrong");
            });
        }
    }

    NB_LONG remote_partner(vga_rem_plu* plu) {
        NB_LONG sessions = 0;
        field("located", plu->located);
        field("from definition", plu->plu_defn);
        entry("definition", plu->defn);
        entry("location", plu->loc);
        const auto session = [&](auto& one) {
            return key(name(one.key.lu_name), name(one.key.mode_name), of(plu));
        };
        each<vga_rem_sess>("session", plu->sess_tree, plu, session, [&](auto* one) {
            field("count", one->session_count);
            expect(one->session_count > 0, "it has a session record without one");
            sessions += one->session_count;
        });
        field("sessions", plu->session_count);
        expect(plu->session_count == sessions, "its session count is wrong");
        return sessions;
    }

    void definitions(vga_node& node) {
        each<vga_tp_def>("tp", node.tp_def_tree, &node, NAMED(vcb.tp_name));
        each<vga_tp_load_info>(
            "tp load", node.tp_load_tree, &node,
            [](auto& load) { return key(name(load.vcb->tp_name), name(load.vcb->lu_alias)); },
            [&](auto* load) { field("shown", key(load->hex_tp_name, load->tp_name_length)); });
        each<vga_userid_password>("user id", node.userid_tree, &node, NAMED(vcb.user_id));
        each<vga_security_access_list>(
            "access list", node.access_list_tree, &node, NAMED(vcb.list_name), [&](auto* list) {
                each<vga_security_access_user>("access user", list->user_tree, list,
                                               NAMED(vcb.user_id));
            });
        each<vga_lu_lu_password>("lu-lu password", node.sl_sec_tree, &node, [](auto& one) {
            return key(name(one.key.lu_name), name(one.key.plu_name));
        });
        each<vga_tn_client>(
            "tn client", node.tn_client_tree, &node, NAMED(vcb.client.address), [&](auto* client) {
                each<vga_tn_sess>("tn session", client->sess_tree, client, [&](auto& one) {
                    return key(name(client->vcb.client.address), one.vcb.port);
                });
                expect(client->update_count == 0, "it waits for an update");
            });
        each<vga_tn_assoc>("association", node.tn_assoc_tree, &node, NAMED(vcb.display_lu_name));
        each<vga_tn_redirect>("redirect", node.tn_redirect_tree, &node, [](auto& one) {
            return key(name(one.vcb.key.client_address), one.vcb.key.client_port);
        });
        each<vga_rtp_conn>("rtp", node.rtp_conn_tree, &node, NAMED(vcb.rtp_name));
        members("connections by name", node.rtp_conn_name_tree);
        each<vga_appcip_sess>("appc over ip", node.appcip_sess_tree, &node, [](auto& one) {
            return key(name(one.vcb.session.lu_name), one.vcb.session.session_id);
        });
        members("sessions by number", node.appcip_id_tree);
        for (vga_viewer* title :
             {&node.rtp_title, &node.sl_sec_title, &node.tn_client_title, &node.tn_assoc_title,
              &node.tn_redirect_title, &node.appcip_title}) {
            known_[title] = "title";
        }
    }

    void node(vga_node& node) {
        record(key("node", name(node.node_name)), &node, &node, [&] {
            node_settings(node);
            connectivity(node);
            lus_62(node);
            remote(node);
            definitions(node);
        });
    }

    void pools(vga_system& system) {
        for (auto* pool : records<vga_sys_pool>(system.pool_tree)) {
            NB_LONG total = 0;
            NB_LONG in_use = 0;
            const auto part_of_node = [&](auto* part) {
                members("LUs", part->lu_tree);
                for (const auto* lu : records<vga_lu03>(part->lu_tree)) {
                    ++total;
                    in_use += lu->vcb.det_data.appl_conn_active == NAP_YES;
                    expect(std::memcmp(lu->vcb.def_data.pool_name, pool->pool_name, 8) == 0,
                           "it has an LU that names another pool");
                }
            };
            // The null pool stays when its last LU leaves it; nothing shows it.
            const bool null_pool =
                std::ranges::all_of(pool->pool_name, [](NB_BYTE byte) { return byte == 0; });
            if (null_pool && pool->total_count == 0) {
                for (auto* part : records<vga_pool>(pool->node_tree)) {
                    result.handles.insert(part->handle);
                    expect(part->lu_tree.root == nullptr,
                           "the null pool has LUs that do not count");
                }
                result.handles.insert(pool->handle);
                continue;
            }
            record(key("pool", name(pool->pool_name)), pool, &system, [&] {
                each<vga_pool>("part of", pool->node_tree, pool, NAMED(node_name), part_of_node);
                field("LUs", pool->total_count);
                field("in use", pool->appl_count);
                expect(pool->total_count == total, "its count of LUs is wrong");
                expect(pool->appl_count == in_use, "its count of LUs in use is wrong");
            });
        }
    }

    void domain(vga_system& system) {
        std::map<const vga_user*, NB_LONG> uses;
        std::size_t lus = 0;
        for (auto* lu : records<vga_lu03>(system.lu_tree)) {
            ++lus;
            ++uses[lu->user];
            expect(known_.contains(lu), "an LU of the domain is of no PU");
        }
        const auto of_pus = std::count_if(known_.begin(), known_.end(), [](const auto& one) {
            return one.second.starts_with("lu03/");
        });
        expect(static_cast<std::size_t>(of_pus) == lus, "an LU is not in the domain's tree");
        each<vga_user>("user", system.user_tree, &system, NAMED(vcb.user_name), [&](auto* user) {
            field("sessions", user->session_count);
            expect(user->session_count == uses[user], "its count of LUs in use is wrong");
            expect(user->marked[0] == 0 && user->marked[1] == 0, "it waits for an update");
            each<vga_user_sess>("user session", user->session_tree, user, [&](auto& one) {
                return key(name(user->vcb.user_name), name(one.vcb.session_name));
            });
        });
        each<vga_cpic>("cpic", system.cpic_tree, &system, NAMED(vcb.sym_dest_name));
        each<vga_rje_wkstn>("rje", system.rje_tree, &system, NAMED(vcb.wkstn_name));
        pools(system);
    }

    void rows(const NTL_AVL_TREE& items, const vga_viewer* parent, NB_ULONG count) {
        NB_ULONG found = 0;
        NODES nodes;
        walk(items.root, nullptr, &nodes);
        for (const vga_viewer* row = vga_viewer_top(items); row != nullptr;
             row = vga_viewer_sibling_below(row), ++found) {
            if (!known_.contains(row->data) && !known_.contains(row)) {
                fault("a row of type " + std::to_string(row->type) + " shows no record");
            }
            expect(row->parent == parent, "a row has another parent");
            const VGA_VIEWER_DESC& type = gvga_viewer_desc[row->type];
            std::string text = "row " + std::to_string(row->type) + " " +
                               of(known_.contains(row) ? row : row->data);
            if (type.create_text != nullptr) {
                char shown[VGA_VIEWER_MAX_TEXT_LENGTH + 1];
                type.create_text(row->data, shown);
                text += std::string(" | ") + shown;
            }
            if (type.choose_icon != nullptr) {
                text += " | " + std::to_string(type.choose_icon(row->data));
            }
            line(text);
            ++depth_;
            rows(row->children, row, row->child_count);
            --depth_;
        }
        expect(found == count, "a count of rows is wrong");
    }

    void list(const char* what, vga_viewer_root& root) {
        const std::string above = std::exchange(owner_, what);
        line(std::string("list ") + what);
        ++depth_;
        rows(root.top_items, nullptr, root.top_count);
        --depth_;
        result.handles.insert(root.handle);
        owner_ = above;
    }

    void system(vga_system& system) {
        result.handles.insert(system.handle);
        owner_ = "system";
        expect(system.build_flags == 0, "its build does not end");
        line("system " + name(system.local_server) + ' ' + name(system.central_logger));
        field("logging", key(system.central_logging, system.log_audit, system.log_audit_verbose,
                             system.log_exception, system.log_exception_verbose));
        const auto nodes = records<vga_node>(system.node_tree);
        for (vga_node* one : nodes) {
            node(*one);
        }
        domain(system);
        list("nodes", system.node_viewer_root);
        list("users", system.user_viewer_root);
        list("cpic", system.cpic_viewer_root);
        list("rje", system.rje_viewer_root);
        list("pools", system.pool_viewer_root);
        for (vga_node* one : nodes) {
            list("connectivity", one->links_root);
            list("local LUs", one->lus_root);
            list("remote systems", one->rem_sys_root);
            list("modes", one->mode_root);
            list("tps", one->tp_root);
            list("tp loads", one->tp_load_root);
            list("rtp", one->rtp_root);
            list("user ids", one->userid_root);
            list("access lists", one->access_list_root);
            list("lu-lu passwords", one->sl_sec_root);
            list("tn clients", one->tn_client_root);
            list("associations", one->tn_assoc_root);
            list("redirects", one->tn_redirect_root);
            list("appc over ip", one->appcip_root);
            for (auto* dspu : records<vga_dspu_template>(one->dspu_template_tree)) {
                list(("ranges of " + of(dspu)).c_str(), dspu->dslu_root);
            }
        }
        if (nba_handle_count() != result.handles.size()) {
            fault(std::to_string(nba_handle_count()) + " handles are in use, but there are " +
                  std::to_string(result.handles.size()) + " records");
        }
    }
};
#undef NAMED

} // namespace

STORE_DUMP dump_store() {
    Dump dump;
    dump.system(*gvga_system);
    return std::move(dump.result);
}

std::string difference(const std::string& expected, const std::string& actual) {
    const auto lines_of = [](const std::string& text) {
        std::istringstream stream(text);
        std::vector<std::string> lines;
        for (std::string line; std::getline(stream, line);) {
            lines.push_back(line);
        }
        return lines;
    };
    const std::vector<std::string> a = lines_of(expected);
    const std::vector<std::string> b = lines_of(actual);
    const auto [in_a, in_b] = std::ranges::mismatch(a, b);
    if (in_a == a.end() && in_b == b.end()) {
        return "";
    }
    const auto indent = [](const std::string& line) {
        return std::min(line.find_first_not_of(' '), line.size());
    };
    std::string text;
    // What the lines belong to: the last line above that is indented less.
    for (auto above = in_a; above != a.begin();) {
        if (indent(*--above) < indent(in_a != a.end() ? *in_a : *in_b)) {
            text = "@ " + *above + '\n';
            break;
        }
    }
    constexpr int shown = 8;
    for (auto line = in_a; line != a.end() && line - in_a < shown; ++line) {
        text += "- " + *line + '\n';
    }
    for (auto line = in_b; line != b.end() && line - in_b < shown; ++line) {
        text += "+ " + *line + '\n';
    }
    return text;
}

} // namespace kit
