// Orders of the store's collections. All follow the contract of NTL_AVL_COMPARE; keys lie inside
// query entries, so none is assumed to be aligned.
#pragma once

#include "nba/nba.h"

// Names of the local character set of a fixed width: without regard to case, on a tie with it.
int vga_compare_asc4(const void* a, const void* b);
int vga_compare_asc8(const void* a, const void* b);
int vga_compare_asc10(const void* a, const void* b);
int vga_compare_asc14(const void* a, const void* b);
int vga_compare_asc16(const void* a, const void* b);
int vga_compare_user_name(const void* a, const void* b); // 32 characters
int vga_compare_node_name(const void* a, const void* b); // 128 characters

// EBCDIC names, by their characters in the local set; the 10-byte user ID as the names above.
int vga_compare_ebc8(const void* a, const void* b);
int vga_compare_ebc10(const void* a, const void* b);
int vga_compare_ebc17(const void* a, const void* b);

int vga_compare_lu(const void* a, const void* b); // vga_lu_key

struct vga_user_status_key {
    char user_name[32];
    char node_name[128];
    NB_BYTE lu_name[8];
};
int vga_compare_user_status(const void* a, const void* b);

// 64-byte EBCDIC names; those shown in hexadecimal come last.
int vga_compare_tp_names(const void* a, const void* b);

int vga_compare_rem_plu(const void* a, const void* b); // vga_rem_plu_key
// The first 22 bytes of a DIRECTORY_ENTRY: name, then resource type.
int vga_compare_directory_entries(const void* a, const void* b);

struct vga_lu62_timeout_key {
    const NB_BYTE* resource_name; // 17 bytes
    const NB_BYTE* resource_type;
};
int vga_compare_lu62_timeouts(const void* a, const void* b);

int vga_compare_rem_sess(const void* a, const void* b); // vga_rem_sess_key

int vga_compare_ip_address(const void* a, const void* b); // NAP_IP_ADDRESS, less its family

int vga_compare_client_address(const void* a, const void* b);       // TN3270_CLIENT_KEY
int vga_compare_tn_redirect(const void* a, const void* b);          // TN_REDIRECT_KEY
int vga_compare_ipbridge_appcip_sess(const void* a, const void* b); // IPBRIDGE_SESSION from lu_name

struct vga_sl_sec_key {
    NB_BYTE lu_name[8];
    NB_BYTE plu_name[17];
};
int vga_compare_sl_sec(const void* a, const void* b);

int vga_compare_rtp_conn(const void* a, const void* b); // 8-byte connection identifier

// TP_LOAD_INFO_ENTRY from tp_name: name and LU alias as bytes.
int vga_compare_tp_load_info(const void* a, const void* b);

int vga_compare_ushort(const void* a, const void* b);
int vga_compare_ulong(const void* a, const void* b);
int vga_compare_byte(const void* a, const void* b);
