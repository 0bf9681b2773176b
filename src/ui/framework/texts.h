// Numbers of the catalogue messages for titles and buttons that belong to no particular message.
#pragma once

enum VGA_TEXT : int {
    VGA_TEXT_ERROR_TITLE = 203,
    VGA_TEXT_INFO_TITLE = 210,
    VGA_TEXT_HELP_TITLE = 212,
    VGA_TEXT_CONFIRM_TITLE = 213,
    VGA_TEXT_OK = 220,
    VGA_TEXT_BACK = 204,
    VGA_TEXT_MORE = 206,
    VGA_TEXT_CLOSE = 209,
    VGA_TEXT_PRINT = 222,
    VGA_TEXT_YES = 216,
    VGA_TEXT_YES_TO_ALL = 221,
    VGA_TEXT_NO = 225,
    VGA_TEXT_CANCEL = 226,
    VGA_TEXT_HELP = 236,
    VGA_TEXT_LIST_TITLE = 223,
    VGA_TEXT_NODE_ITEM = 214,
    VGA_TEXT_PASSWORD = 174,      // in place of a stored password
    VGA_TEXT_HEX_PASSWORD = 1165, // in place of a stored hexadecimal one
};
