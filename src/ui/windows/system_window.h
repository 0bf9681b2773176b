// The system window: the nodes of a client/server domain.
#pragma once

// Opens or raises it. ready false: the first window appears insensitive and waits for the domain to
// be read. False when it cannot be shown.
bool vga_display_system_window(bool ready);
