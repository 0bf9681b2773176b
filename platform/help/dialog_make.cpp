#include "dialog_parts.h"

#include "layout.h"

#include <Xm/DialogS.h>
#include <Xm/Form.h>
#include <Xm/Label.h>
#include <Xm/List.h>
#include <Xm/Protocols.h>
#include <Xm/PushB.h>
#include <Xm/RowColumn.h>

#include <algorithm>
#include <cstring>

namespace {

constexpr int gap = 8;
constexpr int edge = 12;
constexpr int quick_columns = 48; // of an average letter
constexpr int full_columns = 52;
constexpr int manual_columns = 82;
constexpr int list_columns = 36;
constexpr int least_lines = 8;
constexpr int most_lines = 26;

std::vector<HELP_DIALOG*>& dialogs() {
    static std::vector<HELP_DIALOG*> open;
    return open;
}

// The window manager's close is the close button.
void delete_cb(Widget, XtPointer data, XtPointer call_data) {
    const auto* dialog = static_cast<HELP_DIALOG*>(data);
    XmPushButtonCallbackStruct activate{};
    activate.reason = XmCR_ACTIVATE;
    activate.event = static_cast<XmAnyCallbackStruct*>(call_data)->event;
    XtCallCallbacks(dialog->buttons[CLOSE], XmNactivateCallback, &activate);
}

void destroy_cb(Widget form, XtPointer data, XtPointer) {
    XtDestroyWidget(XtParent(form)); // its shell, which is nothing without it
    auto* dialog = static_cast<HELP_DIALOG*>(data);
    for (HELP_COMMAND* command : {dialog->manual, dialog->printing}) {
        if (command != nullptr) {
            help_cancel(command);
        }
    }
    std::erase(dialogs(), dialog);
    delete dialog;
}

struct ARGUMENTS {
    std::string volume, location, manual;
    int type = DtHELP_TYPE_TOPIC;
    std::vector<XtCallbackRec> link, close;
    std::vector<Arg> rest;
};

std::vector<XtCallbackRec> list_of(XtArgVal value) {
    std::vector<XtCallbackRec> result;
    for (auto* each = reinterpret_cast<XtCallbackList>(value);
         each != nullptr && each->callback != nullptr; ++each) {
        result.push_back(*each);
    }
    return result;
}

ARGUMENTS read_arguments(ArgList args, Cardinal count) {
    ARGUMENTS result;
    const auto text = [](XtArgVal value) {
        const auto* string = reinterpret_cast<const char*>(value);
        return std::string(string != nullptr ? string : "");
    };
    for (Cardinal i = 0; i < count; ++i) {
        const Arg& arg = args[i];
        if (std::strcmp(arg.name, DtNhelpVolume) == 0) {
            result.volume = text(arg.value);
        } else if (std::strcmp(arg.name, DtNlocationId) == 0) {
            result.location = text(arg.value);
        } else if (std::strcmp(arg.name, DtNmanPage) == 0) {
            result.manual = text(arg.value);
        } else if (std::strcmp(arg.name, DtNhelpType) == 0) {
            result.type = static_cast<int>(arg.value);
        } else if (std::strcmp(arg.name, DtNhyperLinkCallback) == 0) {
            result.link = list_of(arg.value);
        } else if (std::strcmp(arg.name, DtNcloseCallback) == 0) {
            result.close = list_of(arg.value);
        } else {
            result.rest.push_back(arg);
        }
    }
    return result;
}

void read_resources(HELP_DIALOG* dialog) {
    static char print[] = "lp";
    static char manual[] = "man";
    static char names[][16] = {"printCommand", "PrintCommand", "manualCommand", "ManualCommand"};
    static XtResource resources[] = {
        {names[0], names[1], const_cast<char*>(XtRString), sizeof(String),
         offsetof(HELP_RESOURCES, print_command), const_cast<char*>(XtRString), print},
        {names[2], names[3], const_cast<char*>(XtRString), sizeof(String),
         offsetof(HELP_RESOURCES, manual_command), const_cast<char*>(XtRString), manual},
    };
    XtGetApplicationResources(dialog->form, &dialog->resources, resources, XtNumber(resources),
                              nullptr, 0);
}

bool has_label_resource(Widget button) {
    String value = nullptr;
    XtResource resource = {const_cast<char*>(XmNlabelString),
                           const_cast<char*>(XmCLabelString),
                           const_cast<char*>(XtRString),
                           sizeof(String),
                           0,
                           const_cast<char*>(XtRImmediate),
                           nullptr};
    XtGetApplicationResources(button, &value, &resource, 1, nullptr, 0);
    return value != nullptr;
}

Widget make_buttons(HELP_DIALOG* dialog) {
    Widget row = XtVaCreateWidget(
        "helpButtons", xmRowColumnWidgetClass, dialog->form, XmNorientation, XmHORIZONTAL,
        XmNpacking, XmPACK_COLUMN, XmNspacing, gap, XmNmarginWidth, 0, XmNmarginHeight, 0,
        XmNentryAlignment, XmALIGNMENT_CENTER, XmNrightAttachment, XmATTACH_FORM, XmNrightOffset,
        edge, XmNbottomAttachment, XmATTACH_FORM, XmNbottomOffset, edge, nullptr);
    constexpr std::array<XtCallbackProc, BUTTON_COUNT> callbacks = {
        help_back_cb, help_contents_cb, help_index_cb, help_print_cb, nullptr, nullptr, nullptr};
    for (std::size_t i = 0; i < BUTTON_COUNT; ++i) {
        const HELP_BUTTON_ROW& button = help_button_rows[i];
        if (!(dialog->full ? button.full : button.quick)) {
            continue;
        }
        Widget widget = XtVaCreateWidget(button.name, xmPushButtonWidgetClass, row,
                                         XmNnavigationType, XmTAB_GROUP, nullptr);
        if (!has_label_resource(widget)) {
            XmString label = help_label(button.label);
            XtVaSetValues(widget, XmNlabelString, label, nullptr);
            XmStringFree(label);
        }
        if (callbacks[i] != nullptr) {
            XtAddCallback(widget, XmNactivateCallback, callbacks[i], dialog);
        }
        if (button.managed) {
            XtManageChild(widget);
        }
        dialog->buttons[i] = widget;
    }
    XtManageChild(row);
    return row;
}

void make_list(HELP_DIALOG* dialog, Widget below) {
    dialog->list_title = XtVaCreateManagedWidget(
        "helpListTitle", xmLabelWidgetClass, dialog->form, XmNtopAttachment, XmATTACH_FORM,
        XmNtopOffset, edge, XmNleftAttachment, XmATTACH_FORM, XmNleftOffset, edge, XmNalignment,
        XmALIGNMENT_BEGINNING, XmNmarginWidth, 0, nullptr);
    Arg args[] = {{const_cast<char*>(XmNlistSizePolicy), XmCONSTANT},
                  {const_cast<char*>(XmNselectionPolicy), XmBROWSE_SELECT},
                  {const_cast<char*>(XmNmatchBehavior), XmQUICK_NAVIGATE}};
    dialog->list =
        XmCreateScrolledList(dialog->form, const_cast<char*>("helpList"), args, XtNumber(args));
    XtVaSetValues(XtParent(dialog->list), XmNtopAttachment, XmATTACH_WIDGET, XmNtopWidget,
                  dialog->list_title, XmNtopOffset, gap / 2, XmNleftAttachment, XmATTACH_FORM,
                  XmNleftOffset, edge, XmNbottomAttachment, XmATTACH_WIDGET, XmNbottomWidget, below,
                  XmNbottomOffset, edge, nullptr);
    XtAddCallback(dialog->list, XmNbrowseSelectionCallback, help_list_cb, dialog);
    XtManageChild(dialog->list);
}

void attach_text(HELP_DIALOG* dialog, Widget below) {
    Widget text = help_view_widget(dialog->view);
    XtVaSetValues(text, XmNtopAttachment, XmATTACH_FORM, XmNtopOffset, edge, XmNrightAttachment,
                  XmATTACH_FORM, XmNrightOffset, edge, XmNbottomAttachment, XmATTACH_WIDGET,
                  XmNbottomWidget, below, XmNbottomOffset, edge, XmNleftAttachment, XmATTACH_FORM,
                  XmNleftOffset, edge, nullptr);
    if (dialog->list != nullptr) {
        XtVaSetValues(text, XmNleftAttachment, XmATTACH_WIDGET, XmNleftWidget,
                      XtParent(dialog->list), XmNleftOffset, gap, nullptr);
    }
}

void set_sizes(HELP_DIALOG* dialog, bool manual) {
    HELP_VIEW* view = dialog->view;
    const int line = help_view_line_height(view);
    const int columns = manual ? manual_columns : dialog->full ? full_columns : quick_columns;
    Dimension width = 0;
    int height = 0;
    help_view_size(view, columns, manual, &width, &height);
    const bool largest = manual || dialog->full;
    height =
        largest ? most_lines * line : std::clamp(height, least_lines * line, most_lines * line);
    const int limit = HeightOfScreen(XtScreen(dialog->form)) * 2 / 3;
    XtVaSetValues(help_view_text(view), XmNwidth, width, XmNheight,
                  static_cast<Dimension>(std::min(height, limit)), nullptr);
    if (dialog->list != nullptr) {
        XmRenderTable table = nullptr;
        XtVaGetValues(help_view_text(view), XmNrenderTable, &table, nullptr);
        XtVaSetValues(XtParent(dialog->list), XmNwidth,
                      static_cast<Dimension>(help_text_width(table, list_columns, false)), nullptr);
    }
}

Widget make(bool full, Widget parent, char* name, ArgList args, Cardinal count) {
    const ARGUMENTS arguments = read_arguments(args, count);
    const std::string shell_name = std::string(name) + "_popup";
    Widget shell = XtVaCreatePopupShell(shell_name.c_str(), xmDialogShellWidgetClass, parent,
                                        XmNdeleteResponse, XmDO_NOTHING, nullptr);
    auto* dialog = new HELP_DIALOG{};
    dialog->full = full;
    dialog->volume = arguments.volume;
    dialog->link_callbacks = arguments.link;
    dialog->close_callbacks = arguments.close;
    dialog->form = XtVaCreateWidget(name, xmFormWidgetClass, shell, XmNautoUnmanage, False,
                                    XmNdialogStyle, XmDIALOG_MODELESS, nullptr);
    XtSetValues(dialog->form, const_cast<ArgList>(arguments.rest.data()),
                static_cast<Cardinal>(arguments.rest.size()));
    dialogs().push_back(dialog);
    XtAddCallback(dialog->form, XmNdestroyCallback, destroy_cb, dialog);
    read_resources(dialog);

    // The text comes first in the order of the Tab key, the buttons last.
    dialog->view = help_create_view(dialog->form, {help_follow, help_back, dialog});
    Widget buttons = make_buttons(dialog);
    if (full) {
        make_list(dialog, buttons);
        XtAddCallback(dialog->buttons[CLOSE], XmNactivateCallback, help_full_close_cb, dialog);
    }
    attach_text(dialog, buttons);
    XtVaSetValues(dialog->form, XmNcancelButton, dialog->buttons[CLOSE], XmNinitialFocus,
                  help_view_text(dialog->view), nullptr);
    XmAddWMProtocolCallback(
        shell, XmInternAtom(XtDisplay(shell), const_cast<char*>("WM_DELETE_WINDOW"), False),
        delete_cb, dialog);

    const bool manual = arguments.type == DtHELP_TYPE_MAN_PAGE;
    if (manual) {
        help_show_manual(dialog, arguments.manual);
    } else {
        help_show(dialog, arguments.location, 0);
    }
    if (full) {
        help_fill_list(dialog, CONTENTS);
    }
    set_sizes(dialog, manual);
    return dialog->form;
}

} // namespace

std::vector<Widget> help_dialogs() {
    std::vector<Widget> forms;
    for (const HELP_DIALOG* dialog : dialogs()) {
        forms.push_back(dialog->form);
    }
    return forms;
}

HELP_DIALOG* help_dialog_of(Widget form) {
    const auto found = std::ranges::find(dialogs(), form, &HELP_DIALOG::form);
    return found != dialogs().end() ? *found : nullptr;
}

const HELP_VIEW* help_dialog_view(const HELP_DIALOG* dialog) {
    return dialog->view;
}

const HELP_TOPIC& help_dialog_topic(const HELP_DIALOG* dialog) {
    return dialog->topic;
}

const std::string& help_dialog_location(const HELP_DIALOG* dialog) {
    return dialog->location;
}

Widget DtCreateHelpDialog(Widget parent, char* name, ArgList args, Cardinal count) {
    return make(true, parent, name, args, count);
}

Widget DtCreateHelpQuickDialog(Widget parent, char* name, ArgList args, Cardinal count) {
    return make(false, parent, name, args, count);
}

Widget DtHelpQuickDialogGetChild(Widget form, unsigned char child) {
    constexpr std::array<HELP_BUTTON, 5> buttons = {BACK, PRINT, MORE, CLOSE, HELP};
    const HELP_DIALOG* dialog = help_dialog_of(form);
    return dialog != nullptr && !dialog->full && child < buttons.size()
               ? dialog->buttons[buttons[child]]
               : nullptr;
}
