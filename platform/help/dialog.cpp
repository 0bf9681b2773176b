#include "dialog_parts.h"

#include "layout.h"

#include <Xm/List.h>
#include <Xm/MessageB.h>

#include <algorithm>

namespace {

constexpr std::size_t printed_columns = 76;
constexpr std::size_t longest_history = 200;

void call(HELP_DIALOG* dialog, const std::vector<XtCallbackRec>& callbacks,
          DtHelpDialogCallbackStruct* data) {
    const std::vector<XtCallbackRec> copy = callbacks; // a callback may destroy the dialog
    Widget form = dialog->form;
    for (const XtCallbackRec& each : copy) {
        each.callback(form, each.closure, data);
    }
}

void mark_in_list(HELP_DIALOG* dialog) {
    if (dialog->list == nullptr) {
        return;
    }
    XmListDeselectAllItems(dialog->list);
    const auto row = std::ranges::find(dialog->entries, dialog->location, &HELP_ENTRY::location);
    if (row == dialog->entries.end()) {
        return;
    }
    const int position = static_cast<int>(row - dialog->entries.begin()) + 1;
    XmListSelectPos(dialog->list, position, False);
    int top = 1;
    int visible = 1;
    XtVaGetValues(dialog->list, XmNtopItemPosition, &top, XmNvisibleItemCount, &visible, nullptr);
    if (position < top) {
        XmListSetPos(dialog->list, position);
    } else if (position >= top + visible) {
        XmListSetBottomPos(dialog->list, position);
    }
}

void go(HELP_DIALOG* dialog, const std::string& location) {
    if (location == dialog->location) {
        return;
    }
    dialog->history.push_back({dialog->location, help_view_scroll(dialog->view)});
    if (dialog->history.size() > longest_history) {
        dialog->history.erase(dialog->history.begin());
    }
    help_show(dialog, location, 0);
}

void show_text(HELP_DIALOG* dialog, const std::string& title, const std::string& text) {
    dialog->topic = HELP_TOPIC{title, "", {{HELP_BLOCK_KIND::PARAGRAPH, {{text, {}}}}}};
    help_view_show(dialog->view, dialog->topic, 0);
}

void tell_failure(HELP_DIALOG* dialog, const std::string& reason) {
    Widget box = XmCreateErrorDialog(dialog->form, const_cast<char*>("helpPrintError"), nullptr, 0);
    XmString text = help_label("The text could not be printed.\n" + reason);
    XmString title = help_label("Print");
    XtVaSetValues(box, XmNmessageString, text, XmNdialogTitle, title, nullptr);
    XmStringFree(text);
    XmStringFree(title);
    for (const unsigned char child : {XmDIALOG_CANCEL_BUTTON, XmDIALOG_HELP_BUTTON}) {
        XtUnmanageChild(XmMessageBoxGetChild(box, child));
    }
    const auto destroy = [](Widget widget, XtPointer, XtPointer) {
        XtDestroyWidget(XtParent(widget));
    };
    XtAddCallback(box, XmNokCallback, destroy, nullptr);
    XtVaSetValues(XtParent(box), XmNdeleteResponse, XmDESTROY, nullptr);
    XtManageChild(box);
}

} // namespace

void help_show(HELP_DIALOG* dialog, const std::string& location, int scroll) {
    help_load(dialog->volume, location, &dialog->topic);
    dialog->location = location.empty() ? HELP_HOME : location;
    help_view_show(dialog->view, dialog->topic, scroll);
    XtSetSensitive(dialog->buttons[BACK], !dialog->history.empty());
    mark_in_list(dialog);
}

void help_back(void* data) {
    auto* dialog = static_cast<HELP_DIALOG*>(data);
    if (dialog->history.empty()) {
        return;
    }
    const HELP_PLACE place = dialog->history.back();
    dialog->history.pop_back();
    if (dialog->history.empty()) { // the button goes insensitive and would keep the keyboard
        XmProcessTraversal(help_view_text(dialog->view), XmTRAVERSE_CURRENT);
    }
    help_show(dialog, place.location, place.scroll);
}

void help_follow(void* data, const HELP_LINK& link, XEvent* event) {
    auto* dialog = static_cast<HELP_DIALOG*>(data);
    const bool manual = link.kind == HELP_LINK_KIND::MAN_PAGE;
    if (!manual && (link.volume.empty() || link.volume == dialog->volume)) {
        go(dialog, link.location);
        return;
    }
    std::string location = link.location;
    std::string volume = link.volume;
    DtHelpDialogCallbackStruct report{};
    report.reason = DtCR_HELP_LINK_ACTIVATE;
    report.event = event;
    report.hyperType = manual ? DtHELP_LINK_MAN_PAGE : DtHELP_LINK_JUMP;
    (manual ? report.specification : report.locationId) = location.data();
    report.helpVolume = manual ? nullptr : volume.data();
    call(dialog, dialog->link_callbacks, &report);
}

void help_show_manual(HELP_DIALOG* dialog, const std::string& name) {
    dialog->location = name;
    const std::string title = "Manual page " + name;
    const auto missing = [dialog, title, name] {
        show_text(dialog, title, "There is no manual page " + name + " on this system.");
    };
    XtSetSensitive(dialog->buttons[BACK], False);
    if (!help_is_manual_name(name)) {
        missing();
        return;
    }
    const std::size_t open = std::min(name.find('('), name.size());
    const std::string section = open < name.size() ? name.substr(open + 1) : "";
    std::string command = dialog->resources.manual_command;
    command += section.empty() ? "" : " '" + section.substr(0, section.size() - 1) + "'";
    command += " '" + name.substr(0, open) + "'";
    show_text(dialog, title, "The manual page is being prepared.");
    dialog->manual = help_run(XtWidgetToApplicationContext(dialog->form), command + " 2>/dev/null",
                              {{"MANWIDTH", "80"}, {"MANPAGER", "cat"}, {"PAGER", "cat"}}, "",
                              [dialog, name, missing](int status, const std::string& output) {
                                  dialog->manual = nullptr;
                                  const HELP_TOPIC page = help_parse_manual(name, output);
                                  if (status != 0 || page.blocks.empty()) {
                                      missing();
                                      return;
                                  }
                                  dialog->topic = page;
                                  help_view_show(dialog->view, page, 0);
                              });
    if (dialog->manual == nullptr) {
        missing();
    }
}

void help_fill_list(HELP_DIALOG* dialog, HELP_BUTTON kind) {
    dialog->entries = kind == INDEX ? help_index(dialog->volume) : help_contents(dialog->volume);
    std::vector<XmString> items;
    for (const HELP_ENTRY& entry : dialog->entries) {
        const bool heading = entry.location.empty();
        const std::string indent = heading || kind == INDEX ? "" : "   ";
        items.push_back(help_string(indent + entry.title, heading ? "strong" : "labels"));
    }
    XmListDeleteAllItems(dialog->list);
    XmListAddItemsUnselected(dialog->list, items.data(), static_cast<int>(items.size()), 0);
    for (XmString item : items) {
        XmStringFree(item);
    }
    XmString title = help_label(help_button_rows[kind].label);
    XtVaSetValues(dialog->list_title, XmNlabelString, title, nullptr);
    XmStringFree(title);
    mark_in_list(dialog);
}

void help_list_cb(Widget, XtPointer data, XtPointer call_data) {
    auto* dialog = static_cast<HELP_DIALOG*>(data);
    const int position = static_cast<XmListCallbackStruct*>(call_data)->item_position;
    const HELP_ENTRY entry = dialog->entries[static_cast<std::size_t>(position) - 1];
    if (entry.location.empty()) {
        mark_in_list(dialog); // a heading is no topic
    } else {
        go(dialog, entry.location);
    }
}

void help_back_cb(Widget, XtPointer data, XtPointer) {
    help_back(data);
}

void help_contents_cb(Widget, XtPointer data, XtPointer) {
    help_fill_list(static_cast<HELP_DIALOG*>(data), CONTENTS);
}

void help_index_cb(Widget, XtPointer data, XtPointer) {
    auto* dialog = static_cast<HELP_DIALOG*>(data);
    help_fill_list(dialog, INDEX);
    XmProcessTraversal(dialog->list, XmTRAVERSE_CURRENT);
}

void help_print_cb(Widget button, XtPointer data, XtPointer) {
    auto* dialog = static_cast<HELP_DIALOG*>(data);
    const std::string command = dialog->resources.print_command;
    const auto done = [dialog, button, command](int status, const std::string& output) {
        dialog->printing = nullptr;
        XtSetSensitive(button, True);
        if (status != 0) {
            constexpr std::size_t most = 400;
            const std::string said = output.substr(0, most);
            tell_failure(dialog, "\"" + command + "\" ended with status " + std::to_string(status) +
                                     (said.empty() ? "." : ":\n" + said));
        }
    };
    dialog->printing = help_run(XtWidgetToApplicationContext(dialog->form), command, {},
                                help_plain_text(dialog->topic, printed_columns), done);
    if (dialog->printing == nullptr) {
        tell_failure(dialog, "\"" + command + "\" could not be started.");
    } else {
        XtSetSensitive(button, False);
    }
}

void help_full_close_cb(Widget, XtPointer data, XtPointer) {
    auto* dialog = static_cast<HELP_DIALOG*>(data);
    DtHelpDialogCallbackStruct report{};
    report.reason = DtCR_HELP_CLOSE;
    call(dialog, dialog->close_callbacks, &report);
}
