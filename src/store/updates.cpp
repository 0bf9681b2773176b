// Re-issues the definitions that name a changed LU, pool or partner, and sees the run to its end.
#include "nof/tn3270.h"
#include "nof/user.h"
#include "shell/globals.h"
#include "store/record_util.h"
#include "store/store.h"
#include "store/tracking.h"
#include "store/tracking_util.h"
#include "ui/framework/message_box.h"

#include <vector>

namespace {

constexpr std::size_t GROUP = 100;           // entries in one definition
constexpr NB_BYTE MODEL_OF_ANY_LU = 0xFF;    // of an LU that suits every session
constexpr NB_BYTE DEFAULT_SESSION_MODEL = 2; // of its sessions, and of those on a pool

std::vector<NB_HANDLE> failed_runs; // by the dialog that started them
std::vector<NB_HANDLE> told;        // dialogs that close when the operator has read of a failure

// Where re-issued definitions go, those of a node included: the domain's configuration knows which
// node has what they name.
NB_HANDLE update_target() {
    return gvga_system->config_file_handle;
}

// One run of re-issues with the same correlator and callback.
class Issue {
public:
    Issue(NB_ULONG correlator, VGA_CALLBACK completion) : corr(correlator), callback(completion) {
        std::erase(failed_runs, correlator);
    }
    // Sends a block; null: there was no memory for it. False: exit code 1 is set.
    bool send(void* vcb) {
        if (vcb == nullptr || !vga_queue_verb(update_target(), vcb, corr, callback)) {
            vga_free(vcb);
            VGA_FATAL(VGA_EXIT_INTERNAL, 0);
            return false;
        }
        ++issued;
        return true;
    }
    int count() const { return issued; }

private:
    NB_ULONG corr;
    VGA_CALLBACK callback;
    int issued = 0;
};

template <std::size_t N> void set_name(NB_BYTE (&field)[N], const NB_BYTE* name) {
    std::memcpy(field, name, N);
}

// Name and model that definitions take from an LU 0 to 3 or a pool.
struct Target {
    const NB_BYTE* name;
    NB_BYTE model;
};
Target target_of(const vga_deplu* any) {
    if (any->lu_type == VGA_DEPLU_TYPE_POOL) {
        return {reinterpret_cast<const vga_sys_pool*>(any)->pool_name, DEFAULT_SESSION_MODEL};
    }
    const LU03_ENTRY& lu = reinterpret_cast<const vga_lu03*>(any)->vcb;
    const NB_BYTE model = lu.def_data.lu_model;
    return {lu.lu_name,
            model == NOF_LU_UNKNOWN || model == MODEL_OF_ANY_LU ? DEFAULT_SESSION_MODEL : model};
}

// A definition block with as many items behind it as are still to be sent, at most a group.
template <typename Block, typename Item> class Group {
public:
    Group(NB_USHORT opcode, std::size_t items)
        : capacity(std::min(items, GROUP)),
          block(vga_new_vcb<Block>(opcode, sizeof(Block) + capacity * sizeof(Item))) {}
    Block* operator->() const { return block; }
    explicit operator bool() const { return block != nullptr; }
    bool full() const { return filled == capacity; }
    std::size_t size() const { return capacity; }
    Item& add(const Item& item) {
        Item& place = reinterpret_cast<Item*>(block + 1)[filled++];
        place = item;
        place.length = sizeof place;
        return place;
    }
    void* vcb() const { return block; }

private:
    std::size_t capacity;
    std::size_t filled = 0;
    Block* block;
};

// Sends a user's marked sessions of a type, each changed by the function.
template <typename Change>
bool update_user(Issue& issue, vga_user* user, NB_BYTE type, Change change) {
    NB_ULONG& marked = user->marked[type - 1];
    auto* sess = ntl_avl_first<vga_user_sess>(user->session_tree);
    while (marked != 0 && sess != nullptr) {
        Group<DEFINE_EMULATOR_USER, USER_SESSION> group(NAP_DEFINE_EMULATOR_USER, marked);
        if (!group) {
            return issue.send(nullptr);
        }
        std::memcpy(group->user_name, user->vcb.user_name, sizeof group->user_name);
        group->def = user->vcb.def;
        group->def.num_sessions = static_cast<NB_ULONG>(group.size());
        for (; sess != nullptr && !group.full(); sess = vga_next<vga_user_sess>(sess->node)) {
            if (sess->update_mark != 0 && sess->vcb.session_type == type) {
                change(group.add(sess->vcb));
                vga_unmark_session(sess);
            }
        }
        if (!VGA_ASSERT(group.full())) {
            vga_free(group.vcb());
            return false;
        }
        if (!issue.send(group.vcb())) {
            return false;
        }
    }
    return true;
}

template <typename Change> void update_users(Issue& issue, NB_BYTE type, Change change) {
    for (auto* user = ntl_avl_first<vga_user>(gvga_system->user_tree);
         user != nullptr && update_user(issue, user, type, change);
         user = vga_next<vga_user>(user->node)) {
    }
}

bool update_client(Issue& issue, vga_tn_client* client, const NB_BYTE* name) {
    auto* sess = ntl_avl_first<vga_tn_sess>(client->sess_tree);
    while (client->update_count > 0 && sess != nullptr) {
        Group<DEFINE_TN3270_ACCESS, TN3270_SESSION> group(
            NAP_DEFINE_TN3270_ACCESS, static_cast<std::size_t>(client->update_count));
        if (!group) {
            return issue.send(nullptr);
        }
        group->client = client->vcb.client;
        group->def = client->vcb.def;
        group->def.num_sessions = static_cast<NB_ULONG>(group.size());
        for (; sess != nullptr && !group.full(); sess = vga_next<vga_tn_sess>(sess->node)) {
            if (sess->display_mark == 0 && sess->printer_mark == 0) {
                continue;
            }
            TN3270_SESSION& item = group.add(sess->vcb);
            if (sess->display_mark != 0) {
                set_name(item.lu_name, name);
            }
            if (sess->printer_mark != 0) {
                set_name(item.printer_lu_name, name);
            }
            sess->display_mark = sess->printer_mark = 0;
            --client->update_count;
        }
        if (!VGA_ASSERT(group.full())) {
            vga_free(group.vcb());
            return false;
        }
        if (!issue.send(group.vcb())) {
            return false;
        }
    }
    return true;
}

// A definition whose key changes is deleted first.
bool update_assoc(Issue& issue, vga_tn_assoc* assoc, const NB_BYTE* name) {
    const bool renamed =
        assoc->display_mark != 0 && vga_compare_ebc8(assoc->vcb.display_lu_name, name) != 0;
    if (renamed) {
        auto* vcb = vga_new_vcb<DELETE_TN3270_ASSOCIATION>(NAP_DELETE_TN3270_ASSOCIATION);
        if (vcb != nullptr) {
            set_name(vcb->display_lu_name, assoc->vcb.display_lu_name);
        }
        if (!issue.send(vcb)) {
            return false;
        }
    }
    auto* vcb = vga_new_vcb<DEFINE_TN3270_ASSOCIATION>(NAP_DEFINE_TN3270_ASSOCIATION);
    if (vcb != nullptr) {
        set_name(vcb->display_lu_name, renamed ? name : assoc->vcb.display_lu_name);
        vcb->def = assoc->vcb.def;
        if (assoc->printer_mark != 0) {
            set_name(vcb->def.printer_lu_name, name);
        }
    }
    assoc->display_mark = assoc->printer_mark = 0;
    return issue.send(vcb);
}

// A downstream LU that is defined takes no other definition.
bool update_down_lu(Issue& issue, vga_down_lu* lu, const NB_BYTE* host_name) {
    auto* remove = vga_new_vcb<DELETE_BY_NAME8>(NAP_DELETE_DOWNSTREAM_LU);
    if (remove != nullptr) {
        set_name(remove->name, lu->vcb.dslu_name);
    }
    if (!issue.send(remove)) {
        return false;
    }
    auto* vcb = vga_new_vcb<DEFINE_DOWNSTREAM_LU>(NAP_DEFINE_DOWNSTREAM_LU);
    if (vcb != nullptr) {
        set_name(vcb->dslu_name, lu->vcb.dslu_name);
        vcb->def = lu->vcb.def;
        set_name(vcb->def.host_lu_name, host_name);
    }
    lu->update_mark = 0;
    --lu->parent->marked;
    return issue.send(vcb);
}

bool update_wkstn(Issue& issue, vga_rje_wkstn* wkstn, const NB_BYTE* name) {
    auto* vcb = vga_new_vcb<DEFINE_RJE_WKSTN>(NAP_DEFINE_RJE_WKSTN);
    if (vcb != nullptr) {
        std::memcpy(vcb->wkstn_name, wkstn->vcb.wkstn_name, sizeof vcb->wkstn_name);
        vcb->def = wkstn->vcb.def;
        for (std::size_t slot = 0; slot < std::size(vcb->def.lu_names); ++slot) {
            if ((wkstn->update_mask >> slot & 1) != 0) {
                set_name(vcb->def.lu_names[slot], name);
            }
        }
    }
    wkstn->update_mask = 0;
    return issue.send(vcb);
}

} // namespace

int vga_update_sessions(const vga_deplu* lu03, const vga_lu62* lu62, const vga_rem_plu* rem_plu,
                        NB_ULONG corr, VGA_CALLBACK callback) {
    Issue issue(corr, callback);
    if (lu03 != nullptr) {
        update_users(issue, NOF_SESSION_3270, [target = target_of(lu03)](USER_SESSION& session) {
            set_name(session.lu_name, target.name);
            session.partner.lu.lu_model = target.model;
        });
    } else if (lu62 != nullptr) {
        update_users(issue, NOF_SESSION_5250, [lu62](USER_SESSION& session) {
            std::memcpy(session.lu_name, lu62->vcb.def.lu_alias, sizeof session.lu_name);
        });
    } else if (rem_plu != nullptr) {
        update_users(issue, NOF_SESSION_5250, [rem_plu](USER_SESSION& session) {
            std::memcpy(session.partner.plu_alias, rem_plu->defn.def.plu_alias,
                        sizeof session.partner.plu_alias);
        });
    }
    return issue.count();
}

int vga_update_tn_clients(vga_node* node, const vga_deplu* lu, NB_ULONG corr,
                          VGA_CALLBACK callback) {
    Issue issue(corr, callback);
    for (auto* client = ntl_avl_first<vga_tn_client>(node->tn_client_tree);
         client != nullptr && update_client(issue, client, target_of(lu).name);
         client = vga_next<vga_tn_client>(client->node)) {
    }
    return issue.count();
}

int vga_update_tn_assocs(vga_node* node, const vga_lu03* lu, NB_ULONG corr, VGA_CALLBACK callback) {
    Issue issue(corr, callback);
    for (auto* assoc = ntl_avl_first<vga_tn_assoc>(node->tn_assoc_tree); assoc != nullptr;
         assoc = vga_next<vga_tn_assoc>(assoc->node)) {
        if ((assoc->display_mark != 0 || assoc->printer_mark != 0) &&
            !update_assoc(issue, assoc, lu->vcb.lu_name)) {
            break;
        }
    }
    return issue.count();
}

int vga_update_dslus(vga_node* node, const vga_deplu* lu, NB_ULONG corr, VGA_CALLBACK callback) {
    Issue issue(corr, callback);
    const NB_BYTE* name = target_of(lu).name;
    for (auto* pu = ntl_avl_first<vga_pu>(node->down_pu_tree); pu != nullptr;
         pu = vga_next<vga_pu>(pu->node)) {
        for (auto* down_lu = ntl_avl_first<vga_down_lu>(pu->lu_tree);
             down_lu != nullptr && pu->marked != 0;
             down_lu = vga_next<vga_down_lu>(down_lu->node)) {
            if (down_lu->update_mark != 0 && !update_down_lu(issue, down_lu, name)) {
                return issue.count();
            }
        }
    }
    return issue.count();
}

int vga_update_rje_wkstns(const vga_lu03* lu, NB_ULONG corr, VGA_CALLBACK callback) {
    Issue issue(corr, callback);
    for (auto* wkstn = ntl_avl_first<vga_rje_wkstn>(gvga_system->rje_tree); wkstn != nullptr;
         wkstn = vga_next<vga_rje_wkstn>(wkstn->node)) {
        if (wkstn->update_mask != 0 && !update_wkstn(issue, wkstn, lu->vcb.lu_name)) {
            break;
        }
    }
    return issue.count();
}

// ---- completions ----

namespace {

// False: it failed, and the log has it.
bool take(VGA_COMPLETION* work, vga_node* node) {
    if (vcb_header(work->vcb)->primary_rc != NAP_OK) {
        vga_log_failed_update(work->vcb, node);
        return false;
    }
    if (gvga_store_hooks.definition_done != nullptr) {
        gvga_store_hooks.definition_done(work, node);
    }
    return true;
}

// Of a verb whose dialog has closed since, and perhaps its node has gone: the correlator.
void take_late(VGA_COMPLETION* work) {
    vga_node* node = vga_validate_node(work->corr);
    if (node != nullptr || vcb_header(work->vcb)->primary_rc == NAP_OK) {
        take(work, node);
    }
}

} // namespace

void vga_process_update(VGA_COMPLETION* work, vga_dialog* dialog, bool quiet, vga_node* node,
                        NB_LONG* verbs_outstanding) {
    if (!take(work, node)) {
        std::erase(failed_runs, dialog->handle);
        failed_runs.push_back(dialog->handle);
    }
    --*verbs_outstanding;
    VGA_ASSERT(*verbs_outstanding >= 0);
    vga_end_update(dialog, quiet, *verbs_outstanding);
}

bool vga_end_update(vga_dialog* dialog, bool quiet, NB_LONG verbs_outstanding) {
    if (verbs_outstanding > 0) {
        return false;
    }
    if (std::erase(failed_runs, dialog->handle) != 0) {
        vga_unmark_all();
        if (!quiet) {
            told.push_back(dialog->handle);
        }
        vga_display_error_dialog(gvga_main_dialog, 276, "updatefail",
                                 quiet ? nullptr : vga_failed_update_cb, dialog->handle, "");
    } else if (!quiet) {
        vga_close_children(dialog, true, true);
    }
    return true;
}

void vga_failed_update_cb(vga_dialog*, NB_ULONG arg, NB_ULONG) {
    if (std::erase(told, arg) != 0) {
        vga_close_children(static_cast<vga_dialog*>(nba_validate_handle(arg)), true, true);
    }
}

void vga_leave_update(vga_dialog* dialog, const vga_node* node) {
    std::erase(told, dialog->handle);
    if (node == nullptr) {
        return;
    }
    const auto of_this_run = [dialog](const VGA_QUEUE_ENTRY& entry) {
        return entry.corr == dialog->handle && entry.target == update_target() &&
               entry.callback != nullptr;
    };
    while (VGA_QUEUE_ENTRY* entry = vga_find_verb(of_this_run)) {
        entry->corr = node->handle;
        entry->callback = take_late;
    }
    vga_end_update(dialog, true, 0);
}
