// What all list queries have in common: issue, and the check and the walk through a page.
#include "store/query.h"
#include "common/names.h"
#include "nof/extra_data.h"
#include "nof/security.h"
#include "shell/globals.h"
#include "store/record_util.h"

namespace {

using enum vga_owner;

constexpr std::size_t KEY = sizeof(LIST_QUERY); // offset of the key in a block

NB_HANDLE target_of(vga_owner kind, const vga_node* node) {
    switch (kind) {
    case config_file:
        return gvga_system->config_file_handle;
    case sna_net:
        return gvga_system->sna_net_handle;
    case domain:
        return 0;
    case tp_load:
        return node->tp_load_handle;
    default:
        return node->node_handle;
    }
}

// The name of the PU, local LU or connection network whose list it is; null for the others.
const NB_BYTE* name_of(vga_owner kind, const void* owner, std::size_t* length) {
    *length = SNA_NAME_LENGTH;
    switch (kind) {
    case pu:
        return static_cast<const vga_pu*>(owner)->vcb.pu_name;
    case lu62:
        return static_cast<const vga_lu62*>(owner)->vcb.lu_name;
    case cn:
        *length = FQ_NAME_LENGTH;
        return static_cast<const vga_cn*>(owner)->vcb.cn_name;
    default:
        return nullptr;
    }
}

// Where the blocks of these lists have the name of the owner.
static_assert(offsetof(QUERY_LU_0_TO_3, pu_name) == KEY + SNA_NAME_LENGTH);
static_assert(offsetof(QUERY_DOWNSTREAM_LU, dspu_name) == KEY + SNA_NAME_LENGTH);
static_assert(offsetof(QUERY_PARTNER_LU, lu_name) == KEY && offsetof(QUERY_MODE, lu_name) == KEY);
static_assert(offsetof(QUERY_LU_LU_PASSWORD, key) == KEY &&
              offsetof(QUERY_CN_PORT, cn_name) == KEY);
constexpr std::size_t name_offset(vga_owner kind) {
    return kind == pu ? KEY + SNA_NAME_LENGTH : KEY;
}

void copy_piece(NB_BYTE* block, const NB_BYTE* entry, const vga_piece& piece) {
    std::memcpy(block + piece.block, entry + piece.entry, piece.length);
}

NB_USHORT length_of(const NB_BYTE* entry) {
    NB_USHORT length;
    std::memcpy(&length, entry, sizeof length);
    return length;
}

// The last item inside an entry; items that do not fit are left out.
void copy_nested(NB_BYTE* block, const NB_BYTE* entry, const vga_nested_piece& piece) {
    const std::size_t end = length_of(entry);
    const NB_BYTE* last = nullptr;
    for (std::size_t at = piece.fixed; at + sizeof(NB_USHORT) <= end;) {
        const std::size_t length = length_of(entry + at);
        if (length < std::size_t{piece.item} + piece.length || at + length > end) {
            break;
        }
        last = entry + at;
        at += length;
    }
    if (last != nullptr) {
        std::memcpy(block + piece.block, last + piece.item, piece.length);
    }
}

// True when the entries of a reply lie in its buffer, each as long as its kind at least.
bool well_formed(const vga_query_row& row, const LIST_QUERY& list) {
    std::size_t at = 0;
    const auto* buffer = static_cast<const NB_BYTE*>(list.buffer);
    for (NB_USHORT i = 0; i < list.num_entries; ++i) {
        if (at + sizeof(NB_USHORT) > list.buffer_size) {
            return false;
        }
        const std::size_t length = length_of(buffer + at);
        if (length < row.entry_size || at + length > list.buffer_size) {
            return false;
        }
        at += length;
    }
    return true;
}

} // namespace

vga_node* vga_node_of(vga_owner kind, void* owner) {
    switch (kind) {
    case node:
    case tp_load:
        return static_cast<vga_node*>(owner);
    case pu:
        return static_cast<vga_pu*>(owner)->parent;
    case lu62:
        return static_cast<vga_lu62*>(owner)->parent;
    case cn:
        return static_cast<vga_cn*>(owner)->parent;
    default:
        return nullptr;
    }
}

NB_HANDLE vga_handle_of(vga_owner kind, void* owner) {
    switch (kind) {
    case pu:
        return static_cast<vga_pu*>(owner)->handle;
    case lu62:
        return static_cast<vga_lu62*>(owner)->handle;
    case cn:
        return static_cast<vga_cn*>(owner)->handle;
    case node:
    case tp_load:
        return static_cast<vga_node*>(owner)->handle;
    default:
        return gvga_system->handle;
    }
}

bool vga_issue_query(VGA_QUERY query, void* owner, const void* last, NB_USHORT count, NB_ULONG corr,
                     VGA_CALLBACK callback, NB_BYTE level) {
    const vga_query_row& row = vga_query_row_of(query);
    auto* block = vga_new<NB_BYTE>(row.block_size);
    void* buffer = vga_get_querybuf(count == 1 ? row.exact_size : 0);
    if (block == nullptr || buffer == nullptr) {
        vga_free(block);
        vga_free(buffer);
        return false;
    }
    auto* list = reinterpret_cast<LIST_QUERY*>(block);
    list->header.opcode = row.opcode;
    list->buffer = buffer;
    list->buffer_size = count == 1 && row.exact_size != 0 ? row.exact_size : gvga_querybuf_size;
    list->num_entries = count;
    list->list_options = level != 0 ? level : row.level;
    if (last == nullptr) {
        list->list_options |= NAP_FIRST_IN_LIST;
    } else {
        list->list_options |= count == 1 ? NAP_LIST_INCLUSIVE : NAP_LIST_FROM_NEXT;
        const auto* entry = static_cast<const NB_BYTE*>(last);
        copy_piece(block, entry, row.key);
        copy_piece(block, entry, row.key2);
        if (row.nested.length != 0) {
            copy_nested(block, entry, row.nested);
        }
    }
    std::size_t length;
    if (const NB_BYTE* name = name_of(row.owner, owner, &length); name != nullptr) {
        std::memcpy(block + name_offset(row.owner), name, length);
    }
    if (row.resource_kind != 0) {
        reinterpret_cast<QUERY_EXTRA_DATA*>(block)->resource_kind = row.resource_kind;
    }
    const NB_HANDLE target = target_of(row.owner, vga_node_of(row.owner, owner));
    if (!vga_queue_verb(target, block, corr != 0 ? corr : vga_handle_of(row.owner, owner),
                        callback)) {
        vga_free_vcb(block);
        return false;
    }
    return true;
}

vga_page vga_process_query(VGA_QUERY query, void* owner, void* vcb) {
    const vga_query_row& row = vga_query_row_of(query);
    const auto& list = *static_cast<const LIST_QUERY*>(vcb);
    vga_page page{};
    const bool continues =
        list.num_entries < list.total_entries || (row.nested.length != 0 && list.more == 1);
    if (list.header.primary_rc != NAP_OK || list.buffer == nullptr || !well_formed(row, list) ||
        (continues && list.num_entries == 0)) {
        vga_build_failure(row.failure, vcb);
        page.failed = true;
        return page;
    }
    vga_page_context context{.owner = owner, .block = vcb};
    const auto* entry = static_cast<const NB_BYTE*>(list.buffer);
    for (NB_USHORT i = 0; i < list.num_entries; ++i, entry += length_of(entry)) {
        page.last = entry;
        if (!row.handler(context, entry)) {
            page.failed = true;
            return page;
        }
        context.first = false;
    }
    page.record = context.record;
    page.more = continues;
    return page;
}

void vga_build_query(VGA_QUERY query, void* owner, const void* last, VGA_CALLBACK callback) {
    if (!vga_issue_query(query, owner, last, 0, 0, callback)) {
        VGA_FATAL(VGA_EXIT_INTERNAL, 0);
    }
}
