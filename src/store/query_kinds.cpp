// The queries of single kinds that are sent again outside the build, as rows of the list queries.
#include "store/query.h"
#include "store/record_util.h"

namespace {

template <typename Record> const void* entry_of(const Record* record) {
    return record != nullptr ? &record->vcb : nullptr;
}

// last gets the record of the page's last entry. False: the verb failed.
template <typename Record> bool process(VGA_QUERY query, void* owner, void* vcb, Record** last) {
    const vga_page page = vga_process_query(query, owner, vcb);
    *last = static_cast<Record*>(page.record);
    return !page.failed;
}
template <typename Entry>
bool process_entries(VGA_QUERY query, void* owner, void* vcb, const Entry** last) {
    const vga_page page = vga_process_query(query, owner, vcb);
    *last = static_cast<const Entry*>(page.last);
    return !page.failed;
}

} // namespace

bool vga_issue_query_port(vga_node* node, const vga_port* last, VGA_CALLBACK callback) {
    return vga_issue_query(VGA_QUERY_PORT, node, last != nullptr ? last->vcb : nullptr, 0, 0,
                           callback);
}
bool vga_process_query_port(vga_node* node, void* vcb, vga_port** last) {
    return process(VGA_QUERY_PORT, node, vcb, last);
}

bool vga_issue_query_ls(vga_node* node, const vga_ls* last, const char* name, NB_USHORT count,
                        NB_ULONG corr, VGA_CALLBACK callback) {
    if (count != 1) {
        return vga_issue_query(VGA_QUERY_LS, node, last != nullptr ? last->vcb : nullptr, 0, corr,
                               callback);
    }
    NB_BYTE key[offsetof(LS_ENTRY, ls_name) + sizeof(NB_NAME8L)] = {};
    std::memcpy(key + offsetof(LS_ENTRY, ls_name), name, sizeof(NB_NAME8L));
    return vga_issue_query(VGA_QUERY_LS, node, key, 1, corr, callback);
}
bool vga_process_query_ls(vga_node* node, void* vcb, vga_ls** last) {
    return process(VGA_QUERY_LS, node, vcb, last);
}

bool vga_issue_query_lu03(vga_pu* pu, const vga_lu03* last, bool inclusive, NB_USHORT count,
                          VGA_CALLBACK callback) {
    return vga_issue_query(VGA_QUERY_LU03, pu, entry_of(last), inclusive ? count : 0,
                           inclusive && last != nullptr ? last->handle : pu->handle, callback);
}
bool vga_process_query_lu03(vga_pu* pu, void* vcb, vga_lu03** last) {
    return process(VGA_QUERY_LU03, pu, vcb, last);
}

bool vga_issue_query_mode(vga_lu62* lu, const vga_mode* last, bool inclusive, NB_USHORT count,
                          VGA_CALLBACK callback) {
    return vga_issue_query(VGA_QUERY_MODE, lu, entry_of(last), inclusive ? count : 0,
                           inclusive && last != nullptr ? last->handle : lu->handle, callback);
}
bool vga_process_query_mode(vga_lu62* lu, void* vcb, vga_mode** last) {
    if (vcb_header(vcb)->primary_rc == NAP_NO_ENTRIES) {
        *last = nullptr;
        return true;
    }
    return process(VGA_QUERY_MODE, lu, vcb, last);
}

bool vga_issue_query_dir(vga_node* node, const DIRECTORY_ENTRY* last, VGA_CALLBACK callback) {
    return vga_issue_query(VGA_QUERY_DIR, node, last, 0, 0, callback);
}
bool vga_process_query_dir(vga_node* node, void* vcb, const DIRECTORY_ENTRY** last) {
    return process_entries(VGA_QUERY_DIR, node, vcb, last);
}

bool vga_issue_query_plu_def(vga_node* node, const PLU_DEF_ENTRY* last, VGA_CALLBACK callback) {
    return vga_issue_query(VGA_QUERY_PLU_DEF, node, last, 0, 0, callback);
}
bool vga_process_query_plu_def(vga_node* node, void* vcb, const PLU_DEF_ENTRY** last) {
    return process_entries(VGA_QUERY_PLU_DEF, node, vcb, last);
}
