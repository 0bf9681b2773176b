#include "shell/start.h"

#include "common/card_types.h"
#include "nof/nof.h"
#include "shell/resources.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

XrmDatabase gvga_resource_database;
XrmDatabase gvga_local_database;

namespace {

constexpr const char* application_class = "Tessaly";
constexpr std::size_t max_name = 31;  // of a resource, its terminator included
constexpr std::size_t max_value = 32; // of a flag or number, its terminator included

// The adapter table's card type serves as the implementation value of each kind of adapter.
struct IMPLEMENTATION {
    NB_BYTE protocol;
    NB_USHORT* value;
};
constexpr IMPLEMENTATION implementations[] = {
    {NAP_DLC_SDLC, &gvga_impl_sdlc},      {NAP_DLC_QLLC, &gvga_impl_qllc},
    {NAP_DLC_TOKEN_RING, &gvga_impl_tr},  {NAP_DLC_FDDI, &gvga_impl_fddi},
    {NAP_DLC_ETHERNET, &gvga_impl_ether}, {NAP_DLC_FRAME_RELAY, &gvga_impl_fr},
    {NAP_DLC_CHANNEL, &gvga_impl_chnl},   {NAP_DLC_IP, &gvga_impl_ip},
    {NAP_DLC_MPC, &gvga_impl_mpc},        {NAP_DLC_MPC_PLUS, &gvga_impl_mpc_plus},
};

void set_implementations() {
    for (const IMPLEMENTATION& implementation : implementations) {
        *implementation.value = 0;
    }
    for (const V0_CARD_TYPE& card : v0_card_types) {
        if (card.platform == 0) {
            break;
        }
        const auto row =
            std::ranges::find(implementations, card.protocol, &IMPLEMENTATION::protocol);
        if (card.platform == gvga_platform && row != std::end(implementations)) {
            *row->value = card.card_type;
        }
    }
}

// Copies at most size - 1 characters.
void copy_cut(char* buffer, std::size_t size, const char* text, std::size_t length) {
    length = std::min(length, size - 1);
    std::memcpy(buffer, text, length);
    buffer[length] = '\0';
}

} // namespace

bool vga_get_resource_string(const char* name, const char* default_value, char* buffer,
                             std::size_t size) {
    if (std::strlen(name) < max_name) {
        char full_name[64];
        std::snprintf(full_name, sizeof full_name, "%s%s", application_class, name);
        char* type;
        XrmValue value;
        if (gvga_resource_database != nullptr &&
            XrmGetResource(gvga_resource_database, full_name, full_name, &type, &value) &&
            value.addr != nullptr) {
            const std::size_t length = strnlen(value.addr, value.size);
            if (length < size) {
                copy_cut(buffer, size, value.addr, length);
                return true;
            }
        }
    }
    copy_cut(buffer, size, default_value, std::strlen(default_value));
    return false;
}

bool vga_get_resource_bool(const char* name, bool default_value) {
    char value[max_value];
    if (!vga_get_resource_string(name, "", value, sizeof value) || value[0] == '\0') {
        return default_value;
    }
    return std::strpbrk(value, "Yy") != nullptr;
}

NB_ULONG vga_get_resource_ulong(const char* name, NB_ULONG default_value, NB_ULONG min,
                                NB_ULONG max) {
    char text[max_value];
    if (!vga_get_resource_string(name, "", text, sizeof text) || text[0] == '\0') {
        return default_value;
    }
    const unsigned long value = std::strtoul(text, nullptr, 0);
    if (value > UINT32_MAX || (min != max && (value < min || value > max))) {
        return default_value;
    }
    return static_cast<NB_ULONG>(value);
}

void vga_get_options() {
    gvga_querybuf_size = vga_get_resource_ulong(".queryBufferSize", 4096, 2048, 65535);
    gvga_supported[VGA_SUPPORT_CPIC] = vga_get_resource_bool(".supportCPIC", true);
    gvga_supported[VGA_SUPPORT_RJE] =
        gvga_variant_a == 0 && gvga_variant_b == 0 && vga_get_resource_bool(".supportRJE", true);
    gvga_supported[VGA_SUPPORT_CLIENT_SERVER] = vsm_is_client_server() != 0;
    gvga_supported[VGA_SUPPORT_DIRECTORY] = vga_get_resource_bool(".supportDirectory", false);
    gvga_supported[VGA_SUPPORT_APPLY] = vga_get_resource_bool(".supportApply", false);
    for (VGA_LEAD_DIALOG& lead : gvga_lead_dialogs) {
        lead.shown = vga_get_resource_bool(lead.resource, true);
    }
    gvga_platform = VGA_PLATFORM_CODE;
    set_implementations();
}

const char* vga_get_web_browser_path() {
    vga_get_resource_string("*webBrowser", "netscape", gvga_web_browser, sizeof gvga_web_browser);
    return gvga_web_browser;
}
