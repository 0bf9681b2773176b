#include "common/alloc.h"
#include "nof/opcodes.h"
#include "shell/globals.h"
#include "shell/messages.h"
#include "ui/framework/message_box.h"

namespace {

// A reason that has a text of its own. An opcode or primary code of 0 stands for any.
struct VERB_FAILURE {
    NB_USHORT opcode, primary;
    NB_ULONG secondary;
    bool read_only; // only while the tool is read-only
    int message;
    const char* kinds;
    const char* help_tag;
};
constexpr VERB_FAILURE failures[] = {
    {0, NAP_STATE_CHECK, NAP_UPDATE_CONFLICT, false, 211, "", "verbfailed"},
    {0, NAP_UNSUCCESSFUL, NAP_TARGET_GONE, false, 224, "", "verbfailed"},
    {0, NAP_PARAMETER_CHECK, NAP_NOT_AUTHORIZED, true, 607, "s", "readonly"},
    {0, NAP_PARAMETER_CHECK, NAP_NO_HPR_CONNECTION, false, 694, "", "nohprconn"},
    {NAP_DELETE_BACKUP, 0, NAP_LAST_BACKUP, false, 207, "", "verbfailed"},
};
constexpr const char* operator_group = "sna"; // its members may change the configuration

} // namespace

char* vga_get_verb_error_message(NB_USHORT opcode, NB_USHORT primary, NB_ULONG secondary,
                                 const char** help_tag) {
    *help_tag = "verbfailed";
    auto* text = static_cast<char*>(vga_alloc(VGA_MESSAGE_BUFFER_SIZE));
    if (text == nullptr) {
        VGA_FATAL(VGA_EXIT_INTERNAL, 0);
        return nullptr;
    }
    for (const VERB_FAILURE& failure : failures) {
        if ((failure.opcode == 0 || failure.opcode == opcode) &&
            (failure.primary == 0 || failure.primary == primary) &&
            failure.secondary == secondary && (!failure.read_only || gvga_read_only)) {
            *help_tag = failure.help_tag;
            vga_print_msg(text, gvga_messages[failure.message], failure.kinds, operator_group);
            return text;
        }
    }
    vga_print_msg(text, gvga_messages[228], "x x lx", opcode, primary, secondary);
    return text;
}
