// What the configuration processors share; for the config sources only.
#pragma once

#include "common/alloc.h"
#include "common/avl.h"
#include "nof/vcb.h"
#include "store/remove.h"
#include "store/store.h"
#include "verbs/config.h"
#include "verbs/status_util.h"

#include <algorithm>
#include <cstring>

inline bool vga_config_rc_holds(const VCB_HEADER* vcb) {
    return vcb->primary_rc == NAP_OK || vcb->primary_rc == NAP_INDICATION;
}

// The block of a completion, after the invariants that every processor tests.
template <typename Block>
const Block& vga_config_block(const VGA_COMPLETION* completion, NB_USHORT opcode,
                              const char* expression) {
    const VCB_HEADER* vcb = vcb_header(completion->vcb);
    VGA_ASSERT_TEXT(vcb->opcode == opcode, expression);
    VGA_ASSERT_TEXT(vga_config_rc_holds(vcb),
                    "(vcb->primary_rc == NAP_OK)||(vcb->primary_rc == NAP_INDICATION)");
    return *static_cast<const Block*>(completion->vcb);
}
#define VGA_CONFIG_BLOCK(Block, completion, OPCODE)                                                \
    vga_config_block<Block>((completion), OPCODE, "vcb->opcode == " #OPCODE)

// When a kind of record is listed: by the build, and by the checks that list it again. A name that
// is unknown meanwhile is no news.
struct vga_listing {
    VGA_FLAGS build_flags;
    VGA_CHECK_KIND check = VGA_CHECK_COUNT; // none
};
inline bool vga_is_being_listed(const vga_node* node, const vga_listing& listing) {
    return (node->build_flags & listing.build_flags) != 0 ||
           (listing.check != VGA_CHECK_COUNT && node->checks_running[listing.check] != 0);
}

// Logs a name that the store does not know, unless its kind is being listed.
inline void vga_log_absent_local(const vga_node* node, const vga_listing& listing, int subcode,
                                 NB_USHORT opcode, const char* name, int width = 8) {
    if (!vga_is_being_listed(node, listing)) {
        vga_log_unknown_local(subcode, opcode, name, width);
    }
}
inline void vga_log_absent_ebcdic(const vga_node* node, const vga_listing& listing, int subcode,
                                  NB_USHORT opcode, const NB_BYTE* name, int width = 8) {
    if (!vga_is_being_listed(node, listing)) {
        vga_log_unknown_ebcdic(subcode, opcode, name, width);
    }
}

// A zeroed entry with its length set.
template <typename Entry> Entry vga_new_entry() {
    Entry entry{};
    entry.length = sizeof entry;
    return entry;
}
template <typename Name> void vga_copy_name(Name& to, const Name& from) {
    std::memcpy(to, from, sizeof to);
}

// Hands a record to who asked for it.
template <typename Record> void vga_give(Record** asked, Record* record) {
    if (asked != nullptr) {
        *asked = record;
    }
}
