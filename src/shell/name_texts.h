// Names and addresses as the operator reads them, where the text comes out of the message table.
#pragma once

#include "common/ip_address.h"
#include "nba/nba.h"

// A TP name (64 bytes, EBCDIC) as local text without trailing blanks or, with hexadecimal, as two
// digits per byte, set into message 1449 when decorate is set. Whether a name needs hexadecimal
// tells vga_hex_tp_name. result holds VGA_MESSAGE_BUFFER_SIZE bytes.
void vga_format_tp_name(char* result, const NB_BYTE* tp_name, bool hexadecimal, bool decorate);
// An IPv4 address set into message 1450, and with a port into message 1451.
void vga_format_ip_addr(char* result, const NAP_IP_ADDRESS* ip_addr);
void vga_format_ip_addr_port(char* result, const NAP_IP_ADDRESS* ip_addr, NB_USHORT port);
